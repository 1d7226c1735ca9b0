#include "notes/print_preview_window.h"

#include "notes/print_engine.h"
#include "notes/print_page_view.h"
#include "notes/print_setup_tabs.h"
#include "themes/painted_frame.h"
#include "themes/panel_tool_style.h"

#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QSizeGrip>
#include <QSpinBox>
#include <QSplitter>
#include <QStandardPaths>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

// Setup changes arrive with every key typed; the pages are laid out again once typing pauses.
constexpr int kRefreshDelayMs = 150;
const QSize kPreferredSize(1120, 800);

} // namespace

PrintPreviewWindow::PrintPreviewWindow(PrintEngine *engine, const QTextDocument *document, const QString &fileName,
                                       QWidget *parent)
    : ThemedDialog(QStringLiteral("fnte_PRN"), tr("Vantora Print Preview"), parent), m_engine(engine),
      m_fileName(fileName)
{
    m_view = new PrintPageView(engine);
    m_scroll = new QScrollArea;
    m_scroll->setObjectName(QStringLiteral("scrPREVIEW"));
    m_scroll->setWidget(m_view);
    m_scroll->setWidgetResizable(false);
    m_scroll->setAlignment(Qt::AlignCenter);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setMinimumSize(360, 300);

    m_setup = new PrintSetupTabs(engine->settings());
    m_setup->setMinimumWidth(300);
    m_setup->setDocumentMode(true);

    auto *split = new QSplitter;
    split->addWidget(m_scroll);
    split->addWidget(m_setup);
    split->setStretchFactor(0, 1);
    split->setStretchFactor(1, 0);
    split->setChildrenCollapsible(false);

    auto *column = new QVBoxLayout;
    column->addWidget(buildCommandRow());
    column->addWidget(split, 1);
    auto *grip = new QSizeGrip(this);
    grip->setToolTip(tr("Drag to change the size of the window"));
    column->addWidget(grip, 0, Qt::AlignRight | Qt::AlignBottom);
    setPanelLayout(column);
    setDefaultButton(nullptr);
    setSizeGripEnabled(false);

    m_refresh = new QTimer(this);
    m_refresh->setSingleShot(true);
    m_refresh->setInterval(kRefreshDelayMs);
    connect(m_refresh, &QTimer::timeout, this, &PrintPreviewWindow::PrintPageType);
    connect(m_setup, &PrintSetupTabs::settingsChanged, m_refresh, qOverload<>(&QTimer::start));
    connect(m_setup, &PrintSetupTabs::printerChosen, this, [this](const QString &name) {
        m_engine->setPrinterName(name);
        PrintPageType();
    });

    connect(engine, &PrintEngine::pageChanged, this, &PrintPreviewWindow::showPageNumbers);
    connect(engine, &PrintEngine::pagesEnabled, this, [this](bool back, bool forward) {
        m_first->setEnabled(back);
        m_previous->setEnabled(back);
        m_next->setEnabled(forward);
        m_last->setEnabled(forward);
    });
    connect(engine, &PrintEngine::zoomChanged, this, &PrintPreviewWindow::showZoom);
    connect(engine, &PrintEngine::laidOut, this,
            [this] { m_setup->showMarginsReduced(m_engine->layout().marginsReduced()); });

    const QSize available = parent && parent->screen() ? parent->screen()->availableSize() : kPreferredSize;
    resize(kPreferredSize.boundedTo(available * 0.92));
    showZoom(engine->zoom());
    // The preview settles which printer the pages are for; the list then shows it chosen.
    engine->PrintPreview(document, fileName);
    m_setup->setPrinters(engine->printers(), engine->printerName());
}

PrintPreviewWindow::~PrintPreviewWindow() = default;

