#include "whiteboard/whiteboard_text_dialog.h"

#include "core/settings_store.h"
#include "themes/tool_glyphs.h"

#include <QApplication>
#include <QColorDialog>
#include <QComboBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

namespace {

const QString kWindowName = QStringLiteral("fwbd_TXT");
const QString kFontName = QStringLiteral("Font Name");
const QString kFontSize = QStringLiteral("Font Size");
const QString kFontBold = QStringLiteral("Font Bold");
const QString kFontItalic = QStringLiteral("Font Italic");
const QString kFontUnderline = QStringLiteral("Font Underline");

constexpr int kSmallestSize = 4;
constexpr int kLargestSize = 200;
constexpr int kDefaultSize = 24;
// Big enough to judge the font by, small enough that the sample keeps its height.
constexpr int kLargestSampleSize = 32;

// The preview does not follow the theme: a dark theme would hide dark text, and the board
// behind the text is usually light.
const QColor kSampleBackground(0xF2, 0xF2, 0xF2);

QString defaultFamily()
{
    return QApplication::font().family();
}

// Shows the first line of the text on one line, cut short with an ellipsis where it does not
// fit, and asks the layout for no more than its minimum size: whatever is typed, the dialog
// keeps its size.
class SampleLabel : public QLabel
{
public:
    void setSample(const QString &text)
    {
        m_sample = text;
        refit();
    }
    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSizeHint() const override { return minimumSize(); }

protected:
    void resizeEvent(QResizeEvent *event) override
    {
        QLabel::resizeEvent(event);
        refit();
    }
    void changeEvent(QEvent *event) override
    {
        QLabel::changeEvent(event);
        if (event->type() == QEvent::FontChange)
            refit();
    }

private:
    void refit()
    {
        const QStringList lines = m_sample.split(QLatin1Char('\n'));
        QString shown = lines.first();
        if (lines.size() > 1)
            shown += QChar(0x2026);
        setText(fontMetrics().elidedText(shown, Qt::ElideRight, contentsRect().width()));
    }

    QString m_sample;
};

} // namespace

