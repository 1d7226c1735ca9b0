#pragma once

class QWidget;

// Keeps a window's placement under SettingsRoot() + objectName() + "\Window", in twips.
void SaveWindowPlacement(QWidget *window, bool withSize);
void RestoreWindowPlacement(QWidget *window, bool withSize);
