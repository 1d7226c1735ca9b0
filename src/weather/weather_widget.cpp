#include "weather/weather_widget.h"

#include "core/clickable_label.h"
#include "core/clock_source.h"
#include "core/settings_store.h"
#include "core/shipped_data.h"
#include "core/widget_index.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "themes/credit_link.h"
#include "themes/theme_painter.h"
#include "weather/forecast_view.h"
#include "weather/weather_settings.h"
#include "weather/weather_settings_dialog.h"
#include "weather/weather_station.h"

#include <QFontMetrics>
#include <QLabel>
#include <QTimer>

namespace {
constexpr int kRedrawInterval = 9999;
constexpr int kMargin = 6;
constexpr int kForecastMinimum = 120; // the forecast panel's least height
const QString kForecastOpenValue = QStringLiteral("Weather Forecast Open");

QLabel *panelLabel(const QString &name, const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setObjectName(name);
    label->setAttribute(Qt::WA_TransparentForMouseEvents); // the panel drags the window
    return label;
}

void setTextIfChanged(QLabel *label, const QString &text)
{
    if (label->text() != text)
        label->setText(text);
}

QFont withPixelSize(QFont font, int pixels)
{
    font.setPixelSize(qMax(6, pixels));
    return font;
}

// The label's font at `pixels`, or smaller until its text fits its width: a label never cuts
// its last word off.
void fitFont(QLabel *label, QFont font, int pixels)
{
    font.setPixelSize(qMax(6, pixels));
    const int room = label->width() - 2;
    const int needed = QFontMetrics(font).horizontalAdvance(label->text());
    if (needed > room && needed > 0)
        font.setPixelSize(qMax(6, font.pixelSize() * room / needed));
    while (font.pixelSize() > 6 && QFontMetrics(font).horizontalAdvance(label->text()) > room)
        font.setPixelSize(font.pixelSize() - 1);
    if (label->font() != font)
        label->setFont(font);
}
} // namespace

WeatherWidget::WeatherWidget(QWidget *parent)
    : WidgetWindow(WidgetWindowName(WidgetWeather), WidgetWeather, tr("Vantora Weather"), parent),
      m_station(WeatherStation::shared())
{
    const WeatherSettings stored = WeatherSettings::load();
    m_fullLocation = stored.countryArea + QStringLiteral(", ") + stored.countryName;
    m_location = new QLabel(m_fullLocation, bar());
    m_location->setObjectName(QStringLiteral("lblLOCATION"));
    m_location->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_location->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_country = new QLabel(stored.countryName, this);
    m_country->setObjectName(QStringLiteral("lblCOUNTRY"));
    m_country->hide(); // shown as part of lblLOCATION
    m_refresh = new ClickableLabel(QStringLiteral("lblREFRESH"), tr(" Refresh "), bar());
    m_refresh->setToolTip(tr("Show the last weather report again"));
    m_settings = new ClickableLabel(QStringLiteral("lblSETTINGS"), tr(" Settings "), bar());
    m_settings->setToolTip(tr("Choose the place and the unit"));
    m_forecastButton = new ClickableLabel(QStringLiteral("lblFORECAST"), tr(" Forecast "), bar());
    m_forecastButton->setToolTip(tr("Show or hide the hours and days ahead"));

    m_picture = panelLabel(QStringLiteral("lblWEATHER"), QString(), panel());
    m_picture->setAlignment(Qt::AlignCenter);
    m_pictureFamily = ShippedData::weatherFontFamily();
    m_number = panelLabel(QStringLiteral("lblNUMBER"), QString(), panel());
    m_number->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
    m_description = panelLabel(QStringLiteral("lblDESC"), tr("Please wait..."), panel());
    m_numberText = panelLabel(QStringLiteral("lblNUMBERDESC"), tr("Accessing Weather"), panel());
    for (QLabel *label : {m_description, m_numberText})
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_credit = new QLabel(panel());
    m_credit->setObjectName(QStringLiteral("lblCREDIT"));
    m_credit->setAlignment(Qt::AlignRight | Qt::AlignBottom);
    m_credit->setOpenExternalLinks(true);
    m_credit->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    m_state = panelLabel(QStringLiteral("lblSTATE"), QString(), panel());
    m_state->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_state->hide();
    m_forecast = new ForecastView(panel());
    m_forecastOpen = ReadDetail(WeatherSettings::windowName(), kForecastOpenValue, QStringLiteral("0")) ==
                     QLatin1String("1");
    m_forecast->setVisible(m_forecastOpen);

    m_redrawTimer = new QTimer(this);
    m_redrawTimer->setObjectName(QStringLiteral("tmrWEATHER"));
    m_redrawTimer->setInterval(kRedrawInterval);

    connect(m_redrawTimer, &QTimer::timeout, this, &WeatherWidget::onTick);
    connect(m_station, &WeatherStation::forecastChanged, this, &WeatherWidget::showForecast);
    connect(m_forecastButton, &ClickableLabel::clicked, this, [this] { setForecastOpen(!m_forecastOpen); });
    connect(m_station, &WeatherStation::readoutChanged, this, &WeatherWidget::showReadout);
    connect(m_station, &WeatherStation::statusChanged, this, &WeatherWidget::showStatus);
    connect(m_refresh, &ClickableLabel::clicked, this, &WeatherWidget::refreshClicked);
    connect(m_settings, &ClickableLabel::clicked, this, &WeatherWidget::openSettingsDialog);

    if (m_station->hasReadout())
        showReadout();
    showForecast();
    showStatus();
    // Loading the widget fetches the weather, as loading the dashboard does.
    m_station->GetWeatherData();
}

