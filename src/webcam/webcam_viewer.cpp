#include "webcam/webcam_viewer.h"

#include "core/clock_source.h"
#include "core/platform/wallpaper.h"
#include "core/settings_store.h"
#include "themes/credit_link.h"
#include "themes/message_box.h"
#include "themes/theme_colors.h"
#include "webcam/webcam_camera_dialog.h"
#include "webcam/webcam_session.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QLocale>
#include <QPointer>
#include <QPushButton>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

namespace {
QPointer<WebcamViewer> g_viewer;

// The picture keeps the cameras' usual 3:2 to 16:9 shapes readable at the viewer's size.
constexpr QSize kPictureSize(480, 300);
constexpr int kAgeCheckMs = 30 * 1000;
// Marks the row that heads the cameras without an address.
constexpr int kGroupRole = Qt::UserRole + 1;

const QString kAutoRefresh = QStringLiteral("Auto Refresh");
const QString kWallpaperStyle = QStringLiteral("Wallpaper Style");
const QString kWallpaperFollow = QStringLiteral("Wallpaper Follow");

template <typename T>
T *named(T *widget, const char *name)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}
} // namespace

WebcamViewer::WebcamViewer(QWidget *parent)
    : ThemedDialog(WebcamSession::WindowName, tr("Vantora Webcam Wallpaper"), parent)
    , m_session(new WebcamSession(this))
    , m_ageTimer(new QTimer(this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    auto *columns = new QHBoxLayout;
    columns->addWidget(buildCameraColumn());
    columns->addWidget(buildPictureColumn(), 1);
    auto *layout = new QVBoxLayout;
    layout->addLayout(columns, 1);
    layout->addLayout(buildWallpaperRow());
    setPanelLayout(layout);
    setDefaultButton(m_refresh);

    m_ageTimer->setInterval(kAgeCheckMs);
    connect(m_ageTimer, &QTimer::timeout, this, &WebcamViewer::showStatus);
    connect(m_session, &WebcamSession::pictureChanged, this, &WebcamViewer::showPicture);
    connect(m_session, &WebcamSession::busyChanged, this, &WebcamViewer::showStatus);
    connect(m_session, &WebcamSession::noticeChanged, m_notice, &QLabel::setText);
    connect(m_session, &WebcamSession::snapshotStored, this, [this] {
        if (m_follow->isChecked())
            setWallpaper();
    });

    const QString last = WebcamSession::lastCameraName();
    fillList(last);
    const WebcamCamera *lastCamera = m_catalogue.find(last);
    // Refresh and automatic refresh work on the camera shown, even before a new choice.
    m_session->setCurrentCamera(lastCamera ? *lastCamera : WebcamCamera{last, {}, {}, {}, {}, false});
    m_session->loadLastSnapshot(m_session->currentCamera());
    showPicture();
    if (!m_catalogue.loadProblem().isEmpty())
        m_notice->setText(m_catalogue.loadProblem());
    if (WebcamSession::playLastOnOpen() && lastCamera)
        m_session->chooseCamera(*lastCamera);
    m_session->setAutoRefresh(m_autoRefresh->isChecked());
}

WebcamViewer::~WebcamViewer() = default;

WebcamViewer *WebcamViewer::showViewer(QWidget *owner)
{
    if (!g_viewer)
        g_viewer = new WebcamViewer(owner);
    g_viewer->show();
    g_viewer->raise();
    g_viewer->activateWindow();
    return g_viewer;
}

QWidget *WebcamViewer::buildCameraColumn()
{
    m_list = named(new QListWidget, "lstWEBCAMS");
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setToolTip(tr("Click a camera to fetch its picture"));
    m_list->installEventFilter(this);
    m_add = named(new QPushButton(tr("&Add...")), "btnADD");
    m_add->setToolTip(tr("Add a camera of your own: a name and the address of its still picture"));
    m_edit = named(new QPushButton(tr("&Change...")), "btnEDIT");
    m_edit->setToolTip(tr("Change the name or address of a camera you added"));
    m_remove = named(new QPushButton(tr("Re&move")), "btnREMOVE");
    m_remove->setToolTip(tr("Remove a camera you added"));
    connect(m_list, &QListWidget::itemClicked, this, &WebcamViewer::chooseItem);
    connect(m_list, &QListWidget::currentItemChanged, this, &WebcamViewer::updateCameraButtons);
    connect(m_add, &QPushButton::clicked, this, &WebcamViewer::addCamera);
    connect(m_edit, &QPushButton::clicked, this, &WebcamViewer::editCamera);
    connect(m_remove, &QPushButton::clicked, this, &WebcamViewer::removeCamera);

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(m_add);
    buttons->addWidget(m_edit);
    buttons->addWidget(m_remove);
    auto *column = new QWidget;
    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *caption = new QLabel(tr("&Cameras:"));
    caption->setBuddy(m_list);
    layout->addWidget(caption);
    layout->addWidget(m_list, 1);
    layout->addLayout(buttons);
    return column;
}

QWidget *WebcamViewer::buildPictureColumn()
{
    m_picture = named(new QLabel, "imgWEB");
    m_picture->setMinimumSize(kPictureSize);
    // The picture is scaled to the label, never the label to the picture.
    m_picture->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    m_picture->setAlignment(Qt::AlignCenter);
    m_picture->setWordWrap(true);
    m_credit = named(new QLabel, "lblCREDIT");
    m_credit->setAlignment(Qt::AlignRight);
    m_credit->setOpenExternalLinks(true);
    m_credit->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    m_status = named(new QLabel, "lblSTATUS");
    m_notice = named(new QLabel, "lblNOTICE");
    m_notice->setWordWrap(true);
    m_notice->setTextInteractionFlags(Qt::TextSelectableByMouse);
    // Two lines kept free so that a notice does not push the picture around.
    m_notice->setMinimumHeight(m_notice->fontMetrics().lineSpacing() * 2);
    m_notice->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto *statusRow = new QHBoxLayout;
    statusRow->addWidget(m_status, 1);
    statusRow->addWidget(m_credit);
    auto *column = new QWidget;
    auto *layout = new QVBoxLayout(column);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_picture, 1);
    layout->addLayout(statusRow);
    layout->addWidget(m_notice);
    return column;
}

