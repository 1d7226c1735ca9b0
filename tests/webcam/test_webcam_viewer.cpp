// The viewer window over the session: choosing cameras, what it shows, the user's own cameras
// and the switches it keeps.
#include "core/clock_source.h"
#include "core/settings_store.h"
#include "support/local_http_server.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/theme_colors.h"
#include "themes/theme_presets.h"
#include "webcam/webcam_catalogue.h"
#include "webcam/webcam_session.h"
#include "webcam/webcam_viewer.h"
#include "webcam_test_pictures.h"

#include <QApplication>
#include <QCheckBox>
#include <QDirIterator>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {
constexpr int kWait = 5000;

QListWidgetItem *ItemNamed(QListWidget *list, const QString &name)
{
    const QList<QListWidgetItem *> found = list->findItems(name, Qt::MatchExactly);
    return found.isEmpty() ? nullptr : found.first();
}

// The rows the list shows, without those of a closed group.
QStringList shownNames(const QListWidget *list)
{
    QStringList names;
    for (int i = 0; i < list->count(); ++i) {
        if (!list->item(i)->isHidden())
            names << list->item(i)->text();
    }
    return names;
}
} // namespace

class TestWebcamViewer : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void listsShippedThenOwnCameras();
    void camerasWithoutAddressComeAfterInTheirGroup_data();
    void camerasWithoutAddressComeAfterInTheirGroup();
    void selectedAndGreyedRowsRead_data();
    void selectedAndGreyedRowsRead();
    void clickingACameraShowsItsPicture();
    void creditBelongsToThePictureShown();
    void playLastFetchesOnOpening_data();
    void playLastFetchesOnOpening();
    void oldSnapshotIsMarkedWithItsAge();
    void removingAskedFirst_data();
    void removingAskedFirst();
    void switchesAreKept();

private:
    void addServerCamera(const QString &name, const QByteArray &path)
    {
        WebcamCatalogue catalogue;
        QString error;
        QVERIFY2(catalogue.addOwn(name, m_server->url(QString::fromLatin1(path)).toString(), &error), qPrintable(error));
    }
    QListWidget *list(WebcamViewer &viewer) { return viewer.findChild<QListWidget *>(QStringLiteral("lstWEBCAMS")); }
    QString labelText(WebcamViewer &viewer, const char *name)
    {
        return viewer.findChild<QLabel *>(QString::fromLatin1(name))->text();
    }
    bool pictureShown(WebcamViewer &viewer)
    {
        return !viewer.findChild<QLabel *>(QStringLiteral("imgWEB"))->pixmap().isNull();
    }

    QPalette m_desktop = QApplication::palette();
    std::unique_ptr<TestHome> m_home;
    std::unique_ptr<LocalHttpServer> m_server;
    QStringList m_questions;
    int m_answer = AnswerYes;
};

void TestWebcamViewer::init()
{
    m_home = std::make_unique<TestHome>();
    m_server = std::make_unique<LocalHttpServer>();
    m_server->setBody("/garden.jpg", EncodedPicture(Qt::darkGreen, "JPG", QSize(160, 90)), "image/jpeg");
    m_questions.clear();
    SetMessageResponderForTesting([this](bool question, int, const QString &text) {
        if (question)
            m_questions << text;
        return m_answer;
    });
    WebcamRefreshCounter::setProgramPeriod(60);
}

void TestWebcamViewer::cleanup()
{
    ClockSource::clearNowForTesting();
    SetMessageResponderForTesting({});
    m_server.reset();
    m_home.reset();
}

void TestWebcamViewer::listsShippedThenOwnCameras()
{
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    WebcamViewer viewer;
    const QStringList shown = shownNames(list(viewer));
    QCOMPARE(shown.size(), 19 + 1 + 1);
    QCOMPARE(shown.first(), QStringLiteral("Australia - NSW McLeans Ridges (country)"));
    QCOMPARE(shown.at(19), QStringLiteral("Garden"));
    QCOMPARE(shown.last(), QStringLiteral("\u25B8 Cameras without an address (31)"));
    // Opening shows the last camera chosen without fetching it.
    QCOMPARE(list(viewer)->currentItem()->text(), QStringLiteral("Austria - Salzburg (mtns)"));
    QVERIFY(!viewer.session()->isBusy());
    QVERIFY(labelText(viewer, "imgWEB").contains(QLatin1String("Choose a camera")));
    QVERIFY(!viewer.findChild<QPushButton *>(QStringLiteral("btnREMOVE"))->isEnabled());
    list(viewer)->setCurrentItem(ItemNamed(list(viewer), QStringLiteral("Garden")));
    QVERIFY(viewer.findChild<QPushButton *>(QStringLiteral("btnREMOVE"))->isEnabled());
    list(viewer)->setCurrentRow(20);
    QVERIFY(!viewer.findChild<QPushButton *>(QStringLiteral("btnREMOVE"))->isEnabled());
}

