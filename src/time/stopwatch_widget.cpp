#include "time/stopwatch_widget.h"

#include "core/clickable_label.h"
#include "core/painted_accessible.h"
#include "core/widget_index.h"
#include "themes/painted_frame.h"
#include "time/font_fit.h"
#include "time/hover_check.h"
#include "time/stopwatch_model.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLabel>
#include <QTimer>

namespace {
constexpr int kTickInterval = 100;
constexpr int kMargin = 6;
} // namespace

StopwatchWidget::StopwatchWidget(QWidget *parent)
    : WidgetWindow(WidgetWindowName(WidgetStopwatch), WidgetStopwatch, tr("Vantora Stopwatch"), parent),
      m_model(new StopwatchModel(this))
{
    m_display = new QLabel(panel());
    PaintedAccessible::makeLiveValue(m_display, tr("Time"));
    m_display->setText(m_model->text());
    m_display->setObjectName(QStringLiteral("lblTIME"));
    m_display->setAlignment(Qt::AlignCenter);
    m_display->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_start = new ClickableLabel(QStringLiteral("lblSTART"), m_model->startCaption(), bar());
    m_stop = new ClickableLabel(QStringLiteral("lblSTOP"), m_model->stopCaption(), bar());

    m_countTimer = new QTimer(this);
    m_countTimer->setObjectName(QStringLiteral("tmrSTOPWATCH"));
    m_countTimer->setInterval(kTickInterval);
    m_panelHover = new HoverCheck(this, QStringLiteral("tmrPANEL"), {m_start, m_stop});

    connect(m_countTimer, &QTimer::timeout, m_model, &StopwatchModel::tick);
    connect(m_model, &StopwatchModel::textChanged, this, &StopwatchWidget::showText);
    connect(m_model, &StopwatchModel::buttonsChanged, this, &StopwatchWidget::showButtons);
    connect(m_model, &StopwatchModel::runningChanged, this, &StopwatchWidget::setRunning);
    connect(m_start, &ClickableLabel::clicked, m_model, &StopwatchModel::clickStart);
    connect(m_stop, &ClickableLabel::clicked, m_model, &StopwatchModel::clickStop);
}

void StopwatchWidget::showText(const QString &text)
{
    if (m_display->text() == text)
        return;
    m_display->setText(text);
    if (text.size() != m_laidOutLength)
        relayout(); // a third minute digit needs a smaller font
}

void StopwatchWidget::showButtons()
{
    if (m_start->text() != m_model->startCaption())
        m_start->setText(m_model->startCaption());
    if (m_stop->text() != m_model->stopCaption())
        m_stop->setText(m_model->stopCaption());
    m_stop->setActive(m_model->stopEnabled());
    relayout();
}

void StopwatchWidget::setRunning(bool running)
{
    if (running)
        m_countTimer->start();
    else
        m_countTimer->stop();
}

void StopwatchWidget::relayout()
{
    if (!m_display)
        return; // a resize before this window's own controls exist
    const int h = barHeight();
    QFont barFont = m_start->font();
    barFont.setPixelSize(qMax(9, h / 2));
    const QFontMetrics fm(barFont);
    int x = 6;
    for (ClickableLabel *b : {m_start, m_stop}) {
        if (b->font() != barFont)
            b->setFont(barFont);
        const int w = fm.horizontalAdvance(b->text()) + 4;
        b->setGeometry(x, 0, w, h);
        x += w + 4;
    }

    const QRect area = panel()->rect().adjusted(kMargin, kMargin / 2, -kMargin, -kMargin);
    const QFont base = m_display->font();
    m_display->setFont(
        FontFit::fitting(base, FontFit::widestDigits(base, m_display->text()), area.width(), area.height()));
    m_display->setGeometry(area);
    m_laidOutLength = m_display->text().size();
}

QSize StopwatchWidget::minimumUsableSize() const
{
    // The longest pair of bar captions beside the close button, and digits about 20 px high.
    QFont barFont = m_start->font();
    barFont.setPixelSize(qMax(9, barHeight() / 2));
    const QFontMetrics fm(barFont);
    const int captions = fm.horizontalAdvance(QStringLiteral(" Resume ")) + fm.horizontalAdvance(QStringLiteral(" Reset "));
    return QSize(qMax(150, 6 + captions + 12 + 34), barHeight() + 44);
}

void StopwatchWidget::keyPressEvent(QKeyEvent *event)
{
    // Space starts, pauses and resumes, as the bar's first button does.
    if (event->key() == Qt::Key_Space && event->modifiers() == Qt::NoModifier) {
        m_model->clickStart();
        return;
    }
    WidgetWindow::keyPressEvent(event);
}

void StopwatchWidget::hideEvent(QHideEvent *event)
{
    m_panelHover->stop();
    WidgetWindow::hideEvent(event);
}

void StopwatchWidget::enterEvent(QEnterEvent *event)
{
    m_panelHover->start();
    WidgetWindow::enterEvent(event);
}
