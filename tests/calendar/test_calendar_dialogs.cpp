#include "calendar/calendar_insert_dialog.h"
#include "calendar/calendar_stickers.h"
#include "calendar/day_note_dialog.h"
#include "core/settings_store.h"
#include "support/test_home.h"
#include "themes/message_box.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

namespace {

const QDate kDay(2026, 11, 25);

template <typename T> T *child(const QDialog &dialog, const QString &name)
{
    T *found = dialog.findChild<T *>(name);
    if (!found)
        qFatal("no control %s", qPrintable(name));
    return found;
}

QToolButton *sticker(const QDialog &dialog, int index)
{
    return child<QToolButton>(dialog, QStringLiteral("btnSTICKER_%1").arg(index));
}

// Answers every question with `answer` and counts what the dialogs asked and told.
class Responder
{
public:
    explicit Responder(int answer)
    {
        SetMessageResponderForTesting([this, answer](bool question, int, const QString &) {
            ++(question ? questions : notices);
            return answer;
        });
    }
    ~Responder() { SetMessageResponderForTesting(nullptr); }

    int questions = 0;
    int notices = 0;
};

int opaquePixels(const QImage &image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 0;
    return count;
}

int differingPixels(const QImage &a, const QImage &b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            count += a.pixel(x, y) != b.pixel(x, y);
    return count;
}

} // namespace

class TestCalendarDialogs : public QObject
{
    Q_OBJECT
private slots:
    void stickersDrawn_data();
    void stickersDrawn();
    void noteButtons_data();
    void noteButtons();
    void noteKeyboard_data();
    void noteKeyboard();
    void pictureFile_data();
    void pictureFile();
    void lastStickerRemembered_data();
    void lastStickerRemembered();
    void stickerGridKeyboard_data();
    void stickerGridKeyboard();
};

void TestCalendarDialogs::stickersDrawn_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("side");
    for (int side : {24, 96}) {
        for (int i = 0; i < CalendarStickerCount(); ++i)
            QTest::addRow("%s at %d", qPrintable(CalendarStickerName(i)), side) << i << side;
    }
}

void TestCalendarDialogs::stickersDrawn()
{
    QFETCH(int, index);
    QFETCH(int, side);
    QVERIFY(!CalendarStickerName(index).isEmpty());
    const QImage image = CalendarStickerImage(index, side);
    QCOMPARE(image.size(), QSize(side, side));
    QCOMPARE(image.format(), QImage::Format_ARGB32_Premultiplied);
    // Bold shapes: a good part of the square is covered.
    QVERIFY2(opaquePixels(image) > side * side / 5, qPrintable(QString::number(opaquePixels(image))));
    // A sticker sits on the day's page; its square must not show.
    for (QPoint corner : {QPoint(0, 0), QPoint(side - 1, 0), QPoint(0, side - 1), QPoint(side - 1, side - 1)})
        QCOMPARE(qAlpha(image.pixel(corner)), 0);
    for (int other = 0; other < CalendarStickerCount(); ++other) {
        if (other == index)
            continue;
        QVERIFY(CalendarStickerName(other) != CalendarStickerName(index));
        const int differing = differingPixels(image, CalendarStickerImage(other, side));
        QVERIFY2(differing > side * side / 6, qPrintable(CalendarStickerName(other)));
    }
}

void TestCalendarDialogs::noteButtons_data()
{
    QTest::addColumn<QString>("note");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("questions");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<bool>("deleted");
    QTest::addColumn<QString>("result"); // note() afterwards

    QTest::newRow("save adds to the end of the note")
        << "Dentist"
        << " at 9"
        << "cmdSAVE" << int(AnswerYes) << 0 << true << true << false << "Dentist at 9";
    QTest::newRow("save a new note") << ""
                                     << "Call Mum"
                                     << "cmdSAVE" << int(AnswerYes) << 0 << true << true << false
                                     << "Call Mum";
    QTest::newRow("delete confirmed") << "Dentist"
                                      << ""
                                      << "cmdDELETE" << int(AnswerYes) << 1 << true << true << true << "";
    QTest::newRow("delete declined") << "Dentist"
                                     << ""
                                     << "cmdDELETE" << int(AnswerNo) << 1 << false << false << false
                                     << "Dentist";
    QTest::newRow("cancel unchanged does not ask")
        << "Dentist"
        << ""
        << "cmdCANCEL" << int(AnswerNo) << 0 << true << false << false << "Dentist";
    QTest::newRow("cancel after typing, keep editing")
        << "Dentist"
        << "!"
        << "cmdCANCEL" << int(AnswerNo) << 1 << false << false << false << "Dentist!";
    QTest::newRow("cancel after typing, discard")
        << "Dentist"
        << "!"
        << "cmdCANCEL" << int(AnswerYes) << 1 << true << false << false << "Dentist!";
}

