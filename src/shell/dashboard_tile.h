#pragma once

#include <QAbstractButton>

class QPainter;

// One widget's tile on the dashboard: its picture, its name and whether it is open. A click
// selects the tile; a double click, Enter or Space opens or closes the widget; the arrow keys
// move the selection. Screen readers see a toggle button, checked while the widget is open,
// whose press opens or closes it.
class DashboardTile : public QAbstractButton
{
    Q_OBJECT
public:
    DashboardTile(int widgetIndex, QWidget *parent = nullptr);

    int widgetIndex() const { return m_index; }

    void setSelected(bool selected);
    bool isSelected() const { return m_selected; }
    void setOpenState(bool open);
    bool isOpenState() const { return m_open; }
    // A widget this build does not have: shown dimmed, cannot be opened.
    void setAvailable(bool available);

    // A line under the name (the calendar's note for today); empty for none.
    void setDetail(const QString &detail);
    QString detail() const { return m_detail; }

    // Text and accent colours from the theme.
    void setColors(const QColor &text, const QColor &accent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void selectRequested(int index);
    void toggleRequested(int index);
    // Arrow keys: move the selection by columns (dx) and rows (dy).
    void moveRequested(int index, int dx, int dy);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    // The open state is the window's to set, not a click's to flip.
    void nextCheckState() override {}
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    void updateDescription();
    // The weather tile's brief forecast in place of its picture; false when there is none.
    bool paintWeatherBrief(QPainter &p, const QRectF &area, const QColor &ink) const;

    int m_index;
    bool m_selected = false;
    bool m_open = false;
    bool m_available = true;
    bool m_hovered = false;
    bool m_mouseRelease = false;
    QString m_detail;
    QColor m_text = Qt::black;
    QColor m_accent = QColor(20, 106, 211);
};
