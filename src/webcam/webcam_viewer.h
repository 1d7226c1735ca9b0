#pragma once

#include "themes/themed_dialog.h"
#include "webcam/webcam_catalogue.h"

#include <QColor>

class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QListWidgetItem;
class QPushButton;
class QTimer;
class WebcamSession;

// The webcam viewer ("mdb_WCM"): the list of cameras, the chosen camera's latest snapshot with
// its operator's credit, automatic refresh, and the buttons that make the snapshot the desktop
// wallpaper. The work itself is WebcamSession's; this window shows it.
class WebcamViewer : public ThemedDialog
{
    Q_OBJECT
public:
    explicit WebcamViewer(QWidget *parent = nullptr);
    ~WebcamViewer() override;

    // Shows the one viewer of the program, making it first if needed.
    static WebcamViewer *showViewer(QWidget *owner = nullptr);

    WebcamSession *session() const { return m_session; }

public slots:
    void ThemeElementsUpdate() override;

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *buildCameraColumn();
    QWidget *buildPictureColumn();
    QLayout *buildWallpaperRow();
    // Lists the cameras with an address, then the group of those without one.
    void fillList(const QString &selectName);
    void addUnknownGroup(const QList<const WebcamCamera *> &cameras, const QString &selectName);
    void showGroupState();
    void setGroupOpen(bool open);
    static bool isGroupRow(const QListWidgetItem *item);
    // Selected and greyed rows in colours that read on the list.
    void colourList();
    void chooseItem(QListWidgetItem *item);
    void fetchSelected();
    void addCamera();
    void editCamera();
    void removeCamera();
    // The camera chosen in the list when it is one of the user's own, else null.
    const WebcamCamera *selectedOwnCamera() const;
    void updateCameraButtons();
    void showPicture();
    void showCredit();
    void showStatus();
    void setWallpaper();
    void storeValues();

    WebcamCatalogue m_catalogue;
    WebcamSession *m_session = nullptr;
    QListWidget *m_list = nullptr;
    QListWidgetItem *m_group = nullptr; // heads the cameras without an address
    bool m_groupOpen = false;
    QColor m_quietText;
    QPushButton *m_add = nullptr;
    QPushButton *m_edit = nullptr;
    QPushButton *m_remove = nullptr;
    QLabel *m_picture = nullptr;
    QLabel *m_credit = nullptr;
    QLabel *m_status = nullptr;
    QLabel *m_notice = nullptr;
    QCheckBox *m_autoRefresh = nullptr;
    QComboBox *m_style = nullptr;
    QCheckBox *m_follow = nullptr;
    QPushButton *m_refresh = nullptr;
    QTimer *m_ageTimer = nullptr;
};
