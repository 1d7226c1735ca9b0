#include "notes/notes_editor.h"

#include "core/app_paths.h"
#include "core/recovery_store.h"
#include "core/safe_file_write.h"
#include "core/settings_store.h"
#include "core/widget_frame.h"
#include "core/widget_index.h"
#include "notes/document_file.h"
#include "notes/document_naming.h"
#include "notes/document_pictures.h"
#include "notes/document_tab_bar.h"
#include "notes/find_replace_bar.h"
#include "notes/format_bar.h"
#include "notes/note_document.h"
#include "notes/notes_settings.h"
#include "notes/notes_settings_dialog.h"
#include "notes/page_box.h"
#include "notes/picture_panel.h"
#include "notes/print_engine.h"
#include "notes/print_preview_window.h"
#include "notes/spell_checker.h"
#include "notes/spell_panel.h"
#include "notes/text_statistics.h"
#include "themes/folder_browser.h"
#include "themes/message_box.h"
#include "themes/painted_frame.h"
#include "themes/panel_tool_style.h"
#include "themes/theme_painter.h"

#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

constexpr int kRecentFiles = 10;
const QString kRecentValue = QStringLiteral("Recent-File-%1");
const QString kSidePanelValue = QStringLiteral("Side-Panel-Width");

QString RecoveryFolder()
{
    return AppPaths::dataPath(QStringLiteral("recovery/notes"));
}

// The saved documents that were open, one path a line, kept beside the recovery copies so
// that a recovery brings back the whole set of documents, not only the unsaved ones.
QString OpenDocumentsListPath()
{
    return QDir(RecoveryFolder()).filePath(QStringLiteral("open-documents.list"));
}

// A document made only so that the editor is not empty: never saved, never touched.
bool IsUntouchedNew(const NoteDocument *document)
{
    return document->path().isEmpty() && !document->DocumentEdited() && document->document()->isEmpty();
}

// How long after the editor is shown its word list starts loading: after the first frame.
constexpr int kSpellReadDelayMs = 400;

} // namespace

NotesEditor::NotesEditor(QWidget *parent)
    : WidgetWindow(QLatin1String(kNotesWindowName), WidgetNotes, tr("Vantora Notes"), parent)
    , m_recovery(new RecoveryStore(RecoveryFolder()))
    , m_spell(SpellChecker::shared())
{
    setAcceptDrops(true);
    m_title = AddBarTitle(bar());
    m_commands = new QWidget(panel());
    buildCommandRow(m_commands);
    QVBoxLayout *column = AddPanelColumn(panel(), m_commands);
    m_formatBar = new FormatBar(panel());
    column->addWidget(m_formatBar);

    auto *tabRow = new QHBoxLayout;
    tabRow->setSpacing(2);
    m_tabs = new DocumentTabBar(panel());
    m_tabs->setObjectName(QStringLiteral("tabDOCS"));
    m_tabs->setTabsClosable(true);
    m_tabs->setExpanding(false);
    m_tabs->setDocumentMode(true);
    m_tabs->setFocusPolicy(Qt::NoFocus);
    tabRow->addWidget(m_tabs, 1);
    m_listButton = new QToolButton(panel());
    m_listButton->setObjectName(QStringLiteral("btnWINDOWS"));
    m_listButton->setText(tr("Open Documents"));
    m_listButton->setToolTip(tr("List of the open documents; choose one to bring it to the front"));
    m_listButton->setAutoRaise(true);
    m_listButton->setFocusPolicy(Qt::TabFocus);
    connect(m_listButton, &QToolButton::clicked, this, &NotesEditor::WindowsListPopup);
    tabRow->addWidget(m_listButton);
    column->addLayout(tabRow);

    m_split = new QSplitter(Qt::Horizontal, panel());
    m_split->setChildrenCollapsible(true);
    m_pages = new QStackedWidget(m_split);
    m_split->addWidget(m_pages);
    buildSidePanel();
    m_split->setStretchFactor(0, 1);
    column->addWidget(m_split, 1);

    // The find bar comes in here when first asked for.
    m_column = column;
    m_findBarPlace = column->count();

    auto *status = new QWidget(panel());
    buildStatusRow(status);
    column->addWidget(status);

    connect(m_tabs, &QTabBar::currentChanged, this, &NotesEditor::onTabChosen);
    connect(m_tabs, &QTabBar::tabCloseRequested, this, [this](int index) {
        if (auto *d = qobject_cast<NoteDocument *>(m_pages->widget(index)))
            closeDocument(d);
    });

    m_recoveryTimer = new QTimer(this);
    m_recoveryTimer->setSingleShot(true);
    connect(m_recoveryTimer, &QTimer::timeout, this, &NotesEditor::writeDueRecoveryCopies);

    installShortcuts();
    DocumentNew();
}

NotesEditor::~NotesEditor()
{
    delete m_recovery;
}

