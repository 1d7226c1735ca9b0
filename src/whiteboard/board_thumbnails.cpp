#include "whiteboard/board_thumbnails.h"

#include "core/file_helpers.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QImageReader>

namespace {
// At most this many files are read per event-loop turn, and no more once one turn has spent
// this long, so that typing and painting stay smooth while a folder of photos is read.
constexpr int kFilesPerTurn = 2;
constexpr qint64 kTurnMilliseconds = 25;

// `size` shrunk to fit `box` keeping its shape, never grown, never below one pixel.
QSize fittedSize(const QSize &size, const QSize &box)
{
    if (size.width() <= box.width() && size.height() <= box.height())
        return size;
    return size.scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

// The size the picture shows at, which differs from the stored size when the file says to turn it.
QSize shownSize(const QImageReader &reader, const QSize &stored)
{
    return reader.transformation().testFlag(QImageIOHandler::TransformationRotate90) ? stored.transposed()
                                                                                     : stored;
}
} // namespace

BoardThumbnails::BoardThumbnails(QObject *parent) : QObject(parent)
{
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &BoardThumbnails::readSome);
}

void BoardThumbnails::setBox(const QSize &box, qreal devicePixelRatio)
{
    if (box == m_box && qFuzzyCompare(devicePixelRatio, m_ratio))
        return;
    m_box = box;
    m_ratio = devicePixelRatio;
    m_cache.clear();
}

void BoardThumbnails::load(const QStringList &paths)
{
    QHash<QString, Entry> kept;
    m_queue.clear();
    for (const QString &path : paths) {
        const auto known = m_cache.constFind(path);
        if (known != m_cache.cend() && known->stamp == stampOf(path))
            kept.insert(path, *known);
        else
            m_queue.append(path);
    }
    m_cache = kept;
    if (m_queue.isEmpty())
        m_timer.stop();
    else
        m_timer.start();
}

const BoardThumbnail *BoardThumbnails::find(const QString &path) const
{
    const auto found = m_cache.constFind(path);
    return found == m_cache.cend() ? nullptr : &found->thumbnail;
}

BoardThumbnails::Stamp BoardThumbnails::stampOf(const QString &path)
{
    const QFileInfo info(LocalPath(path));
    return {info.lastModified(), info.size()};
}

void BoardThumbnails::readSome()
{
    QElapsedTimer turn;
    turn.start();
    for (int n = 0; n < kFilesPerTurn && !m_queue.isEmpty() && turn.elapsed() < kTurnMilliseconds; ++n) {
        const QString path = m_queue.takeFirst();
        // Stamped before reading: a file that changes while it is read is read again next time.
        const Stamp stamp = stampOf(path);
        m_cache.insert(path, {stamp, read(path)});
        ++m_read;
        emit thumbnailReady(path);
    }
    if (m_queue.isEmpty())
        m_timer.stop();
}

BoardThumbnail BoardThumbnails::read(const QString &path) const
{
    QImageReader reader(LocalPath(path));
    reader.setAutoTransform(true);
    const QSize stored = reader.size();
    const QSize deviceBox = (QSizeF(m_box) * m_ratio).toSize().expandedTo(QSize(1, 1));
    // Formats that can decode straight to a smaller size (JPEG) save reading every pixel.
    if (stored.isValid() && reader.supportsOption(QImageIOHandler::ScaledSize)) {
        const QSize scaled = fittedSize(stored, deviceBox);
        if (scaled != stored)
            reader.setScaledSize(scaled);
    }
    const QImage image = reader.read();
    if (image.isNull())
        return {};
    const QSize picture = stored.isValid() ? shownSize(reader, stored) : image.size();
    // A small board shows at its own size, which on a HiDPI screen takes more device pixels.
    const QSize target = fittedSize((QSizeF(picture) * m_ratio).toSize(), deviceBox);
    QImage thumbnail = target == image.size()
                           ? image
                           : image.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    thumbnail.setDevicePixelRatio(m_ratio);
    return {thumbnail, picture};
}
