// The whiteboard window's board rules: saving into the board folder, the questions before a
// changed board is replaced, closed or deleted, and what comes back when it opens again.
#include "core/drawing/drawing_area.h"
#include "core/drawing/drawing_layer.h"
#include "core/drawing/ink_canvas.h"
#include "core/drawing/ink_stroke.h"
#include "core/settings_store.h"
#include "support/test_home.h"
#include "themes/message_box.h"
#include "themes/theme_colors.h"
#include "themes/theme_presets.h"
#include "whiteboard/board_document.h"
#include "whiteboard/board_list_panel.h"
#include "whiteboard/board_recovery.h"
#include "whiteboard/whiteboard_settings.h"
#include "whiteboard/whiteboard_widget.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

#include <memory>

namespace {

void scribble(WhiteboardWidget &board, qreal y = 40)
{
    DrawingLayer &layer = *board.document()->layer();
    InkStroke stroke(layer, {InkKind::Pen, Qt::red, 6}, InkShape::Freehand, {QPointF(20, y), 1});
    stroke.moveTo({QPointF(200, y + 30), 1});
    stroke.finish();
}

struct Asked
{
    bool question;
    int number;
    QString text;
};

} // namespace

class TestWhiteboardWidget : public QObject
{
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void newBoardIsSavedInTheBoardFolderUnderFreeNames();
    void replacingAChangedBoardAsksFirst_data();
    void replacingAChangedBoardAsksFirst();
    void closingAChangedBoardAsksFirst_data();
    void closingAChangedBoardAsksFirst();
    void deletingAsksAndClearsTheBoardShown_data();
    void deletingAsksAndClearsTheBoardShown();
    void damagedBoardIsReportedAndTheBoardKept();
    void lastBoardComesBackWithTheWindow();
    void boardColourFollowsTheSettings();
    void copyAndPasteGoThroughTheClipboard();
    void unsavedBoardSurvivesAStop_data();
    void unsavedBoardSurvivesAStop();
    void aCopyThatCannotBeWrittenIsToldOnce();
    void emptyListNoteReadsOnEveryPreset_data();
    void emptyListNoteReadsOnEveryPreset();

private:
    std::unique_ptr<WhiteboardWidget> openBoardWindow();
    QString folder() const { return CurrentWhiteboardSettings().boardFolderPath(); }
    QString boardPath(const QString &name) const { return QDir(folder()).filePath(name); }

    std::unique_ptr<TestHome> m_home;
    QList<Asked> m_asked;
    int m_answer = AnswerYes;
};

void TestWhiteboardWidget::init()
{
    m_home = std::make_unique<TestHome>();
    ReloadWhiteboardSettings();
    m_asked.clear();
    m_answer = AnswerYes;
    SetMessageResponderForTesting([this](bool question, int number, const QString &text) {
        m_asked.append({question, number, text});
        return m_answer;
    });
}

void TestWhiteboardWidget::cleanup()
{
    SetMessageResponderForTesting(nullptr);
    m_home.reset();
}

std::unique_ptr<WhiteboardWidget> TestWhiteboardWidget::openBoardWindow()
{
    auto board = std::make_unique<WhiteboardWidget>();
    board->loadWindow();
    board->show();
    if (!QTest::qWaitForWindowExposed(board.get()))
        qWarning("the whiteboard did not show");
    return board;
}

void TestWhiteboardWidget::newBoardIsSavedInTheBoardFolderUnderFreeNames()
{
    auto board = openBoardWindow();
    scribble(*board);
    QVERIFY(board->saveBoard());
    QCOMPARE(board->document()->path(), boardPath(QStringLiteral("Board 1.png")));
    QVERIFY(board->windowTitle().endsWith(QLatin1String("Board 1.png")));
    scribble(*board, 100);
    QVERIFY(board->windowTitle().endsWith(QLatin1String(" *")));
    QVERIFY(board->saveBoard()); // saved again under its own name
    QVERIFY(board->newBoard());
    scribble(*board);
    QVERIFY(board->saveBoard());
    QCOMPARE(board->document()->path(), boardPath(QStringLiteral("Board 2.png")));
    QVERIFY(m_asked.isEmpty());
}

void TestWhiteboardWidget::replacingAChangedBoardAsksFirst_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("replaced");
    QTest::addColumn<bool>("savedFirst");
    QTest::newRow("save") << int(AnswerYes) << true << true;
    QTest::newRow("do not save") << int(AnswerNo) << true << false;
    QTest::newRow("cancel") << int(AnswerCancel) << false << false;
}

