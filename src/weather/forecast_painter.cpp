#include "weather/forecast_painter.h"

#include "core/shipped_data.h"

#include <QFontMetricsF>
#include <QHash>
#include <QLocale>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace {

constexpr qreal MinRainScaleMm = 2.0; // light rain stays low on a dry day's scale

QFont sized(QFont font, qreal pixels, bool bold = false)
{
    font.setPixelSize(qMax(7, int(std::lround(pixels))));
    font.setBold(bold);
    return font;
}

// The width of a text in a font. Shaping is most of the cost of drawing the panel, and the
// same few texts ("Today", "18° 6°") come back in every drawing, so their widths are kept.
qreal widthOf(const QFontMetricsF &fm, const QFont &font, const QString &text)
{
    static QHash<QString, qreal> widths;
    const QString key = font.key() + QChar(0x1F) + text;
    const auto found = widths.constFind(key);
    if (found != widths.constEnd())
        return *found;
    if (widths.size() > 2000)
        widths.clear(); // sizes change with the window; old ones are not needed again
    return widths[key] = fm.horizontalAdvance(text);
}

// Draws one line of text centred in a box, at a baseline worked out here: the plain
// point-and-text call skips the layout pass that a box-and-alignment call makes every time.
void centred(QPainter &p, const QFontMetricsF &fm, const QRectF &box, const QString &text)
{
    const qreal x = box.center().x() - widthOf(fm, p.font(), text) / 2;
    const qreal y = box.center().y() + (fm.ascent() - fm.descent()) / 2;
    p.drawText(QPointF(x, y), text);
}

QString oneDecimal(double value)
{
    return QLocale().toString(value, 'f', 1);
}

} // namespace

ForecastPainter::ForecastPainter(const WeatherForecast &forecast, const QDateTime &now,
                                 const ForecastStyle &style)
    : m_forecast(forecast), m_now(now), m_style(style), m_hours(forecast.hoursFrom(now)),
      m_days(forecast.daysFrom(now)), m_today(forecast.local(now.toUTC()).date())
{
    bool any = false;
    for (const ForecastHour &h : std::as_const(m_hours)) {
        if (std::isnan(h.celsius))
            continue;
        const double t = shown(h.celsius);
        m_low = any ? qMin(m_low, t) : t;
        m_high = any ? qMax(m_high, t) : t;
        any = true;
        if (!std::isnan(h.rainMm))
            m_rainTop = qMax(m_rainTop, h.rainMm);
    }
    // Some room above and below the curve for its labels, and a flat day still gets a slope.
    const double span = qMax(4.0, m_high - m_low);
    m_low -= span * 0.15;
    m_high += span * 0.25;
    m_rainTop = qMax(m_rainTop, MinRainScaleMm);
}

double ForecastPainter::shown(double celsius) const
{
    return m_style.fahrenheit ? FahrenheitFromCelsius(celsius) : celsius;
}

QString ForecastPainter::temperature(double celsius) const
{
    if (std::isnan(celsius))
        return QStringLiteral("-");
    return QString::number(std::lround(shown(celsius))) + QChar(0x00B0);
}

QString ForecastPainter::rain(double mm) const
{
    if (std::isnan(mm))
        return QStringLiteral("-");
    if (m_style.fahrenheit)
        return QLocale().toString(mm / 25.4, 'f', 2) + QStringLiteral(" in");
    return oneDecimal(mm) + QStringLiteral(" mm");
}

QString ForecastPainter::wind(double kmh) const
{
    if (std::isnan(kmh))
        return QStringLiteral("-");
    if (m_style.fahrenheit)
        return QString::number(std::lround(kmh / 1.609344)) + QStringLiteral(" mph");
    return QString::number(std::lround(kmh)) + QStringLiteral(" km/h");
}

QColor ForecastPainter::ink(qreal alpha) const
{
    QColor c = m_style.ink;
    c.setAlphaF(alpha);
    return c;
}

void ForecastPainter::layout(const QRectF &area)
{
    if (area == m_area)
        return;
    m_area = area;
    const qreal gap = qMax(4.0, area.height() * 0.03);
    const qreal dayShare = m_hours.isEmpty() ? 1.0 : (m_days.isEmpty() ? 0.0 : 0.42);
    const qreal dayHeight = area.height() * dayShare;
    m_dayRow = QRectF(area.left(), area.bottom() - dayHeight, area.width(), dayHeight);
    // The chart keeps a line at its foot for the hour marks.
    const qreal markLine = qMax(10.0, area.height() * 0.07);
    const QRectF chart(area.left(), area.top(), area.width(), area.height() - dayHeight - gap);
    m_chart = chart.adjusted(0, 0, 0, -markLine);
    m_rainBand = QRectF(m_chart.left(), m_chart.bottom() - m_chart.height() * 0.3, m_chart.width(),
                        m_chart.height() * 0.3);
}

