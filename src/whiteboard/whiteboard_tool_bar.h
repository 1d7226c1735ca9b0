#pragma once

#include "whiteboard/whiteboard_pens.h"

#include <QWidget>

class QAbstractButton;
class QButtonGroup;
class QToolButton;

// The whiteboard's tool row: the pen, highlighter, eraser and text tools, the colour swatches
// with a button for any other colour, and four line widths. Each tool keeps its own colour and
// width (WhiteboardPens); the row shows those of the tool chosen.
class WhiteboardToolBar : public QWidget
{
    Q_OBJECT
public:
    explicit WhiteboardToolBar(QWidget *parent = nullptr);

    const WhiteboardPens &pens() const { return m_pens; }
    void setTool(WhiteboardPens::Tool tool);
    void setColor(const QColor &color);
    void setWidthChoice(int choice);
    // Redraws the tool pictures in the panel's text colour.
    void setInk(const QColor &ink);

signals:
    void pensChanged();

private:
    QToolButton *addButton(const QString &name, const QString &toolTip, QButtonGroup *group, int id);
    void chooseOtherColor();
    void showPens();
    void updateIcons();

    WhiteboardPens m_pens;
    QColor m_ink = Qt::black;
    QButtonGroup *m_tools;
    QButtonGroup *m_colors;
    QButtonGroup *m_widths;
    QToolButton *m_otherColor;
};
