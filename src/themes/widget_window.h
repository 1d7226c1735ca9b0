#pragma once

#include <QWidget>

class QLabel;
class PaintedFrame;
class ThemedButton;
class ThemedChrome;

// The base of every desktop widget (clock, calculator, stopwatch, ...): a borderless tool
// window with no taskbar button, a painted bar on top and a panel below, a close button at the
// top right, a corner grip when resizable, dragged by its body, right click for the widget menu.
//
// Contract for a widget class:
// - construct with its window name ("falc_IDX"), its WidgetIndex and its window title
//   ("Vantora Alarm Clock"); build the controls as children of bar() and panel() in the
//   constructor and read its stored values there;
// - override defaultSize() (and isResizable() for fixed-size widgets);
// - override relayout() to place the controls for the current size; it runs after every
//   resize, theme change and ThemeElementsUpdate();
// - override ThemeElementsUpdate() for fonts and colours only it knows, calling the base first
//   (the base sets opacity, background, grip colour, and BarColor/PanelColor as the text colour
//   of everything in bar() and panel());
// - override saveValues() to store what must survive a restart (called when the window closes);
// - widgets that have a settings dialog override hasSettingsDialog()/openSettingsDialog().
// The registry (WidgetRegistry) creates the window, calls loadWindow() and shows it; closing the
// window saves its placement and values and deletes it.
class WidgetWindow : public QWidget
{
    Q_OBJECT
public:
    WidgetWindow(const QString &windowName, int widgetIndex, const QString &title, QWidget *parent = nullptr);
    ~WidgetWindow() override;

    int widgetIndex() const { return m_widgetIndex; }

    PaintedFrame *bar() const;
    PaintedFrame *panel() const;
    QLabel *stretchGrip() const;
    ThemedButton *closeButton() const;
    int barHeight() const;
    void setBarHeight(int pixels);

    virtual QSize defaultSize() const { return QSize(260, 160); }
    // The smallest size at which the widget's texts and buttons are still readable; the user
    // cannot resize below it and a smaller stored size is raised to it on load.
    virtual QSize minimumUsableSize() const;
    virtual bool isResizable() const { return true; }
    // Which variant of the shared right-click menu this widget gets: "common", or "clock",
    // "notes", "whiteboard", "weather" for the widgets with their own items.
    virtual QString contextMenuVariant() const { return QStringLiteral("common"); }
    virtual bool hasSettingsDialog() const { return false; }
    virtual void openSettingsDialog() {}

    // Restores the stored placement (or the default size, centred) and paints the theme.
    // Called once, before the window is first shown.
    void loadWindow();
    // Gives the widget its default size back (the menu's "Widget Reset Size").
    void resetSize();

    // Settles work that closing would lose (saves it, or asks the user): false when the user
    // chose to keep the widget open. The program's exit asks every widget before closing any,
    // so a Cancel leaves all of them as they were.
    virtual bool settleBeforeClose() { return true; }
    // Closes after settleBeforeClose() agreed, without asking again; false when it still refused.
    bool closeSettled();

signals:
    // The window is closing (its placement and values are saved); it is deleted afterwards.
    void closed();
    // What the widget's dashboard tile says under its name has changed (today's note).
    void tileDetailChanged();

public slots:
    // Called by ApplyTheme (by name) after the frames are painted.
    virtual void ThemeElementsUpdate();

protected:
    // Gives `part` of the panel, and everything in it, the theme's panel font family, as the
    // theme pass does for the panel: for parts built after it (pages shown for the first time).
    static void applyPanelFont(QWidget *part);
    // True while closeSettled() closes the window: the questions were answered already.
    bool isClosingSettled() const { return m_closingSettled; }
    virtual void relayout() {}
    virtual void saveValues() {}

    void resizeEvent(QResizeEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    int m_widgetIndex;
    ThemedChrome *m_chrome;
    bool m_loaded = false;
    bool m_closingSettled = false;
};
