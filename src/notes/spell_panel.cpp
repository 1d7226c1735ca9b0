#include "notes/spell_panel.h"

#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

QPushButton *MakeButton(const QString &name, const QString &caption, const QString &toolTip, QWidget *parent)
{
    auto *button = new QPushButton(caption, parent);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setAutoDefault(false);
    return button;
}

// The lines the checker puts in the list when it has nothing to offer.
bool IsPlaceholder(const QString &line)
{
    return line == QLatin1String("None Found") || line == QLatin1String("Dictionary not found");
}

} // namespace

SpellPanel::SpellPanel(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("pnlSPELLING"));
    m_heading = new QLabel(tr("Not in the dictionary:"), this);
    m_word = new QLabel(this);
    m_word->setObjectName(QStringLiteral("lblSPELLWORD"));
    QFont bold = m_word->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    m_word->setFont(bold);
    m_word->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto *changeLabel = new QLabel(tr("C&hange to:"), this);
    m_replacement = new QLineEdit(this);
    m_replacement->setObjectName(QStringLiteral("txtSUGG"));
    m_replacement->setToolTip(tr("The word that replaces the unknown one; pick a suggestion or type it"));
    m_replacement->setClearButtonEnabled(true);
    changeLabel->setBuddy(m_replacement);

    auto *listLabel = new QLabel(tr("&Suggestions:"), this);
    m_suggestions = new QListWidget(this);
    m_suggestions->setObjectName(QStringLiteral("lstSUGGESTIONS"));
    m_suggestions->setToolTip(tr("Words that sound alike; Enter or a double click changes to the chosen one"));
    listLabel->setBuddy(m_suggestions);

    m_change = MakeButton(QStringLiteral("btnCHANGE"), tr("&Change"), tr("Replace the word with the one in the box"), this);
    m_ignore = MakeButton(QStringLiteral("btnIGNORE"), tr("&Ignore"), tr("Leave this word and go on"), this);
    m_ignoreAll = MakeButton(QStringLiteral("btnIGNOREALL"), tr("Ignore A&ll"),
                             tr("Accept this word everywhere until Vantora ends"), this);
    m_add = MakeButton(QStringLiteral("btnINCLUDE"), tr("&Add"), tr("Add the word to the dictionary"), this);
    m_recheck = MakeButton(QStringLiteral("btnSPELLRCHK"), tr("Check &Again"),
                           tr("Check the spelling again from the caret (F7)"), this);

    m_message = new QLabel(this);
    m_message->setObjectName(QStringLiteral("lblSPELLSTATUS"));
    m_message->setWordWrap(true);

    auto *buttons = new QGridLayout;
    buttons->addWidget(m_change, 0, 0);
    buttons->addWidget(m_ignore, 0, 1);
    buttons->addWidget(m_add, 1, 0);
    buttons->addWidget(m_ignoreAll, 1, 1);
    buttons->addWidget(m_recheck, 2, 0, 1, 2);

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(6, 6, 6, 6);
    layout->addWidget(m_heading);
    layout->addWidget(m_word);
    layout->addSpacing(4);
    layout->addWidget(changeLabel);
    layout->addWidget(m_replacement);
    layout->addWidget(listLabel);
    layout->addWidget(m_suggestions, 1);
    layout->addLayout(buttons);
    layout->addWidget(m_message);

    connect(m_suggestions, &QListWidget::currentTextChanged, this, [this](const QString &text) {
        if (m_realSuggestions && !text.isEmpty())
            m_replacement->setText(text);
    });
    connect(m_suggestions, &QListWidget::itemActivated, this, [this] {
        if (m_realSuggestions)
            requestChange();
    });
    connect(m_replacement, &QLineEdit::returnPressed, this, &SpellPanel::requestChange);
    connect(m_change, &QPushButton::clicked, this, &SpellPanel::requestChange);
    connect(m_ignore, &QPushButton::clicked, this, &SpellPanel::ignoreRequested);
    connect(m_ignoreAll, &QPushButton::clicked, this, &SpellPanel::ignoreAllRequested);
    connect(m_add, &QPushButton::clicked, this, &SpellPanel::addRequested);
    connect(m_recheck, &QPushButton::clicked, this, &SpellPanel::recheckRequested);
    showMessage(tr("Press Check Again or F7 to check the document from the caret."));
}

void SpellPanel::showWord(const QString &word, const QStringList &suggestions)
{
    m_word->setText(word);
    m_heading->show();
    m_word->show();
    m_realSuggestions = !(suggestions.size() == 1 && IsPlaceholder(suggestions.first()));
    m_suggestions->clear();
    m_suggestions->addItems(suggestions);
    m_replacement->setText(word);
    if (m_realSuggestions && !suggestions.isEmpty())
        m_suggestions->setCurrentRow(0);
    m_message->clear();
    setWordButtonsEnabled(true);
}

void SpellPanel::showMessage(const QString &text)
{
    m_word->clear();
    m_heading->hide();
    m_word->hide();
    m_suggestions->clear();
    m_replacement->clear();
    m_realSuggestions = false;
    m_message->setText(text);
    setWordButtonsEnabled(false);
}

void SpellPanel::setWordButtonsEnabled(bool enabled)
{
    for (QWidget *w : {static_cast<QWidget *>(m_change), static_cast<QWidget *>(m_ignore),
                       static_cast<QWidget *>(m_ignoreAll), static_cast<QWidget *>(m_add),
                       static_cast<QWidget *>(m_replacement), static_cast<QWidget *>(m_suggestions)})
        w->setEnabled(enabled);
}

void SpellPanel::focusSuggestions()
{
    if (m_realSuggestions)
        m_suggestions->setFocus();
    else
        m_replacement->setFocus();
}

void SpellPanel::requestChange()
{
    if (m_change->isEnabled())
        emit changeRequested(m_replacement->text());
}
