#include "shell/builtin_widgets.h"

#include "calculator/calculator_widget.h"
#include "calendar/calendar_widget.h"
#include "core/widget_index.h"
#include "notes/notes_editor.h"
#include "shell/widget_registry.h"
#include "time/clock_widget.h"
#include "time/countdown_widget.h"
#include "time/stopwatch_widget.h"
#include "weather/weather_widget.h"
#include "whiteboard/whiteboard_widget.h"

void RegisterBuiltInWidgets()
{
    WidgetRegistry &registry = WidgetRegistry::instance();
    registry.registerWidget(WidgetClock, [] { return new ClockWidget; });
    registry.registerWidget(WidgetCalculator, [] { return new CalculatorWidget; });
    registry.registerWidget(WidgetCalendar, [] { return new CalendarWidget; });
    registry.registerTileDetail(WidgetCalendar, [] { return CalendarWidget::noteForToday(); });
    registry.registerWidget(WidgetNotes, [] { return new NotesEditor; });
    registry.registerWidget(WidgetStopwatch, [] { return new StopwatchWidget; });
    registry.registerWidget(WidgetTimer, [] { return new CountdownWidget; });
    registry.registerWidget(WidgetWhiteboard, [] { return new WhiteboardWidget; });
    registry.registerWidget(WidgetWeather, [] { return new WeatherWidget; });
}
