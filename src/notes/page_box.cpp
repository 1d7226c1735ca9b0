#include "notes/page_box.h"

#include "notes/document_pictures.h"
#include "notes/rtf_reader.h"
#include "notes/rtf_writer.h"
#include "notes/spell_checker.h"
#include "notes/spell_highlighter.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QAbstractTextDocumentLayout>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QWheelEvent>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QTextImageFormat>
#include <QUrl>

namespace {

// A paint device that only reports a resolution: the text layout converts point sizes to
// pixels with it, which scales the text for zooming.
class ZoomedScreen : public QPaintDevice
{
public:
    explicit ZoomedScreen(const QWidget *screenOf, int percent)
        : m_dpiX(screenOf->logicalDpiX() * percent / 100)
        , m_dpiY(screenOf->logicalDpiY() * percent / 100)
    {
    }
    QPaintEngine *paintEngine() const override { return nullptr; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmDpiX:
        case PdmPhysicalDpiX:
            return m_dpiX;
        case PdmDpiY:
        case PdmPhysicalDpiY:
            return m_dpiY;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return int(QPaintDevice::devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        default:
            return 1000;
        }
    }

private:
    int m_dpiX;
    int m_dpiY;
};

const QString kRtfMime = QStringLiteral("text/rtf");
const QString kRtfMimeAlias = QStringLiteral("application/rtf");

bool IsPictureFile(const QString &path)
{
    static const QStringList kPictureSuffixes{QStringLiteral("png"), QStringLiteral("jpg"), QStringLiteral("jpeg"),
                                              QStringLiteral("gif"), QStringLiteral("bmp")};
    return kPictureSuffixes.contains(QFileInfo(path).suffix().toLower());
}

QByteArray RtfOf(const QMimeData *source)
{
    if (source->hasFormat(kRtfMime))
        return source->data(kRtfMime);
    if (source->hasFormat(kRtfMimeAlias))
        return source->data(kRtfMimeAlias);
    return QByteArray();
}

} // namespace

PageBox::PageBox(QWidget *parent)
    : QTextEdit(parent)
{
    setObjectName(QStringLiteral("rtbPAGEBOX"));
    setAcceptRichText(true);
    setTabChangesFocus(false);
    setFrameShape(QFrame::NoFrame);
    // A match found from the find bar stays visible while the find box has the keyboard.
    QPalette pal = palette();
    pal.setColor(QPalette::Inactive, QPalette::Highlight, pal.color(QPalette::Active, QPalette::Highlight));
    pal.setColor(QPalette::Inactive, QPalette::HighlightedText, pal.color(QPalette::Active, QPalette::HighlightedText));
    setPalette(pal);
}

void PageBox::setPlainTextOnly(bool plain)
{
    m_plainOnly = plain;
    setAcceptRichText(!plain);
}

void PageBox::setZoom(int percent)
{
    percent = qBound(50, percent, 300);
    if (percent == m_zoom)
        return;
    m_zoom = percent;
    applyZoom();
    emit zoomChanged(m_zoom);
}

void PageBox::wheelEvent(QWheelEvent *event)
{
    if (!(event->modifiers() & Qt::ControlModifier)) {
        QTextEdit::wheelEvent(event);
        return;
    }
    const int steps = event->angleDelta().y() / 120;
    if (steps != 0)
        setZoom(m_zoom + steps * 10);
    event->accept();
}

void PageBox::applyZoom()
{
    if (m_zoom == 100) {
        document()->documentLayout()->setPaintDevice(nullptr);
        m_zoomDevice.reset();
    } else {
        auto device = std::make_unique<ZoomedScreen>(this, m_zoom);
        document()->documentLayout()->setPaintDevice(device.get());
        m_zoomDevice = std::move(device);
    }
    // The layout keeps the old sizes until the whole document is laid out again.
    document()->markContentsDirty(0, document()->characterCount());
    viewport()->update();
}

bool PageBox::canInsertFromMimeData(const QMimeData *source) const
{
    if (!m_plainOnly && (source->hasImage() || !RtfOf(source).isEmpty()))
        return true;
    return source->hasUrls() || QTextEdit::canInsertFromMimeData(source);
}

void PageBox::insertFromMimeData(const QMimeData *source)
{
    if (source->hasUrls()) {
        const QList<QUrl> urls = source->urls();
        QStringList documents;
        QList<QUrl> pictures;
        for (const QUrl &url : urls) {
            if (!url.isLocalFile())
                continue;
            if (!m_plainOnly && IsPictureFile(url.toLocalFile()))
                pictures.append(url);
            else
                documents.append(url.toLocalFile());
        }
        if (!documents.isEmpty() || !pictures.isEmpty()) {
            insertPictureFiles(pictures);
            if (!documents.isEmpty())
                emit filesDropped(documents);
            return;
        }
    }
    if (!m_plainOnly) {
        const QByteArray rtf = RtfOf(source);
        if (!rtf.isEmpty() && insertRichText(rtf))
            return;
        if (source->hasImage()) {
            QTextCursor cursor = textCursor();
            DocumentPictures::InsertPicture(cursor, qvariant_cast<QImage>(source->imageData()));
            return;
        }
    }
    if (m_plainOnly) {
        insertPlainText(source->text());
        return;
    }
    QTextEdit::insertFromMimeData(source);
}

