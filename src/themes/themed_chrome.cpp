#include "themes/themed_chrome.h"

#include "core/widget_frame.h"
#include "core/window_dragger.h"
#include "themes/painted_frame.h"
#include "themes/theme_colors.h"
#include "themes/theme_painter.h"
#include "themes/themed_button.h"

#include <QEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>
#include <QWidget>

namespace {

void setForeground(QWidget *widget, const QColor &colour)
{
    QPalette pal = widget->palette();
    pal.setColor(QPalette::WindowText, colour);
    widget->setPalette(pal);
}

} // namespace

ThemedChrome::ThemedChrome(QWidget *host, const Options &options)
    : QObject(host)
    , m_host(host)
    , m_options(options)
    , m_barHeight(options.barHeight)
{
    m_panel = new PaintedFrame(QStringLiteral("pfrPANEL"), host);
    m_bar = new PaintedFrame(QStringLiteral("pfrBAR"), host);
    // The theme colours these two lines (ApplyTheme looks them up by name).
    for (QWidget **line : {&m_shadowLine, &m_lightLine}) {
        *line = new QWidget(host);
        (*line)->setAutoFillBackground(true);
        (*line)->setAttribute(Qt::WA_TransparentForMouseEvents);
    }
    m_shadowLine->setObjectName(QStringLiteral("lneSHAD"));
    m_lightLine->setObjectName(QStringLiteral("lneLIGHT"));
    if (options.title) {
        m_title = new QLabel(m_bar);
        m_title->setObjectName(QStringLiteral("lablTITLE"));
        m_title->setText(host->windowTitle());
        QFont f = m_title->font();
        f.setBold(true);
        m_title->setFont(f);
    }
    if (options.closeButton) {
        m_close = new ThemedButton(m_bar);
        m_close->setObjectName(QStringLiteral("CloseRefresh"));
        m_close->setToolTip(tr("Close"));
        m_close->setAccessibleName(tr("Close"));
        // A click on a widget would otherwise leave the focus, unseen, on this button, and
        // the next Space or Enter would close the widget. Escape and the menu still close it.
        m_close->setFocusPolicy(Qt::NoFocus);
        connect(m_close, &ThemedButton::clicked, this, [this] {
            m_close->CloseRefresh();
            emit closeRequested();
        });
    }
    if (options.resizeGrip) {
        m_grip = new QLabel(host);
        m_grip->setObjectName(QStringLiteral("lblSTRETCH"));
        m_grip->setText(QStringLiteral("\u25E2")); // a small corner triangle
        m_grip->setCursor(Qt::SizeFDiagCursor);
        m_grip->setToolTip(tr("Drag to resize"));
        m_grip->setAccessibleName(tr("Resize grip"));
        m_grip->setAlignment(Qt::AlignRight | Qt::AlignBottom);
        m_grip->installEventFilter(this);
    }
    if (options.layoutManaged) {
        auto *layout = new QVBoxLayout(host);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        layout->addWidget(m_bar);
        layout->addWidget(m_panel, 1);
        m_bar->setFixedHeight(m_barHeight);
    }
    host->installEventFilter(this);
    // Installed after this filter, so the dragger sees a press first and takes the left button.
    (new WindowDragger(host))->watch(host);
    layoutFrames();
}

void ThemedChrome::setBarHeight(int pixels)
{
    m_barHeight = pixels;
    layoutFrames();
}

void ThemedChrome::applyThemeColours()
{
    const Theme &theme = CurrentTheme();
    SetWindowOpacity(m_host, theme.MainOpacity);

    QPalette pal = m_host->palette();
    pal.setColor(QPalette::Window, ResolveColor(theme.MainColor));
    m_host->setPalette(pal);
    m_host->setAutoFillBackground(true);

    const QColor barText = barTextColour(theme);
    const QColor panelText = panelTextColour(theme);
    setForeground(m_bar, barText);
    setForeground(m_panel, panelText);
    if (m_title) {
        QFont f = m_title->font();
        f.setFamily(theme.BarFont);
        m_title->setFont(f);
        setForeground(m_title, barText);
    }
    if (m_close)
        m_close->setCloseGlyph(barText);
    if (m_grip)
        setForeground(m_grip, ResolveColor(BlendColor(theme.MainColor, kShadowGrey, 210)));
}

QColor ThemedChrome::barTextColour(const Theme &theme)
{
    return ReadableOn(ResolveColor(theme.MainColor), ResolveColor(theme.BarColor));
}

QColor ThemedChrome::panelTextColour(const Theme &theme)
{
    return ReadableOn(ResolveColor(theme.MainColor), ResolveColor(theme.PanelColor));
}

void ThemedChrome::layoutFrames()
{
    const int w = m_host->width();
    const int h = m_host->height();
    if (m_options.layoutManaged) {
        m_bar->setFixedHeight(m_barHeight);
    } else {
        m_bar->setGeometry(0, 0, w, m_barHeight);
        m_panel->setGeometry(0, m_barHeight, w, qMax(0, h - m_barHeight));
    }
    m_shadowLine->setGeometry(0, m_barHeight - 1, w, 1);
    m_lightLine->setGeometry(0, m_barHeight, w, 1);
    m_shadowLine->raise();
    m_lightLine->raise();
    if (m_title) {
        const int right = m_close ? 34 : 8;
        m_title->setGeometry(8, 0, qMax(0, w - 8 - right), m_barHeight);
    }
    if (m_close) {
        const int side = qMax(12, qMin(m_barHeight - 6, 20));
        m_close->resize(side, side);
        PlaceCloseButton(m_host);
    }
    if (m_grip) {
        const int side = 14;
        m_grip->setGeometry(w - side - 1, h - side - 1, side, side);
        m_grip->raise();
    }
}

bool ThemedChrome::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_grip)
        return handleGripEvent(event);
    switch (event->type()) {
    case QEvent::Resize:
    case QEvent::Show:
        layoutFrames();
        break;
    case QEvent::MouseButtonPress:
        return handleRightPress(event);
    default:
        break;
    }
    return false;
}

bool ThemedChrome::handleGripEvent(QEvent *event)
{
    // The window system resizes where it can; without a window manager it refuses, and the
    // window follows the mouse instead (its minimum size still holds). The grip also sees
    // events that are not mouse events (a raise, a show), so the cast waits for the type check.
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
        return handleGripMouse(static_cast<QMouseEvent *>(event));
    default:
        return false;
    }
}

bool ThemedChrome::handleGripMouse(QMouseEvent *mouse)
{
    switch (mouse->type()) {
    case QEvent::MouseButtonPress:
        if (mouse->button() != Qt::LeftButton)
            return false;
        m_manualResize = !ResizeFromCorner(m_host);
        m_resizeOrigin = mouse->globalPosition().toPoint();
        m_resizeStart = m_host->size();
        return true;
    case QEvent::MouseMove:
        if (!m_manualResize || !(mouse->buttons() & Qt::LeftButton))
            return false;
        m_host->resize(m_resizeStart + QSize(mouse->globalPosition().toPoint().x() - m_resizeOrigin.x(),
                                             mouse->globalPosition().toPoint().y() - m_resizeOrigin.y()));
        return true;
    case QEvent::MouseButtonRelease:
        m_manualResize = false;
        return false;
    default:
        return false;
    }
}

bool ThemedChrome::handleRightPress(QEvent *event)
{
    auto *mouse = static_cast<QMouseEvent *>(event);
    if (mouse->button() != Qt::RightButton || !m_options.contextMenu)
        return false;
    WidgetMouseDown(m_host, mouse->button(), mouse->globalPosition().toPoint());
    return true;
}
