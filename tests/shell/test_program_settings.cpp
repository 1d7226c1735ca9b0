#include "core/platform/autostart.h"
#include "core/settings_store.h"
#include "core/widget_index.h"
#include "shell/program_settings_dialog.h"
#include "shell/program_settings_model.h"
#include "shell/widget_registry.h"
#include "support/test_home.h"
#include "themes/widget_window.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QTabBar>
#include <QTest>

class TestProgramSettings : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void loadsDefaults();
    void loadsStoredValues();
    void okWritesInOrder();
    void intervalCaptions_data();
    void intervalCaptions();
    void tenMinutesIsStoredAsText();
    void launchSwitchAppliesAutostartEntry();
    void defaultSettingsResetChecksOnly();
    void dialogOkStoresTheBoxes();
    void notesShowEveryLine();
    void dialogCancelStoresNothing_data();
    void dialogCancelStoresNothing();
    void defaultSettingsTabResetsBoxesWithoutStoring();
    void keepOnTopReachesOpenWidgets_data();
    void keepOnTopReachesOpenWidgets();
    void enterInEachField_data();
    void enterInEachField();

private:
    static QByteArray storedSettings();
    std::unique_ptr<TestHome> m_home;
};

using Values = ProgramSettingsModel::Values;

void TestProgramSettings::init()
{
    m_home = std::make_unique<TestHome>();
}

void TestProgramSettings::cleanup()
{
    m_home.reset();
}

void TestProgramSettings::loadsDefaults()
{
    const Values v = ProgramSettingsModel::load();
    QCOMPARE(v, Values());
    QVERIFY(v.launchWithSystem);
    QVERIFY(v.minimizeOnClose);
    QVERIFY(!v.minimizeOnStart);
    QCOMPARE(v.timerInterval, QStringLiteral("1 Minute"));
}

void TestProgramSettings::loadsStoredValues()
{
    WriteDetail(QStringLiteral("mdb_SET"), QStringLiteral("Program Minimize on Close"), QStringLiteral("0"));
    WriteDetail(QStringLiteral("mdb_SET"), QStringLiteral("On-Top"), QStringLiteral(" 1 "));
    WriteDetail(QStringLiteral("mdb_WCM"), QStringLiteral("Timer-Interval"), QStringLiteral("30 Minutes"));
    WriteDetail(QStringLiteral("mdb_WCM"), QStringLiteral("Play-Last"), QStringLiteral("junk"));
    const Values v = ProgramSettingsModel::load();
    QVERIFY(!v.minimizeOnClose);
    QVERIFY(v.onTop);
    QCOMPARE(v.timerInterval, QStringLiteral("30 Minutes"));
    QVERIFY(!v.playLast);

    WriteDetail(QStringLiteral("mdb_WCM"), QStringLiteral("Timer-Interval"), QStringLiteral("3 Minutes"));
    QCOMPARE(ProgramSettingsModel::load().timerInterval, QStringLiteral("1 Minute"));
}

void TestProgramSettings::okWritesInOrder()
{
    QStringList writes;
    Values v;
    v.launchWithSystem = false;
    v.onTop = true;
    v.timerInterval = QStringLiteral("5 Minutes");
    ProgramSettingsModel::save(v, [&writes](const QString &window, const QString &name, const QString &data) {
        writes << window + QLatin1Char('\\') + name + QLatin1Char('=') + data;
    });
    const QStringList expected{
        "mdb_SET\\Program Minimize on Close=1",
        "mdb_SET\\Program Minimize on Start=0",
        "mdb_SET\\Window Minimize=0",
        "mdb_SET\\Program Launch=0",
        "mdb_SET\\On-Top=1",
        "mdb_WCM\\Timer-Interval=5 Minutes",
        "mdb_WCM\\Play-Last=0",
        "mdb_WCM\\Cam Play-Last=0", // the copy the viewer reads
    };
    QCOMPARE(writes, expected);
}

void TestProgramSettings::intervalCaptions_data()
{
    QTest::addColumn<QString>("caption");
    QTest::addColumn<int>("seconds");
    QTest::newRow("1") << "1 Minute" << 60;
    QTest::newRow("2") << "2 Minutes" << 120;
    QTest::newRow("5") << "5 Minutes" << 300;
    QTest::newRow("10") << "10 Minutes" << 600;
    QTest::newRow("30") << "30 Minutes" << 1800;
    QTest::newRow("unknown") << "an hour" << 60;
}

void TestProgramSettings::intervalCaptions()
{
    QFETCH(QString, caption);
    QFETCH(int, seconds);
    QCOMPARE(ProgramSettingsModel::intervalSeconds(caption), seconds);
}