qreal ForecastPainter::xOf(const QDateTime &time) const
{
    if (m_hours.isEmpty())
        return m_chart.left();
    const qint64 first = m_hours.first().time.toSecsSinceEpoch();
    // The last hour's bar needs its own width: the axis runs to the end of that hour.
    const qint64 last = m_hours.last().time.toSecsSinceEpoch() + 3600;
    const qreal share = qreal(time.toSecsSinceEpoch() - first) / qreal(qMax<qint64>(1, last - first));
    return m_chart.left() + share * m_chart.width();
}

qreal ForecastPainter::yOf(double celsius) const
{
    const qreal share = (shown(celsius) - m_low) / qMax(0.1, m_high - m_low);
    return m_chart.bottom() - share * m_chart.height();
}

void ForecastPainter::paint(QPainter &p, const QRectF &area)
{
    layout(area);
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    if (m_hours.isEmpty() && m_days.isEmpty())
        paintEmpty(p, area);
    if (!m_hours.isEmpty()) {
        paintHourMarks(p);
        paintRain(p);
        paintCurve(p);
    }
    if (!m_days.isEmpty())
        paintDays(p);
    p.restore();
}

void ForecastPainter::paintEmpty(QPainter &p, const QRectF &area)
{
    p.setPen(ink(0.75));
    p.setFont(sized(m_style.font, qMin(area.height() / 8, area.width() / 22)));
    p.drawText(area, Qt::AlignCenter | Qt::TextWordWrap,
               QObject::tr("No forecast from this weather source yet"));
}

void ForecastPainter::paintHourMarks(QPainter &p)
{
    const QFont font = sized(m_style.font, qMin(m_area.height() * 0.055, m_area.width() / 40));
    p.setFont(font);
    const QFontMetricsF fm(font);
    // Every 6 hours of the place's own clock, with the day's name at midnight.
    QDateTime mark = m_forecast.local(m_hours.first().time);
    mark = QDateTime(mark.date(), QTime(mark.time().hour() - mark.time().hour() % 6, 0), Qt::OffsetFromUTC,
                     m_forecast.utcOffsetSeconds);
    const QDateTime end = m_hours.last().time.addSecs(3600);
    qreal lastRight = -1e9;
    // Upright lines need no smoothing, and drawn without it they stay one pixel sharp.
    p.setRenderHint(QPainter::Antialiasing, false);
    for (; mark <= end; mark = mark.addSecs(6 * 3600)) {
        const qreal x = xOf(mark);
        if (x < m_chart.left())
            continue;
        const bool midnight = mark.time().hour() == 0;
        p.setPen(QPen(ink(midnight ? 0.45 : 0.18), 0));
        p.drawLine(QPointF(x, m_chart.top()), QPointF(x, m_chart.bottom()));
        const QString label = midnight ? dayName(mark.date()) : mark.toString(QStringLiteral("HH"));
        const qreal w = widthOf(fm, font, label);
        const qreal left = qBound(m_area.left(), x - w / 2, m_area.right() - w);
        if (left < lastRight + 2)
            continue; // too narrow for every mark: skip one rather than overprint
        p.setPen(ink(midnight ? 0.95 : 0.7));
        p.drawText(QPointF(left, m_chart.bottom() + fm.ascent() + 1), label);
        lastRight = left + w;
    }
    p.setRenderHint(QPainter::Antialiasing, true);
}

void ForecastPainter::paintRain(QPainter &p)
{
    p.setPen(Qt::NoPen);
    p.setBrush(ink(0.42));
    for (const ForecastHour &h : std::as_const(m_hours)) {
        if (std::isnan(h.rainMm) || h.rainMm <= 0)
            continue;
        const qreal left = xOf(h.time);
        const qreal right = xOf(h.time.addSecs(3600));
        const qreal height = qMax(1.0, m_rainBand.height() * qMin(1.0, h.rainMm / m_rainTop));
        p.drawRect(QRectF(left + 0.5, m_rainBand.bottom() - height, qMax(1.0, right - left - 1), height));
    }
    p.setBrush(Qt::NoBrush);
}

