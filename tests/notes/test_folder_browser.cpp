#include "notes/picture_panel.h"
#include "support/test_home.h"
#include "themes/folder_browser.h"

#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

namespace {
QStringList texts(const QListWidget *list)
{
    QStringList result;
    for (int i = 0; i < list->count(); ++i)
        result << list->item(i)->text();
    return result;
}

void touch(const QString &path, const QByteArray &bytes = "x")
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QListWidgetItem *itemNamed(QListWidget *list, const QString &name)
{
    const QList<QListWidgetItem *> found = list->findItems(name, Qt::MatchExactly);
    return found.isEmpty() ? nullptr : found.first();
}
} // namespace

class TestFolderBrowser : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void listsTheFilesOfItsKind_data();
    void listsTheFilesOfItsKind();
    void foldersGoDownAndUp();
    void activatesOnlyExistingFiles();
    void previewsPictures_data();
    void previewsPictures();
    void followsChangesOnDisk_data();
    void followsChangesOnDisk();

private:
    TestHome m_home;
    QString m_root;
};

void TestFolderBrowser::initTestCase()
{
    m_root = m_home.filePath(QStringLiteral("tree"));
    QVERIFY(QDir().mkpath(m_root + QStringLiteral("/sub")));
    QVERIFY(QDir().mkpath(m_root + QStringLiteral("/Another")));
    for (const char *name : {"e.doc", "a.txt", "B.PNG", "c.jpeg", "d.wmf", "notes.rtf"})
        touch(m_root + QLatin1Char('/') + QLatin1String(name));
    touch(m_root + QStringLiteral("/sub/f.gif"));
}

void TestFolderBrowser::listsTheFilesOfItsKind_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("filesName");
    QTest::addColumn<QString>("drivesName");
    QTest::addColumn<QStringList>("files");

    QTest::newRow("documents") << int(FolderBrowser::Documents) << "flbLIST"
                               << "drvFOLDERS"
                               << QStringList{"a.txt", "B.PNG", "c.jpeg", "d.wmf", "e.doc", "notes.rtf"};
    QTest::newRow("pictures") << int(FolderBrowser::Pictures) << "flbLISTPICS"
                              << "drvPICTURES" << QStringList{"B.PNG", "c.jpeg", "d.wmf"};
}

void TestFolderBrowser::listsTheFilesOfItsKind()
{
    QFETCH(int, kind);
    QFETCH(QString, filesName);
    QFETCH(QString, drivesName);
    QFETCH(QStringList, files);
    FolderBrowser browser{FolderBrowser::Kind(kind)};
    browser.setFolder(m_root);
    QCOMPARE(texts(browser.findChild<QListWidget *>(filesName)), files);
    // The drive shown is the one that holds the folder.
    const QString drive = browser.findChild<QComboBox *>(drivesName)->currentData().toString();
    QVERIFY2(drive == QLatin1String("/") || m_root.startsWith(drive + QLatin1Char('/')), qPrintable(drive));
}

void TestFolderBrowser::foldersGoDownAndUp()
{
    FolderBrowser browser(FolderBrowser::Documents);
    browser.setFolder(m_root);
    auto *folders = browser.findChild<QListWidget *>(QStringLiteral("dirFOLDERS"));
    QCOMPARE(texts(folders), (QStringList{"..", "Another", "sub"}));
    QSignalSpy changed(&browser, &FolderBrowser::folderChanged);

    emit folders->itemActivated(itemNamed(folders, QStringLiteral("sub")));
    QCOMPARE(changed.takeFirst().at(0).toString(), m_root + QStringLiteral("/sub"));
    QCOMPARE(texts(browser.findChild<QListWidget *>(QStringLiteral("flbLIST"))), QStringList{"f.gif"});

    emit folders->itemActivated(itemNamed(folders, QStringLiteral("..")));
    QCOMPARE(changed.takeFirst().at(0).toString(), m_root);
    QCOMPARE(folders->currentItem()->text(), QStringLiteral("sub")); // where we came from
}

