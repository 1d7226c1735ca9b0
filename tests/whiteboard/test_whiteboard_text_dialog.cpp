#include "core/settings_store.h"
#include "support/test_home.h"
#include "whiteboard/whiteboard_text_dialog.h"

#include <QApplication>
#include <QComboBox>
#include <QFontComboBox>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

namespace {

const QString kWindow = QStringLiteral("fwbd_TXT");
const QString kUnset = QStringLiteral("<unset>");
const QStringList kFontValues = {QStringLiteral("Font Name"), QStringLiteral("Font Size"),
                                 QStringLiteral("Font Bold"), QStringLiteral("Font Italic"),
                                 QStringLiteral("Font Underline")};

QStringList storedFont()
{
    QStringList values;
    for (const QString &name : kFontValues)
        values << ReadDetail(kWindow, name, kUnset);
    return values;
}

template <typename T> T *child(const QDialog &dialog, const char *name)
{
    T *found = dialog.findChild<T *>(QLatin1String(name));
    if (!found)
        qFatal("no control %s", name);
    return found;
}

// Sets the font controls as a user would: family and size typed, styles toggled.
void chooseFont(const WhiteboardTextDialog &dialog, const QString &family, const QString &size, bool bold,
                bool italic, bool underline)
{
    child<QFontComboBox>(dialog, "cboFONTNAME")->setEditText(family);
    child<QComboBox>(dialog, "cboFONTSIZE")->setEditText(size);
    child<QToolButton>(dialog, "chkBOLD")->setChecked(bold);
    child<QToolButton>(dialog, "chkITALIC")->setChecked(italic);
    child<QToolButton>(dialog, "chkUNDERLINE")->setChecked(underline);
}

} // namespace

class TestWhiteboardTextDialog : public QObject
{
    Q_OBJECT
private slots:
    void placeNeedsVisibleText_data();
    void placeNeedsVisibleText();
    void placeRemembersFontCancelDoesNot_data();
    void placeRemembersFontCancelDoesNot();
    void damagedFontFallsBack_data();
    void damagedFontFallsBack();
    void keyboard_data();
    void keyboard();
};

void TestWhiteboardTextDialog::placeNeedsVisibleText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QString>("sample");

    QTest::newRow("empty") << "" << false << "Sample";
    QTest::newRow("blanks") << "   " << false << "Sample";
    QTest::newRow("newline only") << "\n" << false << "Sample";
    QTest::newRow("text") << "Hello" << true << "Hello";
    QTest::newRow("text after empty lines") << "\n\n  Hi" << true << "Hi";
    QTest::newRow("several lines show the first") << "One\nTwo" << true << "One\u2026";
}

void TestWhiteboardTextDialog::placeNeedsVisibleText()
{
    QFETCH(QString, text);
    QFETCH(bool, enabled);
    QFETCH(QString, sample);
    TestHome home;
    WhiteboardTextDialog dialog;
    auto *place = child<QPushButton>(dialog, "btnPLACE");
    QVERIFY(!place->isEnabled());
    QCOMPARE(dialog.defaultButton(), place);
    dialog.setText(text);
    QCOMPARE(place->isEnabled(), enabled);
    // The whiteboard gets the text exactly as typed.
    QCOMPARE(dialog.text(), text);
    dialog.show();
    QCOMPARE(child<QLabel>(dialog, "lblSAMPLE")->text(), sample);

    // A long text is cut short in the sample rather than widening the dialog.
    const QSize before = dialog.size();
    dialog.setText(text + QString(400, QLatin1Char('W')));
    QVERIFY(dialog.sizeHint().width() <= before.width());
    QVERIFY(child<QLabel>(dialog, "lblSAMPLE")->text().endsWith(QChar(0x2026)));
}

void TestWhiteboardTextDialog::placeRemembersFontCancelDoesNot_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QStringList>("stored"); // what is written, and what the next dialog opens with

    QTest::newRow("place") << "btnPLACE"
                           << "36" << QStringList{"Nowhere Sans", "36", "1", "0", "1"};
    QTest::newRow("place, size out of range keeps the opening size")
        << "btnPLACE"
        << "2" << QStringList{"Nowhere Sans", "24", "1", "0", "1"};
    QTest::newRow("cancel") << "btnCANCEL"
                            << "36" << QStringList{kUnset, kUnset, kUnset, kUnset, kUnset};
}

