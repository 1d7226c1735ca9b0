#pragma once

#include <QDateTime>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSize>
#include <QStringList>
#include <QTimer>

// What the board list shows of one board picture.
struct BoardThumbnail
{
    QImage image;      // fits the box at the device pixel ratio; null when the file is not a picture
    QSize pictureSize; // the board's size in pixels; invalid when the file is not a picture
};

// The thumbnails of the boards in the list, read a few per event-loop turn so that a folder of
// many large boards never holds the window up. A thumbnail is kept while its file keeps its time
// and size, so listing the folder again reads only the boards that changed.
class BoardThumbnails : public QObject
{
    Q_OBJECT
public:
    explicit BoardThumbnails(QObject *parent = nullptr);

    // The largest thumbnail in device-independent pixels and the device pixel ratio it is drawn
    // for. A change forgets every thumbnail, since each would be drawn at another size.
    void setBox(const QSize &box, qreal devicePixelRatio);
    QSize box() const { return m_box; }
    qreal devicePixelRatio() const { return m_ratio; }

    // Reads, in this order, the thumbnails of `paths` that are not known or whose files changed
    // since, announcing each with thumbnailReady; forgets those of other files.
    void load(const QStringList &paths);
    // The thumbnail of `path` once it has been read; null before that.
    const BoardThumbnail *find(const QString &path) const;
    bool isLoading() const { return !m_queue.isEmpty(); }
    // How many files have been read so far, so that tests can tell a thumbnail came from the cache.
    int thumbnailsRead() const { return m_read; }

signals:
    void thumbnailReady(const QString &path);

private:
    // A file as it was when its thumbnail was read.
    struct Stamp
    {
        QDateTime modified;
        qint64 size = -1;
        bool operator==(const Stamp &other) const = default;
    };
    struct Entry
    {
        Stamp stamp;
        BoardThumbnail thumbnail;
    };

    static Stamp stampOf(const QString &path);
    void readSome();
    BoardThumbnail read(const QString &path) const;

    QSize m_box;
    qreal m_ratio = 1.0;
    QHash<QString, Entry> m_cache;
    QStringList m_queue;
    QTimer m_timer;
    int m_read = 0;
};