void WeatherWidget::openSettingsDialog()
{
    WeatherSettingsDialog::showSingle();
}

void WeatherWidget::refreshClicked()
{
    m_station->DataCurrent();
    ShowNotice(tr("Vantora Weather"), tr("Updated"), false, this);
}

void WeatherWidget::showReadout()
{
    const WeatherReadout &r = m_station->readout();
    setTextIfChanged(m_picture, m_station->pictureGlyph());
    if (!m_station->hasReadout()) {
        relayout();
        return; // only the picture so far
    }
    m_fullLocation = r.location;
    setTextIfChanged(m_country, r.country);
    setTextIfChanged(m_number, r.number);
    setTextIfChanged(m_description, r.description);
    setTextIfChanged(m_numberText, r.temperatureText);
    applyForecastStyle(); // the unit may have changed with the place
    relayout();
}

void WeatherWidget::onTick()
{
    m_station->DataCurrent();
    if (m_forecastOpen)
        m_forecast->setNow(ClockSource::now());
}

void WeatherWidget::setForecastOpen(bool open)
{
    if (open == m_forecastOpen)
        return;
    m_forecastOpen = open;
    WriteDetail(WeatherSettings::windowName(), kForecastOpenValue, open ? QStringLiteral("1") : QStringLiteral("0"));
    m_forecast->setVisible(open);
    // The window grows downwards for the panel and gives the room back when it closes.
    const int wanted = height() + (open ? ForecastHeight : -ForecastHeight);
    setMinimumSize(minimumUsableSize());
    resize(width(), qMax(minimumHeight(), wanted));
    if (open)
        m_forecast->setNow(ClockSource::now());
    relayout();
}

void WeatherWidget::applyForecastStyle()
{
    const Theme &theme = CurrentTheme();
    ForecastStyle style;
    style.ink = ResolveColor(theme.PanelColor);
    style.font = m_description->font();
    style.font.setFamily(theme.PanelFont);
    style.glyphFamily = m_pictureFamily;
    style.fahrenheit = WeatherSettings::load().fahrenheit;
    m_forecast->setStyle(style);
}

void WeatherWidget::showForecast()
{
    m_forecast->setForecast(m_station->forecast());
    m_forecast->setNow(ClockSource::now());
}

void WeatherWidget::showStatus()
{
    // Only while fetches fail: what is wrong, and how old the reading still shown is.
    QString state = m_station->problemLine();
    if (!state.isEmpty() && m_station->hasReadout())
        state += QStringLiteral(" \u00b7 ") + m_station->ageText();
    if (m_state->text() != state || m_state->isHidden() != state.isEmpty()) {
        m_state->setText(state);
        m_state->setVisible(!state.isEmpty());
        relayout();
    }
    const QString status = m_station->statusText();
    for (QWidget *w : {static_cast<QWidget *>(panel()), static_cast<QWidget *>(m_location)})
        w->setToolTip(status);
    // The sources ask for their credit beside their data, as a link.
    const QString source = m_station->creditedSource();
    QString credit;
    if (source == QLatin1String("Open-Meteo"))
        credit = CreditLink(m_credit, QStringLiteral("https://open-meteo.com/"), tr("Weather data by Open-Meteo.com"));
    else if (source == QLatin1String("met.no"))
        credit = CreditLink(m_credit, QStringLiteral("https://www.met.no/en"), tr("Weather data by MET Norway"));
    if (m_credit->text() != credit) {
        m_credit->setText(credit);
        relayout();
    }
    m_credit->setToolTip(tr("Licensed under CC BY 4.0"));
}

void WeatherWidget::ThemeElementsUpdate()
{
    WidgetWindow::ThemeElementsUpdate();
    applyForecastStyle();
    showStatus(); // the credit's link takes the panel's text colour
    relayout();
}

