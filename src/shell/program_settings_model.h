#pragma once

#include <QString>
#include <QStringList>
#include <functional>

// The program-wide preferences behind the settings dialog (mdb_SET): start with the system,
// how the dashboard minimises and closes, keep-on-top and the webcam viewer's refresh.
class ProgramSettingsModel
{
public:
    struct Values
    {
        bool launchWithSystem = true;                       // "Program Launch"
        bool minimizeOnStart = false;                       // "Program Minimize on Start"
        bool windowMinimize = false;                        // "Window Minimize"
        bool minimizeOnClose = true;                        // "Program Minimize on Close"
        bool onTop = false;                                 // "On-Top"
        QString timerInterval = QStringLiteral("1 Minute"); // "Timer-Interval" (mdb_WCM)
        bool playLast = false;                              // "Play-Last" (mdb_WCM)

        bool operator==(const Values &) const = default;
    };

    // Where OK sends each value: the window key ("mdb_SET" or "mdb_WCM"), the value name and its
    // text. Tests replace it to see the order of the writes.
    using Writer = std::function<void(const QString &window, const QString &name, const QString &data)>;

    // The five interval captions, in the order the list shows them.
    static QStringList intervalCaptions();
    // Seconds for an interval caption; an unknown caption counts as one minute.
    static int intervalSeconds(const QString &caption);

    // Every value read with its default. An unknown interval caption reads as "1 Minute".
    static Values load();
    // The state "Default Settings" gives the check boxes; the interval is left as it is.
    static Values withDefaultChecks(const Values &current);
    // Writes the values in the order the program has always used, sets the program-wide
    // webcam interval and applies the start-with-the-system entry.
    static void save(const Values &values, const Writer &writer = {});
    // Stores "Program Launch" alone and makes the autostart entry match it (the wizard's box).
    static void setLaunchWithSystem(bool on);

    // The webcam viewer's refresh interval in seconds, kept for the whole run.
    static int webcamIntervalSeconds();
    static void setWebcamIntervalSeconds(int seconds);
};