void TestProgramSettings::tenMinutesIsStoredAsText()
{
    Values v = ProgramSettingsModel::load();
    v.timerInterval = QStringLiteral("10 Minutes");
    ProgramSettingsModel::save(v);
    QCOMPARE(ReadDetail(QStringLiteral("mdb_WCM"), QStringLiteral("Timer-Interval"), QString()),
             QStringLiteral("10 Minutes"));
    QCOMPARE(ProgramSettingsModel::webcamIntervalSeconds(), 600);
    QCOMPARE(ProgramSettingsModel::load(), v);
}

void TestProgramSettings::launchSwitchAppliesAutostartEntry()
{
    Values v;
    v.launchWithSystem = false;
    ProgramSettingsModel::save(v);
    QFile entry(Autostart::desktopEntryPath());
    QVERIFY(entry.open(QIODevice::ReadOnly));
    QVERIFY(entry.readAll().contains("Hidden=true"));
    entry.close();

    v.launchWithSystem = true;
    ProgramSettingsModel::save(v);
    QVERIFY(entry.open(QIODevice::ReadOnly));
    QVERIFY(entry.readAll().contains("Hidden=false"));
}

void TestProgramSettings::defaultSettingsResetChecksOnly()
{
    Values changed;
    changed.launchWithSystem = false;
    changed.minimizeOnStart = true;
    changed.windowMinimize = true;
    changed.minimizeOnClose = false;
    changed.onTop = true;
    changed.playLast = true;
    changed.timerInterval = QStringLiteral("2 Minutes");

    Values expected;
    expected.timerInterval = QStringLiteral("2 Minutes");
    QCOMPARE(ProgramSettingsModel::withDefaultChecks(changed), expected);
}

// The settings file as the program wrote it.
QByteArray TestProgramSettings::storedSettings()
{
    QFile settings(QString::fromLocal8Bit(qgetenv("VANTORA_HOME")) + QStringLiteral("/settings.reg"));
    return settings.open(QIODevice::ReadOnly) ? settings.readAll() : QByteArray();
}

namespace {
template <typename T> T *control(QWidget &dialog, const char *name)
{
    T *found = dialog.findChild<T *>(QString::fromLatin1(name));
    if (!found)
        qFatal("no control %s", name);
    return found;
}
} // namespace

void TestProgramSettings::dialogOkStoresTheBoxes()
{
    ProgramSettingsDialog dialog;
    QCOMPARE(dialog.objectName(), QStringLiteral("mdb_SET"));
    QCOMPARE(control<QComboBox>(dialog, "cboINTERVAL")->count(), 5);
    control<QCheckBox>(dialog, "chkLAUNCH")->setChecked(false);
    control<QCheckBox>(dialog, "chkMINCLOSE")->setChecked(false);
    control<QComboBox>(dialog, "cboINTERVAL")->setCurrentText(QStringLiteral("10 Minutes"));
    dialog.show();
    control<QAbstractButton>(dialog, "btnOK")->click();

    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    const Values stored = ProgramSettingsModel::load();
    QVERIFY(!stored.launchWithSystem);
    QVERIFY(!stored.minimizeOnClose);
    QCOMPARE(stored.timerInterval, QStringLiteral("10 Minutes"));
    QCOMPARE(ProgramSettingsModel::webcamIntervalSeconds(), 600);
    QFile entry(Autostart::desktopEntryPath());
    QVERIFY(entry.open(QIODevice::ReadOnly));
    QVERIFY(entry.readAll().contains("Hidden=true"));
}

// The notes under the boxes (no notification area here, offscreen) get the height their lines
// need: a word-wrapped note used to lose its last line to a dialog sized for a wider label.
void TestProgramSettings::notesShowEveryLine()
{
    ProgramSettingsDialog dialog;
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest); // the layout settles
    int notes = 0;
    for (const QLabel *label : dialog.findChildren<QLabel *>()) {
        if (!label->isVisible() || !label->objectName().startsWith(QLatin1String("lbl")))
            continue;
        ++notes;
        const int needed = label->hasHeightForWidth() ? label->heightForWidth(label->width())
                                                      : label->sizeHint().height();
        QVERIFY2(label->height() >= needed, qPrintable(QStringLiteral("%1 is %2 px high, its lines need %3")
                                                           .arg(label->objectName())
                                                           .arg(label->height())
                                                           .arg(needed)));
    }
    QVERIFY(notes > 0);
}

void TestProgramSettings::dialogCancelStoresNothing_data()
{
    QTest::addColumn<QString>("closer");
    QTest::newRow("Cancel") << "btnCANCEL";
    QTest::newRow("close button") << "CloseRefresh";
}

