#pragma once

#include <QString>

class QComboBox;

// Most-recently-used lists kept in drop-down boxes: unique entries, the newest first. Stored
// as "List Total" (the number of entries n) under SettingsRoot() + name + "\Items Total", and
// "List 0" .. "List n" under SettingsRoot() + name + "\Details", where "List 0" is the box's
// current text and "List 1" .. "List n" are the entries in order, "List 1" the newest. Readers
// rely on that off-by-one layout.

// Puts `text` first in the box and makes it the current text, removing any entry equal to
// it (case counts). An empty text does nothing.
void AddRecentItem(QComboBox *list, const QString &text);

// Writes the box's entries (blanks trimmed) and its current text.
void SaveList(QComboBox *list, const QString &name);

// Adds the stored entries "List n" down to "List 1" with AddRecentItem, so they come back in
// their saved order with "List 1" as the current text; empty entries are skipped, "List 0" is
// never read. Entries already in the box stay (after the restored ones).
void RestoreList(QComboBox *list, const QString &name);

// A stored "List Total" above this is taken as damage and restores nothing.
constexpr int kLongestRecentList = 10000;
