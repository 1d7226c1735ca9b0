#include "whiteboard/whiteboard_widget.h"

#include "core/drawing/drawing_area.h"
#include "core/drawing/drawing_layer.h"
#include "core/drawing/ink_canvas.h"
#include "core/file_helpers.h"
#include "core/picture_files.h"
#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "core/widget_index.h"
#include "themes/drawing_tool_bar.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "themes/panel_tool_style.h"
#include "themes/theme_painter.h"
#include "whiteboard/board_document.h"
#include "whiteboard/board_file.h"
#include "whiteboard/board_folder.h"
#include "whiteboard/board_list_panel.h"
#include "whiteboard/board_recovery.h"
#include "whiteboard/whiteboard_settings.h"
#include "whiteboard/whiteboard_settings_dialog.h"
#include "whiteboard/whiteboard_text_dialog.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QMimeData>
#include <QScrollBar>
#include <QSplitter>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
const QString kWindow = QStringLiteral("fwbd_IDX");
const QString kLastBoard = QStringLiteral("Last Board");
const QString kSidePanel = QStringLiteral("Side Panel");
const QString kSidePanelWidth = QStringLiteral("Side Panel Width");
// A picture placed on the board takes at most this part of the visible board.
constexpr qreal kPictureShare = 0.8;

} // namespace

WhiteboardWidget::WhiteboardWidget(QWidget *parent)
    : WidgetWindow(WidgetWindowName(WidgetWhiteboard), WidgetWhiteboard, tr("Vantora Whiteboard"), parent),
      m_document(new BoardDocument(this))
{
    setAcceptDrops(true);
    m_title = AddBarTitle(bar());
    auto *commands = new QWidget(panel());
    buildCommandRow(commands);
    QVBoxLayout *column = AddPanelColumn(panel(), commands);
    m_tools = new DrawingToolBar(
        kWindow, {DrawingPens::Pen, DrawingPens::Highlighter, DrawingPens::Eraser, DrawingPens::Text},
        panel());
    column->addWidget(m_tools);

    m_split = new QSplitter(Qt::Horizontal, panel());
    m_area = new DrawingArea(m_document->layer(), m_split);
    m_area->setObjectName(QStringLiteral("pfrBOARD"));
    m_split->addWidget(m_area);
    m_boards = new BoardListPanel(m_split);
    m_split->addWidget(m_boards);
    m_split->setStretchFactor(0, 1);
    m_split->setCollapsible(0, false);
    column->addWidget(m_split, 1);
    auto *status = new QWidget(panel());
    buildStatusRow(status);
    column->addWidget(status);

    const bool sideShown = ReadBoolDetail(kWindow, kSidePanel, true);
    m_boards->setVisible(sideShown);
    m_boardsButton->setChecked(sideShown);
    m_split->setSizes({760, qBound(120, ReadIntDetail(kWindow, kSidePanelWidth, 190), 500)});

    connect(m_document, &BoardDocument::stateChanged, this, &WhiteboardWidget::showState);
    connect(canvas(), &InkCanvas::undoStateChanged, this, &WhiteboardWidget::showUndoState);
    connect(canvas(), &InkCanvas::placedItemChanged, this, &WhiteboardWidget::showHint);
    connect(canvas(), &InkCanvas::textRequested, this, &WhiteboardWidget::placeText);
    connect(m_document->layer(), &DrawingLayer::changed, this, &WhiteboardWidget::showSize);
    connect(m_tools, &DrawingToolBar::pensChanged, this, &WhiteboardWidget::applyPens);
    connect(m_boards, &BoardListPanel::openRequested, this, &WhiteboardWidget::openBoard);
    connect(m_boards, &BoardListPanel::deleteRequested, this, &WhiteboardWidget::deleteBoard);

    installShortcuts();
    applySettings();
    applyPens();
    reopenLastBoard();
    m_recovery = new BoardRecovery(m_document, this);
    connect(m_recovery, &BoardRecovery::copyFailed, this, [this](const QString &problem) {
        ShowNotice(tr("No Safety Copy of the Board"),
                   tr("The board's safety copy could not be written, so a crash now would lose the "
                      "drawing since it was last saved. Save the board to keep it.\n\nWhat went wrong: %1")
                       .arg(problem),
                   true, this);
    });
    showState();
}

