#include "core/clickable_label.h"
#include "core/clock_source.h"
#include "core/message_box.h"
#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "support/test_home.h"
#include "time/alarm_dialog.h"
#include "time/alarm_popup.h"
#include "time/alarm_scheduler.h"
#include "time/clock_model.h"
#include "time/clock_widget.h"
#include "time/countdown_widget.h"
#include "time/scheduler_window.h"
#include "time/stopwatch_model.h"
#include "time/stopwatch_widget.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>
#include <memory>

namespace {
const QDate kMonday(2026, 1, 5);

template <typename T> T *child(QObject *parent, const char *name)
{
    T *found = parent->findChild<T *>(QLatin1String(name));
    if (!found)
        qWarning("no child %s", name);
    return found;
}

QString labelText(QObject *parent, const char *name)
{
    return child<QLabel>(parent, name)->text();
}

QWidget *topLevel(const QString &name)
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (w->objectName() == name && w->isVisible())
            return w;
    }
    return nullptr;
}
} // namespace

class TestTimeWindows : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    void init();
    void cleanup();

    void clockShowsTimeAndDate();
    void clockTimeFillsThePanel();
    void clockTimerStopsWhileHidden();
    void stopwatchButtons();
    void countdownSetTimeAndRun();
    void alarmDialogTakesEffectOnSave();
    void alarmDialogRefusesMissingSoundFile();
    void popupEditOpensAlarmSetup();

private:
    std::unique_ptr<TestHome> m_home;
    QStringList m_sounds;
};

void TestTimeWindows::init()
{
    m_home = std::make_unique<TestHome>();
    m_sounds.clear();
    SetSoundRecorderForTesting([this](const QString &sound) { m_sounds << sound; });
    SetMessageResponderForTesting([](bool, int, const QString &) { return 0; });
}

void TestTimeWindows::cleanup()
{
    for (QWidget *w : QApplication::topLevelWidgets())
        w->close();
    ClockSource::clearNowForTesting();
    SetSoundRecorderForTesting(nullptr);
    SetMessageResponderForTesting(nullptr);
    m_home.reset();
}

void TestTimeWindows::clockShowsTimeAndDate()
{
    ClockSource::setNowForTesting(QDateTime(kMonday, QTime(0, 30, 7)));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("date-default"), QStringLiteral("False"));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("date-default-custom"),
                QStringLiteral("\"Day\" d"));
    ClockWidget clock;
    clock.loadWindow();
    clock.show();
    QCOMPARE(clock.objectName(), QStringLiteral("falc_IDX"));
    QCOMPARE(clock.windowTitle(), QStringLiteral("Vantora Alarm Clock"));
    QCOMPARE(labelText(&clock, "lblPANECLOCK"), QStringLiteral("12:30"));
    QCOMPARE(labelText(&clock, "lblSECS"), QStringLiteral("07"));
    QCOMPARE(labelText(&clock, "lblSTYLE"), QStringLiteral("AM"));
    QCOMPARE(labelText(&clock, "lblBARDATE"), QStringLiteral("Day 5"));
    QVERIFY(child<QLabel>(&clock, "lblSECS")->isVisible());

    // Classic style, written as the settings dialog would: shown at the next tick.
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Style-modern"), QStringLiteral("0"));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Style-ampm-show"), QStringLiteral("0"));
    clock.model()->refresh();
    QCOMPARE(labelText(&clock, "lblPANECLOCK"), QStringLiteral("12:30:07 "));
    QVERIFY(!child<QLabel>(&clock, "lblSECS")->isVisible());
    QVERIFY(!child<QLabel>(&clock, "lblSTYLE")->isVisible());
}

void TestTimeWindows::clockTimeFillsThePanel()
{
    ClockSource::setNowForTesting(QDateTime(kMonday, QTime(13, 5, 9)));
    ClockWidget clock;
    clock.loadWindow();
    clock.resize(280, 130);
    clock.show();
    QLabel *time = child<QLabel>(&clock, "lblPANECLOCK");
    QLabel *secs = child<QLabel>(&clock, "lblSECS");
    const QWidget *panel = time->parentWidget();
    const int small = time->font().pixelSize();
    QVERIFY(small > 20);
    QVERIFY(secs->geometry().left() >= time->geometry().right());
    QVERIFY(secs->geometry().right() <= panel->width());

    clock.resize(560, 260);
    const int large = time->font().pixelSize();
    QVERIFY2(large > small * 3 / 2, qPrintable(QStringLiteral("%1 -> %2").arg(small).arg(large)));
    QVERIFY(time->fontMetrics().horizontalAdvance(time->text()) <= panel->width());
    QVERIFY(time->fontMetrics().height() <= panel->height());
    QVERIFY(secs->geometry().right() <= panel->width());
}

