#include "notes/notes_settings_dialog.h"

#include "notes/notes_settings.h"
#include "notes/spell_settings.h"
#include "themes/theme_painter.h"

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QGroupBox>
#include <QComboBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kSmallestSize = NewDocumentSettings::kSmallestFontSize;
constexpr int kLargestSize = NewDocumentSettings::kLargestFontSize;
constexpr int kDefaultSize = 12;
// The sample stays readable and the dialog its size whatever the chosen size.
constexpr int kLargestSampleSize = 36;

QIcon swatch(const QColor &color)
{
    QPixmap pixmap(28, 14);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(Qt::gray);
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}

} // namespace

NotesSettingsDialog::NotesSettingsDialog(QWidget *parent)
    : ThemedDialog(QLatin1String(kNotesSettingsName), tr("Vantora Notes Settings"), parent)
{
    const NewDocumentSettings s = NewDocumentSettings::load();

    m_type = new QComboBox;
    m_type->setObjectName(QStringLiteral("cboDOCTYPE"));
    m_type->addItems({QLatin1String(kRichTextChoice), QLatin1String(kPlainTextChoice)});
    m_type->setCurrentIndex(s.isRichText() ? 0 : 1);
    m_type->setToolTip(tr("Rich text keeps fonts, colours and pictures; plain text keeps only the text"));

    m_font = new QFontComboBox;
    m_font->setObjectName(QStringLiteral("cboFONTNAME"));
    m_font->setCurrentFont(QFont(s.fontName));
    // A font missing on this system keeps its name rather than turning into its stand-in.
    m_font->setEditText(s.fontName);
    m_font->setToolTip(tr("The font a new document is written in"));

    m_size = new QComboBox;
    m_size->setObjectName(QStringLiteral("cboFONTSIZE"));
    m_size->setEditable(true);
    m_size->setInsertPolicy(QComboBox::NoInsert);
    for (int size : {8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 36, 48, 72})
        m_size->addItem(QString::number(size));
    m_size->setValidator(new QIntValidator(kSmallestSize, kLargestSize, m_size));
    m_size->setEditText(QString::number(s.fontSize));
    m_size->setToolTip(tr("The size of the font in points, %1 to %2").arg(kSmallestSize).arg(kLargestSize));

    m_colorButton = new QPushButton(tr("C&hoose..."));
    m_colorButton->setObjectName(QStringLiteral("btnFONTCOLOR"));
    m_colorButton->setToolTip(tr("Choose the colour of the text"));
    auto *defaultColor = new QPushButton(tr("&Default"));
    defaultColor->setObjectName(QStringLiteral("btnDEFAULTCOLOR"));
    defaultColor->setToolTip(tr("Use the desktop's colour for window text"));

    m_sample = new QLabel(tr("AaBbCc 123"));
    m_sample->setObjectName(QStringLiteral("lblSAMPLE"));
    m_sample->setAlignment(Qt::AlignCenter);
    m_sample->setMinimumHeight(m_sample->fontMetrics().height() * 3);
    m_sample->setFrameShape(QFrame::StyledPanel);
    m_sample->setAutoFillBackground(true);

    const SpellSettings spelling = SpellSettings::load();
    m_language = new QComboBox;
    m_language->setObjectName(QStringLiteral("cboLANGUAGE"));
    m_language->addItems({tr("US English"), tr("UK English")});
    m_language->setCurrentIndex(spelling.isUkEnglish() ? 1 : 0);
    m_language->setToolTip(tr("The dictionary the spelling is checked against; a change counts from the next check"));
    const auto check = [](const QString &name, const QString &caption, const QString &tip, bool on) {
        auto *box = new QCheckBox(caption);
        box->setObjectName(name);
        box->setToolTip(tip);
        box->setChecked(on);
        return box;
    };
    m_numbers = check(QStringLiteral("chkSPELLNUMBERS"), tr("Pass words with &numbers (R2D2)"),
                      tr("A word with a digit 1 to 9 is taken as correct"), spelling.skip.numbers);
    m_capitals = check(QStringLiteral("chkSPELLCAPITALS"), tr("Pass words in &capitals (NASA)"),
                       tr("A word of capital letters A to Z only is taken as correct"), spelling.skip.capitals);
    m_characters = check(QStringLiteral("chkSPELLCHARACTERS"), tr("Pass words with &signs (e-mail, café)"),
                         tr("A word with a sign such as - @ & or a letter beyond a to z is taken as correct"),
                         spelling.skip.characters);
    m_loadOnFirst = check(QStringLiteral("chkSPELLLOADFIRST"), tr("&Read the dictionary when the editor opens"),
                          tr("Underlines unknown words from the start; otherwise the first check reads the dictionary"),
                          spelling.loadOnFirst);
    auto *spellForm = new QFormLayout;
    spellForm->addRow(tr("&Language:"), m_language);
    auto *spellColumn = new QVBoxLayout;
    spellColumn->addLayout(spellForm);
    for (QCheckBox *box : {m_numbers, m_capitals, m_characters, m_loadOnFirst})
        spellColumn->addWidget(box);
    auto *spellGroup = new QGroupBox(tr("Spelling"));
    spellGroup->setLayout(spellColumn);

    auto *okButton = new QPushButton(tr("OK"));
    okButton->setObjectName(QStringLiteral("btnOK"));
    setDefaultButton(okButton);
    auto *cancelButton = new QPushButton(tr("Cancel"));
    cancelButton->setObjectName(QStringLiteral("btnCANCEL"));

    auto *colorRow = new QHBoxLayout;
    colorRow->addWidget(m_colorButton);
    colorRow->addWidget(defaultColor);
    colorRow->addStretch(1);
    auto *form = new QFormLayout;
    form->addRow(tr("Document &type:"), m_type);
    form->addRow(tr("&Font:"), m_font);
    form->addRow(tr("&Size:"), m_size);
    form->addRow(tr("Colour:"), colorRow);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(okButton);
    buttons->addWidget(cancelButton);

    auto *layout = new QVBoxLayout;
    layout->addLayout(form);
    layout->addWidget(m_sample);
    layout->addWidget(spellGroup);
    layout->addSpacing(6);
    layout->addLayout(buttons);
    setPanelLayout(layout);

    connect(okButton, &QPushButton::clicked, this, &NotesSettingsDialog::save);
    connect(cancelButton, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_colorButton, &QPushButton::clicked, this, &NotesSettingsDialog::chooseColor);
    connect(defaultColor, &QPushButton::clicked, this,
            [this] { setFontColor(NewDocumentSettings::kDefaultFontColor); });
    connect(m_font, &QFontComboBox::editTextChanged, this, &NotesSettingsDialog::updateSample);
    connect(m_size, &QComboBox::editTextChanged, this, &NotesSettingsDialog::updateSample);
    setFontColor(s.fontColor);
}

