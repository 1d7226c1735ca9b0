#include "themes/themed_button.h"

#include "core/painted_accessible.h"
#include "core/widget_frame.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QTimer>

namespace {

constexpr int kColorCheckMs = 100;

bool isActivationKey(int key)
{
    return key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
}

// One state of the close glyph: an antialiased "x" with round ends, on a soft round backing
// whose strength marks highlight and pressed.
QPixmap drawCloseGlyph(const QSize &size, qreal dpr, const QColor &color, qreal backingAlpha, qreal inset)
{
    QPixmap pm(size * dpr);
    pm.setDevicePixelRatio(dpr);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r(0.5, 0.5, size.width() - 1.0, size.height() - 1.0);
    if (backingAlpha > 0) {
        QColor backing = color;
        backing.setAlphaF(backingAlpha);
        p.setPen(Qt::NoPen);
        p.setBrush(backing);
        const qreal radius = qMin(r.width(), r.height()) / 4.0;
        p.drawRoundedRect(r, radius, radius);
    }
    const qreal side = qMin(r.width(), r.height());
    const qreal arm = side * 0.5 * (1.0 - 2.0 * 0.3); // the cross fills the middle 40 %
    const QPointF c = r.center() + QPointF(inset, inset);
    QPen pen(color, qMax(1.5, side / 9.0), Qt::SolidLine, Qt::RoundCap);
    p.setPen(pen);
    p.drawLine(c + QPointF(-arm, -arm), c + QPointF(arm, arm));
    p.drawLine(c + QPointF(arm, -arm), c + QPointF(-arm, arm));
    return pm;
}

} // namespace

ThemedButton::ThemedButton(QWidget *parent) : QWidget(parent), m_colorCheck(new QTimer(this))
{
    PaintedAccessible::registerButtonClass(staticMetaObject.className());
    SetHandCursor(this);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    m_colorCheck->setObjectName(QStringLiteral("tmrCOLORCHK"));
    m_colorCheck->setInterval(kColorCheckMs);
    connect(m_colorCheck, &QTimer::timeout, this, &ThemedButton::colorCheckTick);
}

void ThemedButton::setPictures(const QPixmap &normal, const QPixmap &highlight, const QPixmap &pressed)
{
    m_glyphColor = QColor();
    m_normal = normal;
    m_highlight = highlight;
    m_pressed = pressed;
    update();
}

void ThemedButton::setCloseGlyph(const QColor &color)
{
    m_glyphColor = color;
    renderCloseGlyph();
    if (toolTip().isEmpty())
        setToolTip(tr("Close"));
    if (accessibleName().isEmpty())
        setAccessibleName(tr("Close"));
}

void ThemedButton::renderCloseGlyph()
{
    const QSize s = size().isEmpty() ? sizeHint() : size();
    const qreal dpr = devicePixelRatioF();
    m_normal = drawCloseGlyph(s, dpr, m_glyphColor, 0.0, 0.0);
    m_highlight = drawCloseGlyph(s, dpr, m_glyphColor, 0.22, 0.0);
    m_pressed = drawCloseGlyph(s, dpr, m_glyphColor, 0.40, 0.5);
    update();
}

void ThemedButton::setBackColor(const QColor &color)
{
    m_backColor = color;
    update();
}

void ThemedButton::CloseRefresh()
{
    showPicture(&m_normal);
}

bool ThemedButton::isWatchingMouse() const
{
    return m_colorCheck->isActive();
}

void ThemedButton::colorCheckTick()
{
    checkMouseLeft();
}

QSize ThemedButton::sizeHint() const
{
    return QSize(16, 16);
}

const QPixmap *ThemedButton::pictureFor(Picture kind) const
{
    switch (kind) {
    case Picture::Highlight:
        return &m_highlight;
    case Picture::Pressed:
        return &m_pressed;
    case Picture::Normal:
        break;
    }
    return &m_normal;
}

void ThemedButton::paintEvent(QPaintEvent *)
{
    // A drawn glyph follows the button's size and the screen's pixel ratio.
    if (m_glyphColor.isValid() && (m_normal.deviceIndependentSize().toSize() != size() ||
                                   !qFuzzyCompare(m_normal.devicePixelRatio(), devicePixelRatioF())))
        renderCloseGlyph();
    QPainter p(this);
    if (m_backColor.isValid())
        p.fillRect(rect(), m_backColor);
    const QPixmap &picture = *pictureFor(m_shownKind);
    if (!picture.isNull()) {
        p.setRenderHint(QPainter::SmoothPixmapTransform);
        p.drawPixmap(rect(), picture);
    }
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &p, this);
    }
}

void ThemedButton::hover()
{
    SetHandCursor(this);
    showPicture(&m_highlight);
}

void ThemedButton::enterEvent(QEnterEvent *)
{
    hover();
}

void ThemedButton::leaveEvent(QEvent *)
{
    // The timer catches the cases where no leave event comes (the window moved away under a
    // still pointer); this one is just quicker.
    if (!m_keyDown)
        showPicture(&m_normal);
}

void ThemedButton::mouseMoveEvent(QMouseEvent *event)
{
    // While the left button is held the pressed picture stays, so that a small wobble of the
    // mouse during a click does not flash the highlight.
    if (m_shownKind != Picture::Pressed || !(event->buttons() & Qt::LeftButton))
        hover();
}

void ThemedButton::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore(); // the host's right-click menu
        return;
    }
    SetHandCursor(this);
    showPicture(&m_pressed);
}

void ThemedButton::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    showPicture(&m_highlight);
    if (rect().contains(event->position().toPoint()))
        emit clicked();
}

void ThemedButton::keyPressEvent(QKeyEvent *event)
{
    if (!isActivationKey(event->key()) || event->modifiers() & ~Qt::KeypadModifier) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (!event->isAutoRepeat()) {
        m_keyDown = true;
        showPicture(&m_pressed);
    }
}

void ThemedButton::keyReleaseEvent(QKeyEvent *event)
{
    if (!isActivationKey(event->key()) || event->isAutoRepeat() || !m_keyDown) {
        QWidget::keyReleaseEvent(event);
        return;
    }
    m_keyDown = false;
    showPicture(&m_normal);
    emit clicked();
}

void ThemedButton::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::EnabledChange) {
        if (isEnabled()) {
            SetHandCursor(this);
        } else {
            setCursor(Qt::ArrowCursor);
            m_keyDown = false;
            showPicture(&m_normal);
        }
    }
    QWidget::changeEvent(event);
}

void ThemedButton::showPicture(const QPixmap *picture)
{
    // Reassign only on a change, so the button does not flicker on every mouse move.
    if (m_shown != picture) {
        m_shown = picture;
        m_shownKind = picture == &m_pressed     ? Picture::Pressed
                      : picture == &m_highlight ? Picture::Highlight
                                                : Picture::Normal;
        update();
    }
    // Watch for the mouse leaving while anything but the normal picture shows.
    if (m_shownKind == Picture::Normal)
        m_colorCheck->stop();
    else if (!m_colorCheck->isActive())
        m_colorCheck->start();
}

void ThemedButton::checkMouseLeft()
{
    if (m_keyDown)
        return;
    if (!isVisible() || !IsCursorOverWindow(this))
        showPicture(&m_normal);
}

void ThemedButton::click()
{
    if (isEnabled())
        emit clicked();
}