void TestWhiteboardWidget::replacingAChangedBoardAsksFirst()
{
    QFETCH(int, answer);
    QFETCH(bool, replaced);
    QFETCH(bool, savedFirst);
    QImage other(300, 200, QImage::Format_RGB32);
    other.fill(Qt::blue);
    QDir().mkpath(folder());
    QVERIFY(other.save(boardPath(QStringLiteral("other.png"))));

    auto board = openBoardWindow();
    scribble(*board);
    const QImage drawn = board->document()->layer()->image();
    m_answer = answer;
    QCOMPARE(board->openBoard(boardPath(QStringLiteral("other.png"))), replaced);
    QCOMPARE(m_asked.size(), 1);
    QCOMPARE(m_asked.first().number, 2);
    QCOMPARE(QFile::exists(boardPath(QStringLiteral("Board 1.png"))), savedFirst);
    if (replaced) {
        QCOMPARE(board->document()->path(), boardPath(QStringLiteral("other.png")));
        QCOMPARE(board->document()->layer()->image().pixelColor(10, 10), QColor(Qt::blue));
    } else {
        QCOMPARE(board->document()->layer()->image(), drawn);
        QVERIFY(board->document()->isModified());
    }
}

void TestWhiteboardWidget::closingAChangedBoardAsksFirst_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("closed");
    QTest::addColumn<bool>("saved");
    QTest::newRow("save") << int(AnswerYes) << true << true;
    QTest::newRow("do not save") << int(AnswerNo) << true << false;
    QTest::newRow("cancel") << int(AnswerCancel) << false << false;
}

