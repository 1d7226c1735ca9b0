#include "notes/find_replace_bar.h"

#include "core/recent_list.h"
#include "core/settings_store.h"
#include "notes/notes_settings.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

#include <initializer_list>

namespace {

const QString kFindHistory = QStringLiteral("fnte_IDX\\Find");
const QString kReplaceHistory = QStringLiteral("fnte_IDX\\Replace");
const QString kMatchCase = QStringLiteral("Find-Match-Case");
const QString kWholeWord = QStringLiteral("Find-Whole-Word");
const QString kWrapAround = QStringLiteral("Find-Wrap-Around");

// Older searches than this fall off the end of a history.
constexpr int kHistoryLength = 20;
// A selection longer than this is not what the user wants to search for.
constexpr int kLongestPrefill = 80;

QComboBox *historyBox(const char *name, const QString &history, const QString &tip)
{
    auto *box = new QComboBox;
    box->setObjectName(QLatin1String(name));
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert); // the history is kept by remember()
    box->setMinimumContentsLength(10);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setToolTip(tip);
    RestoreList(box, history);
    return box;
}

QPushButton *barButton(const char *name, const QString &text, const QString &tip)
{
    auto *button = new QPushButton(text);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(tip);
    button->setAutoDefault(false);
    return button;
}

QCheckBox *choice(const char *name, const QString &text, const QString &valueName, bool byDefault)
{
    auto *box = new QCheckBox(text);
    box->setObjectName(QLatin1String(name));
    box->setChecked(ReadBoolDetail(QLatin1String(kNotesWindowName), valueName, byDefault));
    return box;
}

QString flag(bool on)
{
    return on ? QStringLiteral("True") : QStringLiteral("False");
}

bool isShortSingleLine(const QString &text)
{
    if (text.trimmed().isEmpty() || text.size() > kLongestPrefill)
        return false;
    for (QChar c : text) {
        if (c == QChar::ParagraphSeparator || c == QChar::LineSeparator || c == QLatin1Char('\n'))
            return false;
    }
    return true;
}

} // namespace

FindReplaceBar::FindReplaceBar(QWidget *parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("pfrFINDBAR"));
    buildRows();
    // A key typed in an editable combo box reaches the box first, which hands it to its line
    // edit directly: both are watched so Enter and Escape work whichever has the focus.
    for (QComboBox *box : {m_find, m_replace}) {
        box->installEventFilter(this);
        box->lineEdit()->installEventFilter(this);
    }
    connect(m_find, &QComboBox::editTextChanged, this, [this] {
        setStatus(QString());
        updateButtons();
    });
    connect(m_next, &QPushButton::clicked, this, &FindReplaceBar::findNext);
    connect(m_previous, &QPushButton::clicked, this, &FindReplaceBar::findPrevious);
    connect(m_replaceOne, &QPushButton::clicked, this, &FindReplaceBar::replace);
    connect(m_replaceAll, &QPushButton::clicked, this, &FindReplaceBar::replaceAll);
    updateButtons();
}

FindReplaceBar::~FindReplaceBar()
{
    saveHistories();
}

