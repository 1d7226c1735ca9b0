#pragma once

#include "themes/theme.h"

// The two themes the preset saver alternates between; they differ in every value.
inline Theme FirstSavedTheme()
{
    return Theme();
}

inline Theme SecondSavedTheme()
{
    Theme t;
    t.MainColor = 0x00123456;
    t.MainOpacity = 77;
    t.MainContrast = 12;
    t.PanelFont = QStringLiteral("A rather long font family name that makes the file larger");
    t.PanelAngle = 45;
    t.PanelColor = 0x00ABCDEF;
    t.BarFont = QStringLiteral("Another long font family name, for the same reason");
    t.BarAngle = 270;
    t.BarColor = 0x80000005u;
    return t;
}