WhiteboardWidget::~WhiteboardWidget() = default;

InkCanvas *WhiteboardWidget::canvas() const
{
    return m_area->canvas();
}

QSize WhiteboardWidget::minimumUsableSize() const
{
    return QSize(620, 420);
}

QString WhiteboardWidget::boardFolder() const
{
    return CurrentWhiteboardSettings().boardFolderPath();
}

// ---- building ----

void WhiteboardWidget::buildCommandRow(QWidget *row)
{
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    AddPanelCommand(row, QStringLiteral("btnNEW"), tr("New"), tr("A new, empty board (Ctrl+N)"),
                    [this] { newBoard(); });
    AddPanelCommand(row, QStringLiteral("btnOPEN"), tr("Open"), tr("Open a board or any picture (Ctrl+O)"),
                    [this] { chooseBoardToOpen(); });
    AddPanelCommand(
        row, QStringLiteral("btnSAVE"), tr("Save"),
        tr("Save the board (Ctrl+S); a new board is saved in the board folder as the next \"Board n\""),
        [this] { saveBoard(); });
    AddPanelCommand(
        row, QStringLiteral("btnSAVEAS"), tr("Save As"),
        tr("Save the board under a name and in a folder you choose, as PNG, BMP or JPEG (Ctrl+Shift+S)"),
        [this] { chooseSaveAs(); });
    AddPanelCommand(row, QStringLiteral("btnDELETE"), tr("Delete"),
                    tr("Delete this board's file and clear the screen"),
                    [this] { deleteBoard(m_document->path()); });
    layout->addSpacing(10);
    m_undo =
        AddPanelCommand(row, QStringLiteral("btnUNDO"), tr("Undo"), QString(), [this] { canvas()->undo(); });
    m_redo =
        AddPanelCommand(row, QStringLiteral("btnREDO"), tr("Redo"), QString(), [this] { canvas()->redo(); });
    AddPanelCommand(row, QStringLiteral("btnCLEAR"), tr("Clear"),
                    tr("Clear the whole board (Undo brings it back)"), [this] { canvas()->clear(); });
    layout->addSpacing(10);
    AddPanelCommand(row, QStringLiteral("btnPICTURE"), tr("Picture"),
                    tr("Put a picture from a file on the board, to move and scale before it is fixed"),
                    [this] { choosePicture(); });
    AddPanelCommand(row, QStringLiteral("btnPASTE"), tr("Paste"),
                    tr("Put the picture or text copied elsewhere on the board (Ctrl+V)"),
                    [this] { pasteFromClipboard(); });
    AddPanelCommand(row, QStringLiteral("btnCOPY"), tr("Copy"),
                    tr("Copy the whole board as a picture (Ctrl+C)"), [this] { copyBoard(); });
    layout->addStretch(1);
    m_boardsButton = AddPanelCommand(row, QStringLiteral("btnBOARDS"), tr("Boards"),
                                     tr("Show or hide the saved boards"), [this] {
                                         m_boards->setVisible(m_boardsButton->isChecked());
                                         if (m_boards->isVisible())
                                             m_boards->refresh();
                                     });
    m_boardsButton->setCheckable(true);
    AddPanelCommand(row, QStringLiteral("btnSETTINGS"), tr("Settings"),
                    tr("The board's colour and the folder boards are saved in"),
                    [this] { openSettingsDialog(); });
}

