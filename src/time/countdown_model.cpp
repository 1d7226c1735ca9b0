#include "time/countdown_model.h"

#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "themes/message_box.h"

namespace {
const char *const kValueNames[3] = {"Timer-Interval-hrs", "Timer-Interval-mins", "Timer-Interval-secs"};
const char *const kDefaults[3] = {"00", "02", "00"};
constexpr int kEndMessage = 4; // "Time Has Now Ended"

const QString kStart = QStringLiteral(" Start ");
const QString kStop = QStringLiteral(" Stop ");
const QString kPause = QStringLiteral(" Pause ");
const QString kResume = QStringLiteral(" Resume ");
const QString kReset = QStringLiteral(" Reset ");

// The whole number a text starts with (after blanks), 0 when it starts with no digit.
qint64 leadingNumber(const QString &text)
{
    const QString t = text.trimmed();
    int end = 0;
    while (end < t.size() && t.at(end).isDigit())
        ++end;
    return t.left(end).toLongLong();
}

QString twoDigits(qint64 value)
{
    return QString::number(value).rightJustified(2, QLatin1Char('0'));
}
} // namespace

CountdownModel::CountdownModel(QObject *parent) : QObject(parent)
{
    for (int f = 0; f < 3; ++f) {
        m_set[f] = QLatin1String(kDefaults[f]);
        m_running[f] = m_set[f];
    }
}

void CountdownModel::load()
{
    for (int f = 0; f < 3; ++f)
        m_set[f] = ReadDetail(windowName(), QLatin1String(kValueNames[f]), QLatin1String(kDefaults[f]));
    reloadRunning();
}

void CountdownModel::setSetField(Field field, const QString &text)
{
    m_set[field] = text;
    WriteDetail(windowName(), QLatin1String(kValueNames[field]), text);
    if (!m_counting && m_startCaption == kStart)
        reloadRunning();
}

void CountdownModel::setRunningField(Field field, const QString &text)
{
    m_running[field] = text;
    emit fieldsChanged();
}

qint64 CountdownModel::runningNumber() const
{
    return leadingNumber(m_running[Hours] + m_running[Minutes] + m_running[Seconds]);
}

void CountdownModel::tick()
{
    if (!m_counting || m_finishing)
        return;
    qint64 h = leadingNumber(m_running[Hours]);
    qint64 m = leadingNumber(m_running[Minutes]);
    qint64 s = leadingNumber(m_running[Seconds]);
    if (h == 0 && m == 0 && s == 0) {
        finish();
        return;
    }
    if (s == 0) {
        s = 60;
        // The minute routine, borrowing an hour when the minutes are used up.
        if (m == 0 && h != 0) {
            m = 60;
            h -= 1;
        }
        m -= 1;
    }
    s -= 1;
    setRunning(h, m, s);
}

void CountdownModel::finish()
{
    // The end message is modal and this runs from the timer; the guard keeps a tick that
    // arrives while the message is up from ringing and asking a second time.
    m_finishing = true;
    PlayBuiltInSound(QStringLiteral("BELL"));
    ShowInfoMessage(kEndMessage, QString(), m_messageOwner);
    setCaptions(QStringLiteral(" Start"), QStringLiteral(" Stop"));
    clickStop(); // halts the count
    clickStop(); // restores the set time and the idle captions
    m_finishing = false;
}

void CountdownModel::clickStart()
{
    if (runningNumber() <= 0)
        return;
    if (m_startCaption == kStart || m_startCaption == QLatin1String("Resume ")) {
        setCaptions(kPause, kStop);
        setCounting(true);
    } else {
        setCaptions(kResume, kReset);
        setCounting(false);
    }
}

void CountdownModel::clickStop()
{
    if (m_counting) {
        setCounting(false);
        setCaptions(kResume, kReset);
    } else {
        setCaptions(kStart, kStop);
        reloadRunning();
    }
}

void CountdownModel::setCounting(bool counting)
{
    if (counting == m_counting)
        return;
    m_counting = counting;
    emit countingChanged(m_counting);
}

void CountdownModel::setCaptions(const QString &start, const QString &stop)
{
    if (start == m_startCaption && stop == m_stopCaption)
        return;
    m_startCaption = start;
    m_stopCaption = stop;
    emit buttonsChanged();
}

void CountdownModel::setRunning(qint64 hours, qint64 minutes, qint64 seconds)
{
    m_running[Hours] = twoDigits(hours);
    m_running[Minutes] = twoDigits(minutes);
    m_running[Seconds] = twoDigits(seconds);
    emit fieldsChanged();
}

void CountdownModel::reloadRunning()
{
    setRunning(leadingNumber(m_set[Hours]), leadingNumber(m_set[Minutes]), leadingNumber(m_set[Seconds]));
}
