#pragma once

#include <QString>

// Numbers every widget the same way everywhere: the dashboard's selection (IndxSel), the
// first-run choice, the wizard's option buttons and the start-load flags.
enum WidgetIndex : int {
    WidgetNone = -1, // no choice made yet (first run)
    WidgetClock = 0,
    WidgetCalculator = 1,
    WidgetCalendar = 2,
    WidgetNotes = 3,
    WidgetStopwatch = 4,
    WidgetTimer = 5,
    WidgetWhiteboard = 6,
    WidgetWeather = 7,
    WidgetAll = 8, // all widgets, through the dashboard
};

constexpr int WidgetCount = 8; // indexes 0 to 7 are real widgets

// The window (and settings key) name of widget 0..7: "falc_IDX", "fclc_IDX", ...
QString WidgetWindowName(int index);
// The start-load value under "mdb_SET\Details": "Start-Load-Clock", ...
QString WidgetStartLoadValue(int index);
// The name shown to the user: "Alarm Clock", "Calculator", ...
QString WidgetDisplayName(int index);
// Index of a widget window name, or WidgetNone.
int WidgetIndexOfWindowName(const QString &windowName);