WhiteboardTextDialog::WhiteboardTextDialog(QWidget *parent)
    : ThemedDialog(kWindowName, tr("Vantora Whiteboard Text"), parent), m_text(new QPlainTextEdit),
      m_font(new QFontComboBox), m_size(new QComboBox), m_colorButton(new QPushButton(tr("C&hoose..."))),
      m_sample(new SampleLabel), m_place(new QPushButton(tr("&Place"))),
      m_cancel(new QPushButton(tr("Cancel")))
{
    const QFontMetrics metrics = fontMetrics();
    m_text->setObjectName(QStringLiteral("txtTEXT"));
    m_text->setPlaceholderText(tr("Type the text to put on the board"));
    m_text->setToolTip(tr("The text to put on the board; Enter starts a new line"));
    // Tab leaves the field, so that the rest of the dialog is reachable from the keyboard.
    m_text->setTabChangesFocus(true);
    m_text->setMinimumSize(metrics.averageCharWidth() * 44, metrics.lineSpacing() * 5);

    m_font->setObjectName(QStringLiteral("cboFONTNAME"));
    m_font->setToolTip(tr("The font of the text"));
    m_size->setObjectName(QStringLiteral("cboFONTSIZE"));
    m_size->setEditable(true);
    m_size->setInsertPolicy(QComboBox::NoInsert);
    for (int size : {8, 9, 10, 11, 12, 14, 16, 18, 20, 24, 28, 36, 48, 72})
        m_size->addItem(QString::number(size));
    m_size->setValidator(new QIntValidator(kSmallestSize, kLargestSize, m_size));
    m_size->setToolTip(tr("The size of the text in points, %1 to %2").arg(kSmallestSize).arg(kLargestSize));

    m_bold = styleButton(QStringLiteral("chkBOLD"), tr("B"), tr("Bold"), QKeySequence::Bold);
    m_italic = styleButton(QStringLiteral("chkITALIC"), tr("I"), tr("Italic"), QKeySequence::Italic);
    m_underline =
        styleButton(QStringLiteral("chkUNDERLINE"), tr("U"), tr("Underline"), QKeySequence::Underline);
    QFont look = m_bold->font();
    look.setBold(true);
    m_bold->setFont(look);
    look = m_italic->font();
    look.setItalic(true);
    m_italic->setFont(look);
    look = m_underline->font();
    look.setUnderline(true);
    m_underline->setFont(look);

    m_colorButton->setObjectName(QStringLiteral("btnCOLOR"));
    m_colorButton->setToolTip(tr("Choose the colour of the text"));
    m_colorButton->setIconSize(QSize(metrics.height() * 2, metrics.height()));

    m_sample->setObjectName(QStringLiteral("lblSAMPLE"));
    m_sample->setAlignment(Qt::AlignCenter);
    m_sample->setFrameShape(QFrame::StyledPanel);
    m_sample->setAutoFillBackground(true);
    m_sample->setToolTip(tr("How the text looks; large sizes are shown smaller"));
    QFont largest = font();
    largest.setPointSize(kLargestSampleSize);
    m_sample->setMinimumSize(metrics.averageCharWidth() * 44,
                             QFontMetrics(largest).lineSpacing() + metrics.height());

    m_place->setObjectName(QStringLiteral("btnPLACE"));
    m_place->setToolTip(tr("Put the text on the board (Ctrl+Enter)"));
    setDefaultButton(m_place);
    m_cancel->setObjectName(QStringLiteral("btnCANCEL"));
    m_cancel->setToolTip(tr("Close without putting a text on the board"));

    setPanelLayout(buildLayout());
    loadFont();
    setTextColor(m_color);
    updatePlaceButton();
    m_text->setFocus();

    // Enter belongs to the text, which may have several lines; Ctrl+Enter places it.
    for (const QKeySequence &keys :
         {QKeySequence(Qt::CTRL | Qt::Key_Return), QKeySequence(Qt::CTRL | Qt::Key_Enter)})
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &WhiteboardTextDialog::place);
    connect(m_place, &QPushButton::clicked, this, &WhiteboardTextDialog::place);
    connect(m_cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_colorButton, &QPushButton::clicked, this, &WhiteboardTextDialog::chooseColor);
    connect(m_text, &QPlainTextEdit::textChanged, this, &WhiteboardTextDialog::updatePlaceButton);
    connect(m_text, &QPlainTextEdit::textChanged, this, &WhiteboardTextDialog::updateSample);
    connect(m_font, &QFontComboBox::editTextChanged, this, &WhiteboardTextDialog::updateSample);
    connect(m_size, &QComboBox::editTextChanged, this, &WhiteboardTextDialog::updateSample);
    for (QToolButton *button : {m_bold, m_italic, m_underline})
        connect(button, &QToolButton::toggled, this, &WhiteboardTextDialog::updateSample);
}

QToolButton *WhiteboardTextDialog::styleButton(const QString &name, const QString &caption,
                                               const QString &tip, const QKeySequence &shortcut)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setText(caption);
    button->setCheckable(true);
    button->setShortcut(shortcut);
    button->setToolTip(tr("%1 (%2)").arg(tip, shortcut.toString(QKeySequence::NativeText)));
    return button;
}

QLayout *WhiteboardTextDialog::buildLayout()
{
    auto *textLabel = new QLabel(tr("&Text:"));
    textLabel->setBuddy(m_text);
    auto *sizeRow = new QHBoxLayout;
    sizeRow->addWidget(m_size);
    for (QToolButton *button : {m_bold, m_italic, m_underline})
        sizeRow->addWidget(button);
    sizeRow->addStretch(1);
    auto *colorRow = new QHBoxLayout;
    colorRow->addWidget(m_colorButton);
    colorRow->addStretch(1);
    auto *form = new QFormLayout;
    form->addRow(tr("&Font:"), m_font);
    // A row holding a layout gets no buddy of its own, and without one "&" shows as written.
    auto *sizeLabel = new QLabel(tr("&Size:"));
    sizeLabel->setBuddy(m_size);
    form->addRow(sizeLabel, sizeRow);
    form->addRow(tr("Colour:"), colorRow);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_place);
    buttons->addWidget(m_cancel);

    auto *layout = new QVBoxLayout;
    layout->addWidget(textLabel);
    layout->addWidget(m_text, 1);
    layout->addLayout(form);
    layout->addWidget(m_sample);
    layout->addSpacing(fontMetrics().height() / 2);
    layout->addLayout(buttons);
    return layout;
}

