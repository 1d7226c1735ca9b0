#pragma once

#include "time/clock_settings.h"

#include <QDateTime>
#include <QLocale>
#include <QObject>
#include <QString>

// What the clock widget shows, worked out from ClockSource::now() and the clock settings.
// The window's 55 ms timer calls refresh(). A tick within the second already shown, with no
// setting written since, ends at once: nothing is read, formatted or allocated. Signals fire
// only when something changed, so an idle clock repaints once a second at most.
class ClockModel : public QObject
{
    Q_OBJECT
public:
    struct Display
    {
        QString panel; // lblPANECLOCK
        QString secs;  // lblSECS (modern style only, else empty)
        QString style; // lblSTYLE (modern style only, else empty)
        QString date;  // lblBARDATE
        bool operator==(const Display &) const = default;
    };

    explicit ClockModel(QObject *parent = nullptr);

    // Hours as the clock shows them. 24-hour: two digits, and midnight's hour reads "12", not
    // "00". 12-hour: no leading zero, 12, 1 ... 11 twice a day.
    static QString hourText(const QTime &time, bool hour24);
    // The classic style's text after the hours: ":nn:ss ampm", ":nn:ss", ":nn ampm" or ":nn".
    static QString classicSuffix(bool secsShow, bool ampmShow);
    // Every text the modern clock's seconds show in a minute, in the locale's digits.
    static QStringList secondsTexts(const QLocale &locale);
    static Display compose(const QDateTime &moment, const ClockSettings &settings,
                           const QLocale &locale = QLocale());

    // One tick: in a new second, or after a settings write, recomputes the texts (reading the
    // settings again after a write and once a minute), then signals what changed.
    void refresh();

    const Display &display() const { return m_display; }
    const ClockSettings &settings() const { return m_settings; }

signals:
    void displayChanged();
    // The settings changed since the last refresh: the window lays itself out again.
    void settingsChanged();

private:
    static Display composeTime(const QDateTime &moment, const ClockSettings &settings, const QLocale &locale);
    static QString dateText(const QDateTime &moment, const ClockSettings &settings, const QLocale &locale);
    void recompute(bool rereadSettings);

    Display m_display;
    ClockSettings m_settings;
    bool m_loaded = false;
    qint64 m_second = 0;
    QDate m_dateOf;     // the day m_dateText was formatted for
    QString m_dateText;
    quint64 m_settingsWrites = 0;
};
