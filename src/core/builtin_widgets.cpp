#include "core/builtin_widgets.h"

#include "calculator/calculator_widget.h"
#include "core/widget_index.h"
#include "core/widget_registry.h"

void RegisterBuiltInWidgets()
{
    WidgetRegistry &registry = WidgetRegistry::instance();
    registry.registerWidget(WidgetCalculator, [] { return new CalculatorWidget; });
}