void TestWebcamViewer::camerasWithoutAddressComeAfterInTheirGroup_data()
{
    QTest::addColumn<int>("openKey");
    QTest::addColumn<int>("closeKey");
    QTest::newRow("Enter, Enter") << int(Qt::Key_Return) << int(Qt::Key_Return);
    QTest::newRow("Right, Left") << int(Qt::Key_Right) << int(Qt::Key_Left);
    QTest::newRow("Space, Space") << int(Qt::Key_Space) << int(Qt::Key_Space);
    QTest::newRow("click, Left") << 0 << int(Qt::Key_Left);
}

void TestWebcamViewer::camerasWithoutAddressComeAfterInTheirGroup()
{
    QFETCH(int, openKey);
    QFETCH(int, closeKey);
    WebcamViewer viewer;
    viewer.show();
    QListWidget *cameras = list(viewer);
    const int groupRow = cameras->count() - 32;
    const WebcamCatalogue catalogue;
    for (const WebcamCamera &camera : catalogue.cameras()) {
        const int row = cameras->row(ItemNamed(cameras, camera.name));
        QVERIFY2(row >= 0, qPrintable(camera.name));
        QVERIFY2((row > groupRow) == camera.address.isEmpty(), qPrintable(camera.name));
        QCOMPARE(cameras->item(row)->isHidden(), camera.address.isEmpty());
    }

    // The arrow keys reach the group row from the last working camera, and End from anywhere.
    cameras->setFocus();
    cameras->setCurrentRow(groupRow - 1);
    QTest::keyClick(cameras, Qt::Key_Down);
    QCOMPARE(cameras->currentRow(), groupRow);
    QTest::keyClick(cameras, Qt::Key_Home);
    QCOMPARE(cameras->currentRow(), 0);
    QTest::keyClick(cameras, Qt::Key_End);
    QCOMPARE(cameras->currentRow(), groupRow);
    if (openKey)
        QTest::keyClick(cameras, Qt::Key(openKey));
    else
        QTest::mouseClick(cameras->viewport(), Qt::LeftButton, {},
                          cameras->visualItemRect(cameras->currentItem()).center());
    QCOMPARE(cameras->item(groupRow)->text(), QStringLiteral("\u25BE Cameras without an address (31)"));
    QTest::keyClick(cameras, Qt::Key_Down);
    QCOMPARE(cameras->currentItem()->text(), QStringLiteral("Australia - SA Adelaide (city)"));
    QTest::keyClick(cameras, Qt::Key_Return);
    QVERIFY(labelText(viewer, "lblNOTICE").contains(QLatin1String("No picture address is known")));

    // Closing from the group row hides its cameras again.
    QTest::keyClick(cameras, Qt::Key_Up);
    QTest::keyClick(cameras, Qt::Key(closeKey));
    QVERIFY(cameras->item(groupRow + 1)->isHidden());
    QCOMPARE(shownNames(cameras).size(), groupRow + 1);
}

