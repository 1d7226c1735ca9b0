#include "core/drawing/drawing_layer.h"

#include <QPainter>

#include <cstring>

namespace {

constexpr int kBytesPerPixel = 4;
// Fast compression: tiles are mostly transparent or flat, which compresses well even so.
constexpr int kCompression = 1;

QByteArray readPixels(const QImage &image, const QRect &area)
{
    const int lineBytes = area.width() * kBytesPerPixel;
    QByteArray bytes(lineBytes * area.height(), Qt::Uninitialized);
    char *out = bytes.data();
    for (int y = area.top(); y <= area.bottom(); ++y, out += lineBytes)
        std::memcpy(out, image.constScanLine(y) + area.left() * kBytesPerPixel, lineBytes);
    return bytes;
}

void writePixels(QImage &image, const QRect &area, const QByteArray &bytes)
{
    const int lineBytes = area.width() * kBytesPerPixel;
    if (bytes.size() != lineBytes * area.height())
        return; // cannot happen unless memory is damaged; leave the pixels alone
    const char *in = bytes.constData();
    for (int y = area.top(); y <= area.bottom(); ++y, in += lineBytes)
        std::memcpy(image.scanLine(y) + area.left() * kBytesPerPixel, in, lineBytes);
}

QImage emptyLayer(const QSize &size)
{
    QImage image(size.expandedTo(QSize(1, 1)), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

} // namespace

DrawingLayer::DrawingLayer(QObject *parent) : QObject(parent), m_image(emptyLayer(QSize(1, 1))) {}

void DrawingLayer::ensureSize(const QSize &size)
{
    const QSize wanted = size.expandedTo(m_image.size());
    if (wanted == m_image.size())
        return;
    if (m_editing)
        m_pendingSize = wanted.expandedTo(m_pendingSize);
    else
        grow(wanted);
}

void DrawingLayer::grow(const QSize &size)
{
    QImage larger = emptyLayer(size);
    const int lineBytes = m_image.width() * kBytesPerPixel;
    for (int y = 0; y < m_image.height(); ++y)
        std::memcpy(larger.scanLine(y), m_image.constScanLine(y), lineBytes);
    m_image = larger;
    emit changed(m_image.rect());
}

void DrawingLayer::reset(const QImage &picture)
{
    m_image = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    m_image.setDevicePixelRatio(1);
    if (m_image.isNull())
        m_image = emptyLayer(QSize(1, 1));
    m_steps.clear();
    m_applied = 0;
    m_clean = 0;
    m_historyBytes = 0;
    m_editing = false;
    m_before.clear();
    m_pendingSize = QSize();
    emit changed(m_image.rect());
    emit historyChanged();
}

void DrawingLayer::reset(const QSize &size)
{
    reset(emptyLayer(size));
}

void DrawingLayer::beginEdit(const QString &label)
{
    if (m_editing)
        commitEdit();
    m_editing = true;
    m_editLabel = label;
    m_before.clear();
}

void DrawingLayer::paint(const QRect &area, const std::function<void(QPainter &)> &draw)
{
    Q_ASSERT(m_editing);
    const QRect clipped = area & m_image.rect();
    if (!m_editing || clipped.isEmpty())
        return;
    keepTilesUnder(clipped);
    {
        QPainter painter(&m_image);
        // Nothing outside the kept tiles may change, or undo could not put it back.
        painter.setClipRect(clipped);
        draw(painter);
    }
    emit changed(clipped);
}

void DrawingLayer::keepTilesUnder(const QRect &area)
{
    for (int ty = area.top() / kTileSize; ty <= area.bottom() / kTileSize; ++ty) {
        for (int tx = area.left() / kTileSize; tx <= area.right() / kTileSize; ++tx) {
            const quint64 key = (quint64(quint32(ty)) << 32) | quint32(tx);
            if (m_before.contains(key))
                continue;
            const QRect tile = QRect(tx * kTileSize, ty * kTileSize, kTileSize, kTileSize) & m_image.rect();
            m_before.insert(key, {tile, readPixels(m_image, tile)});
        }
    }
}

bool DrawingLayer::commitEdit()
{
    if (!m_editing)
        return false;
    Step step;
    step.label = m_editLabel;
    for (const TileCopy &copy : std::as_const(m_before)) {
        const QByteArray after = readPixels(m_image, copy.area);
        if (after == copy.pixels)
            continue;
        TilePatch patch{copy.area, qCompress(copy.pixels, kCompression), qCompress(after, kCompression)};
        step.bytes += patch.before.size() + patch.after.size();
        step.patches.push_back(std::move(patch));
    }
    const bool added = !step.patches.empty();
    if (added)
        pushStep(std::move(step));
    endEdit();
    emit historyChanged();
    return added;
}

void DrawingLayer::revertEdit()
{
    QRect area;
    for (const TileCopy &copy : std::as_const(m_before)) {
        writePixels(m_image, copy.area, copy.pixels);
        area |= copy.area;
    }
    m_before.clear();
    if (!area.isEmpty())
        emit changed(area);
}

void DrawingLayer::cancelEdit()
{
    if (!m_editing)
        return;
    revertEdit();
    endEdit();
    emit historyChanged();
}

void DrawingLayer::endEdit()
{
    m_editing = false;
    m_before.clear();
    if (m_pendingSize.isValid()) {
        const QSize size = m_pendingSize;
        m_pendingSize = QSize();
        ensureSize(size);
    }
}

void DrawingLayer::pushStep(Step step)
{
    // A new change ends the steps that could be redone.
    for (int i = int(m_steps.size()) - 1; i >= m_applied; --i)
        m_historyBytes -= m_steps[i].bytes;
    m_steps.erase(m_steps.begin() + m_applied, m_steps.end());
    if (m_clean > m_applied)
        m_clean = -1;
    m_historyBytes += step.bytes;
    m_steps.push_back(std::move(step));
    ++m_applied;
    trimHistory();
}

void DrawingLayer::trimHistory()
{
    const int count = int(m_steps.size());
    int drop = 0;
    while (count - drop > kLeastSteps && (count - drop > kMostSteps || m_historyBytes > kHistoryBudget)) {
        m_historyBytes -= m_steps[drop].bytes;
        ++drop;
    }
    if (drop == 0)
        return;
    m_steps.erase(m_steps.begin(), m_steps.begin() + drop);
    m_applied -= drop;
    m_clean = m_clean >= drop ? m_clean - drop : -1;
}

bool DrawingLayer::canUndo() const
{
    return !m_editing && m_applied > 0;
}

bool DrawingLayer::canRedo() const
{
    return !m_editing && m_applied < int(m_steps.size());
}

QString DrawingLayer::undoLabel() const
{
    return canUndo() ? m_steps[m_applied - 1].label : QString();
}

QString DrawingLayer::redoLabel() const
{
    return canRedo() ? m_steps[m_applied].label : QString();
}

void DrawingLayer::undo()
{
    if (!canUndo())
        return;
    --m_applied;
    applyStep(m_steps[m_applied], false);
    emit historyChanged();
}

void DrawingLayer::redo()
{
    if (!canRedo())
        return;
    applyStep(m_steps[m_applied], true);
    ++m_applied;
    emit historyChanged();
}

void DrawingLayer::applyStep(const Step &step, bool after)
{
    QRect area;
    for (const TilePatch &patch : step.patches) {
        writePixels(m_image, patch.area, qUncompress(after ? patch.after : patch.before));
        area |= patch.area;
    }
    emit changed(area);
}

bool DrawingLayer::isClean() const
{
    if (m_editing && !m_before.isEmpty())
        return false;
    return m_clean == m_applied;
}

void DrawingLayer::setClean()
{
    m_clean = m_applied;
    emit historyChanged();
}

void DrawingLayer::forgetCleanState()
{
    m_clean = -1;
    emit historyChanged();
}

QImage DrawingLayer::flattened(const QColor &background) const
{
    QImage board(m_image.size(), QImage::Format_RGB32);
    board.fill(background.rgb());
    QPainter painter(&board);
    painter.drawImage(0, 0, m_image);
    return board;
}
