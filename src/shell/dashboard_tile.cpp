#include "shell/dashboard_tile.h"

#include "core/clock_source.h"
#include "core/shipped_data.h"
#include "core/widget_index.h"
#include "themes/widget_glyphs.h"
#include "weather/forecast_painter.h"
#include "weather/weather_settings.h"
#include "weather/weather_station.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>

namespace {

// How a tile's rounded box is drawn; an invalid focus ring colour for none.
struct TileBoxLook
{
    QColor fill;
    QColor border;
    qreal borderWidth = 1.0;
    QColor focusRing;
};

// The box (fill, border, focus ring) over a tile of `size`.
QPixmap tileBox(const QSize &size, qreal devicePixelRatio, qreal radius, const TileBoxLook &look)
{
    // Drawn once per look and shared by the tiles: Qt splits the antialiased fill of a shape this
    // tall across its thread pool, and nine tiles drawing theirs at every paint cost more in
    // threads waking than in painting.
    const QString key = QStringLiteral("vantora-tile:%1x%2@%3:%4:%5:%6:%7:%8")
                            .arg(size.width())
                            .arg(size.height())
                            .arg(devicePixelRatio)
                            .arg(radius)
                            .arg(look.fill.rgba(), 0, 16)
                            .arg(look.border.rgba(), 0, 16)
                            .arg(look.borderWidth)
                            .arg(look.focusRing.isValid() ? look.focusRing.rgba() : 0u, 0, 16);
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    QImage image(size * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(devicePixelRatio);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(QPointF(0, 0), QSizeF(size)).adjusted(2, 2, -2, -2);
    QPen border(look.border);
    border.setWidthF(look.borderWidth);
    p.setPen(border);
    p.setBrush(look.fill);
    p.drawRoundedRect(box, radius, radius);
    if (look.focusRing.isValid()) {
        p.setPen(QPen(look.focusRing, 1, Qt::DotLine));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(box.adjusted(4, 4, -4, -4), radius * 0.7, radius * 0.7);
    }
    p.end();
    pixmap = QPixmap::fromImage(std::move(image));
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

} // namespace

DashboardTile::DashboardTile(int widgetIndex, QWidget *parent) : QAbstractButton(parent), m_index(widgetIndex)
{
    setObjectName(QStringLiteral("btnWIDGET_%1").arg(widgetIndex));
    setText(WidgetDisplayName(widgetIndex));
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setCheckable(true);
    updateDescription();
    // The weather's tile shows the days ahead in brief once there is a forecast.
    if (m_index == WidgetWeather)
        connect(WeatherStation::shared(), &WeatherStation::forecastChanged, this,
                qOverload<>(&QWidget::update));
    // A click that is not the mouse's (a screen reader's press) opens or closes the widget;
    // the mouse's single click only selects the tile.
    connect(this, &QAbstractButton::clicked, this, [this] {
        if (!m_mouseRelease && m_available)
            emit toggleRequested(m_index);
    });
}

void DashboardTile::setSelected(bool selected)
{
    if (m_selected == selected)
        return;
    m_selected = selected;
    update();
}

void DashboardTile::setOpenState(bool open)
{
    if (m_open == open)
        return;
    m_open = open;
    setChecked(open);
    updateDescription();
    update();
}

void DashboardTile::setAvailable(bool available)
{
    m_available = available;
    updateDescription();
    update();
}

void DashboardTile::setDetail(const QString &detail)
{
    if (m_detail == detail)
        return;
    m_detail = detail;
    updateDescription();
    update();
}

void DashboardTile::setColors(const QColor &text, const QColor &accent)
{
    m_text = text;
    m_accent = accent;
    update();
}

void DashboardTile::updateDescription()
{
    const QString name = WidgetDisplayName(m_index);
    QString state;
    if (!m_available) {
        setToolTip(tr("%1 is not part of this version").arg(name));
        state = tr("not available");
    } else if (m_open) {
        setToolTip(tr("%1 is open: double-click or press Enter to close it").arg(name));
        state = tr("open");
    } else {
        setToolTip(tr("Double-click or press Enter to open %1").arg(name));
        state = tr("closed");
    }
    if (!m_detail.isEmpty())
        setToolTip(m_detail + QStringLiteral("\n\n") + toolTip());
    setAccessibleName(name);
    setAccessibleDescription(m_detail.isEmpty() ? state : state + QStringLiteral(": ") + m_detail);
}

bool DashboardTile::paintWeatherBrief(QPainter &p, const QRectF &area, const QColor &ink) const
{
    if (m_index != WidgetWeather || !m_available)
        return false;
    const QDateTime now = ClockSource::now();
    const WeatherForecast &forecast = WeatherStation::shared()->forecast();
    if (forecast.daysFrom(now, 1).isEmpty())
        return false;
    ForecastStyle style;
    style.ink = ink;
    style.font = font();
    style.glyphFamily = ShippedData::weatherFontFamily();
    style.fahrenheit = WeatherSettings::load().fahrenheit;
    // Two days fit a tile at a size that reads: today and tomorrow.
    ForecastPainter(forecast, now, style).paintBrief(p, area, 2);
    return true;
}

QSize DashboardTile::sizeHint() const
{
    const QFontMetrics fm(font());
    const int width =
        qMax(fm.horizontalAdvance(QStringLiteral("Whiteboard")) + fm.height() * 2, fm.height() * 7);
    return QSize(width, fm.height() * 6);
}

QSize DashboardTile::minimumSizeHint() const
{
    const QFontMetrics fm(font());
    return QSize(fm.height() * 5, fm.height() * 5);
}

void DashboardTile::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QFontMetrics fm(font());
    const qreal radius = fm.height() * 0.45;
    const QRectF box = QRectF(rect()).adjusted(2, 2, -2, -2);

    // Everything is drawn in the panel's text colour at different strengths, so the tiles read
    // well on any theme's panel.
    auto ink = [this](qreal alpha) {
        QColor c = m_text;
        c.setAlphaF(alpha);
        return c;
    };
    qreal fillAlpha = m_hovered && m_available ? 0.14 : 0.07;
    if (m_open)
        fillAlpha += 0.16;
    TileBoxLook look;
    look.fill = ink(fillAlpha);
    look.border = m_selected ? ink(1.0) : ink(0.25);
    look.borderWidth = m_selected ? 2.0 : 1.0;
    look.focusRing = hasFocus() ? ink(0.8) : QColor();
    p.drawPixmap(0, 0, tileBox(size(), devicePixelRatioF(), radius, look));

    const QColor content = ink(m_available ? 1.0 : 0.35);
    // A detail line takes room from the picture.
    const qreal glyphSide = qMin(box.width(), box.height()) * (m_detail.isEmpty() ? 0.42 : 0.34);
    const QRectF glyphBox(box.center().x() - glyphSide / 2, box.top() + fm.height() * 0.6, glyphSide,
                          glyphSide);
    const QRectF briefBox(box.left() + 4, box.top() + 4, box.width() - 8, glyphBox.bottom() - box.top());
    if (!paintWeatherBrief(p, briefBox, content))
        WidgetGlyphs::paint(p, m_index, glyphBox, content);

    p.setPen(content);
    QFont nameFont = font();
    nameFont.setBold(m_open);
    p.setFont(nameFont);
    const QRectF nameBox(box.left(), glyphBox.bottom() + fm.height() * 0.3, box.width(), fm.height() * 1.2);
    p.drawText(nameBox, Qt::AlignCenter, fm.elidedText(text(), Qt::ElideRight, int(box.width()) - 8));
    if (!m_detail.isEmpty()) {
        QFont detailFont = font();
        detailFont.setPointSizeF(font().pointSizeF() * 0.85);
        detailFont.setItalic(true);
        p.setFont(detailFont);
        const QFontMetrics detailMetrics(detailFont);
        const QRectF detailBox(box.left() + 4, nameBox.bottom(), box.width() - 8, detailMetrics.height() + 2);
        const QString line = m_detail.simplified();
        p.drawText(detailBox, Qt::AlignCenter,
                   detailMetrics.elidedText(line, Qt::ElideRight, int(detailBox.width())));
    }

    // A dot marks an open widget, so the state does not rest on shading alone.
    if (m_open) {
        const qreal dot = fm.height() * 0.5;
        p.setPen(QPen(m_accent, 1.5));
        p.setBrush(m_text);
        p.drawEllipse(QRectF(box.right() - dot * 2, box.top() + dot, dot, dot));
    }
}

void DashboardTile::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        setFocus(Qt::MouseFocusReason);
        emit selectRequested(m_index);
    }
    QAbstractButton::mousePressEvent(event);
}

void DashboardTile::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_available)
        emit toggleRequested(m_index);
}

void DashboardTile::mouseReleaseEvent(QMouseEvent *event)
{
    m_mouseRelease = true;
    QAbstractButton::mouseReleaseEvent(event);
    m_mouseRelease = false;
}

void DashboardTile::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        if (m_available)
            emit toggleRequested(m_index);
        return;
    case Qt::Key_Left:
        emit moveRequested(m_index, -1, 0);
        return;
    case Qt::Key_Right:
        emit moveRequested(m_index, 1, 0);
        return;
    case Qt::Key_Up:
        emit moveRequested(m_index, 0, -1);
        return;
    case Qt::Key_Down:
        emit moveRequested(m_index, 0, 1);
        return;
    default:
        QAbstractButton::keyPressEvent(event);
    }
}

void DashboardTile::focusInEvent(QFocusEvent *event)
{
    QAbstractButton::focusInEvent(event);
    emit selectRequested(m_index);
}

void DashboardTile::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void DashboardTile::leaveEvent(QEvent *event)
{
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}
