#pragma once

#include <QMainWindow>
#include <QPointer>
#include <array>

class DashboardTile;
class QLabel;
class QPushButton;
class PaintedFrame;
class UpdateCheck;
class WidgetContextMenu;
struct Theme;

// The dashboard ("mdb_IDX"): the eight widgets as tiles that open and close them, and the
// program's menus. Closing it with its close box normally only hides it (the tray icon brings
// it back); its Exit item ends the program.
class DashboardWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit DashboardWindow(QWidget *parent = nullptr);
    ~DashboardWindow() override;

    // The selected widget (a WidgetIndex; 8 or -1 select no tile).
    int IndxSel() const { return m_indxSel; }
    void setIndxSel(int index);

    // The load handler, run once at start: position, webcam, the all-widgets start rules.
    void loadDashboard(int choice);
    // The shared hand-over: all widgets show the dashboard, one widget opens alone.
    void handOver(int choice);
    // The hand-over at start: as handOver(), honouring a minimised or hidden start.
    void handOverAtStart(int choice);

    // Routes the shared context menu's commands to the dashboard's own.
    void attachContextMenu(WidgetContextMenu *menu);
    // A problem found at start (shipped data that could not be installed); empty hides it.
    void setNotice(const QString &text);

    UpdateCheck *updateCheck() const { return m_updateCheck; }
    bool isUnloading() const { return m_unloading; }

    // The colours of the menu bar and its menus for a theme: the bar's colour and text above
    // the bar, the panel's in the menus. A text colour that would not read on its background
    // gives way to black or white.
    struct MenuColours
    {
        QColor bar, barText, barSelected, barSelectedText;
        QColor menu, menuText, menuSelected, menuSelectedText, menuDisabledText, menuLine;
    };
    static MenuColours menuColoursFor(const Theme &theme);

public slots:
    // The weather in the dashboard's bar, from the shared weather station; hidden until the
    // first report.
    void showWeather();
    void applyWeatherFont();
    void showDashboard();
    void hideDashboard();
    void openSelectedWidget();
    void closeSelectedWidget();
    // The widgets menu item: opens a closed widget, closes an open one.
    void toggleWidget(int index);
    // Mode 2 shows every opened widget, mode 1 hides them (they stay open).
    void ShowHideAll(int mode);
    void openProgramSettings();
    // Runs the wizard; true when its Start was pressed (the hand-over has then run).
    bool openWizard();
    void openAbout();
    void openThemeEditor();
    void openWebcam();
    void openShareTheme();
    void StartUpdateCheck(bool manual);
    // Saves, closes every window and ends the program.
    void exitProgram();
    // Called by ApplyTheme (by name) after the frames are painted.
    void ThemeElementsUpdate();

signals:
    // Every window is closed; the program can end.
    void unloaded();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void buildMenus();
    void themeMenus();
    void buildBody();
    QWidget *buildWeather();
    void refreshState();
    void moveSelection(int from, int dx, int dy);
    void runWizardChoice(int choice);
    void unload();

    std::array<DashboardTile *, 8> m_tiles{};
    std::array<QAction *, 8> m_widgetItems{};
    PaintedFrame *m_bar = nullptr;
    PaintedFrame *m_panel = nullptr;
    QLabel *m_title = nullptr;
    QLabel *m_subtitle = nullptr;
    QLabel *m_weatherPicture = nullptr; // lblWEATHERPIC, in the weather font
    QLabel *m_weatherTemp = nullptr;    // lblWEATHERTEMP, the widget's large temperature
    QLabel *m_weatherPlace = nullptr;   // lblWEATHERPLACE
    QLabel *m_weatherDesc = nullptr;    // lblWEATHERDESC
    QLabel *m_weatherText = nullptr;    // lblWEATHERTEXT, the full temperature text
    QWidget *m_weather = nullptr;
    QLabel *m_hint = nullptr;
    QLabel *m_notice = nullptr;
    QPushButton *m_open = nullptr;
    QAction *m_themeItem = nullptr;
    QAction *m_webcamItem = nullptr;
    QAction *m_shareItem = nullptr;
    QAction *m_showAllItem = nullptr;
    QAction *m_hideAllItem = nullptr;
    UpdateCheck *m_updateCheck = nullptr;
    int m_indxSel = -1;
    bool m_unloading = false;
    bool m_weatherFontLoaded = false;
    bool m_startHidden = false;
    bool m_startMinimised = false;
};
