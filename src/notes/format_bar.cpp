#include "notes/format_bar.h"

#include "notes/line_spacing.h"
#include "notes/note_document.h"
#include "notes/notes_settings.h"
#include "notes/page_box.h"
#include "notes/text_formatting.h"
#include "themes/font_family_box.h"

#include <QApplication>
#include <QButtonGroup>
#include <QColorDialog>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPainter>
#include <QTextBlock>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

const int kFontSizes[] = {8, 9, 10, 11, 12, 14, 16, 18, 20, 22, 24, 28, 32, 36, 48, 72};
const int kParagraphSpacings[] = {0, 3, 6, 8, 10, 12, 18, 24, 36};
const Qt::Alignment kAlignments[] = {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight, Qt::AlignJustify};
const QTextCharFormat::VerticalAlignment kScripts[] = {QTextCharFormat::AlignNormal, QTextCharFormat::AlignSuperScript,
                                                       QTextCharFormat::AlignSubScript};

// Small line drawings for the paragraph buttons: four lines laid out as the alignment puts
// text, or a bulleted list, or lines moving in or out.
QIcon ParagraphIcon(const QString &kind, const QColor &ink)
{
    QPixmap pixmap(32, 32);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(ink, 2.5, Qt::SolidLine, Qt::RoundCap));
    const int widths[] = {24, 16, 22, 14};
    for (int i = 0; i < 4; ++i) {
        const int y = 6 + i * 6;
        int w = widths[i];
        int x = 4;
        if (kind == QLatin1String("justify"))
            w = 24;
        else if (kind == QLatin1String("center"))
            x = 16 - w / 2;
        else if (kind == QLatin1String("right"))
            x = 28 - w;
        else if (kind == QLatin1String("bullets")) {
            p.drawPoint(5, y);
            x = 11;
            w = widths[i] - 6;
        } else if (kind == QLatin1String("indent") || kind == QLatin1String("outdent")) {
            x = (i == 0 || i == 3) ? 4 : 14;
            w = (i == 0 || i == 3) ? 24 : 14;
        }
        p.drawLine(x, y, x + w, y);
    }
    if (kind == QLatin1String("indent") || kind == QLatin1String("outdent")) {
        const bool in = kind == QLatin1String("indent");
        QPolygonF arrow;
        arrow << QPointF(in ? 4 : 10, 12) << QPointF(in ? 10 : 4, 15) << QPointF(in ? 4 : 10, 18);
        p.setBrush(ink);
        p.setPen(Qt::NoPen);
        p.drawPolygon(arrow);
    }
    return QIcon(pixmap);
}

QString PointsText(int points)
{
    return QObject::tr("%1 pt").arg(points);
}

} // namespace

FormatBar::FormatBar(QWidget *parent)
    : QWidget(parent)
{
    setObjectName(QStringLiteral("pnlFORMATBAR"));
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(2);
    auto *characters = new QWidget(this);
    auto *paragraphs = new QWidget(this);
    rows->addWidget(characters);
    rows->addWidget(paragraphs);
    buildCharacterRow(characters);
    buildParagraphRow(paragraphs);
    setDocument(nullptr);
}

QToolButton *FormatBar::addButton(QWidget *row, const QString &name, const QString &caption, const QString &toolTip,
                                  bool checkable)
{
    auto *button = new QToolButton(row);
    button->setObjectName(name);
    button->setText(caption);
    // Read out as "Bold" or "Align centre", not as the letter or the picture on the button.
    button->setAccessibleName(toolTip.section(QStringLiteral(" ("), 0, 0));
    button->setToolTip(toolTip);
    button->setCheckable(checkable);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    row->layout()->addWidget(button);
    m_buttons.insert(name, button);
    return button;
}

