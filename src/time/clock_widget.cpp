#include "time/clock_widget.h"

#include "core/clickable_label.h"
#include "core/painted_accessible.h"
#include "core/widget_frame.h"
#include "core/widget_index.h"
#include "themes/painted_frame.h"
#include "time/alarm_dialog.h"
#include "time/alarm_preset.h"
#include "time/alarm_scheduler.h"
#include "time/clock_model.h"
#include "time/clock_settings_dialog.h"
#include "time/font_fit.h"
#include "time/hover_check.h"
#include "time/ticking_label.h"

#include <QFontMetricsF>
#include <QLabel>
#include <QTimer>
#include <cmath>

namespace {
constexpr int kClockInterval = 55;
constexpr int kMargin = 6;
// The seconds and am/pm labels beside the modern time, relative to the time's font.
constexpr double kSideScale = 0.36;
// How long after a new font the seconds' texts are laid out: past the start, whose work they
// would only lengthen.
constexpr int kPrepareSecondsMs = 2000;

TickingLabel *panelLabel(const QString &name, QWidget *parent)
{
    auto *label = new TickingLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setAttribute(Qt::WA_TransparentForMouseEvents); // the panel drags the window
    return label;
}

// The time's labels are placed by hand and take a new text every second. At a fixed size a
// new text cannot change what the label asks for, so Qt does not post its window a request to
// lay itself out again: one event and one wake-up fewer each second, all day.
void place(QWidget *label, const QRect &rect)
{
    label->setFixedSize(rect.size());
    label->move(rect.topLeft());
}
} // namespace

ClockWidget::ClockWidget(QWidget *parent)
    : WidgetWindow(WidgetWindowName(WidgetClock), WidgetClock, tr("Vantora Alarm Clock"), parent),
      m_model(new ClockModel(this))
{
    m_time = panelLabel(QStringLiteral("lblPANECLOCK"), panel());
    m_secs = panelLabel(QStringLiteral("lblSECS"), panel());
    m_style = panelLabel(QStringLiteral("lblSTYLE"), panel());
    m_date = new QLabel(bar());
    m_date->setObjectName(QStringLiteral("lblBARDATE"));
    m_date->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_date->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_alarm = new ClickableLabel(QStringLiteral("lblALARM"), tr(" Alarm "), bar());
    m_alarm->setToolTip(tr("Set the alarms"));
    PaintedAccessible::makeLiveValue(m_time, tr("Time"));
    PaintedAccessible::makeLiveValue(m_secs, tr("Seconds"));
    PaintedAccessible::makeLiveValue(m_style, tr("Time of day"));
    PaintedAccessible::makeLiveValue(m_date, tr("Date"));
    m_settings = new ClickableLabel(QStringLiteral("lblSETTINGS"), tr(" Settings "), bar());
    m_settings->setToolTip(tr("Clock settings"));
    for (ClickableLabel *b : {m_alarm, m_settings})
        b->setAlignment(Qt::AlignCenter);

    m_clockTimer = new QTimer(this);
    m_clockTimer->setObjectName(QStringLiteral("tmrCLOCK"));
    m_clockTimer->setInterval(kClockInterval);
    m_barHover = new HoverCheck(this, QStringLiteral("tmrBAR"), {m_alarm, m_settings});

    connect(m_clockTimer, &QTimer::timeout, m_model, &ClockModel::refresh);
    connect(m_model, &ClockModel::displayChanged, this, &ClockWidget::showDisplay);
    connect(m_model, &ClockModel::settingsChanged, this, &ClockWidget::relayout);
    connect(m_alarm, &ClickableLabel::clicked, this, &ClockWidget::openAlarmDialog);
    connect(m_settings, &ClickableLabel::clicked, this, &ClockWidget::openSettingsDialog);

    m_model->refresh();
}

void ClockWidget::openSettingsDialog()
{
    auto *dialog = ClockSettingsDialog::showSingle();
    // Show the new choices at once rather than at the next tick.
    connect(dialog, &QDialog::finished, m_model, &ClockModel::refresh, Qt::UniqueConnection);
}

