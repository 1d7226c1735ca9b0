#include "weather/forecast_view.h"

#include "core/clock_source.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

ForecastView::ForecastView(QWidget *parent) : QWidget(parent), m_now(ClockSource::now())
{
    setObjectName(QStringLiteral("pfrFORECAST"));
    setMouseTracking(true);
    setAttribute(Qt::WA_TranslucentBackground);
    rebuild();
}

ForecastView::~ForecastView() = default;

void ForecastView::setForecast(const WeatherForecast &forecast)
{
    m_forecast = forecast;
    rebuild();
}

void ForecastView::setStyle(const ForecastStyle &style)
{
    m_style = style;
    rebuild();
}

void ForecastView::setNow(const QDateTime &now)
{
    const ForecastPainter next(m_forecast, now, m_style);
    const bool same =
        next.hours().size() == m_painter->hours().size() && next.days().size() == m_painter->days().size() &&
        (next.hours().isEmpty() || next.hours().first().time == m_painter->hours().first().time) &&
        (next.days().isEmpty() || next.days().first().date == m_painter->days().first().date);
    m_now = now;
    if (!same)
        rebuild();
}

void ForecastView::rebuild()
{
    m_painter = std::make_unique<ForecastPainter>(m_forecast, m_now, m_style);
    m_hoverX = -1;
    m_drawing = QPixmap();
    update();
}

QRectF ForecastView::drawingArea() const
{
    return QRectF(rect()).adjusted(4, 2, -4, -2);
}

const ForecastPainter &ForecastView::painter()
{
    m_painter->layout(drawingArea());
    return *m_painter;
}

QString ForecastView::describeAt(const QPointF &point)
{
    return painter().describeAt(point);
}

void ForecastView::paintEvent(QPaintEvent *)
{
    // The drawing is kept as a picture: the hover line and every expose only copy it.
    const qreal ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * ratio).toSize();
    if (m_drawing.size() != pixels || m_drawing.devicePixelRatio() != ratio) {
        m_drawing = QPixmap(pixels);
        m_drawing.setDevicePixelRatio(ratio);
        m_drawing.fill(Qt::transparent);
        QPainter drawing(&m_drawing);
        m_painter->paint(drawing, drawingArea());
    }
    QPainter p(this);
    p.drawPixmap(0, 0, m_drawing);
    if (m_hoverX >= 0) {
        QColor line = m_style.ink;
        line.setAlphaF(0.6);
        p.setPen(QPen(line, 1, Qt::DashLine));
        const QRectF chart = m_painter->chartArea();
        p.drawLine(QPointF(m_hoverX, chart.top()), QPointF(m_hoverX, chart.bottom()));
    }
}

void ForecastView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF at = event->position();
    const qreal x = painter().hourLineAt(at);
    if (x != m_hoverX) {
        m_hoverX = x;
        update();
    }
    // An open tooltip follows the pointer with the values under it.
    if (QToolTip::isVisible()) {
        const QString text = m_painter->describeAt(at);
        if (text.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(event->globalPosition().toPoint(), text, this);
    }
    QWidget::mouseMoveEvent(event);
}

bool ForecastView::event(QEvent *event)
{
    // The values under the pointer, and never the panel's own tooltip behind the view.
    if (event->type() == QEvent::ToolTip) {
        const auto *help = static_cast<QHelpEvent *>(event);
        const QString text = describeAt(help->pos());
        if (text.isEmpty())
            QToolTip::hideText();
        else
            QToolTip::showText(help->globalPos(), text, this);
        return true;
    }
    return QWidget::event(event);
}

void ForecastView::leaveEvent(QEvent *event)
{
    m_hoverX = -1;
    update();
    QWidget::leaveEvent(event);
}
