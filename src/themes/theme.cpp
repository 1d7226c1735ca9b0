// Placeholder until the theme module lands.
#include "themes/theme.h"

namespace {
Theme g_theme;
}

const Theme &CurrentTheme()
{
    return g_theme;
}

void SetCurrentTheme(const Theme &theme)
{
    g_theme = theme;
    emit ThemeNotifier::instance()->themeChanged();
}

void LoadThemeFromRegistry() {}
void SaveThemeToRegistry() {}

ThemeNotifier *ThemeNotifier::instance()
{
    static ThemeNotifier notifier;
    return &notifier;
}
