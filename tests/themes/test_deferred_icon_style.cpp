#include "themes/deferred_icon_style.h"
#include "themes/folder_browser.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMenuBar>
#include <QTemporaryDir>
#include <QTest>

namespace {
// How many pixels of the icon drawn at `side` are mostly opaque, and the most opaque one.
struct Coverage {
    int opaque = 0;
    int maxAlpha = 0;
};

Coverage coverage(const QIcon &icon, int side, QIcon::Mode mode)
{
    const QImage image = icon.pixmap(QSize(side, side), mode).toImage().convertToFormat(QImage::Format_ARGB32);
    Coverage result;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = qAlpha(image.pixel(x, y));
            result.opaque += alpha > 128;
            result.maxAlpha = qMax(result.maxAlpha, alpha);
        }
    }
    return result;
}
} // namespace

// The program's style hands out standard icons that read their pictures when drawn; what they
// draw must be what the platform style would have drawn.
class TestDeferredIconStyle : public QObject
{
    Q_OBJECT
private slots:
    // First: any picture read before it would already have loaded the plugins it looks for.
    void fileListsReadNoPictures();
    void fileIconsAreDrawnAtEverySize_data();
    void fileIconsAreDrawnAtEverySize();
    void drawsWhatTheBaseStyleDraws_data();
    void drawsWhatTheBaseStyleDraws();
    void outlivesTheWidgetThatAsked();
};

// The side panels' lists show folders, files and drives in the notes editor's first frame:
// drawing them must not read a picture, which loads every image format plugin.
void TestDeferredIconStyle::fileListsReadNoPictures()
{
#ifndef Q_OS_LINUX
    QSKIP("reads the process's mapped libraries from /proc");
#endif
    QApplication::setStyle(new DeferredIconStyle);
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(QStringLiteral("Letters")));
    QFile note(folder.filePath(QStringLiteral("plan.rtf")));
    QVERIFY(note.open(QIODevice::WriteOnly));
    note.write("{\\rtf1 plan}");
    note.close();
    FolderBrowser browser(FolderBrowser::Documents);
    browser.setFolder(folder.path());
    browser.resize(240, 400);
    const QImage drawn = browser.grab().toImage();
    QVERIFY(!drawn.isNull());

    QFile maps(QStringLiteral("/proc/self/maps"));
    QVERIFY(maps.open(QIODevice::ReadOnly));
    const QByteArray mapped = maps.readAll();
    QVERIFY2(!mapped.contains("/imageformats/"), "an image format plugin was loaded");
}

void TestDeferredIconStyle::fileIconsAreDrawnAtEverySize_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<int>("side");
    QTest::newRow("folder 16") << int(QStyle::SP_DirIcon) << 16;
    QTest::newRow("folder 48") << int(QStyle::SP_DirIcon) << 48;
    QTest::newRow("file 16") << int(QStyle::SP_FileIcon) << 16;
    QTest::newRow("file 32") << int(QStyle::SP_FileIcon) << 32;
    QTest::newRow("drive 16") << int(QStyle::SP_DriveHDIcon) << 16;
    QTest::newRow("network drive 24") << int(QStyle::SP_DriveNetIcon) << 24;
    QTest::newRow("up 16") << int(QStyle::SP_FileDialogToParent) << 16;
}

void TestDeferredIconStyle::fileIconsAreDrawnAtEverySize()
{
    QFETCH(int, which);
    QFETCH(int, side);
    DeferredIconStyle style;
    const QIcon icon = style.standardIcon(QStyle::StandardPixmap(which));
    QVERIFY(!icon.isNull());
    QCOMPARE(icon.pixmap(side).size(), QSize(side, side));
    const Coverage normal = coverage(icon, side, QIcon::Normal);
    QVERIFY2(normal.opaque > side * side / 8, qPrintable(QStringLiteral("%1 opaque pixels").arg(normal.opaque)));
    // A disabled list shows its icons faded.
    QVERIFY(coverage(icon, side, QIcon::Disabled).maxAlpha < normal.maxAlpha * 2 / 3);
}

void TestDeferredIconStyle::drawsWhatTheBaseStyleDraws_data()
{
    QTest::addColumn<int>("which");
    QTest::addColumn<int>("side");
    QTest::newRow("menu bar overflow") << int(QStyle::SP_ToolBarHorizontalExtensionButton) << 16;
    QTest::newRow("toolbar overflow") << int(QStyle::SP_ToolBarVerticalExtensionButton) << 16;
    QTest::newRow("warning") << int(QStyle::SP_MessageBoxWarning) << 32;
    QTest::newRow("question, large") << int(QStyle::SP_MessageBoxQuestion) << 64;
    QTest::newRow("dialog OK") << int(QStyle::SP_DialogOkButton) << 16;
}

void TestDeferredIconStyle::drawsWhatTheBaseStyleDraws()
{
    QFETCH(int, which);
    QFETCH(int, side);
    DeferredIconStyle style;
    const auto pixmap = QStyle::StandardPixmap(which);
    const QIcon deferred = style.standardIcon(pixmap);
    const QIcon direct = style.baseStyle()->standardIcon(pixmap);
    QCOMPARE(deferred.isNull(), direct.isNull());
    QCOMPARE(deferred.availableSizes(), direct.availableSizes());
    QCOMPARE(deferred.pixmap(side).toImage(), direct.pixmap(side).toImage());
    // A copy made before the first drawing draws the same.
    QIcon copy = style.standardIcon(pixmap);
    const QIcon second = copy;
    QCOMPARE(second.pixmap(side).toImage(), direct.pixmap(side).toImage());
}

void TestDeferredIconStyle::outlivesTheWidgetThatAsked()
{
    DeferredIconStyle style;
    auto *bar = new QMenuBar;
    bar->setStyle(&style);
    const QIcon icon = style.standardIcon(QStyle::SP_ToolBarHorizontalExtensionButton, nullptr, bar);
    delete bar;
    QVERIFY(!icon.pixmap(16).isNull());
}

QTEST_MAIN(TestDeferredIconStyle)
#include "test_deferred_icon_style.moc"
