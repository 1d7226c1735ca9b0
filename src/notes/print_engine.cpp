#include "notes/print_engine.h"

#include "core/clock_source.h"
#include "core/safe_file_write.h"
#include "notes/print_paper.h"
#include "themes/message_box.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFileInfo>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QProgressDialog>
#include <QRegularExpression>
#include <QTextDocument>

namespace {

// What a printer that cannot be asked is taken to leave unprinted: the quarter of an inch of
// most office printers. The preview without a printer and the PDF use it too, so they show
// what a printer would print.
constexpr qreal kUsualPrinterEdgeMm = 6.35;
// The preview's border around a page larger than its area, in pixels.
constexpr int kPreviewBorder = 16;
// Progress shows for printing that takes longer than this, in milliseconds.
constexpr int kProgressDelayMs = 400;

std::optional<QStringList> g_testPrinters;

const int kNoPrinterMessage = 5;
const int kNothingToPrintMessage = 6;

// A progress window for page-by-page work; false from the returned function means stop.
PrintLayout::Progress progressOver(QProgressDialog &dialog)
{
    return [&dialog](int done, int total) {
        dialog.setMaximum(total);
        dialog.setValue(done);
        QCoreApplication::processEvents();
        return !dialog.wasCanceled();
    };
}

} // namespace

PrintEngine::PrintEngine(QObject *parent) : QObject(parent), m_settings(PrintSettings::load())
{
    setObjectName(QStringLiteral("cls_PRN"));
    m_settings.zoomPercent = qBound(kSmallestZoom, m_settings.zoomPercent, kLargestZoom);
}

PrintEngine::~PrintEngine() = default;

PrintEngine *PrintEngine::shared()
{
    static QPointer<PrintEngine> instance;
    if (!instance)
        instance = new PrintEngine(QCoreApplication::instance());
    return instance;
}

const QList<int> &PrintEngine::zoomLevels()
{
    static const QList<int> levels = {15, 20, 25, 30, 35, 40, 45, 50, 60, 70, 80, 100, 150, 200};
    return levels;
}

QString PrintEngine::zoomCaption(int percent)
{
    return QStringLiteral("%1 %").arg(percent);
}

int PrintEngine::zoomFromText(const QString &text)
{
    static const QRegularExpression number(QStringLiteral("^\\s*(\\d{1,6})\\s*%?\\s*$"));
    const QRegularExpressionMatch match = number.match(text);
    return match.hasMatch() ? match.captured(1).toInt() : -1;
}

QString PrintEngine::MathDecimalPointSet(const QString &text)
{
    return NormaliseDecimalPoint(text);
}

void PrintEngine::setSettings(const PrintSettings &settings)
{
    const int zoom = m_settings.zoomPercent;
    m_settings = settings;
    m_settings.zoomPercent = zoom;
}

void PrintEngine::saveSettings() const
{
    m_settings.save();
}

void PrintEngine::setPrintersForTesting(std::optional<QStringList> names)
{
    g_testPrinters = std::move(names);
}

bool PrintEngine::PrinterAvailableCheck() const
{
    if (g_testPrinters)
        return !g_testPrinters->isEmpty();
    return !QPrinterInfo::availablePrinterNames().isEmpty();
}

QList<PrintEngine::PrinterChoice> PrintEngine::printers() const
{
    // Printers here have no port as such; where the printer says where it is, that is its
    // port, else it is reached through this computer's print queue.
    const auto caption = [](const QString &name, const QString &location) {
        return name + QStringLiteral(" On ") + (location.isEmpty() ? tr("this computer") : location);
    };
    QList<PrinterChoice> choices;
    if (g_testPrinters) {
        for (const QString &name : *g_testPrinters)
            choices.append({name, caption(name, QString())});
        return choices;
    }
    for (const QPrinterInfo &printer : QPrinterInfo::availablePrinters())
        choices.append({printer.printerName(), caption(printer.printerName(), printer.location())});
    return choices;
}

void PrintEngine::setPrinterName(const QString &name)
{
    m_printerName = name;
}

