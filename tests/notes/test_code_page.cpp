#include "notes/code_page.h"

#include <QTest>

class TestCodePage : public QObject
{
    Q_OBJECT

private slots:
    void decode_data();
    void decode();
    void windows1252RoundTripsEveryByte();
};

void TestCodePage::decode_data()
{
    QTest::addColumn<int>("codePage");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    const QChar bad = QChar::ReplacementCharacter;
    QTest::newRow("1251 via charset 204") << CodePageForCharset(204) << QByteArray::fromHex("d3d5c2c0cbc0")
                                          << QString::fromUtf8("УХВАЛА");
    QTest::newRow("1250 via charset 238") << CodePageForCharset(238) << QByteArray::fromHex("8ab9")
                                          << QString::fromUtf8("Šą");
    QTest::newRow("1253 undefined byte") << 1253 << QByteArray::fromHex("41d2") << QString("A") + bad;
    QTest::newRow("1252 high bytes") << 1252 << QByteArray::fromHex("809f81") << QString::fromUtf8("€Ÿ\xc2\x81");
    QTest::newRow("unknown page reads as 1252") << 4242 << QByteArray::fromHex("80e9") << QString::fromUtf8("€é");
    QTest::newRow("Mac Roman via charset 77") << CodePageForCharset(77) << QByteArray::fromHex("808e")
                                              << QString::fromUtf8("Äé");
    QTest::newRow("437 box drawing") << 437 << QByteArray::fromHex("c4b0") << QString::fromUtf8("─░");
    QTest::newRow("symbol keeps byte values") << CodePageForCharset(2) << QByteArray::fromHex("b7f0")
                                              << QString::fromUtf8("·ð");
    QTest::newRow("936 via charset 134") << CodePageForCharset(134) << QByteArray::fromHex("c4e3bac3")
                                         << QString::fromUtf8("你好");
    QTest::newRow("950 via charset 136") << CodePageForCharset(136) << QByteArray::fromHex("a4a4") << QString::fromUtf8("中");
    QTest::newRow("949 via charset 129") << CodePageForCharset(129) << QByteArray::fromHex("b0a1") << QString::fromUtf8("가");
    QTest::newRow("932 via charset 128") << CodePageForCharset(128) << QByteArray::fromHex("82a041")
                                         << QString::fromUtf8("あA");
    QTest::newRow("932 lead byte cut off") << 932 << QByteArray::fromHex("82a082") << QString::fromUtf8("あ") + bad;
    QTest::newRow("932 half-width kana is one byte") << 932 << QByteArray::fromHex("b1b2") << QString::fromUtf8("ｱｲ");
    QTest::newRow("932 broken pair") << 932 << QByteArray::fromHex("8220") << QString(bad) + " ";
}

void TestCodePage::decode()
{
    QFETCH(int, codePage);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(DecodeCodePage(bytes, codePage), text);
}

void TestCodePage::windows1252RoundTripsEveryByte()
{
    QByteArray all;
    for (int b = 0; b < 256; ++b)
        all.append(char(b));
    bool lossless = false;
    QCOMPARE(EncodeWindows1252(DecodeWindows1252(all), &lossless), all);
    QVERIFY(lossless);
    QCOMPARE(DecodeCodePage(all, CodePageForCharset(0)), DecodeWindows1252(all));
}

QTEST_GUILESS_MAIN(TestCodePage)
#include "test_code_page.moc"
