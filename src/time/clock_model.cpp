#include "time/clock_model.h"

#include "core/clock_source.h"
#include "core/settings_store.h"
#include "time/date_time_formatter.h"

ClockModel::ClockModel(QObject *parent) : QObject(parent) {}

QString ClockModel::hourText(const QTime &time, bool hour24)
{
    int h = time.hour();
    if (hour24) {
        if (h == 0)
            h = 12;
        return QString::number(h).rightJustified(2, QLatin1Char('0'));
    }
    h = time.hour() - 12;
    if (h < 1)
        h = time.hour();
    if (h == 0)
        h = 12;
    return QString::number(h);
}

QString ClockModel::classicSuffix(bool secsShow, bool ampmShow)
{
    QString suffix = QStringLiteral(":nn");
    if (secsShow)
        suffix += QStringLiteral(":ss");
    if (ampmShow)
        suffix += QStringLiteral(" ampm");
    return suffix;
}

QStringList ClockModel::secondsTexts(const QLocale &locale)
{
    QStringList texts;
    const QDate day(2000, 1, 1);
    for (int second = 0; second < 60; ++second)
        texts << DateTimeFormatter::format(QDateTime(day, QTime(0, 0, second)), QStringLiteral("ss"), locale);
    return texts;
}

ClockModel::Display ClockModel::compose(const QDateTime &moment, const ClockSettings &settings,
                                        const QLocale &locale)
{
    Display d = composeTime(moment, settings, locale);
    d.date = dateText(moment, settings, locale);
    return d;
}

ClockModel::Display ClockModel::composeTime(const QDateTime &moment, const ClockSettings &settings,
                                            const QLocale &locale)
{
    Display d;
    const QString hours = hourText(moment.time(), settings.hour24);
    if (settings.modern) {
        d.panel = hours + DateTimeFormatter::format(moment, QStringLiteral(":nn"), locale);
        d.secs = DateTimeFormatter::format(moment, QStringLiteral("ss"), locale);
        d.style = DateTimeFormatter::format(moment, QStringLiteral("ampm"), locale);
    } else {
        const QString suffix = classicSuffix(settings.secsShow, settings.ampmShow);
        d.panel = hours + DateTimeFormatter::format(moment, suffix, locale) + QLatin1Char(' ');
    }
    return d;
}

QString ClockModel::dateText(const QDateTime &moment, const ClockSettings &settings, const QLocale &locale)
{
    return settings.dateDefault ? locale.toString(moment.date(), QLocale::LongFormat)
                                : DateTimeFormatter::format(moment, settings.dateCustom, locale);
}

void ClockModel::refresh()
{
    const qint64 second = ClockSource::currentSecond();
    const bool written = SettingsWriteCount() != m_settingsWrites;
    if (m_loaded && second == m_second && !written)
        return;
    // The settings are read again after any write (the settings dialog's shows at the next
    // tick) and once a minute, which is when a hand edit of the settings file shows.
    const bool reread = !m_loaded || written || second / 60 != m_second / 60;
    m_second = second;
    recompute(reread);
}

void ClockModel::recompute(bool rereadSettings)
{
    bool settingsMoved = false;
    if (rereadSettings) {
        const ClockSettings settings = ClockSettings::load();
        // Taken after the reads: the first read of a run opens the store, which counts.
        m_settingsWrites = SettingsWriteCount();
        settingsMoved = !m_loaded || !(settings == m_settings);
        m_settings = settings;
        m_loaded = true;
    }

    const QDateTime moment = ClockSource::now();
    const QLocale locale;
    Display display = composeTime(moment, m_settings, locale);
    // The long date asks the system locale for its names, the dearest part of a tick, and it
    // changes only with the day. A date of the user's own format may show the time, so it is
    // formatted every second.
    if (settingsMoved || !m_settings.dateDefault || moment.date() != m_dateOf) {
        m_dateText = dateText(moment, m_settings, locale);
        m_dateOf = moment.date();
    }
    display.date = m_dateText;
    const bool displayMoved = !(display == m_display);
    m_display = display;

    if (settingsMoved)
        emit settingsChanged();
    if (displayMoved)
        emit displayChanged();
}
