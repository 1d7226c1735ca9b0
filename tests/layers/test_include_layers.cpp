#include "layers/include_layer_check.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace {

bool writeFile(const QString &path, const QByteArray &content)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size();
}

// A small tree with one header in each kind of folder, for a single extra file to include from.
bool makeTree(const QString &root)
{
    const QStringList headers = {"core/settings_store.h", "core/platform/backend.h", "themes/theme.h",
                                 "time/clock.h",          "calculator/calc.h",       "shell/registry.h"};
    for (const QString &header : headers) {
        if (!writeFile(root + '/' + header, "#pragma once\n"))
            return false;
    }
    return true;
}

} // namespace

class TestIncludeLayers : public QObject
{
    Q_OBJECT

private slots:
    void sourceTreeKeepsItsLayers();
    void everyIncludeIsJudged_data();
    void everyIncludeIsJudged();
    void reportsEveryBrokenLineInOrder();
};

// The real tree: the list names each file and line that breaks a rule.
void TestIncludeLayers::sourceTreeKeepsItsLayers()
{
    const QString sourceRoot = QStringLiteral(VANTORA_SOURCE_DIR);
    QVERIFY2(QFileInfo(sourceRoot + "/core").isDir(), qPrintable(sourceRoot));
    const QStringList found = IncludeLayerCheck::violations(sourceRoot);
    QVERIFY2(found.isEmpty(), qPrintable("\n" + found.join('\n')));
}

void TestIncludeLayers::everyIncludeIsJudged_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("expected"); // the one reported line, or empty

    QTest::newRow("themes on core") << "themes/painter.cpp"
                                    << QByteArray("#include \"core/settings_store.h\"\n") << "";
    QTest::newRow("widget on core and themes")
        << "time/clock.cpp" << QByteArray("#include \"core/settings_store.h\"\n#include \"themes/theme.h\"\n")
        << "";
    QTest::newRow("shell on a widget") << "shell/list.cpp" << QByteArray("#include \"time/clock.h\"\n") << "";
    QTest::newRow("app on shell") << "app/main.cpp" << QByteArray("#include \"shell/registry.h\"\n") << "";
    QTest::newRow("platform on its own layer")
        << "core/platform/file.cpp" << QByteArray("#include \"core/settings_store.h\"\n") << "";
    QTest::newRow("same folder, no path")
        << "core/paths.cpp" << QByteArray("#include \"settings_store.h\"\n") << "";
    QTest::newRow("generated and system headers")
        << "time/clock.cpp" << QByteArray("#include \"clock.moc\"\n#include <QString>\n#include <vector>\n")
        << "";
    QTest::newRow("commented out") << "core/paths.cpp" << QByteArray("// #include \"shell/registry.h\"\n")
                                   << "";

    QTest::newRow("core on themes") << "core/paths.cpp"
                                    << QByteArray("#pragma once\n\n#include \"themes/theme.h\"\n")
                                    << "src/core/paths.cpp:3: core/ includes the higher layer themes/ "
                                       "(#include \"themes/theme.h\")";
    QTest::newRow("widget on a sibling")
        << "time/clock.cpp" << QByteArray("#include \"calculator/calc.h\"\n")
        << "src/time/clock.cpp:1: time/ includes calculator/, a folder of its own layer "
           "(#include \"calculator/calc.h\")";
    QTest::newRow("widget on shell")
        << "calculator/calc.cpp" << QByteArray("#include \"shell/registry.h\"\n")
        << "src/calculator/calc.cpp:1: calculator/ includes the higher layer shell/ "
           "(#include \"shell/registry.h\")";
    QTest::newRow("themes on a widget") << "themes/theme.cpp" << QByteArray("#include \"time/clock.h\"\n")
                                        << "src/themes/theme.cpp:1: themes/ includes the higher layer time/ "
                                           "(#include \"time/clock.h\")";
    QTest::newRow("relative path up and over")
        << "core/paths.cpp" << QByteArray("#include \"../themes/theme.h\"\n")
        << "src/core/paths.cpp:1: core/ includes the higher layer themes/ (#include \"../themes/theme.h\")";
    QTest::newRow("spaced directive, angle brackets")
        << "themes/theme.cpp" << QByteArray("  #  include <shell/registry.h>\n")
        << "src/themes/theme.cpp:1: themes/ includes the higher layer shell/ (#include \"shell/registry.h\")";
    QTest::newRow("platform on a widget")
        << "core/platform/file.cpp" << QByteArray("#include \"time/clock.h\"\n")
        << "src/core/platform/file.cpp:1: core/ includes the higher layer time/ (#include \"time/clock.h\")";
    QTest::newRow("folder with no layer")
        << "gadgets/gadget.cpp" << QByteArray("#include \"core/settings_store.h\"\n")
        << "src/gadgets/gadget.cpp: gadgets/ is in no layer; give it a row in the layer table";
}

void TestIncludeLayers::everyIncludeIsJudged()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, content);
    QFETCH(QString, expected);

    QTemporaryDir root;
    QVERIFY(root.isValid());
    QVERIFY(makeTree(root.path()));
    QVERIFY(writeFile(root.filePath(file), content));

    const QStringList found = IncludeLayerCheck::violations(root.path());
    QCOMPARE(found, expected.isEmpty() ? QStringList() : QStringList{expected});
}

void TestIncludeLayers::reportsEveryBrokenLineInOrder()
{
    QTemporaryDir root;
    QVERIFY(root.isValid());
    QVERIFY(makeTree(root.path()));
    QVERIFY(writeFile(root.filePath("time/stopwatch.cpp"), "#include \"shell/registry.h\"\n"));
    QVERIFY(writeFile(
        root.filePath("core/paths.cpp"),
        "#include \"core/settings_store.h\"\n#include \"time/clock.h\"\n#include \"themes/theme.h\"\n"));

    const QStringList found = IncludeLayerCheck::violations(root.path());
    QCOMPARE(found.size(), 3);
    QVERIFY(found.at(0).startsWith("src/core/paths.cpp:2: "));
    QVERIFY(found.at(1).startsWith("src/core/paths.cpp:3: "));
    QVERIFY(found.at(2).startsWith("src/time/stopwatch.cpp:1: "));
}

QTEST_GUILESS_MAIN(TestIncludeLayers)
#include "test_include_layers.moc"
