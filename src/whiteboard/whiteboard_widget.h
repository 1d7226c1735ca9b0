#pragma once

#include "themes/widget_window.h"

#include <QFont>
#include <QPointF>
#include <functional>

class BoardDocument;
class BoardListPanel;
class BoardRecovery;
class DrawingArea;
class InkCanvas;
class QLabel;
class QMimeData;
class QSplitter;
class QToolButton;
class DrawingToolBar;

// fwbd_IDX, the whiteboard: a board in the colour of the settings to write, draw and highlight
// on, with texts and pictures placed on it, undo and redo of every step, and boards kept as
// pictures in the board folder (a side panel lists them with thumbnails).
//
// A board never saved is saved by Save as the next free "Board n.png" in the board folder;
// Save As picks any name, folder and picture type. Replacing or closing a board with changes
// asks first. The board shown when the widget closes comes back when it opens again.
class WhiteboardWidget : public WidgetWindow
{
    Q_OBJECT
public:
    explicit WhiteboardWidget(QWidget *parent = nullptr);
    ~WhiteboardWidget() override;

    QSize defaultSize() const override { return QSize(980, 680); }
    QSize minimumUsableSize() const override;
    QString contextMenuVariant() const override { return QStringLiteral("whiteboard"); }
    bool hasSettingsDialog() const override { return true; }
    void openSettingsDialog() override;

    BoardDocument *document() const { return m_document; }
    InkCanvas *canvas() const;
    QString boardFolder() const;

    // The board commands. Each returns false when it did not happen: the user cancelled, or
    // was told why it failed.
    bool newBoard();
    bool openBoard(const QString &path);
    bool saveBoard();
    bool saveBoardAs(const QString &path);
    // Deletes a saved board after asking; the board shown is cleared when it is the one.
    bool deleteBoard(const QString &path);
    void copyBoard();
    bool pasteFromClipboard();
    bool insertPicture(const QString &path);
    // Asks for a text (fwbd_TXT) and places it at `layerPos` to be moved before it is fixed.
    bool placeText(const QPointF &layerPos);
    // Asks whether to save a changed board; true when it may be replaced or closed.
    bool settleUnsaved();
    // Offers the board a run that stopped left in the recovery folder; called once the
    // whiteboard shows.
    void offerRecoveredBoard();

public slots:
    void ThemeElementsUpdate() override;

protected:
    void relayout() override;
    void saveValues() override;
    bool settleBeforeClose() override;
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildCommandRow(QWidget *row);
    void buildStatusRow(QWidget *row);
    void installShortcuts();
    void chooseBoardToOpen();
    void chooseSaveAs();
    void choosePicture();
    void applySettings();
    void applyPens();
    void showState();
    void showHint();
    void showSize();
    void showUndoState();
    // A picture, a picture file or a text (pasted or dropped) placed around `centre`; false
    // when there was none, or the file could not be read (the user was told why).
    bool placeData(const QMimeData *data, const QPointF &centre);
    bool insertPicture(const QString &path, const QPointF &centre);
    void placePicture(const QImage &picture, const QPointF &centre);
    // `font`, sized in points, sized instead in the layer's pixels.
    QFont inLayerPixels(QFont font) const;
    QRectF visibleLayerArea() const;
    void reopenLastBoard();
    void stepWidth(int delta);

    BoardDocument *m_document;
    BoardRecovery *m_recovery = nullptr;
    bool m_offered = false;
    QSize m_shownSize;
    DrawingArea *m_area = nullptr;
    DrawingToolBar *m_tools = nullptr;
    BoardListPanel *m_boards = nullptr;
    QSplitter *m_split = nullptr;
    QLabel *m_title = nullptr;
    QLabel *m_hint = nullptr;
    QLabel *m_size = nullptr;
    QToolButton *m_undo = nullptr;
    QToolButton *m_redo = nullptr;
    QToolButton *m_boardsButton = nullptr;
};
