#include "core/builtin_widgets.h"

#include "core/widget_registry.h"

void RegisterBuiltInWidgets()
{
    [[maybe_unused]] WidgetRegistry &registry = WidgetRegistry::instance();
}
