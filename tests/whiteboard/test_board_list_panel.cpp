#include "support/test_home.h"
#include "whiteboard/board_list_panel.h"
#include "whiteboard/board_thumbnails.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace {

const QDateTime kNow(QDate(2024, 3, 1), QTime(12, 0));

void setAge(const QString &path, int minutes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(kNow.addSecs(-60 * minutes), QFileDevice::FileModificationTime));
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

// A board picture in the format of the name's extension, changed `minutes` ago.
void makeBoard(const QString &path, const QSize &size, int minutes)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    QVERIFY(picture.save(path));
    setAge(path, minutes);
}

QStringList names(const QListWidget *list)
{
    QStringList result;
    for (int i = 0; i < list->count(); ++i)
        result << list->item(i)->text();
    return result;
}

int iconCount(const QListWidget *list)
{
    int count = 0;
    for (int i = 0; i < list->count(); ++i)
        count += list->item(i)->icon().isNull() ? 0 : 1;
    return count;
}

// The size of the part of an item's icon that is not see-through: the thumbnail with its border.
QSize paintedSize(const QListWidgetItem *item, const QSize &box)
{
    const QImage image = item->icon().pixmap(box).toImage();
    QRect painted;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) > 0)
                painted |= QRect(x, y, 1, 1);
        }
    }
    return painted.size();
}

// Whether a thumbnail drawn `painted` with its border has the shape of a board of `size`.
bool hasShape(const QSize &painted, const QSize &size)
{
    const double shown = double(painted.width() - 2) / (painted.height() - 2);
    const double wanted = double(size.width()) / size.height();
    return qAbs(shown - wanted) < 0.05 * wanted;
}

QListWidgetItem *itemNamed(QListWidget *list, const QString &name)
{
    const QList<QListWidgetItem *> found = list->findItems(name, Qt::MatchExactly);
    return found.isEmpty() ? nullptr : found.first();
}

} // namespace

class TestBoardListPanel : public QObject
{
    Q_OBJECT
private slots:
    void init();

    void listsBoardsNewestFirst_data();
    void listsBoardsNewestFirst();
    void thumbnailsArriveKeepingShape();
    void requestsOpenAndDelete_data();
    void requestsOpenAndDelete();
    void refreshKeepsSelection_data();
    void refreshKeepsSelection();
    void readsOnlyChangedFiles_data();
    void readsOnlyChangedFiles();
    void thumbnailFitsBoxAtPixelRatio_data();
    void thumbnailFitsBoxAtPixelRatio();

private:
    QString board(const QString &name) const { return m_folder + QLatin1Char('/') + name; }
    // The panel on m_folder, shown, with every thumbnail read.
    void showLoaded(BoardListPanel &panel);

    TestHome m_home;
    QString m_folder;
    int m_folders = 0;
};

void TestBoardListPanel::init()
{
    m_folder = m_home.filePath(QStringLiteral("Boards %1").arg(++m_folders));
    QVERIFY(QDir().mkpath(m_folder));
}

void TestBoardListPanel::showLoaded(BoardListPanel &panel)
{
    panel.setFolder(m_folder);
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    const auto *list = panel.findChild<QListWidget *>(QStringLiteral("lstBOARDS"));
    QTRY_VERIFY(iconCount(list) == list->count());
}

void TestBoardListPanel::listsBoardsNewestFirst_data()
{
    QTest::addColumn<QStringList>("files"); // name:minutes ago
    QTest::addColumn<bool>("folderExists");
    QTest::addColumn<QStringList>("listed");

    QTest::newRow("newest first") << QStringList{"old.png:30", "new.jpg:1", "mid.bmp:10", "upper.JPEG:20"}
                                  << true << QStringList{"new.jpg", "mid.bmp", "upper.JPEG", "old.png"};
    QTest::newRow("other files left out")
        << QStringList{"a.png:5", "notes.txt:1", "a.png.bak:2", "pic.gif:3"} << true << QStringList{"a.png"};
    QTest::newRow("empty folder") << QStringList{"readme.txt:1"} << true << QStringList{};
    QTest::newRow("missing folder") << QStringList{} << false << QStringList{};
}

void TestBoardListPanel::listsBoardsNewestFirst()
{
    QFETCH(QStringList, files);
    QFETCH(bool, folderExists);
    QFETCH(QStringList, listed);
    for (const QString &file : files) {
        const QString path = board(file.section(QLatin1Char(':'), 0, 0));
        writeBytes(path, "not looked at until the list shows");
        setAge(path, file.section(QLatin1Char(':'), 1).toInt());
    }
    if (!folderExists)
        QVERIFY(QDir(m_folder).removeRecursively());
    BoardListPanel panel;
    panel.setFolder(m_folder);
    auto *list = panel.findChild<QListWidget *>(QStringLiteral("lstBOARDS"));
    QCOMPARE(names(list), listed);
    QCOMPARE(list->isVisibleTo(&panel), !listed.isEmpty());
    QCOMPARE(panel.findChild<QLabel *>(QStringLiteral("lblNOBOARDS"))->isVisibleTo(&panel), listed.isEmpty());
}

