#include "shell/widget_registry.h"

#include "themes/widget_window.h"

#include <algorithm>

WidgetRegistry &WidgetRegistry::instance()
{
    static WidgetRegistry registry;
    return registry;
}

void WidgetRegistry::registerWidget(int index, Factory factory)
{
    m_factories.insert(index, std::move(factory));
}

bool WidgetRegistry::isAvailable(int index) const
{
    return m_factories.contains(index);
}

void WidgetRegistry::registerTileDetail(int index, DetailSource source)
{
    if (source)
        m_details.insert(index, std::move(source));
    else
        m_details.remove(index);
}

QString WidgetRegistry::tileDetail(int index) const
{
    const auto source = m_details.constFind(index);
    return source == m_details.cend() ? QString() : (*source)();
}

bool WidgetRegistry::isOpen(int index) const
{
    return window(index) != nullptr;
}

WidgetWindow *WidgetRegistry::window(int index) const
{
    return m_open.value(index).data();
}

QList<int> WidgetRegistry::openWidgets() const
{
    QList<int> result;
    for (auto it = m_open.cbegin(); it != m_open.cend(); ++it) {
        if (it.value())
            result.append(it.key());
    }
    std::sort(result.begin(), result.end());
    return result;
}

WidgetWindow *WidgetRegistry::open(int index)
{
    if (WidgetWindow *existing = window(index)) {
        existing->show();
        existing->raise();
        existing->activateWindow();
        return existing;
    }
    const auto factory = m_factories.constFind(index);
    if (factory == m_factories.cend())
        return nullptr;
    WidgetWindow *w = (*factory)();
    if (!w)
        return nullptr;
    m_open.insert(index, w);
    // Forget the window as soon as it closes (it is deleted only later, from the event loop).
    auto forget = [this, index, w] {
        const auto it = m_open.constFind(index);
        if (it == m_open.cend() || (it.value() && it.value() != w))
            return;
        m_open.remove(index);
        emit widgetClosed(index);
    };
    connect(w, &WidgetWindow::closed, this, forget);
    connect(w, &WidgetWindow::tileDetailChanged, this, [this, index] { emit tileDetailChanged(index); });
    connect(w, &QObject::destroyed, this, forget);
    w->loadWindow();
    w->show();
    emit widgetOpened(index);
    return w;
}

bool WidgetRegistry::close(int index)
{
    if (WidgetWindow *w = window(index))
        return w->close(); // deletes itself on close; the destroyed() hook above reports it
    return true;
}

void WidgetRegistry::toggle(int index)
{
    if (isOpen(index))
        close(index);
    else
        open(index);
}

bool WidgetRegistry::closeAll()
{
    // Every widget with unsaved work asks first; only when none was cancelled does any close.
    const QList<int> open = openWidgets();
    for (int index : open) {
        if (!window(index)->settleBeforeClose())
            return false;
    }
    for (int index : open) {
        WidgetWindow *widget = window(index);
        if (widget && !widget->closeSettled())
            return false;
    }
    return true;
}

void WidgetRegistry::setOpenedWidgetsVisible(bool visible)
{
    for (int index : openWidgets())
        window(index)->setVisible(visible);
}
