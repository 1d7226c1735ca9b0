// Boards on disk: what is saved comes back pixel for pixel, bad files are refused with a
// reason, and a failed save keeps the old file.
#include "core/drawing/drawing_layer.h"
#include "core/drawing/ink_stroke.h"
#include "support/file_size_limit.h"
#include "support/test_home.h"
#include "whiteboard/board_document.h"
#include "whiteboard/board_file.h"
#include "whiteboard/board_folder.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QTest>

namespace {

// A board with ink of every kind on it, so that a format that loses anything shows it.
void drawOn(DrawingLayer &layer)
{
    layer.ensureSize(QSize(320, 200));
    const QList<QPair<InkPen, QList<QPointF>>> strokes = {
        {{InkKind::Pen, QColor(200, 30, 30), 5}, {{10, 10}, {150, 120}, {300, 30}}},
        {{InkKind::Highlighter, QColor(255, 230, 0), 18}, {{20, 150}, {280, 160}}},
        {{InkKind::Eraser, Qt::white, 12}, {{100, 0}, {120, 199}}},
    };
    for (const auto &[pen, points] : strokes) {
        InkStroke stroke(layer, pen, InkShape::Freehand, {points.first(), 1});
        for (const QPointF &p : points.mid(1))
            stroke.moveTo({p, 0.7});
        stroke.finish();
    }
}

QString writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qWarning("cannot write %s", qPrintable(path));
    return path;
}

const QColor kBoard(0x94, 0xA2, 0xCA); // "Slate"

} // namespace

class TestBoardDocument : public QObject
{
    Q_OBJECT
private slots:
    void init() { m_home = std::make_unique<TestHome>(); }
    void cleanup() { m_home.reset(); }
    void savedBoardComesBack_data();
    void savedBoardComesBack();
    void badFilesAreRefusedWithAReason_data();
    void badFilesAreRefusedWithAReason();
    void fullDiskKeepsTheOldBoard();
    void folderListsBoardsAndFindsFreeNames();

private:
    std::unique_ptr<TestHome> m_home;
};

void TestBoardDocument::savedBoardComesBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("savedAs");
    QTest::addColumn<bool>("exact");
    QTest::newRow("png") << "board.png"
                         << "board.png" << true;
    QTest::newRow("bmp") << "board.BMP"
                         << "board.BMP" << true;
    QTest::newRow("jpeg, close") << "board.jpg"
                                 << "board.jpg" << false;
    QTest::newRow("no extension: png") << "board"
                                       << "board.png" << true;
    QTest::newRow("unknown extension: png added") << "board.v1"
                                                  << "board.v1.png" << true;
}

void TestBoardDocument::savedBoardComesBack()
{
    QFETCH(QString, name);
    QFETCH(QString, savedAs);
    QFETCH(bool, exact);
    BoardDocument document;
    document.newBoard(QSize(1, 1));
    drawOn(*document.layer());
    QVERIFY(document.isModified());
    const QImage shown = document.layer()->flattened(kBoard);

    QString error;
    const QString path = BoardFile::withBoardExtension(m_home->filePath(name));
    QVERIFY2(document.save(path, kBoard, &error), qPrintable(error));
    QVERIFY(!document.isModified());
    QCOMPARE(QFileInfo(document.path()).fileName(), savedAs);

    BoardDocument reopened;
    QVERIFY2(reopened.open(path, &error), qPrintable(error));
    QVERIFY(!reopened.isModified());
    // Whatever the board's colour is now, the saved board shows the one it was saved with.
    const QImage back = reopened.layer()->flattened(Qt::black);
    QCOMPARE(back.size(), shown.size());
    if (exact) {
        QCOMPARE(back.convertToFormat(QImage::Format_RGB32), shown);
        return;
    }
    int worst = 0;
    for (int y = 0; y < shown.height(); y += 3)
        for (int x = 0; x < shown.width(); x += 3)
            worst = qMax(worst, qAbs(qGray(back.pixel(x, y)) - qGray(shown.pixel(x, y))));
    QVERIFY2(worst < 60, qPrintable(QString::number(worst)));
}