QWidget *PrintPreviewWindow::buildCommandRow()
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    const auto add = [&](QWidget *widget) { layout->addWidget(widget); };

    QToolButton *print = addCommand(QStringLiteral("btnPRINT"), tr("Print..."), tr("Print the pages (Ctrl+P)"),
                                    QKeySequence::Print);
    connect(print, &QToolButton::clicked, this, [this] { m_engine->PagesPrint(this); });
    add(print);
    QToolButton *pdf = addCommand(QStringLiteral("btnPDF"), tr("Save as PDF..."),
                                  tr("Save the pages as a PDF file, as they are shown here (Ctrl+Shift+S)"),
                                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    connect(pdf, &QToolButton::clicked, this, &PrintPreviewWindow::savePdf);
    add(pdf);
    layout->addSpacing(12);

    m_first = addCommand(QStringLiteral("btnFIRST"), QStringLiteral("|\u25c0"), tr("The first page (Ctrl+Home)"),
                         QKeySequence(Qt::CTRL | Qt::Key_Home));
    connect(m_first, &QToolButton::clicked, m_engine, &PrintEngine::PagesGotoStart);
    add(m_first);
    m_previous = addCommand(QStringLiteral("btnPREVIOUS"), QStringLiteral("\u25c0"), tr("The page before (Page Up)"),
                            QKeySequence(Qt::Key_PageUp));
    connect(m_previous, &QToolButton::clicked, m_engine, &PrintEngine::PagesGotoPrevious);
    add(m_previous);
    m_pageNumber = new QSpinBox;
    m_pageNumber->setObjectName(QStringLiteral("spnPAGE"));
    m_pageNumber->setToolTip(tr("The page shown; type a number to go there"));
    m_pageNumber->setKeyboardTracking(false);
    connect(m_pageNumber, &QSpinBox::valueChanged, this, [this](int page) { m_engine->PageSelect(page - 1); });
    add(m_pageNumber);
    m_pageCount = new QLabel;
    m_pageCount->setObjectName(QStringLiteral("lblPAGES"));
    add(m_pageCount);
    m_next = addCommand(QStringLiteral("btnNEXT"), QStringLiteral("\u25b6"), tr("The next page (Page Down)"),
                        QKeySequence(Qt::Key_PageDown));
    connect(m_next, &QToolButton::clicked, m_engine, &PrintEngine::PagesGotoNext);
    add(m_next);
    m_last = addCommand(QStringLiteral("btnLAST"), QStringLiteral("\u25b6|"), tr("The last page (Ctrl+End)"),
                        QKeySequence(Qt::CTRL | Qt::Key_End));
    connect(m_last, &QToolButton::clicked, m_engine, &PrintEngine::PagesGotoEnd);
    add(m_last);
    layout->addSpacing(12);

    QToolButton *zoomOut = addCommand(QStringLiteral("btnZOOMOUT"), QStringLiteral("\u2212"),
                                      tr("Smaller (Ctrl+minus)"), QKeySequence::ZoomOut);
    connect(zoomOut, &QToolButton::clicked, m_engine, &PrintEngine::PageZoomOut);
    add(zoomOut);
    m_zoom = new QComboBox;
    m_zoom->setObjectName(QStringLiteral("cboZOOM"));
    m_zoom->setEditable(true);
    m_zoom->setInsertPolicy(QComboBox::NoInsert);
    m_zoom->setToolTip(tr("The size of the page on the screen, %1 to %2")
                           .arg(PrintEngine::zoomCaption(PrintEngine::kSmallestZoom),
                                PrintEngine::zoomCaption(PrintEngine::kLargestZoom)));
    for (int level : PrintEngine::zoomLevels())
        m_zoom->addItem(PrintEngine::zoomCaption(level), level);
    connect(m_zoom, &QComboBox::activated, this,
            [this](int index) { m_engine->PageZoomSelected(m_zoom->itemData(index).toInt()); });
    connect(m_zoom->lineEdit(), &QLineEdit::editingFinished, this, &PrintPreviewWindow::zoomTyped);
    add(m_zoom);
    QToolButton *zoomIn = addCommand(QStringLiteral("btnZOOMIN"), QStringLiteral("+"), tr("Larger (Ctrl+plus)"),
                                     QKeySequence::ZoomIn);
    connect(zoomIn, &QToolButton::clicked, m_engine, &PrintEngine::PageZoomIn);
    add(zoomIn);

    layout->addStretch(1);
    QToolButton *close = addCommand(QStringLiteral("btnCLOSE"), tr("Close"), tr("Close the preview (Escape)"));
    connect(close, &QToolButton::clicked, this, &QDialog::reject);
    add(close);

    return row;
}

