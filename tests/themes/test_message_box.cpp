#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/message_window.h"
#include "themes/theme_painter.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>

namespace {

MessageWindow *shownMessageWindow()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->objectName() == QLatin1String("msg_INF") && w->isVisible())
            return qobject_cast<MessageWindow *>(w);
    }
    return nullptr;
}

// Runs `action` on the message window once it shows (the routines block while it does).
void whenShown(std::function<void(MessageWindow *)> action)
{
    auto *poll = new QTimer;
    poll->setInterval(10);
    QObject::connect(poll, &QTimer::timeout, [poll, action] {
        if (MessageWindow *w = shownMessageWindow()) {
            poll->stop();
            poll->deleteLater();
            action(w);
        }
    });
    poll->start();
}

void clickButton(MessageWindow *w, const char *name)
{
    auto *button = w->findChild<QPushButton *>(QLatin1String(name));
    QVERIFY(button);
    QVERIFY(button->isVisible());
    QTest::mouseClick(button, Qt::LeftButton);
}

struct Seen
{
    QString title;
    QString text;
    QStringList visibleBars;
    QMap<QString, QString> captions;
};

Seen look(MessageWindow *w)
{
    Seen s;
    s.title = w->findChild<QLabel *>(QStringLiteral("lablTITLE"))->text();
    s.text = w->findChild<QLabel *>(QStringLiteral("lblDESCRIPTION"))->text();
    for (const char *bar : {"pfrBTNBARO", "pfrBTNBARYN", "pfrBTNBARYNC"}) {
        if (w->findChild<QWidget *>(QLatin1String(bar))->isVisible())
            s.visibleBars << QLatin1String(bar);
    }
    for (QPushButton *b : w->findChildren<QPushButton *>()) {
        if (b->isVisible())
            s.captions.insert(b->objectName(), b->text());
    }
    return s;
}

} // namespace