void TestWhiteboardTextDialog::placeRemembersFontCancelDoesNot()
{
    QFETCH(QString, button);
    QFETCH(QString, size);
    QFETCH(QStringList, stored);
    TestHome home;
    {
        WhiteboardTextDialog dialog;
        dialog.setText(QStringLiteral("Hello"));
        chooseFont(dialog, QStringLiteral("Nowhere Sans"), size, true, false, true);
        dialog.findChild<QPushButton *>(button)->click();
        QCOMPARE(dialog.result(), int(button == "btnPLACE" ? QDialog::Accepted : QDialog::Rejected));
    }
    QCOMPARE(storedFont(), stored);

    WhiteboardTextDialog next;
    const QFont font = next.textFont();
    if (stored.first() == kUnset) {
        QCOMPARE(font.family(), QApplication::font().family());
        QCOMPARE(font.pointSize(), 24);
        QVERIFY(!font.bold() && !font.italic() && !font.underline());
        return;
    }
    QCOMPARE(font.family(), stored[0]);
    QCOMPARE(font.pointSize(), stored[1].toInt());
    QCOMPARE(font.bold(), true);
    QCOMPARE(font.italic(), false);
    QCOMPARE(font.underline(), true);
    QVERIFY(child<QToolButton>(next, "chkBOLD")->isChecked());
}

void TestWhiteboardTextDialog::damagedFontFallsBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("size");
    QTest::addColumn<QString>("expectedName"); // empty: the application's font
    QTest::addColumn<int>("expectedSize");

    QTest::newRow("size 0") << "Nowhere Sans"
                            << "0"
                            << "Nowhere Sans" << 24;
    QTest::newRow("size 9999") << "Nowhere Sans"
                               << "9999"
                               << "Nowhere Sans" << 24;
    QTest::newRow("size abc") << "Nowhere Sans"
                              << "abc"
                              << "Nowhere Sans" << 24;
    QTest::newRow("the largest size is kept") << "Nowhere Sans"
                                              << "200"
                                              << "Nowhere Sans" << 200;
    QTest::newRow("empty name") << ""
                                << "18"
                                << "" << 18;
}

void TestWhiteboardTextDialog::damagedFontFallsBack()
{
    QFETCH(QString, name);
    QFETCH(QString, size);
    QFETCH(QString, expectedName);
    QFETCH(int, expectedSize);
    TestHome home;
    WriteDetail(kWindow, QStringLiteral("Font Name"), name);
    WriteDetail(kWindow, QStringLiteral("Font Size"), size);
    // A damaged value spoils only itself.
    WriteDetail(kWindow, QStringLiteral("Font Italic"), SettingFromBool(true));
    WhiteboardTextDialog dialog;
    const QFont font = dialog.textFont();
    QCOMPARE(font.family(), expectedName.isEmpty() ? QApplication::font().family() : expectedName);
    QCOMPARE(font.pointSize(), expectedSize);
    QCOMPARE(font.italic(), true);
    QCOMPARE(child<QComboBox>(dialog, "cboFONTSIZE")->currentText(), QString::number(expectedSize));
}

void TestWhiteboardTextDialog::keyboard_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("bold");

    QTest::newRow("Ctrl+Return places")
        << "Hi" << int(Qt::Key_Return) << int(Qt::ControlModifier) << true << "Hi" << false;
    QTest::newRow("Ctrl+Enter on the keypad places")
        << "Hi" << int(Qt::Key_Enter) << int(Qt::ControlModifier | Qt::KeypadModifier) << true << "Hi"
        << false;
    QTest::newRow("Return starts a line")
        << "Hi" << int(Qt::Key_Return) << int(Qt::NoModifier) << false << "Hi\n"
        << false;
    QTest::newRow("Ctrl+Return without text does nothing")
        << "  " << int(Qt::Key_Return) << int(Qt::ControlModifier) << false << "  " << false;
    QTest::newRow("Ctrl+B makes it bold and leaves the text")
        << "Hi" << int(Qt::Key_B) << int(Qt::ControlModifier) << false << "Hi" << true;
}

void TestWhiteboardTextDialog::keyboard()
{
    QFETCH(QString, typed);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, accepted);
    QFETCH(QString, text);
    QFETCH(bool, bold);
    TestHome home;
    WhiteboardTextDialog dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto *edit = child<QPlainTextEdit>(dialog, "txtTEXT");
    QCOMPARE(QApplication::focusWidget(), edit);
    QTest::keyClicks(edit, typed);

    QTest::keyClick(edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QTRY_COMPARE(child<QToolButton>(dialog, "chkBOLD")->isChecked(), bold);
    QCOMPARE(dialog.result(), int(accepted ? QDialog::Accepted : QDialog::Rejected));
    QCOMPARE(dialog.isVisible(), !accepted);
    QCOMPARE(dialog.text(), text);
}

QTEST_MAIN(TestWhiteboardTextDialog)
#include "test_whiteboard_text_dialog.moc"
