#pragma once

#include "themes/widget_window.h"

class ClickableLabel;
class QLabel;
class QTimer;
class WeatherStation;

// fwth_IDX: the current weather of one place — the weather picture drawn in the weather font,
// the temperature in the chosen unit, the description and the full temperature text, with
// the place in the bar. The station fetches when the widget loads; tmrWEATHER redraws from
// the last reply every 9,999 ms. The tooltip says when the weather was fetched, or why not.
class WeatherWidget : public WidgetWindow
{
    Q_OBJECT
public:
    explicit WeatherWidget(QWidget *parent = nullptr);

    QSize defaultSize() const override { return QSize(340, 160); }
    QSize minimumUsableSize() const override;
    QString contextMenuVariant() const override { return QStringLiteral("weather"); }
    bool hasSettingsDialog() const override { return true; }
    void openSettingsDialog() override;

    // lblREFRESH: redraws from the last reply, then says "Updated".
    void refreshClicked();

public slots:
    void ThemeElementsUpdate() override;

protected:
    void relayout() override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void showReadout();
    void showStatus();
    void layoutBar();

    WeatherStation *m_station;
    QLabel *m_location = nullptr;      // lblLOCATION
    QLabel *m_country = nullptr;       // lblCOUNTRY (its text is part of lblLOCATION's)
    QLabel *m_picture = nullptr;       // lblWEATHER
    QLabel *m_number = nullptr;        // lblNUMBER
    QLabel *m_description = nullptr;   // lblDESC
    QLabel *m_numberText = nullptr;    // lblNUMBERDESC
    QLabel *m_credit = nullptr;        // the data source's credit and link
    ClickableLabel *m_refresh = nullptr;  // lblREFRESH
    ClickableLabel *m_settings = nullptr; // lblSETTINGS
    QTimer *m_redrawTimer = nullptr;      // tmrWEATHER
    QString m_fullLocation;
    QString m_pictureFamily;
};