QMimeData *PageBox::createMimeDataFromSelection() const
{
    QMimeData *data = QTextEdit::createMimeDataFromSelection();
    if (m_plainOnly || !textCursor().hasSelection())
        return data;
    // The selection as a document of its own, with the pictures it shows, written as RTF.
    QTextDocument piece;
    QTextCursor(&piece).insertFragment(textCursor().selection());
    for (QTextBlock block = piece.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextCharFormat format = it.fragment().charFormat();
            if (format.isImageFormat()) {
                const QString name = format.toImageFormat().name();
                piece.addResource(QTextDocument::ImageResource, QUrl(name),
                                  document()->resource(QTextDocument::ImageResource, QUrl(name)));
            }
        }
    }
    data->setData(kRtfMime, RtfWriter::write(piece));
    return data;
}

bool PageBox::insertRichText(const QByteArray &rtf)
{
    QTextDocument piece;
    if (!RtfReader::read(rtf, &piece).ok)
        return false;
    DocumentPictures::AdoptPictures(&piece, document());
    QTextCursor cursor = textCursor();
    cursor.insertFragment(QTextDocumentFragment(&piece));
    setTextCursor(cursor);
    return true;
}

bool PageBox::insertPictureFiles(const QList<QUrl> &urls)
{
    bool any = false;
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    for (const QUrl &url : urls) {
        QFile file(url.toLocalFile());
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray bytes = file.readAll();
        QImage image;
        image.loadFromData(bytes);
        any |= DocumentPictures::InsertPicture(cursor, image, bytes);
    }
    cursor.endEditBlock();
    return any;
}

void PageBox::setSpellChecker(SpellChecker *checker)
{
    if (!m_spelling && checker) {
        m_spelling = new SpellHighlighter(checker, this);
        connect(this, &QTextEdit::cursorPositionChanged, m_spelling,
                [this] { m_spelling->caretMoved(textCursor().position()); });
    }
    if (m_spelling)
        m_spelling->attach(document());
}

void PageBox::mousePressEvent(QMouseEvent *event)
{
    QTextEdit::mousePressEvent(event);
    if (event->button() == Qt::RightButton)
        event->accept();
}

void PageBox::contextMenuEvent(QContextMenuEvent *event)
{
    std::unique_ptr<QMenu> menu(createStandardContextMenu(event->pos()));
    const int position = event->reason() == QContextMenuEvent::Keyboard ? textCursor().position()
                                                                         : cursorForPosition(event->pos()).position();
    addSpellingActions(menu.get(), position);
    menu->exec(event->globalPos());
}

void PageBox::addSpellingActions(QMenu *menu, int position)
{
    constexpr int kMostSuggestions = 8;
    CutWord word;
    if (!m_spelling || isReadOnly() || !m_spelling->misspeltWordAt(position, &word))
        return;
    QAction *first = menu->actions().value(0);
    const auto insert = [menu, first](QAction *action) { menu->insertAction(first, action); };
    SpellChecker *checker = m_spelling->checker();
    const QStringList suggestions = checker->menuSuggestionsFor(word.text).mid(0, kMostSuggestions);
    for (const QString &suggestion : suggestions) {
        auto *action = new QAction(suggestion, menu);
        QFont bold = action->font();
        bold.setBold(true);
        action->setFont(bold);
        connect(action, &QAction::triggered, this, [this, word, suggestion] {
            QTextCursor cursor(document());
            cursor.setPosition(word.start);
            cursor.setPosition(word.start + word.length, QTextCursor::KeepAnchor);
            cursor.insertText(suggestion);
        });
        insert(action);
    }
    if (suggestions.isEmpty()) {
        auto *none = new QAction(tr("(No suggestions)"), menu);
        none->setEnabled(false);
        insert(none);
    }
    auto *ignore = new QAction(tr("I&gnore All"), menu);
    ignore->setToolTip(tr("Accept this word everywhere until Vantora ends"));
    connect(ignore, &QAction::triggered, checker, [checker, word] { checker->ignoreAll(word.text); });
    insert(ignore);
    auto *add = new QAction(tr("Add to &Dictionary"), menu);
    connect(add, &QAction::triggered, checker, [checker, word] { checker->addWord(word.text); });
    insert(add);
    menu->insertSeparator(first);
}
