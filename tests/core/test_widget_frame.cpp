#include "support/test_home.h"

#include "core/sound_output.h"
#include "core/widget_frame.h"

#include <QDir>
#include <QTest>
#include <QWidget>

class TestWidgetFrame : public QObject
{
    Q_OBJECT

private slots:
    void cleanup()
    {
        SetContextMenuHandler({});
        SetSoundRecorderForTesting({});
    }

    // Web, mail, news and ftp addresses go out as written (the scheme test ignores case);
    // anything else is a local file, relative to the working folder when one is given.
    void linkTargets_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QUrl>("expected");
        QTest::newRow("web") << "http://example.org/a?b=1" << QString() << QUrl("http://example.org/a?b=1");
        QTest::newRow("secure web") << "https://example.org" << QString() << QUrl("https://example.org");
        QTest::newRow("upper-case mail") << "MAILTO:someone@example.org" << QString()
                                         << QUrl("MAILTO:someone@example.org");
        QTest::newRow("news") << "News:comp.lang.c" << QString() << QUrl("News:comp.lang.c");
        QTest::newRow("ftp") << "ftp://files.example.org/x" << QString() << QUrl("ftp://files.example.org/x");
        QTest::newRow("absolute file") << "/tmp/notes.txt" << "/home" << QUrl::fromLocalFile("/tmp/notes.txt");
        QTest::newRow("relative file") << "notes.txt" << "/data" << QUrl::fromLocalFile("/data/notes.txt");
        QTest::newRow("empty") << QString() << QString() << QUrl();
    }

    void linkTargets()
    {
        QFETCH(QString, target);
        QFETCH(QString, folder);
        QFETCH(QUrl, expected);
        const QUrl url = LinkTargetToUrl(target, folder);
        QCOMPARE(url, expected);
        // Handed over unchanged, but for the scheme's case, which QUrl folds (schemes are
        // case-insensitive).
        if (!target.isEmpty() && expected.scheme() != QLatin1String("file"))
            QCOMPARE(url.toString().compare(target, Qt::CaseInsensitive), 0);
    }

    void rightButtonOpensTheMenuForThatWindow()
    {
        QWidget window;
        QWidget *seen = nullptr;
        QPoint at;
        SetContextMenuHandler([&](QWidget *w, const QPoint &pos) {
            seen = w;
            at = pos;
        });
        WidgetMouseDown(&window, Qt::RightButton, QPoint(12, 34));
        QCOMPARE(seen, &window);
        QCOMPARE(at, QPoint(12, 34));

        seen = nullptr;
        WidgetMouseDown(&window, Qt::LeftButton, QPoint(1, 1));
        QCOMPARE(seen, nullptr); // the left button drags, it never opens the menu
    }

    void soundsAreReportedOrSkippedQuietly()
    {
        QStringList played;
        SetSoundRecorderForTesting([&](const QString &sound) { played << sound; });
        PlayBuiltInSound(QStringLiteral("BELL"));
        PlaySoundFile(QStringLiteral("/no/such/file.wav"));
        QCOMPARE(played, QStringList({"BELL", "/no/such/file.wav"}));

        // Without a recorder: a missing resource or file and a machine without an audio device
        // play nothing and report nothing.
        SetSoundRecorderForTesting({});
        PlayBuiltInSound(QStringLiteral("NO-SUCH-SOUND"));
        PlaySoundFile(QStringLiteral("/no/such/file.wav"));
        PlaySoundFile(QString());
        PlayBuiltInSound(QStringLiteral("BELL"));
        // The bell went to the sound module, found beside this program as beside the real one.
        QVERIFY(LoadedSoundOutput());
    }

    void keepOnTopTogglesTheHint()
    {
        QWidget window;
        SetKeepOnTop(&window, true);
        QVERIFY(window.windowFlags() & Qt::WindowStaysOnTopHint);
        SetKeepOnTop(&window, false);
        QVERIFY(!(window.windowFlags() & Qt::WindowStaysOnTopHint));
        QVERIFY(!window.isVisible()); // a hidden window is not shown by the change
    }

private:
    TestHome m_home;
};

QTEST_MAIN(TestWidgetFrame)
#include "test_widget_frame.moc"