void TestWhiteboardWidget::closingAChangedBoardAsksFirst()
{
    QFETCH(int, answer);
    QFETCH(bool, closed);
    QFETCH(bool, saved);
    auto owned = openBoardWindow();
    QPointer<WhiteboardWidget> board = owned.release(); // deletes itself once closed
    // A stroke still being dragged when the window closes counts as drawn.
    InkCanvas *canvas = board->canvas();
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(5, 5), canvas->mapToGlobal(QPointF(5, 5)),
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(canvas, &press);
    QMouseEvent move(QEvent::MouseMove, QPointF(80, 60), canvas->mapToGlobal(QPointF(80, 60)), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(canvas, &move);
    QVERIFY(canvas->isDrawing());
    m_answer = answer;
    QCOMPARE(board->close(), closed);
    QCOMPARE(m_asked.size(), 1);
    QCOMPARE(QFile::exists(boardPath(QStringLiteral("Board 1.png"))), saved);
    QCOMPARE(board->isVisible(), !closed);
    delete board;
}

void TestWhiteboardWidget::deletingAsksAndClearsTheBoardShown_data()
{
    QTest::addColumn<bool>("shown"); // the board deleted is the one shown
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("deleted");
    QTest::newRow("shown, delete") << true << int(AnswerYes) << true;
    QTest::newRow("shown, cancel") << true << int(AnswerNo) << false;
    QTest::newRow("another, delete") << false << int(AnswerYes) << true;
    QTest::newRow("another, cancel") << false << int(AnswerNo) << false;
}

void TestWhiteboardWidget::deletingAsksAndClearsTheBoardShown()
{
    QFETCH(bool, shown);
    QFETCH(int, answer);
    QFETCH(bool, deleted);
    auto board = openBoardWindow();
    scribble(*board);
    QVERIFY(board->saveBoard()); // Board 1.png, shown
    QVERIFY(board->newBoard());
    scribble(*board, 120);
    QVERIFY(board->saveBoard()); // Board 2.png, shown
    const QString target = boardPath(shown ? QStringLiteral("Board 2.png") : QStringLiteral("Board 1.png"));
    const QImage drawn = board->document()->layer()->image();

    m_answer = answer;
    QCOMPARE(board->deleteBoard(target), deleted);
    QCOMPARE(m_asked.size(), 1);
    QVERIFY(m_asked.first().question);
    // The board shown gets the program's own question; another board names itself.
    if (shown)
        QCOMPARE(m_asked.first().number, 4);
    else
        QVERIFY(m_asked.first().text.contains(QLatin1String("Board 1.png")));
    QCOMPARE(QFile::exists(target), !deleted);
    const bool cleared = shown && deleted;
    QCOMPARE(board->document()->path().isEmpty(), cleared);
    QCOMPARE(board->document()->layer()->image() == drawn, !cleared);
}

void TestWhiteboardWidget::damagedBoardIsReportedAndTheBoardKept()
{
    QDir().mkpath(folder());
    QFile damaged(boardPath(QStringLiteral("damaged.png")));
    QVERIFY(damaged.open(QIODevice::WriteOnly));
    damaged.write(QByteArray("\x89PNG\r\n\x1a\n and then nothing a picture needs", 40));
    damaged.close();
    auto board = openBoardWindow();
    scribble(*board);
    QVERIFY(board->saveBoard());
    const QImage drawn = board->document()->layer()->image();
    QVERIFY(!board->openBoard(damaged.fileName()));
    QCOMPARE(m_asked.size(), 1);
    QVERIFY(!m_asked.first().question);
    QVERIFY2(m_asked.first().text.contains(QLatin1String("damaged.png")) &&
                 m_asked.first().text.contains(QLatin1String("damaged")),
             qPrintable(m_asked.first().text));
    QCOMPARE(board->document()->path(), boardPath(QStringLiteral("Board 1.png")));
    QCOMPARE(board->document()->layer()->image(), drawn);
}

void TestWhiteboardWidget::lastBoardComesBackWithTheWindow()
{
    QImage saved;
    {
        auto board = openBoardWindow();
        scribble(*board);
        QVERIFY(board->saveBoard());
        saved = board->document()->layer()->flattened(board->canvas()->background());
        QVERIFY(board->close());
        board.release(); // deleted on close
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    auto board = openBoardWindow();
    QCOMPARE(board->document()->path(), boardPath(QStringLiteral("Board 1.png")));
    QVERIFY(!board->document()->isModified());
    QCOMPARE(board->document()
                 ->layer()
                 ->image()
                 .copy(QRect(QPoint(0, 0), saved.size()))
                 .convertToFormat(QImage::Format_RGB32),
             saved);
}

void TestWhiteboardWidget::boardColourFollowsTheSettings()
{
    WriteDetail(QStringLiteral("fwbd_SET"), QStringLiteral("board-Color-name"), QStringLiteral("Green"));
    WriteDetail(QStringLiteral("fwbd_SET"), QStringLiteral("board-Color-value"),
                QStringLiteral("&H0023452B"));
    ReloadWhiteboardSettings();
    auto board = openBoardWindow();
    QCOMPARE(board->canvas()->background(), QColor(0x2B, 0x45, 0x23));
    scribble(*board);
    QVERIFY(board->saveBoard());
    QImage file(boardPath(QStringLiteral("Board 1.png")));
    QCOMPARE(file.pixelColor(file.width() - 1, file.height() - 1), QColor(0x2B, 0x45, 0x23));
}

void TestWhiteboardWidget::copyAndPasteGoThroughTheClipboard()
{
    auto board = openBoardWindow();
    scribble(*board);
    board->copyBoard();
    const QImage copied = QApplication::clipboard()->image();
    QCOMPARE(copied.size(), board->document()->layer()->size());
    QCOMPARE(copied.pixelColor(0, 0), board->canvas()->background());

    QImage picture(60, 30, QImage::Format_RGB32);
    picture.fill(Qt::magenta);
    QApplication::clipboard()->setImage(picture);
    QVERIFY(board->pasteFromClipboard());
    QVERIFY(board->canvas()->hasPlacedItem());
    QCOMPARE(board->canvas()->placedItem().rect().size(), QSizeF(60, 30));
    // Saving fixes the picture into the board first.
    QVERIFY(board->saveBoard());
    QVERIFY(!board->canvas()->hasPlacedItem());
    QImage file(boardPath(QStringLiteral("Board 1.png")));
    int magenta = 0;
    for (int y = 0; y < file.height(); ++y)
        for (int x = 0; x < file.width(); ++x)
            magenta += file.pixelColor(x, y) == QColor(Qt::magenta);
    QCOMPARE(magenta, 60 * 30);
}

void TestWhiteboardWidget::unsavedBoardSurvivesAStop_data()
{
    QTest::addColumn<bool>("restore");
    QTest::newRow("restored") << true;
    QTest::newRow("discarded") << false;
}

void TestWhiteboardWidget::unsavedBoardSurvivesAStop()
{
    QFETCH(bool, restore);
    QImage drawn;
    {
        // A run that stops without closing the whiteboard: its copy stays behind.
        BoardDocument document;
        document.newBoard(QSize(300, 200));
        BoardRecovery recovery(&document);
        DrawingLayer &layer = *document.layer();
        InkStroke stroke(layer, {InkKind::Highlighter, Qt::green, 12}, InkShape::Freehand,
                         {QPointF(10, 10), 1});
        stroke.moveTo({QPointF(250, 150), 1});
        stroke.finish();
        drawn = layer.image();
        recovery.writeNow();
    }
    QVERIFY(BoardRecovery::leftBehind().has_value());

    m_answer = restore ? AnswerYes : AnswerNo;
    auto board = openBoardWindow();
    QTRY_COMPARE(m_asked.size(), 1);
    QVERIFY(m_asked.first().text.contains(QLatin1String("Untitled Board")));
    QCOMPARE(board->document()->isModified(), restore);
    QCOMPARE(board->document()->layer()->image().copy(0, 0, 300, 200) == drawn, restore);
    // A restored board is copied again at once; a discarded one is gone for good.
    QCOMPARE(BoardRecovery::leftBehind().has_value(), restore);
    if (!restore)
        return;
    QVERIFY(board->saveBoard());
    QVERIFY(!BoardRecovery::leftBehind().has_value());
}

void TestWhiteboardWidget::aCopyThatCannotBeWrittenIsToldOnce()
{
    // A file where the recovery folder should be: no copy can be written, as on a full disk.
    QDir().mkpath(QFileInfo(BoardRecovery::folder()).path());
    QFile blocker(BoardRecovery::folder());
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();

    BoardDocument document;
    document.newBoard(QSize(120, 80));
    BoardRecovery recovery(&document);
    QSignalSpy failed(&recovery, &BoardRecovery::copyFailed);
    auto draw = [&document, &recovery](int y) {
        InkStroke stroke(*document.layer(), {InkKind::Pen, Qt::black, 3}, InkShape::Freehand, {QPointF(5, y), 1});
        stroke.moveTo({QPointF(100, y), 1});
        stroke.finish();
        recovery.writeNow();
    };
    draw(10);
    QCOMPARE(failed.count(), 1);
    QVERIFY(!recovery.problem().isEmpty());
    draw(30); // still failing: not told again
    QCOMPARE(failed.count(), 1);

    QVERIFY(QFile::remove(BoardRecovery::folder()));
    draw(50);
    QVERIFY(recovery.problem().isEmpty());
    QVERIFY(BoardRecovery::leftBehind().has_value());
}

void TestWhiteboardWidget::emptyListNoteReadsOnEveryPreset_data()
{
    QTest::addColumn<QString>("preset");
    QDirIterator it(QStringLiteral(":/themes"), {QStringLiteral("*.dcp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        QTest::newRow(qPrintable(path.mid(9))) << path;
    }
}

// The note of an empty board list must read on what is painted under it, whatever the theme,
// with the theme changed while the window is open.
void TestWhiteboardWidget::emptyListNoteReadsOnEveryPreset()
{
    QFETCH(QString, preset);
    SetCurrentTheme(Theme());
    auto board = openBoardWindow();
    SetCurrentTheme(ReadPreset(preset, Theme()));
    auto *note = board->findChild<QLabel *>(QStringLiteral("lblNOBOARDS"));
    QVERIFY(note->isVisible());
    QVERIFY(note->height() > 40);
    const QImage painted = board->grab(QRect(note->mapTo(board.get(), QPoint(0, 0)), note->size())).toImage();
    const QColor text = note->palette().color(note->foregroundRole());
    double least = 21;
    // The last rows of the note are below its text: only what is under the text shows there.
    for (int y = painted.height() - 12; y < painted.height() - 2; ++y) {
        for (int x = 2; x < painted.width() - 2; x += 3) {
            const QColor under = painted.pixelColor(x, y);
            // A see-through text colour is seen mixed with what is under it.
            const double a = text.alphaF();
            const QColor seen = QColor::fromRgbF(float(text.redF() * a + under.redF() * (1 - a)),
                                                 float(text.greenF() * a + under.greenF() * (1 - a)),
                                                 float(text.blueF() * a + under.blueF() * (1 - a)));
            least = qMin(least, ContrastRatio(seen, under));
        }
    }
    QVERIFY2(least >= 4.5, qPrintable(QStringLiteral("%1: %2").arg(text.name(QColor::HexArgb)).arg(least)));
    SetCurrentTheme(Theme());
}

QTEST_MAIN(TestWhiteboardWidget)
#include "test_whiteboard_widget.moc"
