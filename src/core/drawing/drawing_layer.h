#pragma once

#include <QByteArray>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QRect>

#include <functional>
#include <vector>

class QPainter;

// The pixels a user draws on, with the undo history of every change.
//
// The layer is a transparent image that only grows: a drawing surface that gets larger asks for
// a larger layer, and when it gets smaller again nothing is cut off. Every change is an edit.
// Before anything is painted into an area the layer keeps a copy of the 64 x 64 tiles there;
// when the edit ends, the tiles that really changed are kept, compressed, as they were before
// and after. Undo and redo put those tiles back, so they give back exactly the pixels there
// were, and a long stroke across the board costs only the tiles along its way.
class DrawingLayer : public QObject
{
    Q_OBJECT
public:
    static constexpr int kTileSize = 64;
    // Undo steps kept whatever memory they take. Beyond them the oldest steps go once the
    // history holds more than kHistoryBudget bytes, and in any case past kMostSteps.
    static constexpr int kLeastSteps = 100;
    static constexpr int kMostSteps = 300;
    static constexpr qint64 kHistoryBudget = 256LL * 1024 * 1024;

    explicit DrawingLayer(QObject *parent = nullptr);

    const QImage &image() const { return m_image; }
    QSize size() const { return m_image.size(); }

    // Makes the layer at least `size` in both directions; what is drawn stays where it is.
    // During an edit the layer grows when the edit ends.
    void ensureSize(const QSize &size);
    // Starts again with `picture` (a board read from a file) or empty at `size`. The history
    // is forgotten and the layer counts as clean.
    void reset(const QImage &picture);
    void reset(const QSize &size);

    // Starts an edit, which becomes one undo step named `label` ("Pen", "Clear Board").
    void beginEdit(const QString &label);
    // Paints into `area` (layer pixels, clipped to the layer) as part of the edit in progress;
    // `draw` gets a painter clipped to that area.
    void paint(const QRect &area, const std::function<void(QPainter &)> &draw);
    // Ends the edit: the tiles it changed become one undo step; an edit that changed nothing
    // leaves no step. True when a step was added.
    bool commitEdit();
    // Puts back what the edit painted so far; the edit goes on.
    void revertEdit();
    // Puts back what the edit painted and ends it.
    void cancelEdit();
    bool isEditing() const { return m_editing; }

    bool canUndo() const;
    bool canRedo() const;
    QString undoLabel() const;
    QString redoLabel() const;
    void undo();
    void redo();
    int undoSteps() const { return m_applied; }
    int redoSteps() const { return int(m_steps.size()) - m_applied; }
    qint64 historyBytes() const { return m_historyBytes; }

    // Clean: the pixels are those of the last setClean() (the board as last saved or opened).
    bool isClean() const;
    void setClean();
    // No state in the history is clean any more (a board brought back after a crash, whose
    // pixels were never saved).
    void forgetCleanState();

    // The layer laid on `background`, opaque: what the board looks like, for saving and copying.
    QImage flattened(const QColor &background) const;

signals:
    // The pixels in `area` changed (painting, undo, redo, reset, growth).
    void changed(const QRect &area);
    // Undo, redo or the clean state changed.
    void historyChanged();

private:
    struct TileCopy
    {
        QRect area;
        QByteArray pixels;
    };
    struct TilePatch
    {
        QRect area;
        QByteArray before; // compressed
        QByteArray after;  // compressed
    };
    struct Step
    {
        QString label;
        std::vector<TilePatch> patches;
        qint64 bytes = 0;
    };

    void keepTilesUnder(const QRect &area);
    void applyStep(const Step &step, bool after);
    void pushStep(Step step);
    void trimHistory();
    void grow(const QSize &size);
    void endEdit();

    QImage m_image;
    std::vector<Step> m_steps;
    int m_applied = 0; // m_steps[0 .. m_applied - 1] are in the pixels; the rest can be redone
    int m_clean = 0;   // m_applied when the layer was clean; -1 once that state left the history
    qint64 m_historyBytes = 0;
    bool m_editing = false;
    QString m_editLabel;
    QHash<quint64, TileCopy> m_before; // the tiles the edit in progress touched, as they were
    QSize m_pendingSize;
};