void NotesEditor::buildCommandRow(QWidget *row)
{
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    AddPanelCommand(row, QStringLiteral("btnNEW"), tr("New"), tr("A new document (Ctrl+N)"), [this] { DocumentNew(); });
    QToolButton *open = AddPanelCommand(row, QStringLiteral("btnOPEN"), tr("Open"),
                                   tr("Open documents (Ctrl+O); the arrow lists recent files"),
                                   [this] { DocumentOpen(); });
    m_recentMenu = new QMenu(open);
    open->setMenu(m_recentMenu);
    open->setPopupMode(QToolButton::MenuButtonPopup);
    connect(m_recentMenu, &QMenu::aboutToShow, this, &NotesEditor::fillRecentMenu);
    AddPanelCommand(row, QStringLiteral("btnSAVE"), tr("Save"), tr("Save the document (Ctrl+S)"),
               [this] { DocumentSaveMain(); });
    AddPanelCommand(row, QStringLiteral("btnSAVEAS"), tr("Save As"), tr("Save the document as a new file (Ctrl+Shift+S)"),
               [this] { DocumentSaveAsNew(); });
    AddPanelCommand(row, QStringLiteral("btnCLOSEDOC"), tr("Close"), tr("Close the document (Ctrl+W)"),
               [this] { DocumentClose(); });
    layout->addSpacing(10);
    AddPanelCommand(row, QStringLiteral("btnUNDO"), tr("Undo"), tr("Undo (Ctrl+Z)"), [this] {
        if (NoteDocument *d = activeDocument())
            d->page()->undo();
    });
    AddPanelCommand(row, QStringLiteral("btnREDO"), tr("Redo"), tr("Redo (Ctrl+Y)"), [this] {
        if (NoteDocument *d = activeDocument())
            d->page()->redo();
    });
    AddPanelCommand(row, QStringLiteral("btnFIND"), tr("Find"), tr("Find (Ctrl+F), next F3, previous Shift+F3"),
               [this] { NoteTool(2); });
    AddPanelCommand(row, QStringLiteral("btnREPLACE"), tr("Replace"), tr("Find and replace (Ctrl+H)"),
               [this] { NoteTool(3); });
    layout->addSpacing(10);
    AddPanelCommand(row, QStringLiteral("btnPRINT"), tr("Print"), tr("Print preview and page setup (Ctrl+P)"),
               [this] { DocumentPrint(); });
    AddPanelCommand(row, QStringLiteral("btnSPELL"), tr("Spelling"), tr("Check the spelling (F7)"),
               [this] { DocumentSpellCheck(); });
    layout->addStretch(1);
    QToolButton *files = AddPanelCommand(row, QStringLiteral("btnSIDEPANEL"), tr("Files"),
                                    tr("Show or hide the document and picture browsers"), [this] {
                                        m_side->setVisible(!m_side->isVisible());
                                    });
    files->setCheckable(true);
    files->setChecked(true);
    AddPanelCommand(row, QStringLiteral("btnSETTINGS"), tr("Settings"), tr("Settings for new documents and for spelling"),
               [this] { openSettingsDialog(); });
}

void NotesEditor::buildSidePanel()
{
    m_side = new QTabWidget(m_split);
    m_side->setAccessibleName(tr("Side panel"));
    m_side->setObjectName(QStringLiteral("tabSIDEPANEL"));
    m_side->setDocumentMode(true);
    m_documentBrowser = new FolderBrowser(FolderBrowser::Documents, m_side);
    m_documentBrowser->setFolder(DocumentFolderSetting());
    connect(m_documentBrowser, &FolderBrowser::folderChanged, this, [](const QString &folder) {
        SetDocumentFolderSetting(folder);
    });
    connect(m_documentBrowser, &FolderBrowser::fileActivated, this, [this](const QString &path) { openFile(path); });
    m_side->addTab(m_documentBrowser, tr("Documents"));
    // The other pages are built the first time they are shown: the first frame shows neither,
    // and the picture list reads its folder.
    m_picturesPage = addLaterTab(tr("Pictures"));
    m_spellPage = addLaterTab(tr("Spelling"));
    connect(m_side, &QTabWidget::currentChanged, this, [this] {
        if (m_side->currentWidget() == m_picturesPage)
            picturePanel();
        else if (m_side->currentWidget() == m_spellPage)
            spellPanel();
    });
    connect(m_spell, &SpellChecker::wordFound, this, &NotesEditor::showUnknownWord);
    connect(m_spell, &SpellChecker::CompleteSpellCheck, this, &NotesEditor::spellCheckFinished);
    connect(m_spell, &SpellChecker::saveFailed, this, &NotesEditor::reportDictionaryError);
    m_split->addWidget(m_side);
    const int width = ReadIntDetail(QLatin1String(kNotesWindowName), kSidePanelValue, 230);
    m_split->setSizes({700, qBound(0, width, 600)});
}

void NotesEditor::buildStatusRow(QWidget *row)
{
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(2, 0, 2, 0);
    m_chars = new QLabel(row);
    m_chars->setObjectName(QStringLiteral("lblCHARS"));
    m_chars->setToolTip(tr("Words and characters of the document and of the selection"));
    m_lines = new QLabel(row);
    m_lines->setObjectName(QStringLiteral("lblLINESTAT"));
    m_lines->setToolTip(tr("The line of the caret and the number of lines"));
    m_zoom = new QLabel(row);
    m_zoom->setObjectName(QStringLiteral("lblZOOM"));
    m_zoom->setToolTip(tr("Zoom of the page: Ctrl+plus, Ctrl+minus, Ctrl+0 for actual size, or Ctrl with the wheel"));
    layout->addWidget(m_chars, 1);
    layout->addWidget(m_zoom);
    layout->addSpacing(12);
    layout->addWidget(m_lines);
}

