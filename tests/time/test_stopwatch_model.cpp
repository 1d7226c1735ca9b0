#include "time/stopwatch_model.h"

#include <QSignalSpy>
#include <QTest>

class TestStopwatchModel : public QObject
{
    Q_OBJECT
private slots:
    void advance_data();
    void advance();
    void tenTicksAreOneSecond();
    void startPauseResumeReset();
    void stopDoesNothingWhileRunning();
};

void TestStopwatchModel::advance_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");
    QTest::newRow("first tick") << "00:00.00"
                                << "00:00.06";
    QTest::newRow("mid fraction") << "00:00.24"
                                  << "00:00.30";
    QTest::newRow("fraction rolls over") << "00:00.54"
                                         << "00:01.00";
    QTest::newRow("into the next minute") << "00:59.54"
                                          << "01:00.00";
    QTest::newRow("past the hour, no hour field") << "59:59.54"
                                                  << "60:00.00";
    QTest::newRow("three-digit minutes") << "99:59.54"
                                         << "100:00.00";
    QTest::newRow("beyond a hundred") << "100:00.00"
                                      << "100:00.06";
}

void TestStopwatchModel::advance()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QCOMPARE(StopwatchModel::advance(before), after);
}

void TestStopwatchModel::tenTicksAreOneSecond()
{
    StopwatchModel model;
    model.clickStart();
    model.tick();
    QCOMPARE(model.text(), QStringLiteral("00:00.06"));
    for (int i = 1; i < 10; ++i)
        model.tick();
    QCOMPARE(model.text(), QStringLiteral("00:01.00"));
}

void TestStopwatchModel::startPauseResumeReset()
{
    StopwatchModel model;
    QSignalSpy running(&model, &StopwatchModel::runningChanged);
    QCOMPARE(model.startCaption(), QStringLiteral(" Start "));
    QCOMPARE(model.stopCaption(), QStringLiteral(" Stop "));

    model.clickStart();
    QVERIFY(model.isRunning());
    QCOMPARE(model.startCaption(), QStringLiteral(" Pause "));
    QVERIFY(!model.stopEnabled());
    model.tick();

    model.clickStart();
    QVERIFY(!model.isRunning());
    QCOMPARE(model.startCaption(), QStringLiteral(" Resume "));
    QCOMPARE(model.stopCaption(), QStringLiteral(" Reset "));
    QVERIFY(model.stopEnabled());
    model.tick(); // a stray tick while paused is not counted
    QCOMPARE(model.text(), QStringLiteral("00:00.06"));

    model.clickStart();
    QVERIFY(model.isRunning());
    model.tick();
    QCOMPARE(model.text(), QStringLiteral("00:00.12"));
    model.clickStart();

    model.clickStop();
    QCOMPARE(model.text(), QStringLiteral("00:00.00"));
    QCOMPARE(model.startCaption(), QStringLiteral(" Start "));
    QCOMPARE(model.stopCaption(), QStringLiteral(" Stop "));
    QCOMPARE(running.count(), 4);
}

void TestStopwatchModel::stopDoesNothingWhileRunning()
{
    StopwatchModel model;
    model.setText(QStringLiteral("00:59.54"));
    model.clickStart();
    model.clickStop();
    QVERIFY(model.isRunning());
    QCOMPARE(model.startCaption(), QStringLiteral(" Pause "));
    model.tick();
    QCOMPARE(model.text(), QStringLiteral("01:00.00"));
}

QTEST_GUILESS_MAIN(TestStopwatchModel)
#include "test_stopwatch_model.moc"
