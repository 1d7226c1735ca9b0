#pragma once

#include "themes/widget_window.h"

class ClickableLabel;
class ClockModel;
class HoverCheck;
class QLabel;
class QTimer;
class TickingLabel;

// falc_IDX: the time in the panel, the date in the bar, alarm and settings buttons in the bar.
// tmrCLOCK (55 ms) runs only while the window is visible and repaints only what changed; the
// time's font is the largest that fits the panel, worked out again when the size, the theme,
// the settings or the shape of the text ("9:59" to "10:00") change.
class ClockWidget : public WidgetWindow
{
    Q_OBJECT
public:
    explicit ClockWidget(QWidget *parent = nullptr);

    ClockModel *model() const { return m_model; }

    QSize defaultSize() const override { return QSize(370, 150); }
    QSize minimumUsableSize() const override;
    QString contextMenuVariant() const override { return QStringLiteral("clock"); }
    bool hasSettingsDialog() const override { return true; }
    void openSettingsDialog() override;
    void openAlarmDialog();

protected:
    void relayout() override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void enterEvent(QEnterEvent *event) override;

private:
    void showDisplay();
    // Tells screen readers, through the Alarm button's description, which alarms are set.
    void describeAlarms();
    QString layoutKey() const;
    void layoutBar();
    void layoutModern(const QRect &area);
    void prepareSeconds();
    void layoutClassic(const QRect &area);
    static void setTextIfChanged(QLabel *label, const QString &text);

    ClockModel *m_model = nullptr;
    QLabel *m_time = nullptr;             // lblPANECLOCK
    TickingLabel *m_secs = nullptr;       // lblSECS
    QLabel *m_style = nullptr;            // lblSTYLE
    QLabel *m_date = nullptr;             // lblBARDATE
    ClickableLabel *m_alarm = nullptr;    // lblALARM
    ClickableLabel *m_settings = nullptr; // lblSETTINGS
    QTimer *m_clockTimer = nullptr;       // tmrCLOCK
    HoverCheck *m_barHover = nullptr;     // tmrBAR
    QString m_laidOutFor;
    bool m_secondsQueued = false;
    QString m_fullDate;
};