QMarginsF PrintEngine::printerEdgeMm()
{
    const QMarginsF usual(kUsualPrinterEdgeMm, kUsualPrinterEdgeMm, kUsualPrinterEdgeMm, kUsualPrinterEdgeMm);
    if (m_printerName.isEmpty() || g_testPrinters)
        return usual;
    // Asking a printer for its edge can take a moment: once per printer, paper and orientation.
    const QString key = QStringLiteral("%1|%2|%3|%4x%5")
                            .arg(m_printerName)
                            .arg(m_settings.paperCode)
                            .arg(int(m_settings.orientation))
                            .arg(m_settings.userPaperCm.width())
                            .arg(m_settings.userPaperCm.height());
    if (key == m_edgeKey)
        return m_edgeMm;
    QPrinter printer(QPrinterInfo::printerInfo(m_printerName), QPrinter::HighResolution);
    printer.setPageLayout(QPageLayout(PageSizeOfPaper(m_settings.paperCode, m_settings.userPaperMm()),
                                      m_settings.orientation, QMarginsF()));
    QPageLayout layout = printer.pageLayout();
    layout.setUnits(QPageLayout::Millimeter);
    m_edgeMm = layout.minimumMargins();
    if (m_edgeMm.isNull())
        m_edgeMm = usual;
    m_edgeKey = key;
    return m_edgeMm;
}

void PrintEngine::PrintPreview(const QTextDocument *document, const QString &fileName)
{
    m_document = document;
    m_fileName = fileName;
    m_page = 0;
    if (m_printerName.isEmpty()) {
        m_printerName = g_testPrinters ? g_testPrinters->value(0) : QPrinterInfo::defaultPrinterName();
        if (m_printerName.isEmpty() && !g_testPrinters)
            m_printerName = QPrinterInfo::availablePrinterNames().value(0);
    }
    ReviewRefresh();
    showPage(0);
}

void PrintEngine::endPreview()
{
    m_layout.clear();
    m_document = nullptr;
    m_page = 0;
}

void PrintEngine::ReviewRefresh()
{
    if (!m_document)
        return;
    const int anchor = m_page < m_layout.pageCount() ? m_layout.pages()[m_page].firstChar : 0;
    m_layout.layOut(*m_document, m_settings, {m_fileName, ClockSource::now(), printerEdgeMm()});
    emit laidOut();
    showPage(m_layout.pageOfCharacter(anchor));
}

void PrintEngine::showPage(int page)
{
    m_page = qBound(0, page, std::max(0, m_layout.pageCount() - 1));
    emit pageChanged(m_page, m_layout.pageCount());
    PageEnabled();
}

void PrintEngine::PageSelect(int page)
{
    showPage(page);
}

void PrintEngine::PagesGotoStart()
{
    showPage(0);
}

void PrintEngine::PagesGotoPrevious()
{
    showPage(m_page - 1);
}

void PrintEngine::PagesGotoNext()
{
    showPage(m_page + 1);
}

void PrintEngine::PagesGotoEnd()
{
    showPage(m_layout.pageCount() - 1);
}

void PrintEngine::PageEnabled()
{
    emit pagesEnabled(m_page > 0, m_page < m_layout.pageCount() - 1);
}

void PrintEngine::PageZoomIn()
{
    for (int level : zoomLevels()) {
        if (level > zoom()) {
            PageZoomSelected(level);
            return;
        }
    }
    PageZoomSelected(kLargestZoom);
}

void PrintEngine::PageZoomOut()
{
    const QList<int> &levels = zoomLevels();
    for (auto it = levels.rbegin(); it != levels.rend(); ++it) {
        if (*it < zoom()) {
            PageZoomSelected(*it);
            return;
        }
    }
    PageZoomSelected(kSmallestZoom);
}

void PrintEngine::PageZoomSelected(int percent)
{
    percent = qBound(kSmallestZoom, percent, kLargestZoom);
    if (percent == m_settings.zoomPercent)
        return;
    m_settings.zoomPercent = percent;
    emit zoomChanged(percent);
}

