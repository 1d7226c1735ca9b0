#include "core/widget_index.h"

#include <array>

namespace {

struct WidgetNames
{
    const char *window;
    const char *startLoad;
    const char *display;
};

constexpr std::array<WidgetNames, WidgetCount> kNames{{
    {"falc_IDX", "Start-Load-Clock", "Alarm Clock"},
    {"fclc_IDX", "Start-Load-Calc", "Calculator"},
    {"fcln_IDX", "Start-Load-Calendar", "Calendar"},
    {"fnte_IDX", "Start-Load-Notes", "Notes"},
    {"fstw_IDX", "Start-Load-Stopwatch", "Stopwatch"},
    {"ftim_IDX", "Start-Load-Timer", "Timer"},
    {"fwbd_IDX", "Start-Load-Whiteboard", "Whiteboard"},
    {"fwth_IDX", "Start-Load-Weather", "Weather"},
}};

bool inRange(int index)
{
    return index >= 0 && index < WidgetCount;
}

} // namespace

QString WidgetWindowName(int index)
{
    return inRange(index) ? QString::fromLatin1(kNames[index].window) : QString();
}

QString WidgetStartLoadValue(int index)
{
    return inRange(index) ? QString::fromLatin1(kNames[index].startLoad) : QString();
}

QString WidgetDisplayName(int index)
{
    return inRange(index) ? QString::fromLatin1(kNames[index].display) : QString();
}

int WidgetIndexOfWindowName(const QString &windowName)
{
    for (int i = 0; i < WidgetCount; ++i) {
        if (windowName == QLatin1String(kNames[i].window))
            return i;
    }
    return WidgetNone;
}