void TestBoardListPanel::thumbnailsArriveKeepingShape()
{
    makeBoard(board(QStringLiteral("wide.png")), QSize(400, 100), 1);
    makeBoard(board(QStringLiteral("tall.jpg")), QSize(90, 360), 2);
    makeBoard(board(QStringLiteral("tiny.bmp")), QSize(12, 8), 3);
    QByteArray noise(3000, Qt::Uninitialized);
    for (int i = 0; i < noise.size(); ++i)
        noise[i] = char((i * 7919 + 13) % 251);
    writeBytes(board(QStringLiteral("noise.png")), noise);
    setAge(board(QStringLiteral("noise.png")), 4);
    QFile wide(board(QStringLiteral("wide.png")));
    QVERIFY(wide.open(QIODevice::ReadOnly));
    writeBytes(board(QStringLiteral("cut.png")), wide.read(wide.size() / 2));
    setAge(board(QStringLiteral("cut.png")), 5);

    BoardListPanel panel;
    panel.setFolder(m_folder);
    auto *list = panel.findChild<QListWidget *>(QStringLiteral("lstBOARDS"));
    // Nothing is read while the list is being filled.
    QCOMPARE(iconCount(list), 0);
    QCOMPARE(panel.findChild<BoardThumbnails *>()->thumbnailsRead(), 0);
    QTRY_VERIFY(iconCount(list) == list->count());

    // Large boards fill the box one way and keep their shape; small ones keep their size.
    const QSize box = list->iconSize();
    QCOMPARE(paintedSize(list->item(0), box).width(), box.width());
    QVERIFY(hasShape(paintedSize(list->item(0), box), QSize(400, 100)));
    QCOMPARE(paintedSize(list->item(1), box).height(), box.height());
    QVERIFY(hasShape(paintedSize(list->item(1), box), QSize(90, 360)));
    QCOMPARE(paintedSize(list->item(2), box), QSize(12, 8) + QSize(2, 2));
    QVERIFY(list->item(0)->toolTip().contains(QStringLiteral("400 \u00d7 100 pixels")));
    // Damaged boards are listed with a placeholder that fills the box, and say why.
    for (int row : {3, 4}) {
        QCOMPARE(paintedSize(list->item(row), box), box);
        QVERIFY(list->item(row)->toolTip().contains(QLatin1String("cannot be read as a picture")));
    }
}

void TestBoardListPanel::requestsOpenAndDelete_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("opens");

    QTest::newRow("Return") << "Return" << true;
    QTest::newRow("Enter") << "Enter" << true;
    QTest::newRow("double click") << "double click" << true;
    QTest::newRow("menu Open") << "&Open" << true;
    QTest::newRow("Delete") << "Delete" << false;
    QTest::newRow("menu Delete") << "&Delete..." << false;
}

void TestBoardListPanel::requestsOpenAndDelete()
{
    QFETCH(QString, how);
    QFETCH(bool, opens);
    for (int minutes : {1, 2, 3})
        makeBoard(board(QStringLiteral("Board %1.png").arg(minutes)), QSize(64, 48), minutes);
    BoardListPanel panel;
    showLoaded(panel);
    auto *list = panel.findChild<QListWidget *>(QStringLiteral("lstBOARDS"));
    list->setFocus();
    QListWidgetItem *item = list->item(1);
    const QPoint centre = list->visualItemRect(item).center();
    QSignalSpy opened(&panel, &BoardListPanel::openRequested);
    QSignalSpy deleted(&panel, &BoardListPanel::deleteRequested);

    if (how.startsWith(QLatin1Char('&'))) {
        QTimer::singleShot(0, this, [how] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QVERIFY(menu);
            for (QAction *action : menu->actions()) {
                if (action->text().section(QLatin1Char('\t'), 0, 0) == how)
                    menu->setActiveAction(action);
            }
            QTest::keyClick(menu, Qt::Key_Return);
        });
        QContextMenuEvent event(QContextMenuEvent::Mouse, centre, list->viewport()->mapToGlobal(centre));
        QApplication::sendEvent(list->viewport(), &event);
    } else if (how == QLatin1String("double click")) {
        // As a mouse does it: the first click, then the second press, seen as a double click.
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, centre);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, centre);
    } else {
        list->setCurrentItem(item);
        const QHash<QString, Qt::Key> keys{
            {"Return", Qt::Key_Return}, {"Enter", Qt::Key_Enter}, {"Delete", Qt::Key_Delete}};
        QTest::keyClick(list, keys.value(how),
                        how == QLatin1String("Enter") ? Qt::KeypadModifier : Qt::NoModifier);
    }
    QCOMPARE(opened.count(), opens ? 1 : 0);
    QCOMPARE(deleted.count(), opens ? 0 : 1);
    QCOMPARE((opens ? opened : deleted).at(0).at(0).toString(), board(QStringLiteral("Board 2.png")));
}

