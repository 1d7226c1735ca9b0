#pragma once

#include <QPixmap>
#include <QWidget>

class QTimer;

// The small picture button of widget bars (close, refresh): a normal, a highlight and a pressed
// picture, a hand cursor, and back to normal within 100 ms of the mouse leaving.
class ThemedButton : public QWidget
{
    Q_OBJECT
public:
    explicit ThemedButton(QWidget *parent = nullptr);

    // The three pictures; the normal one is shown until the mouse comes over the button.
    void setPictures(const QPixmap &normal, const QPixmap &highlight, const QPixmap &pressed);
    // A close "x" drawn in the given colour for all three states.
    void setCloseGlyph(const QColor &color);

    bool Enabled() const { return isEnabled(); }
    void setEnabledState(bool enabled) { setEnabled(enabled); }

    // Puts the normal picture back (after a click that closes or refreshes).
    void CloseRefresh();

    QSize sizeHint() const override;

signals:
    void clicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void showPicture(const QPixmap *picture);
    void checkMouseLeft();

    QPixmap m_normal;
    QPixmap m_highlight;
    QPixmap m_pressed;
    const QPixmap *m_shown = &m_normal;
    QTimer *m_colorCheck = nullptr; // tmrCOLORCHK
};