class TestMessageBox : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(m_home.isValid()); }

    void unsavedChangesAnswers_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("answer");
        QTest::newRow("Cancel") << "btnCANCEL" << 2;
        QTest::newRow("&Save") << "btnYES" << 6;
        QTest::newRow("&Do not save") << "btnNO" << 7;
    }

    void unsavedChangesAnswers()
    {
        QFETCH(QString, button);
        QFETCH(int, answer);
        Seen seen;
        whenShown([&](MessageWindow *w) {
            seen = look(w);
            clickButton(w, qPrintable(button));
        });
        QCOMPARE(AskQuestion(2), answer);
        QCOMPARE(seen.title, QStringLiteral("There Are Unsaved Changes"));
        QCOMPARE(seen.visibleBars, QStringList{"pfrBTNBARYNC"});
        QCOMPARE(seen.captions.value("btnCANCEL"), QStringLiteral("Cancel"));
        QCOMPARE(seen.captions.value("btnYES"), QStringLiteral("&Save"));
        QCOMPARE(seen.captions.value("btnNO"), QStringLiteral("&Do not save"));
        QVERIFY(!shownMessageWindow());
    }

    void twoButtonQuestions_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("yes");
        QTest::addColumn<QString>("no");
        QTest::newRow("1") << 1 << "You Can Now Download a Newer Version"
                           << "&Download"
                           << "&Ignore";
        QTest::newRow("4") << 4 << "Are you sure you want to delete the board?"
                           << "&Delete"
                           << "&Cancel";
    }

    void twoButtonQuestions()
    {
        QFETCH(int, number);
        QFETCH(QString, title);
        QFETCH(QString, yes);
        QFETCH(QString, no);
        Seen seen;
        whenShown([&](MessageWindow *w) {
            seen = look(w);
            clickButton(w, "btnYES");
        });
        QCOMPARE(AskQuestion(number), 6);
        QCOMPARE(seen.title, title);
        QCOMPARE(seen.visibleBars, QStringList{"pfrBTNBARYN"});
        QCOMPARE(seen.captions.value("btnYES"), yes);
        QCOMPARE(seen.captions.value("btnNO"), no);
        QVERIFY(!seen.captions.contains("btnCANCEL"));
    }

    // Enter takes the default answer; deleting the board is never the default.
    void enterTakesTheDefault_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<int>("answer");
        QTest::newRow("download") << 1 << 6;
        QTest::newRow("delete board") << 4 << 7;
        QTest::newRow("save after delete") << 2 << 6;
    }

    void enterTakesTheDefault()
    {
        QFETCH(int, number);
        QFETCH(int, answer);
        whenShown([](MessageWindow *w) {
            QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : w, Qt::Key_Return);
        });
        QCOMPARE(AskQuestion(number), answer);
    }

    void versionInQuestionOne()
    {
        Seen seen;
        whenShown([&](MessageWindow *w) {
            seen = look(w);
            clickButton(w, "btnNO");
        });
        QCOMPARE(AskQuestion(1), 7);
        QVERIFY(seen.text.endsWith(QStringLiteral("UI Tweaks and fixes.\nYour current version: %1.%2.%3")
                                       .arg(VANTORA_VERSION_MAJOR)
                                       .arg(VANTORA_VERSION_MINOR)
                                       .arg(VANTORA_VERSION_PATCH)));
    }

    // Escape and the close picture hide the window with the safe answer.
    void closingWithoutAButton_data()
    {
        QTest::addColumn<int>("question");
        QTest::addColumn<bool>("escape");
        QTest::addColumn<int>("answer");
        QTest::newRow("escape on question 2") << 2 << true << 2;
        QTest::newRow("close picture on question 2") << 2 << false << 2;
        QTest::newRow("escape on question 4") << 4 << true << 7;
    }

    void closingWithoutAButton()
    {
        QFETCH(int, question);
        QFETCH(bool, escape);
        QFETCH(int, answer);
        whenShown([&](MessageWindow *w) {
            if (escape)
                QTest::keyClick(w, Qt::Key_Escape);
            else
                QTest::mouseClick(w->findChild<QWidget *>(QStringLiteral("picCLOSE")), Qt::LeftButton);
        });
        QCOMPARE(AskQuestion(question), answer);
        QVERIFY(!shownMessageWindow());
    }

    void informationMessages_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("extra");
        QTest::addColumn<QString>("title");
        QTest::addColumn<QString>("text");
        QTest::newRow("1")
            << 1 << "x"
            << "The Spell Checking Now Been Completed"
            << "Your page has been fully checked. It is always a good idea to proof yourself too.";
        QTest::newRow("2 splices") << 2 << "cats"
                                   << "Searching Has Now Been Completed"
                                   << "All references have been found for cats";
        QTest::newRow("4 single blank") << 4 << ""
                                        << "Time Has Now Ended"
                                        << " ";
        QTest::newRow("9 splices") << 9 << "/home/me"
                                   << "A New Folder Location Was Chosen"
                                   << "A Whiteboard folder already exists in /home/me and shall now be used.";
        QTest::newRow("12") << 12 << ""
                            << "Saving of Your File Has NOT Been Completed"
                            << "You need to set a name before saving.";
    }

    void informationMessages()
    {
        QFETCH(int, number);
        QFETCH(QString, extra);
        QFETCH(QString, title);
        QFETCH(QString, text);
        Seen seen;
        whenShown([&](MessageWindow *w) {
            seen = look(w);
            clickButton(w, "btnCLOSE");
        });
        ShowInfoMessage(number, extra);
        QCOMPARE(seen.title, title);
        QCOMPARE(seen.text, text);
        QCOMPARE(seen.visibleBars, QStringList{"pfrBTNBARO"});
    }

    void messageEightKeepsThePreviousTexts()
    {
        whenShown([](MessageWindow *w) { clickButton(w, "btnCLOSE"); });
        ShowInfoMessage(3);
        Seen seen;
        whenShown([&](MessageWindow *w) {
            seen = look(w);
            QTest::keyClick(w, Qt::Key_Escape);
        });
        ShowInfoMessage(8);
        QCOMPARE(seen.title, QStringLiteral("There Are No Updates Available as Yet"));
        QCOMPARE(seen.visibleBars, QStringList{"pfrBTNBARO"});
    }

    void oneWindowIsReused()
    {
        QPointer<MessageWindow> first;
        whenShown([&](MessageWindow *w) {
            first = w;
            clickButton(w, "btnCLOSE");
        });
        ShowInfoMessage(10);
        QPointer<MessageWindow> second;
        whenShown([&](MessageWindow *w) {
            second = w;
            clickButton(w, "btnCLOSE");
        });
        ShowInfoMessage(11);
        QVERIFY(first);
        QCOMPARE(first, second);
        QVERIFY(first->windowFlags() & Qt::FramelessWindowHint);
    }

    void painterFramesAndModality()
    {
        bool modal = false;
        bool framesThere = false;
        whenShown([&](MessageWindow *w) {
            modal = w->isModal() && QApplication::activeModalWidget() == w;
            framesThere = w->findChild<QWidget *>("pfrBAR") && w->findChild<QWidget *>("pfrPANEL");
            clickButton(w, "btnCLOSE");
        });
        QWidget owner;
        owner.show();
        ShowInfoMessage(5, QString(), &owner);
        QVERIFY(modal);
        QVERIFY(framesThere);
    }

    void responderHookStillAnswers()
    {
        QList<int> seen;
        SetMessageResponderForTesting([&](bool question, int number, const QString &) {
            seen << (question ? -number : number);
            return 6;
        });
        ShowInfoMessage(7);
        QCOMPARE(AskQuestion(2), 6);
        SetMessageResponderForTesting(nullptr);
        QCOMPARE(seen, (QList<int>{7, -2}));
        QVERIFY(!shownMessageWindow());
    }

    // A question before a destructive action: Cancel is the default, the text reads whatever
    // the theme (here text the colour of its panel), and only the action's button confirms.
    void destructiveQuestions_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("confirmed");
        QTest::newRow("Enter cancels") << int(Qt::Key_Return) << false;
        QTest::newRow("Escape cancels") << int(Qt::Key_Escape) << false;
    }

    void destructiveQuestions()
    {
        QFETCH(int, key);
        QFETCH(bool, confirmed);
        Theme unreadable;
        unreadable.PanelColor = unreadable.MainColor;
        unreadable.BarColor = unreadable.MainColor;
        SetCurrentTheme(unreadable);
        double textContrast = 0;
        QString caption;
        whenShown([&](MessageWindow *w) {
            auto *text = w->findChild<QLabel *>(QStringLiteral("lblDESCRIPTION"));
            textContrast = ContrastRatio(text->palette().color(QPalette::WindowText),
                                         ResolveColor(GradientsFor(CurrentTheme()).panelStart));
            caption = w->findChild<QPushButton *>(QStringLiteral("btnYES"))->text();
            QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : w, Qt::Key(key));
        });
        QCOMPARE(ConfirmDestructiveAction("Delete Preset", "Delete \"Snow\"?", "Delete"), confirmed);
        SetCurrentTheme(Theme());
        QCOMPARE(caption, QStringLiteral("Delete"));
        QVERIFY(textContrast >= 4.5);
    }

private:
    TestHome m_home;
};

QTEST_MAIN(TestMessageBox)
#include "test_message_box.moc"