void TestBoardListPanel::refreshKeepsSelection_data()
{
    QTest::addColumn<QString>("selected");
    QTest::addColumn<QString>("removed");
    QTest::addColumn<QStringList>("listed");
    QTest::addColumn<QString>("selectedAfter");

    QTest::newRow("another board deleted") << "b.png"
                                           << "c.png" << QStringList{"a.png", "b.png"} << "b.png";
    QTest::newRow("selected board deleted") << "b.png"
                                            << "b.png" << QStringList{"a.png", "c.png"} << "c.png";
    QTest::newRow("last board deleted") << "c.png"
                                        << "c.png" << QStringList{"a.png", "b.png"} << "b.png";
    QTest::newRow("nothing selected") << ""
                                      << "a.png" << QStringList{"b.png", "c.png"} << "";
}

void TestBoardListPanel::refreshKeepsSelection()
{
    QFETCH(QString, selected);
    QFETCH(QString, removed);
    QFETCH(QStringList, listed);
    QFETCH(QString, selectedAfter);
    const QStringList all{"a.png", "b.png", "c.png"};
    for (int i = 0; i < all.size(); ++i)
        makeBoard(board(all[i]), QSize(20, 20), i + 1);
    BoardListPanel panel;
    panel.setFolder(m_folder);
    auto *list = panel.findChild<QListWidget *>(QStringLiteral("lstBOARDS"));
    if (!selected.isEmpty())
        list->setCurrentItem(itemNamed(list, selected));
    QCOMPARE(panel.selectedBoard(), selected.isEmpty() ? QString() : board(selected));

    QVERIFY(QFile::remove(board(removed)));
    panel.refresh();
    QCOMPARE(names(list), listed);
    QCOMPARE(panel.selectedBoard(), selectedAfter.isEmpty() ? QString() : board(selectedAfter));
}

void TestBoardListPanel::readsOnlyChangedFiles_data()
{
    QTest::addColumn<QString>("change");
    QTest::addColumn<int>("readAgain");

    QTest::newRow("nothing changed") << "none" << 0;
    QTest::newRow("saved again, same size") << "touched" << 1;
    QTest::newRow("same time, other size") << "resized" << 1;
    QTest::newRow("board added") << "added" << 1;
    QTest::newRow("board deleted") << "deleted" << 0;
}

void TestBoardListPanel::readsOnlyChangedFiles()
{
    QFETCH(QString, change);
    QFETCH(int, readAgain);
    for (int minutes : {1, 2, 3})
        makeBoard(board(QStringLiteral("%1.png").arg(minutes)), QSize(50, 40), minutes);
    BoardListPanel panel;
    showLoaded(panel);
    auto *thumbnails = panel.findChild<BoardThumbnails *>();
    QCOMPARE(thumbnails->thumbnailsRead(), 3);

    if (change == QLatin1String("touched"))
        setAge(board(QStringLiteral("2.png")), 0);
    else if (change == QLatin1String("resized"))
        makeBoard(board(QStringLiteral("2.png")), QSize(500, 400), 2);
    else if (change == QLatin1String("added"))
        makeBoard(board(QStringLiteral("new.png")), QSize(10, 10), 0);
    else if (change == QLatin1String("deleted"))
        QVERIFY(QFile::remove(board(QStringLiteral("2.png"))));
    panel.refresh();
    auto *list = panel.findChild<QListWidget *>(QStringLiteral("lstBOARDS"));
    // Unchanged boards keep their thumbnails straight away.
    QCOMPARE(iconCount(list), list->count() - readAgain);
    QTRY_VERIFY(iconCount(list) == list->count());
    QTest::qWait(20);
    QCOMPARE(thumbnails->thumbnailsRead(), 3 + readAgain);
}

void TestBoardListPanel::thumbnailFitsBoxAtPixelRatio_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QSize>("thumbnail"); // in device pixels

    QTest::newRow("wide png") << "wide.png" << QSize(400, 100) << 1.0 << QSize(60, 15);
    QTest::newRow("wide png, HiDPI") << "wide.png" << QSize(400, 100) << 2.0 << QSize(120, 30);
    QTest::newRow("tall jpg, 150%") << "tall.jpg" << QSize(100, 400) << 1.5 << QSize(15, 60);
    QTest::newRow("large jpg, read scaled") << "photo.jpg" << QSize(1600, 1200) << 1.0 << QSize(53, 40);
    QTest::newRow("small bmp at its own size") << "small.bmp" << QSize(30, 20) << 2.0 << QSize(60, 40);
}

void TestBoardListPanel::thumbnailFitsBoxAtPixelRatio()
{
    QFETCH(QString, name);
    QFETCH(QSize, size);
    QFETCH(double, ratio);
    QFETCH(QSize, thumbnail);
    makeBoard(board(name), size, 1);
    BoardThumbnails thumbnails;
    thumbnails.setBox(QSize(60, 40), ratio);
    thumbnails.load({board(name)});
    QTRY_VERIFY(thumbnails.find(board(name)));
    const BoardThumbnail *read = thumbnails.find(board(name));
    QCOMPARE(read->image.size(), thumbnail);
    QCOMPARE(read->image.devicePixelRatio(), ratio);
    QCOMPARE(read->pictureSize, size);
}

QTEST_MAIN(TestBoardListPanel)
#include "test_board_list_panel.moc"
