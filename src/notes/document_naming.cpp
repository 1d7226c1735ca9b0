#include "notes/document_naming.h"

#include <QFileInfo>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>

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

namespace {

// "Rich Text Paper" of "Rich Text Paper (*.rtf) (*.rtf)": what every dialog keeps of an entry.
QString DescriptionOf(const QString &nameFilter)
{
    const qsizetype bracket = nameFilter.indexOf(u'(');
    return (bracket < 0 ? nameFilter : nameFilter.left(bracket)).trimmed();
}

QString ExtensionOf(const QString &type)
{
    return u'.' + type.toLower();
}

QString TypeOfExtension(const QString &path)
{
    for (const char *type : {kRichTextType, kPlainTextType}) {
        if (path.endsWith(ExtensionOf(QLatin1String(type)), Qt::CaseInsensitive))
            return QLatin1String(type);
    }
    return {};
}

} // namespace

int ChosenFilterIndex(const QStringList &nameFilters, const QString &selectedFilter)
{
    const QString selected = selectedFilter.trimmed();
    int best = 0;
    qsizetype bestLength = 0;
    for (qsizetype i = 0; i < nameFilters.size(); ++i) {
        const QString description = DescriptionOf(nameFilters[i]);
        if (description.size() > bestLength && selected.startsWith(description, Qt::CaseInsensitive)) {
            best = int(i) + 1;
            bestLength = description.size();
        }
    }
    return best;
}

SaveTarget SaveAsTarget(const QString &chosenPath, int filterIndex, const QString &documentType)
{
    SaveTarget target;
    if (filterIndex == 1 || filterIndex == 2) {
        target.type = QLatin1String(filterIndex == 1 ? kRichTextType : kPlainTextType);
    } else {
        target.type = TypeOfExtension(chosenPath);
        if (target.type.isEmpty())
            target.type = documentType == QLatin1String(kPlainTextType) ? QLatin1String(kPlainTextType)
                                                                          : QLatin1String(kRichTextType);
    }
    const QString extension = ExtensionOf(target.type);
    target.path = chosenPath;
    if (!chosenPath.endsWith(extension, Qt::CaseInsensitive))
        target.path += extension;
    return target;
}

QString PlainTextLoss::describe() const
{
    QStringList parts;
    if (formatting)
        parts << QStringLiteral("formatting");
    if (lists)
        parts << QStringLiteral("lists");
    if (tables)
        parts << QStringLiteral("tables");
    if (pictures)
        parts << QStringLiteral("pictures");
    if (parts.size() < 2)
        return parts.join(QString());
    const QString last = parts.takeLast();
    return parts.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last;
}

namespace {

bool DiffersFromPlainLook(const QTextCharFormat &format, const QTextCharFormat &plain)
{
    if (format.isAnchor() || format.fontItalic() || format.fontUnderline() || format.fontStrikeOut()
        || format.fontOverline() || format.verticalAlignment() != QTextCharFormat::AlignNormal)
        return true;
    if (format.hasProperty(QTextFormat::FontWeight) && format.fontWeight() > QFont::Normal)
        return true;
    if (format.hasProperty(QTextFormat::BackgroundBrush) && format.background().style() != Qt::NoBrush)
        return true;
    if (format.hasProperty(QTextFormat::ForegroundBrush) && format.foreground().style() != Qt::NoBrush
        && format.foreground().color().rgba() != plain.foreground().color().rgba())
        return true;
    const QStringList families = format.fontFamilies().toStringList();
    const QStringList plainFamilies = plain.fontFamilies().toStringList();
    if (!families.isEmpty() && !plainFamilies.isEmpty()
        && families.first().compare(plainFamilies.first(), Qt::CaseInsensitive) != 0)
        return true;
    return format.fontPointSize() > 0 && plain.fontPointSize() > 0
        && !qFuzzyCompare(format.fontPointSize(), plain.fontPointSize());
}

bool HasParagraphLook(const QTextBlockFormat &format)
{
    const Qt::Alignment horizontal = format.alignment() & Qt::AlignHorizontal_Mask;
    const bool aligned = horizontal != 0 && !(horizontal & (Qt::AlignLeft | Qt::AlignLeading));
    return aligned || format.indent() > 0 || format.leftMargin() > 0 || format.textIndent() != 0;
}

} // namespace

PlainTextLoss PlainTextLossOf(const QTextDocument &document, const QTextCharFormat &plainLook)
{
    PlainTextLoss loss;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        loss.lists |= block.textList() != nullptr;
        loss.tables |= qobject_cast<QTextTable *>(QTextCursor(block).currentFrame()) != nullptr;
        loss.formatting |= HasParagraphLook(block.blockFormat());
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat format = it.fragment().charFormat();
            if (format.isImageFormat())
                loss.pictures = true;
            else
                loss.formatting |= DiffersFromPlainLook(format, plainLook);
        }
    }
    return loss;
}
