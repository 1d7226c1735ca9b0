#include "core/clickable_label.h"
#include "core/clock_source.h"
#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "themes/theme.h"
#include "time/alarm_dialog.h"
#include "time/alarm_popup.h"
#include "time/alarm_preset.h"
#include "time/alarm_scheduler.h"
#include "time/clock_model.h"
#include "time/clock_settings_dialog.h"
#include "time/clock_widget.h"
#include "time/countdown_widget.h"
#include "time/font_fit.h"
#include "time/scheduler_window.h"
#include "time/stopwatch_model.h"
#include "time/stopwatch_widget.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QPointer>
#include <QLabel>
#include <QSignalSpy>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
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
    void fontFitFindsTheLargestSizeInFewLookUps_data();
    void fontFitFindsTheLargestSizeInFewLookUps();
    void clockTimeFillsThePanel();
    void clockTimerStopsWhileHidden();
    void secondsTurnWithinOneTick_data();
    void secondsTurnWithinOneTick();
    void classicTimeIsCentred_data();
    void classicTimeIsCentred();
    void stopwatchButtons();
    void spaceStartsAndPauses_data();
    void spaceStartsAndPauses();
    void enterPressesOnlyTheDefault_data();
    void enterPressesOnlyTheDefault();
    void countdownSetTimeAndRun();
    void countdownDigitsStayInside_data();
    void countdownDigitsStayInside();
    void alarmDialogTakesEffectOnSave();
    void schedulerMirrorsTimesOffTheQuarterHours();
    void alarmDialogRefusesMissingSoundFile();
    void popupEditOpensAlarmSetup();
    void popupShowsTheWholeMessage_data();
    void popupShowsTheWholeMessage();

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

void TestTimeWindows::secondsTurnWithinOneTick_data()
{
    // How far into second 07 the last tick before the turn falls; the next tick, 55 ms later,
    // is in second 08 and must show it.
    QTest::addColumn<int>("lastTickMs");
    QTest::newRow("one tick early") << 946;
    QTest::newRow("just before") << 999;
    QTest::newRow("mid-second") << 960;
}

void TestTimeWindows::secondsTurnWithinOneTick()
{
    QFETCH(int, lastTickMs);
    ClockSource::setNowForTesting(QDateTime(kMonday, QTime(10, 0, 7, lastTickMs)));
    ClockWidget clock;
    clock.loadWindow();
    clock.show();
    QTimer *timer = child<QTimer>(&clock, "tmrCLOCK");
    QSignalSpy ticks(timer, &QTimer::timeout);
    QVERIFY(ticks.wait(1000));
    QCOMPARE(labelText(&clock, "lblSECS"), QStringLiteral("07"));

    ClockSource::advanceForTesting(timer->interval());
    const int before = ticks.count();
    QVERIFY(ticks.wait(1000));
    QCOMPARE(ticks.count(), before + 1);
    QCOMPARE(labelText(&clock, "lblSECS"), QStringLiteral("08"));
}

void TestTimeWindows::classicTimeIsCentred_data()
{
    QTest::addColumn<QString>("secs");
    QTest::addColumn<QString>("ampm");
    QTest::addColumn<QSize>("size");
    QTest::newRow("all, default size") << "1"
                                       << "1" << QSize(370, 150);
    QTest::newRow("hours and minutes, large") << "0"
                                              << "0" << QSize(700, 300);
    QTest::newRow("seconds, small") << "1"
                                    << "0" << QSize(200, 90);
}