QLayout *WebcamViewer::buildWallpaperRow()
{
    m_refresh = named(new QPushButton(tr("&Refresh")), "btnREFRESH");
    m_refresh->setToolTip(tr("Fetch the chosen camera's picture now"));
    m_autoRefresh = named(new QCheckBox(tr("Refresh a&utomatically")), "chkREFRESH");
    m_autoRefresh->setChecked(ReadBoolDetail(WebcamSession::WindowName, kAutoRefresh, false));
    m_autoRefresh->setToolTip(tr("Fetch a new picture at the pace set in Program Settings"));
    m_style = named(new QComboBox, "cboSTYLE");
    m_style->addItems({tr("Centre"), tr("Tile"), tr("Stretch")});
    m_style->setCurrentIndex(qBound(0, ReadIntDetail(WebcamSession::WindowName, kWallpaperStyle, 2), 2));
    auto *styleLabel = new QLabel(tr("St&yle:"));
    styleLabel->setBuddy(m_style);
    auto *setButton = named(new QPushButton(tr("Set as &Wallpaper")), "btnWALLPAPER");
    setButton->setToolTip(tr("Make the picture shown the desktop wallpaper"));
    m_follow = named(new QCheckBox(tr("&Keep the wallpaper up to date")), "chkFOLLOW");
    m_follow->setChecked(ReadBoolDetail(WebcamSession::WindowName, kWallpaperFollow, false));
    m_follow->setToolTip(tr("Make every new picture the wallpaper as it arrives"));
    auto *close = named(new QPushButton(tr("Close")), "btnCLOSE");

    connect(m_refresh, &QPushButton::clicked, this, &WebcamViewer::fetchSelected);
    connect(m_autoRefresh, &QCheckBox::toggled, m_session, &WebcamSession::setAutoRefresh);
    connect(setButton, &QPushButton::clicked, this, &WebcamViewer::setWallpaper);
    connect(close, &QPushButton::clicked, this, &QDialog::close);

    auto *row = new QGridLayout;
    row->addWidget(m_refresh, 0, 0);
    row->addWidget(m_autoRefresh, 0, 1);
    row->setColumnStretch(2, 1);
    row->addWidget(styleLabel, 0, 3);
    row->addWidget(m_style, 0, 4);
    row->addWidget(setButton, 0, 5);
    row->addWidget(m_follow, 1, 3, 1, 3, Qt::AlignRight);
    row->addWidget(close, 0, 6);
    return row;
}

void WebcamViewer::fillList(const QString &selectName)
{
    m_list->clear();
    m_group = nullptr;
    int widest = 0;
    QList<const WebcamCamera *> unknown;
    for (const WebcamCamera &camera : m_catalogue.cameras()) {
        widest = qMax(widest, m_list->fontMetrics().horizontalAdvance(camera.name));
        if (camera.address.isEmpty()) {
            unknown.append(&camera);
            continue;
        }
        auto *item = new QListWidgetItem(camera.name, m_list);
        if (camera.own)
            item->setToolTip(camera.address);
        if (camera.name == selectName)
            m_list->setCurrentItem(item);
    }
    if (!unknown.isEmpty())
        addUnknownGroup(unknown, selectName);
    colourList();
    // Every name whole, with room for the scroll bar.
    m_list->setMinimumWidth(widest + m_list->style()->pixelMetric(QStyle::PM_ScrollBarExtent) +
                            4 * m_list->frameWidth() + m_list->fontMetrics().averageCharWidth() * 2);
    if (QListWidgetItem *current = m_list->currentItem())
        m_list->scrollToItem(current, QAbstractItemView::PositionAtCenter);
    updateCameraButtons();
}