void WhiteboardWidget::buildStatusRow(QWidget *row)
{
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(2, 0, 2, 0);
    m_hint = new QLabel(row);
    m_hint->setObjectName(QStringLiteral("lblHINT"));
    m_hint->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_size = new QLabel(row);
    m_size->setObjectName(QStringLiteral("lblSIZE"));
    m_size->setToolTip(
        tr("The board's size; it grows with the window and keeps what is drawn when the window shrinks"));
    layout->addWidget(m_hint, 1);
    layout->addWidget(m_size);
}

void WhiteboardWidget::installShortcuts()
{
    const auto add = [this](const QKeySequence &keys, const std::function<void()> &action) {
        AddWindowShortcut(this, keys, action);
    };
    add(QKeySequence::New, [this] { newBoard(); });
    add(QKeySequence::Open, [this] { chooseBoardToOpen(); });
    add(QKeySequence::Save, [this] { saveBoard(); });
    add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), [this] { chooseSaveAs(); });
    add(QKeySequence::Undo, [this] { canvas()->undo(); });
    add(QKeySequence(Qt::CTRL | Qt::Key_Y), [this] { canvas()->redo(); });
    add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), [this] { canvas()->redo(); });
    add(QKeySequence::Copy, [this] { copyBoard(); });
    add(QKeySequence::Paste, [this] { pasteFromClipboard(); });
    add(QKeySequence(Qt::Key_P), [this] { m_tools->setTool(DrawingPens::Pen); });
    add(QKeySequence(Qt::Key_H), [this] { m_tools->setTool(DrawingPens::Highlighter); });
    add(QKeySequence(Qt::Key_E), [this] { m_tools->setTool(DrawingPens::Eraser); });
    add(QKeySequence(Qt::Key_T), [this] { m_tools->setTool(DrawingPens::Text); });
    add(QKeySequence(Qt::Key_BracketLeft), [this] { stepWidth(-1); });
    add(QKeySequence(Qt::Key_BracketRight), [this] { stepWidth(1); });
}

void WhiteboardWidget::stepWidth(int delta)
{
    m_tools->setWidthChoice(m_tools->pens().widthChoice() + delta);
}

// ---- state shown ----

void WhiteboardWidget::applySettings()
{
    const WhiteboardSettings &settings = CurrentWhiteboardSettings();
    canvas()->setBackground(settings.boardColor());
    m_boards->setFolder(settings.boardFolderPath());
}

void WhiteboardWidget::applyPens()
{
    const DrawingPens &pens = m_tools->pens();
    canvas()->setTool(pens.tool() == DrawingPens::Text ? InkCanvas::Tool::Text : InkCanvas::Tool::Ink);
    canvas()->setPen(pens.pen(canvas()->layerScale()));
    showHint();
}

void WhiteboardWidget::showState()
{
    const QString modified = m_document->isModified() ? QStringLiteral(" *") : QString();
    m_title->setText(tr("Whiteboard - %1%2").arg(m_document->title(), modified));
    m_title->adjustSize();
    setWindowTitle(tr("Vantora Whiteboard - %1%2").arg(m_document->title(), modified));
    m_boards->setCurrentBoard(m_document->path());
    showUndoState();
}

void WhiteboardWidget::showUndoState()
{
    const DrawingLayer *layer = m_document->layer();
    m_undo->setEnabled(canvas()->canUndo());
    m_redo->setEnabled(layer->canRedo() && !canvas()->hasPlacedItem());
    m_undo->setToolTip(canvas()->hasPlacedItem() ? tr("Take the picture or text being placed away (Ctrl+Z)")
                       : layer->canUndo()        ? tr("Undo %1 (Ctrl+Z)").arg(layer->undoLabel())
                                                 : tr("Nothing to undo"));
    m_redo->setToolTip(layer->canRedo() ? tr("Redo %1 (Ctrl+Y)").arg(layer->redoLabel())
                                        : tr("Nothing to redo"));
}

void WhiteboardWidget::showSize()
{
    // Called for every piece of every stroke: only a new size is worth a new text.
    const QSize size = m_document->layer()->size();
    if (size == m_shownSize)
        return;
    m_shownSize = size;
    m_size->setText(tr("%1 x %2 pixels").arg(size.width()).arg(size.height()));
}

