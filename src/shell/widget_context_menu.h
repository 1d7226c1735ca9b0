#pragma once

#include <QMenu>
#include <QPointer>
#include <array>

class WidgetWindow;

// The one context menu ("mnuDCTOP") that serves the tray icon and a right click on any widget.
// Every item is a QAction whose objectName is the item's name. The menu only reports what was
// chosen (signals); the dashboard carries the commands out.
class WidgetContextMenu : public QMenu
{
    Q_OBJECT
public:
    // Where the menu was opened. The clock, notes, whiteboard and weather widgets have their own
    // variant; every other widget gets the common one.
    enum class Variant
    {
        Tray,
        Common,
        Clock,
        Notes,
        Whiteboard,
        Weather
    };

    // What the menu shows besides the variant: what is open, what exists in this build.
    struct State
    {
        Variant variant = Variant::Tray;
        bool dashboardVisible = false;
        std::array<bool, 8> widgetAvailable{};
        std::array<bool, 8> widgetOpen{};
        bool themeEditorAvailable = false;
        bool webcamAvailable = false;
        bool shareAvailable = false;
        bool activeHasSettings = false; // the widget the menu was opened on has a settings dialog
    };

    explicit WidgetContextMenu(QWidget *parent = nullptr);

    // "clock", "notes", "whiteboard", "weather" (a widget's own name for its variant) or its
    // window name ("falc_IDX", ...); anything else is the common variant.
    static Variant variantFromName(const QString &name);
    static Variant variantFor(const QWidget *window);

    // Shows, hides, enables and ticks the items for a state.
    void prepare(const State &state);
    // The current state of the program for the menu opened on `window` (null: the tray).
    State currentState(QWidget *window, bool dashboardVisible) const;

    // Prepares the menu for `window` (null: the tray) and pops it up at globalPos.
    void popUpFor(QWidget *window, bool dashboardVisible, const QPoint &globalPos);

    // The widget the menu was last opened on (null from the tray or once it closed).
    QWidget *activeWindow() const { return m_active; }
    Variant variant() const { return m_variant; }
    QAction *item(const QString &name) const;

signals:
    void showDashboardChosen();
    void hideDashboardChosen();
    void programSettingsChosen();
    void wizardChosen();
    void themeEditorChosen();
    void webcamChosen();
    void shareThemeChosen();
    void widgetToggleChosen(int index);
    void showAllChosen();
    void hideAllChosen();
    void exitChosen();

private:
    QAction *addItem(QMenu *menu, const char *name, const QString &caption);
    void addSeparator(QMenu *menu, const char *name);
    void resetActiveWidgetSize();
    void openActiveWidgetSettings();
    void closeActiveWidget();

    QMenu *m_widgets = nullptr;
    QPointer<QWidget> m_active;
    Variant m_variant = Variant::Tray;
};
