#pragma once

#include <QColor>
#include <QPixmap>
#include <QWidget>

class QTimer;

// uctl_BTN, the small picture button of widget bars (close, refresh): a normal, a highlight and
// a pressed picture, a hand cursor, and back to normal within 100 ms of the mouse leaving.
//
// The picture shown (imgMAIN) fills the whole control, with no one-pixel strip left over: the
// drawn close glyph is rendered at the control's size, so a shorter picture would only let the
// host show through along one edge.
class ThemedButton : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabledState)
    Q_PROPERTY(QColor BACKCOLOR READ backColor WRITE setBackColor)
public:
    // Which of the three pictures the button shows (imgMAIN).
    enum class Picture
    {
        Normal,
        Highlight,
        Pressed
    };
    Q_ENUM(Picture)

    explicit ThemedButton(QWidget *parent = nullptr);

    // The three pictures; the normal one is shown until the mouse comes over the button.
    void setPictures(const QPixmap &normal, const QPixmap &highlight, const QPixmap &pressed);
    // A close "x" drawn in the given colour for all three states.
    void setCloseGlyph(const QColor &color);

    bool Enabled() const { return isEnabled(); }
    void setEnabledState(bool enabled) { setEnabled(enabled); }

    // The colour behind the pictures; invalid (the default) leaves the host showing through.
    QColor backColor() const { return m_backColor; }
    void setBackColor(const QColor &color);

    // Puts the normal picture back (after a click that closes or refreshes).
    void CloseRefresh();

    Picture shownPicture() const { return m_shownKind; }
    // Whether tmrCOLORCHK is watching for the mouse to leave.
    bool isWatchingMouse() const;
    // The tmrCOLORCHK tick: the normal picture again once the mouse is no longer over the button.
    void colorCheckTick();

    QSize sizeHint() const override;

    // A click as the mouse makes it (a screen reader's "press"); nothing while disabled.
    Q_INVOKABLE void click();

signals:
    void clicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showPicture(const QPixmap *picture);
    void checkMouseLeft();
    void hover();
    void renderCloseGlyph();
    const QPixmap *pictureFor(Picture kind) const;

    QPixmap m_normal;                   // imgNML
    QPixmap m_highlight;                // imgHL
    QPixmap m_pressed;                  // imgPRESS
    const QPixmap *m_shown = &m_normal; // imgMAIN shows one of the three
    Picture m_shownKind = Picture::Normal;
    QTimer *m_colorCheck = nullptr; // tmrCOLORCHK
    QColor m_backColor;
    QColor m_glyphColor; // valid while the pictures are the drawn close glyph
    bool m_keyDown = false;
};
