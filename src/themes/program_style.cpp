#include "themes/program_style.h"

#include <QPainter>
#include <QPainterPath>
#include <QSet>
#include <QStyleOption>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>

namespace {

// The measures of a tool: a one-pixel frame (clear until the pointer is over it) around the
// caption with 5 pixels beside it and 2 above and below; the arrow part of a split button 14
// pixels wide. Tabs: 8 pixels beside the caption and 3 above and below, 2 pixels apart.
constexpr int kToolFrame = 1;
constexpr int kToolPadX = 5;
constexpr int kToolPadY = 2;
constexpr int kToolRadius = 3;
constexpr int kMenuPartWidth = 14;
constexpr int kTabPadX = 8;
constexpr int kTabPadY = 3;
constexpr int kTabGap = 2;
constexpr int kTabRadius = 4;
// How much of the panel's text colour tints a tool: its frame, the background under the
// pointer, a switched-on tool's background, and the caption of a tool that is off.
constexpr int kFrameTint = 110;
constexpr int kHoverTint = 40;
constexpr int kOnTint = 70;
constexpr int kDisabledTint = 120;

QSet<const QObject *> &toolPanels()
{
    static QSet<const QObject *> panels;
    return panels;
}

const QWidget *toolPanelOf(const QWidget *widget)
{
    const QSet<const QObject *> &panels = toolPanels();
    if (panels.isEmpty())
        return nullptr;
    for (const QWidget *w = widget; w; w = w->parentWidget()) {
        if (panels.contains(w))
            return w;
        if (w->isWindow())
            break;
    }
    return nullptr;
}

QColor tint(const QColor &text, int alpha)
{
    return QColor(text.red(), text.green(), text.blue(), alpha);
}

// The panel's text colour, which its tools and labels are drawn in.
QColor panelText(const QWidget *panel)
{
    return panel->palette().color(QPalette::WindowText);
}

void fillBox(QPainter *painter, const QRect &rect, int radius, const QColor &fill, const QColor &frame)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(frame.alpha() ? QPen(frame, 1) : QPen(Qt::NoPen));
    painter->setBrush(fill.alpha() ? QBrush(fill) : QBrush(Qt::NoBrush));
    painter->drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter->restore();
}

void inkArrows(QPalette &palette)
{
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::WindowText, palette.color(group, QPalette::Text));
        palette.setColor(group, QPalette::ButtonText, palette.color(group, QPalette::Text));
    }
}

} // namespace

void ProgramStyle::markToolPanel(QWidget *panel)
{
    if (toolPanels().contains(panel))
        return;
    toolPanels().insert(panel);
    QObject::connect(panel, &QObject::destroyed, [](QObject *gone) { toolPanels().remove(gone); });
}

bool ProgramStyle::isOnToolPanel(const QWidget *widget)
{
    return toolPanelOf(widget) != nullptr;
}

void ProgramStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option,
                                      QPainter *painter, const QWidget *widget) const
{
    if (control == CC_ToolButton && qstyleoption_cast<const QStyleOptionToolButton *>(option)
        && toolPanelOf(widget)) {
        drawToolButton(option, painter, widget);
        return;
    }
    // The arrows of a scroll bar or spin box are drawn in the window's text colour, which on a
    // panel is the panel's: light on a dark panel, over the light trough. The page's text
    // colour reads there.
    if (control == CC_ScrollBar || control == CC_SpinBox) {
        if (const auto *slider = qstyleoption_cast<const QStyleOptionSlider *>(option); slider && toolPanelOf(widget)) {
            QStyleOptionSlider copy = *slider;
            inkArrows(copy.palette);
            DeferredIconStyle::drawComplexControl(control, &copy, painter, widget);
            return;
        }
        if (const auto *spin = qstyleoption_cast<const QStyleOptionSpinBox *>(option); spin && toolPanelOf(widget)) {
            QStyleOptionSpinBox copy = *spin;
            inkArrows(copy.palette);
            DeferredIconStyle::drawComplexControl(control, &copy, painter, widget);
            return;
        }
    }
    DeferredIconStyle::drawComplexControl(control, option, painter, widget);
}