QSize PrintEngine::pageImageSize(qreal dotsPerMm) const
{
    const QSizeF paper = m_layout.paperSize() * (zoom() / 100.0) * dotsPerMm / PrintLayout::dotsFromMm(1.0);
    return QSize(std::max(1, qRound(paper.width())), std::max(1, qRound(paper.height())));
}

QRect PrintEngine::PageReposition(const QSize &area, qreal dotsPerMm) const
{
    const QSize page = pageImageSize(dotsPerMm);
    const int x = page.width() + 2 * kPreviewBorder <= area.width() ? (area.width() - page.width()) / 2
                                                                   : kPreviewBorder;
    const int y = page.height() + 2 * kPreviewBorder <= area.height() ? (area.height() - page.height()) / 2
                                                                     : kPreviewBorder;
    return QRect(QPoint(x, y), page);
}

QImage PrintEngine::currentPageImage(qreal dotsPerMm, qreal devicePixelRatio) const
{
    const qreal dotsPerUnit = (zoom() / 100.0) * dotsPerMm / PrintLayout::dotsFromMm(1.0);
    return m_layout.pageImage(m_page, dotsPerUnit, devicePixelRatio);
}

bool PrintEngine::hasContent(QWidget *owner) const
{
    if (m_document && !m_document->isEmpty() && m_layout.pageCount() > 0)
        return true;
    ShowInfoMessage(kNothingToPrintMessage, QString(), owner);
    return false;
}

bool PrintEngine::PagesPrint(QWidget *owner)
{
    if (!PrinterAvailableCheck()) {
        ShowInfoMessage(kNoPrinterMessage, QString(), owner);
        return false;
    }
    if (!hasContent(owner))
        return false;
    QPrinter printer(QPrinterInfo::printerInfo(m_printerName), QPrinter::HighResolution);
    preparePrinter(printer);
    QPrintDialog dialog(&printer, owner);
    dialog.setMinMax(1, m_layout.pageCount());
    dialog.setOption(QAbstractPrintDialog::PrintPageRange);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    int first = 0;
    int last = m_layout.pageCount() - 1;
    if (printer.printRange() == QPrinter::PageRange) {
        first = printer.fromPage() - 1;
        last = printer.toPage() - 1;
    } else if (printer.printRange() == QPrinter::CurrentPage) {
        first = last = m_page;
    }
    return printPages(printer, first, last, owner);
}

void PrintEngine::preparePrinter(QPrinter &printer) const
{
    // The pages are drawn edge to edge: the layout keeps the margins itself.
    printer.setFullPage(true);
    printer.setPageLayout(m_layout.pageLayout());
    printer.setDocName(m_fileName);
}

bool PrintEngine::printPages(QPrinter &printer, int first, int last, QWidget *owner)
{
    QProgressDialog progress(tr("Printing..."), tr("Cancel"), 0, last - first + 1, owner);
    progress.setWindowTitle(tr("Vantora Print"));
    progress.setMinimumDuration(kProgressDelayMs);
    if (!m_layout.renderPages(printer, first, last, progressOver(progress))) {
        printer.abort();
        return false;
    }
    return true;
}

bool PrintEngine::savePdf(const QString &path, QWidget *owner)
{
    if (!hasContent(owner))
        return false;
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    QProgressDialog progress(tr("Saving the PDF..."), tr("Cancel"), 0, m_layout.pageCount(), owner);
    progress.setWindowTitle(tr("Vantora Print"));
    progress.setMinimumDuration(kProgressDelayMs);
    const QString title = m_document->metaInformation(QTextDocument::DocumentTitle).isEmpty()
                              ? m_fileName
                              : m_document->metaInformation(QTextDocument::DocumentTitle);
    if (!m_layout.writePdf(buffer, title, progressOver(progress)))
        return false;
    progress.reset();
    QString error;
    if (!WriteFileSafely(path, buffer.data(), &error)) {
        ShowNotice(tr("Cannot Save the PDF"),
                   tr("%1 could not be written (%2). Nothing on the disk was changed.")
                       .arg(QDir::toNativeSeparators(path), error),
                   true, owner);
        return false;
    }
    return true;
}
