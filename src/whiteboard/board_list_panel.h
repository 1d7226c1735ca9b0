#pragma once

#include <QWidget>

class BoardThumbnails;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QSpacerItem;
struct BoardEntry;

// The boards saved in the board folder, as thumbnails with their names, the most recently
// changed first ("lstBOARDS"). Double click or Enter asks to open one, Delete asks to delete
// it; the whiteboard decides (it asks about unsaved changes and confirms deleting).
// Thumbnails are read a few at a time after the list shows, so that a folder of many large
// boards does not hold the window up; a thumbnail is read again only when its file changed.
class BoardListPanel : public QWidget
{
    Q_OBJECT
public:
    explicit BoardListPanel(QWidget *parent = nullptr);

    void setFolder(const QString &folder);
    QString folder() const;
    // Lists the folder again, keeping the selection.
    void refresh();
    // Marks the board open in the whiteboard (shown in bold); empty for none.
    void setCurrentBoard(const QString &path);
    QString selectedBoard() const;

signals:
    void openRequested(const QString &path);
    void deleteRequested(const QString &path);

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void fitToFont();
    // The "no boards" note in colours that read whatever the theme.
    void colourEmptyNote();
    void fill(const QList<BoardEntry> &boards, const QString &select, int fallbackRow);
    QListWidgetItem *boardItem(const BoardEntry &board) const;
    QSize itemSize() const;
    QListWidgetItem *itemFor(const QString &path) const;
    void showThumbnail(const QString &path);
    void decorate(QListWidgetItem *item) const;
    QString toolTipFor(const QListWidgetItem *item) const;
    QPixmap framed(const QImage &thumbnail) const;
    QPixmap placeholder() const;
    void markCurrent();
    void activate(QListWidgetItem *item);
    void showMenu(const QPoint &position);

    QString m_folder;
    QString m_current;
    QLabel *m_empty = nullptr;
    QListWidget *m_list = nullptr;
    BoardThumbnails *m_thumbnails = nullptr;
    QSpacerItem *m_widthHint = nullptr;
};
