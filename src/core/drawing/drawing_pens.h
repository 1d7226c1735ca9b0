#pragma once

#include "core/drawing/ink_pen.h"

#include <QColor>
#include <QList>
#include <QString>

// A drawing window's tools and what each one draws with. The pen, the highlighter and the
// eraser each keep their own width (and the pen and highlighter their own colour), so going
// from writing to highlighting and back does not lose either; the text tool writes in the pen's
// colour, the pointer draws nothing. Kept under "<window>\Details" of the window that offers
// the tools.
class DrawingPens
{
public:
    enum Tool
    {
        Pen,
        Highlighter,
        Eraser,
        Text,
        Pointer, // chooses and moves things instead of drawing
    };

    struct NamedColor
    {
        QString name;
        QColor color;
    };

    // The colours offered as swatches, in order.
    static const QList<NamedColor> &palette();
    // The four widths offered for a tool, in device-independent pixels, finest first.
    static QList<qreal> widths(Tool tool);
    static constexpr int kWidthChoices = 4;

    // The tools of `window`'s tool row, in order; the first is chosen until another is.
    DrawingPens(const QString &window, const QList<Tool> &tools);

    const QList<Tool> &tools() const { return m_tools; }
    Tool tool() const { return m_tool; }
    // Ignored for a tool the window does not offer.
    void setTool(Tool tool);
    // The colour of the current tool (the pen's for the text tool; the eraser has none).
    QColor color() const;
    void setColor(const QColor &color);
    bool hasColor() const { return m_tool != Eraser && m_tool != Pointer; }
    // Which of the four widths the current tool draws with (the pen's for the text tool).
    int widthChoice() const;
    void setWidthChoice(int choice);

    // What the current tool draws with on a layer of `layerScale` layer pixels per
    // device-independent pixel.
    InkPen pen(qreal layerScale) const;

    // The choices last saved for `window`.
    static DrawingPens load(const QString &window, const QList<Tool> &tools);
    void save() const;

private:
    Tool drawingTool() const { return m_tool == Text || m_tool == Pointer ? Pen : m_tool; }

    QString m_window;
    QList<Tool> m_tools;
    Tool m_tool;
    QColor m_penColor = palette().first().color;
    QColor m_highlighterColor = QColor(255, 230, 0);
    int m_widthChoice[3] = {1, 1, 1}; // pen, highlighter, eraser
};
