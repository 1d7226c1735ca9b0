#include "weather/weather_settings_dialog.h"

#include "themes/painted_frame.h"
#include "themes/credit_link.h"
#include "weather/weather_settings.h"
#include "weather/weather_station.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {
QPointer<WeatherSettingsDialog> g_open;

template <typename T>
T *named(T *widget, const char *name)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

QComboBox *placeBox(const char *name)
{
    auto *box = named(new QComboBox, name);
    box->setEditable(true); // a place may be typed as well as picked
    box->setInsertPolicy(QComboBox::NoInsert);
    box->setMaxVisibleItems(20);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(24);
    return box;
}

void setItems(QComboBox *box, const QStringList &items)
{
    // Replacing the items must not replace what the user typed or picked.
    const QString text = box->currentText();
    box->clear();
    box->addItems(items);
    box->setCurrentText(text);
}
} // namespace

WeatherSettingsDialog::WeatherSettingsDialog(QWidget *parent)
    : ThemedDialog(WeatherSettings::windowName(), tr("Vantora Weather Settings"), parent)
{
    m_world = named(new QRadioButton(tr("&World Location outside of the USA")), "optLOCATIONS_0");
    m_usa = named(new QRadioButton(tr("USA only based locat&ions")), "optLOCATIONS_1");
    m_country = placeBox("cboCOUNTRY");
    m_place = placeBox("cboCOUNTRYAREA");
    auto *countryLabel = new QLabel(tr("Select a &country or state:"));
    countryLabel->setBuddy(m_country);
    auto *placeLabel = new QLabel(tr("Select a city or &town:"));
    placeLabel->setBuddy(m_place);
    auto *search = named(new QPushButton(tr("&Load Country")), "btnSEARCH");
    search->setToolTip(tr("List the places of the country or state"));
    m_find = named(new QLineEdit, "txtFIND");
    m_find->setPlaceholderText(tr("Find a place in the list"));
    m_find->setClearButtonEnabled(true);
    // Hidden and in no layout, so it needs a parent of its own to be freed with the dialog.
    m_code = named(new QLineEdit(QString::fromLatin1(LocationCatalogue::DefaultCode), this), "txtADDR");
    m_code->hide();
    m_codeLabel = named(new QLabel, "lblCODE");
    m_fahrenheit = named(new QRadioButton(tr("Use the &Fahrenheit scale")), "optTEMP_0");
    m_celsius = named(new QRadioButton(tr("Use the Celsi&us scale")), "optTEMP_1");
    auto *units = new QButtonGroup(this);
    units->addButton(m_fahrenheit);
    units->addButton(m_celsius);
    m_status = named(new QLabel, "lblSTATUS");
    m_status->setWordWrap(true);
    // Room for a failure and the last success, so the dialog does not squeeze its lists when
    // a longer status arrives.
    m_status->setMinimumHeight(m_status->fontMetrics().lineSpacing() * 4);
    m_status->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    auto *credit = named(new QLabel, "lblCREDIT");
    credit->setOpenExternalLinks(true);
    credit->setWordWrap(true);

    auto *locate = named(new QPushButton(tr("&Apply")), "btnLOCATE");
    locate->setToolTip(tr("Use this place and unit, and fetch its weather"));
    setDefaultButton(locate);
    auto *close = named(new QPushButton(tr("Close")), "btnCLOSE");
    auto *load = named(new QPushButton(tr("l&oad")), "btnLOAD");
    load->setToolTip(tr("Maintenance: read the country list from the raw place list in notes"));
    auto *save = named(new QPushButton(tr("Sa&ve")), "btnSAVE");
    save->setToolTip(tr("Maintenance: write the country list to notes"));

    auto *grid = new QGridLayout;
    grid->addWidget(countryLabel, 0, 0);
    grid->addWidget(m_country, 0, 1);
    grid->addWidget(search, 0, 2);
    grid->addWidget(placeLabel, 1, 0);
    grid->addWidget(m_place, 1, 1, 1, 2);
    grid->addWidget(m_find, 2, 1, 1, 2);
    grid->addWidget(m_codeLabel, 3, 1, 1, 2);
    grid->setColumnStretch(1, 1);
    auto *unitRow = new QHBoxLayout;
    unitRow->addWidget(m_fahrenheit);
    unitRow->addWidget(m_celsius);
    unitRow->addStretch(1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(load);
    buttons->addWidget(save);
    buttons->addStretch(1);
    buttons->addWidget(locate);
    buttons->addWidget(close);

    auto *layout = new QVBoxLayout;
    layout->addWidget(m_world);
    layout->addWidget(m_usa);
    layout->addLayout(grid);
    layout->addLayout(unitRow);
    layout->addWidget(m_status);
    layout->addWidget(credit);
    layout->addSpacing(4);
    layout->addLayout(buttons);
    setPanelLayout(layout);

    // Load: the stored choices, the lists they pick from, and the code they resolve to.
    const WeatherSettings stored = WeatherSettings::load();
    (stored.catalogue == LocationCatalogue::UnitedStates ? m_usa : m_world)->setChecked(true);
    (stored.fahrenheit ? m_fahrenheit : m_celsius)->setChecked(true);
    FillCountryList();
    m_country->setCurrentText(stored.countryName);
    FillPlaceList();
    m_place->setCurrentText(stored.countryArea);
    m_code->setText(WeatherStation::shared()->locationCode());
    ResolveLocationCode();

    connect(m_world, &QRadioButton::clicked, this, &WeatherSettingsDialog::FillCountryList);
    connect(m_usa, &QRadioButton::clicked, this, &WeatherSettingsDialog::FillCountryList);
    connect(search, &QPushButton::clicked, this, &WeatherSettingsDialog::FillPlaceList);
    connect(m_find, &QLineEdit::textChanged, this, &WeatherSettingsDialog::filterPlaces);
    connect(locate, &QPushButton::clicked, this, &WeatherSettingsDialog::apply);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    connect(load, &QPushButton::clicked, this, &WeatherSettingsDialog::importCountries);
    connect(save, &QPushButton::clicked, this, &WeatherSettingsDialog::exportCountries);
    connect(WeatherStation::shared(), &WeatherStation::statusChanged, this, &WeatherSettingsDialog::showStatus);
    showStatus();
}

void WeatherSettingsDialog::ThemeElementsUpdate()
{
    ThemedDialog::ThemeElementsUpdate();
    showCredit();
}

void WeatherSettingsDialog::showCredit()
{
    // The weather's credit names the source that gave the data shown; a feed host of the
    // user's own gets none, as its data comes from wherever that host takes it.
    auto *credit = findChild<QLabel *>(QStringLiteral("lblCREDIT"));
    const QString source = WeatherStation::shared()->creditedSource();
    QString weather;
    if (source == QLatin1String("Open-Meteo"))
        weather = CreditLink(credit, QStringLiteral("https://open-meteo.com/"), tr("Weather data by Open-Meteo.com"));
    else if (source == QLatin1String("met.no"))
        weather = CreditLink(credit, QStringLiteral("https://www.met.no/en"), tr("Weather data by MET Norway"));
    const QString places = tr("Places \u00a9 GeoNames (CC BY 4.0).");
    const QString text = weather.isEmpty() ? places : tr("%1 (CC BY 4.0). %2").arg(weather, places);
    if (credit->text() != text)
        credit->setText(text);
}

WeatherSettingsDialog *WeatherSettingsDialog::showSingle(QWidget *parent)
{
    if (!g_open) {
        g_open = new WeatherSettingsDialog(parent);
        g_open->setAttribute(Qt::WA_DeleteOnClose);
    }
    g_open->show();
    g_open->raise();
    g_open->activateWindow();
    return g_open;
}

LocationCatalogue::Kind WeatherSettingsDialog::chosenCatalogue() const
{
    return m_usa->isChecked() ? LocationCatalogue::UnitedStates : LocationCatalogue::World;
}

void WeatherSettingsDialog::FillCountryList()
{
    // The place list stays as it is until "Load Country" is pressed.
    m_country->clear();
    m_country->addItems(LocationCatalogue::FillCountryList(chosenCatalogue()));
}

void WeatherSettingsDialog::FillPlaceList()
{
    m_allPlaces = LocationCatalogue::FillPlaceList(chosenCatalogue(), m_country->currentText());
    m_find->clear();
    setItems(m_place, m_allPlaces);
    // A place of the previous country would resolve to nothing in the new list, and Apply
    // would keep the old code without a word: the new country starts with no place.
    m_place->setCurrentIndex(-1);
    m_place->clearEditText();
}

void WeatherSettingsDialog::filterPlaces(const QString &text)
{
    const QString wanted = text.trimmed();
    QStringList shown;
    for (const QString &place : m_allPlaces)
        if (wanted.isEmpty() || place.contains(wanted, Qt::CaseInsensitive))
            shown << place;
    setItems(m_place, shown);
    if (!wanted.isEmpty() && !shown.isEmpty())
        m_place->setCurrentIndex(0);
}

void WeatherSettingsDialog::ResolveLocationCode()
{
    m_code->setText(LocationCatalogue::ResolveLocationCode(chosenCatalogue(), m_country->currentText(),
                                                           m_place->currentText(), m_code->text()));
    m_codeLabel->setText(tr("Location code: %1").arg(m_code->text()));
}

void WeatherSettingsDialog::apply()
{
    if (m_place->currentText().trimmed().isEmpty()) {
        m_status->setText(tr("Choose a city or town first."));
        m_place->setFocus();
        return;
    }
    ResolveLocationCode();
    WeatherSettings s = WeatherSettings::load();
    s.fahrenheit = !m_celsius->isChecked();
    s.catalogue = chosenCatalogue();
    s.countryName = m_country->currentText();
    s.countryArea = m_place->currentText();
    s.save();
    WeatherStation *station = WeatherStation::shared();
    station->setLocationCode(m_code->text());
    station->GetWeatherData();
}

void WeatherSettingsDialog::showStatus()
{
    m_status->setText(WeatherStation::shared()->statusText());
    showCredit();
}

void WeatherSettingsDialog::importCountries()
{
    QStringList items;
    for (int i = 0; i < m_country->count(); ++i)
        items << m_country->itemText(i);
    setItems(m_country, LocationCatalogue::ImportCountryNames(chosenCatalogue(), items));
}

void WeatherSettingsDialog::exportCountries()
{
    QStringList items;
    for (int i = 0; i < m_country->count(); ++i)
        items << m_country->itemText(i);
    LocationCatalogue::ExportCountryNames(chosenCatalogue(), items);
}