void WebcamViewer::addUnknownGroup(const QList<const WebcamCamera *> &cameras, const QString &selectName)
{
    m_group = new QListWidgetItem(m_list);
    m_group->setData(kGroupRole, true);
    m_group->setToolTip(
        tr("Cameras whose picture address is not known: Enter or a click shows or hides them"));
    QFont bold = m_list->font();
    bold.setBold(true);
    m_group->setFont(bold);
    for (const WebcamCamera *camera : cameras) {
        auto *item = new QListWidgetItem(camera->name, m_list);
        item->setToolTip(tr("No picture address is known for this camera"));
        item->setHidden(!m_groupOpen);
        // The group opens only when the user opens it; a camera of it stays chosen while it is
        // open (after adding or removing a camera of one's own).
        if (m_groupOpen && camera->name == selectName)
            m_list->setCurrentItem(item);
    }
    showGroupState();
}

void WebcamViewer::showGroupState()
{
    const int count = m_list->count() - m_list->row(m_group) - 1;
    const QString marker = m_groupOpen ? QStringLiteral("\u25BE ") : QStringLiteral("\u25B8 ");
    m_group->setText(marker + tr("Cameras without an address (%1)").arg(count));
}

void WebcamViewer::setGroupOpen(bool open)
{
    if (!m_group || open == m_groupOpen)
        return;
    m_groupOpen = open;
    const bool hidingCurrent = !open && m_list->currentRow() > m_list->row(m_group);
    for (int row = m_list->row(m_group) + 1; row < m_list->count(); ++row)
        m_list->item(row)->setHidden(!open);
    if (hidingCurrent)
        m_list->setCurrentItem(m_group);
    showGroupState();
    if (open)
        m_list->scrollToItem(m_list->item(m_list->row(m_group) + 1));
}

bool WebcamViewer::isGroupRow(const QListWidgetItem *item)
{
    return item && item->data(kGroupRole).toBool();
}

void WebcamViewer::colourList()
{
    // The selection's own text colour is not always readable on its highlight (the desktop's
    // white on mid blue is not), so each state gets the better of it, black or white.
    QPalette pal;
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        const QPalette inherited = m_list->parentWidget()->palette();
        pal.setColor(group, QPalette::HighlightedText,
                     ReadableOn(inherited.color(group, QPalette::Highlight),
                                inherited.color(group, QPalette::HighlightedText)));
    }
    m_list->setPalette(pal);
    // Cameras without an address are quieter, yet still readable: choosing one explains why
    // no picture comes.
    m_quietText = SubduedOn(m_list->palette().color(QPalette::Base), m_list->palette().color(QPalette::Text));
    for (int row = m_group ? m_list->row(m_group) + 1 : m_list->count(); row < m_list->count(); ++row)
        m_list->item(row)->setForeground(m_quietText);
}

void WebcamViewer::chooseItem(QListWidgetItem *item)
{
    if (!item)
        return;
    if (isGroupRow(item)) {
        setGroupOpen(!m_groupOpen);
        return;
    }
    // The name is the key: the first camera of that name gives the address.
    if (const WebcamCamera *camera = m_catalogue.find(item->text()))
        m_session->chooseCamera(*camera);
    showPicture();
}

void WebcamViewer::fetchSelected()
{
    QListWidgetItem *item = m_list->currentItem();
    if (isGroupRow(item) || (item && item->text() != m_session->currentCamera().name))
        chooseItem(item);
    else
        m_session->fetchAgain();
}