void TestCalendarDialogs::noteButtons()
{
    QFETCH(QString, note);
    QFETCH(QString, typed);
    QFETCH(QString, button);
    QFETCH(int, answer);
    QFETCH(int, questions);
    QFETCH(bool, closed);
    QFETCH(bool, accepted);
    QFETCH(bool, deleted);
    QFETCH(QString, result);
    TestHome home;
    Responder responder(answer);
    DayNoteDialog dialog(kDay, note);
    QVERIFY(dialog.windowTitle().contains(QLocale().toString(kDay, QLocale::LongFormat)));
    QCOMPARE(dialog.defaultButton(), child<QPushButton>(dialog, "cmdSAVE"));
    // Only a note the day has can be deleted.
    QCOMPARE(child<QPushButton>(dialog, "cmdDELETE")->isEnabled(), !note.isEmpty());
    QSignalSpy finished(&dialog, &QDialog::finished);
    dialog.show();
    QTest::keyClicks(child<QPlainTextEdit>(dialog, "txtNOTE"), typed);

    child<QPushButton>(dialog, button)->click();
    QCOMPARE(responder.questions, questions);
    QCOMPARE(dialog.isVisible(), !closed);
    if (closed)
        QCOMPARE(finished.value(0).value(0).toInt(), int(accepted ? QDialog::Accepted : QDialog::Rejected));
    QCOMPARE(dialog.deleteRequested(), deleted);
    QCOMPARE(dialog.note(), result);
}

void TestCalendarDialogs::noteKeyboard_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("saved");
    QTest::addColumn<QString>("result");

    QTest::newRow("Ctrl+Return saves") << int(Qt::Key_Return) << int(Qt::ControlModifier) << true << "Gym";
    QTest::newRow("Ctrl+Enter on the keypad saves")
        << int(Qt::Key_Enter) << int(Qt::ControlModifier | Qt::KeypadModifier) << true << "Gym";
    QTest::newRow("Return starts a line") << int(Qt::Key_Return) << int(Qt::NoModifier) << false << "Gym\n";
    QTest::newRow("Tab leaves the text") << int(Qt::Key_Tab) << int(Qt::NoModifier) << false << "Gym";
}

void TestCalendarDialogs::noteKeyboard()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(bool, saved);
    QFETCH(QString, result);
    TestHome home;
    Responder responder(AnswerNo);
    DayNoteDialog dialog(kDay, QString());
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    auto *edit = child<QPlainTextEdit>(dialog, "txtNOTE");
    QCOMPARE(QApplication::focusWidget(), edit);
    QTest::keyClicks(edit, QStringLiteral("Gym"));

    QTest::keyClick(edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QCOMPARE(dialog.isVisible(), !saved);
    QCOMPARE(dialog.result(), int(saved ? QDialog::Accepted : QDialog::Rejected));
    QCOMPARE(dialog.note(), result);
}

void TestCalendarDialogs::pictureFile_data()
{
    QTest::addColumn<QByteArray>("content"); // empty: no file at all
    QTest::addColumn<bool>("readable");

    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QByteArray png;
    QBuffer buffer(&png);
    picture.save(&buffer, "PNG");

    QTest::newRow("a picture") << png << true;
    QTest::newRow("text named .png") << QByteArray("not a picture at all") << false;
    QTest::newRow("cut short") << png.left(png.size() / 2) << false;
    QTest::newRow("missing") << QByteArray() << false;
}

void TestCalendarDialogs::pictureFile()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, readable);
    TestHome home;
    Responder responder(AnswerYes);
    const QString path = home.filePath(QStringLiteral("party.png"));
    if (!content.isEmpty()) {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    CalendarInsertDialog dialog(kDay);
    auto *insert = child<QPushButton>(dialog, "cmdINSERT");
    QVERIFY(!insert->isEnabled());
    QVERIFY(dialog.chosenImage(32).isNull());

    dialog.choosePictureFile(path);
    QCOMPARE(responder.notices, readable ? 0 : 1);
    QCOMPARE(dialog.isPicture(), readable);
    QCOMPARE(insert->isEnabled(), readable);
    QCOMPARE(dialog.chosenImage(32).size(), readable ? QSize(30, 20) : QSize(0, 0));
    QCOMPARE(dialog.chosenName(), readable ? QStringLiteral("party.png") : QString());

    // A sticker chosen after the picture replaces it.
    sticker(dialog, 1)->click();
    QVERIFY(!dialog.isPicture());
    QCOMPARE(dialog.chosenName(), CalendarStickerName(1));
    QCOMPARE(dialog.chosenImage(32).size(), QSize(32, 32));
}

