#include "notes/text_formatting.h"

#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>

#include <functional>

namespace TextFormatting {

namespace {

// Runs `change` on the block format of every paragraph the selection touches, as one undo step.
void ForEachBlock(const QTextCursor &cursor, const std::function<void(QTextCursor &, const QTextBlock &)> &change)
{
    QTextDocument *document = cursor.document();
    if (!document)
        return;
    const QTextBlock first = document->findBlock(cursor.selectionStart());
    const QTextBlock last = document->findBlock(cursor.selectionEnd());
    QTextCursor editor(document);
    editor.beginEditBlock();
    for (QTextBlock block = first; block.isValid(); block = block.next()) {
        QTextCursor at(block);
        change(at, block);
        if (block == last)
            break;
    }
    editor.endEditBlock();
}

void MergeBlocks(const QTextCursor &cursor, const QTextBlockFormat &format)
{
    QTextCursor c = cursor;
    c.mergeBlockFormat(format);
}

} // namespace

double PointsToPixels(double points)
{
    return points * 96.0 / 72.0;
}

double PixelsToPoints(double pixels)
{
    return pixels * 72.0 / 96.0;
}

double LineSpacing(const QTextCursor &cursor)
{
    const QTextBlockFormat format = cursor.document()->findBlock(cursor.selectionStart()).blockFormat();
    if (format.lineHeightType() != QTextBlockFormat::ProportionalHeight || format.lineHeight() <= 0)
        return 1.0;
    return format.lineHeight() / 100.0;
}

void SetLineSpacing(const QTextCursor &cursor, double multiple)
{
    QTextBlockFormat format;
    format.setLineHeight(multiple * 100.0, QTextBlockFormat::ProportionalHeight);
    MergeBlocks(cursor, format);
}

Qt::Alignment Alignment(const QTextCursor &cursor)
{
    const Qt::Alignment a = cursor.blockFormat().alignment() & Qt::AlignHorizontal_Mask;
    if (a & Qt::AlignHCenter)
        return Qt::AlignHCenter;
    if (a & Qt::AlignRight)
        return Qt::AlignRight;
    if (a & Qt::AlignJustify)
        return Qt::AlignJustify;
    return Qt::AlignLeft;
}

void SetAlignment(const QTextCursor &cursor, Qt::Alignment alignment)
{
    QTextBlockFormat format;
    format.setAlignment(alignment);
    MergeBlocks(cursor, format);
}

bool HasBullets(const QTextCursor &cursor)
{
    const QTextList *list = cursor.document()->findBlock(cursor.selectionStart()).textList();
    return list && list->format().style() == QTextListFormat::ListDisc;
}

void ToggleBullets(const QTextCursor &cursor)
{
    QTextCursor c = cursor;
    c.beginEditBlock();
    if (HasBullets(cursor)) {
        ForEachBlock(cursor, [](QTextCursor &, const QTextBlock &block) {
            if (QTextList *list = block.textList()) {
                list->remove(block);
                QTextCursor at(block);
                QTextBlockFormat format = block.blockFormat();
                format.setIndent(0);
                at.setBlockFormat(format);
            }
        });
    } else {
        QTextListFormat format;
        format.setStyle(QTextListFormat::ListDisc);
        format.setIndent(1);
        c.createList(format);
    }
    c.endEditBlock();
}

void ShiftIndent(const QTextCursor &cursor, int steps)
{
    ForEachBlock(cursor, [steps](QTextCursor &at, const QTextBlock &block) {
        if (QTextList *list = block.textList()) {
            QTextListFormat format = list->format();
            const int indent = qMax(1, format.indent() + steps);
            if (indent == format.indent())
                return;
            format.setIndent(indent);
            list->remove(block);
            at.createList(format);
            return;
        }
        QTextBlockFormat format;
        format.setLeftMargin(qMax(0.0, block.blockFormat().leftMargin() + steps * kIndentStepPixels));
        at.mergeBlockFormat(format);
    });
}

double SpacingBefore(const QTextCursor &cursor)
{
    return PixelsToPoints(cursor.document()->findBlock(cursor.selectionStart()).blockFormat().topMargin());
}

double SpacingAfter(const QTextCursor &cursor)
{
    return PixelsToPoints(cursor.document()->findBlock(cursor.selectionStart()).blockFormat().bottomMargin());
}

void SetSpacingBefore(const QTextCursor &cursor, double points)
{
    QTextBlockFormat format;
    format.setTopMargin(PointsToPixels(qMax(0.0, points)));
    MergeBlocks(cursor, format);
}

void SetSpacingAfter(const QTextCursor &cursor, double points)
{
    QTextBlockFormat format;
    format.setBottomMargin(PointsToPixels(qMax(0.0, points)));
    MergeBlocks(cursor, format);
}

void SetScript(const QTextCursor &cursor, QTextCharFormat::VerticalAlignment script)
{
    QTextCharFormat format;
    format.setVerticalAlignment(script);
    QTextCursor c = cursor;
    c.mergeCharFormat(format);
}

void RemoveCharacterFormatting(const QTextCursor &cursor, const QTextCharFormat &base)
{
    QTextCursor c = cursor;
    if (!c.hasSelection())
        c.select(QTextCursor::WordUnderCursor);
    // Pictures are characters with a format of their own: only the text around them changes.
    c.beginEditBlock();
    const QTextDocument *document = c.document();
    const int start = c.selectionStart();
    const int end = c.selectionEnd();
    for (QTextBlock block = document->findBlock(start); block.isValid() && block.position() <= end; block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const int from = qMax(start, fragment.position());
            const int to = qMin(end, fragment.position() + fragment.length());
            if (from >= to || fragment.charFormat().isImageFormat())
                continue;
            QTextCursor part(c.document());
            part.setPosition(from);
            part.setPosition(to, QTextCursor::KeepAnchor);
            part.setCharFormat(base);
        }
    }
    c.endEditBlock();
}

void ResetParagraphs(const QTextCursor &cursor)
{
    ForEachBlock(cursor, [](QTextCursor &at, const QTextBlock &block) {
        QTextBlockFormat format = block.blockFormat();
        format.setLineHeight(100, QTextBlockFormat::SingleHeight);
        format.setLeftMargin(0);
        format.setTextIndent(0);
        format.setRightMargin(0);
        at.setBlockFormat(format);
    });
}

} // namespace TextFormatting
