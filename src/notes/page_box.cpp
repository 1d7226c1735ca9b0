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
#include <QCoreApplication>
#include <QLayout>
#include <QMenu>
#include <QMimeData>
#include <QStackedWidget>
#include <QTextBoundaryFinder>
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

// Qt looks for a place to break a line to the end of the unbreakable stretch it is in, for
// every line of it: a stretch of a million characters takes minutes. A document holding one
// longer than this wraps anywhere, which is what Qt does in the end for such a stretch anyway.
constexpr int kLongestUnbrokenStretch = 20000;

bool HasLongUnbrokenStretch(const QTextDocument *document)
{
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        if (block.length() <= kLongestUnbrokenStretch)
            continue;
        const QString text = block.text();
        QTextBoundaryFinder breaks(QTextBoundaryFinder::Line, text);
        qsizetype last = 0;
        for (qsizetype at = breaks.toNextBoundary(); at >= 0; at = breaks.toNextBoundary()) {
            if (at - last > kLongestUnbrokenStretch)
                return true;
            last = at;
        }
    }
    return false;
}

} // namespace

PageBox::PageBox(QWidget *parent)
    : QTextEdit(parent)
{
    setAccessibleName(tr("Page"));
    setObjectName(QStringLiteral("rtbPAGEBOX"));
    setAcceptRichText(true);
    setTabChangesFocus(false);
    setFrameShape(QFrame::NoFrame);
    // A scroll bar that came and went would narrow the page and have the whole document laid
    // out again as soon as it outgrew the window.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
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
        m_zoomDevice.reset();
    } else {
        m_zoomDevice = std::make_unique<ZoomedScreen>(this, m_zoom);
    }
    document()->documentLayout()->setPaintDevice(m_zoomDevice.get());
    // The layout keeps the old sizes until the whole document is laid out again.
    document()->markContentsDirty(0, document()->characterCount());
    viewport()->update();
}

void PageBox::showDocument(QTextDocument *document)
{
    // A new document is laid out at unlimited width as soon as it has a layout, and again at
    // each change of its options. With an empty page size nothing here lays it out: the box
    // does, once, when it gives the document the width of the page.
    document->setPageSize(QSizeF(0, 0));
    document->documentLayout()->setPaintDevice(m_zoomDevice.get());
    const QTextOption::WrapMode wrap = HasLongUnbrokenStretch(document)
                                           ? QTextOption::WrapAnywhere
                                           : QTextOption::WrapAtWordBoundaryOrAnywhere;
    setWordWrapMode(wrap);
    QTextOption option = document->defaultTextOption();
    option.setWrapMode(wrap);
    document->setDefaultTextOption(option);
    takePendingSize();
    setDocument(document);
}

void PageBox::takePendingSize()
{
    // A page that was never shown learns its size only when it is, and would then lay the
    // document out again at that width. A page of a stack that is not in front yet takes the
    // size of the one in front, as it will when brought there, and passes it down now.
    if (!testAttribute(Qt::WA_PendingResizeEvent))
        return;
    QList<QWidget *> holders;
    for (QWidget *holder = parentWidget(); holder; holder = holder->parentWidget()) {
        holders.prepend(holder);
        auto *stack = qobject_cast<QStackedWidget *>(holder->parentWidget());
        if (stack && stack->currentWidget() && stack->currentWidget() != holder) {
            holder->setGeometry(stack->currentWidget()->geometry());
            break;
        }
    }
    for (QWidget *holder : std::as_const(holders)) {
        if (holder->layout())
            holder->layout()->activate();
    }
    // The page sizes its viewport; the viewport's own first resize would lay out again too.
    for (QWidget *widget : {static_cast<QWidget *>(this), viewport()}) {
        QResizeEvent resize(widget->size(), QSize());
        QCoreApplication::sendEvent(widget, &resize);
        widget->setAttribute(Qt::WA_PendingResizeEvent, false);
    }
}

void PageBox::resizeEvent(QResizeEvent *event)
{
    // The first resize of the page or its viewport, when shown at last, tells no old size, and
    // Qt lays the document out again even when its width is the one it was laid out at.
    const bool sameWidth = qFuzzyCompare(document()->pageSize().width(), qreal(viewport()->width()));
    if (!event->oldSize().isValid() && sameWidth) {
        QResizeEvent unchanged(event->size(), event->size());
        QTextEdit::resizeEvent(&unchanged);
        return;
    }
    QTextEdit::resizeEvent(event);
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