void TestBoardDocument::badFilesAreRefusedWithAReason_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("bytes"); // null: no file at all
    QTest::addColumn<QString>("reason");
    QTest::newRow("missing") << "gone.png" << QByteArray() << "cannot be found";
    QTest::newRow("not a picture") << "notes.png" << QByteArray("Just some text, not a picture.")
                                   << "damaged";
    QByteArray cut;
    {
        QImage image(200, 200, QImage::Format_RGB32);
        image.fill(Qt::green);
        QBuffer buffer(&cut);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
    }
    QTest::newRow("cut short") << "cut.png" << cut.left(cut.size() / 2) << "damaged";
    QTest::newRow("empty") << "empty.bmp" << QByteArray("") << "damaged";
}

void TestBoardDocument::badFilesAreRefusedWithAReason()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    const QString path = m_home->filePath(name);
    if (!bytes.isNull())
        writeBytes(path, bytes);
    BoardDocument document;
    document.newBoard(QSize(1, 1));
    drawOn(*document.layer());
    const QImage before = document.layer()->image();

    QString error;
    QVERIFY(!document.open(path, &error));
    QVERIFY2(error.contains(reason) && error.contains(name), qPrintable(error));
    QCOMPARE(document.layer()->image(), before); // the board shown is kept
    QVERIFY(document.isModified());
    QVERIFY(document.path().isEmpty());
}

void TestBoardDocument::fullDiskKeepsTheOldBoard()
{
#ifdef Q_OS_UNIX
    BoardDocument document;
    document.newBoard(QSize(1, 1));
    document.layer()->ensureSize(QSize(50, 50));
    const QString path = m_home->filePath(QStringLiteral("full.png"));
    QString error;
    QVERIFY(document.save(path, kBoard, &error));
    const QByteArray old = [&] {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }();
    drawOn(*document.layer()); // larger, and full of ink: more bytes than the old file
    {
        FileSizeLimit full(old.size());
        QVERIFY(full.isActive());
        QVERIFY(!document.save(path, kBoard, &error));
    }
    QVERIFY2(error.contains(QStringLiteral("unchanged")), qPrintable(error));
    QVERIFY(document.isModified());
    QFile f(path);
    QVERIFY(f.open(QIODevice::ReadOnly));
    QCOMPARE(f.readAll(), old);
    QCOMPARE(QDir(m_home->path()).entryList(QDir::Files), QStringList{QStringLiteral("full.png")});
#else
    QSKIP("needs a file size limit");
#endif
}

void TestBoardDocument::folderListsBoardsAndFindsFreeNames()
{
    const QString folder = m_home->filePath(QStringLiteral("boards"));
    BoardFolder boards(folder);
    QCOMPARE(boards.freeName(), QStringLiteral("Board 1.png"));
    QString error;
    QVERIFY(boards.ensureExists(&error));
    QImage picture(10, 10, QImage::Format_RGB32);
    picture.fill(Qt::white);
    for (const QString &name :
         {QStringLiteral("Board 1.png"), QStringLiteral("Board 2.JPG"), QStringLiteral("Board 4.bmp")})
        QVERIFY(picture.save(QDir(folder).filePath(name), BoardFile::formatOf(name).constData()));
    writeBytes(QDir(folder).filePath(QStringLiteral("readme.txt")), "not a board");
    // A name is free only when no kind of board has it.
    QCOMPARE(boards.freeName(), QStringLiteral("Board 3.png"));
    QFile newest(QDir(folder).filePath(QStringLiteral("Board 1.png")));
    QVERIFY(newest.open(QIODevice::ReadWrite));
    QVERIFY(newest.setFileTime(QDateTime::currentDateTime().addDays(1), QFileDevice::FileModificationTime));
    newest.close();
    QStringList names;
    for (const BoardEntry &entry : boards.boards())
        names << entry.name;
    QCOMPARE(names.size(), 3);
    QCOMPARE(names.first(), QStringLiteral("Board 1.png")); // the most recently changed
    QVERIFY(!names.contains(QStringLiteral("readme.txt")));
    QVERIFY(BoardFolder::remove(QDir(folder).filePath(QStringLiteral("Board 4.bmp")), &error));
    QCOMPARE(boards.boards().size(), 2);
}

QTEST_MAIN(TestBoardDocument)
#include "test_board_document.moc"