void ForecastPainter::paintCurve(QPainter &p)
{
    QPainterPath curve;
    QPointF highest(0, 1e9);
    QPointF lowest(0, -1e9);
    double highValue = 0;
    double lowValue = 0;
    for (const ForecastHour &h : std::as_const(m_hours)) {
        if (std::isnan(h.celsius))
            continue;
        // Each value stands at the middle of its hour, over its rain bar.
        const QPointF point(xOf(h.time.addSecs(1800)), yOf(h.celsius));
        // (A path holding only its first point still counts as empty.)
        curve.elementCount() == 0 ? curve.moveTo(point) : curve.lineTo(point);
        if (point.y() < highest.y()) {
            highest = point;
            highValue = h.celsius;
        }
        if (point.y() > lowest.y()) {
            lowest = point;
            lowValue = h.celsius;
        }
    }
    if (curve.elementCount() < 2)
        return;
    QPainterPath under = curve;
    under.lineTo(curve.currentPosition().x(), m_chart.bottom());
    under.lineTo(curve.elementAt(0).x, m_chart.bottom());
    under.closeSubpath();
    // The faint fill's edge lies under the curve's stroke: it needs no smoothing of its own.
    p.setRenderHint(QPainter::Antialiasing, false);
    p.fillPath(under, ink(0.08));
    p.setRenderHint(QPainter::Antialiasing, true);
    // Bevel joins cost the stroker much less than round ones and look the same at this width.
    QPen pen(ink(0.95), qMax(1.6, m_area.height() / 130.0));
    pen.setJoinStyle(Qt::BevelJoin);
    pen.setCapStyle(Qt::FlatCap);
    p.strokePath(curve, pen);

    const QFont font = sized(m_style.font, qMin(m_area.height() * 0.065, m_area.width() / 32), true);
    p.setFont(font);
    const QFontMetricsF fm(font);
    p.setPen(ink(1.0));
    auto label = [&](const QPointF &at, double celsius, bool above) {
        const QString text = temperature(celsius);
        const qreal w = widthOf(fm, font, text);
        const qreal x = qBound(m_chart.left(), at.x() - w / 2, m_chart.right() - w);
        const qreal y = above ? at.y() - 4 : at.y() + fm.ascent() + 3;
        p.drawText(QPointF(x, qBound(m_chart.top() + fm.ascent(), y, m_chart.bottom() - 1)), text);
    };
    label(highest, highValue, true);
    if (highest != lowest)
        label(lowest, lowValue, false);
}

QString ForecastPainter::dayName(const QDate &date) const
{
    if (date == m_today)
        return QObject::tr("Today");
    return QLocale().standaloneDayName(date.dayOfWeek(), QLocale::ShortFormat);
}

void ForecastPainter::paintDays(QPainter &p)
{
    const qreal width = m_dayRow.width() / WeatherForecast::DaysShown;
    // Five lines a cell: the day, its symbol (two lines), high and low, rain.
    const qreal line = qMin(m_dayRow.height() / 5.2, width / 3.6);
    const CellFonts fonts(m_style, line);
    p.setPen(QPen(ink(0.18), 0));
    p.setRenderHint(QPainter::Antialiasing, false);
    for (qsizetype i = 1; i < m_days.size(); ++i) {
        const qreal x = m_dayRow.left() + i * width;
        p.drawLine(QPointF(x, m_dayRow.top() + 4), QPointF(x, m_dayRow.bottom() - 4));
    }
    p.setRenderHint(QPainter::Antialiasing, true);
    for (qsizetype i = 0; i < m_days.size(); ++i) {
        const QRectF cell(m_dayRow.left() + i * width, m_dayRow.top(), width, m_dayRow.height());
        paintDayCell(p, cell, m_days.at(i), line, fonts);
    }
}

ForecastPainter::CellFonts::CellFonts(const ForecastStyle &style, qreal line)
    : text(sized(style.font, line * 0.78)), bold(sized(style.font, line * 0.8, true)),
      symbol(style.glyphFamily), textMetrics(text), boldMetrics(bold), symbolMetrics(symbol)
{
    symbol.setPixelSize(qMax(8, int(line * 1.5)));
    symbolMetrics = QFontMetricsF(symbol);
}

void ForecastPainter::paintDayCell(QPainter &p, const QRectF &cell, const ForecastDay &day, qreal line,
                                   const CellFonts &fonts)
{
    const qreal top = cell.top() + (cell.height() - line * 5) / 2;
    p.setFont(fonts.text);
    p.setPen(ink(0.85));
    centred(p, fonts.textMetrics, QRectF(cell.left(), top, cell.width(), line), dayName(day.date));
    paintSymbol(p, QRectF(cell.left(), top + line, cell.width(), line * 2), day.code, fonts);
    p.setFont(fonts.bold);
    p.setPen(ink(1.0));
    const QString highLow = temperature(day.highCelsius) + QStringLiteral(" ") + temperature(day.lowCelsius);
    centred(p, fonts.boldMetrics, QRectF(cell.left(), top + line * 3, cell.width(), line), highLow);
    p.setFont(fonts.text);
    p.setPen(ink(0.7));
    const QString wet = !std::isnan(day.rainMm) ? rain(day.rainMm)
                        : day.rainChance >= 0   ? QString::number(day.rainChance) + QLatin1Char('%')
                                                : QString();
    centred(p, fonts.textMetrics, QRectF(cell.left(), top + line * 4, cell.width(), line), wet);
}

