#include "notes/print_setup_tabs.h"

#include "core/settings_store.h"
#include "notes/print_engine.h"
#include "notes/print_paper.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QVBoxLayout>

namespace {

const char *const kSideNames[4] = {QT_TRANSLATE_NOOP("PrintSetupTabs", "&Left:"),
                                    QT_TRANSLATE_NOOP("PrintSetupTabs", "&Top:"),
                                    QT_TRANSLATE_NOOP("PrintSetupTabs", "&Right:"),
                                    QT_TRANSLATE_NOOP("PrintSetupTabs", "&Bottom:")};

QLabel *noteLabel(const QString &text)
{
    auto *label = new QLabel(text);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    return label;
}

} // namespace

PrintSetupTabs::PrintSetupTabs(const PrintSettings &settings, QWidget *parent)
    : QTabWidget(parent), m_settings(settings)
{
    setObjectName(QStringLiteral("tabSETUP"));
    addTab(buildPaperPage(), QStringLiteral("Page"));
    addTab(buildMarginsPage(), QStringLiteral("Mgns"));
    // "&&" shows one ampersand instead of making H the tab's shortcut.
    addTab(buildHeadFootPage(), QStringLiteral("H&&F"));
    setTabToolTip(0, tr("The printer, the paper and its orientation"));
    setTabToolTip(1, tr("The margins of the page"));
    setTabToolTip(2, tr("What the head and the foot of every page show"));
}

QWidget *PrintSetupTabs::buildPaperPage()
{
    auto *page = new QWidget;
    auto *form = new QFormLayout(page);

    m_printer = new QComboBox;
    m_printer->setObjectName(QStringLiteral("cboPRINTER"));
    m_printer->setToolTip(tr("The printer the pages are laid out for and printed on"));
    connect(m_printer, &QComboBox::activated, this,
            [this](int index) { emit printerChosen(m_printers.value(index).name); });
    form->addRow(tr("P&rinter:"), m_printer);

    m_paper = new QComboBox;
    m_paper->setObjectName(QStringLiteral("cboPAPER"));
    for (const PaperChoice &paper : PaperChoices())
        m_paper->addItem(QString::fromLatin1(paper.caption), paper.code);
    const int index = PaperIndexOfCode(m_settings.paperCode);
    m_paper->setCurrentIndex(index >= 0 ? index : PaperIndexOfCode(kPaperA4));
    m_paper->setToolTip(tr("The size of the paper"));
    connect(m_paper, &QComboBox::activated, this, &PrintSetupTabs::paperChosen);
    form->addRow(tr("&Paper:"), m_paper);

    m_paperWidth = addDecimalField(QStringLiteral("txtPAPERWIDTH"), tr("The width of a user-defined paper, in centimetres"));
    m_paperHeight = addDecimalField(QStringLiteral("txtPAPERHEIGHT"), tr("The height of a user-defined paper, in centimetres"));
    m_paperWidth->setText(DecimalText(m_settings.userPaperCm.width()));
    m_paperHeight->setText(DecimalText(m_settings.userPaperCm.height()));
    connect(m_paperWidth, &QLineEdit::textEdited, this, &PrintSetupTabs::paperSizeTyped);
    connect(m_paperHeight, &QLineEdit::textEdited, this, &PrintSetupTabs::paperSizeTyped);
    auto *size = new QHBoxLayout;
    size->addWidget(m_paperWidth);
    size->addWidget(new QLabel(QStringLiteral("\u00d7")));
    size->addWidget(m_paperHeight);
    size->addWidget(new QLabel(tr("cm")));
    form->addRow(tr("User-defined size:"), size);
    m_paperWidth->setEnabled(m_settings.paperCode == kPaperUserDefined);
    m_paperHeight->setEnabled(m_settings.paperCode == kPaperUserDefined);

    auto *orientation = new QGroupBox(tr("Orientation"));
    auto *options = new QHBoxLayout(orientation);
    m_portrait = new QRadioButton(QLatin1String(kPortrait));
    m_portrait->setObjectName(QStringLiteral("optPORTRAIT"));
    m_portrait->setToolTip(tr("The page stands upright"));
    m_landscape = new QRadioButton(QLatin1String(kLandscape));
    m_landscape->setObjectName(QStringLiteral("optLANDSCAPE"));
    m_landscape->setToolTip(tr("The page lies on its side"));
    options->addWidget(m_portrait);
    options->addWidget(m_landscape);
    options->addStretch();
    (m_settings.orientation == QPageLayout::Landscape ? m_landscape : m_portrait)->setChecked(true);
    connect(m_landscape, &QRadioButton::toggled, this, [this](bool landscape) {
        m_settings.orientation = landscape ? QPageLayout::Landscape : QPageLayout::Portrait;
        emit settingsChanged();
    });
    form->addRow(orientation);
    return page;
}

