#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "time/countdown_model.h"

#include <QTest>

namespace {
using F = CountdownModel;

QString running(const CountdownModel &m)
{
    return m.runningField(F::Hours) + QLatin1Char(':') + m.runningField(F::Minutes) + QLatin1Char(':') +
           m.runningField(F::Seconds);
}

void setRunning(CountdownModel &m, const QString &hms)
{
    const QStringList parts = hms.split(QLatin1Char(':'));
    m.setRunningField(F::Hours, parts.at(0));
    m.setRunningField(F::Minutes, parts.at(1));
    m.setRunningField(F::Seconds, parts.at(2));
}

void setSetTime(CountdownModel &m, const QString &h, const QString &min, const QString &s)
{
    m.setSetField(F::Hours, h);
    m.setSetField(F::Minutes, min);
    m.setSetField(F::Seconds, s);
}
} // namespace

class TestCountdownModel : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();

    void tick_data();
    void tick();
    void setTimeIsStoredAtOnce();
    void endOfRun();
    void tickDuringEndMessageIsIgnored();
    void haltedStartDoesNothing();
    void zeroDoesNotStart();

private:
    TestHome *m_home = nullptr;
    QStringList m_sounds;
    QList<int> m_messages;
};

void TestCountdownModel::init()
{
    m_home = new TestHome;
    m_sounds.clear();
    m_messages.clear();
    SetSoundRecorderForTesting([this](const QString &sound) { m_sounds << sound; });
    SetMessageResponderForTesting([this](bool, int number, const QString &) {
        m_messages << number;
        return 0;
    });
}

void TestCountdownModel::cleanup()
{
    SetSoundRecorderForTesting(nullptr);
    SetMessageResponderForTesting(nullptr);
    delete m_home;
}

void TestCountdownModel::tick_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("plain second") << "00:00:10"
                                  << "00:00:09";
    QTest::newRow("below ten gets a zero") << "00:00:01"
                                           << "00:00:00";
    QTest::newRow("across a minute") << "00:01:00"
                                     << "00:00:59";
    QTest::newRow("across an hour") << "01:00:00"
                                    << "00:59:59";
    QTest::newRow("minutes left, hours kept") << "10:10:00"
                                              << "10:09:59";
    QTest::newRow("seconds only with hours") << "02:00:05"
                                             << "02:00:04";
}

void TestCountdownModel::tick()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    CountdownModel model;
    setRunning(model, before);
    model.clickStart();
    QVERIFY(model.isCounting());
    model.tick();
    QCOMPARE(running(model), after);
    QVERIFY(m_messages.isEmpty());
}

void TestCountdownModel::setTimeIsStoredAtOnce()
{
    {
        CountdownModel model;
        model.load();
        QCOMPARE(running(model), QStringLiteral("00:02:00")); // the defaults
        setSetTime(model, QStringLiteral("01"), QStringLiteral("5"), QStringLiteral("30"));
        QCOMPARE(ReadDetail(QStringLiteral("ftim_IDX"), QStringLiteral("Timer-Interval-mins"), QString()),
                 QStringLiteral("5"));
        // While idle the running time shows what the next start counts down.
        QCOMPARE(running(model), QStringLiteral("01:05:30"));
    }
    CountdownModel again;
    again.load();
    QCOMPARE(again.setField(F::Minutes), QStringLiteral("5"));
    QCOMPARE(running(again), QStringLiteral("01:05:30"));
}

void TestCountdownModel::endOfRun()
{
    CountdownModel model;
    setSetTime(model, QStringLiteral("00"), QStringLiteral("00"), QStringLiteral("02"));
    QStringList captionsDuringMessage;
    SetMessageResponderForTesting([&](bool, int number, const QString &) {
        m_messages << number;
        captionsDuringMessage << model.startCaption() << model.stopCaption();
        return 0;
    });
    model.clickStart();
    model.tick();
    model.tick();
    QCOMPARE(running(model), QStringLiteral("00:00:00"));
    QVERIFY(m_messages.isEmpty());

    model.tick();
    QCOMPARE(m_sounds, QStringList{QStringLiteral("BELL")});
    QCOMPARE(m_messages, QList<int>{4});
    QCOMPARE(captionsDuringMessage, (QStringList{QStringLiteral(" Pause "), QStringLiteral(" Stop ")}));
    // Ready to run the same countdown again.
    QVERIFY(!model.isCounting());
    QCOMPARE(running(model), QStringLiteral("00:00:02"));
    QCOMPARE(model.startCaption(), QStringLiteral(" Start "));
    QCOMPARE(model.stopCaption(), QStringLiteral(" Stop "));
    model.clickStart();
    QVERIFY(model.isCounting());
}

void TestCountdownModel::tickDuringEndMessageIsIgnored()
{
    CountdownModel model;
    setRunning(model, QStringLiteral("00:00:01"));
    model.clickStart();
    model.tick();
    // The timer keeps running while the modal message is up.
    SetMessageResponderForTesting([&](bool, int number, const QString &) {
        m_messages << number;
        model.tick();
        return 0;
    });
    model.tick();
    QCOMPARE(m_messages, QList<int>{4});
    QCOMPARE(m_sounds.size(), 1);
}

void TestCountdownModel::haltedStartDoesNothing()
{
    CountdownModel model;
    setRunning(model, QStringLiteral("00:05:00"));
    model.clickStart();
    model.tick();
    model.clickStop(); // halt
    QCOMPARE(model.startCaption(), QStringLiteral(" Resume "));
    QCOMPARE(model.stopCaption(), QStringLiteral(" Reset "));

    model.clickStart();
    QVERIFY(!model.isCounting());
    QCOMPARE(model.startCaption(), QStringLiteral(" Resume "));
    QCOMPARE(model.stopCaption(), QStringLiteral(" Reset "));
    model.tick();
    QCOMPARE(running(model), QStringLiteral("00:04:59"));

    // Pausing from the start button halts the same way.
    model.clickStop(); // reset to the set time
    model.clickStart();
    model.clickStart();
    QVERIFY(!model.isCounting());
    QCOMPARE(model.startCaption(), QStringLiteral(" Resume "));
}

void TestCountdownModel::zeroDoesNotStart()
{
    CountdownModel model;
    setRunning(model, QStringLiteral("00:00:00"));
    model.clickStart();
    QVERIFY(!model.isCounting());
    QCOMPARE(model.startCaption(), QStringLiteral(" Start "));
    setRunning(model, QStringLiteral("xx:00:00")); // no number at all counts as zero
    model.clickStart();
    QVERIFY(!model.isCounting());
}

QTEST_GUILESS_MAIN(TestCountdownModel)
#include "test_countdown_model.moc"
