#pragma once

#include <QString>
#include <QStringList>

// Reads every `#include` in the source tree and reports the ones that break the layering: a folder
// may include its own files and those of the layers below it, never a layer above, and a widget
// folder never another widget folder. Names that do not resolve to a file of the tree (Qt and
// standard headers, generated headers) are not the tree's business and pass.
class IncludeLayerCheck
{
public:
    // Each row is one layer, lowest first; the folders of a row may not include each other.
    static const QList<QStringList> &layers();

    // One line per broken rule, "src/<file>:<line>: <what is wrong>", in file and line order;
    // empty when the tree at `sourceRoot` (the folder holding core/, themes/, ...) keeps its layers.
    static QStringList violations(const QString &sourceRoot);

private:
    static int layerOf(const QString &folder);
    static QString checkInclude(const QString &fromFolder, const QString &toFolder);
};