QFont WhiteboardTextDialog::rememberedFont()
{
    QString family = ReadDetail(kWindowName, kFontName, defaultFamily());
    if (family.isEmpty())
        family = defaultFamily();
    QFont font(family);
    int size = ReadIntDetail(kWindowName, kFontSize, kDefaultSize);
    if (size < kSmallestSize || size > kLargestSize)
        size = kDefaultSize;
    font.setPointSize(size);
    font.setBold(ReadBoolDetail(kWindowName, kFontBold, false));
    font.setItalic(ReadBoolDetail(kWindowName, kFontItalic, false));
    font.setUnderline(ReadBoolDetail(kWindowName, kFontUnderline, false));
    return font;
}

void WhiteboardTextDialog::loadFont()
{
    const QFont font = rememberedFont();
    m_font->setCurrentFont(font);
    // A font missing on this system keeps its name rather than turning into its stand-in.
    m_font->setEditText(font.family());
    m_openingSize = font.pointSize();
    m_size->setEditText(QString::number(m_openingSize));
    m_bold->setChecked(font.bold());
    m_italic->setChecked(font.italic());
    m_underline->setChecked(font.underline());
}

void WhiteboardTextDialog::saveFont() const
{
    WriteDetail(kWindowName, kFontName, chosenFamily());
    WriteDetail(kWindowName, kFontSize, QString::number(chosenSize()));
    WriteDetail(kWindowName, kFontBold, SettingFromBool(m_bold->isChecked()));
    WriteDetail(kWindowName, kFontItalic, SettingFromBool(m_italic->isChecked()));
    WriteDetail(kWindowName, kFontUnderline, SettingFromBool(m_underline->isChecked()));
}

QString WhiteboardTextDialog::chosenFamily() const
{
    const QString family = m_font->currentText().trimmed();
    return family.isEmpty() ? defaultFamily() : family;
}

int WhiteboardTextDialog::chosenSize() const
{
    bool ok = false;
    const int size = m_size->currentText().trimmed().toInt(&ok);
    return ok && size >= kSmallestSize && size <= kLargestSize ? size : m_openingSize;
}

QString WhiteboardTextDialog::text() const
{
    return m_text->toPlainText();
}

void WhiteboardTextDialog::setText(const QString &text)
{
    m_text->setPlainText(text);
}

QFont WhiteboardTextDialog::textFont() const
{
    QFont font(chosenFamily());
    font.setPointSize(chosenSize());
    font.setBold(m_bold->isChecked());
    font.setItalic(m_italic->isChecked());
    font.setUnderline(m_underline->isChecked());
    return font;
}

QColor WhiteboardTextDialog::textColor() const
{
    return m_color;
}

void WhiteboardTextDialog::setTextColor(const QColor &color)
{
    if (!color.isValid())
        return;
    m_color = color;
    m_colorButton->setIcon(ColorSwatch(color, m_colorButton->iconSize(), devicePixelRatioF()));
    updateSample();
}

void WhiteboardTextDialog::chooseColor()
{
    const QColor chosen = QColorDialog::getColor(m_color, this, tr("Text Colour"));
    if (chosen.isValid())
        setTextColor(chosen);
}

void WhiteboardTextDialog::updateSample()
{
    QFont font = textFont();
    font.setPointSize(qMin(font.pointSize(), kLargestSampleSize));
    m_sample->setFont(font);
    QPalette palette = m_sample->palette();
    palette.setColor(QPalette::Window, kSampleBackground);
    palette.setColor(QPalette::WindowText, m_color);
    m_sample->setPalette(palette);
    const QString typed = text();
    static_cast<SampleLabel *>(m_sample)->setSample(typed.trimmed().isEmpty() ? tr("Sample")
                                                                              : typed.trimmed());
}

void WhiteboardTextDialog::updatePlaceButton()
{
    // Blanks and empty lines would put nothing visible on the board.
    m_place->setEnabled(!text().trimmed().isEmpty());
}

void WhiteboardTextDialog::place()
{
    // Ctrl+Enter reaches here whatever the state of the button.
    if (!m_place->isEnabled())
        return;
    saveFont();
    accept();
}