void NotesSettingsDialog::setFontColor(OleColor color)
{
    m_color = color;
    m_colorButton->setIcon(swatch(ResolveColor(color)));
    updateSample();
}

void NotesSettingsDialog::chooseColor()
{
    const QColor chosen = QColorDialog::getColor(ResolveColor(m_color), this, tr("Select Color"));
    if (chosen.isValid())
        setFontColor(ToOleColor(chosen));
}

int NotesSettingsDialog::chosenSize(int fallback) const
{
    bool ok = false;
    const int size = m_size->currentText().trimmed().toInt(&ok);
    return ok && size >= kSmallestSize && size <= kLargestSize ? size : fallback;
}

void NotesSettingsDialog::updateSample()
{
    QFont font(m_font->currentText().trimmed());
    font.setPointSize(qBound(kSmallestSize, chosenSize(kDefaultSize), kLargestSampleSize));
    m_sample->setFont(font);
    // The sample sits on the background of a page, as the text of a document does.
    QPalette palette = m_sample->palette();
    palette.setColor(QPalette::Window, QApplication::palette().color(QPalette::Base));
    palette.setColor(QPalette::WindowText, ResolveColor(m_color));
    m_sample->setPalette(palette);
}

void NotesSettingsDialog::save()
{
    NewDocumentSettings s = NewDocumentSettings::load();
    s.documentType = m_type->currentText();
    const QString fontName = m_font->currentText().trimmed();
    if (!fontName.isEmpty())
        s.fontName = fontName;
    s.fontSize = chosenSize(s.fontSize);
    s.fontColor = m_color;
    s.save();
    SpellSettings spelling = SpellSettings::load();
    spelling.language = QLatin1String(m_language->currentIndex() == 1 ? SpellSettings::kUkDictionary
                                                                       : SpellSettings::kUsDictionary);
    spelling.skip.numbers = m_numbers->isChecked();
    spelling.skip.capitals = m_capitals->isChecked();
    spelling.skip.characters = m_characters->isChecked();
    spelling.loadOnFirst = m_loadOnFirst->isChecked();
    spelling.save();
    accept();
}
