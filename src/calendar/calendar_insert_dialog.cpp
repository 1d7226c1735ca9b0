#include "calendar/calendar_insert_dialog.h"

#include "calendar/calendar_stickers.h"
#include "core/picture_files.h"
#include "core/settings_store.h"
#include "themes/message_box.h"
#include "themes/panel_tool_style.h"

#include <QButtonGroup>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QImageReader>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QStandardPaths>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtMath>

namespace {

const QString kWindowName = QStringLiteral("fcln_INS");
const QString kLastSticker = QStringLiteral("Last Sticker");

constexpr int kColumns = 4;
constexpr int kIconSide = 40;
constexpr int kPreviewSide = 72;
constexpr int kCaptionChars = 24;
const QColor kPreviewBackground(0xFA, 0xFA, 0xFA);

QString picturesFolder()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return !pictures.isEmpty() && QDir(pictures).exists() ? pictures : QDir::homePath();
}

QString pictureFilter()
{
    QStringList patterns;
    for (const QByteArray &format : QImageReader::supportedImageFormats())
        patterns << QStringLiteral("*.") + QString::fromLatin1(format);
    return QCoreApplication::translate("CalendarInsertDialog", "Pictures (%1);;All files (*)")
        .arg(patterns.join(QLatin1Char(' ')));
}

// `image` scaled to fit a `side` square for a screen of `pixelRatio`, never enlarged.
QPixmap previewPixmap(const QImage &image, int side, qreal pixelRatio)
{
    const int pixels = qCeil(side * pixelRatio);
    QImage shown = image;
    if (image.width() > pixels || image.height() > pixels)
        shown = image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPixmap pixmap = QPixmap::fromImage(shown);
    pixmap.setDevicePixelRatio(pixelRatio);
    return pixmap;
}

} // namespace

CalendarInsertDialog::CalendarInsertDialog(const QDate &date, QWidget *parent)
    : ThemedDialog(kWindowName,
                   tr("Insert into %1").arg(QLocale().toString(date, tr("d MMMM", "day and month"))), parent),
      m_stickers(new QButtonGroup(this)), m_pictureButton(new QPushButton(tr("Picture from &File..."))),
      m_preview(new QLabel), m_caption(new QLabel), m_insert(new QPushButton(tr("&Insert"))),
      m_cancel(new QPushButton(tr("Cancel")))
{
    m_pictureButton->setObjectName(QStringLiteral("cmdPICTURE"));
    m_pictureButton->setToolTip(tr("Put a picture from a file on the day instead of a sticker"));
    setUpPreview();
    m_insert->setObjectName(QStringLiteral("cmdINSERT"));
    m_insert->setToolTip(tr("Put the chosen sticker or picture on the day"));
    setDefaultButton(m_insert);
    m_cancel->setObjectName(QStringLiteral("cmdCANCEL"));
    m_cancel->setToolTip(tr("Close without putting anything on the day"));

    setPanelLayout(buildLayout(buildStickerGrid()));
    // Styled before the dialog takes its size: the style sets the buttons' padding, and
    // applied only with the theme it would make the dialog grow once already shown.
    styleStickerGrid();

    const int last = ReadIntDetail(kWindowName, kLastSticker, -1);
    if (last >= 0 && last < CalendarStickerCount())
        m_stickers->button(last)->setChecked(true);
    showChoice();
    m_grid->setFocus();

    connect(m_stickers, &QButtonGroup::idClicked, this, &CalendarInsertDialog::selectSticker);
    connect(m_pictureButton, &QPushButton::clicked, this, &CalendarInsertDialog::browseForPicture);
    connect(m_insert, &QPushButton::clicked, this, &CalendarInsertDialog::insert);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
}

