#include "themes/theme_preview.h"

#include "themes/painted_frame.h"
#include "themes/theme_painter.h"

#include <QLabel>

namespace {

constexpr int kBarHeight = 24;

void setLook(QLabel *label, const QString &family, int pixelSize, const QColor &colour)
{
    QFont font = label->font();
    font.setFamily(family);
    font.setPixelSize(pixelSize);
    label->setFont(font);
    QPalette pal = label->palette();
    pal.setColor(QPalette::WindowText, colour);
    label->setPalette(pal);
}

} // namespace

ThemePreview::ThemePreview(QWidget *parent)
    : QWidget(parent)
      // Names of their own: the window's "pfrBAR" and "pfrPANEL" are the ones the theme paints.
      ,
      m_bar(new PaintedFrame(QStringLiteral("pfrPREVIEWBAR"), this)),
      m_panel(new PaintedFrame(QStringLiteral("pfrPREVIEWPANEL"), this)),
      m_barText(new QLabel(tr("Bar text"), m_bar)), m_panelText(new QLabel(tr("Panel text 12:45"), m_panel))
{
    setObjectName(QStringLiteral("pvwTHEME"));
    setAccessibleName(tr("Preview of the theme"));
    m_barText->setObjectName(QStringLiteral("lblPREVIEWBAR"));
    m_panelText->setObjectName(QStringLiteral("lblPREVIEWPANEL"));
    m_panelText->setAlignment(Qt::AlignCenter);
    resize(sizeHint());
    layoutParts(); // the frames need a size before the first show to tell their colours
    setTheme(Theme());
}

namespace {
QColor averageOf(PaintedFrame *frame)
{
    const QImage image = frame->renderedImage();
    if (image.isNull())
        return ResolveColor(frame->startColor());
    return image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixelColor(0, 0);
}
} // namespace

QColor ThemePreview::barBackground() const
{
    return averageOf(m_bar);
}

QColor ThemePreview::panelBackground() const
{
    return averageOf(m_panel);
}

void ThemePreview::setTheme(const Theme &theme)
{
    const ThemeGradients g = GradientsFor(theme);
    m_bar->setBackgroundColor(theme.MainColor);
    m_panel->setBackgroundColor(theme.MainColor);
    m_bar->setGradient(theme.BarAngle, g.barStart, g.barEnd);
    m_panel->setGradient(theme.PanelAngle, g.panelStart, g.panelEnd);
    setLook(m_barText, theme.BarFont, 12, ResolveColor(theme.BarColor));
    setLook(m_panelText, theme.PanelFont, 22, ResolveColor(theme.PanelColor));
}

QSize ThemePreview::sizeHint() const
{
    return QSize(240, 84);
}

void ThemePreview::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    layoutParts();
}

void ThemePreview::layoutParts()
{
    m_bar->setGeometry(0, 0, width(), kBarHeight);
    m_panel->setGeometry(0, kBarHeight, width(), qMax(0, height() - kBarHeight));
    m_barText->setGeometry(8, 0, qMax(0, width() - 16), kBarHeight);
    m_panelText->setGeometry(m_panel->rect());
}
