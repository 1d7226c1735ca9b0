#pragma once

#include <QTextCharFormat>
#include <QWidget>

#include <memory>

class PageBox;
class QTextDocument;
struct DocumentFileResult;
class PlainTextFile;

// fnte_DOC, one open document of the notes editor: its page (rtbPAGEBOX), its slot in the
// editor's document table (TagNo), its type ("RTF" or "TXT"), its file and whether it has
// changed since it was loaded or saved (DocumentEdited). The editor's format bar acts on it
// through the page members below; the clipboard commands act on its selection.
class NoteDocument : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(int TagNo READ TagNo)
    Q_PROPERTY(QString DocumentType READ DocumentType)
    Q_PROPERTY(bool DocumentEdited READ DocumentEdited WRITE setDocumentEdited)
public:
    NoteDocument(int tagNo, int number, const QString &type, QWidget *parent = nullptr);
    ~NoteDocument() override;

    int TagNo() const { return m_tagNo; }
    void setTagNo(int tagNo) { m_tagNo = tagNo; }
    int number() const { return m_number; }
    QString DocumentType() const { return m_type; }
    QString DocuType() const { return m_type; }
    bool isRichText() const;
    bool DocumentEdited() const;
    void setDocumentEdited(bool edited);

    QString path() const { return m_path; }
    // The file name once loaded or saved, else "RTF 3" / "TXT 4".
    QString caption() const;
    // A recovered document that was never saved keeps the caption it had ("RTF 3"), not one
    // from its new number.
    void setUnsavedCaption(const QString &caption) { m_unsavedCaption = caption; }

    // The look of text nothing was done to: the new-document font and colour.
    QTextCharFormat plainLook() const { return m_baseFormat; }

    PageBox *page() const { return m_page; }
    QTextDocument *document() const;

    // A new document's text style (the editor's new-document settings).
    void setNewDocumentFormat(const QFont &font, const QColor &color);
    // Puts the page's own font back after the window gave every child its theme font.
    void restorePageFont();

    // Loads the file as this document's type. On failure the document stays as it was.
    DocumentFileResult load(const QString &path);
    // Saves to `path` as `type` ("RTF" or "TXT"); on success the path and type become these
    // and DocumentEdited turns false, and a page saved as plain text shows the plain text the
    // file holds. On failure nothing changes, on disk or here.
    DocumentFileResult save(const QString &path, const QString &type);
    // The bytes a save would write now (recovery copies).
    QByteArray contentBytes() const;
    // Replaces the content with recovered bytes of this document's type.
    bool restoreContent(const QByteArray &bytes);
    // Forget the file (a recovered copy of a document that was never saved keeps none).
    void setPath(const QString &path) { m_path = path; }

    // The clipboard commands.
    void TextCopy();
    void TextCut();
    void TextPaste();
    void TextDelete();

    // Format bar members, on the selection.
    QString PageLineSpacingGet() const;
    void PageLineSpacingSet(const QString &value);
    Qt::Alignment PageAlignGet() const;
    void PageAlignSet(Qt::Alignment alignment);
    void PageBullets();
    void PageIndentIncr();
    void PageIndentDecr();
    void TextFontScriptSet(QTextCharFormat::VerticalAlignment script);
    void FormatRemove();
    void ParagraphsReset();
    void mergeCharFormat(const QTextCharFormat &format);

signals:
    void editedChanged(bool edited);
    // The selection or the caret moved, or the text changed (statistics and format bar).
    void selectionChanged();
    // The text or its formatting changed (also by undo and redo).
    void contentChanged();
    void filesDropped(const QStringList &paths);

private:
    void adoptDocument(QTextDocument *document);
    void showSavedPlainText(const QByteArray &bytes);

    PageBox *m_page;
    int m_tagNo;
    int m_number;
    QString m_type;
    QString m_path;
    QString m_unsavedCaption;
    QTextCharFormat m_baseFormat;
    QFont m_pageFont;
    std::unique_ptr<PlainTextFile> m_plainFile;
};