void FormatBar::buildCharacterRow(QWidget *row)
{
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);

    m_fontName = new FontFamilyBox(row);
    m_fontName->setObjectName(QStringLiteral("cboFONTNAME"));
    m_fontName->setToolTip(tr("Font of the selected text"));
    m_fontName->setMaximumWidth(180);
    layout->addWidget(m_fontName);
    connect(m_fontName, &FontFamilyBox::currentFontChanged, this, [this] { applyFontName(); });

    m_fontSize = new QComboBox(row);
    m_fontSize->setObjectName(QStringLiteral("cboFONTSIZE"));
    m_fontSize->setEditable(true);
    m_fontSize->setToolTip(tr("Size of the selected text in points"));
    for (int size : kFontSizes)
        m_fontSize->addItem(QString::number(size));
    m_fontSize->setMinimumContentsLength(3);
    layout->addWidget(m_fontSize);
    connect(m_fontSize, &QComboBox::textActivated, this, [this] { applyFontSize(); });
    connect(m_fontSize->lineEdit(), &QLineEdit::editingFinished, this, [this] { applyFontSize(); });

    QFont f = font();
    QToolButton *bold = addButton(row, QStringLiteral("chkBOLD"), tr("B"), tr("Bold (Ctrl+B)"), true);
    f.setBold(true);
    bold->setFont(f);
    connect(bold, &QToolButton::clicked, this, [this](bool on) { applyBold(on); });
    QToolButton *italic = addButton(row, QStringLiteral("chkITALIC"), tr("I"), tr("Italic (Ctrl+I)"), true);
    f = font();
    f.setItalic(true);
    italic->setFont(f);
    connect(italic, &QToolButton::clicked, this, [this](bool on) { applyItalic(on); });
    QToolButton *underline = addButton(row, QStringLiteral("chkUNDERLINE"), tr("U"), tr("Underline (Ctrl+U)"), true);
    f = font();
    f.setUnderline(true);
    underline->setFont(f);
    connect(underline, &QToolButton::clicked, this, [this](bool on) { applyUnderline(on); });

    QToolButton *color = addButton(row, QStringLiteral("btnCOLOR"), tr("Colour"), tr("Colour of the selected text"));
    color->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    connect(color, &QToolButton::clicked, this, [this] { chooseColor(); });

    m_script = new QButtonGroup(this);
    const QString scriptCaptions[] = {tr("Normal"), tr("Raised"), tr("Lowered")};
    const QString scriptTips[] = {tr("Normal script"), tr("Raised script (superscript)"),
                                  tr("Lowered script (subscript)")};
    for (int i = 0; i < 3; ++i) {
        QToolButton *b = addButton(row, QStringLiteral("optSCRIPT_%1").arg(i), scriptCaptions[i], scriptTips[i], true);
        m_script->addButton(b, i);
    }
    connect(m_script, &QButtonGroup::idClicked, this, [this](int id) {
        if (m_document)
            m_document->TextFontScriptSet(kScripts[id]);
    });

    QToolButton *remove = addButton(row, QStringLiteral("btnSTYLEREMV"), tr("Clear"),
                                    tr("Remove the character formatting of the selection"));
    connect(remove, &QToolButton::clicked, this, [this] {
        if (m_document)
            m_document->FormatRemove();
        TextStyleCheck();
    });
    layout->addStretch(1);
}