void FindReplaceBar::buildRows()
{
    m_find = historyBox("cboFIND", kFindHistory, tr("The text to find"));
    m_replace = historyBox("cboREPLACE", kReplaceHistory, tr("The text that replaces each match"));
    m_next = barButton("btnFINDNEXT", tr("Find &Next"), tr("Find the next match (F3)"));
    m_previous = barButton("btnFINDPREVIOUS", tr("Find Pre&vious"), tr("Find the previous match (Shift+F3)"));
    m_replaceOne =
        barButton("btnREPLACE", tr("&Replace"), tr("Replace the selected match and find the next one"));
    m_replaceAll = barButton("btnREPLACEALL", tr("Replace &All"), tr("Replace every match in the document"));
    auto *closeButton = barButton("btnCLOSEFIND", QStringLiteral("\u2715"), tr("Close the find bar (Esc)"));
    closeButton->setFlat(true);
    connect(closeButton, &QPushButton::clicked, this, &FindReplaceBar::hideBar);

    m_matchCase = choice("chkMATCHCASE", tr("Match &case"), kMatchCase, false);
    m_matchCase->setToolTip(tr("Find only text with the same capitals"));
    m_wholeWord = choice("chkWHOLEWORD", tr("&Whole word"), kWholeWord, false);
    m_wholeWord->setToolTip(tr("Find only whole words, not parts of longer words"));
    m_wrap = choice("chkWRAPAROUND", tr("Wra&p around"), kWrapAround, true);
    m_wrap->setToolTip(tr("Go on from the other end of the document at its end"));
    m_status = new QLabel;
    m_status->setObjectName(QStringLiteral("lblFINDSTATUS"));
    // The status gives way first when the window is narrow; its tooltip keeps the whole text.
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);

    auto *findLabel = new QLabel(tr("F&ind:"));
    findLabel->setBuddy(m_find);
    m_replaceLabel = new QLabel(tr("Replace wi&th:"));
    m_replaceLabel->setBuddy(m_replace);

    m_choices = new QHBoxLayout;
    m_choices->setContentsMargins(0, 0, 0, 0);
    m_choices->setSpacing(8);
    for (QCheckBox *box : {m_matchCase, m_wholeWord, m_wrap}) {
        m_choices->addWidget(box);
        addOption(box);
    }
    m_choices->addStretch(1);

    // Two rows whose buttons line up: find, and replace with the search choices after it. In
    // find mode the replace cells hide and the choices move under the find box (placeChoices),
    // so that the bar fits a narrow window.
    m_grid = new QGridLayout(this);
    auto *grid = m_grid;
    grid->setContentsMargins(4, 2, 4, 2);
    grid->setHorizontalSpacing(6);
    grid->setVerticalSpacing(2);
    grid->addWidget(findLabel, 0, 0);
    grid->addWidget(m_find, 0, 1);
    grid->addWidget(m_next, 0, 2);
    grid->addWidget(m_previous, 0, 3);
    grid->addWidget(m_status, 0, 4);
    grid->addWidget(closeButton, 0, 5, Qt::AlignRight);
    grid->addWidget(m_replaceLabel, 1, 0);
    grid->addWidget(m_replace, 1, 1);
    grid->addWidget(m_replaceOne, 1, 2);
    grid->addWidget(m_replaceAll, 1, 3);
    placeChoices(true);
    grid->setColumnStretch(1, 2);
    grid->setColumnStretch(4, 1);
    // Tab goes from the find box to the replace box, then to the buttons: the grid's order
    // would put the find buttons between them, and a replacement typed after one Tab would
    // land nowhere near the replace box.
    const std::initializer_list<QWidget *> chain = {m_find,      m_replace,    m_next,      m_previous, m_replaceOne,
                                                    m_replaceAll, m_matchCase, m_wholeWord, m_wrap,     closeButton};
    for (auto it = chain.begin(); it + 1 != chain.end(); ++it)
        QWidget::setTabOrder(*it, *(it + 1));
}

void FindReplaceBar::placeChoices(bool afterReplace)
{
    m_grid->removeItem(m_choices);
    if (afterReplace)
        m_grid->addLayout(m_choices, 1, 4, 1, 2);
    else
        m_grid->addLayout(m_choices, 1, 1, 1, 5);
}

void FindReplaceBar::addOption(QCheckBox *box)
{
    connect(box, &QCheckBox::toggled, this, [this] {
        setStatus(QString());
        saveChoices();
    });
}

void FindReplaceBar::setEditor(QTextEdit *editor)
{
    if (m_editor == editor)
        return;
    m_editor = editor;
    setStatus(QString());
    updateButtons();
}

QTextEdit *FindReplaceBar::editor() const
{
    return m_editor.data();
}

QString FindReplaceBar::statusText() const
{
    return m_status->text();
}

void FindReplaceBar::showFind()
{
    open(false);
}

void FindReplaceBar::showReplace()
{
    open(true);
}

void FindReplaceBar::open(bool withReplace)
{
    prefillFromSelection();
    for (QWidget *w : std::initializer_list<QWidget *>{m_replaceLabel, m_replace, m_replaceOne, m_replaceAll})
        w->setVisible(withReplace);
    placeChoices(withReplace);
    setStatus(QString());
    updateButtons();
    show();
    m_find->setFocus(Qt::ShortcutFocusReason);
    m_find->lineEdit()->selectAll();
}

void FindReplaceBar::prefillFromSelection()
{
    if (!m_editor)
        return;
    const QString selected = m_editor->textCursor().selectedText();
    if (isShortSingleLine(selected))
        m_find->setEditText(selected);
}

void FindReplaceBar::findNext()
{
    find(false);
}