void TestWebcamViewer::selectedAndGreyedRowsRead_data()
{
    // Highlight and highlighted text as a desktop may give them: the second pair reads
    // poorly (white on mid blue), the third would with white forced on it.
    QTest::addColumn<QString>("preset");
    QTest::addColumn<QColor>("highlight");
    QTest::addColumn<QColor>("highlightedText");
    const QList<QPair<QColor, QColor>> pairs{{QColor(0x00, 0x33, 0x99), Qt::white},
                                             {QColor(0x30, 0x8c, 0xc6), Qt::white},
                                             {QColor(0xff, 0xe0, 0x80), Qt::white}};
    QDirIterator it(QStringLiteral(":/themes"), {QStringLiteral("*.dcp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        for (const auto &[highlight, text] : pairs)
            QTest::addRow("%s on %s", qPrintable(path.mid(9)), qPrintable(highlight.name()))
                << path << highlight << text;
    }
}

// Text of a selected row must read on the selection colour actually painted, and the greyed
// cameras without an address on the list's background, whatever the theme and the desktop.
void TestWebcamViewer::selectedAndGreyedRowsRead()
{
    QFETCH(QString, preset);
    QFETCH(QColor, highlight);
    QFETCH(QColor, highlightedText);
    QPalette desktop = QApplication::palette();
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        desktop.setColor(group, QPalette::Highlight, highlight);
        desktop.setColor(group, QPalette::HighlightedText, highlightedText);
    }
    QApplication::setPalette(desktop);
    SetCurrentTheme(ReadPreset(preset, Theme()));
    WebcamViewer viewer;
    viewer.show();
    QListWidget *cameras = list(viewer);
    cameras->setCurrentRow(2);
    const QRect row = cameras->visualItemRect(cameras->currentItem());
    const QImage painted = cameras->viewport()->grab().toImage();
    for (QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        const QColor text = cameras->palette().color(group, QPalette::HighlightedText);
        const double onPalette = ContrastRatio(text, cameras->palette().color(group, QPalette::Highlight));
        QVERIFY2(onPalette >= 4.5, qPrintable(QString::number(onPalette)));
    }
    // Past the end of the name, the row shows nothing but the selection.
    const QColor selection = painted.pixelColor(row.right() - 3, row.center().y());
    const QColor text = cameras->palette().color(QPalette::HighlightedText);
    QVERIFY2(ContrastRatio(text, selection) >= 4.5,
             qPrintable(text.name() + QStringLiteral(" on ") + selection.name()));

    const QColor base = cameras->palette().color(QPalette::Base);
    for (int i = cameras->count() - 31; i < cameras->count(); ++i) {
        const QColor greyed = cameras->item(i)->foreground().color();
        QCOMPARE(greyed.alpha(), 255); // a see-through grey would be paler than it says
        QVERIFY2(ContrastRatio(greyed, base) >= 4.5, qPrintable(cameras->item(i)->text()));
    }
    QApplication::setPalette(m_desktop);
    SetCurrentTheme(Theme());
}

void TestWebcamViewer::clickingACameraShowsItsPicture()
{
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    WebcamViewer viewer;
    viewer.show();
    QListWidgetItem *garden = ItemNamed(list(viewer), QStringLiteral("Garden"));
    list(viewer)->scrollToItem(garden);
    QTest::mouseClick(list(viewer)->viewport(), Qt::LeftButton, {}, list(viewer)->visualItemRect(garden).center());
    QVERIFY(labelText(viewer, "lblSTATUS").startsWith(QLatin1String("Fetching Garden")));
    QTRY_VERIFY_WITH_TIMEOUT(pictureShown(viewer), kWait);
    QVERIFY(labelText(viewer, "lblSTATUS").startsWith(QLatin1String("Garden\nSnapshot of ")));
    QVERIFY(labelText(viewer, "lblNOTICE").isEmpty());
    QVERIFY(labelText(viewer, "lblCREDIT").isEmpty()); // own cameras have no operator credit
    QCOMPARE(m_server->requestCount("/garden.jpg"), 1);

    // Enter presses Refresh, which fetches the chosen camera again.
    QTest::keyClick(list(viewer), Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(m_server->requestCount("/garden.jpg"), 2, kWait);
}

void TestWebcamViewer::creditBelongsToThePictureShown()
{
    WebcamViewer viewer;
    viewer.show();
    // A camera with an operator's credit, as the shipped ones have, served locally.
    WebcamCamera munich = *WebcamCatalogue().find(QStringLiteral("Germany - Munich (city)"));
    munich.address = m_server->url(QStringLiteral("/garden.jpg")).toString();
    viewer.session()->chooseCamera(munich);
    QTRY_VERIFY_WITH_TIMEOUT(pictureShown(viewer), kWait);
    const QString credit = labelText(viewer, "lblCREDIT");
    QVERIFY2(credit.contains(QLatin1String("href=\"https://www.foto-webcam.eu/webcam/muenchen/\"")), qPrintable(credit));
    QVERIFY(credit.contains(QLatin1String(">Picture: foto-webcam.eu<")));

    // No test reaches the internet: the real address fails at once and says so. The picture
    // and its credit stay.
    list(viewer)->setCurrentItem(ItemNamed(list(viewer), QStringLiteral("Austria - Wien (city)")));
    QTest::keyClick(list(viewer), Qt::Key_Return);
    QTRY_COMPARE_WITH_TIMEOUT(labelText(viewer, "lblNOTICE"), QStringLiteral("Error in accessing the site."), kWait);
    QCOMPARE(labelText(viewer, "lblCREDIT"), credit);
    QVERIFY(labelText(viewer, "lblSTATUS").startsWith(QLatin1String("Germany - Munich (city)\n")));

    list(viewer)->setCurrentItem(ItemNamed(list(viewer), QStringLiteral("Italy - Nervi (port)")));
    QTest::keyClick(list(viewer), Qt::Key_Return);
    QVERIFY(labelText(viewer, "lblNOTICE").contains(QLatin1String("No picture address is known")));
    QCOMPARE(labelText(viewer, "lblCREDIT"), credit);
}

void TestWebcamViewer::playLastFetchesOnOpening_data()
{
    QTest::addColumn<QString>("playLast");
    QTest::addColumn<int>("fetches");
    QTest::newRow("1") << "1" << 1;
    QTest::newRow("0") << "0" << 0;
    QTest::newRow("True is not 1") << "True" << 0;
}

void TestWebcamViewer::playLastFetchesOnOpening()
{
    QFETCH(QString, playLast);
    QFETCH(int, fetches);
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Location webcam"), QStringLiteral("Garden"));
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Play-Last"), playLast);
    WebcamViewer viewer;
    QCOMPARE(list(viewer)->currentItem()->text(), QStringLiteral("Garden"));
    QCOMPARE(viewer.session()->isBusy(), fetches == 1);
    if (fetches == 1)
        QTRY_VERIFY_WITH_TIMEOUT(!viewer.session()->picture().isNull(), kWait);
    QCOMPARE(m_server->requestCount("/garden.jpg"), fetches);
}

void TestWebcamViewer::oldSnapshotIsMarkedWithItsAge()
{
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Location webcam"), QStringLiteral("Garden"));
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Play-Last"), QStringLiteral("1"));
    {
        WebcamViewer first;
        QTRY_VERIFY_WITH_TIMEOUT(!first.session()->picture().isNull(), kWait);
    }
    WriteDetail(WebcamSession::WindowName, QStringLiteral("Cam Play-Last"), QStringLiteral("0"));
    ClockSource::setNowForTesting(QDateTime::currentDateTime().addSecs(2 * 3600 + 60));
    WebcamViewer later;
    later.show();
    QVERIFY(pictureShown(later));
    QCOMPARE(labelText(later, "lblSTATUS"), QStringLiteral("Garden\nSnapshot from 2 hours ago"));
}

void TestWebcamViewer::removingAskedFirst_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("countAfter");
    QTest::newRow("cancelled") << int(AnswerNo) << 51;
    QTest::newRow("confirmed") << int(AnswerYes) << 50;
}

void TestWebcamViewer::removingAskedFirst()
{
    QFETCH(int, answer);
    QFETCH(int, countAfter);
    addServerCamera(QStringLiteral("Garden"), "/garden.jpg");
    m_answer = answer;
    WebcamViewer viewer;
    list(viewer)->setCurrentItem(ItemNamed(list(viewer), QStringLiteral("Garden")));
    viewer.findChild<QPushButton *>(QStringLiteral("btnREMOVE"))->click();
    QCOMPARE(m_questions.size(), 1);
    QVERIFY(m_questions.first().contains(QLatin1String("Garden")));
    QCOMPARE(list(viewer)->count(), countAfter + 1); // and the row of the group
    QCOMPARE(WebcamCatalogue().cameras().size(), countAfter);
}

void TestWebcamViewer::switchesAreKept()
{
    {
        WebcamViewer viewer;
        viewer.show();
        viewer.findChild<QCheckBox *>(QStringLiteral("chkREFRESH"))->setChecked(true);
        QVERIFY(viewer.session()->autoRefresh());
        viewer.findChild<QCheckBox *>(QStringLiteral("chkFOLLOW"))->setChecked(true);
        viewer.hide();
    }
    WebcamViewer again;
    QVERIFY(again.findChild<QCheckBox *>(QStringLiteral("chkREFRESH"))->isChecked());
    QVERIFY(again.session()->autoRefresh());
    QVERIFY(again.findChild<QCheckBox *>(QStringLiteral("chkFOLLOW"))->isChecked());
}

QTEST_MAIN(TestWebcamViewer)
#include "test_webcam_viewer.moc"