// The classic time keeps its trailing blank, yet what shows sits in the middle of the panel.
void TestTimeWindows::classicTimeIsCentred()
{
    QFETCH(QString, secs);
    QFETCH(QString, ampm);
    QFETCH(QSize, size);
    ClockSource::setNowForTesting(QDateTime(kMonday, QTime(13, 5, 9)));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Style-modern"), QStringLiteral("0"));
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Style-secs-show"), secs);
    WriteDetail(QStringLiteral("falc_SET"), QStringLiteral("Style-ampm-show"), ampm);
    ClockWidget clock;
    clock.loadWindow();
    clock.resize(size);
    clock.show();
    QLabel *time = child<QLabel>(&clock, "lblPANECLOCK");
    QVERIFY(time->text().endsWith(QLatin1Char(' ')));
    const QFontMetrics fm(time->font());
    const int full = fm.horizontalAdvance(time->text());
    const int shown = fm.horizontalAdvance(time->text().trimmed());
    const int left = time->x() + (time->width() - full) / 2;
    const int right = time->parentWidget()->width() - (left + shown);
    QVERIFY2(left >= 0 && right >= 0 && qAbs(left - right) <= 3,
             qPrintable(QStringLiteral("%1 | %2").arg(left).arg(right)));
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

void TestTimeWindows::spaceStartsAndPauses_data()
{
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QString>("timerName");
    QTest::newRow("stopwatch") << "fstw_IDX" << "tmrSTOPWATCH";
    QTest::newRow("timer") << "ftim_IDX" << "tmrSTARTPLAY";
}

// Space after a click on the widget, wherever the focus landed, starts and then pauses.
void TestTimeWindows::spaceStartsAndPauses()
{
    QFETCH(QString, widget);
    QFETCH(QString, timerName);
    WriteDetail(QStringLiteral("ftim_IDX"), QStringLiteral("Timer-Interval-mins"), QStringLiteral("01"));
    std::unique_ptr<WidgetWindow> w;
    if (widget == QLatin1String("fstw_IDX"))
        w.reset(new StopwatchWidget);
    else
        w.reset(new CountdownWidget);
    w->setAttribute(Qt::WA_DeleteOnClose, false);
    w->loadWindow();
    w->show();
    w->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(w.get()));
    QTest::mouseClick(w->panel(), Qt::LeftButton, {}, QPoint(10, 10));
    auto *timer = w->findChild<QTimer *>(timerName);
    for (bool running : {true, false}) {
        QWidget *focused = QApplication::focusWidget() ? QApplication::focusWidget() : w.get();
        QTest::keyClick(focused, Qt::Key_Space);
        QCOMPARE(timer->isActive(), running);
        QVERIFY(w->isVisible());
    }
}

void TestTimeWindows::enterPressesOnlyTheDefault_data()
{
    QTest::addColumn<QString>("dialog");
    QTest::newRow("alarms") << "falc_ALM";
    QTest::newRow("clock settings") << "falc_SET";
}