void ClockWidget::openAlarmDialog()
{
    auto *dialog = AlarmDialog::showSingle();
    connect(dialog, &QDialog::finished, this, &ClockWidget::describeAlarms, Qt::UniqueConnection);
}

void ClockWidget::describeAlarms()
{
    QStringList times;
    for (int i = 0; i < AlarmScheduler::PresetCount; ++i) {
        const AlarmPreset preset = AlarmPreset::load(i);
        if (preset.armed)
            times.append(preset.time);
    }
    const QString state = times.isEmpty() ? tr("No alarm is set")
                                          : tr("Alarms set for %1").arg(times.join(QStringLiteral(", ")));
    if (m_alarm->accessibleDescription() != state)
        m_alarm->setAccessibleDescription(state);
}

void ClockWidget::setTextIfChanged(QLabel *label, const QString &text)
{
    if (label->text() != text)
        label->setText(text);
}

QString ClockWidget::layoutKey() const
{
    const ClockModel::Display &d = m_model->display();
    QString key = d.panel + QLatin1Char('|') + d.style;
    for (QChar &c : key) {
        if (c.isDigit())
            c = QLatin1Char('0');
    }
    return key + QLatin1Char('|') + QString::number(width()) + QLatin1Char('x') + QString::number(height());
}

void ClockWidget::showDisplay()
{
    const ClockModel::Display &d = m_model->display();
    if (d.date != m_fullDate) {
        m_fullDate = d.date;
        layoutBar();
    }
    if (layoutKey() != m_laidOutFor) {
        relayout(); // sets the texts too
        return;
    }
    setTextIfChanged(m_time, d.panel);
    setTextIfChanged(m_secs, d.secs);
    setTextIfChanged(m_style, d.style);
}

void ClockWidget::relayout()
{
    if (!m_time)
        return; // a resize before this window's own controls exist
    const ClockModel::Display &d = m_model->display();
    setTextIfChanged(m_time, d.panel);
    setTextIfChanged(m_secs, d.secs);
    setTextIfChanged(m_style, d.style);
    m_fullDate = d.date;
    layoutBar();

    const QRect area = panel()->rect().adjusted(kMargin, kMargin / 2, -kMargin, -kMargin);
    const bool modern = m_model->settings().modern;
    m_secs->setVisible(modern);
    m_style->setVisible(modern);
    if (modern)
        layoutModern(area);
    else
        layoutClassic(area);
    m_laidOutFor = layoutKey();
}

QSize ClockWidget::minimumUsableSize() const
{
    // Alarm and Settings beside the close button with a few characters of the date before
    // them (the rest is elided), and a time about 24 px high.
    QFont barFont = m_date->font();
    barFont.setPixelSize(qMax(9, barHeight() / 2));
    const QFontMetrics fm(barFont);
    const int buttons = fm.horizontalAdvance(m_alarm->text()) + fm.horizontalAdvance(m_settings->text()) + 8;
    const int someDate = fm.horizontalAdvance(QStringLiteral("Wednesday,"));
    return QSize(qMax(200, 8 + someDate + 4 + buttons + 34), barHeight() + 44);
}

void ClockWidget::layoutBar()
{
    const int h = barHeight();
    QFont barFont = m_date->font();
    barFont.setPixelSize(qMax(9, h / 2));
    for (QLabel *label :
         {static_cast<QLabel *>(m_date), static_cast<QLabel *>(m_alarm), static_cast<QLabel *>(m_settings)}) {
        if (label->font() != barFont)
            label->setFont(barFont);
    }
    const QFontMetrics fm(barFont);
    const int closeRoom = 34;
    int right = width() - closeRoom;
    for (ClickableLabel *b : {m_settings, m_alarm}) {
        const int w = fm.horizontalAdvance(b->text()) + 4;
        right -= w;
        b->setGeometry(right, 0, w, h);
    }
    const int dateWidth = qMax(0, right - 8 - 4);
    m_date->setGeometry(8, 0, dateWidth, h);
    // A date too long for the bar is cut with an ellipsis; the whole of it is in the tip.
    setTextIfChanged(m_date, fm.elidedText(m_fullDate, Qt::ElideRight, dateWidth));
    m_date->setToolTip(m_date->text() == m_fullDate ? QString() : m_fullDate);
}

