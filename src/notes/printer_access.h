#pragma once

#include <QList>
#include <QPageLayout>
#include <QString>
#include <QStringList>

#include <functional>

class QPagedPaintDevice;
class QWidget;

// What the print engine asks of the system's printers.
//
// Qt Print Support lives in a module of its own (src/print/) that is loaded when the first
// preview opens: linked into the program it would cost every start the time to load and
// relocate it and the libraries under it, for printing that most runs never do.
class PrinterAccess
{
public:
    virtual ~PrinterAccess() = default;

    struct Printer
    {
        QString name;
        // Where the printer says it is; often empty.
        QString location;
    };
    // The installed printers, asked of the system on every call.
    virtual QList<Printer> printers() const = 0;
    // Their names alone, which is quicker to ask.
    virtual QStringList printerNames() const = 0;
    // The printer the system prints on unless told otherwise; empty for none.
    virtual QString defaultPrinterName() const = 0;
    // The layout `printer` gives a page of `page`'s size and orientation: its minimum margins
    // are the edges the printer cannot print on.
    virtual QPageLayout printerPageLayout(const QString &printer, const QPageLayout &page) const = 0;

    struct Job
    {
        QString printerName;
        // The paper of the pages, drawn edge to edge: the pages keep their margins themselves.
        QPageLayout pageLayout;
        QString documentName;
        int pageCount = 0;
        // 0-based; what the dialog's "current page" choice prints.
        int currentPage = 0;
        // When set, the pages go into this PDF file through the printer's own PDF output,
        // without a dialog, at `dotsPerInch` (0: the printer's high resolution).
        QString pdfFile;
        int dotsPerInch = 0;
    };
    // Paints pages `first` to `last` (0-based) on `device`, starting on its first page; false
    // when stopped.
    using PagePainter = std::function<bool(QPagedPaintDevice &device, int first, int last)>;
    // Shows the print dialog for `job` over `owner`, with pages 1 to pageCount to choose from,
    // then paints the chosen pages. False when the dialog is cancelled or the painting stops;
    // a stopped job is abandoned.
    virtual bool print(const Job &job, QWidget *owner, const PagePainter &paint) = 0;
};

// The module's one entry point, looked up by this name: PrinterAccess *vantora_create_printer_access().
inline constexpr char kPrintModuleEntry[] = "vantora_create_printer_access";
