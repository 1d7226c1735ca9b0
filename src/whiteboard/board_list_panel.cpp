#include "whiteboard/board_list_panel.h"

#include "core/file_helpers.h"
#include "themes/theme_colors.h"
#include "whiteboard/board_folder.h"
#include "whiteboard/board_thumbnails.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QMenu>
#include <QPainter>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QtMath>

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kModifiedRole = Qt::UserRole + 1;

// Sizes in text lines, so that the panel grows with the font on large or HiDPI screens.
constexpr int kPanelLines = 14;
constexpr int kMinimumPanelLines = 9;
constexpr int kThumbnailLines = 6;
constexpr int kThumbnailHeightLines = 4;

QString cleanAbsolute(const QString &path)
{
    return path.isEmpty() ? QString() : QDir::cleanPath(QFileInfo(LocalPath(path)).absoluteFilePath());
}

// A see-through pixmap of the thumbnail box in device pixels. Every thumbnail is drawn into the
// same box, so that the rows keep one height and the names one line whatever the boards' shapes.
QPixmap emptyBox(const QSize &box, qreal ratio)
{
    QPixmap pixmap((QSizeF(box) * ratio).toSize());
    pixmap.fill(Qt::transparent);
    return pixmap;
}

// One column of thumbnails with the names under them, shortened in the middle (the tooltip
// gives the whole name) rather than widening the panel.
QListWidget *boardList()
{
    auto *list = new QListWidget;
    list->setObjectName(QStringLiteral("lstBOARDS"));
    list->setToolTip(QCoreApplication::translate(
        "BoardListPanel", "Saved boards: double-click one or press Enter to open it, Delete to delete it"));
    list->setViewMode(QListView::IconMode);
    list->setFlow(QListView::TopToBottom);
    list->setWrapping(false);
    list->setMovement(QListView::Static);
    list->setResizeMode(QListView::Adjust);
    list->setWordWrap(false);
    list->setTextElideMode(Qt::ElideMiddle);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Expanding);
    list->setContextMenuPolicy(Qt::CustomContextMenu);
    return list;
}

QString pathOf(const QListWidgetItem *item)
{
    return item ? item->data(kPathRole).toString() : QString();
}

} // namespace

BoardListPanel::BoardListPanel(QWidget *parent) : QWidget(parent)
{
    auto *caption = new QLabel(tr("Saved &boards"));
    caption->setObjectName(QStringLiteral("lblBOARDS"));
    m_list = boardList();
    m_list->installEventFilter(this);
    m_list->viewport()->installEventFilter(this);
    caption->setBuddy(m_list);
    m_empty = new QLabel(tr("No saved boards yet. Boards you save appear here."));
    m_empty->setObjectName(QStringLiteral("lblNOBOARDS"));
    m_empty->setWordWrap(true);
    m_empty->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_thumbnails = new BoardThumbnails(this);
    // The panel's width as a splitter first gives it comes from this; it can still be narrowed.
    m_widthHint = new QSpacerItem(0, 0, QSizePolicy::Preferred, QSizePolicy::Fixed);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(3);
    layout->addWidget(caption);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_empty, 1);
    layout->addSpacerItem(m_widthHint);

    connect(m_list, &QListWidget::itemActivated, this, &BoardListPanel::activate);
    connect(m_list, &QListWidget::customContextMenuRequested, this, &BoardListPanel::showMenu);
    connect(m_thumbnails, &BoardThumbnails::thumbnailReady, this, &BoardListPanel::showThumbnail);
    fitToFont();
    colourEmptyNote();
    refresh();
}

void BoardListPanel::setFolder(const QString &folder)
{
    m_folder = folder;
    refresh();
}

QString BoardListPanel::folder() const
{
    return m_folder;
}

void BoardListPanel::refresh()
{
    const QString selected = selectedBoard();
    const int row = m_list->currentRow();
    const int scrolled = m_list->verticalScrollBar()->value();
    // The panel may have moved to a screen of another pixel ratio since it was last listed. The
    // thumbnails leave room inside the icon size for their border.
    m_thumbnails->setBox(m_list->iconSize() - QSize(2, 2), devicePixelRatioF());
    const QList<BoardEntry> boards =
        m_folder.isEmpty() ? QList<BoardEntry>() : BoardFolder(m_folder).boards();
    fill(boards, selected, row);
    m_list->verticalScrollBar()->setValue(scrolled);
    m_list->setVisible(!boards.isEmpty());
    m_empty->setVisible(boards.isEmpty());
}

