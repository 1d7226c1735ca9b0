// The print module: the system's printers through Qt Print Support, loaded by the program when
// the first print preview opens (see notes/printer_access.h).

#include "core/program_module.h"
#include "notes/printer_access.h"

#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>

namespace {

class SystemPrinterAccess : public PrinterAccess
{
public:
    QList<Printer> printers() const override
    {
        QList<Printer> found;
        for (const QPrinterInfo &printer : QPrinterInfo::availablePrinters())
            found.append({printer.printerName(), printer.location()});
        return found;
    }

    QStringList printerNames() const override { return QPrinterInfo::availablePrinterNames(); }

    QString defaultPrinterName() const override { return QPrinterInfo::defaultPrinterName(); }

    QPageLayout printerPageLayout(const QString &printer, const QPageLayout &page) const override
    {
        QPrinter asked(QPrinterInfo::printerInfo(printer), QPrinter::HighResolution);
        asked.setPageLayout(page);
        return asked.pageLayout();
    }

    bool print(const Job &job, QWidget *owner, const PagePainter &paint) override
    {
        QPrinter printer(QPrinterInfo::printerInfo(job.printerName), QPrinter::HighResolution);
        if (!job.pdfFile.isEmpty()) {
            printer.setOutputFormat(QPrinter::PdfFormat);
            printer.setOutputFileName(job.pdfFile);
            if (job.dotsPerInch > 0)
                printer.setResolution(job.dotsPerInch);
        }
        printer.setFullPage(true);
        printer.setPageLayout(job.pageLayout);
        printer.setDocName(job.documentName);
        int first = 0;
        int last = job.pageCount - 1;
        if (job.pdfFile.isEmpty() && !chooseRange(printer, job, owner, first, last))
            return false;
        if (!paint(printer, first, last)) {
            printer.abort();
            return false;
        }
        return true;
    }

private:
    static bool chooseRange(QPrinter &printer, const Job &job, QWidget *owner, int &first, int &last)
    {
        QPrintDialog dialog(&printer, owner);
        dialog.setMinMax(1, job.pageCount);
        dialog.setOption(QAbstractPrintDialog::PrintPageRange);
        if (dialog.exec() != QDialog::Accepted)
            return false;
        if (printer.printRange() == QPrinter::PageRange) {
            first = printer.fromPage() - 1;
            last = printer.toPage() - 1;
        } else if (printer.printRange() == QPrinter::CurrentPage) {
            first = last = job.currentPage;
        }
        return true;
    }
};

} // namespace

VANTORA_MODULE_EXPORT PrinterAccess *vantora_create_printer_access()
{
    return new SystemPrinterAccess;
}
