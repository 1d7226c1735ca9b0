#include "calendar/elided_note.h"

#include <QFontMetricsF>
#include <QTextLayout>

namespace {
// The note's lines as wrapped at `width`.
QStringList wrappedLines(const QString &note, const QFont &font, qreal width)
{
    QStringList lines;
    for (const QString &paragraph : note.split(QLatin1Char('\n'))) {
        if (paragraph.isEmpty()) {
            lines << QString();
            continue;
        }
        QTextLayout layout(paragraph, font);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            lines << paragraph.mid(line.textStart(), line.textLength()).trimmed();
        }
        layout.endLayout();
    }
    return lines;
}
} // namespace

QStringList ElidedNoteLines(const QString &note, const QFont &font, qreal width, qreal height)
{
    const QFontMetricsF metrics(font);
    const int room = int(height / metrics.lineSpacing());
    if (room <= 0 || width <= 0)
        return {};
    QStringList lines = wrappedLines(note, font, width);
    if (lines.size() <= room)
        return lines;
    const QString rest = QStringList(lines.mid(room - 1)).join(QLatin1Char(' '));
    lines = lines.mid(0, room - 1);
    // The last line takes what is left, shortened: the ellipsis says there is more.
    // (When the rest fits on the line, the ellipsis after it still says that lines were cut.)
    lines << metrics.elidedText(rest + QStringLiteral(" \u2026"), Qt::ElideRight, width);
    return lines;
}