void BoardListPanel::setCurrentBoard(const QString &path)
{
    m_current = cleanAbsolute(path);
    markCurrent();
}

QString BoardListPanel::selectedBoard() const
{
    const QListWidgetItem *item = m_list->currentItem();
    return item && item->isSelected() ? pathOf(item) : QString();
}

void BoardListPanel::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (!m_list)
        return; // still being built
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        fitToFont();
        refresh();
    } else if (event->type() == QEvent::PaletteChange) {
        colourEmptyNote();
        refresh(); // borders and placeholders take their colours from the palette
    }
}

void BoardListPanel::colourEmptyNote()
{
    // The note stands where the list would be and looks like the list's empty page: on the
    // panel's gradient no one colour reads on every theme, on the list's page one always does.
    const QPalette page = m_list->palette();
    const QColor text = SubduedOn(page.color(QPalette::Base), page.color(QPalette::Text));
    // A style sheet of its own, because the panel's style sheet colours every label.
    const QString css =
        QStringLiteral("QLabel { color: %1; background: %2; border: 1px solid %3; padding: 6px; }")
            .arg(text.name(), page.color(QPalette::Base).name(), page.color(QPalette::Mid).name());
    if (m_empty->styleSheet() != css)
        m_empty->setStyleSheet(css);
}