void FindReplaceBar::findPrevious()
{
    find(true);
}

FindOptions FindReplaceBar::options(bool backward) const
{
    FindOptions o;
    o.matchCase = m_matchCase->isChecked();
    o.wholeWord = m_wholeWord->isChecked();
    o.wrapAround = m_wrap->isChecked();
    o.backward = backward;
    return o;
}

void FindReplaceBar::find(bool backward)
{
    const QString text = m_find->currentText();
    if (text.isEmpty()) {
        // F3 with nothing to search for: ask for the text.
        if (!isVisible())
            showFind();
        return;
    }
    if (!m_editor)
        return;
    remember(m_find);
    const FindResult result =
        TextFinder::find(m_editor->document(), m_editor->textCursor(), text, options(backward));
    if (!result.found()) {
        setStatus(tr("No matches."));
        return;
    }
    m_editor->setTextCursor(result.match);
    m_editor->ensureCursorVisible();
    if (result.wrapped)
        setStatus(backward ? tr("Wrapped to the bottom.") : tr("Wrapped to the top."));
    else
        setStatus(QString());
}

void FindReplaceBar::replace()
{
    const QString text = m_find->currentText();
    if (!m_editor || m_editor->isReadOnly() || text.isEmpty())
        return;
    remember(m_replace);
    QTextCursor cursor = m_editor->textCursor();
    if (TextFinder::replaceCurrent(cursor, text, m_replace->currentText(), options(false)))
        m_editor->setTextCursor(cursor);
    findNext();
}

void FindReplaceBar::replaceAll()
{
    const QString text = m_find->currentText();
    if (!m_editor || m_editor->isReadOnly() || text.isEmpty())
        return;
    remember(m_find);
    remember(m_replace);
    const int count =
        TextFinder::replaceAll(m_editor->document(), text, m_replace->currentText(), options(false));
    if (count == 0)
        setStatus(tr("No matches."));
    else
        setStatus(count == 1 ? tr("Replaced 1 match.") : tr("Replaced %1 matches.").arg(count));
}

void FindReplaceBar::hideBar()
{
    hide();
    if (m_editor)
        m_editor->setFocus(Qt::OtherFocusReason);
    emit closed();
}

void FindReplaceBar::remember(QComboBox *box)
{
    const QString text = box->currentText();
    if (text.isEmpty() || (box->count() > 0 && box->itemText(0) == text))
        return;
    AddRecentItem(box, text);
    while (box->count() > kHistoryLength)
        box->removeItem(box->count() - 1);
    m_historiesChanged = true;
}

void FindReplaceBar::saveHistories()
{
    // Each save rewrites the settings file, so only when something new was searched.
    if (!m_historiesChanged)
        return;
    SaveList(m_find, kFindHistory);
    SaveList(m_replace, kReplaceHistory);
    m_historiesChanged = false;
}

void FindReplaceBar::saveChoices() const
{
    const QString window = QLatin1String(kNotesWindowName);
    WriteDetail(window, kMatchCase, flag(m_matchCase->isChecked()));
    WriteDetail(window, kWholeWord, flag(m_wholeWord->isChecked()));
    WriteDetail(window, kWrapAround, flag(m_wrap->isChecked()));
}

void FindReplaceBar::updateButtons()
{
    const bool canFind = m_editor && !m_find->currentText().isEmpty();
    const bool canReplace = canFind && !m_editor->isReadOnly();
    m_next->setEnabled(canFind);
    m_previous->setEnabled(canFind);
    m_replaceOne->setEnabled(canReplace);
    m_replaceAll->setEnabled(canReplace);
}

void FindReplaceBar::setStatus(const QString &text)
{
    m_status->setText(text);
    m_status->setToolTip(text);
}

bool FindReplaceBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    if (key->key() == Qt::Key_Escape) {
        hideBar();
        return true;
    }
    if (key->key() != Qt::Key_Return && key->key() != Qt::Key_Enter)
        return QWidget::eventFilter(watched, event);
    if (watched == m_replace || watched == m_replace->lineEdit())
        replace();
    else if (key->modifiers() & Qt::ShiftModifier)
        findPrevious();
    else
        findNext();
    return true;
}

void FindReplaceBar::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        hideBar();
        return;
    }
    QWidget::keyPressEvent(event);
}

void FindReplaceBar::hideEvent(QHideEvent *event)
{
    saveHistories();
    QWidget::hideEvent(event);
}
