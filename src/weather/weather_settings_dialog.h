#pragma once

#include "themes/themed_dialog.h"
#include "weather/location_catalogue.h"

#include <QStringList>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

// fwth_SET: where the weather is for and in which unit. The place is picked from the shipped
// catalogue: world or United States, then a country or state ("Load Country" fills its
// places), then a place, which "Apply" resolves to the location code, stores, and fetches.
// A find box narrows the place list as the user types. "load" and "Save" are the maintenance
// import and export of the country lists.
class WeatherSettingsDialog : public ThemedDialog
{
    Q_OBJECT
public:
    explicit WeatherSettingsDialog(QWidget *parent = nullptr);

    // Shows the open dialog, or a new one that deletes itself when closed.
    static WeatherSettingsDialog *showSingle(QWidget *parent = nullptr);

    // The catalogue routines over this dialog's lists.
    void FillCountryList();
    void FillPlaceList();
    void ResolveLocationCode();

public slots:
    // btnLOCATE: resolve, store, fetch.
    void apply();
    void ThemeElementsUpdate() override;

private:
    LocationCatalogue::Kind chosenCatalogue() const;
    void filterPlaces(const QString &text);
    void showStatus();
    void showCredit();
    void importCountries();
    void exportCountries();

    QRadioButton *m_world;      // optLOCATIONS_0
    QRadioButton *m_usa;        // optLOCATIONS_1
    QComboBox *m_country;       // cboCOUNTRY
    QComboBox *m_place;         // cboCOUNTRYAREA
    QLineEdit *m_find;          // txtFIND
    QLineEdit *m_code;          // txtADDR (hidden)
    QLabel *m_codeLabel;
    QRadioButton *m_fahrenheit; // optTEMP_0
    QRadioButton *m_celsius;    // optTEMP_1
    QLabel *m_status;
    QStringList m_allPlaces;    // the list as FillPlaceList left it, before any find
};
