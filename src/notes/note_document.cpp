#include "notes/note_document.h"

#include "notes/document_file.h"
#include "notes/document_naming.h"
#include "notes/line_spacing.h"
#include "notes/page_box.h"
#include "notes/plain_text_file.h"
#include "notes/spell_highlighter.h"
#include "notes/text_formatting.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QScopeGuard>
#include <QTextDocument>
#include <QVBoxLayout>

NoteDocument::NoteDocument(int tagNo, int number, const QString &type, QWidget *parent)
    : QWidget(parent)
    , m_page(new PageBox(this))
    , m_tagNo(tagNo)
    , m_number(number)
    , m_type(type)
    , m_plainFile(std::make_unique<PlainTextFile>())
{
    setObjectName(QStringLiteral("fnte_DOC"));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_page);
    m_page->setPlainTextOnly(!isRichText());
    connect(m_page, &QTextEdit::cursorPositionChanged, this, &NoteDocument::selectionChanged);
    connect(m_page, &QTextEdit::selectionChanged, this, &NoteDocument::selectionChanged);
    connect(m_page, &QTextEdit::textChanged, this, &NoteDocument::selectionChanged);
    connect(m_page, &QTextEdit::textChanged, this, &NoteDocument::contentChanged);
    connect(m_page, &PageBox::filesDropped, this, &NoteDocument::filesDropped);
    adoptDocument(m_page->document());
}

NoteDocument::~NoteDocument()
{
    // The document goes with the page: the spell checker letting go of it must not have it
    // laid out once more.
    m_page->document()->setPageSize(QSizeF(0, 0));
}

bool NoteDocument::isRichText() const
{
    return m_type == QLatin1String("RTF");
}

bool NoteDocument::DocumentEdited() const
{
    return m_page->document()->isModified();
}

void NoteDocument::setDocumentEdited(bool edited)
{
    m_page->document()->setModified(edited);
}

QString NoteDocument::caption() const
{
    if (!m_path.isEmpty())
        return QFileInfo(m_path).fileName();
    if (!m_unsavedCaption.isEmpty())
        return m_unsavedCaption;
    return NewDocumentCaption(m_type, m_number);
}

QTextDocument *NoteDocument::document() const
{
    return m_page->document();
}

void NoteDocument::restorePageFont()
{
    if (m_page->font() != m_pageFont)
        m_page->setFont(m_pageFont);
}

void NoteDocument::setNewDocumentFormat(const QFont &font, const QColor &color)
{
    m_pageFont = font;
    m_page->setFont(font);
    m_baseFormat = QTextCharFormat();
    m_baseFormat.setFontFamilies(QStringList{font.family()});
    m_baseFormat.setFontPointSize(font.pointSizeF());
    m_baseFormat.setForeground(color);
    if (isRichText()) {
        // The format the first typed character gets, without counting as a change.
        QTextCursor cursor(m_page->document());
        cursor.setBlockCharFormat(m_baseFormat);
        m_page->setCurrentCharFormat(m_baseFormat);
        m_page->document()->setModified(false);
        m_page->document()->clearUndoRedoStacks();
    } else {
        QPalette pal = m_page->palette();
        pal.setColor(QPalette::Text, color);
        m_page->setPalette(pal);
    }
}

DocumentFileResult NoteDocument::load(const QString &path)
{
    // Reading a large file and laying out its first screen can take a moment.
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restoreCursor = qScopeGuard([] { QGuiApplication::restoreOverrideCursor(); });
    auto loaded = std::make_unique<QTextDocument>();
    loaded->setDefaultFont(m_page->document()->defaultFont());
    PlainTextFile format;
    const DocumentFileResult result = isRichText() ? DocumentFile::readRich(path, loaded.get())
                                                   : DocumentFile::readPlain(path, loaded.get(), &format);
    if (!result.ok)
        return result;
    *m_plainFile = format;
    m_path = path;
    adoptDocument(loaded.release());
    return result;
}

void NoteDocument::adoptDocument(QTextDocument *document)
{
    QTextDocument *old = m_page->document();
    if (document != old) {
        // The box deletes the document it made itself; one given to it earlier is ours.
        const bool ours = old->parent() == m_page;
        if (ours)
            old->setPageSize(QSizeF(0, 0)); // not laid out again on its way out
        document->setParent(m_page);
        m_page->showDocument(document);
        if (m_page->spellHighlighter())
            m_page->setSpellChecker(m_page->spellHighlighter()->checker());
        if (ours)
            delete old;
    }
    // The box marks a document it is given as changed; a loaded file is not.
    document->setModified(false);
    document->clearUndoRedoStacks();
    connect(document, &QTextDocument::modificationChanged, this, &NoteDocument::editedChanged, Qt::UniqueConnection);
    emit editedChanged(false);
    emit selectionChanged();
}