void WebcamViewer::addCamera()
{
    WebcamCameraDialog dialog(&m_catalogue, {}, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    fillList(dialog.storedName());
    chooseItem(m_list->currentItem());
}

void WebcamViewer::editCamera()
{
    const WebcamCamera *camera = selectedOwnCamera();
    if (!camera)
        return;
    WebcamCameraDialog dialog(&m_catalogue, camera->name, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    fillList(dialog.storedName());
    chooseItem(m_list->currentItem());
}

void WebcamViewer::removeCamera()
{
    const WebcamCamera *camera = selectedOwnCamera();
    if (!camera)
        return;
    const QString name = camera->name;
    if (!ConfirmDestructiveAction(tr("Remove Camera"), tr("Remove the camera \"%1\" from the list?").arg(name),
                                  tr("Remove"), this))
        return;
    QString error;
    if (!m_catalogue.removeOwn(name, &error)) {
        ShowNotice(tr("Remove Camera"), error, true, this);
        return;
    }
    fillList(m_session->currentCamera().name);
}

const WebcamCamera *WebcamViewer::selectedOwnCamera() const
{
    QListWidgetItem *item = m_list->currentItem();
    const WebcamCamera *camera = item && !isGroupRow(item) ? m_catalogue.find(item->text()) : nullptr;
    return camera && camera->own ? camera : nullptr;
}

void WebcamViewer::updateCameraButtons()
{
    const bool own = selectedOwnCamera() != nullptr;
    m_edit->setEnabled(own);
    m_remove->setEnabled(own);
}

void WebcamViewer::showPicture()
{
    const QImage picture = m_session->picture();
    if (picture.isNull()) {
        m_picture->setPixmap({});
        m_picture->setText(tr("Choose a camera from the list to see its picture."));
    } else {
        const qreal ratio = devicePixelRatioF();
        QPixmap pixmap = QPixmap::fromImage(
            picture.scaled(m_picture->size() * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation));
        pixmap.setDevicePixelRatio(ratio);
        m_picture->setPixmap(pixmap);
    }
    showCredit();
    showStatus();
}

void WebcamViewer::showCredit()
{
    const WebcamCamera &camera = m_session->pictureCamera();
    m_credit->setText(camera.credit.isEmpty() ? QString() : CreditLink(m_credit, camera.creditPage, camera.credit));
    m_credit->setToolTip(camera.creditPage);
}

void WebcamViewer::showStatus()
{
    QString text;
    if (m_session->isBusy()) {
        text = tr("Fetching %1...").arg(m_session->currentCamera().name);
    } else if (m_session->pictureTime().isValid()) {
        const QDateTime taken = m_session->pictureTime();
        text = WebcamSession::ageText(taken, ClockSource::now(), WebcamRefreshCounter::programPeriod());
        if (text.isEmpty())
            text = tr("Snapshot of %1").arg(QLocale().toString(taken.time(), QLocale::ShortFormat));
        text = m_session->pictureCamera().name + QStringLiteral("\n") + text;
    }
    m_status->setText(text);
}

void WebcamViewer::setWallpaper()
{
    if (!QFile::exists(WebcamSession::bitmapPath())) {
        m_notice->setText(tr("There is no picture for the wallpaper yet: choose a camera first."));
        return;
    }
    const WallpaperResult result = SetWallpaper(m_style->currentIndex(), WebcamSession::bitmapPath());
    if (!result.ok)
        m_notice->setText(result.message);
}

void WebcamViewer::storeValues()
{
    WriteDetail(WebcamSession::WindowName, kAutoRefresh, SettingFromBool(m_autoRefresh->isChecked()));
    WriteDetail(WebcamSession::WindowName, kWallpaperStyle, QString::number(m_style->currentIndex()));
    WriteDetail(WebcamSession::WindowName, kWallpaperFollow, SettingFromBool(m_follow->isChecked()));
}

void WebcamViewer::ThemeElementsUpdate()
{
    ThemedDialog::ThemeElementsUpdate();
    if (m_credit)
        showCredit(); // the link takes the theme's text colour
    if (m_list)
        colourList();
}

bool WebcamViewer::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_list || event->type() != QEvent::KeyPress)
        return ThemedDialog::eventFilter(watched, event);
    const int key = static_cast<QKeyEvent *>(event)->key();
    // Right opens the group of cameras without an address and Left closes it, as in a tree.
    if (isGroupRow(m_list->currentItem()) &&
        (key == Qt::Key_Right || key == Qt::Key_Left || key == Qt::Key_Space)) {
        setGroupOpen(key == Qt::Key_Space ? !m_groupOpen : key == Qt::Key_Right);
        return true;
    }
    // The list's own Home and End would land on a hidden row of the closed group.
    if (key == Qt::Key_Home || key == Qt::Key_End) {
        const int step = key == Qt::Key_Home ? 1 : -1;
        int row = key == Qt::Key_Home ? 0 : m_list->count() - 1;
        while (row >= 0 && row < m_list->count() && m_list->item(row)->isHidden())
            row += step;
        m_list->setCurrentRow(row);
        return true;
    }
    return ThemedDialog::eventFilter(watched, event);
}

void WebcamViewer::showEvent(QShowEvent *event)
{
    ThemedDialog::showEvent(event);
    m_ageTimer->start();
    showPicture();
}

void WebcamViewer::hideEvent(QHideEvent *event)
{
    m_ageTimer->stop();
    storeValues();
    ThemedDialog::hideEvent(event);
}