void ProgramStyle::drawToolButton(const QStyleOptionComplex *option, QPainter *painter, const QWidget *widget) const
{
    const auto *tool = qstyleoption_cast<const QStyleOptionToolButton *>(option);
    const QColor text = panelText(toolPanelOf(widget));
    const bool enabled = tool->state & State_Enabled;
    const bool on = tool->state & State_On;
    const bool hot = enabled && (tool->state & (State_MouseOver | State_Sunken));
    // Framed when it has the focus and the keyboard moved it there, not after a click.
    const bool focused = enabled && (tool->state & State_HasFocus) && (tool->state & State_KeyboardFocusChange);

    QColor fill = Qt::transparent;
    QColor frame = Qt::transparent;
    if (hot)
        fill = tint(text, kHoverTint), frame = tint(text, kFrameTint);
    if (on)
        fill = tint(text, kOnTint), frame = tint(text, kFrameTint);
    if (focused)
        frame = text;
    fillBox(painter, tool->rect, kToolRadius, fill, frame);

    QStyleOptionToolButton label = *tool;
    const QColor ink = enabled ? text : tint(text, kDisabledTint);
    label.palette.setColor(QPalette::ButtonText, ink);
    label.palette.setColor(QPalette::WindowText, ink);
    label.rect = tool->rect.adjusted(kToolFrame + kToolPadX, kToolFrame + kToolPadY, -(kToolFrame + kToolPadX),
                                     -(kToolFrame + kToolPadY));
    if (tool->subControls & SC_ToolButtonMenu)
        label.rect.setRight(subControlRect(CC_ToolButton, tool, SC_ToolButtonMenu, widget).left() - 1);
    // The caption does not move when pressed or switched on: the tint says so.
    label.state &= ~(State_Sunken | State_On);
    proxy()->drawControl(CE_ToolButtonLabel, &label, painter, widget);

    QStyleOption arrow = label;
    if (tool->subControls & SC_ToolButtonMenu) {
        const QRect part = subControlRect(CC_ToolButton, tool, SC_ToolButtonMenu, widget);
        arrow.rect = QRect(0, 0, 8, 8);
        arrow.rect.moveCenter(part.center());
    } else if (tool->features & QStyleOptionToolButton::HasMenu) {
        // A button that only opens its menu: a small arrow in its lower right corner.
        const QRect box = tool->rect.adjusted(kToolFrame, kToolFrame, -kToolFrame, -kToolFrame);
        arrow.rect = QRect(box.right() - 7, box.bottom() - 7, 7, 7);
    } else {
        return;
    }
    proxy()->drawPrimitive(PE_IndicatorArrowDown, &arrow, painter, widget);
}

void ProgramStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                               const QWidget *widget) const
{
    const QWidget *panel = (element == CE_TabBarTabShape || element == CE_TabBarTabLabel) ? toolPanelOf(widget) : nullptr;
    if (!panel) {
        DeferredIconStyle::drawControl(element, option, painter, widget);
        return;
    }
    if (element == CE_TabBarTabShape) {
        drawTabShape(option, painter, widget);
        return;
    }
    // The caption: the panel's text colour, the page's on the chosen tab.
    if (const auto *tab = qstyleoption_cast<const QStyleOptionTab *>(option)) {
        QStyleOptionTab label = *tab;
        const QColor ink = (tab->state & State_Selected) ? panel->palette().color(QPalette::Text) : panelText(panel);
        label.palette.setColor(QPalette::WindowText, ink);
        label.palette.setColor(QPalette::ButtonText, ink);
        label.rect = tab->rect.adjusted(kToolFrame + kTabPadX, kToolFrame + kTabPadY, -(kToolFrame + kTabPadX + kTabGap),
                                        -kTabPadY);
        DeferredIconStyle::drawControl(element, &label, painter, widget);
    }
}

