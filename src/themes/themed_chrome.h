#pragma once

#include "themes/theme.h"

#include <QColor>
#include <QObject>
#include <QPoint>
#include <QSize>

class QLabel;
class QMouseEvent;
class QWidget;
class PaintedFrame;
class ThemedButton;

// The painted frame shared by every borderless themed window, widget or dialog: the bar strip
// "pfrBAR" on top, the panel "pfrPANEL" below it, a close button "CloseRefresh" at the top right,
// an optional title label "lablTITLE" in the bar and an optional corner grip "lblSTRETCH".
// A shadow line "lneSHAD" and a light line "lneLIGHT" mark where the bar meets the panel.
// It lays the areas out when the host is resized and lets the user drag the host by its body.
// Hosts put their own controls into bar() and panel().
class ThemedChrome : public QObject
{
    Q_OBJECT
public:
    struct Options
    {
        bool title = false;       // a title label in the bar
        bool closeButton = true;  // the close button at the top right of the bar
        bool resizeGrip = false;  // the corner grip, for resizable windows
        bool contextMenu = false; // a right click opens the shared widget menu
        int barHeight = 24;       // in device-independent pixels
        // Dialogs: bar and panel sit in a layout, so the window takes the size its panel's
        // contents ask for. Widgets place them by hand for any size the user drags to.
        bool layoutManaged = false;
    };

    ThemedChrome(QWidget *host, const Options &options);

    PaintedFrame *bar() const { return m_bar; }
    PaintedFrame *panel() const { return m_panel; }
    QLabel *title() const { return m_title; }
    ThemedButton *closeButton() const { return m_close; }
    QLabel *grip() const { return m_grip; }

    int barHeight() const { return m_barHeight; }
    void setBarHeight(int pixels);

    // Colours and fonts of the chrome's own parts from the current theme: opacity, the window
    // background, the grip, the title, the close glyph and the palettes of bar and panel (so
    // that labels placed in them take BarColor and PanelColor).
    void applyThemeColours();

    // The text colours of bar and panel: the theme's BarColor and PanelColor where they read at
    // 4.5:1 on the main colour the frames show, else black or white. A desktop colour the
    // theme refers to changes with the user's scheme, and may stop reading on the main colour.
    static QColor barTextColour(const Theme &theme);
    static QColor panelTextColour(const Theme &theme);

    // Places bar, panel, close button and grip for the host's current size.
    void layoutFrames();

signals:
    void closeRequested();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool handleRightPress(QEvent *event);
    bool handleGripEvent(QEvent *event);
    bool handleGripMouse(QMouseEvent *mouse);

    QWidget *m_host;
    Options m_options;
    PaintedFrame *m_bar = nullptr;
    PaintedFrame *m_panel = nullptr;
    QLabel *m_title = nullptr;
    ThemedButton *m_close = nullptr;
    QLabel *m_grip = nullptr;
    QWidget *m_shadowLine = nullptr; // lneSHAD, the bar's lower edge
    QWidget *m_lightLine = nullptr;  // lneLIGHT, the panel's upper edge
    int m_barHeight = 24;
    bool m_manualResize = false; // the grip is being dragged without the window system
    QPoint m_resizeOrigin;
    QSize m_resizeStart;
};
