#include "themes/deferred_icon_style.h"

#include "themes/drawn_file_icons.h"

#include <QIconEngine>
#include <QPainter>
#include <QPointer>
#include <QStyleOption>
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
        // Item views ask for the size while they lay out, long before anything is drawn. The
        // standard icons come in every size a view asks for, so the answer is known unread.
        return m_read ? m_icon.actualSize(size, mode, state) : size;
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override
    {
        return icon().availableSizes(mode, state);
    }
    // A list or combo box asks whether an icon is null as soon as it is added to an item;
    // reading it then would load the style's pictures, and with them every image format
    // plugin, before the first frame. An icon not read yet counts as there: the standard
    // icons asked for here all exist, and a null one is simply not drawn.
    bool isNull() override { return m_read ? m_icon.isNull() : false; }
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
    // Files, folders and drives are drawn: the side panels show them in their first frame.
    if (QIcon drawn = DrawnFileIcons::icon(icon); !drawn.isNull())
        return drawn;
    // An option lives only for this call: such a question is answered at once. The line
    // edit's clear button comes with one but its picture does not depend on it, and a line
    // edit that offers it (the spell panel's) is made with the notes editor.
    if (option && icon != SP_LineEditClearButton)
        return QProxyStyle::standardIcon(icon, option, widget);
    return QIcon(new DeferredIconEngine(baseStyle(), icon, widget));
}

void DeferredIconStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                      const QWidget *widget) const
{
    if (element != PE_IndicatorTabClose || !option) {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        return;
    }
    // An "x" in the tab's text colour, on a rounded square while the pointer is over it, drawn
    // at any scale.
    const bool enabled = option->state & State_Enabled;
    const bool hot = enabled && (option->state & (State_MouseOver | State_Sunken));
    const QRectF box = QRectF(option->rect).adjusted(1, 1, -1, -1);
    const qreal side = qMin(box.width(), box.height());
    const QRectF square(box.center() - QPointF(side / 2, side / 2), QSizeF(side, side));
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    QColor ink = option->palette.color(enabled ? QPalette::Active : QPalette::Disabled, QPalette::WindowText);
    if (hot) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(option->palette.color(QPalette::Highlight));
        painter->drawRoundedRect(square, 3, 3);
        ink = option->palette.color(QPalette::HighlightedText);
    }
    const qreal inset = side * 0.3;
    painter->setPen(QPen(ink, qMax<qreal>(1.5, side / 10), Qt::SolidLine, Qt::RoundCap));
    const QRectF cross = square.adjusted(inset, inset, -inset, -inset);
    painter->drawLine(cross.topLeft(), cross.bottomRight());
    painter->drawLine(cross.topRight(), cross.bottomLeft());
    painter->restore();
}
