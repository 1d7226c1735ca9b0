#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <functional>

class WidgetWindow;

// Knows how to make each widget (by WidgetIndex) and which ones are open. The dashboard, the
// tray menu and start-up open and close widgets only through here, so they always agree.
class WidgetRegistry : public QObject
{
    Q_OBJECT
public:
    using Factory = std::function<WidgetWindow *()>;
    using DetailSource = std::function<QString()>;

    static WidgetRegistry &instance();

    void registerWidget(int index, Factory factory);
    // True when a widget of that index exists in this build.
    bool isAvailable(int index) const;

    // A line the widget's dashboard tile shows under its name, read whether the widget is open
    // or not (the calendar's note for today); empty when the widget has none.
    void registerTileDetail(int index, DetailSource source);
    QString tileDetail(int index) const;

    bool isOpen(int index) const;
    WidgetWindow *window(int index) const;
    QList<int> openWidgets() const;

    // Creates, places, paints and shows the widget, or brings an open one to the front.
    WidgetWindow *open(int index);
    // Closes the widget (it saves its placement and values); false when it refused to close.
    bool close(int index);
    // Opens a closed widget, closes an open one (the dashboard's widgets menu).
    void toggle(int index);
    // Closes every open widget once each has settled its unsaved work; false when one was
    // kept open (a notes editor whose user cancelled the unsaved-changes question): then no
    // widget closes.
    bool closeAll();
    // Shows or hides every opened widget without closing it.
    void setOpenedWidgetsVisible(bool visible);

signals:
    void widgetOpened(int index);
    void widgetClosed(int index);
    void tileDetailChanged(int index);

private:
    WidgetRegistry() = default;

    QHash<int, Factory> m_factories;
    QHash<int, DetailSource> m_details;
    QHash<int, QPointer<WidgetWindow>> m_open;
};
