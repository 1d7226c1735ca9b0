#pragma once

#include "themes/widget_window.h"

class ClickableLabel;
class ForecastView;
class QLabel;
class QTimer;
class WeatherStation;

// fwth_IDX: the current weather of one place — the weather picture drawn in the weather font,
// the temperature in the chosen unit, the description and the full temperature text, with
// the place in the bar. The station fetches when the widget loads; tmrWEATHER redraws from
// the last reply every 9,999 ms. The tooltip says when the weather was fetched, or why not;
// a line under the reading says what is wrong while a fetch fails, with the reading's age.
// "Forecast" opens the hours and days ahead below the reading, and grows the window for it.
class WeatherWidget : public WidgetWindow
{
    Q_OBJECT
public:
    explicit WeatherWidget(QWidget *parent = nullptr);

    QSize defaultSize() const override { return QSize(340, m_forecastOpen ? 160 + ForecastHeight : 160); }
    QSize minimumUsableSize() const override;
    QString contextMenuVariant() const override { return QStringLiteral("weather"); }
    bool hasSettingsDialog() const override { return true; }
    void openSettingsDialog() override;

    // lblREFRESH: redraws from the last reply, then says "Updated".
    void refreshClicked();
    // lblFORECAST: shows or hides the forecast panel (the choice is kept).
    void setForecastOpen(bool open);
    bool isForecastOpen() const { return m_forecastOpen; }
    ForecastView *forecastView() const { return m_forecast; }
    // The room the forecast panel adds to the window when it opens.
    static constexpr int ForecastHeight = 230;

public slots:
    void ThemeElementsUpdate() override;

protected:
    void relayout() override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void showReadout();
    void showStatus();
    void showForecast();
    void applyForecastStyle();
    void layoutBar();
    void layoutReading(const QRect &body);
    void onTick();

    WeatherStation *m_station;
    QLabel *m_location = nullptr;      // lblLOCATION
    QLabel *m_country = nullptr;       // lblCOUNTRY (its text is part of lblLOCATION's)
    QLabel *m_picture = nullptr;       // lblWEATHER
    QLabel *m_number = nullptr;        // lblNUMBER
    QLabel *m_description = nullptr;   // lblDESC
    QLabel *m_numberText = nullptr;    // lblNUMBERDESC
    QLabel *m_credit = nullptr;        // the data source's credit and link
    QLabel *m_state = nullptr;         // lblSTATE: what is wrong, and the reading's age
    ForecastView *m_forecast = nullptr;
    ClickableLabel *m_refresh = nullptr;  // lblREFRESH
    ClickableLabel *m_settings = nullptr; // lblSETTINGS
    ClickableLabel *m_forecastButton = nullptr; // lblFORECAST
    QTimer *m_redrawTimer = nullptr;      // tmrWEATHER
    QString m_fullLocation;
    QString m_pictureFamily;
    bool m_forecastOpen = false;
};