void TestProgramSettings::dialogCancelStoresNothing()
{
    QFETCH(QString, closer);
    WriteDetail(QStringLiteral("mdb_SET"), QStringLiteral("On-Top"), QStringLiteral("1"));

    ProgramSettingsDialog dialog;
    QVERIFY(control<QCheckBox>(dialog, "chkONTOP")->isChecked());
    control<QCheckBox>(dialog, "chkONTOP")->setChecked(false);
    control<QCheckBox>(dialog, "chkWINMIN")->setChecked(true);
    control<QComboBox>(dialog, "cboINTERVAL")->setCurrentIndex(4);
    dialog.show();
    QWidget *button = dialog.findChild<QWidget *>(closer);
    QVERIFY(button);
    QTest::mouseClick(button, Qt::LeftButton);

    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    const Values stored = ProgramSettingsModel::load();
    QVERIFY(stored.onTop);
    QVERIFY(!stored.windowMinimize);
    QCOMPARE(stored.timerInterval, QStringLiteral("1 Minute"));
    QVERIFY(!QFile::exists(Autostart::desktopEntryPath()));
    // Only the dialog's own position may have been written.
    QVERIFY(!storedSettings().contains("Timer-Interval"));
    QVERIFY(!storedSettings().contains("Window Minimize"));
}

void TestProgramSettings::defaultSettingsTabResetsBoxesWithoutStoring()
{
    ProgramSettingsDialog dialog;
    for (const char *name :
         {"chkLAUNCH", "chkMINSTART", "chkWINMIN", "chkMINCLOSE", "chkONTOP", "chkPLAYLAST"}) {
        QCheckBox *box = control<QCheckBox>(dialog, name);
        box->setChecked(!box->isChecked());
    }
    control<QComboBox>(dialog, "cboINTERVAL")->setCurrentText(QStringLiteral("5 Minutes"));

    control<QTabBar>(dialog, "pagSETTINGS")->setCurrentIndex(1);

    Values expected;
    expected.timerInterval = QStringLiteral("5 Minutes");
    QCOMPARE(dialog.values(), expected);
    QVERIFY(!storedSettings().contains("Program Launch"));
    // The tab goes back so that it can be chosen again.
    QTRY_COMPARE(control<QTabBar>(dialog, "pagSETTINGS")->currentIndex(), 0);
}

void TestProgramSettings::keepOnTopReachesOpenWidgets_data()
{
    QTest::addColumn<bool>("before");
    QTest::addColumn<bool>("after");
    QTest::newRow("ticked") << false << true;
    QTest::newRow("unticked") << true << false;
}

void TestProgramSettings::keepOnTopReachesOpenWidgets()
{
    QFETCH(bool, before);
    QFETCH(bool, after);
    WriteDetail(QStringLiteral("mdb_SET"), QStringLiteral("On-Top"),
                before ? QStringLiteral("1") : QStringLiteral("0"));
    WidgetRegistry &registry = WidgetRegistry::instance();
    registry.registerWidget(WidgetStopwatch, [] {
        return new WidgetWindow(WidgetWindowName(WidgetStopwatch), WidgetStopwatch,
                                QStringLiteral("Vantora Test"));
    });
    WidgetWindow *widget = registry.open(WidgetStopwatch);
    QVERIFY(widget);
    QCOMPARE(bool(widget->windowFlags() & Qt::WindowStaysOnTopHint), before);

    ProgramSettingsDialog dialog;
    control<QCheckBox>(dialog, "chkONTOP")->setChecked(after);
    dialog.show();
    control<QAbstractButton>(dialog, "btnOK")->click();

    QCOMPARE(bool(widget->windowFlags() & Qt::WindowStaysOnTopHint), after);
    QVERIFY(widget->isVisible());
    registry.closeAll();
}

void TestProgramSettings::enterInEachField_data()
{
    QTest::addColumn<QString>("field");
    QTest::addColumn<bool>("stores"); // else the dialog is cancelled

    // Enter from a box stores what the dialog shows, as OK does, without flipping the box or
    // choosing the "Default Settings" tab; a focused Cancel cancels.
    for (const char *field : {"chkLAUNCH", "chkMINSTART", "chkMINCLOSE", "chkWINMIN", "chkONTOP",
                              "cboINTERVAL", "chkPLAYLAST", "pagSETTINGS", "btnOK"})
        QTest::newRow(field) << QString::fromLatin1(field) << true;
    QTest::newRow("btnCANCEL") << "btnCANCEL" << false;
}

void TestProgramSettings::enterInEachField()
{
    QFETCH(QString, field);
    QFETCH(bool, stores);
    ProgramSettingsDialog dialog;
    control<QCheckBox>(dialog, "chkLAUNCH")->setChecked(false);
    control<QCheckBox>(dialog, "chkONTOP")->setChecked(true);
    control<QComboBox>(dialog, "cboINTERVAL")->setCurrentText(QStringLiteral("5 Minutes"));
    const Values shown = dialog.values();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QWidget *widget = control<QWidget>(dialog, field.toLatin1().constData());
    widget->setFocus();

    QTest::keyClick(widget, Qt::Key_Return);

    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.result(), stores ? int(QDialog::Accepted) : int(QDialog::Rejected));
    QCOMPARE(dialog.values(), shown);
    QCOMPARE(ProgramSettingsModel::load(), stores ? shown : Values());
}

QTEST_MAIN(TestProgramSettings)
#include "test_program_settings.moc"
