#pragma once

// Registers every widget this build has with the WidgetRegistry. Called once at start-up,
// before anything opens a widget.
void RegisterBuiltInWidgets();
