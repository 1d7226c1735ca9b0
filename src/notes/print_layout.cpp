#include "notes/print_layout.h"

#include "notes/print_paper.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QPdfWriter>
#include <QScreen>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextImageFormat>

#include <cmath>

namespace {

// The text area is never smaller than this, whatever the margins say.
constexpr qreal kSmallestTextMm = 10.0;
// Pictures are fitted a little inside the text height: the line under a picture also needs
// room for the descent of its text.
constexpr qreal kPictureHeightShare = 0.95;
// Half a document pixel: lines touching a page's band from outside are left out of it.
constexpr qreal kClipInset = 0.5;
// The head and foot are set in points but drawn in page units.
constexpr qreal kDotsPerPoint = PrintLayout::kDotsPerInch / 72.0;

QFont headFont(qreal points, bool bold)
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(qRound(points * kDotsPerPoint));
    font.setBold(bold);
    return font;
}

QFont titleFont()
{
    return headFont(10, true);
}

QFont plainFont()
{
    return headFont(9, false);
}

// The head or foot band: a row of text and its rule, with room between them and the text.
qreal bandHeight()
{
    return QFontMetricsF(titleFont()).height() * 1.9;
}

QImage pictureOf(const QTextDocument &document, const QTextImageFormat &format)
{
    const QVariant data = document.resource(QTextDocument::ImageResource, QUrl(format.name()));
    if (data.canConvert<QImage>() && data.typeId() != QMetaType::QByteArray)
        return data.value<QImage>();
    return QImage::fromData(data.toByteArray());
}

// The size a picture is shown at before fitting, in the pixels its format counts in.
QSizeF naturalPictureSize(const QTextDocument &document, const QTextImageFormat &format)
{
    const bool hasWidth = format.hasProperty(QTextFormat::ImageWidth);
    const bool hasHeight = format.hasProperty(QTextFormat::ImageHeight);
    if (hasWidth && hasHeight)
        return QSizeF(format.width(), format.height());
    const QSizeF image = pictureOf(document, format).deviceIndependentSize();
    if (image.isEmpty())
        return QSizeF(format.width(), format.height());
    if (hasWidth)
        return QSizeF(format.width(), format.width() * image.height() / image.width());
    if (hasHeight)
        return QSizeF(format.height() * image.width() / image.height(), format.height());
    return image;
}

} // namespace

PrintLayout::PrintLayout() : m_layoutDevice(1, 1, QImage::Format_RGB32) {}

PrintLayout::~PrintLayout() = default;

int PrintLayout::screenDpi()
{
    // What the text layout itself takes when it has no paint device: the primary screen's
    // logical resolution, unless the program was told to assume 96 dpi.
    if (QCoreApplication::testAttribute(Qt::AA_Use96Dpi))
        return 96;
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? qRound(screen->logicalDotsPerInchY()) : 96;
}

void PrintLayout::layOut(const QTextDocument &document, const PrintSettings &settings, const Context &context)
{
    m_settings = settings;
    m_context = context;
    placeAreas(settings, context.printerEdgeMm);

    // The document's lengths (indents, spacing, table widths and padding, picture sizes) are
    // pixels of the screen, where the editor shows them; laid out there, they keep their size
    // beside the text. Laid out for the printer they would shrink by its resolution over the
    // screen's (an inch and a half of indent printed as a tenth of an inch at 1200 dpi).
    const qreal dotsPerMeter = std::round(screenDpi() / 0.0254);
    m_layoutDevice.setDotsPerMeterX(int(dotsPerMeter));
    m_layoutDevice.setDotsPerMeterY(int(dotsPerMeter));
    m_documentDpi = m_layoutDevice.logicalDpiY();

    m_document.reset(document.clone());
    m_document->setUndoRedoEnabled(false);
    m_document->setDocumentMargin(0);
    m_document->documentLayout()->setPaintDevice(&m_layoutDevice);
    m_document->setTextWidth(m_text.width() / documentScale());
    fitPictures();

    const QList<LaidOutLine> lines = CollectLaidOutLines(*m_document);
    m_pages = BreakIntoPages(lines, m_text.height() / documentScale(), m_document->characterCount() - 1);
}

void PrintLayout::clear()
{
    m_document.reset();
    m_pages.clear();
}