void FormatBar::buildParagraphRow(QWidget *row)
{
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    const QColor ink = palette().color(QPalette::ButtonText);

    m_align = new QButtonGroup(this);
    const QString kinds[] = {QStringLiteral("left"), QStringLiteral("center"), QStringLiteral("right"),
                             QStringLiteral("justify")};
    const QString tips[] = {tr("Align left (Ctrl+L)"), tr("Centre (Ctrl+E)"), tr("Align right (Ctrl+R)"),
                            tr("Justify (Ctrl+J)")};
    for (int i = 0; i < 4; ++i) {
        QToolButton *b = addButton(row, QStringLiteral("optALIGN_%1").arg(i), QString(), tips[i], true);
        b->setIcon(ParagraphIcon(kinds[i], ink));
        m_align->addButton(b, i);
    }
    connect(m_align, &QButtonGroup::idClicked, this, [this](int id) {
        if (m_document)
            m_document->PageAlignSet(kAlignments[id]);
    });

    QToolButton *bullets = addButton(row, QStringLiteral("chkBULLETS"), QString(), tr("Bullets on or off"), true);
    bullets->setIcon(ParagraphIcon(QStringLiteral("bullets"), ink));
    connect(bullets, &QToolButton::clicked, this, [this] {
        if (m_document)
            m_document->PageBullets();
        TextStyleCheck();
    });
    QToolButton *outdent = addButton(row, QStringLiteral("btnINDDEC"), QString(), tr("Move the paragraphs left"));
    outdent->setIcon(ParagraphIcon(QStringLiteral("outdent"), ink));
    connect(outdent, &QToolButton::clicked, this, [this] {
        if (m_document)
            m_document->PageIndentDecr();
    });
    QToolButton *indent = addButton(row, QStringLiteral("btnINDINC"), QString(), tr("Move the paragraphs right"));
    indent->setIcon(ParagraphIcon(QStringLiteral("indent"), ink));
    connect(indent, &QToolButton::clicked, this, [this] {
        if (m_document)
            m_document->PageIndentIncr();
    });

    m_spacing = new QComboBox(row);
    m_spacing->setObjectName(QStringLiteral("cboLINESPACING"));
    m_spacing->setToolTip(tr("Line spacing of the selected paragraphs"));
    for (const LineSpacingPreset &preset : kLineSpacingPresets)
        m_spacing->addItem(QString::fromLatin1(preset.entry), QString::fromLatin1(preset.value));
    layout->addWidget(m_spacing);
    connect(m_spacing, &QComboBox::activated, this, [this](int index) { applySpacingEntry(index); });

    m_customSpacing = new QComboBox(row);
    m_customSpacing->setObjectName(QStringLiteral("cboLINCUST"));
    m_customSpacing->setEditable(true);
    m_customSpacing->setToolTip(tr("A line spacing of your own, in lines (for example 1.3); "
                                   "used when \"Custom Spacing\" is chosen"));
    m_customSpacing->addItems({QStringLiteral("1.3"), QStringLiteral("1.75"), QStringLiteral("2.5"),
                               QStringLiteral("3")});
    m_customSpacing->setMinimumContentsLength(4);
    layout->addWidget(m_customSpacing);
    connect(m_customSpacing, &QComboBox::textActivated, this, [this] { applyCustomSpacing(); });
    connect(m_customSpacing->lineEdit(), &QLineEdit::returnPressed, this, [this] { applyCustomSpacing(); });

    m_before = new QComboBox(row);
    m_before->setObjectName(QStringLiteral("cboPARBEFORE"));
    m_before->setToolTip(tr("Space before the selected paragraphs"));
    m_after = new QComboBox(row);
    m_after->setObjectName(QStringLiteral("cboPARAFTER"));
    m_after->setToolTip(tr("Space after the selected paragraphs"));
    for (int points : kParagraphSpacings) {
        m_before->addItem(tr("Before %1").arg(PointsText(points)), points);
        m_after->addItem(tr("After %1").arg(PointsText(points)), points);
    }
    layout->addWidget(m_before);
    layout->addWidget(m_after);
    connect(m_before, &QComboBox::activated, this, [this] { applyParagraphSpacing(); });
    connect(m_after, &QComboBox::activated, this, [this] { applyParagraphSpacing(); });

    QToolButton *reset = addButton(row, QStringLiteral("btnREMSTYLES"), tr("Reset"),
                                   tr("Single spacing and no indent for the selected paragraphs"));
    connect(reset, &QToolButton::clicked, this, [this] {
        if (m_document)
            m_document->ParagraphsReset();
        TextStyleCheck();
    });
    layout->addStretch(1);
}

QAbstractButton *FormatBar::button(const QString &name) const
{
    return m_buttons.value(name);
}

void FormatBar::setDocument(NoteDocument *document)
{
    m_document = document;
    // Plain-text documents have no formatting to change.
    const bool rich = document && document->isRichText();
    for (QWidget *w : findChildren<QWidget *>(Qt::FindDirectChildrenOnly))
        w->setEnabled(rich);
    if (rich)
        TextStyleCheck();
}

void FormatBar::TextStyleCheck()
{
    if (!m_document || !m_document->isRichText())
        return;
    m_syncing = true;
    const QTextCursor cursor = m_document->page()->textCursor();
    const QTextCharFormat format = m_document->page()->currentCharFormat();
    const QSignalBlocker blockFont(m_fontName);
    const QStringList families = format.fontFamilies().toStringList();
    if (!families.isEmpty())
        m_fontName->setCurrentFont(QFont(families.first()));
    const double size = format.fontPointSize() > 0 ? format.fontPointSize() : m_document->page()->font().pointSizeF();
    m_fontSize->setEditText(QString::number(size));
    m_buttons.value(QStringLiteral("chkBOLD"))->setChecked(format.fontWeight() >= QFont::DemiBold);
    m_buttons.value(QStringLiteral("chkITALIC"))->setChecked(format.fontItalic());
    m_buttons.value(QStringLiteral("chkUNDERLINE"))->setChecked(format.fontUnderline());
    const int script = format.verticalAlignment() == QTextCharFormat::AlignSuperScript ? 1
                       : format.verticalAlignment() == QTextCharFormat::AlignSubScript ? 2
                                                                                       : 0;
    m_script->button(script)->setChecked(true);
    showColor(format.foreground().style() != Qt::NoBrush ? format.foreground().color()
                                                         : m_document->page()->palette().color(QPalette::Text));

    const Qt::Alignment alignment = m_document->PageAlignGet();
    for (int i = 0; i < 4; ++i) {
        if (kAlignments[i] == alignment)
            m_align->button(i)->setChecked(true);
    }
    m_buttons.value(QStringLiteral("chkBULLETS"))->setChecked(TextFormatting::HasBullets(cursor));
    const QString spacing = m_document->PageLineSpacingGet();
    const QSignalBlocker blockSpacing(m_spacing);
    const int preset = LineSpacingPresetIndex(spacing);
    m_spacing->setCurrentIndex(preset);
    if (preset == kCustomLineSpacingIndex)
        m_customSpacing->setEditText(spacing);
    const int before = m_before->findData(qRound(TextFormatting::SpacingBefore(cursor)));
    const int after = m_after->findData(qRound(TextFormatting::SpacingAfter(cursor)));
    m_before->setCurrentIndex(qMax(0, before));
    m_after->setCurrentIndex(qMax(0, after));
    m_syncing = false;
}

