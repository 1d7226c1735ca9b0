#pragma once

#include <QHash>
#include <QLabel>
#include <QStaticText>

// A label for texts that come round again and again all day: the clock's seconds ("00" to
// "59") and its hours and minutes. A QLabel lays out and shapes its text on every paint; this
// one lays out each text once and draws it from then on as it was laid out, pixel for pixel
// what a QLabel draws. Only plain text placed at the top left is drawn so; any other label is
// a QLabel's.
class TickingLabel : public QLabel
{
    Q_OBJECT
public:
    explicit TickingLabel(QWidget *parent = nullptr);

    // Lays out `texts` now, in the current font, rather than each on its first paint: a text
    // laid out when the label repaints once a second runs in caches gone cold since the last
    // second, at several times the cost of laying the texts out together.
    void prepareTexts(const QStringList &texts);

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    bool drawsPlainTopLeft() const;
    const QStaticText &laidOut(const QString &text);

    // Texts laid out in the current font, dropped when the font changes or it grows past a
    // day's worth of texts (a user's own time format can make more).
    QHash<QString, QStaticText> m_laidOut;
};