void TestTimeWindows::clockTimerStopsWhileHidden()
{
    ClockWidget clock;
    clock.loadWindow();
    QTimer *timer = child<QTimer>(&clock, "tmrCLOCK");
    QCOMPARE(timer->interval(), 55);
    QVERIFY(!timer->isActive());
    clock.show();
    QVERIFY(timer->isActive());
    clock.hide();
    QVERIFY(!timer->isActive());
    QCOMPARE(child<QTimer>(&clock, "tmrBAR")->interval(), 100);
    QVERIFY(!child<QTimer>(&clock, "tmrBAR")->isActive());
}

void TestTimeWindows::stopwatchButtons()
{
    StopwatchWidget watch;
    watch.loadWindow();
    watch.show();
    QCOMPARE(watch.objectName(), QStringLiteral("fstw_IDX"));
    QCOMPARE(watch.windowTitle(), QStringLiteral("Vantora Stopwatch"));
    auto *start = child<ClickableLabel>(&watch, "lblSTART");
    auto *stop = child<ClickableLabel>(&watch, "lblSTOP");
    QTimer *timer = child<QTimer>(&watch, "tmrSTOPWATCH");
    QCOMPARE(start->text(), QStringLiteral(" Start "));
    QCOMPARE(timer->interval(), 100);
    QVERIFY(!timer->isActive());

    start->click();
    QVERIFY(timer->isActive());
    QCOMPARE(start->text(), QStringLiteral(" Pause "));
    QVERIFY(!stop->isActive());
    watch.model()->setText(QStringLiteral("59:59.54"));
    watch.model()->tick();
    QCOMPARE(labelText(&watch, "lblTIME"), QStringLiteral("60:00.00"));
    stop->click(); // switched off while running
    QCOMPARE(labelText(&watch, "lblTIME"), QStringLiteral("60:00.00"));

    start->click();
    QVERIFY(!timer->isActive());
    QCOMPARE(start->text(), QStringLiteral(" Resume "));
    QCOMPARE(stop->text(), QStringLiteral(" Reset "));
    stop->click();
    QCOMPARE(labelText(&watch, "lblTIME"), QStringLiteral("00:00.00"));
    QCOMPARE(stop->text(), QStringLiteral(" Stop "));
}

void TestTimeWindows::countdownSetTimeAndRun()
{
    WriteDetail(QStringLiteral("ftim_IDX"), QStringLiteral("Timer-Interval-mins"), QStringLiteral("00"));
    CountdownWidget timer;
    timer.loadWindow();
    timer.show();
    QCOMPARE(timer.objectName(), QStringLiteral("ftim_IDX"));
    QCOMPARE(timer.windowTitle(), QStringLiteral("Vantora Timer"));
    auto *setMinutes = child<QLineEdit>(&timer, "txtSUBMIN");
    QCOMPARE(setMinutes->text(), QStringLiteral("00"));

    setMinutes->selectAll();
    QTest::keyClicks(setMinutes, QStringLiteral("1"));
    QCOMPARE(ReadDetail(QStringLiteral("ftim_IDX"), QStringLiteral("Timer-Interval-mins"), QString()),
             QStringLiteral("1"));
    emit setMinutes->editingFinished();
    QCOMPARE(setMinutes->text(), QStringLiteral("01"));
    QCOMPARE(ReadDetail(QStringLiteral("ftim_IDX"), QStringLiteral("Timer-Interval-mins"), QString()),
             QStringLiteral("01"));
    QCOMPARE(child<QLineEdit>(&timer, "txtMIN")->text(), QStringLiteral("01"));

    child<ClickableLabel>(&timer, "lblBTNSTART")->click();
    QTimer *tick = child<QTimer>(&timer, "tmrSTARTPLAY");
    QVERIFY(tick->isActive());
    QCOMPARE(tick->interval(), 1000);
    QCOMPARE(child<ClickableLabel>(&timer, "lblBTNSTART")->text(), QStringLiteral(" Pause "));
    timer.model()->tick();
    QCOMPARE(child<QLineEdit>(&timer, "txtMIN")->text(), QStringLiteral("00"));
    QCOMPARE(child<QLineEdit>(&timer, "txtSECS")->text(), QStringLiteral("59"));

    child<ClickableLabel>(&timer, "lblBTNSTOP")->click();
    QVERIFY(!tick->isActive());
    QCOMPARE(child<ClickableLabel>(&timer, "lblBTNSTOP")->text(), QStringLiteral(" Reset "));
}