QToolButton *PrintPreviewWindow::addCommand(const QString &name, const QString &caption, const QString &toolTip,
                                            const QKeySequence &shortcut)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setText(caption);
    button->setToolTip(toolTip);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    if (!shortcut.isEmpty()) {
        auto *key = new QShortcut(shortcut, this);
        connect(key, &QShortcut::activated, button, [button] {
            if (button->isEnabled())
                button->click();
        });
    }
    return button;
}

void PrintPreviewWindow::ThemeElementsUpdate()
{
    ThemedDialog::ThemeElementsUpdate();
    PreparePanelTools(panel());
    panel()->update();
}

void PrintPreviewWindow::showPageNumbers(int page, int count)
{
    const QSignalBlocker block(m_pageNumber);
    m_pageNumber->setRange(1, std::max(1, count));
    m_pageNumber->setValue(page + 1);
    m_pageCount->setText(tr("of %1").arg(count));
    m_view->refreshPage();
    m_scroll->verticalScrollBar()->setValue(0);
}

void PrintPreviewWindow::showZoom(int percent)
{
    m_zoom->setEditText(PrintEngine::zoomCaption(percent));
    m_view->refreshPage();
}

void PrintPreviewWindow::zoomTyped()
{
    const int percent = PrintEngine::zoomFromText(m_zoom->currentText());
    if (percent > 0)
        m_engine->PageZoomSelected(percent);
    // Out of bounds or no number: the field shows the zoom in use.
    showZoom(m_engine->zoom());
}

void PrintPreviewWindow::PrintPageType()
{
    m_refresh->stop();
    m_engine->setSettings(m_setup->settings());
    m_engine->ReviewRefresh();
}

void PrintPreviewWindow::ShadowPageRedo()
{
    m_view->update();
}

void PrintPreviewWindow::savePdf()
{
    const QString base = QFileInfo(m_fileName).completeBaseName().isEmpty() ? tr("Document")
                                                                            : QFileInfo(m_fileName).completeBaseName();
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    const QString path = QFileDialog::getSaveFileName(this, tr("Save as PDF"), QDir(folder).filePath(base + ".pdf"),
                                                      tr("PDF files (*.pdf)"));
    if (path.isEmpty())
        return;
    PrintPageType();
    m_engine->savePdf(path.endsWith(QLatin1String(".pdf"), Qt::CaseInsensitive) ? path : path + ".pdf", this);
}

void PrintPreviewWindow::fitViewToArea()
{
    m_view->setAreaSize(m_scroll->viewport()->size());
    ShadowPageRedo();
}

void PrintPreviewWindow::resizeEvent(QResizeEvent *event)
{
    ThemedDialog::resizeEvent(event);
    QTimer::singleShot(0, this, &PrintPreviewWindow::fitViewToArea);
}

void PrintPreviewWindow::keyPressEvent(QKeyEvent *event)
{
    // Home and End turn to the first and last page while the page has the keyboard.
    if (m_view->hasFocus() && (event->key() == Qt::Key_Home || event->key() == Qt::Key_End)) {
        event->key() == Qt::Key_Home ? m_engine->PagesGotoStart() : m_engine->PagesGotoEnd();
        return;
    }
    ThemedDialog::keyPressEvent(event);
}

void PrintPreviewWindow::done(int result)
{
    m_engine->setSettings(m_setup->settings());
    m_engine->saveSettings();
    m_engine->endPreview();
    ThemedDialog::done(result);
}