bool BoardListPanel::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_list->viewport() && event->type() == QEvent::Resize) {
        // Icon mode gives items the width they ask for: keep asking for the list's width.
        for (int i = 0; i < m_list->count(); ++i)
            m_list->item(i)->setSizeHint(itemSize());
    }
    if (watched == m_list && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->matches(QKeySequence::Delete) && m_list->currentItem()) {
            emit deleteRequested(pathOf(m_list->currentItem()));
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void BoardListPanel::fitToFont()
{
    const int line = fontMetrics().height();
    m_list->setIconSize(QSize(kThumbnailLines * line, kThumbnailHeightLines * line));
    m_list->setSpacing(qMax(2, line / 6));
    setMinimumWidth(kMinimumPanelLines * line);
    m_widthHint->changeSize(kPanelLines * line, 0, QSizePolicy::Preferred, QSizePolicy::Fixed);
    layout()->invalidate();
}

void BoardListPanel::fill(const QList<BoardEntry> &boards, const QString &select, int fallbackRow)
{
    const QSignalBlocker blocker(m_list);
    m_list->clear();
    QStringList paths;
    for (const BoardEntry &board : boards) {
        QListWidgetItem *item = boardItem(board);
        m_list->addItem(item);
        paths.append(board.path);
    }
    // Thumbnails still valid show at once; the others are read after the list has shown.
    m_thumbnails->load(paths);
    for (int i = 0; i < m_list->count(); ++i)
        decorate(m_list->item(i));
    markCurrent();
    QListWidgetItem *keep = itemFor(select);
    // The selected board is gone (deleted, most likely): select the one that took its place.
    if (!keep && !select.isEmpty() && m_list->count() > 0)
        keep = m_list->item(qBound(0, fallbackRow, m_list->count() - 1));
    if (keep)
        m_list->setCurrentItem(keep);
}

QListWidgetItem *BoardListPanel::boardItem(const BoardEntry &board) const
{
    auto *item = new QListWidgetItem(board.name);
    item->setData(kPathRole, board.path);
    item->setData(kModifiedRole, board.modified);
    item->setSizeHint(itemSize());
    return item;
}

// Every item as wide as the list, so that long names are shortened to fit rather than cut off,
// and as tall as a thumbnail and a name from the start, so the list does not jump as they arrive.
QSize BoardListPanel::itemSize() const
{
    const int line = fontMetrics().height();
    return {m_list->viewport()->width() - 2 * m_list->spacing(),
            m_list->iconSize().height() + line + line / 2};
}

QListWidgetItem *BoardListPanel::itemFor(const QString &path) const
{
    if (path.isEmpty())
        return nullptr;
    for (int i = 0; i < m_list->count(); ++i) {
        if (pathOf(m_list->item(i)) == path)
            return m_list->item(i);
    }
    return nullptr;
}

void BoardListPanel::showThumbnail(const QString &path)
{
    if (QListWidgetItem *item = itemFor(path))
        decorate(item);
}

void BoardListPanel::decorate(QListWidgetItem *item) const
{
    if (const BoardThumbnail *thumbnail = m_thumbnails->find(pathOf(item)))
        item->setIcon(thumbnail->image.isNull() ? placeholder() : framed(thumbnail->image));
    item->setToolTip(toolTipFor(item));
}

QString BoardListPanel::toolTipFor(const QListWidgetItem *item) const
{
    QStringList lines{item->text()};
    if (const BoardThumbnail *thumbnail = m_thumbnails->find(pathOf(item))) {
        lines << (thumbnail->pictureSize.isValid() ? tr("%1 \u00d7 %2 pixels")
                                                         .arg(thumbnail->pictureSize.width())
                                                         .arg(thumbnail->pictureSize.height())
                                                   : tr("This file cannot be read as a picture."));
    }
    const QDateTime modified = item->data(kModifiedRole).toDateTime();
    lines << tr("Changed %1").arg(QLocale().toString(modified, QLocale::ShortFormat));
    return lines.join(QLatin1Char('\n'));
}

QPixmap BoardListPanel::framed(const QImage &thumbnail) const
{
    const qreal ratio = m_thumbnails->devicePixelRatio();
    QPixmap pixmap = emptyBox(m_list->iconSize(), ratio);
    // A thin border sets a white board apart from a white list; whole device pixels keep it sharp.
    const int border = qMax(1, qFloor(ratio));
    QRect frame(QPoint(), thumbnail.size() + QSize(2 * border, 2 * border));
    // Centred above the name and resting on it, as a picture does on its label.
    frame.moveCenter(pixmap.rect().center());
    frame.moveBottom(pixmap.rect().bottom());
    QPainter painter(&pixmap);
    painter.fillRect(frame, palette().color(QPalette::Mid));
    const QRect inside = frame.adjusted(border, border, -border, -border);
    painter.fillRect(inside, Qt::white); // under a board saved with see-through parts
    painter.drawImage(inside, thumbnail);
    painter.end();
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

QPixmap BoardListPanel::placeholder() const
{
    const qreal ratio = m_thumbnails->devicePixelRatio();
    const QSize box = m_list->iconSize();
    QPixmap pixmap = emptyBox(box, ratio);
    pixmap.setDevicePixelRatio(ratio);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0x80, 0x80, 0x80), 1.0));
    painter.setBrush(QColor(0xd0, 0xd0, 0xd0));
    painter.drawRect(QRectF(0.5, 0.5, box.width() - 1.0, box.height() - 1.0));
    // A small cross in the middle says "no picture here" without any words to translate.
    const qreal arm = qMin(box.width(), box.height()) / 8.0;
    const QPointF centre(box.width() / 2.0, box.height() / 2.0);
    painter.setPen(QPen(QColor(0x70, 0x70, 0x70), qMax(1.5, arm / 4.0), Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(centre + QPointF(-arm, -arm), centre + QPointF(arm, arm));
    painter.drawLine(centre + QPointF(-arm, arm), centre + QPointF(arm, -arm));
    painter.end();
    return pixmap;
}

void BoardListPanel::markCurrent()
{
    for (int i = 0; i < m_list->count(); ++i) {
        QListWidgetItem *item = m_list->item(i);
        QFont font = m_list->font();
        font.setBold(!m_current.isEmpty() && pathOf(item) == m_current);
        item->setFont(font);
    }
}

void BoardListPanel::activate(QListWidgetItem *item)
{
    if (item)
        emit openRequested(pathOf(item));
}

void BoardListPanel::showMenu(const QPoint &position)
{
    QListWidgetItem *item = m_list->itemAt(position);
    if (!item)
        return;
    m_list->setCurrentItem(item);
    const QString path = pathOf(item);
    QMenu menu(this);
    menu.addAction(tr("&Open"), this, [this, path] { emit openRequested(path); });
    const QString deleteKey = QKeySequence(QKeySequence::Delete).toString(QKeySequence::NativeText);
    menu.addAction(tr("&Delete...") + QLatin1Char('\t') + deleteKey, this,
                   [this, path] { emit deleteRequested(path); });
    menu.exec(m_list->viewport()->mapToGlobal(position));
}
