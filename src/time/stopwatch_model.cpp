#include "time/stopwatch_model.h"

namespace {
QString twoDigits(qint64 value)
{
    return QString::number(value).rightJustified(2, QLatin1Char('0'));
}

// The whole number a text starts with (after blanks), 0 when it starts with no digit.
qint64 leadingNumber(const QString &text)
{
    const QString t = text.trimmed();
    int end = 0;
    while (end < t.size() && t.at(end).isDigit())
        ++end;
    return t.left(end).toLongLong();
}
} // namespace

StopwatchModel::StopwatchModel(QObject *parent) : QObject(parent) {}

QString StopwatchModel::advance(const QString &text)
{
    const int colon = text.indexOf(QLatin1Char(':'));
    qint64 minutes = leadingNumber(text.left(colon < 0 ? 0 : colon));
    qint64 seconds = leadingNumber(text.mid(colon + 1, 2));
    qint64 tenths = leadingNumber(text.right(2)) / 6;

    tenths += 1;
    if (tenths == 10) {
        seconds += 1;
        tenths = 0;
    }
    if (seconds == 60) {
        minutes += 1;
        seconds = 0;
    }
    return twoDigits(minutes) + QLatin1Char(':') + twoDigits(seconds) + QLatin1Char('.') +
           twoDigits(tenths * 6);
}

void StopwatchModel::tick()
{
    if (m_running)
        setText(advance(m_text));
}

void StopwatchModel::clickStart()
{
    m_running = !m_running;
    if (m_running)
        setCaptions(QStringLiteral(" Pause "), m_stopCaption);
    else
        setCaptions(QStringLiteral(" Resume "), QStringLiteral(" Reset "));
    emit runningChanged(m_running);
}

void StopwatchModel::clickStop()
{
    if (m_running)
        return;
    setText(startText());
    setCaptions(QStringLiteral(" Start "), QStringLiteral(" Stop "));
}

void StopwatchModel::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    emit textChanged(m_text);
}

void StopwatchModel::setCaptions(const QString &start, const QString &stop)
{
    m_startCaption = start;
    m_stopCaption = stop;
    emit buttonsChanged();
}
