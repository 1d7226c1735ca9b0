#include "themes/deferred_icon_style.h"

#include <QIconEngine>
#include <QPainter>
#include <QPointer>
#include <QWidget>

namespace {

// Stands in for one standard icon of a style and asks the style for it on first use.
class DeferredIconEngine : public QIconEngine
{
public:
    DeferredIconEngine(QStyle *style, QStyle::StandardPixmap which, const QWidget *widget)
        : m_style(style), m_which(which), m_widget(const_cast<QWidget *>(widget))
    {
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        icon().paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return icon().pixmap(size, mode, state);
    }
    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State state, qreal scale) override
    {
        return icon().pixmap(size, scale, mode, state);
    }
    QSize actualSize(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return icon().actualSize(size, mode, state);
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override
    {
        return icon().availableSizes(mode, state);
    }
    bool isNull() override { return icon().isNull(); }
    QString key() const override { return QStringLiteral("DeferredIconEngine"); }
    QIconEngine *clone() const override
    {
        auto *copy = new DeferredIconEngine(m_style, m_which, m_widget);
        copy->m_icon = m_icon;
        copy->m_read = m_read;
        return copy;
    }

private:
    const QIcon &icon()
    {
        if (!m_read && m_style)
            m_icon = m_style->standardIcon(m_which, nullptr, m_widget);
        m_read = true;
        return m_icon;
    }

    QPointer<QStyle> m_style;
    QStyle::StandardPixmap m_which;
    QPointer<QWidget> m_widget; // the icon may outlive the widget that asked
    QIcon m_icon;
    bool m_read = false;
};

} // namespace

DeferredIconStyle::DeferredIconStyle() : QProxyStyle(nullptr) {}

QIcon DeferredIconStyle::standardIcon(StandardPixmap icon, const QStyleOption *option,
                                      const QWidget *widget) const
{
    // An option lives only for this call: such a question is answered at once.
    if (option)
        return QProxyStyle::standardIcon(icon, option, widget);
    return QIcon(new DeferredIconEngine(baseStyle(), icon, widget));
}