void CalendarInsertDialog::setUpPreview()
{
    m_preview->setObjectName(QStringLiteral("lblPREVIEW"));
    m_preview->setFixedSize(kPreviewSide + 8, kPreviewSide + 8);
    m_preview->setAlignment(Qt::AlignCenter);
    m_preview->setFrameShape(QFrame::StyledPanel);
    // A light square like a calendar page, whatever the theme: how the choice will look on the day.
    m_preview->setAutoFillBackground(true);
    QPalette page = m_preview->palette();
    page.setColor(QPalette::Window, kPreviewBackground);
    m_preview->setPalette(page);
    m_caption->setObjectName(QStringLiteral("lblCHOSEN"));
    m_caption->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    // Room for the longest caption from the start, so that choosing never resizes the dialog;
    // the captions break their own lines (a word-wrapped label would be sized only once shown).
    m_caption->setFixedWidth(fontMetrics().averageCharWidth() * kCaptionChars);
    m_caption->setMinimumHeight(fontMetrics().lineSpacing() * 3);
}

QWidget *CalendarInsertDialog::buildStickerGrid()
{
    m_grid = new QWidget;
    m_grid->setObjectName(QStringLiteral("fraSTICKERS"));
    auto *grid = new QGridLayout(m_grid);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(4);
    for (int i = 0; i < CalendarStickerCount(); ++i) {
        auto *button = new QToolButton;
        button->setObjectName(QStringLiteral("btnSTICKER_%1").arg(i));
        button->setToolTip(CalendarStickerName(i));
        button->setIcon(stickerIcon(i));
        button->setIconSize(QSize(kIconSide, kIconSide));
        button->setCheckable(true);
        button->setAutoRaise(true);
        button->installEventFilter(this);
        m_stickers->addButton(button, i);
        grid->addWidget(button, i / kColumns, i % kColumns);
    }
    return m_grid;
}

QLayout *CalendarInsertDialog::buildLayout(QWidget *grid)
{
    auto *stickersLabel = new QLabel(tr("&Stickers:"));
    stickersLabel->setBuddy(grid);
    auto *left = new QVBoxLayout;
    left->addWidget(stickersLabel);
    left->addWidget(grid);
    left->addStretch(1);

    auto *right = new QVBoxLayout;
    right->addWidget(new QLabel(tr("Chosen:")));
    right->addWidget(m_preview, 0, Qt::AlignHCenter);
    right->addSpacing(fontMetrics().height() / 3);
    right->addWidget(m_caption, 1);
    right->addWidget(m_pictureButton);

    auto *choices = new QHBoxLayout;
    choices->addLayout(left);
    choices->addSpacing(fontMetrics().averageCharWidth() * 2);
    choices->addLayout(right, 1);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_insert);
    buttons->addWidget(m_cancel);

    auto *layout = new QVBoxLayout;
    layout->addLayout(choices);
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addLayout(buttons);
    return layout;
}

QIcon CalendarInsertDialog::stickerIcon(int index) const
{
    // Drawn for ordinary and double-density screens, and for this one's ratio when it is
    // neither, so that the icon is never an enlarged copy.
    QIcon icon;
    QList<qreal> ratios{1.0, 2.0};
    if (!ratios.contains(devicePixelRatioF()))
        ratios << devicePixelRatioF();
    for (qreal ratio : ratios) {
        QPixmap pixmap = QPixmap::fromImage(CalendarStickerImage(index, qCeil(kIconSide * ratio)));
        pixmap.setDevicePixelRatio(ratio);
        icon.addPixmap(pixmap);
    }
    return icon;
}

QImage CalendarInsertDialog::chosenImage(int stickerSide) const
{
    if (isPicture())
        return m_picture;
    return CalendarStickerImage(m_stickers->checkedId(), stickerSide);
}

QString CalendarInsertDialog::chosenName() const
{
    return isPicture() ? m_pictureName : CalendarStickerName(m_stickers->checkedId());
}

void CalendarInsertDialog::selectSticker(int index)
{
    m_stickers->button(index)->setChecked(true);
    m_picture = QImage();
    m_pictureName.clear();
    showChoice();
}

