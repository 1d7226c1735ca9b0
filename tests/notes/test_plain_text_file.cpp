#include "notes/plain_text_file.h"

#include <QTest>

Q_DECLARE_METATYPE(TextEncoding)
Q_DECLARE_METATYPE(LineEnding)

namespace {

QByteArray Bytes(const char *hex)
{
    return QByteArray::fromHex(hex);
}

} // namespace

class TestPlainTextFile : public QObject
{
    Q_OBJECT

private slots:
    void read_data();
    void read();
    void write_data();
    void write();
    void textThatDoesNotFitSwitchesToUtf8();
};

void TestPlainTextFile::read_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::addColumn<TextEncoding>("encoding");
    QTest::addColumn<bool>("bom");
    QTest::addColumn<LineEnding>("ending");
    QTest::addColumn<bool>("sameBytesBack");
    const QChar bad = QChar::ReplacementCharacter;
    QTest::newRow("UTF-8 BOM, CR LF") << Bytes("efbbbf610d0a62") << "a\nb" << TextEncoding::Utf8 << true
                                      << LineEnding::CrLf << true;
    QTest::newRow("UTF-16 LE BOM") << Bytes("fffe61000d000a00e900") << QString::fromUtf8("a\né")
                                   << TextEncoding::Utf16LittleEndian << true << LineEnding::CrLf << true;
    QTest::newRow("UTF-16 BE BOM, surrogate pair") << Bytes("feff0061000ad83dde00") << QString::fromUtf8("a\n😀")
                                                   << TextEncoding::Utf16BigEndian << true << LineEnding::Lf << true;
    QTest::newRow("UTF-8 without BOM, CR") << Bytes("636166c3a90d78") << QString::fromUtf8("café\nx")
                                           << TextEncoding::Utf8 << false << LineEnding::Cr << true;
    QTest::newRow("pure ASCII") << QByteArray("plain\n\n") << "plain\n\n" << TextEncoding::Utf8 << false
                                << LineEnding::Lf << true;
    QTest::newRow("Windows-1252") << Bytes("636166e90d0a80") << QString::fromUtf8("café\n€")
                                  << TextEncoding::Windows1252 << false << LineEnding::CrLf << true;
    QTest::newRow("overlong UTF-8 is 1252") << Bytes("c0af") << QString::fromUtf8("À¯") << TextEncoding::Windows1252
                                            << false << PlatformLineEnding() << true;
    QTest::newRow("mixed: most frequent wins") << QByteArray("a\r\nb\nc\nd") << "a\nb\nc\nd" << TextEncoding::Utf8
                                               << false << LineEnding::Lf << false;
    QTest::newRow("second BOM belongs to the text") << Bytes("efbbbfefbbbf78") << QString(QChar(0xFEFF)) + "x"
                                                    << TextEncoding::Utf8 << true << PlatformLineEnding() << true;
    QTest::newRow("NUL filled") << QByteArray(8, '\0') << QString(8, QChar(0)) << TextEncoding::Utf8 << false
                                << PlatformLineEnding() << true;
    QTest::newRow("odd-sized UTF-16") << Bytes("fffe610062") << QString("a") + bad << TextEncoding::Utf16LittleEndian
                                      << true << PlatformLineEnding() << false;
    QTest::newRow("broken UTF-8 after BOM") << Bytes("efbbbf41ff") << QString("A") + bad << TextEncoding::Utf8
                                            << true << PlatformLineEnding() << false;
    QTest::newRow("empty") << QByteArray() << "" << TextEncoding::Utf8 << false << PlatformLineEnding() << true;
}

void TestPlainTextFile::read()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QFETCH(TextEncoding, encoding);
    QFETCH(bool, bom);
    QFETCH(LineEnding, ending);
    QFETCH(bool, sameBytesBack);
    const PlainTextFile file = PlainTextFile::fromBytes(bytes);
    QCOMPARE(file.text(), text);
    QCOMPARE(file.encoding(), encoding);
    QCOMPARE(file.hasByteOrderMark(), bom);
    QCOMPARE(file.lineEnding(), ending);
    if (sameBytesBack)
        QCOMPARE(file.toBytes(), bytes);
}

void TestPlainTextFile::write_data()
{
    QTest::addColumn<QByteArray>("original");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("lossless");
    const QString paragraphs = QString("a") + QChar::ParagraphSeparator + "b" + QChar::LineSeparator + "c\r\nd\re";
    QTest::newRow("every break as CR LF") << QByteArray("x\r\ny") << paragraphs << QByteArray("a\r\nb\r\nc\r\nd\r\ne")
                                          << true;
    QTest::newRow("every break as CR") << QByteArray("x\ry") << paragraphs << QByteArray("a\rb\rc\rd\re") << true;
    QTest::newRow("UTF-16 BE keeps BOM") << Bytes("feff0078") << QString::fromUtf8("Ж\n") << Bytes("feff0416000a")
                                         << true;
    QTest::newRow("1252 euro fits") << Bytes("e90a") << QString::fromUtf8("€\n") << Bytes("800a") << true;
    QTest::newRow("1252 Cyrillic lost") << Bytes("e90a") << QString::fromUtf8("Жx") << QByteArray("?x") << false;
}

void TestPlainTextFile::write()
{
    QFETCH(QByteArray, original);
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QFETCH(bool, lossless);
    PlainTextFile file = PlainTextFile::fromBytes(original);
    file.setText(text);
    bool kept = !lossless;
    QCOMPARE(file.toBytes(&kept), bytes);
    QCOMPARE(kept, lossless);
    QCOMPARE(file.canEncodeLosslessly(), lossless);
}

void TestPlainTextFile::textThatDoesNotFitSwitchesToUtf8()
{
    PlainTextFile file = PlainTextFile::fromBytes(Bytes("e90d0a"));
    file.setText(QString::fromUtf8("é Ж\n"));
    QVERIFY(!file.canEncodeLosslessly());
    file.switchToUtf8();
    bool lossless = false;
    QCOMPARE(file.toBytes(&lossless), QString::fromUtf8("é Ж\r\n").toUtf8());
    QVERIFY(lossless);
}

QTEST_GUILESS_MAIN(TestPlainTextFile)
#include "test_plain_text_file.moc"
