#pragma once

#include "shell/widget_context_menu.h"

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QSystemTrayIcon>

class QTimer;

// The notification-area icon ("mdb_TRY"), the program's permanent handle while the dashboard
// is hidden: a left click shows or hides the dashboard, a left double click brings it back, a
// right click opens the shared context menu in its tray variant, a right double click opens the
// theme editor. The icon follows the tray: it appears when a tray does (one often starts after
// the program at login), and when the tray goes away a hidden dashboard comes back.
class TrayIcon : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Tooltip READ Tooltip WRITE setTooltip)
public:
    explicit TrayIcon(QObject *parent = nullptr);
    ~TrayIcon() override;

    // Places the icon, showing `window`'s icon; `window` is the dashboard that a double click
    // brings back. Where the desktop has no tray nothing appears and nothing fails; the icon
    // appears once a tray does.
    void TraySetIcon(QWidget *window);
    void setContextMenu(WidgetContextMenu *menu) { m_menu = menu; }

    // The tip is kept to 63 characters, as the icon record has always held.
    QString Tooltip() const { return m_tooltip; }
    void setTooltip(const QString &text);

    // Carries out the action of an event code (3, 5 and 6 act; the others do nothing).
    void dispatch(int code);

    // Whether the desktop shows tray icons. Tests may force the answer.
    static bool isAvailable();
    static void setAvailableForTesting(int available); // 1 yes, 0 no, -1 ask the desktop
    // How often the tray is looked for where the desktop does not report it coming and going
    // (tests shorten it).
    void setRecheckInterval(int ms);

    QSystemTrayIcon *systemTrayIcon() const { return m_icon; }

signals:
    // Every decoded event, with its code (the label is TrayDispatch::eventName(code)).
    void Click(int code);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private slots:
    // Shows or hides the icon as the tray comes and goes.
    void followTray();

private:
    void onActivated(QSystemTrayIcon::ActivationReason reason);
    bool hasTrayEvents() const;
    void updateRecheck();
    void toggleDashboard();
    void showDashboard();
    void popUpMenu();
    void showThemeEditor();

    QSystemTrayIcon *m_icon = nullptr;
    QPointer<QWidget> m_dashboard;
    QPointer<WidgetContextMenu> m_menu;
    QString m_tooltip = QStringLiteral("Vantora");
    QElapsedTimer m_sinceContext;
    QTimer *m_recheck = nullptr;
    QTimer *m_singleClick = nullptr;
    QMetaObject::Connection m_trayEvents;
    bool m_placed = false;
    bool m_available = false;
};
