#pragma once

#include <QObject>
#include <QString>

class DrawingLayer;
class QImage;

// The board being drawn: its layer (with the undo history) and the file it was opened from or
// last saved to. Saved boards are the layer laid on the board colour, as the user sees them.
class BoardDocument : public QObject
{
    Q_OBJECT
public:
    explicit BoardDocument(QObject *parent = nullptr);

    DrawingLayer *layer() const { return m_layer; }
    // The board's file; empty for a board never saved.
    QString path() const { return m_path; }
    // The file name, or "Untitled Board".
    QString title() const;
    // Drawn on since it was last opened or saved.
    bool isModified() const;

    // An empty board of `size` with no file.
    void newBoard(const QSize &size);
    // Replaces the board with the picture in `path`. False, with *error for the user and the
    // board as it was, when the file cannot be read.
    bool open(const QString &path, QString *error);
    // Replaces the board with `picture` from a recovery copy: it belongs to `path` (empty for
    // a board never saved) and has changes not saved there.
    void restore(const QImage &picture, const QString &path);
    // Writes the board laid on `background` to `path` (format by extension). False, with
    // *error for the user, when it was not saved; the board then still counts as changed.
    bool save(const QString &path, const QColor &background, QString *error);

signals:
    // The file or the modified state changed.
    void stateChanged();

private:
    DrawingLayer *m_layer;
    QString m_path;
};