void TestTimeWindows::alarmDialogTakesEffectOnSave()
{
    SchedulerWindow scheduler;
    QCOMPARE(child<QTimer>(&scheduler, "tmrALARM")->interval(), 100);
    QVERIFY(child<QTimer>(&scheduler, "tmrALARM")->isActive());
    ClockSource::setNowForTesting(QDateTime(kMonday, QTime(7, 15, 0, 200)));

    AlarmDialog *dialog = AlarmDialog::showSingle();
    QCOMPARE(dialog->objectName(), QStringLiteral("falc_ALM"));
    child<QCheckBox>(dialog, "chkSET_0")->setChecked(true);
    child<QComboBox>(dialog, "cboTIME_0")->setCurrentText(QStringLiteral("07:15:00"));
    child<QLineEdit>(dialog, "txtMESSAGE_0")->setText(QStringLiteral("Wake up"));
    QCOMPARE(child<QComboBox>(dialog, "cboTIME_0")->count(), 96);

    scheduler.scheduler()->AlarmRefresh();
    QVERIFY(!scheduler.popup());

    child<QPushButton>(dialog, "btnSAVE")->click();
    QVERIFY(child<QCheckBox>(&scheduler, "chkSET_0")->isChecked());
    QCOMPARE(child<QLineEdit>(&scheduler, "txtMESSAGE_0")->text(), QStringLiteral("Wake up"));
    scheduler.scheduler()->AlarmRefresh();
    QVERIFY(scheduler.popup());
    QVERIFY(scheduler.popup()->isVisible());
    QCOMPARE(scheduler.popup()->objectName(), QStringLiteral("falc_POP"));
    QCOMPARE(labelText(scheduler.popup(), "lablMESSAGE"), QStringLiteral("Wake up"));
    QCOMPARE(m_sounds, QStringList{QStringLiteral("BELL")});

    child<QPushButton>(scheduler.popup(), "btnDISMISS")->click();
    QVERIFY(!scheduler.popup()->isVisible());
}

void TestTimeWindows::alarmDialogRefusesMissingSoundFile()
{
    AlarmDialog *dialog = AlarmDialog::showSingle();
    child<QRadioButton>(dialog, "optOTHER")->setChecked(true);
    child<QLineEdit>(dialog, "txtSOUND")->setText(m_home->filePath(QStringLiteral("missing.wav")));
    child<QCheckBox>(dialog, "chkSET_2")->setChecked(true);
    QVERIFY(!dialog->save());
    QVERIFY(dialog->isVisible());
    QVERIFY(child<QLabel>(dialog, "lblPROBLEM")->isVisible());
    QVERIFY(labelText(dialog, "lblPROBLEM").contains(QStringLiteral("missing.wav")));
    QVERIFY(!AlarmPreset::load(2).armed); // nothing written
    QVERIFY(AlarmScheduler::useBell());

    child<QPushButton>(dialog, "btnTEST")->click();
    QCOMPARE(m_sounds, QStringList{QStringLiteral("BELL")});
}

void TestTimeWindows::popupEditOpensAlarmSetup()
{
    AlarmPopup popup;
    popup.setMessage(QStringLiteral("Tea"));
    popup.show();
    child<QPushButton>(&popup, "btnEDIT")->click();
    QVERIFY(!popup.isVisible());
    QVERIFY(topLevel(QStringLiteral("falc_ALM")));
}

QTEST_MAIN(TestTimeWindows)
#include "test_time_windows.moc"
