#pragma once

#include <QString>

class QColor;
class QPalette;

// The style of tool buttons and tabs on a painted panel (the notes editor, the whiteboard): flat, tinted
// with the panel's text colour `text` under the mouse and when switched on, so they read on
// light and dark themes alike. The chosen tab takes the colours of `page`, so it reads as the
// front of that page.
QString PanelToolStyleSheet(const QColor &text, const QPalette &page);