void WhiteboardWidget::showHint()
{
    QString hint;
    if (canvas()->hasPlacedItem())
        hint = tr("Drag to move it, drag a corner to scale it. Enter or a click beside it fixes it; Esc "
                  "takes it away.");
    else if (m_tools->pens().tool() == DrawingPens::Text)
        hint = tr("Click where the text should go.");
    else if (m_tools->pens().tool() == DrawingPens::Eraser)
        hint = tr("Drag to rub out. Shift: along a straight line. Ctrl: clear a rectangle.");
    else
        hint = tr("Drag to draw. Hold Shift for a straight line, Ctrl for a rectangle; Esc while dragging "
                  "takes it back.");
    m_hint->setText(hint);
    m_hint->setToolTip(hint);
}

// ---- board commands ----

bool WhiteboardWidget::settleUnsaved()
{
    canvas()->settle();
    if (!m_document->isModified())
        return true;
    switch (AskQuestion(2, QString(), this)) {
    case AnswerYes:
        return saveBoard();
    case AnswerNo:
        return true;
    default:
        return false;
    }
}

bool WhiteboardWidget::newBoard()
{
    if (!settleUnsaved())
        return false;
    m_document->newBoard(QSize(1, 1));
    m_area->fillViewport();
    return true;
}

void WhiteboardWidget::chooseBoardToOpen()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("Open a Board"), boardFolder(),
                                                      BoardFile::nameFilters().join(QStringLiteral(";;")));
    if (!path.isEmpty())
        openBoard(path);
}

bool WhiteboardWidget::openBoard(const QString &path)
{
    if (!m_document->path().isEmpty() && QFileInfo(path) == QFileInfo(m_document->path()) &&
        !m_document->isModified())
        return true;
    if (!settleUnsaved())
        return false;
    QString error;
    if (!m_document->open(path, &error)) {
        ShowNotice(tr("Cannot Open the Board"), error, true, this);
        m_boards->refresh();
        return false;
    }
    m_area->fillViewport();
    m_area->ensureVisible(0, 0);
    return true;
}

bool WhiteboardWidget::saveBoard()
{
    canvas()->settle();
    if (!m_document->path().isEmpty())
        return saveBoardAs(m_document->path());
    QString error;
    const BoardFolder folder(boardFolder());
    if (!folder.ensureExists(&error)) {
        ShowNotice(tr("Cannot Save the Board"), error, true, this);
        return false;
    }
    return saveBoardAs(QDir(folder.path()).filePath(folder.freeName()));
}

bool WhiteboardWidget::saveBoardAs(const QString &path)
{
    canvas()->settle();
    QString error;
    if (!m_document->save(BoardFile::withBoardExtension(path), canvas()->background(), &error)) {
        ShowNotice(tr("Cannot Save the Board"), error, true, this);
        return false;
    }
    m_boards->refresh();
    return true;
}

void WhiteboardWidget::chooseSaveAs()
{
    QString error;
    const BoardFolder folder(boardFolder());
    folder.ensureExists(&error); // the dialog starts there when it can; any folder will do
    const QString start =
        m_document->path().isEmpty() ? QDir(folder.path()).filePath(folder.freeName()) : m_document->path();
    const QString path = QFileDialog::getSaveFileName(this, tr("Save the Board As"), start,
                                                      BoardFile::nameFilters().join(QStringLiteral(";;")));
    if (!path.isEmpty())
        saveBoardAs(path);
}

