#pragma once

#include "themes/themed_dialog.h"

#include <QDate>
#include <QImage>

class QButtonGroup;
class QLabel;
class QPushButton;
class QToolButton;

// fcln_INS: what to put on a day of the calendar, one of the stickers or a picture file.
// "Insert" (the default button; also a double-click or Enter on a sticker) accepts once
// something is chosen. The sticker inserted last is chosen when the dialog next opens, from
// "fcln_INS\Details".
class CalendarInsertDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit CalendarInsertDialog(const QDate &date, QWidget *parent = nullptr);

    // What to put on the day: the sticker drawn at `stickerSide` pixels, or the chosen picture
    // as read (full size); a null image when nothing is chosen.
    QImage chosenImage(int stickerSide) const;
    bool isPicture() const { return !m_picture.isNull(); }
    // The sticker's name or the picture's file name, for the undo label.
    QString chosenName() const;

    // Reads `path` as the chosen picture, what "Picture from File..." does with the file
    // picked. A file that is not a readable picture gets a notice and changes nothing.
    void choosePictureFile(const QString &path);

public slots:
    void ThemeElementsUpdate() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void setUpPreview();
    QWidget *buildStickerGrid();
    void styleStickerGrid();
    QLayout *buildLayout(QWidget *grid);
    QIcon stickerIcon(int index) const;
    void selectSticker(int index);
    // Arrows move the choice through the grid; false for keys that are not the grid's.
    bool moveInGrid(int from, int key);
    void browseForPicture();
    void showChoice();
    void insert();

    QButtonGroup *m_stickers;
    QWidget *m_grid = nullptr;
    QPushButton *m_pictureButton;
    QLabel *m_preview;
    QLabel *m_caption;
    QPushButton *m_insert;
    QPushButton *m_cancel;
    QImage m_picture;
    QString m_pictureName;
};
