#pragma once

#include <QString>

// The line spacing list of the notes editor's format bar. A spacing is a multiple of single
// line spacing, carried as text with a full stop as decimal point ("1.15").

struct LineSpacingPreset
{
    const char *entry; // the text of the list entry, as shown
    const char *value; // the multiple it stands for; empty for the custom entry
};

// In the order the list shows them; the last one takes the value typed in cboLINCUST.
inline constexpr LineSpacingPreset kLineSpacingPresets[] = {
    {"Single Spacing", "1"},
    {"1.15 Spacing", "1.15"},
    {"1.25 Spacing", "1.25"},
    {"One-and-a-half Spacing", "1.5"},
    {"Double Spacing", "2"},
    {"Custom Spacing", ""},
};
inline constexpr int kCustomLineSpacingIndex = 5;

inline constexpr double kSmallestLineSpacing = 0.5;
inline constexpr double kLargestLineSpacing = 5.0;

// The index of the preset whose value is `valueText` (compared as text: "1.15"), or
// kCustomLineSpacingIndex when none has it.
int LineSpacingPresetIndex(const QString &valueText);

// A multiple as the list carries it: at most two decimals, a full stop, no trailing zeros
// ("1.15", "1.5", "2").
QString FormatLineSpacing(double multiple);

struct LineSpacingInput
{
    bool accepted = false;
    double multiple = 1.0;
    QString reason; // why it was refused, for the user
};

// A spacing typed by the user: "1.3" or "1,3", between 0.5 and 5.
LineSpacingInput ParseLineSpacing(const QString &typed);
