#pragma once

#include <QColor>

// What a drag on a drawing surface leaves behind.
enum class InkKind
{
    Pen,         // opaque ink
    Highlighter, // translucent ink that does not darken where it crosses itself
    Eraser,      // takes ink away, so that the board shows through again
};

// The mark a drag makes: a free line that follows the pointer, or a straight line or a
// rectangle from where the drag started to where the pointer is.
enum class InkShape
{
    Freehand,
    Line,
    Rectangle,
};

struct InkPen
{
    InkKind kind = InkKind::Pen;
    QColor color = Qt::black;
    qreal width = 3; // in layer pixels, at full pressure

    // How strongly the highlighter covers what is under it.
    static constexpr qreal kHighlighterOpacity = 0.4;

    // The width at a pointer pressure from 0 to 1. A mouse always presses at 1; a tablet pen
    // pressed lightly still leaves a visible line.
    qreal widthAt(qreal pressure) const
    {
        return qMax(0.5, width * (0.25 + 0.75 * qBound(0.0, pressure, 1.0)));
    }

    bool operator==(const InkPen &) const = default;
};