void TestFolderBrowser::activatesOnlyExistingFiles()
{
    const QString doomed = m_root + QStringLiteral("/Another/gone.txt");
    touch(doomed);
    FolderBrowser browser(FolderBrowser::Documents);
    browser.setFolder(m_root + QStringLiteral("/Another"));
    auto *files = browser.findChild<QListWidget *>(QStringLiteral("flbLIST"));
    QSignalSpy activated(&browser, &FolderBrowser::fileActivated);
    QVERIFY(QFile::remove(doomed));
    emit files->itemClicked(itemNamed(files, QStringLiteral("gone.txt")));
    QCOMPARE(activated.count(), 0);
    QCOMPARE(files->count(), 0);

    browser.setFolder(m_root);
    emit files->itemClicked(itemNamed(files, QStringLiteral("a.txt")));
    // A double click also clicks twice: the file opens once.
    emit files->itemActivated(itemNamed(files, QStringLiteral("a.txt")));
    emit files->itemClicked(itemNamed(files, QStringLiteral("a.txt")));
    QCOMPARE(activated.count(), 1);
    QCOMPARE(activated.at(0).at(0).toString(), m_root + QStringLiteral("/a.txt"));
}

void TestFolderBrowser::previewsPictures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("insertable");
    QTest::addColumn<QString>("note");

    QTest::newRow("png") << "good.png" << true << "";
    QTest::newRow("damaged") << "bad.jpg" << false << "This picture cannot be read.";
    QTest::newRow("metafile") << "d.wmf" << false
                              << "Metafile pictures (WMF) cannot be shown or inserted here.";
    QTest::newRow("none") << "" << false << "No picture";
}

void TestFolderBrowser::previewsPictures()
{
    QFETCH(QString, name);
    QFETCH(bool, insertable);
    QFETCH(QString, note);
    QImage(40, 20, QImage::Format_RGB32).save(m_root + QStringLiteral("/good.png"));
    touch(m_root + QStringLiteral("/bad.jpg"), "not a picture");
    PicturePanel panel;
    panel.browser()->setFolder(m_root);
    QSignalSpy inserted(&panel, &PicturePanel::insertPicture);
    panel.showPicture(name.isEmpty() ? QString() : m_root + QLatin1Char('/') + name);
    auto *insert = panel.findChild<QPushButton *>(QStringLiteral("btnINSPICTURE"));
    QCOMPARE(insert->isEnabled(), insertable);
    QCOMPARE(panel.previewText(), note);
    insert->click();
    QCOMPARE(inserted.count(), insertable ? 1 : 0);
    if (insertable)
        QCOMPARE(inserted.at(0).at(1).value<QImage>().size(), QSize(40, 20));
}

// The list follows the shown folder without a restart, and only the shown folder.
void TestFolderBrowser::followsChangesOnDisk_data()
{
    QTest::addColumn<QString>("made");    // relative to a fresh shown folder
    QTest::addColumn<QString>("removed"); // one of "old.txt", "keep.txt", or empty
    QTest::addColumn<QStringList>("files");
    QTest::newRow("a saved file appears") << "shopping.rtf" << "" << QStringList{"keep.txt", "old.txt", "shopping.rtf"};
    QTest::newRow("a removed file goes") << "" << "old.txt" << QStringList{"keep.txt"};
    QTest::newRow("a file in a sub-folder is not listed") << "inner/deep.txt" << "" << QStringList{"keep.txt", "old.txt"};
}

void TestFolderBrowser::followsChangesOnDisk()
{
    QFETCH(QString, made);
    QFETCH(QString, removed);
    QFETCH(QStringList, files);
    const QString shown = m_home.filePath(QStringLiteral("watched/") + QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(QDir().mkpath(shown + QStringLiteral("/inner")));
    touch(shown + QStringLiteral("/keep.txt"));
    touch(shown + QStringLiteral("/old.txt"));
    FolderBrowser browser(FolderBrowser::Documents);
    browser.setFolder(shown);
    auto *list = browser.findChild<QListWidget *>(QStringLiteral("flbLIST"));
    QCOMPARE(texts(list), (QStringList{"keep.txt", "old.txt"}));
    if (!made.isEmpty())
        touch(shown + u'/' + made);
    if (!removed.isEmpty())
        QVERIFY(QFile::remove(shown + u'/' + removed));
    // A change in the sub-folder changes nothing here: wait as long as a listing would take.
    if (made.contains(u'/'))
        QTest::qWait(400);
    QTRY_COMPARE(texts(list), files);
}

QTEST_MAIN(TestFolderBrowser)
#include "test_folder_browser.moc"
