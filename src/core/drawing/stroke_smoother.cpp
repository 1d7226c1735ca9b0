#include "core/drawing/stroke_smoother.h"

#include <QLineF>

namespace {
InkPoint between(const InkPoint &a, const InkPoint &b, qreal t)
{
    return {a.pos + (b.pos - a.pos) * t, a.pressure + (b.pressure - a.pressure) * t};
}
} // namespace

InkSegment StrokeSmoother::begin(const InkPoint &point)
{
    m_smoothed = point;
    m_lastRaw = point;
    m_midpoint = point;
    m_moved = false;
    return {point.pos, point.pos, point.pos, point.pressure, point.pressure};
}

QList<InkSegment> StrokeSmoother::add(const InkPoint &point)
{
    m_lastRaw = point;
    const qreal distance = QLineF(m_smoothed.pos, point.pos).length();
    const qreal follow = qMin(1.0, kFollow + (1 - kFollow) * distance / kFullFollowDistance);
    const InkPoint next = between(m_smoothed, point, follow);
    if (QLineF(m_smoothed.pos, next.pos).length() < kMinimumStep)
        return {};
    const InkPoint mid = between(m_smoothed, next, 0.5);
    const InkSegment piece{m_midpoint.pos, m_smoothed.pos, mid.pos, m_midpoint.pressure, mid.pressure};
    m_midpoint = mid;
    m_smoothed = next;
    m_moved = true;
    return {piece};
}

QList<InkSegment> StrokeSmoother::finish()
{
    if (!m_moved && QLineF(m_midpoint.pos, m_lastRaw.pos).length() < kMinimumStep)
        return {};
    const InkSegment last{m_midpoint.pos, m_smoothed.pos, m_lastRaw.pos, m_midpoint.pressure,
                          m_lastRaw.pressure};
    m_midpoint = m_lastRaw;
    m_smoothed = m_lastRaw;
    return {last};
}
