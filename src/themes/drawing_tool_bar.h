#pragma once

#include "core/drawing/drawing_pens.h"

#include <QWidget>

class QAbstractButton;
class QButtonGroup;
class QToolButton;

// A drawing window's tool row: its tools (pen, highlighter, eraser, text, pointer: those the
// window offers), the colour swatches with a button for any other colour, and four line widths.
// Each tool keeps its own colour and width (DrawingPens, kept under `window`); the row shows
// those of the tool chosen.
class DrawingToolBar : public QWidget
{
    Q_OBJECT
public:
    DrawingToolBar(const QString &window, const QList<DrawingPens::Tool> &tools, QWidget *parent = nullptr);

    const DrawingPens &pens() const { return m_pens; }
    void setTool(DrawingPens::Tool tool);
    void setColor(const QColor &color);
    void setWidthChoice(int choice);
    // Redraws the tool pictures in the panel's text colour.
    void setInk(const QColor &ink);

signals:
    void pensChanged();

private:
    void addToolButton(DrawingPens::Tool tool);
    QToolButton *addButton(const QString &name, const QString &toolTip, QButtonGroup *group, int id);
    void chooseOtherColor();
    void showPens();
    void updateIcons();

    DrawingPens m_pens;
    QColor m_ink = Qt::black;
    QButtonGroup *m_tools;
    QButtonGroup *m_colors;
    QButtonGroup *m_widths;
    QToolButton *m_otherColor;
};