bool WhiteboardWidget::deleteBoard(const QString &path)
{
    const bool shown =
        path.isEmpty() || (!m_document->path().isEmpty() && QFileInfo(path) == QFileInfo(m_document->path()));
    if (shown) {
        if (AskQuestion(4, QString(), this) != AnswerYes)
            return false;
    } else if (!ConfirmDestructiveAction(
                   tr("Delete the Board?"),
                   tr("%1 will be deleted from the board folder. This cannot be undone.")
                       .arg(QFileInfo(path).fileName()),
                   tr("&Delete"), this)) {
        return false;
    }
    QString error;
    if (!path.isEmpty() && !BoardFolder::remove(path, &error)) {
        ShowNotice(tr("Cannot Delete the Board"), error, true, this);
        return false;
    }
    if (shown) {
        canvas()->discardPlacedItem();
        m_document->newBoard(QSize(1, 1));
        m_area->fillViewport();
    }
    m_boards->refresh();
    return true;
}

void WhiteboardWidget::copyBoard()
{
    canvas()->settle();
    QApplication::clipboard()->setImage(m_document->layer()->flattened(canvas()->background()));
}

bool WhiteboardWidget::pasteFromClipboard()
{
    const QMimeData *data = QApplication::clipboard()->mimeData();
    return data && placeData(data, visibleLayerArea().center());
}

bool WhiteboardWidget::placeData(const QMimeData *data, const QPointF &centre)
{
    if (data->hasImage()) {
        placePicture(qvariant_cast<QImage>(data->imageData()), centre);
        return true;
    }
    const QString file = FirstPictureFile(data);
    if (!file.isEmpty())
        return insertPicture(file, centre);
    if (!data->hasText() || data->text().trimmed().isEmpty())
        return false;
    FloatingItem item = FloatingItem::text(
        data->text(), inLayerPixels(WhiteboardTextDialog::rememberedFont()), m_tools->pens().color());
    const QSizeF room = visibleLayerArea().size() - QSizeF(40, 40);
    item.fitInto(QRectF(centre - QPointF(room.width() / 2, room.height() / 2), room));
    canvas()->placeItem(item);
    return true;
}

void WhiteboardWidget::choosePicture()
{
    const QString path = QFileDialog::getOpenFileName(
        this, tr("Put a Picture on the Board"), QString(),
        tr("Pictures (*.png *.jpg *.jpeg *.bmp *.gif *.webp *.svg);;All files (*)"));
    if (!path.isEmpty())
        insertPicture(path);
}

bool WhiteboardWidget::insertPicture(const QString &path)
{
    return insertPicture(path, visibleLayerArea().center());
}

bool WhiteboardWidget::insertPicture(const QString &path, const QPointF &centre)
{
    QString error;
    const QImage picture = BoardFile::read(path, &error);
    if (picture.isNull()) {
        ShowNotice(tr("Cannot Use the Picture"), error, true, this);
        return false;
    }
    placePicture(picture, centre);
    return true;
}

void WhiteboardWidget::placePicture(const QImage &picture, const QPointF &centre)
{
    FloatingItem item = FloatingItem::picture(picture);
    if (item.isNull())
        return;
    const QRectF visible = visibleLayerArea();
    const QSizeF room = visible.size() * kPictureShare;
    item.fitInto(QRectF(centre - QPointF(room.width() / 2, room.height() / 2), room));
    canvas()->placeItem(item);
}

bool WhiteboardWidget::placeText(const QPointF &layerPos)
{
    WhiteboardTextDialog dialog(this);
    dialog.setTextColor(m_tools->pens().color());
    if (dialog.exec() != QDialog::Accepted || dialog.text().trimmed().isEmpty())
        return false;
    FloatingItem item =
        FloatingItem::text(dialog.text(), inLayerPixels(dialog.textFont()), dialog.textColor());
    item.setRect(QRectF(layerPos, item.naturalSize()));
    canvas()->placeItem(item);
    return true;
}

QFont WhiteboardWidget::inLayerPixels(QFont font) const
{
    // Points are 1/72 inch and the screen counts 96 pixels to the inch; the layer has more
    // pixels than that on a HiDPI screen.
    font.setPixelSize(qMax(1, qRound(font.pointSizeF() * 96 / 72 * canvas()->layerScale())));
    return font;
}