void TestCalendarDialogs::lastStickerRemembered_data()
{
    QTest::addColumn<QString>("stored"); // "Last Sticker" before the first dialog
    QTest::addColumn<int>("clicked");    // sticker clicked in the first dialog
    QTest::addColumn<QString>("button"); // how it closes
    QTest::addColumn<int>("chosenNext"); // what the next dialog opens with; -1 nothing

    QTest::newRow("inserted") << "" << 5 << "cmdINSERT" << 5;
    QTest::newRow("inserted replaces the last one") << "2" << 7 << "cmdINSERT" << 7;
    QTest::newRow("cancelled keeps the last one") << "2" << 7 << "cmdCANCEL" << 2;
    QTest::newRow("out of range chooses nothing") << "99" << -1 << "cmdCANCEL" << -1;
    QTest::newRow("not a number chooses nothing") << "star" << -1 << "cmdCANCEL" << -1;
}

void TestCalendarDialogs::lastStickerRemembered()
{
    QFETCH(QString, stored);
    QFETCH(int, clicked);
    QFETCH(QString, button);
    QFETCH(int, chosenNext);
    TestHome home;
    if (!stored.isEmpty())
        WriteDetail(QStringLiteral("fcln_INS"), QStringLiteral("Last Sticker"), stored);
    {
        CalendarInsertDialog dialog(kDay);
        if (clicked >= 0)
            sticker(dialog, clicked)->click();
        child<QPushButton>(dialog, button)->click();
    }

    CalendarInsertDialog next(kDay);
    QCOMPARE(child<QPushButton>(next, "cmdINSERT")->isEnabled(), chosenNext >= 0);
    if (chosenNext < 0) {
        QVERIFY(next.chosenImage(48).isNull());
        return;
    }
    QVERIFY(sticker(next, chosenNext)->isChecked());
    QCOMPARE(next.chosenName(), CalendarStickerName(chosenNext));
    const QImage image = next.chosenImage(48);
    QCOMPARE(image.size(), QSize(48, 48));
    QCOMPARE(image, CalendarStickerImage(chosenNext, 48));
}

void TestCalendarDialogs::stickerGridKeyboard_data()
{
    QTest::addColumn<QList<int>>("keys");
    QTest::addColumn<int>("chosen");
    QTest::addColumn<bool>("inserted");

    QTest::newRow("right") << QList<int>{Qt::Key_Right} << 1 << false;
    QTest::newRow("down a row") << QList<int>{Qt::Key_Down} << 4 << false;
    QTest::newRow("left stops at the first") << QList<int>{Qt::Key_Left} << 0 << false;
    QTest::newRow("up stops at the top") << QList<int>{Qt::Key_Up} << 0 << false;
    QTest::newRow("right at a row's end goes on")
        << QList<int>{Qt::Key_Down, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right} << 8 << false;
    QTest::newRow("enter inserts") << QList<int>{Qt::Key_Down, Qt::Key_Right, Qt::Key_Return} << 5 << true;
}

void TestCalendarDialogs::stickerGridKeyboard()
{
    QFETCH(QList<int>, keys);
    QFETCH(int, chosen);
    QFETCH(bool, inserted);
    TestHome home;
    WriteDetail(QStringLiteral("fcln_INS"), QStringLiteral("Last Sticker"), QStringLiteral("0"));
    CalendarInsertDialog dialog(kDay);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QCOMPARE(QApplication::focusWidget(), sticker(dialog, 0));

    for (int key : keys)
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key));
    QVERIFY(sticker(dialog, chosen)->isChecked());
    QCOMPARE(dialog.chosenName(), CalendarStickerName(chosen));
    QCOMPARE(dialog.isVisible(), !inserted);
    if (!inserted)
        QCOMPARE(QApplication::focusWidget(), sticker(dialog, chosen));
    QCOMPARE(ReadIntDetail(QStringLiteral("fcln_INS"), QStringLiteral("Last Sticker"), -1),
             inserted ? chosen : 0);
}

QTEST_MAIN(TestCalendarDialogs)
#include "test_calendar_dialogs.moc"
