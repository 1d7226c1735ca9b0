#pragma once

#include <QList>
#include <QPointF>

// A pointer sample: where the pointer was and how hard it pressed (0 to 1; a mouse presses at 1).
struct InkPoint
{
    QPointF pos;
    qreal pressure = 1.0;
};

// One piece of a smoothed line: a quadratic curve from `from` to `to` bent towards `control`,
// with the pressure at its two ends. A piece whose three points coincide is a dot.
struct InkSegment
{
    QPointF from;
    QPointF control;
    QPointF to;
    qreal fromPressure = 1.0;
    qreal toPressure = 1.0;
};

// Turns the pointer's samples into a smooth line, piece by piece as they arrive, so that a
// stroke can be drawn while the user is still moving.
//
// Each sample is first pulled part of the way towards the previous one, which takes out the
// tremor of a hand and the staircase of a mouse on the pixel grid; the further it is from the
// previous one, the less it is pulled. The line then runs through
// the midpoints between successive samples as quadratic curves, bent by the samples themselves,
// so it has no corners where the pointer happened to be sampled. finish() runs the line on to
// the last real sample, so the stroke ends where the pointer was let go.
class StrokeSmoother
{
public:
    // How far a sample close to the previous one goes towards where the pointer really is
    // (1: no smoothing). Jitter is small; samples further apart (a quick move, a slow device)
    // are followed more closely, so a fast stroke keeps its shape and does not lag behind.
    static constexpr qreal kFollow = 0.55;
    static constexpr qreal kFullFollowDistance = 24;
    // Samples closer than this to the previous one (in layer pixels) add nothing but noise.
    static constexpr qreal kMinimumStep = 0.75;

    // Starts a line; the returned dot makes a click without a move leave a mark.
    InkSegment begin(const InkPoint &point);
    // The next sample; returns the piece it completes, if any.
    QList<InkSegment> add(const InkPoint &point);
    // The last piece, up to the last sample.
    QList<InkSegment> finish();

private:
    InkPoint m_smoothed; // the last sample after smoothing
    InkPoint m_lastRaw;  // the last sample as the pointer gave it
    InkPoint m_midpoint; // where the line drawn so far ends
    bool m_moved = false;
};