QByteArray NoteDocument::contentBytes() const
{
    if (isRichText())
        return DocumentFile::richBytes(*m_page->document());
    PlainTextFile format = *m_plainFile;
    return DocumentFile::plainBytes(*m_page->document(), &format);
}

DocumentFileResult NoteDocument::save(const QString &path, const QString &type)
{
    const bool rich = type == QLatin1String("RTF");
    PlainTextFile format = *m_plainFile;
    const QByteArray bytes = rich ? DocumentFile::richBytes(*m_page->document())
                                  : DocumentFile::plainBytes(*m_page->document(), &format);
    DocumentFileResult result = DocumentFile::writeBytes(path, bytes);
    if (!result.ok)
        return result;
    if (!rich && format.encoding() != m_plainFile->encoding())
        result.warnings.append(tr("%1 now holds characters that %2 has no place for, so it was saved as %3.")
                                   .arg(QFileInfo(path).fileName(), PlainTextFile::encodingName(m_plainFile->encoding()),
                                        PlainTextFile::encodingName(format.encoding())));
    *m_plainFile = format;
    m_path = path;
    if (type != m_type) {
        m_type = type;
        m_page->setPlainTextOnly(!rich);
    }
    if (!rich && PlainTextLossOf(*m_page->document(), m_baseFormat).any())
        showSavedPlainText(bytes);
    m_page->document()->setModified(false);
    return result;
}

void NoteDocument::showSavedPlainText(const QByteArray &bytes)
{
    // The page shows what the file now holds, not formatting that is gone from it.
    auto saved = std::make_unique<QTextDocument>();
    saved->setDefaultFont(m_page->document()->defaultFont());
    PlainTextFile format;
    if (DocumentFile::plainFromBytes(bytes, saved.get(), &format).ok)
        adoptDocument(saved.release());
}

bool NoteDocument::restoreContent(const QByteArray &bytes)
{
    auto restored = std::make_unique<QTextDocument>();
    restored->setDefaultFont(m_page->document()->defaultFont());
    PlainTextFile format;
    const bool ok = isRichText() ? DocumentFile::richFromBytes(bytes, restored.get()).ok
                                 : DocumentFile::plainFromBytes(bytes, restored.get(), &format).ok;
    if (!ok)
        return false;
    *m_plainFile = format;
    adoptDocument(restored.release());
    // A recovered text is not on disk yet.
    m_page->document()->setModified(true);
    return true;
}

void NoteDocument::TextCopy()
{
    m_page->copy();
}

void NoteDocument::TextCut()
{
    m_page->cut();
}

void NoteDocument::TextPaste()
{
    m_page->paste();
}

void NoteDocument::TextDelete()
{
    m_page->textCursor().removeSelectedText();
}

QString NoteDocument::PageLineSpacingGet() const
{
    return FormatLineSpacing(TextFormatting::LineSpacing(m_page->textCursor()));
}

void NoteDocument::PageLineSpacingSet(const QString &value)
{
    const LineSpacingInput input = ParseLineSpacing(value);
    if (input.accepted)
        TextFormatting::SetLineSpacing(m_page->textCursor(), input.multiple);
}

Qt::Alignment NoteDocument::PageAlignGet() const
{
    return TextFormatting::Alignment(m_page->textCursor());
}

void NoteDocument::PageAlignSet(Qt::Alignment alignment)
{
    TextFormatting::SetAlignment(m_page->textCursor(), alignment);
}

void NoteDocument::PageBullets()
{
    TextFormatting::ToggleBullets(m_page->textCursor());
}

void NoteDocument::PageIndentIncr()
{
    TextFormatting::ShiftIndent(m_page->textCursor(), 1);
}

void NoteDocument::PageIndentDecr()
{
    TextFormatting::ShiftIndent(m_page->textCursor(), -1);
}

void NoteDocument::TextFontScriptSet(QTextCharFormat::VerticalAlignment script)
{
    TextFormatting::SetScript(m_page->textCursor(), script);
    m_page->setFocus();
}

void NoteDocument::FormatRemove()
{
    QTextCharFormat base = m_baseFormat;
    if (base.fontFamilies().toStringList().isEmpty())
        base.setFontFamilies(QStringList{m_page->document()->defaultFont().family()});
    TextFormatting::RemoveCharacterFormatting(m_page->textCursor(), base);
}

void NoteDocument::ParagraphsReset()
{
    TextFormatting::ResetParagraphs(m_page->textCursor());
}

void NoteDocument::mergeCharFormat(const QTextCharFormat &format)
{
    m_page->mergeCurrentCharFormat(format);
    m_page->setFocus();
}
