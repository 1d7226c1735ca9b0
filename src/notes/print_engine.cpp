#include "notes/print_engine.h"

#include "core/clock_source.h"
#include "core/program_module.h"
#include "core/safe_file_write.h"
#include "notes/print_paper.h"
#include "notes/printer_access.h"
#include "themes/message_box.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFileInfo>
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
QString g_printModule = QStringLiteral("vantora_print");

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

// The system's printers, the print module loaded on the first call. Null when it cannot be
// loaded; *problem then says why.
PrinterAccess *printerAccess(QString *problem = nullptr)
{
    return ProgramModuleObject<PrinterAccess>(g_printModule, kPrintModuleEntry, problem);
}

void tellPrintingUnavailable(QWidget *owner)
{
    QString problem;
    printerAccess(&problem);
    ShowNotice(PrintEngine::tr("Cannot Print"),
               PrintEngine::tr("Printing is not available: %1. Saving the pages as a PDF file still works.")
                   .arg(problem),
               true, owner);
}

// The printer a preview starts with: the system's default, else the first one installed.
QString firstChoicePrinter()
{
    if (g_testPrinters)
        return g_testPrinters->value(0);
    PrinterAccess *access = printerAccess();
    if (!access)
        return QString();
    const QString name = access->defaultPrinterName();
    return name.isEmpty() ? access->printerNames().value(0) : name;
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

void PrintEngine::setPrintModuleForTesting(const QString &name)
{
    g_printModule = name;
}

bool PrintEngine::PrinterAvailableCheck() const
{
    if (g_testPrinters)
        return !g_testPrinters->isEmpty();
    PrinterAccess *access = printerAccess();
    return access && !access->printerNames().isEmpty();
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
    if (PrinterAccess *access = printerAccess()) {
        for (const PrinterAccess::Printer &printer : access->printers())
            choices.append({printer.name, caption(printer.name, printer.location)});
    }
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
    PrinterAccess *access = printerAccess();
    if (!access)
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
    QPageLayout layout = access->printerPageLayout(
        m_printerName, QPageLayout(PageSizeOfPaper(m_settings.paperCode, m_settings.userPaperMm()),
                                   m_settings.orientation, QMarginsF()));
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
    if (m_printerName.isEmpty())
        m_printerName = firstChoicePrinter();
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
    if (!g_testPrinters && !printerAccess()) {
        tellPrintingUnavailable(owner);
        return false;
    }
    if (!PrinterAvailableCheck()) {
        ShowInfoMessage(kNoPrinterMessage, QString(), owner);
        return false;
    }
    if (!hasContent(owner))
        return false;
    return sendPages(QString(), 0, owner);
}

bool PrintEngine::printToFile(const QString &path, int dotsPerInch, QWidget *owner)
{
    if (!hasContent(owner))
        return false;
    return sendPages(path, dotsPerInch, owner);
}

bool PrintEngine::sendPages(const QString &pdfFile, int dotsPerInch, QWidget *owner)
{
    PrinterAccess *access = printerAccess();
    if (!access) {
        tellPrintingUnavailable(owner);
        return false;
    }
    PrinterAccess::Job job;
    job.printerName = pdfFile.isEmpty() ? m_printerName : QString();
    job.pageLayout = m_layout.pageLayout();
    job.documentName = m_fileName;
    job.pageCount = m_layout.pageCount();
    job.currentPage = m_page;
    job.pdfFile = pdfFile;
    job.dotsPerInch = dotsPerInch;
    return access->print(job, owner, [this, owner](QPagedPaintDevice &device, int first, int last) {
        QProgressDialog progress(tr("Printing..."), tr("Cancel"), 0, last - first + 1, owner);
        progress.setWindowTitle(tr("Vantora Print"));
        progress.setMinimumDuration(kProgressDelayMs);
        return m_layout.renderPages(device, first, last, progressOver(progress));
    });
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
