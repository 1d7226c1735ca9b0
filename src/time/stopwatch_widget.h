#pragma once

#include "themes/widget_window.h"

class ClickableLabel;
class HoverCheck;
class QLabel;
class QTimer;
class StopwatchModel;

// fstw_IDX: minutes, seconds and tenths counted by tmrSTOPWATCH (100 ms), with start/pause/
// resume and stop/reset in the bar. The tick is the count itself, so tmrSTOPWATCH keeps
// running while the window is hidden; only the hover check stops.
class StopwatchWidget : public WidgetWindow
{
    Q_OBJECT
public:
    explicit StopwatchWidget(QWidget *parent = nullptr);

    StopwatchModel *model() const { return m_model; }

    QSize defaultSize() const override { return QSize(220, 110); }
    QSize minimumUsableSize() const override;

protected:
    void relayout() override;
    void hideEvent(QHideEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void showText(const QString &text);
    void showButtons();
    void setRunning(bool running);

    StopwatchModel *m_model = nullptr;
    QLabel *m_display = nullptr;        // lblTIME
    ClickableLabel *m_start = nullptr;  // lblSTART
    ClickableLabel *m_stop = nullptr;   // lblSTOP
    QTimer *m_countTimer = nullptr;     // tmrSTOPWATCH
    HoverCheck *m_panelHover = nullptr; // tmrPANEL
    int m_laidOutLength = -1;
};
