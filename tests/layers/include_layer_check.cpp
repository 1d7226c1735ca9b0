#include "layers/include_layer_check.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

// The path below `root` of the file that `#include "name"` in `includingFile` reaches, searched as
// the compiler does for quoted names: beside the including file first, then from the tree's top
// (the include folder the library declares). Empty when neither holds such a file.
QString resolveInclude(const QDir &root, const QString &includingFile, const QString &name)
{
    const QString besideFile = QDir::cleanPath(QFileInfo(includingFile).path() + '/' + name);
    for (const QString &candidate : {besideFile, QDir::cleanPath(name)}) {
        if (candidate.startsWith(QLatin1String("../")))
            continue; // outside the tree
        if (QFileInfo(root.filePath(candidate)).isFile())
            return candidate;
    }
    return {};
}

QStringList sourceFilesBelow(const QDir &root)
{
    QStringList files;
    QDirIterator it(root.path(), {"*.h", "*.hpp", "*.cpp", "*.cc"}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        files << root.relativeFilePath(it.next());
    files.sort();
    return files;
}

QString topFolderOf(const QString &relativePath)
{
    return relativePath.contains('/') ? relativePath.section('/', 0, 0) : QString();
}

} // namespace

const QList<QStringList> &IncludeLayerCheck::layers()
{
    // clang-format off
    static const QList<QStringList> table = {
        {"core"},
        {"themes", "sound", "network"},
        {"time", "calculator", "calendar", "notes", "weather", "webcam", "whiteboard"},
        {"shell", "print"},
        {"app"},
    };
    // clang-format on
    return table;
}

int IncludeLayerCheck::layerOf(const QString &folder)
{
    for (int layer = 0; layer < layers().size(); ++layer) {
        if (layers().at(layer).contains(folder))
            return layer;
    }
    return -1;
}

QString IncludeLayerCheck::checkInclude(const QString &fromFolder, const QString &toFolder)
{
    if (fromFolder == toFolder)
        return {};
    const int from = layerOf(fromFolder);
    const int to = layerOf(toFolder);
    if (to < 0)
        return QStringLiteral("%1/ is in no layer").arg(toFolder);
    if (to > from)
        return QStringLiteral("%1/ includes the higher layer %2/").arg(fromFolder, toFolder);
    if (to == from)
        return QStringLiteral("%1/ includes %2/, a folder of its own layer").arg(fromFolder, toFolder);
    return {};
}

QStringList IncludeLayerCheck::violations(const QString &sourceRoot)
{
    static const QRegularExpression includeLine(QStringLiteral(R"(^\s*#\s*include\s*["<]([^">]+)[">])"));
    const QDir root(sourceRoot);
    QStringList found;
    for (const QString &file : sourceFilesBelow(root)) {
        const QString fromFolder = topFolderOf(file);
        if (fromFolder.isEmpty())
            continue; // a file at the top of the tree belongs to no folder
        if (layerOf(fromFolder) < 0) {
            found << QStringLiteral("src/%1: %2/ is in no layer; give it a row in the layer table")
                         .arg(file, fromFolder);
            continue;
        }
        QFile source(root.filePath(file));
        if (!source.open(QIODevice::ReadOnly | QIODevice::Text)) {
            found << QStringLiteral("src/%1: cannot be read").arg(file);
            continue;
        }
        int lineNumber = 0;
        while (!source.atEnd()) {
            const QString line = QString::fromUtf8(source.readLine());
            ++lineNumber;
            const QRegularExpressionMatch match = includeLine.match(line);
            if (!match.hasMatch())
                continue;
            const QString target = resolveInclude(root, file, match.captured(1));
            const QString toFolder = topFolderOf(target);
            if (toFolder.isEmpty())
                continue; // generated or outside the tree
            const QString problem = checkInclude(fromFolder, toFolder);
            if (!problem.isEmpty())
                found << QStringLiteral("src/%1:%2: %3 (#include \"%4\")")
                             .arg(file)
                             .arg(lineNumber)
                             .arg(problem, match.captured(1));
        }
    }
    return found;
}
