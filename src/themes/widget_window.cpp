#include "themes/widget_window.h"

#include "core/widget_frame.h"
#include "core/window_placement.h"
#include "themes/painted_frame.h"
#include "themes/theme_painter.h"
#include "themes/themed_chrome.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>

namespace {
// A font set on a widget, even an equal one, is its own from then on and tells the widget so; a
// combo box answers by building its drop-down list. Only a widget showing another family is
// given one: the rest take the panel's through inheritance.
void setFamily(QWidget *widget, const QString &family)
{
    if (widget->font().family() == family)
        return;
    QFont font = widget->font();
    font.setFamily(family);
    widget->setFont(font);
}
} // namespace

WidgetWindow::WidgetWindow(const QString &windowName, int widgetIndex, const QString &title, QWidget *parent)
    : QWidget(parent, Qt::Window), m_widgetIndex(widgetIndex)
{
    setObjectName(windowName);
    setWindowTitle(title);
    setAttribute(Qt::WA_DeleteOnClose);
    MakeBorderless(this);

    ThemedChrome::Options options;
    options.resizeGrip = isResizable();
    options.contextMenu = true;
    m_chrome = new ThemedChrome(this, options);
    connect(m_chrome, &ThemedChrome::closeRequested, this, &QWidget::close);
    // Parts built on the panel from here on are born with the theme's family, so that applying
    // the theme afterwards finds nothing to change in them.
    setFamily(panel(), CurrentTheme().PanelFont);
    // A click on the widget gives the window itself the keyboard, not the first bar button
    // (where Space would press whatever that button does); Tab still reaches the buttons.
    setFocusPolicy(Qt::StrongFocus);
    setFocus(Qt::OtherFocusReason);
}

WidgetWindow::~WidgetWindow() = default;

PaintedFrame *WidgetWindow::bar() const
{
    return m_chrome->bar();
}

PaintedFrame *WidgetWindow::panel() const
{
    return m_chrome->panel();
}

QLabel *WidgetWindow::stretchGrip() const
{
    return m_chrome->grip();
}

ThemedButton *WidgetWindow::closeButton() const
{
    return m_chrome->closeButton();
}

int WidgetWindow::barHeight() const
{
    return m_chrome->barHeight();
}

void WidgetWindow::setBarHeight(int pixels)
{
    m_chrome->setBarHeight(pixels);
    relayout();
}

void WidgetWindow::loadWindow()
{
    if (m_loaded)
        return;
    m_loaded = true;
    // The grip exists only for resizable widgets; isResizable() is virtual, so it is known
    // only now, after the widget's own constructor has run.
    if (!isResizable() && stretchGrip())
        stretchGrip()->hide();
    setMinimumSize(minimumUsableSize());
    resize(defaultSize());
    move(FreeSpotFor(this)); // only a default: a stored position wins
    // A stored place off this screen (another monitor, a larger scale factor since) would pile
    // every such widget in the centre: each takes the next free spot instead.
    if (!RestoreWindowPlacement(this, isResizable()))
        move(FreeSpotFor(this));
    ApplyTheme(this);
}

QSize WidgetWindow::minimumUsableSize() const
{
    // Room for the close button and a little of the bar, and a panel that shows something.
    return QSize(120, barHeight() + 48);
}

void WidgetWindow::resetSize()
{
    setWindowState(windowState() & ~(Qt::WindowMaximized | Qt::WindowMinimized));
    resize(defaultSize());
}

void WidgetWindow::applyPanelFont(QWidget *part)
{
    const QString family = CurrentTheme().PanelFont;
    setFamily(part, family);
    for (QWidget *child : part->findChildren<QWidget *>())
        setFamily(child, family);
}

void WidgetWindow::ThemeElementsUpdate()
{
    m_chrome->applyThemeColours();
    const Theme &theme = CurrentTheme();
    for (QWidget *child : bar()->findChildren<QWidget *>())
        setFamily(child, theme.BarFont);
    for (QWidget *child : panel()->findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        applyPanelFont(child);
    bar()->update();
    panel()->update();
    relayout();
}

void WidgetWindow::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_chrome->layoutFrames();
    relayout();
}

bool WidgetWindow::closeSettled()
{
    m_closingSettled = true;
    const bool closed = close();
    m_closingSettled = false;
    return closed;
}

void WidgetWindow::closeEvent(QCloseEvent *event)
{
    if (m_loaded) {
        SaveWindowPlacement(this, isResizable());
        saveValues();
    }
    event->accept();
    emit closed();
}

void WidgetWindow::keyPressEvent(QKeyEvent *event)
{
    // Shift+F10 and the menu key open the widget menu, as a right click does.
    if (event->key() == Qt::Key_Menu ||
        (event->key() == Qt::Key_F10 && event->modifiers() & Qt::ShiftModifier)) {
        WidgetMouseDown(this, Qt::RightButton, mapToGlobal(QPoint(width() / 2, barHeight())));
        return;
    }
    QWidget::keyPressEvent(event);
}
