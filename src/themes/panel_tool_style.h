#pragma once

#include <QString>

#include <functional>

class QColor;
class QLabel;
class QToolButton;
class QVBoxLayout;
class QWidget;

// A flat command button ("New", "Save") added to the layout of `row`, a row of such buttons on
// a painted panel, that runs `action` when clicked: reached with Tab but not taking the focus
// from the page when clicked.
QToolButton *AddPanelCommand(QWidget *row, const QString &name, const QString &caption,
                             const QString &toolTip, const std::function<void()> &action);

// Gives the tools under `panel` the program's look for tools on a painted panel (ProgramStyle):
// flat buttons tinted with the panel's text colour under the mouse and when switched on, so
// they read on light and dark themes alike; tabs tinted the same way, the chosen one in the
// colours of the page it fronts.
void PreparePanelTools(QWidget *panel);

// The theme of a window whose panel holds such tools (the notes editor, the whiteboard, the
// calendar): its bar title in the bar's font, bold, and the panel's tools and labels in the
// panel's text colour, which it returns for the window's own controls.
QColor ApplyPanelToolTheme(QLabel *title, QWidget *panel);

// The frame of such a window. The bar's title, "lblTITLE", lets presses through so that the bar
// drags the window; it sits at the bar's left, centred in its height. The panel's column holds
// the rows from the top, the first being `commands`.
QLabel *AddBarTitle(QWidget *bar, const QString &text = QString());
void PlaceBarTitle(QLabel *title, int barHeight);
QVBoxLayout *AddPanelColumn(QWidget *panel, QWidget *commands);