void ClockWidget::layoutModern(const QRect &area)
{
    const QFont base = m_time->font();
    const QString main = FontFit::widestDigits(base, m_time->text());
    const QString side = FontFit::widestDigits(base, QStringLiteral("00"));
    const QString style = m_style->text();
    auto sideWidth = [&](const QFontMetricsF &fm) {
        return qMax(fm.horizontalAdvance(side), fm.horizontalAdvance(style));
    };
    const int size = FontFit::largestPixelSize([&](int px) {
        const QFontMetricsF fm(FontFit::withPixelSize(base, px));
        const QFontMetricsF sfm(FontFit::withPixelSize(base, qMax(6, int(px * kSideScale))));
        const double w = fm.horizontalAdvance(main) + px * 0.08 + sideWidth(sfm);
        return FontFit::usage(w, fm.height(), area.width(), area.height());
    });
    const QFont mainFont = FontFit::withPixelSize(base, size);
    const QFont sideFont = FontFit::withPixelSize(base, qMax(6, int(size * kSideScale)));
    const QFontMetricsF fm(mainFont);
    const QFontMetricsF sfm(sideFont);
    const int mainWidth = int(std::ceil(fm.horizontalAdvance(main)));
    const int gap = int(size * 0.08);
    const int columnWidth = int(std::ceil(sideWidth(sfm)));
    const int left = area.left() + qMax(0, (area.width() - mainWidth - gap - columnWidth) / 2);
    const int top = area.top() + qMax(0, int(area.height() - fm.height()) / 2);

    m_time->setFont(mainFont);
    m_time->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    place(m_time, QRect(left, top, mainWidth + 1, int(std::ceil(fm.height()))));
    // am/pm level with the top of the digits, seconds standing on their baseline.
    const int column = left + mainWidth + gap;
    const double baseline = top + fm.ascent();
    const double digitTop = baseline - fm.capHeight();
    m_style->setFont(sideFont);
    m_secs->setFont(sideFont);
    prepareSeconds();
    const int sideHeight = int(std::ceil(sfm.height()));
    place(m_style, QRect(column, int(digitTop - (sfm.ascent() - sfm.capHeight())), columnWidth + 1, sideHeight));
    place(m_secs, QRect(column, int(baseline - sfm.ascent()), columnWidth + 1, sideHeight));
}

void ClockWidget::prepareSeconds()
{
    // Once a second the seconds label shows a text it may not have laid out yet; through the
    // first minute in a font, each one would be laid out in a repaint that runs cold.
    if (m_secondsQueued)
        return;
    m_secondsQueued = true;
    QTimer::singleShot(kPrepareSecondsMs, this, [this] {
        m_secondsQueued = false;
        m_secs->prepareTexts(ClockModel::secondsTexts(QLocale()));
    });
}

void ClockWidget::layoutClassic(const QRect &area)
{
    // The classic time ends in a blank. Fit and centre what shows; the blank hangs past the
    // right edge of the area, where it takes no room.
    const QString text = m_time->text();
    QString shown = text;
    while (shown.endsWith(QLatin1Char(' ')))
        shown.chop(1);
    const QFont base = m_time->font();
    const QFont font =
        FontFit::fitting(base, FontFit::widestDigits(base, shown), area.width(), area.height());
    const int blank = QFontMetrics(font).horizontalAdvance(text.mid(shown.size()));
    m_time->setFont(font);
    m_time->setAlignment(Qt::AlignCenter);
    place(m_time, area.adjusted(0, 0, blank, 0));
}

void ClockWidget::showEvent(QShowEvent *event)
{
    WidgetWindow::showEvent(event);
    describeAlarms();
    m_model->refresh();
    m_clockTimer->start();
}

void ClockWidget::hideEvent(QHideEvent *event)
{
    m_clockTimer->stop();
    m_barHover->stop();
    WidgetWindow::hideEvent(event);
}

void ClockWidget::enterEvent(QEnterEvent *event)
{
    m_barHover->start();
    WidgetWindow::enterEvent(event);
}
