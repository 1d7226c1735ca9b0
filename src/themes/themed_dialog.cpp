#include "themes/themed_dialog.h"

#include "core/widget_frame.h"
#include "core/window_placement.h"
#include "themes/painted_frame.h"
#include "themes/theme_painter.h"
#include "themes/themed_button.h"
#include "themes/themed_chrome.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QPushButton>

ThemedDialog::ThemedDialog(const QString &windowName, const QString &title, QWidget *parent) : QDialog(parent)
{
    setObjectName(windowName);
    setWindowTitle(title);
    setWindowFlag(Qt::FramelessWindowHint, true);

    ThemedChrome::Options options;
    options.title = true;
    options.layoutManaged = true;
    options.barHeight = 28;
    m_chrome = new ThemedChrome(this, options);
    m_chrome->title()->setText(title);
    connect(m_chrome, &ThemedChrome::closeRequested, this, &QDialog::reject);
}

ThemedDialog::~ThemedDialog() = default;

PaintedFrame *ThemedDialog::bar() const
{
    return m_chrome->bar();
}

PaintedFrame *ThemedDialog::panel() const
{
    return m_chrome->panel();
}

QLabel *ThemedDialog::titleLabel() const
{
    return m_chrome->title();
}

void ThemedDialog::setPanelLayout(QLayout *layout)
{
    layout->setContentsMargins(14, 12, 14, 12);
    panel()->setLayout(layout);
}

void ThemedDialog::themeControls()
{
    const Theme &t = CurrentTheme();
    QPalette pal = panel()->palette();
    // Half-way between the text and the background reads as "off" on light and dark themes.
    pal.setColor(QPalette::Disabled, QPalette::WindowText,
                 ResolveColor(BlendColor(t.PanelColor, t.MainColor, 110)));
    panel()->setPalette(pal);
    const QString css = PushButtonStyleSheet(t);
    for (QPushButton *button : panel()->findChildren<QPushButton *>()) {
        if (m_desktopStyleArea && m_desktopStyleArea->isAncestorOf(button))
            continue;
        if (button->styleSheet() != css)
            button->setStyleSheet(css);
    }
}

void ThemedDialog::keepDesktopStyle(QWidget *area)
{
    m_desktopStyleArea = area;
    // Every colour set explicitly, so that the panel's theme colours do not reach the area's
    // controls through palette inheritance.
    const QPalette desktop = QApplication::palette();
    QPalette pal;
    for (int g = 0; g < QPalette::NColorGroups; ++g) {
        for (int r = 0; r < QPalette::NColorRoles; ++r) {
            const auto group = QPalette::ColorGroup(g);
            const auto role = QPalette::ColorRole(r);
            pal.setBrush(group, role, desktop.brush(group, role));
        }
    }
    area->setPalette(pal);
    area->setAutoFillBackground(true);
}

void ThemedDialog::setDefaultButton(QPushButton *button)
{
    m_defaultButton = button;
    if (isVisible())
        settleDefaultButton();
}

void ThemedDialog::setVisible(bool visible)
{
    // Before QDialog::setVisible, which picks a default of its own when none is set.
    if (visible)
        settleDefaultButton();
    QDialog::setVisible(visible);
}

void ThemedDialog::settleDefaultButton()
{
    // Buttons other than the chosen one press on Enter only while they have the focus; with no
    // chosen button none is auto-default, so QDialog has nothing to promote.
    for (QPushButton *button : findChildren<QPushButton *>()) {
        if (button == m_defaultButton)
            continue;
        button->setDefault(false);
        if (!m_defaultButton)
            button->setAutoDefault(false);
    }
    if (m_defaultButton)
        m_defaultButton->setDefault(true);
}

void ThemedDialog::ThemeElementsUpdate()
{
    m_chrome->applyThemeColours();
    themeControls();
    bar()->update();
    panel()->update();
}

void ThemedDialog::showEvent(QShowEvent *event)
{
    // QDialog centres itself over its owner here; the stored position (if any) then wins.
    QDialog::showEvent(event);
    if (!m_placed) {
        m_placed = true;
        const bool stored = HasStoredPlacement(this);
        RestoreWindowPlacement(this, false);
        ApplyTheme(this);
        // The theme's button style is larger than the desktop's, and the size above was taken
        // before it applied: grow so that no row of the layout is squeezed below its controls.
        // The layout settles now, before the window is mapped: a window that grows just after
        // the window manager has placed it can be thrown back to the screen's corner.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
        const QSize wanted = size().expandedTo(sizeHint());
        if (wanted != size())
            resize(wanted);
        // The first time, a dialog opens centred over its owner at its final size; a dialog
        // of its own (no owner window) opens in a free spot, as a widget does.
        if (!stored && parentWidget())
            move(CentredOver(parentWidget()->window()->frameGeometry(), size()));
        else if (!stored)
            move(FreeSpotFor(this));
        KeepInsideScreen(this);
        focusFirstPanelControl();
    }
}

void ThemedDialog::keyPressEvent(QKeyEvent *event)
{
    // With no default button the push buttons are not auto-default, so Enter on a focused
    // button would do nothing: press it, as Space does.
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    auto *focused = qobject_cast<QPushButton *>(focusWidget());
    if (enter && !m_defaultButton && focused && focused->isEnabled() &&
        event->modifiers() == Qt::NoModifier) {
        focused->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

void ThemedDialog::focusFirstPanelControl()
{
    // The bar's close button comes first in the focus chain, and Enter presses the focused
    // button: the dialog would close instead of doing what its default button says. The
    // first control of the panel takes the focus; Escape still closes.
    QWidget *focused = focusWidget();
    if (focused && focused != m_chrome->closeButton())
        return;
    for (QWidget *w = nextInFocusChain(); w && w != this; w = w->nextInFocusChain()) {
        if (panel()->isAncestorOf(w) && (w->focusPolicy() & Qt::TabFocus) && w->isEnabled() &&
            w->isVisibleTo(this)) {
            w->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

void ThemedDialog::done(int result)
{
    if (m_placed)
        SaveWindowPlacement(this, false);
    QDialog::done(result); // the keyboard goes back to the owner (DialogFocusReturn)
}