void PrintLayout::placeAreas(const PrintSettings &settings, const QMarginsF &printerEdgeMm)
{
    m_pageLayout = QPageLayout(PageSizeOfPaper(settings.paperCode, settings.userPaperMm()), settings.orientation,
                               QMarginsF(), QPageLayout::Millimeter);
    const QRectF paperMm = m_pageLayout.fullRect(QPageLayout::Millimeter);
    m_paper = QRectF(0, 0, dotsFromMm(paperMm.width()), dotsFromMm(paperMm.height()));

    const QMarginsF wanted = settings.marginsMm();
    qreal left = dotsFromMm(std::max(wanted.left(), printerEdgeMm.left()));
    qreal top = dotsFromMm(std::max(wanted.top(), printerEdgeMm.top()));
    qreal right = dotsFromMm(std::max(wanted.right(), printerEdgeMm.right()));
    qreal bottom = dotsFromMm(std::max(wanted.bottom(), printerEdgeMm.bottom()));
    const bool head = settings.title || settings.date || settings.time || settings.headLine;
    const bool foot = settings.footName || settings.footFileName || settings.pageNumber || settings.footLine;
    qreal headBand = head ? bandHeight() : 0;
    qreal footBand = foot ? bandHeight() : 0;

    // Too little room left: everything outside the text shrinks in proportion.
    const qreal smallest = dotsFromMm(kSmallestTextMm);
    m_marginsReduced = false;
    const qreal across = left + right;
    if (m_paper.width() - across < smallest) {
        const qreal factor = std::max(0.0, m_paper.width() - smallest) / across;
        left *= factor;
        right *= factor;
        m_marginsReduced = true;
    }
    const qreal down = top + bottom + headBand + footBand;
    if (m_paper.height() - down < smallest) {
        const qreal factor = std::max(0.0, m_paper.height() - smallest) / down;
        top *= factor;
        bottom *= factor;
        headBand *= factor;
        footBand *= factor;
        m_marginsReduced = true;
    }
    const qreal width = m_paper.width() - left - right;
    m_head = QRectF(left, top, width, headBand);
    m_text = QRectF(left, top + headBand, width, m_paper.height() - top - bottom - headBand - footBand);
    m_foot = QRectF(left, m_text.bottom(), width, footBand);
}

void PrintLayout::fitPictures()
{
    // Picture sizes are screen pixels, the document's own units here.
    const QSizeF room = QSizeF(m_text.width(), m_text.height() * kPictureHeightShare) / documentScale();
    struct Fitted
    {
        int position;
        QTextImageFormat format;
    };
    QList<Fitted> fitted;
    for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const QTextImageFormat format = fragment.charFormat().toImageFormat();
            if (!format.isValid())
                continue;
            const QSizeF natural = naturalPictureSize(*m_document, format);
            if (natural.isEmpty() || (natural.width() <= room.width() && natural.height() <= room.height()))
                continue;
            const qreal factor = std::min(room.width() / natural.width(), room.height() / natural.height());
            QTextImageFormat smaller = format;
            smaller.setWidth(std::floor(natural.width() * factor));
            smaller.setHeight(std::floor(natural.height() * factor));
            // A picture is one character; a fragment of several holds the same picture repeated.
            for (int i = 0; i < fragment.length(); ++i)
                fitted.append({fragment.position() + i, smaller});
        }
    }
    for (const Fitted &picture : fitted) {
        QTextCursor cursor(m_document.get());
        cursor.setPosition(picture.position);
        cursor.setPosition(picture.position + 1, QTextCursor::KeepAnchor);
        cursor.setCharFormat(picture.format);
    }
}

int PrintLayout::pageOfCharacter(int position) const
{
    int page = 0;
    for (int i = 0; i < m_pages.size(); ++i) {
        if (m_pages[i].firstChar <= position)
            page = i;
    }
    return page;
}

QPageLayout PrintLayout::pageLayout() const
{
    return m_pageLayout;
}

QString PrintLayout::headTitle() const
{
    return m_settings.title ? m_settings.printTitle : QString();
}

QString PrintLayout::headDateTime() const
{
    QStringList parts;
    if (m_settings.date)
        parts << m_context.printedAt.toString(QStringLiteral("dd/MM/yyyy"));
    if (m_settings.time)
        parts << m_context.printedAt.toString(QStringLiteral("H:mm:ss"));
    return parts.join(QStringLiteral("  "));
}

QString PrintLayout::footName() const
{
    if (!m_settings.footName)
        return QString();
    QStringList fields;
    for (const QString &field : {m_settings.printField1, m_settings.printField2}) {
        if (!field.isEmpty())
            fields << field;
    }
    return fields.join(QStringLiteral("  "));
}

QString PrintLayout::footFileName() const
{
    return m_settings.footFileName ? m_context.fileName : QString();
}