void FormatBar::applyFontName()
{
    if (m_syncing || !m_document)
        return;
    QTextCharFormat format;
    format.setFontFamilies(QStringList{m_fontName->currentFont().family()});
    m_document->mergeCharFormat(format);
    m_document->page()->setFocus();
}

void FormatBar::applyFontSize()
{
    if (m_syncing || !m_document)
        return;
    bool ok = false;
    const double size = m_fontSize->currentText().trimmed().replace(QLatin1Char(','), QLatin1Char('.')).toDouble(&ok);
    if (!ok || size < NewDocumentSettings::kSmallestFontSize || size > NewDocumentSettings::kLargestFontSize) {
        TextStyleCheck(); // back to the selection's size
        return;
    }
    QTextCharFormat format;
    format.setFontPointSize(size);
    // Leaving the box with Tab applies the size too; the keyboard then goes on where Tab sent
    // it, not back to the page, or the controls after this box could never be reached.
    QWidget *next = QApplication::focusWidget();
    m_document->mergeCharFormat(format);
    if (next && next != m_fontSize && next != m_fontSize->lineEdit())
        next->setFocus(Qt::TabFocusReason);
}

void FormatBar::applyBold(bool on)
{
    if (!m_document)
        return;
    QTextCharFormat format;
    format.setFontWeight(on ? QFont::Bold : QFont::Normal);
    m_document->mergeCharFormat(format);
}

void FormatBar::applyItalic(bool on)
{
    if (!m_document)
        return;
    QTextCharFormat format;
    format.setFontItalic(on);
    m_document->mergeCharFormat(format);
}

void FormatBar::applyUnderline(bool on)
{
    if (!m_document)
        return;
    QTextCharFormat format;
    format.setFontUnderline(on);
    m_document->mergeCharFormat(format);
}

void FormatBar::chooseColor()
{
    if (!m_document)
        return;
    const QTextCharFormat current = m_document->page()->currentCharFormat();
    const QColor initial = current.foreground().style() != Qt::NoBrush ? current.foreground().color() : Qt::black;
    const QColor chosen = QColorDialog::getColor(initial, window(), QStringLiteral("Select Color"));
    if (!chosen.isValid())
        return;
    QTextCharFormat format;
    format.setForeground(chosen);
    m_document->mergeCharFormat(format);
    showColor(chosen);
}

void FormatBar::showColor(const QColor &color)
{
    QPixmap swatch(16, 16);
    swatch.fill(color);
    m_buttons.value(QStringLiteral("btnCOLOR"))->setIcon(QIcon(swatch));
}

void FormatBar::applySpacingEntry(int index)
{
    if (!m_document)
        return;
    const bool custom = index == kCustomLineSpacingIndex;
    const QString value = custom ? m_customSpacing->currentText() : m_spacing->itemData(index).toString();
    if (custom) {
        applyCustomSpacing();
        return;
    }
    // Only a different spacing is set, so choosing the current one adds no undo step.
    if (m_document->PageLineSpacingGet() != value)
        m_document->PageLineSpacingSet(value);
    m_document->page()->setFocus();
}

void FormatBar::applyCustomSpacing()
{
    if (!m_document)
        return;
    const LineSpacingInput input = ParseLineSpacing(m_customSpacing->currentText());
    if (!input.accepted) {
        m_customSpacing->setToolTip(input.reason);
        m_customSpacing->lineEdit()->selectAll();
        return;
    }
    const QString value = FormatLineSpacing(input.multiple);
    m_spacing->setCurrentIndex(kCustomLineSpacingIndex);
    if (m_document->PageLineSpacingGet() != value)
        m_document->PageLineSpacingSet(value);
    m_document->page()->setFocus();
}

void FormatBar::applyParagraphSpacing()
{
    if (!m_document)
        return;
    const QTextCursor cursor = m_document->page()->textCursor();
    TextFormatting::SetSpacingBefore(cursor, m_before->currentData().toInt());
    TextFormatting::SetSpacingAfter(cursor, m_after->currentData().toInt());
    m_document->page()->setFocus();
}