void ForecastPainter::paintSymbol(QPainter &p, const QRectF &box, int code, const CellFonts &fonts) const
{
    const QString glyph = ShippedData::weatherGlyph(code);
    if (m_style.glyphFamily.isEmpty() || glyph.isEmpty())
        return;
    p.setFont(fonts.symbol);
    p.setPen(ink(1.0));
    centred(p, fonts.symbolMetrics, box, glyph);
}

void ForecastPainter::paintBrief(QPainter &p, const QRectF &area, int days)
{
    m_area = QRectF();
    const int count = int(qMin<qsizetype>(days, m_days.size()));
    if (count == 0)
        return;
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    // Each day: its symbol on the left, high over low on the right, as large as the cell allows.
    const qreal width = area.width() / count;
    const qreal text = qMin(area.height() * 0.34, width * 0.5 / 2.1);
    CellFonts fonts(m_style, text / 0.78 * 0.9);
    fonts.bold = sized(m_style.font, text, true);
    fonts.boldMetrics = QFontMetricsF(fonts.bold);
    fonts.text = sized(m_style.font, text);
    fonts.textMetrics = QFontMetricsF(fonts.text);
    for (int i = 0; i < count; ++i) {
        const ForecastDay &day = m_days.at(i);
        const QRectF cell(area.left() + i * width, area.top(), width, area.height());
        const QRectF symbolBox(cell.left(), cell.top(), width * 0.5, cell.height());
        paintSymbol(p, symbolBox, day.code, fonts);
        const QRectF texts(symbolBox.right(), cell.center().y() - text * 1.25, width * 0.5, text * 2.5);
        p.setPen(ink(1.0));
        p.setFont(fonts.bold);
        centred(p, fonts.boldMetrics, texts.adjusted(0, 0, 0, -texts.height() / 2),
                temperature(day.highCelsius));
        p.setFont(fonts.text);
        p.setPen(ink(0.75));
        centred(p, fonts.textMetrics, texts.adjusted(0, texts.height() / 2, 0, 0),
                temperature(day.lowCelsius));
    }
    p.restore();
}

int ForecastPainter::hourIndexAt(qreal x) const
{
    for (qsizetype i = 0; i < m_hours.size(); ++i)
        if (x >= xOf(m_hours.at(i).time) && x < xOf(m_hours.at(i).time.addSecs(3600)))
            return int(i);
    return -1;
}

int ForecastPainter::dayIndexAt(const QPointF &point) const
{
    if (!m_dayRow.contains(point))
        return -1;
    const int i = int((point.x() - m_dayRow.left()) / (m_dayRow.width() / WeatherForecast::DaysShown));
    return i >= 0 && i < m_days.size() ? i : -1;
}

qreal ForecastPainter::hourLineAt(const QPointF &point) const
{
    if (point.y() < m_chart.top() || point.y() > m_chart.bottom() + 2)
        return -1;
    const int i = hourIndexAt(point.x());
    return i < 0 ? -1 : xOf(m_hours.at(i).time.addSecs(1800));
}

QString ForecastPainter::describeAt(const QPointF &point) const
{
    const int day = dayIndexAt(point);
    if (day >= 0) {
        const ForecastDay &d = m_days.at(day);
        QString text =
            QLocale().toString(d.date, QStringLiteral("dddd d MMMM")) + QLatin1Char('\n') +
            QObject::tr("High %1, low %2").arg(temperature(d.highCelsius), temperature(d.lowCelsius));
        if (!std::isnan(d.rainMm))
            text += QLatin1Char('\n') + QObject::tr("Rain %1").arg(rain(d.rainMm));
        if (d.rainChance >= 0)
            text += QLatin1Char('\n') + QObject::tr("Chance of rain %1%").arg(d.rainChance);
        return text;
    }
    if (hourLineAt(point) < 0)
        return QString();
    const ForecastHour &h = m_hours.at(hourIndexAt(point.x()));
    const QDateTime local = m_forecast.local(h.time);
    QString text = QLocale().toString(local.date(), QStringLiteral("ddd")) + QLatin1Char(' ') +
                   local.toString(QStringLiteral("HH:mm")) + QStringLiteral("  ") + temperature(h.celsius);
    text += QLatin1Char('\n') + QObject::tr("Rain %1").arg(rain(h.rainMm));
    if (h.rainChance >= 0)
        text += QObject::tr(" (%1% chance)").arg(h.rainChance);
    text += QLatin1Char('\n') + QObject::tr("Wind %1").arg(wind(h.windKmh));
    return text;
}
