#include "weather/weather_widget.h"

#include "core/clickable_label.h"
#include "core/shipped_data.h"
#include "core/widget_index.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "themes/credit_link.h"
#include "weather/weather_settings.h"
#include "weather/weather_settings_dialog.h"
#include "weather/weather_station.h"

#include <QFontMetrics>
#include <QLabel>
#include <QTimer>

namespace {
constexpr int kRedrawInterval = 9999;
constexpr int kMargin = 6;

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

    m_redrawTimer = new QTimer(this);
    m_redrawTimer->setObjectName(QStringLiteral("tmrWEATHER"));
    m_redrawTimer->setInterval(kRedrawInterval);

    connect(m_redrawTimer, &QTimer::timeout, m_station, &WeatherStation::DataCurrent);
    connect(m_station, &WeatherStation::readoutChanged, this, &WeatherWidget::showReadout);
    connect(m_station, &WeatherStation::statusChanged, this, &WeatherWidget::showStatus);
    connect(m_refresh, &ClickableLabel::clicked, this, &WeatherWidget::refreshClicked);
    connect(m_settings, &ClickableLabel::clicked, this, &WeatherWidget::openSettingsDialog);

    if (m_station->hasReadout())
        showReadout();
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
    relayout();
}

void WeatherWidget::showStatus()
{
    const QString status = m_station->statusText();
    for (QWidget *w : {static_cast<QWidget *>(panel()), static_cast<QWidget *>(m_location)})
        w->setToolTip(status);
    // The sources ask for their credit beside their data, as a link.
    const QString source = m_station->dataSource();
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
    const int creditHeight = m_credit->text().isEmpty() ? 0 : qMax(10, area.height() / 9) + 2;
    if (creditHeight) {
        m_credit->setFont(withPixelSize(base, creditHeight - 2));
        m_credit->setGeometry(area.left(), area.bottom() - creditHeight + 1, area.width(), creditHeight);
    }
    const QRect body = area.adjusted(0, 0, 0, -creditHeight);

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
    QFont numberFont = withPixelSize(base, numberHeight * 4 / 5);
    numberFont.setBold(true);
    const QFontMetrics nfm(numberFont);
    // A long temperature ("-" or "57F ") shrinks rather than being cut.
    if (nfm.horizontalAdvance(m_number->text()) > texts.width() && !m_number->text().isEmpty())
        numberFont.setPixelSize(qMax(6, numberFont.pixelSize() * texts.width() / nfm.horizontalAdvance(m_number->text())));
    m_number->setFont(numberFont);
    m_number->setGeometry(texts.left(), texts.top(), texts.width(), numberHeight);
    const QFont lineFont = withPixelSize(base, lineHeight * 3 / 4);
    int y = texts.top() + numberHeight;
    for (QLabel *label : {m_description, m_numberText}) {
        label->setFont(lineFont);
        label->setGeometry(texts.left(), y, texts.width(), lineHeight);
        y += lineHeight;
    }
}

void WeatherWidget::layoutBar()
{
    const int h = barHeight();
    QFont barFont = m_location->font();
    barFont.setPixelSize(qMax(9, h / 2));
    for (QLabel *label : {static_cast<QLabel *>(m_location), static_cast<QLabel *>(m_refresh),
                          static_cast<QLabel *>(m_settings)}) {
        if (label->font() != barFont)
            label->setFont(barFont);
    }
    const QFontMetrics fm(barFont);
    int right = width() - 34; // the close button
    for (ClickableLabel *b : {m_settings, m_refresh}) {
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
    const int buttons = fm.horizontalAdvance(m_refresh->text()) + fm.horizontalAdvance(m_settings->text()) + 8;
    return QSize(qMax(200, 8 + fm.horizontalAdvance(QStringLiteral("London,")) + buttons + 34), barHeight() + 70);
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