void CalendarInsertDialog::choosePictureFile(const QString &path)
{
    QString error;
    const QImage picture = ReadPictureFile(path, &error);
    const QString name = QFileInfo(path).fileName();
    if (picture.isNull()) {
        ShowNotice(tr("Cannot Use the Picture"),
                   tr("%1 could not be read as a picture (%2). Choose a picture file, such as a PNG or "
                      "JPEG photo.")
                       .arg(name, error),
                   true, this);
        return;
    }
    m_picture = picture;
    m_pictureName = name;
    // The group keeps one button checked while it is exclusive.
    if (QAbstractButton *checked = m_stickers->checkedButton()) {
        m_stickers->setExclusive(false);
        checked->setChecked(false);
        m_stickers->setExclusive(true);
    }
    showChoice();
}

void CalendarInsertDialog::browseForPicture()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("Insert a Picture"), picturesFolder(), pictureFilter());
    if (!path.isEmpty())
        choosePictureFile(path);
}

void CalendarInsertDialog::showChoice()
{
    const int sticker = m_stickers->checkedId();
    const qreal ratio = devicePixelRatioF();
    if (isPicture()) {
        m_preview->setPixmap(previewPixmap(m_picture, kPreviewSide, ratio));
        const QString name =
            m_caption->fontMetrics().elidedText(m_pictureName, Qt::ElideMiddle, m_caption->width());
        m_caption->setText(tr("%1\n%2 × %3 pixels").arg(name).arg(m_picture.width()).arg(m_picture.height()));
    } else if (sticker >= 0) {
        m_preview->setPixmap(
            previewPixmap(CalendarStickerImage(sticker, qCeil(kPreviewSide * ratio)), kPreviewSide, ratio));
        m_caption->setText(CalendarStickerName(sticker));
    } else {
        m_preview->clear();
        m_caption->setText(tr("Choose a sticker,\nor a picture from a file."));
    }
    m_insert->setEnabled(isPicture() || sticker >= 0);

    // The grid is one stop for Tab, at the chosen sticker (or the first); arrows move inside it.
    QAbstractButton *current = sticker >= 0 ? m_stickers->button(sticker) : m_stickers->button(0);
    for (QAbstractButton *button : m_stickers->buttons())
        button->setFocusPolicy(button == current ? Qt::StrongFocus : Qt::ClickFocus);
    m_grid->setFocusProxy(current);
}

bool CalendarInsertDialog::moveInGrid(int from, int key)
{
    int to = from;
    switch (key) {
    case Qt::Key_Left:
        to = from - 1;
        break;
    case Qt::Key_Right:
        to = from + 1;
        break;
    case Qt::Key_Up:
        to = from - kColumns;
        break;
    case Qt::Key_Down:
        to = from + kColumns;
        break;
    default:
        return false;
    }
    // At the edge the key does nothing, rather than leaving the grid.
    if (to >= 0 && to < CalendarStickerCount()) {
        selectSticker(to);
        m_stickers->button(to)->setFocus(Qt::TabFocusReason);
    }
    return true;
}

bool CalendarInsertDialog::eventFilter(QObject *watched, QEvent *event)
{
    const int index = m_stickers->id(qobject_cast<QAbstractButton *>(watched));
    if (index < 0)
        return ThemedDialog::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonDblClick) {
        selectSticker(index);
        insert();
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        if (key->modifiers() & ~Qt::KeypadModifier)
            return false;
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            // The sticker with the focus, even when the arrows have not chosen it yet.
            selectSticker(index);
            insert();
            return true;
        }
        return moveInGrid(index, key->key());
    }
    return ThemedDialog::eventFilter(watched, event);
}

void CalendarInsertDialog::insert()
{
    const int sticker = m_stickers->checkedId();
    if (!isPicture() && sticker < 0)
        return;
    if (!isPicture())
        WriteDetail(kWindowName, kLastSticker, QString::number(sticker));
    accept();
}

void CalendarInsertDialog::ThemeElementsUpdate()
{
    ThemedDialog::ThemeElementsUpdate();
    styleStickerGrid();
}

void CalendarInsertDialog::styleStickerGrid()
{
    // Flat sticker buttons, the chosen one tinted in the panel's text colour and the one with
    // the focus framed in it: the desktop's raised buttons would hide the stickers' colours
    // behind their own.
    PreparePanelTools(m_grid);
    m_grid->update();
}