QWidget *PrintSetupTabs::buildMarginsPage()
{
    auto *page = new QWidget;
    auto *column = new QVBoxLayout(page);
    auto *form = new QFormLayout;
    for (int side = 0; side < 4; ++side) {
        m_margins[side] = addDecimalField(QStringLiteral("txtMARGIN_%1").arg(side), tr("The margin in centimetres"));
        m_margins[side]->setText(DecimalText(m_settings.marginCm[side]));
        connect(m_margins[side], &QLineEdit::textEdited, this, [this, side] { marginTyped(side); });
        auto *row = new QHBoxLayout;
        row->addWidget(m_margins[side]);
        row->addWidget(new QLabel(tr("cm")));
        row->addStretch();
        // A label before a row of widgets needs its buddy set for its shortcut to work.
        auto *label = new QLabel(tr(kSideNames[side]));
        label->setBuddy(m_margins[side]);
        form->addRow(label, row);
    }
    column->addLayout(form);

    m_lock = new QCheckBox(tr("&Same margin on every side"));
    m_lock->setObjectName(QStringLiteral("chkLOCK"));
    m_lock->setToolTip(tr("A margin typed on one side is used on all four"));
    m_lock->setChecked(m_settings.sameMargins);
    connect(m_lock, &QCheckBox::toggled, this, [this](bool on) {
        m_settings.sameMargins = on;
        if (on)
            marginTyped(0);
    });
    column->addWidget(m_lock);
    column->addWidget(noteLabel(tr("Margins are measured in centimetres from the edge of the paper, up to %1 cm. "
                                   "Where the printer cannot print that close to the edge, it leaves its own edge "
                                   "instead (without a printer, 0.64 cm).")
                                    .arg(PrintSettings::kLargestMarginCm)));
    m_reduced = noteLabel(tr("These margins leave too little room for the text: they are narrowed on the page."));
    m_reduced->setObjectName(QStringLiteral("lblMARGINWARN"));
    m_reduced->hide();
    column->addWidget(m_reduced);
    column->addStretch();
    return page;
}

QWidget *PrintSetupTabs::buildHeadFootPage()
{
    auto *page = new QWidget;
    auto *column = new QVBoxLayout(page);

    auto *head = new QGroupBox(tr("Head"));
    auto *headGrid = new QGridLayout(head);
    headGrid->addWidget(addCheck(QStringLiteral("chkTITLE"), tr("T&itle"), &PrintSettings::title), 0, 0);
    headGrid->addWidget(addCheck(QStringLiteral("chkHEADLINE"), tr("Line &under"), &PrintSettings::headLine), 0, 1);
    headGrid->addWidget(addCheck(QStringLiteral("chkDATE"), tr("&Date"), &PrintSettings::date), 1, 0);
    headGrid->addWidget(addCheck(QStringLiteral("chkTIME"), tr("Ti&me"), &PrintSettings::time), 1, 1);
    column->addWidget(head);

    auto *foot = new QGroupBox(tr("Foot"));
    auto *footGrid = new QGridLayout(foot);
    footGrid->addWidget(addCheck(QStringLiteral("chkFOOTNAME"), tr("&Name"), &PrintSettings::footName), 0, 0);
    footGrid->addWidget(addCheck(QStringLiteral("chkFOOTLINE"), tr("Line &above"), &PrintSettings::footLine), 0, 1);
    footGrid->addWidget(addCheck(QStringLiteral("chkFOOTFILE"), tr("&File name"), &PrintSettings::footFileName), 1, 0);
    footGrid->addWidget(addCheck(QStringLiteral("chkPAGENUMBER"), tr("Page n&umber"), &PrintSettings::pageNumber),
                        1, 1);
    column->addWidget(foot);

    auto *texts = new QFormLayout;
    auto addText = [&](const QString &name, const QString &caption, QString PrintSettings::*value) {
        auto *field = new QLineEdit(m_settings.*value);
        field->setObjectName(name);
        field->setMaxLength(kLongestSetting);
        // Kept with the page setup; printing reads its own title and fields, so the pages
        // need not be laid out again.
        connect(field, &QLineEdit::textEdited, this, [this, value](const QString &text) { m_settings.*value = text; });
        texts->addRow(caption, field);
    };
    addText(QStringLiteral("txtTITLE"), tr("Title &text:"), &PrintSettings::pageTitle);
    addText(QStringLiteral("txtFIELD_1"), tr("Field &1:"), &PrintSettings::pageField1);
    addText(QStringLiteral("txtFIELD_2"), tr("Field &2:"), &PrintSettings::pageField2);
    column->addLayout(texts);
    column->addStretch();
    return page;
}