QRectF WhiteboardWidget::visibleLayerArea() const
{
    const qreal scale = canvas()->layerScale();
    const QRectF shown(m_area->horizontalScrollBar()->value(), m_area->verticalScrollBar()->value(),
                       m_area->viewport()->width(), m_area->viewport()->height());
    return QRectF(shown.topLeft() * scale, shown.size() * scale);
}

void WhiteboardWidget::reopenLastBoard()
{
    const QString last = ReadDetail(kWindow, kLastBoard, QString());
    QString error;
    // A board that has gone since is simply not reopened: the user deleted or moved it.
    if (!last.isEmpty() && QFileInfo(LocalPath(last)).isFile())
        m_document->open(LocalPath(last), &error);
}

// ---- settings, theme, window ----

void WhiteboardWidget::openSettingsDialog()
{
    WhiteboardSettingsDialog dialog(this);
    connect(&dialog, &WhiteboardSettingsDialog::settingsSaved, this, &WhiteboardWidget::applySettings);
    dialog.exec();
}

void WhiteboardWidget::ThemeElementsUpdate()
{
    WidgetWindow::ThemeElementsUpdate();
    const QColor text = ApplyPanelToolTheme(m_title, panel());
    m_tools->setInk(text);
}

void WhiteboardWidget::relayout()
{
    PlaceBarTitle(m_title, barHeight());
}

void WhiteboardWidget::saveValues()
{
    m_tools->pens().save();
    WriteDetail(kWindow, kLastBoard, m_document->path());
    WriteDetail(kWindow, kSidePanel, SettingFromBool(m_boards->isVisible()));
    const QList<int> sizes = m_split->sizes();
    if (sizes.size() == 2 && m_boards->isVisible())
        WriteDetail(kWindow, kSidePanelWidth, QString::number(sizes.at(1)));
}

bool WhiteboardWidget::settleBeforeClose()
{
    return settleUnsaved();
}

void WhiteboardWidget::closeEvent(QCloseEvent *event)
{
    if (!isClosingSettled() && !settleUnsaved()) {
        event->ignore();
        return;
    }
    m_recovery->discard(); // saved, or the user chose to lose the changes
    WidgetWindow::closeEvent(event);
}

void WhiteboardWidget::showEvent(QShowEvent *event)
{
    WidgetWindow::showEvent(event);
    if (!m_offered)
        QTimer::singleShot(0, this, &WhiteboardWidget::offerRecoveredBoard);
}

void WhiteboardWidget::offerRecoveredBoard()
{
    if (m_offered)
        return;
    m_offered = true;
    const std::optional<RecoveryEntry> copy = BoardRecovery::leftBehind();
    if (!copy)
        return;
    const QString when = QLocale().toString(copy->savedAt.toLocalTime(), QLocale::ShortFormat);
    if (!AskChoice(
            tr("Restore the Board?"),
            tr("Vantora stopped while \"%1\" had changes that were not saved. A copy from %2 was kept. "
               "Restore it? Discarding it loses those changes.")
                .arg(copy->caption, when),
            tr("&Restore"), tr("&Discard"), true, this)) {
        BoardRecovery::discardAll();
        return;
    }
    canvas()->settle();
    BoardRecovery::discardAll();
    if (!BoardRecovery::restoreInto(m_document, *copy)) {
        ShowNotice(tr("Cannot Restore the Board"), tr("The copy of the board is damaged and cannot be read."),
                   true, this);
        return;
    }
    m_area->fillViewport();
    // Copied again at once, so that another stop before the next change still has it.
    m_recovery->writeNow();
}

void WhiteboardWidget::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasImage() || !FirstPictureFile(event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void WhiteboardWidget::dropEvent(QDropEvent *event)
{
    if (placeData(event->mimeData(), canvas()->toLayer(canvas()->mapFrom(this, event->position().toPoint()))))
        event->acceptProposedAction();
}
