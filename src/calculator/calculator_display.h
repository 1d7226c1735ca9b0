#pragma once

#include <QWidget>

class QLabel;

// The calculator's screen: a recessed well that holds the number (lblDISPLAYNO, right-aligned,
// as large as fits), the sign of the pending operation (lblDISPLAYFUNC, top right) and the
// memory value (lblDISPLAYMEM, top left, marked with a small "M" while it shows a value).
class CalculatorDisplay : public QWidget
{
    Q_OBJECT
public:
    explicit CalculatorDisplay(QWidget *parent = nullptr);

    QLabel *numberLabel() const { return m_number; }
    QLabel *signLabel() const { return m_sign; }
    QLabel *memoryLabel() const { return m_memory; }

    void setTexts(const QString &number, const QString &sign, const QString &memory);
    // Sizes the fonts and places the labels for the current size and fonts.
    void relayout();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void fitNumberFont();
    void fitMemoryFont();
    QRect numberArea() const;
    int smallPixelSize() const;

    QLabel *m_number;
    QLabel *m_sign;
    QLabel *m_memory;
};