void NotesEditor::installShortcuts()
{
    const auto add = [this](const QKeySequence &keys, const std::function<void()> &action) {
        AddWindowShortcut(this, keys, action);
    };
    add(QKeySequence::New, [this] { DocumentNew(); });
    add(QKeySequence::Open, [this] { DocumentOpen(); });
    add(QKeySequence::Save, [this] { DocumentSaveMain(); });
    add(QKeySequence(QStringLiteral("Ctrl+Shift+S")), [this] { DocumentSaveAsNew(); });
    add(QKeySequence(QStringLiteral("Ctrl+W")), [this] { DocumentClose(); });
    add(QKeySequence::Print, [this] { DocumentPrint(); });
    add(QKeySequence(Qt::Key_F7), [this] { DocumentSpellCheck(); });
    add(QKeySequence::Find, [this] { NoteTool(2); });
    add(QKeySequence(QStringLiteral("Ctrl+H")), [this] { NoteTool(3); });
    add(QKeySequence(Qt::Key_F3), [this] { findBar()->findNext(); });
    add(QKeySequence(QStringLiteral("Shift+F3")), [this] { findBar()->findPrevious(); });
    add(QKeySequence(QStringLiteral("Ctrl+Tab")), [this] {
        if (m_tabs->count() > 1)
            m_tabs->setCurrentIndex((m_tabs->currentIndex() + 1) % m_tabs->count());
    });
    add(QKeySequence(QStringLiteral("Ctrl+Shift+Tab")), [this] {
        if (m_tabs->count() > 1)
            m_tabs->setCurrentIndex((m_tabs->currentIndex() + m_tabs->count() - 1) % m_tabs->count());
    });
    // The page keeps Tab as a character; F6 and Shift+F6 move the keyboard on from it.
    add(QKeySequence(Qt::Key_F6), [this] { moveFocusAlong(true); });
    add(QKeySequence(QStringLiteral("Shift+F6")), [this] { moveFocusAlong(false); });
    const auto toggle = [this](const QString &name) {
        if (QAbstractButton *b = m_formatBar->button(name); b && b->isEnabled())
            b->click();
    };
    add(QKeySequence::Bold, [toggle] { toggle(QStringLiteral("chkBOLD")); });
    add(QKeySequence::Italic, [toggle] { toggle(QStringLiteral("chkITALIC")); });
    add(QKeySequence::Underline, [toggle] { toggle(QStringLiteral("chkUNDERLINE")); });
    add(QKeySequence(QStringLiteral("Ctrl+L")), [toggle] { toggle(QStringLiteral("optALIGN_0")); });
    add(QKeySequence(QStringLiteral("Ctrl+E")), [toggle] { toggle(QStringLiteral("optALIGN_1")); });
    add(QKeySequence(QStringLiteral("Ctrl+R")), [toggle] { toggle(QStringLiteral("optALIGN_2")); });
    add(QKeySequence(QStringLiteral("Ctrl+J")), [toggle] { toggle(QStringLiteral("optALIGN_3")); });
    add(QKeySequence::ZoomIn, [this] { zoomBy(10); });
    add(QKeySequence(QStringLiteral("Ctrl+=")), [this] { zoomBy(10); });
    add(QKeySequence::ZoomOut, [this] { zoomBy(-10); });
    add(QKeySequence(QStringLiteral("Ctrl+0")), [this] { zoomBy(0); });
}

