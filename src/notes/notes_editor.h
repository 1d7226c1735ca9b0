#pragma once

#include "notes/document_table.h"
#include "core/recovery_debounce.h"
#include "themes/widget_window.h"

#include <QHash>
#include <QPointer>

#include <functional>

class FindReplaceBar;
class FolderBrowser;
class FormatBar;
class NoteDocument;
class PicturePanel;
class QLabel;
class QMenu;
class QSplitter;
class QStackedWidget;
class DocumentTabBar;
class QTabWidget;
class QTimer;
class QToolButton;
class QVBoxLayout;
class RecoveryStore;
struct RecoveryEntry;
class SpellChecker;
class SpellPanel;

// fnte_IDX, the notes editor: any number of documents (fnte_DOC) in tabs (tabDOCS), a command
// row, the format bar, a side panel with the document and picture browsers, a find and
// replace bar and the statistics line (lblCHARS, lblLINESTAT).
//
// Every unsaved document is copied to the recovery folder within 30 seconds of a change; the
// copies go when the document is saved or closed, so copies found when the editor opens were
// left by a crash and are offered back.
class NotesEditor : public WidgetWindow
{
    Q_OBJECT
public:
    explicit NotesEditor(QWidget *parent = nullptr);
    ~NotesEditor() override;

    QSize defaultSize() const override { return QSize(1000, 680); }
    QSize minimumUsableSize() const override { return QSize(640, 420); }
    QString contextMenuVariant() const override { return QStringLiteral("notes"); }
    bool hasSettingsDialog() const override { return true; }
    void openSettingsDialog() override;

    // The document operations of the command row and the shortcuts.
    void DocumentNew();
    void DocumentOpen();
    // Opens a file, or selects its tab when it is open already. False when it could not be
    // read (the user was told why).
    bool openFile(const QString &path);
    // Saves the active document; a new one asks for a file name. False when not saved.
    bool DocumentSaveMain();
    bool DocumentSaveAsNew();
    // Closes the active document, asking first when it has unsaved changes. False when the
    // user cancelled.
    bool DocumentClose();
    void DocumentPrint();
    // Checks the spelling of the active document from the caret; the side panel's spelling
    // page shows each unknown word and what can be done with it.
    void DocumentSpellCheck();
    void WindowsListPopup();
    // 0: document browser, 1: picture browser, 2: find, 3: replace.
    void NoteTool(int tool);

    NoteDocument *activeDocument() const;
    QList<NoteDocument *> documents() const;
    const DocumentTable &documentTable() const { return m_table; }
    void activateDocument(NoteDocument *document);

    // Copies every document with changes not yet copied to the recovery folder now (the
    // timer copies each within 30 seconds of its first such change).
    void writeRecoveryCopies();
    // Offers the copies a crash left behind; called once when the editor opens.
    void offerRecoveredDocuments();

    // Recovery copies waiting from an earlier run (the start-up opens the editor for them);
    // a look at the folder only, so it costs start-up nothing worth measuring.
    static bool hasRecoveredDocuments();

public slots:
    void ThemeElementsUpdate() override;

protected:
    void relayout() override;
    void saveValues() override;
    bool settleBeforeClose() override;
    void closeEvent(QCloseEvent *event) override;
    void showEvent(QShowEvent *event) override;
    // Files dropped anywhere on the editor outside the page open as documents.
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    void buildCommandRow(QWidget *row);
    void buildSidePanel();
    void buildStatusRow(QWidget *row);
    void installShortcuts();
    // F6: the next control the Tab key would reach, leaving the page (back with Shift+F6).
    void moveFocusAlong(bool forward);

    NoteDocument *createDocument(const QString &type);
    void removeDocument(NoteDocument *document);
    bool closeDocument(NoteDocument *document);
    // Asks about unsaved changes and saves when told to; false when the user cancelled.
    bool settleUnsaved(NoteDocument *document);
    // The name of the document's recovery copy, made on first use.
    QString recoveryIdOf(const NoteDocument *document);
    bool saveDocument(NoteDocument *document, const QString &path, const QString &type);
    // Asks before a plain-text save that would drop formatting, lists, tables or pictures;
    // true when there is nothing to lose or the user agreed.
    bool confirmPlainTextSave(NoteDocument *document);
    int tabOf(const NoteDocument *document) const;
    void refreshCaption(NoteDocument *document);
    void refreshStatistics();
    // Zooms the active page by `delta` percent; 0 goes back to actual size.
    void zoomBy(int delta);
    void showZoom();
    void documentChanged(NoteDocument *document);
    void scheduleRecoveryCopies();
    void writeDueRecoveryCopies();
    void writeCopies(const QStringList &ids);
    void writeOpenDocumentsList();
    // The saved documents open when the copies were last written; the list is used once.
    static QStringList takeOpenDocumentsList();
    NoteDocument *restoreDocument(const RecoveryEntry &entry);
    void onTabChosen(int index);
    void insertPicture(const QString &path, const QImage &image);
    void openFiles(const QStringList &paths);
    void filesDroppedOn(NoteDocument *document, const QStringList &paths);
    void addRecentFile(const QString &path);
    void fillRecentMenu();
    void applyPanelStyle();
    // A side panel page whose content is built when first needed.
    QWidget *addLaterTab(const QString &title);
    PicturePanel *picturePanel();
    FindReplaceBar *findBar();
    SpellPanel *spellPanel();
    void showUnknownWord(const QString &word, const QStringList &suggestions);
    void spellCheckFinished();
    void stopSpellCheck();
    // Writes the words added to the dictionary; tells the user when that fails.
    void saveDictionary();
    void reportDictionaryError(const QString &error);

    DocumentTable m_table;
    QWidget *m_commands = nullptr;
    FormatBar *m_formatBar = nullptr;
    DocumentTabBar *m_tabs = nullptr;
    QToolButton *m_listButton = nullptr;
    QSplitter *m_split = nullptr;
    QStackedWidget *m_pages = nullptr;
    QTabWidget *m_side = nullptr;
    FolderBrowser *m_documentBrowser = nullptr;
    QWidget *m_picturesPage = nullptr;
    PicturePanel *m_picturePanel = nullptr; // built when its page is first shown
    FindReplaceBar *m_findBar = nullptr; // made when first asked for
    QVBoxLayout *m_column = nullptr;
    int m_findBarPlace = 0; // its place in m_column
    QLabel *m_title = nullptr;
    QLabel *m_chars = nullptr;
    QLabel *m_lines = nullptr;
    QLabel *m_zoom = nullptr;
    QMenu *m_recentMenu = nullptr;
    QTimer *m_recoveryTimer = nullptr;
    RecoveryStore *m_recovery = nullptr;
    QString m_recoveryProblem; // why the last safety copy failed; empty while they are written
    QStringList m_openDocumentsListed; // what the list of open documents on disk holds
    SpellChecker *m_spell = nullptr;
    QWidget *m_spellPage = nullptr;
    SpellPanel *m_spellPanel = nullptr; // built when its page is first shown
    bool m_spellWalkOurs = false;
    RecoveryDebounce m_debounce;
    QHash<const NoteDocument *, QString> m_recoveryIds;
    bool m_closing = false;
    bool m_offered = false;
    bool m_spellReadScheduled = false;
};