void ProgramStyle::drawTabShape(const QStyleOption *option, QPainter *painter, const QWidget *widget) const
{
    const QWidget *panel = toolPanelOf(widget);
    const QColor text = panelText(panel);
    const bool selected = option->state & State_Selected;
    const bool hot = (option->state & State_MouseOver) && (option->state & State_Enabled);
    const QColor fill = selected ? panel->palette().color(QPalette::Base) : tint(text, hot ? kOnTint : kHoverTint);
    // Rounded at the top, open at the bottom, where the tab meets its page.
    const QRectF box = QRectF(option->rect.adjusted(0, 0, -kTabGap, 0)).adjusted(0.5, 0.5, -0.5, 0);
    QPainterPath outline;
    outline.moveTo(box.bottomLeft());
    outline.lineTo(box.left(), box.top() + kTabRadius);
    outline.arcTo(QRectF(box.left(), box.top(), 2 * kTabRadius, 2 * kTabRadius), 180, -90);
    outline.lineTo(box.right() - kTabRadius, box.top());
    outline.arcTo(QRectF(box.right() - 2 * kTabRadius, box.top(), 2 * kTabRadius, 2 * kTabRadius), 90, -90);
    outline.lineTo(box.bottomRight());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->fillPath(outline, fill);
    painter->setPen(QPen(tint(text, kFrameTint), 1));
    painter->drawPath(outline);
    painter->restore();
}

void ProgramStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                 const QWidget *widget) const
{
    // A tab widget's page on a panel has no frame: the panel around it is the frame.
    if (element == PE_FrameTabWidget && toolPanelOf(widget))
        return;
    DeferredIconStyle::drawPrimitive(element, option, painter, widget);
}

QSize ProgramStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &contents,
                                     const QWidget *widget) const
{
    if (type == CT_ToolButton && toolPanelOf(widget))
        return contents + QSize(2 * (kToolFrame + kToolPadX) + 3, 2 * (kToolFrame + kToolPadY) + 3);
    if (type == CT_TabBarTab && toolPanelOf(widget))
        return contents + QSize(2 * (kToolFrame + kTabPadX) + kTabGap, kToolFrame + 2 * kTabPadY);
    return DeferredIconStyle::sizeFromContents(type, option, contents, widget);
}

int ProgramStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_TabBarTabHSpace:
    case PM_TabBarTabVSpace:
    case PM_TabBarTabShiftHorizontal:
    case PM_TabBarTabShiftVertical:
    case PM_TabBarTabOverlap:
        if (qobject_cast<const QTabBar *>(widget) && toolPanelOf(widget))
            return 0;
        break;
    case PM_MenuButtonIndicator:
        // A split button is no wider for its arrow part, which takes the room at its right.
        if (qobject_cast<const QToolButton *>(widget) && toolPanelOf(widget))
            return 0;
        break;
    default:
        break;
    }
    return DeferredIconStyle::pixelMetric(metric, option, widget);
}

QRect ProgramStyle::subControlRect(ComplexControl control, const QStyleOptionComplex *option, SubControl sub,
                                   const QWidget *widget) const
{
    if (control == CC_ToolButton && (sub == SC_ToolButton || sub == SC_ToolButtonMenu) && toolPanelOf(widget)) {
        const auto *tool = qstyleoption_cast<const QStyleOptionToolButton *>(option);
        if (tool && (tool->subControls & SC_ToolButtonMenu)) {
            const QRect box = option->rect;
            const QRect menu(box.right() - kToolFrame - kMenuPartWidth + 1, box.top(), kMenuPartWidth, box.height());
            return sub == SC_ToolButtonMenu ? menu : box.adjusted(0, 0, -kMenuPartWidth, 0);
        }
        return sub == SC_ToolButton ? option->rect : QRect();
    }
    return DeferredIconStyle::subControlRect(control, option, sub, widget);
}

QRect ProgramStyle::subElementRect(SubElement element, const QStyleOption *option, const QWidget *widget) const
{
    // No frame around a tab widget's page on a panel, so nothing to keep clear inside it.
    if (element == SE_TabWidgetTabContents && toolPanelOf(widget))
        return DeferredIconStyle::subElementRect(SE_TabWidgetTabPane, option, widget);
    return DeferredIconStyle::subElementRect(element, option, widget);
}