void NotesEditor::moveFocusAlong(bool forward)
{
    QWidget *from = focusWidget() ? focusWidget() : this;
    QWidget *next = from;
    do {
        next = forward ? next->nextInFocusChain() : next->previousInFocusChain();
    } while (next != from && !(isAncestorOf(next) && next->isVisible() && next->isEnabled() &&
                               (next->focusPolicy() & Qt::TabFocus)));
    next->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

NoteDocument *NotesEditor::activeDocument() const
{
    return qobject_cast<NoteDocument *>(m_pages->currentWidget());
}

QList<NoteDocument *> NotesEditor::documents() const
{
    QList<NoteDocument *> list;
    for (int i = 0; i < m_pages->count(); ++i)
        list.append(qobject_cast<NoteDocument *>(m_pages->widget(i)));
    return list;
}

int NotesEditor::tabOf(const NoteDocument *document) const
{
    return m_pages->indexOf(const_cast<NoteDocument *>(document));
}

NoteDocument *NotesEditor::createDocument(const QString &type)
{
    const int number = m_table.takeDocumentNumber();
    auto *document = new NoteDocument(-1, number, type, m_pages);
    const int slot = m_table.takeSlot(document);
    if (slot < 0) {
        delete document;
        ShowNotice(tr("Too Many Documents"),
                   tr("%1 documents are open, as many as the editor holds. Close one to open another.")
                       .arg(DocumentTable::kSlotCount),
                   true, this);
        return nullptr;
    }
    document->setTagNo(slot);
    document->page()->setSpellChecker(m_spell);
    const NewDocumentSettings settings = NewDocumentSettings::load();
    QFont font(settings.fontName);
    font.setPointSize(settings.fontSize);
    document->setNewDocumentFormat(font, settings.resolvedFontColor());
    m_pages->addWidget(document);
    const int tab = m_tabs->addTab(document->caption());
    m_tabs->setTabData(tab, TabKey(number));
    connect(document, &NoteDocument::editedChanged, this, [this, document] { documentChanged(document); });
    connect(document, &NoteDocument::selectionChanged, this, [this, document] {
        if (document == activeDocument()) {
            refreshStatistics();
            m_formatBar->TextStyleCheck();
        }
    });
    connect(document, &NoteDocument::contentChanged, this, [this, document] { documentChanged(document); });
    connect(document, &NoteDocument::filesDropped, this,
            [this, document](const QStringList &paths) { filesDroppedOn(document, paths); });
    connect(document->page(), &PageBox::zoomChanged, this, &NotesEditor::showZoom);
    return document;
}

void NotesEditor::DocumentNew()
{
    const QString type = NewDocumentSettings::load().isRichText() ? QStringLiteral("RTF") : QStringLiteral("TXT");
    if (NoteDocument *document = createDocument(type))
        activateDocument(document);
}

void NotesEditor::activateDocument(NoteDocument *document)
{
    const int index = tabOf(document);
    if (index < 0)
        return;
    m_tabs->setCurrentIndex(index);
    m_pages->setCurrentIndex(index);
    if (m_spell->isWalking() && m_spell->walkDocument() != document->document())
        stopSpellCheck();
    m_formatBar->setDocument(document);
    if (m_findBar)
        m_findBar->setEditor(document->page());
    refreshCaption(document);
    refreshStatistics();
    showZoom();
    document->page()->setFocus();
}

void NotesEditor::zoomBy(int delta)
{
    if (NoteDocument *document = activeDocument())
        document->page()->setZoom(delta == 0 ? 100 : document->page()->zoom() + delta);
}

void NotesEditor::showZoom()
{
    if (NoteDocument *document = activeDocument())
        m_zoom->setText(tr("%1%").arg(document->page()->zoom()));
}

void NotesEditor::onTabChosen(int index)
{
    if (index < 0 || index >= m_pages->count())
        return;
    if (auto *document = qobject_cast<NoteDocument *>(m_pages->widget(index)))
        activateDocument(document);
}

void NotesEditor::DocumentOpen()
{
    const QStringList paths = QFileDialog::getOpenFileNames(this, QLatin1String(kOpenDialogTitle),
                                                            DocumentFolderSetting(),
                                                            NameFiltersOf(QLatin1String(kOpenDialogFilter)).join(QLatin1String(";;")),
                                                            nullptr, QFileDialog::HideNameFilterDetails);
    openFiles(paths);
}

void NotesEditor::filesDroppedOn(NoteDocument *document, const QStringList &paths)
{
    // A rich page takes dropped pictures itself; a plain one hands them on with the documents,
    // and they are not documents to open as text.
    QStringList documentsToOpen;
    QStringList pictures;
    for (const QString &path : paths) {
        const bool picture = FolderBrowser::pictureExtensions().contains(QFileInfo(path).suffix().toUpper());
        (picture && !document->isRichText() ? pictures : documentsToOpen).append(path);
    }
    if (!pictures.isEmpty())
        ShowNotice(tr("Pictures Need Rich Text"),
                   tr("%1 is a plain-text note, which cannot hold pictures, so %2 was not inserted. Save it as "
                      "Rich Text Paper first.")
                       .arg(document->caption(), QFileInfo(pictures.first()).fileName()),
                   false, this);
    openFiles(documentsToOpen);
}

void NotesEditor::openFiles(const QStringList &paths)
{
    for (const QString &path : paths)
        openFile(path);
}

bool NotesEditor::openFile(const QString &path)
{
    const QString absolute = QFileInfo(path).absoluteFilePath();
    for (NoteDocument *document : documents()) {
        if (!document->path().isEmpty() && QFileInfo(document->path()).absoluteFilePath() == absolute) {
            activateDocument(document);
            return true;
        }
    }
    NoteDocument *document = createDocument(DocumentTypeForPath(absolute));
    if (!document)
        return false;
    const DocumentFileResult result = document->load(absolute);
    if (!result.ok) {
        removeDocument(document);
        ShowNotice(tr("Cannot Open the Document"), result.error, true, this);
        return false;
    }
    refreshCaption(document);
    activateDocument(document);
    addRecentFile(absolute);
    // A new untouched document that was only there to keep the editor from being empty goes.
    const QList<NoteDocument *> all = documents();
    if (all.size() == 2 && IsUntouchedNew(all.first()))
        removeDocument(all.first());
    if (!result.warnings.isEmpty())
        ShowNotice(tr("The Document Was Opened with Changes"),
                   tr("%1 was opened, but it cannot be shown exactly as the file holds it: %2")
                       .arg(QDir::toNativeSeparators(absolute), result.warnings.join(QLatin1Char(' '))),
                   true, this);
    return true;
}

bool NotesEditor::DocumentSaveMain()
{
    NoteDocument *document = activeDocument();
    if (!document)
        return false;
    if (document->path().isEmpty())
        return DocumentSaveAsNew();
    return saveDocument(document, document->path(), document->DocumentType());
}

bool NotesEditor::DocumentSaveAsNew()
{
    NoteDocument *document = activeDocument();
    if (!document)
        return false;
    const QStringList filters = NameFiltersOf(QLatin1String(kSaveAsDialogFilter));
    QString selected = filters.value(document->isRichText() ? 0 : 1);
    const QString start = document->path().isEmpty()
                              ? QDir(DocumentFolderSetting()).filePath(document->caption())
                              : document->path();
    const QString chosen = QFileDialog::getSaveFileName(this, QLatin1String(kSaveAsDialogTitle), start,
                                                        filters.join(QLatin1String(";;")), &selected,
                                                        QFileDialog::HideNameFilterDetails);
    if (chosen.isEmpty())
        return false;
    const SaveTarget target = SaveAsTarget(chosen, ChosenFilterIndex(filters, selected), document->DocumentType());
    // The dialog asked about replacing the name typed, not about the one with the ending added.
    if (target.path != chosen && QFileInfo::exists(target.path)
        && !ConfirmDestructiveAction(tr("Replace the File?"),
                                     tr("%1 already exists. Replace it with this document?")
                                         .arg(QDir::toNativeSeparators(target.path)),
                                     tr("&Replace"), this))
        return false;
    return saveDocument(document, target.path, target.type);
}

bool NotesEditor::confirmPlainTextSave(NoteDocument *document)
{
    const PlainTextLoss loss = PlainTextLossOf(*document->document(), document->plainLook());
    if (!loss.any())
        return true;
    return AskChoice(tr("Save as Plain Text?"),
                     tr("%1 holds %2, which a plain-text file cannot keep: only its words would be saved, "
                        "and the rest would be gone from the page too. To keep everything, cancel and use "
                        "Save As with Rich Text Paper.")
                         .arg(document->caption(), loss.describe()),
                     tr("Save as &Plain Text"), tr("Cancel"), false, this);
}

bool NotesEditor::saveDocument(NoteDocument *document, const QString &path, const QString &type)
{
    if (type == QLatin1String(kPlainTextType) && !confirmPlainTextSave(document))
        return false;
    const DocumentFileResult result = document->save(path, type);
    if (!result.ok) {
        ShowNotice(tr("Cannot Save the Document"), result.error, true, this);
        return false;
    }
    m_recovery->remove(recoveryIdOf(document));
    refreshCaption(document);
    addRecentFile(path);
    if (document == activeDocument())
        activateDocument(document);
    if (QFileInfo(path).absolutePath() == QFileInfo(m_documentBrowser->folder()).absoluteFilePath())
        m_documentBrowser->refresh();
    if (!result.warnings.isEmpty())
        ShowNotice(tr("Document Saved"), result.warnings.join(QLatin1Char(' ')), false, this);
    return true;
}

bool NotesEditor::DocumentClose()
{
    NoteDocument *document = activeDocument();
    return document ? closeDocument(document) : false;
}

bool NotesEditor::settleUnsaved(NoteDocument *document)
{
    if (!document->DocumentEdited())
        return true;
    activateDocument(document);
    switch (AskQuestion(2, QString(), this)) {
    case AnswerYes:
        return DocumentSaveMain();
    case AnswerNo:
        return true;
    default:
        return false;
    }
}

bool NotesEditor::closeDocument(NoteDocument *document)
{
    if (!settleUnsaved(document))
        return false;
    m_recovery->remove(recoveryIdOf(document));
    removeDocument(document);
    return true;
}

QString NotesEditor::recoveryIdOf(const NoteDocument *document)
{
    auto found = m_recoveryIds.find(document);
    if (found == m_recoveryIds.end())
        found = m_recoveryIds.insert(document, RecoveryStore::newId());
    return found.value();
}

void NotesEditor::removeDocument(NoteDocument *document)
{
    const int index = tabOf(document);
    if (m_spell->walkDocument() == document->document())
        stopSpellCheck();
    m_debounce.markSaved(m_recoveryIds.value(document));
    m_recoveryIds.remove(document);
    m_table.release(document->TagNo());
    m_pages->removeWidget(document);
    if (index >= 0)
        m_tabs->removeTab(index);
    document->deleteLater();
    // The editor always shows a document, unless it is closing.
    if (m_pages->count() == 0 && !m_closing)
        DocumentNew();
    else if (NoteDocument *current = activeDocument())
        activateDocument(current);
}

void NotesEditor::refreshCaption(NoteDocument *document)
{
    const int index = tabOf(document);
    if (index < 0)
        return;
    const QString caption = document->caption();
    m_tabs->setTabText(index, document->DocumentEdited() ? caption + QStringLiteral(" *") : caption);
    m_tabs->setTabToolTip(index, document->path().isEmpty() ? tr("Not saved yet")
                                                            : QDir::toNativeSeparators(document->path()));
    if (document == activeDocument()) {
        m_title->setText(tr("Notes - %1").arg(caption));
        m_title->adjustSize();
        setWindowTitle(tr("Vantora Notes - %1").arg(caption));
    }
}

void NotesEditor::documentChanged(NoteDocument *document)
{
    refreshCaption(document);
    const QString id = recoveryIdOf(document);
    if (document->DocumentEdited())
        m_debounce.markChanged(id, QDateTime::currentDateTimeUtc());
    else
        m_debounce.markSaved(id);
    scheduleRecoveryCopies();
}

void NotesEditor::scheduleRecoveryCopies()
{
    const std::optional<QDateTime> due = m_debounce.nextDue();
    if (!due) {
        m_recoveryTimer->stop();
        return;
    }
    m_recoveryTimer->start(int(qBound<qint64>(0, QDateTime::currentDateTimeUtc().msecsTo(*due), RecoveryDebounce::kDelayMs)));
}

void NotesEditor::writeDueRecoveryCopies()
{
    writeCopies(m_debounce.dueIds(QDateTime::currentDateTimeUtc()));
    scheduleRecoveryCopies();
}

void NotesEditor::writeRecoveryCopies()
{
    QStringList pending;
    for (NoteDocument *document : documents()) {
        if (m_debounce.isPending(recoveryIdOf(document)))
            pending.append(recoveryIdOf(document));
    }
    writeCopies(pending);
    scheduleRecoveryCopies();
}

void NotesEditor::writeCopies(const QStringList &ids)
{
    QString failure;
    for (const QString &id : ids)
        m_debounce.markSaved(id);
    for (NoteDocument *document : documents()) {
        const QString id = recoveryIdOf(document);
        if (!ids.contains(id) || !document->DocumentEdited())
            continue;
        RecoveryEntry entry;
        entry.id = id;
        entry.caption = document->caption();
        entry.originalPath = document->path();
        entry.type = document->DocumentType();
        entry.content = document->contentBytes();
        QString error;
        if (!m_recovery->store(entry, &error) && failure.isEmpty())
            failure = tr("A safety copy of %1 could not be written, so a crash now would lose the changes since "
                         "the note was last saved. Save your notes to keep them.\n\nWhat went wrong: %2")
                          .arg(entry.caption, error);
    }
    writeOpenDocumentsList();
    // Told once while copies keep failing (a full disk), so the user knows to save.
    if (!failure.isEmpty() && m_recoveryProblem.isEmpty())
        ShowNotice(tr("No Safety Copy of Your Notes"), failure, true, this);
    m_recoveryProblem = failure;
}

void NotesEditor::writeOpenDocumentsList()
{
    // The edited ones come back from their copies.
    QStringList paths;
    for (NoteDocument *document : documents()) {
        if (!document->path().isEmpty() && !document->DocumentEdited())
            paths.append(document->path());
    }
    // Written when the set changes, not with every safety copy.
    if (paths == m_openDocumentsListed && !paths.isEmpty())
        return;
    const QString list = OpenDocumentsListPath();
    m_openDocumentsListed.clear();
    if (paths.isEmpty()) {
        QFile::remove(list);
        return;
    }
    QString error;
    if (!QDir().mkpath(QFileInfo(list).absolutePath()) || !WriteFileSafely(list, paths.join(u'\n').toUtf8() + '\n', &error))
        qWarning("list of open documents not written: %s", qPrintable(error));
    else
        m_openDocumentsListed = paths;
}

QStringList NotesEditor::takeOpenDocumentsList()
{
    QFile file(OpenDocumentsListPath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QStringList paths = QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    file.close();
    file.remove();
    return paths;
}

bool NotesEditor::hasRecoveredDocuments()
{
    return !RecoveryStore(RecoveryFolder()).isEmpty();
}

void NotesEditor::offerRecoveredDocuments()
{
    m_offered = true;
    const QList<RecoveryEntry> entries = m_recovery->entries();
    if (entries.isEmpty())
        return;
    QStringList names;
    for (const RecoveryEntry &entry : entries)
        names.append(entry.caption);
    const bool restore = AskChoice(
        tr("Recover Unsaved Notes"),
        tr("Vantora stopped before these notes were saved: %1. Restore them? They open as unsaved documents.")
            .arg(names.join(QStringLiteral(", "))),
        tr("&Restore"), tr("&Discard"), true, this);
    if (!restore) {
        if (ConfirmDestructiveAction(tr("Discard Unsaved Notes"),
                                     tr("The unsaved notes will be gone for good. Discard them?"),
                                     tr("&Discard"), this)) {
            m_recovery->clear();
            takeOpenDocumentsList();
        }
        return;
    }
    const QStringList openPaths = takeOpenDocumentsList();
    QList<NoteDocument *> starters;
    for (NoteDocument *document : documents()) {
        if (IsUntouchedNew(document))
            starters.append(document);
    }
    // The recovered notes first, so that they can have their numbers back; then the saved
    // documents that were open with them.
    NoteDocument *last = nullptr;
    for (const RecoveryEntry &entry : entries) {
        if (NoteDocument *document = restoreDocument(entry))
            last = document;
    }
    for (const QString &path : openPaths) {
        if (QFileInfo(path).isFile())
            openFile(path);
    }
    if (!last)
        return;
    // The empty document the editor opened with is not wanted beside them.
    for (NoteDocument *starter : std::as_const(starters)) {
        if (documents().contains(starter) && IsUntouchedNew(starter))
            removeDocument(starter);
    }
    activateDocument(last);
    // The copies stay until saved, so the set they belong to stays listed with them.
    writeOpenDocumentsList();
}

NoteDocument *NotesEditor::restoreDocument(const RecoveryEntry &entry)
{
    const QString type = entry.type == QLatin1String("TXT") ? entry.type : QStringLiteral("RTF");
    // A note never saved had the caption of its number ("RTF 3"): the numbers before it are
    // used up, so that it gets that number back and the new notes after it do not repeat it.
    const int number = entry.caption.section(u' ', 1).toInt();
    if (entry.originalPath.isEmpty() && number > 0 && entry.caption == NewDocumentCaption(type, number))
        m_table.skipDocumentNumbersBefore(number);
    NoteDocument *document = createDocument(type);
    if (!document)
        return nullptr;
    m_recoveryIds.insert(document, entry.id); // the next copy replaces this one
    if (!document->restoreContent(entry.content)) {
        removeDocument(document);
        return nullptr;
    }
    document->setPath(entry.originalPath);
    // A document never saved comes back under the caption it had, even when its number is
    // taken already.
    if (entry.originalPath.isEmpty())
        document->setUnsavedCaption(entry.caption);
    activateDocument(document);
    documentChanged(document);
    return document;
}

void NotesEditor::refreshStatistics()
{
    NoteDocument *document = activeDocument();
    if (!document)
        return;
    const QTextCursor cursor = document->page()->textCursor();
    // The raw text: toPlainText() would turn a no-break space into a space that splits words.
    const QString raw = document->document()->toRawText();
    m_chars->setText(CharacterStatistics(StatisticsText(raw), StatisticsText(cursor.selectedText())));
    m_lines->setText(LineStatistics(raw, cursor.position()));
}

void NotesEditor::DocumentPrint()
{
    NoteDocument *document = activeDocument();
    if (!document)
        return;
    // The preview keeps the editor waiting, so the document cannot change under its pages.
    auto *preview = new PrintPreviewWindow(PrintEngine::shared(), document->document(), document->caption(), this);
    preview->setAttribute(Qt::WA_DeleteOnClose);
    preview->setWindowModality(Qt::WindowModal);
    preview->show();
}

QWidget *NotesEditor::addLaterTab(const QString &title)
{
    auto *page = new QWidget(m_side);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    m_side->addTab(page, title);
    return page;
}

FindReplaceBar *NotesEditor::findBar()
{
    if (m_findBar)
        return m_findBar;
    m_findBar = new FindReplaceBar(panel());
    m_findBar->hide();
    connect(m_findBar, &FindReplaceBar::closed, this, [this] {
        if (NoteDocument *d = activeDocument())
            d->page()->setFocus();
    });
    m_column->insertWidget(m_findBarPlace, m_findBar);
    applyPanelFont(m_findBar);
    if (NoteDocument *document = activeDocument())
        m_findBar->setEditor(document->page());
    return m_findBar;
}

PicturePanel *NotesEditor::picturePanel()
{
    if (m_picturePanel)
        return m_picturePanel;
    m_picturePanel = new PicturePanel(m_picturesPage);
    applyPanelFont(m_picturePanel);
    m_picturePanel->browser()->setFolder(PictureFolderSetting());
    connect(m_picturePanel->browser(), &FolderBrowser::folderChanged, this, [](const QString &folder) {
        SetPictureFolderSetting(folder);
    });
    connect(m_picturePanel, &PicturePanel::insertPicture, this, &NotesEditor::insertPicture);
    m_picturesPage->layout()->addWidget(m_picturePanel);
    m_picturePanel->show(); // at once: the layout would show it a moment after its page
    return m_picturePanel;
}

SpellPanel *NotesEditor::spellPanel()
{
    if (m_spellPanel)
        return m_spellPanel;
    m_spellPanel = new SpellPanel(m_spellPage);
    applyPanelFont(m_spellPanel);
    connect(m_spellPanel, &SpellPanel::changeRequested, m_spell, &SpellChecker::WordChng);
    connect(m_spellPanel, &SpellPanel::ignoreRequested, m_spell, &SpellChecker::WordIgnore);
    connect(m_spellPanel, &SpellPanel::addRequested, m_spell, &SpellChecker::WordAdd);
    connect(m_spellPanel, &SpellPanel::ignoreAllRequested, m_spell, [this] {
        m_spell->ignoreAll(m_spell->currentWord());
        m_spell->WordIgnore();
    });
    connect(m_spellPanel, &SpellPanel::recheckRequested, this, &NotesEditor::DocumentSpellCheck);
    m_spellPage->layout()->addWidget(m_spellPanel);
    m_spellPanel->show();
    return m_spellPanel;
}

void NotesEditor::DocumentSpellCheck()
{
    NoteDocument *document = activeDocument();
    if (!document)
        return;
    m_side->show();
    m_side->setCurrentWidget(m_spellPage);
    if (!m_spell->isLoaded())
        spellPanel()->showMessage(tr("Reading the dictionary..."));
    m_spellWalkOurs = true;
    m_spell->CheckFile(document->document(), document->page()->textCursor().selectionStart());
}

void NotesEditor::showUnknownWord(const QString &word, const QStringList &suggestions)
{
    NoteDocument *document = activeDocument();
    if (!m_spellWalkOurs || !document || m_spell->walkDocument() != document->document())
        return;
    document->page()->setTextCursor(m_spell->currentSelection());
    document->page()->ensureCursorVisible();
    spellPanel()->showWord(word, suggestions);
    spellPanel()->focusSuggestions();
}

void NotesEditor::spellCheckFinished()
{
    if (!m_spellWalkOurs)
        return;
    m_spellWalkOurs = false;
    spellPanel()->showMessage(tr("The check reached the end of the document."));
    ShowInfoMessage(1, QString(), this);
    if (NoteDocument *document = activeDocument())
        document->page()->setFocus();
}

void NotesEditor::stopSpellCheck()
{
    m_spell->stopWalk();
    m_spellWalkOurs = false;
    spellPanel()->showMessage(tr("Press Check Again or F7 to check the document from the caret."));
}

void NotesEditor::saveDictionary()
{
    QString error;
    if (!m_spell->DatabaseSave(&error))
        reportDictionaryError(error);
}

void NotesEditor::reportDictionaryError(const QString &error)
{
    ShowNotice(tr("Cannot Save the Dictionary"),
               tr("The words you added could not be written to the dictionary (%1). They are known until "
                  "Vantora ends, and another try is made when it does.")
                   .arg(error),
               true, this);
}

void NotesEditor::WindowsListPopup()
{
    QMenu menu(this);
    for (NoteDocument *document : documents()) {
        QAction *action = menu.addAction(document->DocumentEdited() ? document->caption() + QStringLiteral(" *")
                                                                    : document->caption());
        action->setCheckable(true);
        action->setChecked(document == activeDocument());
        connect(action, &QAction::triggered, this, [this, document] { activateDocument(document); });
    }
    menu.exec(m_listButton->mapToGlobal(QPoint(0, m_listButton->height())));
}

void NotesEditor::NoteTool(int tool)
{
    switch (tool) {
    case 0:
    case 1:
        m_side->show();
        m_side->setCurrentIndex(tool);
        break;
    case 2:
        findBar()->showFind();
        break;
    case 3:
        findBar()->showReplace();
        break;
    default:
        break;
    }
}

void NotesEditor::insertPicture(const QString &path, const QImage &image)
{
    NoteDocument *document = activeDocument();
    if (!document)
        return;
    if (!document->isRichText()) {
        ShowNotice(tr("Pictures Need Rich Text"),
                   tr("%1 is a plain-text note, which cannot hold pictures. Save it as Rich Text Paper first.")
                       .arg(document->caption()),
                   false, this);
        return;
    }
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    QTextCursor cursor = document->page()->textCursor();
    DocumentPictures::InsertPicture(cursor, image, bytes);
    document->page()->setTextCursor(cursor);
    document->page()->setFocus();
}

void NotesEditor::addRecentFile(const QString &path)
{
    const QString window = QLatin1String(kNotesWindowName);
    QStringList recent{QDir::toNativeSeparators(path)};
    for (int i = 1; i <= kRecentFiles; ++i) {
        const QString stored = ReadDetail(window, kRecentValue.arg(i), QString());
        if (!stored.isEmpty() && !recent.contains(stored))
            recent.append(stored);
    }
    for (int i = 1; i <= kRecentFiles; ++i)
        WriteDetail(window, kRecentValue.arg(i), recent.value(i - 1));
}

void NotesEditor::fillRecentMenu()
{
    m_recentMenu->clear();
    const QString window = QLatin1String(kNotesWindowName);
    for (int i = 1; i <= kRecentFiles; ++i) {
        const QString stored = ReadDetail(window, kRecentValue.arg(i), QString());
        if (stored.isEmpty())
            continue;
        QAction *action = m_recentMenu->addAction(QStringLiteral("&%1 %2").arg(i % 10).arg(stored));
        action->setEnabled(QFileInfo::exists(stored));
        connect(action, &QAction::triggered, this, [this, stored] { openFile(QDir::fromNativeSeparators(stored)); });
    }
    if (m_recentMenu->isEmpty())
        m_recentMenu->addAction(tr("No recent files"))->setEnabled(false);
}

void NotesEditor::openSettingsDialog()
{
    NotesSettingsDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted) {
        m_spell->reloadSettings();
        if (m_spell->settings().loadOnFirst)
            m_spell->loadInBackground();
    }
}

void NotesEditor::ThemeElementsUpdate()
{
    WidgetWindow::ThemeElementsUpdate();
    // The pages keep the fonts of their documents, not the theme's.
    for (NoteDocument *document : documents())
        document->restorePageFont();
    applyPanelStyle();
}

void NotesEditor::applyPanelStyle()
{
    m_tabs->setScrollButtonColours(m_pages, ApplyPanelToolTheme(m_title, panel()));
}

void NotesEditor::relayout()
{
    PlaceBarTitle(m_title, barHeight());
}

void NotesEditor::saveValues()
{
    const QList<int> sizes = m_split->sizes();
    if (sizes.size() == 2 && m_side->isVisible())
        WriteDetail(QLatin1String(kNotesWindowName), kSidePanelValue, QString::number(sizes.at(1)));
}

bool NotesEditor::settleBeforeClose()
{
    // Every unsaved document is settled (saved or given up) before any of them goes, so a
    // Cancel leaves the editor exactly as it was.
    for (NoteDocument *document : documents()) {
        if (!settleUnsaved(document))
            return false;
    }
    return true;
}

void NotesEditor::closeEvent(QCloseEvent *event)
{
    if (!isClosingSettled() && !settleBeforeClose()) {
        event->ignore();
        return;
    }
    m_closing = true;
    stopSpellCheck();
    saveDictionary();
    m_recoveryTimer->stop();
    m_recovery->clear();
    QFile::remove(OpenDocumentsListPath());
    WidgetWindow::closeEvent(event);
}

void NotesEditor::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void NotesEditor::dropEvent(QDropEvent *event)
{
    QStringList paths;
    for (const QUrl &url : event->mimeData()->urls()) {
        if (url.isLocalFile() && QFileInfo(url.toLocalFile()).isFile())
            paths.append(url.toLocalFile());
    }
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    openFiles(paths);
}

void NotesEditor::showEvent(QShowEvent *event)
{
    WidgetWindow::showEvent(event);
    if (!m_offered)
        QTimer::singleShot(0, this, &NotesEditor::offerRecoveredDocuments);
    // The word list is read on a worker thread once the window is on the screen, so underlines
    // and the first check are ready when the user is. Reading it (some 50 ms of work) while
    // the window was still being built took the CPU from the first frame.
    if (!m_spellReadScheduled) {
        m_spellReadScheduled = true;
        QTimer::singleShot(kSpellReadDelayMs, this, [this] {
            if (SpellSettings::load().loadOnFirst)
                m_spell->loadInBackground();
        });
    }
}