// Enter in any field of a dialog presses its default button (Save) or nothing: never Browse,
// Test or Cancel, whichever comes first in the focus chain.
void TestTimeWindows::enterPressesOnlyTheDefault()
{
    QFETCH(QString, dialog);
    const auto open = [&]() -> QPointer<ThemedDialog> {
        if (dialog == QLatin1String("falc_ALM"))
            return AlarmDialog::showSingle();
        return ClockSettingsDialog::showSingle();
    };
    // A file chooser opened by mistake would wait for a user: note it and close it.
    QStringList choosers;
    QTimer watchdog;
    watchdog.setInterval(50);
    connect(&watchdog, &QTimer::timeout, this, [&] {
        if (auto *chooser = qobject_cast<QFileDialog *>(QApplication::activeModalWidget())) {
            choosers << chooser->windowTitle();
            chooser->reject();
        }
    });
    watchdog.start();

    QStringList fields;
    QPointer<ThemedDialog> d = open();
    for (QWidget *w : d->panel()->findChildren<QWidget *>()) {
        if ((w->focusPolicy() & Qt::TabFocus) && !qobject_cast<QPushButton *>(w) && w->isVisibleTo(d) &&
            !w->objectName().isEmpty())
            fields << w->objectName();
    }
    QVERIFY(fields.size() >= 4);
    for (const QString &name : std::as_const(fields)) {
        if (!d)
            d = open();
        QStringList pressed;
        for (QPushButton *b : d->findChildren<QPushButton *>())
            connect(b, &QPushButton::clicked, this, [&pressed, b] { pressed << b->objectName(); });
        QWidget *field = d->findChild<QWidget *>(name);
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Return);
        QVERIFY2(pressed.isEmpty() || pressed == QStringList{QStringLiteral("btnSAVE")},
                 qPrintable(name + QStringLiteral(": ") + pressed.join(QLatin1Char(','))));
        if (d)
            d->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QCOMPARE(choosers, QStringList());
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

void TestTimeWindows::countdownDigitsStayInside_data()
{
    QTest::addColumn<QString>("font");
    QTest::addColumn<QSize>("size");

    for (const char *font : {"DejaVu Sans", "DejaVu Sans Mono", "DejaVu Serif", "Tahoma"}) {
        const QString name = QLatin1String(font);
        QTest::newRow(qPrintable(name + QStringLiteral(" default"))) << name << QSize(240, 150);
        QTest::newRow(qPrintable(name + QStringLiteral(" small"))) << name << QSize(150, 90);
        QTest::newRow(qPrintable(name + QStringLiteral(" wide"))) << name << QSize(520, 130);
        QTest::newRow(qPrintable(name + QStringLiteral(" tall"))) << name << QSize(200, 320);
    }
}

// The running digits sit inside the panel with room to spare on both sides, whatever the
// theme's font (a monospaced face is much wider) and the window's size, and each field is
// wide enough that its two digits are not scrolled or cut.
void TestTimeWindows::countdownDigitsStayInside()
{
    QFETCH(QString, font);
    QFETCH(QSize, size);
    Theme theme = CurrentTheme();
    theme.PanelFont = font;
    theme.BarFont = font;
    SetCurrentTheme(theme);
    CountdownWidget timer;
    timer.loadWindow();
    timer.resize(size);
    timer.show();
    timer.ThemeElementsUpdate();
    for (const char *name : {"txtHRS", "txtMIN", "txtSECS", "txtSUBHRS", "txtSUBMIN", "txtSUBSECS"}) {
        auto *field = child<QLineEdit>(&timer, name);
        const QRect r = field->geometry();
        const QWidget *panel = field->parentWidget();
        const QString where = QStringLiteral("%1 at %2,%3 %4x%5 in %6x%7")
                                  .arg(QLatin1String(name))
                                  .arg(r.x())
                                  .arg(r.y())
                                  .arg(r.width())
                                  .arg(r.height())
                                  .arg(panel->width())
                                  .arg(panel->height());
        QVERIFY2(r.left() >= 4 && r.right() < panel->width() - 4, qPrintable(where));
        QVERIFY2(r.top() >= 0 && r.bottom() < panel->height(), qPrintable(where));
        // A line edit keeps 2 pixels each side of its text, more with a frame.
        const int frame =
            field->hasFrame() ? 2 * field->style()->pixelMetric(QStyle::PM_DefaultFrameWidth) : 0;
        const int needed = field->fontMetrics().horizontalAdvance(QStringLiteral("00")) + 4 + frame;
        QVERIFY2(needed <= r.width(), qPrintable(where + QStringLiteral(" needs %1").arg(needed)));
    }
    SetCurrentTheme(Theme());
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
    QCOMPARE(child<QComboBox>(&scheduler, "cboTIME_0")->currentText(), QStringLiteral("07:15:00"));
    scheduler.scheduler()->AlarmRefresh();
    QVERIFY(scheduler.popup());
    QVERIFY(scheduler.popup()->isVisible());
    QCOMPARE(scheduler.popup()->objectName(), QStringLiteral("falc_POP"));
    QCOMPARE(labelText(scheduler.popup(), "lablMESSAGE"), QStringLiteral("Wake up"));
    QCOMPARE(m_sounds, QStringList{QStringLiteral("BELL")});

    child<QPushButton>(scheduler.popup(), "btnDISMISS")->click();
    QVERIFY(!scheduler.popup()->isVisible());
}

void TestTimeWindows::schedulerMirrorsTimesOffTheQuarterHours()
{
    AlarmPreset{true, QStringLiteral("07:10:30"), QStringLiteral("Tea")}.save(1);
    SchedulerWindow scheduler;
    QCOMPARE(child<QComboBox>(&scheduler, "cboTIME_0")->currentText(), AlarmPreset().time);
    QCOMPARE(child<QComboBox>(&scheduler, "cboTIME_1")->currentText(), QStringLiteral("07:10:30"));
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

void TestTimeWindows::popupShowsTheWholeMessage_data()
{
    QTest::addColumn<QString>("message");
    QTest::newRow("short") << QStringLiteral("Tea");
    QTest::newRow("one line") << QStringLiteral("Time to stretch your legs and get a cup of tea");
    QTest::newRow("several lines") << QStringLiteral(
        "Leave for the station now: the 17:42 is the last train that connects with the "
        "ferry, and the car park closes at six, so take the bicycle instead of the car.");
    QTest::newRow("no message") << QString();
}

// However long the message, the pop-up grows to show all of it above its buttons, and the
// heading names the alarm's time.
void TestTimeWindows::popupShowsTheWholeMessage()
{
    QFETCH(QString, message);
    SchedulerWindow scheduler;
    WriteDetail(QStringLiteral("falc_ALM"), QStringLiteral("Alarm Preset Use_3"), QStringLiteral("1"));
    WriteDetail(QStringLiteral("falc_ALM"), QStringLiteral("Alarm Preset Time_3"), QStringLiteral("7:45"));
    WriteDetail(QStringLiteral("falc_ALM"), QStringLiteral("Alarm Preset Message_3"), message);
    scheduler.reloadPresets();
    ClockSource::setNowForTesting(QDateTime(kMonday, QTime(7, 45, 0, 300)));
    scheduler.scheduler()->AlarmRefresh();
    AlarmPopup *popup = scheduler.popup();
    QVERIFY(popup && popup->isVisible());
    QCOMPARE(labelText(popup, "lblHEADING"), QStringLiteral("Alarm at 07:45:00"));

    auto *text = child<QLabel>(popup, "lablMESSAGE");
    QCOMPARE(text->text(), message);
    QCOMPARE(text->isVisible(), !message.isEmpty());
    const QWidget *panel = text->parentWidget();
    const QRect buttons = child<QWidget>(popup, "pfrBUTTONS")->geometry();
    if (!message.isEmpty()) {
        QVERIFY(text->height() >= text->heightForWidth(text->width()));
        QVERIFY2(text->geometry().bottom() < buttons.top(),
                 qPrintable(QStringLiteral("%1 %2 %3 popup %4 panel %5")
                                .arg(text->geometry().bottom())
                                .arg(buttons.top())
                                .arg(text->minimumHeight())
                                .arg(popup->height())
                                .arg(panel->height())));
    }
    QVERIFY(panel->rect().contains(buttons));
    for (auto *b : popup->findChildren<QPushButton *>())
        QVERIFY(b->width() >= b->sizeHint().width());
}

void TestTimeWindows::fontFitFindsTheLargestSizeInFewLookUps_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QSize>("room");
    QTest::addColumn<bool>("bold");
    QTest::newRow("clock in a wide panel") << "12:34" << QSize(400, 120) << false;
    QTest::newRow("clock in a tall panel") << "12:34" << QSize(120, 400) << false;
    QTest::newRow("stopwatch, bold") << "00:00:00.0" << QSize(333, 77) << true;
    QTest::newRow("tiny room: the smallest size") << "88:88" << QSize(5, 5) << false;
    QTest::newRow("huge room: the largest size") << "1" << QSize(5000, 5000) << false;
    QTest::newRow("no room") << "12" << QSize(0, 40) << false;
}

// Every size tried is a font looked up and loaded (the clock tried twenty before its first
// frame); the search must still find exactly the largest size that fits.
void TestTimeWindows::fontFitFindsTheLargestSizeInFewLookUps()
{
    QFETCH(QString, text);
    QFETCH(QSize, room);
    QFETCH(bool, bold);
    QFont base = QApplication::font();
    base.setBold(bold);
    QSet<int> tried;
    const auto usage = [&](int px) {
        tried.insert(px);
        const QFontMetricsF fm(FontFit::withPixelSize(base, px));
        return FontFit::usage(fm.horizontalAdvance(text), fm.height(), room.width(), room.height());
    };
    const int found = FontFit::largestPixelSize(usage, 6, 800);
    int expected = 6;
    for (int px = 6; px <= 800; ++px) {
        const QFontMetricsF fm(FontFit::withPixelSize(base, px));
        if (FontFit::usage(fm.horizontalAdvance(text), fm.height(), room.width(), room.height()) <= 1)
            expected = px;
    }
    QCOMPARE(found, expected);
    QVERIFY2(tried.size() <= 6, qPrintable(QStringLiteral("%1 sizes tried").arg(tried.size())));
}

QTEST_MAIN(TestTimeWindows)
#include "test_time_windows.moc"
