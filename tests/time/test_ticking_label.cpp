#include "time/ticking_label.h"

#include <QApplication>
#include <QImage>
#include <QTest>

namespace {

// `label` drawn on an opaque background, so that text edges compare exactly.
QImage drawn(QLabel &label)
{
    QImage image(label.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(0x15, 0x65, 0xd0));
    label.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

void lookAlike(QLabel &plain, TickingLabel &ticking, const QFont &font, const QString &text, const QSize &size)
{
    for (QLabel *label : {&plain, static_cast<QLabel *>(&ticking)}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
        label->setFont(font);
        label->setFixedSize(size);
        QPalette pal = label->palette();
        pal.setColor(QPalette::WindowText, Qt::white);
        label->setPalette(pal);
        label->setText(text);
    }
}

} // namespace

// The clock's labels lay out each text once and draw it from then on: what they draw must be
// what a QLabel draws, so that nothing moves by a pixel when the seconds come round.
class TestTickingLabel : public QObject
{
    Q_OBJECT
private slots:
    void drawsWhatALabelDraws_data();
    void drawsWhatALabelDraws();
    void newFontIsLaidOutAgain();
};

void TestTickingLabel::drawsWhatALabelDraws_data()
{
    QTest::addColumn<int>("pixelSize");
    QTest::addColumn<bool>("bold");
    QTest::newRow("seconds, small") << 13 << false;
    QTest::newRow("time, large") << 61 << false;
    QTest::newRow("odd size, bold") << 27 << true;
}

void TestTickingLabel::drawsWhatALabelDraws()
{
    QFETCH(int, pixelSize);
    QFETCH(bool, bold);
    QFont font = QApplication::font();
    font.setPixelSize(pixelSize);
    font.setBold(bold);
    QLabel plain;
    TickingLabel ticking;
    QStringList texts = {QStringLiteral("12:30"), QStringLiteral("AM"), QStringLiteral("12:30:07 ")};
    for (int s = 0; s < 60; ++s)
        texts.append(QString::number(s).rightJustified(2, QLatin1Char('0')));
    // Each text twice: the second time it comes from what was laid out the first time.
    for (int round = 0; round < 2; ++round) {
        for (const QString &text : texts) {
            lookAlike(plain, ticking, font, text, QSize(pixelSize * 6, pixelSize * 2));
            QCOMPARE(drawn(ticking), drawn(plain));
        }
    }
    // Anything else is drawn by QLabel itself: centred, or rich text.
    ticking.setAlignment(Qt::AlignCenter);
    plain.setAlignment(Qt::AlignCenter);
    QCOMPARE(drawn(ticking), drawn(plain));
}

void TestTickingLabel::newFontIsLaidOutAgain()
{
    QFont small = QApplication::font();
    small.setPixelSize(12);
    QFont large = small;
    large.setPixelSize(30);
    QLabel plain;
    TickingLabel ticking;
    lookAlike(plain, ticking, small, QStringLiteral("42"), QSize(200, 60));
    QCOMPARE(drawn(ticking), drawn(plain));
    lookAlike(plain, ticking, large, QStringLiteral("42"), QSize(200, 60));
    QCOMPARE(drawn(ticking), drawn(plain));
}

QTEST_MAIN(TestTickingLabel)
#include "test_ticking_label.moc"
