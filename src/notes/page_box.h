#pragma once

#include <QPaintDevice>
#include <QTextEdit>

class QMenu;

#include <memory>

class SpellChecker;
class SpellHighlighter;

// rtbPAGEBOX, the rich-text box that fills a document window. Beyond QTextEdit it pastes and
// drops pictures as embedded pictures, copies and pastes rich text as RTF (so pictures travel
// between documents and to other programs), and hands dropped document files to the editor.
class PageBox : public QTextEdit
{
    Q_OBJECT
public:
    explicit PageBox(QWidget *parent = nullptr);

    // Plain-text documents take no formatting and no pictures.
    void setPlainTextOnly(bool plain);
    bool isPlainTextOnly() const { return m_plainOnly; }

    // Shows the text larger or smaller without changing the document: the page lays its text
    // out for a screen of another resolution, so point sizes grow or shrink (what is saved stays
    // as it was). 100 is actual size; the range is 50 to 300.
    void setZoom(int percent);
    int zoom() const { return m_zoom; }
    // Shows `document` on the page. What the layout depends on (the zoom, the wrapping) is
    // given to the document first, so it is laid out once, a screenful at a time from the
    // event loop, instead of once on arrival and again for the zoom.
    void showDocument(QTextDocument *document);

    // Underlines unknown words as the user types, and offers suggestions, Ignore All and Add
    // to Dictionary on the menu of an underlined word. Call again after setDocument.
    void setSpellChecker(SpellChecker *checker);
    SpellHighlighter *spellHighlighter() const { return m_spelling; }

signals:
    // Files dropped on the page that are not pictures (the editor opens them).
    void filesDropped(const QStringList &paths);
    void zoomChanged(int percent);

protected:
    bool canInsertFromMimeData(const QMimeData *source) const override;
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;
    // Ctrl with the wheel zooms.
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    // A right click belongs to the page's own menu, not to the widget menu of the window.
    void mousePressEvent(QMouseEvent *event) override;

private:
    void applyZoom();
    void takePendingSize();
    bool insertRichText(const QByteArray &rtf);
    bool insertPictureFiles(const QList<QUrl> &urls);
    void addSpellingActions(QMenu *menu, int position);

    bool m_plainOnly = false;
    int m_zoom = 100;
    std::unique_ptr<QPaintDevice> m_zoomDevice;
    SpellHighlighter *m_spelling = nullptr;
};
