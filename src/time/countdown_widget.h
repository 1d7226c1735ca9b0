#pragma once

#include "themes/widget_window.h"

#include "time/countdown_model.h"

class ClickableLabel;
class HoverCheck;
class QLabel;
class QLineEdit;
class QTimer;

// ftim_IDX: counts the set time down once a second (tmrSTARTPLAY), then rings and shows the
// end message. The running time is shown large; the set time is edited in the row below it
// and stored as it is typed. tmrSTARTPLAY keeps running while the window is hidden, so that
// a hidden timer still rings; only the hover check stops.
class CountdownWidget : public WidgetWindow
{
    Q_OBJECT
public:
    explicit CountdownWidget(QWidget *parent = nullptr);

    CountdownModel *model() const { return m_model; }

    QSize defaultSize() const override { return QSize(240, 150); }
    QSize minimumUsableSize() const override;

public slots:
    void ThemeElementsUpdate() override;

protected:
    void relayout() override;
    void hideEvent(QHideEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showFields();
    void showButtons();
    void setCounting(bool counting);
    void setFieldEdited(CountdownModel::Field field);
    void setFieldFinished(CountdownModel::Field field);
    int itemWidth(QWidget *item, const QFont &font) const;
    int rowWidth(const QList<QWidget *> &row, const QFont &font) const;
    // The largest font, up to `largest` pixels, at which the row fits the area's width and height.
    QFont fitRow(const QList<QWidget *> &row, const QFont &base, const QRect &area, int height,
                 int largest) const;
    void layoutRow(const QList<QWidget *> &row, const QFont &font, const QRect &area, int top, int height);

    CountdownModel *m_model = nullptr;
    QLineEdit *m_running[3] = {};       // txtHRS, txtMIN, txtSECS
    QLineEdit *m_set[3] = {};           // txtSUBHRS, txtSUBMIN, txtSUBSECS
    QLabel *m_separators[4] = {};       // the colons of both rows
    QLabel *m_setCaption = nullptr;     // lblSETTIME
    ClickableLabel *m_start = nullptr;  // lblBTNSTART
    ClickableLabel *m_stop = nullptr;   // lblBTNSTOP
    QTimer *m_countTimer = nullptr;     // tmrSTARTPLAY
    HoverCheck *m_panelHover = nullptr; // tmrPANEL
};
