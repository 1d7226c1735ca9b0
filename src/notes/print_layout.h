#pragma once

#include "notes/page_breaker.h"
#include "notes/print_settings.h"

#include <QDateTime>
#include <QImage>
#include <QPageLayout>
#include <QRectF>

#include <functional>
#include <memory>

class QIODevice;
class QPagedPaintDevice;
class QPainter;
class QTextDocument;

// A document laid out on printed pages: a copy of the text laid out once, as the editor's page
// lays it out at actual size, broken into pages, and each page drawn with its head and foot on
// any painter. The preview, the PDF and the printer therefore get the same line breaks as the
// page on screen, with indents, spacing, tables and pictures at the size the page shows them.
//
// Two kinds of units: the page (paper, margins, head, foot, text area) is counted in page
// units, dots of kDotsPerInch; the copy of the document is laid out in the screen's pixels
// (documentDpi()), in which the document's own lengths are given, and drawn scaled up by
// documentScale(). Page slices are in document pixels.
//
// The paper's margins are measured from its edge; a margin smaller than the printer's
// unprintable edge is widened to it. Inside them the head and the foot take a band each when
// they show anything, and the text fills what is left: the head and foot are never drawn
// over the text.
class PrintLayout
{
public:
    // Page units are dots of this resolution.
    static constexpr qreal kDotsPerInch = 1200.0;
    static qreal dotsFromMm(qreal mm) { return mm * kDotsPerInch / 25.4; }

    // What the head and the foot need besides the settings.
    struct Context
    {
        QString fileName;     // the document's file name, or its caption when never saved
        QDateTime printedAt;  // the date and time in the head
        QMarginsF printerEdgeMm; // what the printer cannot print, in millimetres
    };

    PrintLayout();
    ~PrintLayout();

    // Lays out a copy of `document`; the document itself is not touched. Pictures larger than
    // the text area are shown smaller, in proportion, so each fits on a page.
    void layOut(const QTextDocument &document, const PrintSettings &settings, const Context &context);

    // Lets the copy of the document go; there are no pages until the next layOut().
    void clear();

    int pageCount() const { return int(m_pages.size()); }
    const QList<PageSlice> &pages() const { return m_pages; }
    // The page showing character `position` (the last page for anything beyond).
    int pageOfCharacter(int position) const;

    // The paper and its orientation, without margins (the pages are drawn edge to edge).
    QPageLayout pageLayout() const;
    QSizeF paperSize() const { return m_paper.size(); } // in page units
    QRectF textRect() const { return m_text; }
    // The resolution the document is laid out at: the screen's, as the text layout uses it
    // without a paint device of its own (the editor's page at 100 %).
    qreal documentDpi() const { return m_documentDpi; }
    // Page units per document pixel.
    qreal documentScale() const { return kDotsPerInch / m_documentDpi; }
    // The screen resolution documents are laid out at, in dots per inch.
    static int screenDpi();
    QRectF headRect() const { return m_head; }
    QRectF footRect() const { return m_foot; }
    // True when the margins left too little room and were narrowed for the text to fit.
    bool marginsReduced() const { return m_marginsReduced; }

    // The texts of the head and the foot of page `index`; empty when switched off.
    QString headTitle() const;
    QString headDateTime() const;
    QString footName() const;
    QString footFileName() const;
    QString footPageNumber(int index) const;

    // Draws page `index` scaled into `target` (device coordinates), keeping its proportions.
    // `paper` fills the paper white first (the preview; a printer has its own paper).
    void drawPage(QPainter &painter, int index, const QRectF &target, bool paper = false) const;
    // Page `index` as an image, `dotsPerPageUnit` device pixels per page unit.
    QImage pageImage(int index, qreal dotsPerPageUnit, qreal devicePixelRatio = 1.0) const;

    // Called after each page with the pages done and the total; returning false stops.
    using Progress = std::function<bool(int done, int total)>;
    // Draws pages `first` to `last` (0-based, inclusive) onto `device`, one page each. False
    // when the painter could not start or `progress` stopped it.
    bool renderPages(QPagedPaintDevice &device, int first, int last, const Progress &progress = {}) const;
    // Every page as a PDF document, written to `device`.
    bool writePdf(QIODevice &device, const QString &title, const Progress &progress = {}) const;

private:
    void placeAreas(const PrintSettings &settings, const QMarginsF &printerEdgeMm);
    void fitPictures();
    void drawHeadFoot(QPainter &painter, int index) const;

    std::unique_ptr<QTextDocument> m_document;
    QImage m_layoutDevice;
    qreal m_documentDpi = 96.0;
    PrintSettings m_settings;
    Context m_context;
    QPageLayout m_pageLayout;
    QRectF m_paper;
    QRectF m_text;
    QRectF m_head;
    QRectF m_foot;
    bool m_marginsReduced = false;
    QList<PageSlice> m_pages;
};
