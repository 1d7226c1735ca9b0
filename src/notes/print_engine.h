#pragma once

#include "notes/print_layout.h"
#include "notes/print_settings.h"

#include <QObject>
#include <QPointer>
#include <QStringList>

#include <optional>

class QTextDocument;
class QWidget;

// cls_PRN, the print class: lays a document out on pages of the chosen paper, keeps the page
// and zoom the preview shows, and sends the pages to a printer or a PDF file. The preview
// window (fnte_PRN) is a view over it.
//
// One engine serves the whole program (shared()); making it reads only its settings. The
// printers are asked for when a preview opens, never at start-up: asking can be slow.
class PrintEngine : public QObject
{
    Q_OBJECT
public:
    explicit PrintEngine(QObject *parent = nullptr);
    ~PrintEngine() override;

    static PrintEngine *shared();

    // The preview's zoom levels, in percent, and the bounds of a typed one.
    static const QList<int> &zoomLevels();
    static constexpr int kSmallestZoom = 10;
    static constexpr int kLargestZoom = 200;
    // "50 %".
    static QString zoomCaption(int percent);
    // The percentage in "50 %", "50%" or "50"; -1 when there is none.
    static int zoomFromText(const QString &text);

    // A typed decimal number with a full stop as its decimal point ("2,5" gives "2.5").
    static QString MathDecimalPointSet(const QString &text);

    const PrintSettings &settings() const { return m_settings; }
    // Takes changed settings; ReviewRefresh() lays the pages out again.
    void setSettings(const PrintSettings &settings);
    void saveSettings() const;

    // Whether any printer is installed.
    bool PrinterAvailableCheck() const;
    // An installed printer, and how the list shows it: "name On port".
    struct PrinterChoice
    {
        QString name;
        QString caption;
    };
    // The installed printers, asked of the system once per call.
    QList<PrinterChoice> printers() const;
    // The printer the pages are laid out for and printed on; empty for none.
    QString printerName() const { return m_printerName; }
    void setPrinterName(const QString &name);

    // Lays `document` out and shows its first page. `fileName` goes into the foot.
    void PrintPreview(const QTextDocument *document, const QString &fileName);
    // Lets go of the document and its pages when the preview closes; a long document's copy
    // would otherwise stay in memory for the rest of the run.
    void endPreview();
    // Lays the document out again after a setting changed, staying on the page that shows
    // the text the current page began with.
    void ReviewRefresh();

    const PrintLayout &layout() const { return m_layout; }
    int pageCount() const { return m_layout.pageCount(); }
    int currentPage() const { return m_page; }
    void PageSelect(int page);
    void PagesGotoStart();
    void PagesGotoPrevious();
    void PagesGotoNext();
    void PagesGotoEnd();
    // Says which way the pages can be turned (pagesEnabled).
    void PageEnabled();

    int zoom() const { return m_settings.zoomPercent; }
    void PageZoomIn();
    void PageZoomOut();
    // Takes a level of the list or a typed one, held within the bounds.
    void PageZoomSelected(int percent);

    // Where the page image goes in a preview area of `area`: centred while it fits, else
    // from the top left with a border. `dotsPerMm` is the screen's.
    QRect PageReposition(const QSize &area, qreal dotsPerMm) const;
    QSize pageImageSize(qreal dotsPerMm) const;
    QImage currentPageImage(qreal dotsPerMm, qreal devicePixelRatio) const;

    // Prints every page through the platform's print dialog. Without a printer, or with an
    // empty document, the user is told so and nothing is printed.
    bool PagesPrint(QWidget *owner);
    // Sends every page through the printer's own PDF output into `path`, without a dialog, at
    // `dotsPerInch` (0: the printer's high resolution): what a printer is sent, as a file.
    bool printToFile(const QString &path, int dotsPerInch, QWidget *owner);
    // Writes the pages as a PDF file (no printer needed). The user is told about an empty
    // document or a failed write; the old file stays whole.
    bool savePdf(const QString &path, QWidget *owner);

    // Tests only: the printers to report instead of asking the system (nullopt asks it).
    static void setPrintersForTesting(std::optional<QStringList> names);
    // Tests only: the name of the module that reaches the printers ("vantora_print").
    static void setPrintModuleForTesting(const QString &name);

signals:
    void laidOut();
    void pageChanged(int page, int count);
    void zoomChanged(int percent);
    void pagesEnabled(bool back, bool forward);

private:
    bool hasContent(QWidget *owner) const;
    // Paints the pages chosen in the print dialog on the chosen printer, or every page into
    // `pdfFile` when one is given, with a progress window that can stop it. Without the print
    // module the user is told why nothing can be printed.
    bool sendPages(const QString &pdfFile, int dotsPerInch, QWidget *owner);
    QMarginsF printerEdgeMm();
    void showPage(int page);

    PrintSettings m_settings;
    PrintLayout m_layout;
    QPointer<const QTextDocument> m_document;
    QString m_fileName;
    QString m_printerName;
    QString m_edgeKey;
    QMarginsF m_edgeMm;
    int m_page = 0;
};