void WeatherWidget::relayout()
{
    if (!m_numberText)
        return; // a resize before this window's own controls exist
    layoutBar();
    const QRect area = panel()->rect().adjusted(kMargin, kMargin / 2, -kMargin, -kMargin / 2);
    const QFont base = m_description->font();
    const int creditHeight = m_credit->text().isEmpty() ? 0 : qMax(10, qMin(area.height(), 160) / 9) + 2;
    if (creditHeight) {
        m_credit->setFont(withPixelSize(base, creditHeight - 2));
        m_credit->setGeometry(area.left(), area.bottom() - creditHeight + 1, area.width(), creditHeight);
    }
    QRect body = area.adjusted(0, 0, 0, -creditHeight);
    if (m_forecastOpen) {
        // The reading keeps the top, the forecast takes the rest.
        const int reading = qBound(60, body.height() * 2 / 5, 130);
        m_forecast->setGeometry(body.left() - kMargin / 2, body.top() + reading, body.width() + kMargin,
                                body.height() - reading);
        body.setHeight(reading);
    }
    if (!m_state->isHidden()) {
        const int stateHeight = qMax(12, qMin(body.height() / 6, 22));
        m_state->setGeometry(body.left(), body.bottom() - stateHeight + 1, body.width(), stateHeight);
        fitFont(m_state, base, stateHeight * 3 / 4);
        body.setBottom(body.bottom() - stateHeight);
    }
    layoutReading(body);
}

void WeatherWidget::layoutReading(const QRect &body)
{
    // The picture takes a square on the left, the texts the rest.
    const int side = qMin(body.height(), body.width() * 2 / 5);
    // The theme gives the panel's labels its font; the picture keeps the weather font.
    QFont pictureFont = m_picture->font();
    if (!m_pictureFamily.isEmpty())
        pictureFont.setFamily(m_pictureFamily);
    m_picture->setFont(withPixelSize(pictureFont, side * 7 / 10));
    m_picture->setGeometry(body.left(), body.top(), side, body.height());

    const QRect texts = body.adjusted(side + kMargin, 0, 0, 0);
    const int numberHeight = texts.height() * 11 / 20;
    const int lineHeight = (texts.height() - numberHeight) / 2;
    const QFont base = m_description->font();
    m_number->setGeometry(texts.left(), texts.top(), texts.width(), numberHeight);
    QFont numberFont = base;
    numberFont.setBold(true);
    // A long temperature ("-" or "57F ") shrinks rather than being cut; so do the lines.
    fitFont(m_number, numberFont, numberHeight * 4 / 5);
    int y = texts.top() + numberHeight;
    for (QLabel *label : {m_description, m_numberText}) {
        label->setGeometry(texts.left(), y, texts.width(), lineHeight);
        fitFont(label, base, lineHeight * 3 / 4);
        y += lineHeight;
    }
}

void WeatherWidget::layoutBar()
{
    const int h = barHeight();
    QFont barFont = m_location->font();
    barFont.setPixelSize(qMax(9, h / 2));
    for (QLabel *label : {static_cast<QLabel *>(m_location), static_cast<QLabel *>(m_refresh),
                          static_cast<QLabel *>(m_settings), static_cast<QLabel *>(m_forecastButton)}) {
        if (label->font() != barFont)
            label->setFont(barFont);
    }
    const QFontMetrics fm(barFont);
    int right = width() - 34; // the close button
    for (ClickableLabel *b : {m_settings, m_refresh, m_forecastButton}) {
        const int w = fm.horizontalAdvance(b->text()) + 4;
        right -= w;
        b->setGeometry(right, 0, w, h);
    }
    const int locationWidth = qMax(0, right - 12);
    m_location->setGeometry(8, 0, locationWidth, h);
    // The place is cut with an ellipsis where the bar is too short; the tooltip has the rest.
    setTextIfChanged(m_location, fm.elidedText(m_fullLocation, Qt::ElideRight, locationWidth));
}

QSize WeatherWidget::minimumUsableSize() const
{
    QFont barFont = m_location->font();
    barFont.setPixelSize(qMax(9, barHeight() / 2));
    const QFontMetrics fm(barFont);
    const int buttons = fm.horizontalAdvance(m_refresh->text()) + fm.horizontalAdvance(m_settings->text()) +
                        fm.horizontalAdvance(m_forecastButton->text()) + 12;
    const int forecast = m_forecastOpen ? kForecastMinimum : 0;
    return QSize(qMax(200, 8 + fm.horizontalAdvance(QStringLiteral("London,")) + buttons + 34),
                 barHeight() + 70 + forecast);
}

void WeatherWidget::showEvent(QShowEvent *event)
{
    m_redrawTimer->start();
    WidgetWindow::showEvent(event);
}

void WeatherWidget::hideEvent(QHideEvent *event)
{
    // Nothing to redraw while nobody can see it; the next show starts the timer again.
    m_redrawTimer->stop();
    WidgetWindow::hideEvent(event);
}