QCheckBox *PrintSetupTabs::addCheck(const QString &name, const QString &caption, bool PrintSettings::*value)
{
    auto *check = new QCheckBox(caption);
    check->setObjectName(name);
    check->setChecked(m_settings.*value);
    connect(check, &QCheckBox::toggled, this, [this, value](bool on) {
        m_settings.*value = on;
        emit settingsChanged();
    });
    return check;
}

QLineEdit *PrintSetupTabs::addDecimalField(const QString &name, const QString &toolTip)
{
    auto *field = new QLineEdit;
    field->setObjectName(name);
    field->setToolTip(toolTip);
    // Digits with one decimal point, a full stop or a comma as the user's keyboard has it.
    field->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("\\d{0,3}([.,]\\d{0,3})?")),
                                                        field));
    field->setMaximumWidth(field->fontMetrics().horizontalAdvance(QStringLiteral("0000.000")) + 16);
    connect(field, &QLineEdit::editingFinished, this, [this, field] { tidyDecimalField(field); });
    return field;
}

void PrintSetupTabs::tidyDecimalField(QLineEdit *field)
{
    for (int side = 0; side < 4; ++side) {
        if (field == m_margins[side])
            field->setText(DecimalText(m_settings.marginCm[side]));
    }
    if (field == m_paperWidth)
        field->setText(DecimalText(m_settings.userPaperCm.width()));
    if (field == m_paperHeight)
        field->setText(DecimalText(m_settings.userPaperCm.height()));
}

void PrintSetupTabs::paperChosen(int index)
{
    m_settings.paperCode = m_paper->itemData(index).toInt();
    const bool user = m_settings.paperCode == kPaperUserDefined;
    m_paperWidth->setEnabled(user);
    m_paperHeight->setEnabled(user);
    emit settingsChanged();
}

void PrintSetupTabs::paperSizeTyped()
{
    bool widthOk = false;
    bool heightOk = false;
    const double width = ParseDecimal(m_paperWidth->text(), 0, &widthOk);
    const double height = ParseDecimal(m_paperHeight->text(), 0, &heightOk);
    if (!widthOk || !heightOk)
        return;
    m_settings.userPaperCm = QSizeF(qBound(PrintSettings::kSmallestPaperCm, width, PrintSettings::kLargestPaperCm),
                                    qBound(PrintSettings::kSmallestPaperCm, height, PrintSettings::kLargestPaperCm));
    emit settingsChanged();
}

void PrintSetupTabs::marginTyped(int side)
{
    bool ok = false;
    const double margin = qBound(0.0, ParseDecimal(m_margins[side]->text(), 0, &ok), PrintSettings::kLargestMarginCm);
    if (!ok && !m_margins[side]->text().trimmed().isEmpty())
        return;
    for (int other = 0; other < 4; ++other) {
        if (other == side || m_settings.sameMargins) {
            m_settings.marginCm[other] = margin;
            if (other != side)
                m_margins[other]->setText(DecimalText(margin));
        }
    }
    emit settingsChanged();
}

void PrintSetupTabs::setPrinters(const QList<PrintEngine::PrinterChoice> &printers, const QString &chosen)
{
    m_printer->clear();
    m_printers = printers;
    if (printers.isEmpty()) {
        m_printer->addItem(tr("No printer installed"));
        m_printer->setEnabled(false);
        return;
    }
    for (const PrintEngine::PrinterChoice &printer : printers) {
        m_printer->addItem(printer.caption);
        if (printer.name == chosen)
            m_printer->setCurrentIndex(m_printer->count() - 1);
    }
    m_printer->setEnabled(true);
}

void PrintSetupTabs::showMarginsReduced(bool reduced)
{
    m_reduced->setVisible(reduced);
}