QString PrintLayout::footPageNumber(int index) const
{
    if (!m_settings.pageNumber)
        return QString();
    return QGuiApplication::translate("PrintLayout", "Page %1 of %2").arg(index + 1).arg(pageCount());
}

void PrintLayout::drawHeadFoot(QPainter &painter, int index) const
{
    const QColor ink(40, 40, 40);
    painter.setPen(ink);
    const qreal lineHeight = QFontMetricsF(titleFont()).height();
    QPen rule(QColor(90, 90, 90));
    rule.setWidthF(kDotsPerPoint * 0.5);

    if (!m_head.isEmpty()) {
        const QRectF row(m_head.left(), m_head.top(), m_head.width(), lineHeight);
        painter.setFont(titleFont());
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter, headTitle());
        painter.setFont(plainFont());
        painter.drawText(row, Qt::AlignRight | Qt::AlignVCenter, headDateTime());
        if (m_settings.headLine) {
            painter.save();
            painter.setPen(rule);
            const qreal y = m_head.top() + lineHeight * 1.25;
            painter.drawLine(QPointF(m_head.left(), y), QPointF(m_head.right(), y));
            painter.restore();
        }
    }
    if (!m_foot.isEmpty()) {
        const QRectF row(m_foot.left(), m_foot.bottom() - lineHeight, m_foot.width(), lineHeight);
        painter.setFont(plainFont());
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter, footName());
        painter.drawText(row, Qt::AlignHCenter | Qt::AlignVCenter, footFileName());
        painter.drawText(row, Qt::AlignRight | Qt::AlignVCenter, footPageNumber(index));
        if (m_settings.footLine) {
            painter.save();
            painter.setPen(rule);
            const qreal y = m_foot.bottom() - lineHeight * 1.25;
            painter.drawLine(QPointF(m_foot.left(), y), QPointF(m_foot.right(), y));
            painter.restore();
        }
    }
}

void PrintLayout::drawPage(QPainter &painter, int index, const QRectF &target, bool paper) const
{
    if (!m_document || index < 0 || index >= m_pages.size())
        return;
    const qreal scale = std::min(target.width() / m_paper.width(), target.height() / m_paper.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(target.topLeft());
    painter.scale(scale, scale);
    if (paper)
        painter.fillRect(m_paper, Qt::white);
    drawHeadFoot(painter, index);

    const PageSlice &slice = m_pages[index];
    const QRectF band(0, slice.top, m_text.width() / documentScale(), slice.bottom - slice.top);
    painter.translate(m_text.topLeft());
    painter.scale(documentScale(), documentScale());
    painter.translate(0, -slice.top);
    painter.setClipRect(band);
    QAbstractTextDocumentLayout::PaintContext context;
    // A line ending exactly at the cut is not drawn again (clipped away) on the next page: it
    // would still be in a PDF's text, twice.
    context.clip = band.adjusted(0, kClipInset, 0, -kClipInset);
    // Paper is white whatever the desktop's colours: text without a colour of its own prints black.
    context.palette.setColor(QPalette::Text, Qt::black);
    context.palette.setColor(QPalette::Link, QColor(0, 0, 200));
    m_document->documentLayout()->draw(&painter, context);
    painter.restore();
}

QImage PrintLayout::pageImage(int index, qreal dotsPerPageUnit, qreal devicePixelRatio) const
{
    const QSizeF size = m_paper.size() * dotsPerPageUnit * devicePixelRatio;
    QImage image(std::max(1, qRound(size.width())), std::max(1, qRound(size.height())),
                 QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        drawPage(painter, index, QRectF(QPointF(0, 0), size), true);
    }
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

bool PrintLayout::renderPages(QPagedPaintDevice &device, int first, int last, const Progress &progress) const
{
    first = std::max(first, 0);
    last = std::min(last, pageCount() - 1);
    QPainter painter;
    if (!painter.begin(&device))
        return false;
    const QRectF target(0, 0, device.width(), device.height());
    for (int i = first; i <= last; ++i) {
        if (i > first)
            device.newPage();
        drawPage(painter, i, target);
        if (progress && !progress(i - first + 1, last - first + 1)) {
            painter.end();
            return false;
        }
    }
    return painter.end();
}

bool PrintLayout::writePdf(QIODevice &device, const QString &title, const Progress &progress) const
{
    QPdfWriter writer(&device);
    writer.setResolution(int(kDotsPerInch));
    writer.setCreator(QStringLiteral("Vantora"));
    writer.setTitle(title);
    writer.setPageLayout(m_pageLayout);
    return renderPages(writer, 0, pageCount() - 1, progress);
}
