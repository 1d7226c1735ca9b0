#include "notes/document_naming.h"

#include <QFileInfo>

QString DocumentTypeForPath(const QString &path)
{
    const bool rich = QFileInfo(path).suffix().toUpper() == QLatin1String(kRichTextType);
    return QLatin1String(rich ? kRichTextType : kPlainTextType);
}

QString NewDocumentCaption(const QString &type, int number)
{
    return type + u' ' + QString::number(number);
}

QString TabKey(int number)
{
    return QLatin1String("DOC") + QString::number(number);
}

QStringList NameFiltersOf(const QString &filter)
{
    if (filter.isEmpty())
        return {};
    const QStringList parts = filter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i < parts.size(); i += 2) {
        if (i + 1 >= parts.size()) {
            filters << parts[i];
            continue;
        }
        QStringList patterns = parts[i + 1].split(u';', Qt::SkipEmptyParts);
        for (QString &pattern : patterns)
            pattern = pattern.trimmed();
        patterns.removeAll(QString());
        filters << parts[i] + QLatin1String(" (") + patterns.join(u' ') + u')';
    }
    return filters;
}

SaveTarget SaveAsTarget(const QString &chosenPath, int filterIndex)
{
    SaveTarget target;
    target.type = QLatin1String(filterIndex == 1 ? kRichTextType : kPlainTextType);
    const QString extension = u'.' + target.type.toLower();
    target.path = chosenPath;
    if (!chosenPath.endsWith(extension, Qt::CaseInsensitive))
        target.path += extension;
    return target;
}
