#include "themes/drawing_tool_bar.h"

#include "themes/tool_glyphs.h"

#include <QButtonGroup>
#include <QColorDialog>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QToolButton>

namespace {
// Icons a little larger than the text, as the notes editor's buttons are tall.
int iconSide(const QWidget *w)
{
    return qMax(16, w->fontMetrics().height() + 4);
}

QString widthName(int choice)
{
    static const char *const names[] = {
        QT_TRANSLATE_NOOP("DrawingToolBar", "Fine"), QT_TRANSLATE_NOOP("DrawingToolBar", "Medium"),
        QT_TRANSLATE_NOOP("DrawingToolBar", "Bold"), QT_TRANSLATE_NOOP("DrawingToolBar", "Broad")};
    return QCoreApplication::translate("DrawingToolBar", names[choice]);
}
} // namespace

DrawingToolBar::DrawingToolBar(const QString &window, const QList<DrawingPens::Tool> &tools, QWidget *parent)
    : QWidget(parent), m_pens(DrawingPens::load(window, tools)), m_tools(new QButtonGroup(this)),
      m_colors(new QButtonGroup(this)), m_widths(new QButtonGroup(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    for (DrawingPens::Tool tool : tools)
        addToolButton(tool);
    layout->addSpacing(12);
    const QList<DrawingPens::NamedColor> &palette = DrawingPens::palette();
    for (int i = 0; i < palette.size(); ++i)
        addButton(QStringLiteral("btnCOLOR_%1").arg(i), palette[i].name, m_colors, i);
    m_otherColor = addButton(QStringLiteral("btnOTHERCOLOR"), tr("Another colour..."), nullptr, -1);
    m_otherColor->setText(tr("More"));
    m_otherColor->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    layout->addSpacing(12);
    for (int i = 0; i < DrawingPens::kWidthChoices; ++i)
        addButton(QStringLiteral("btnWIDTH_%1").arg(i), widthName(i), m_widths, i);
    layout->addStretch(1);

    connect(m_tools, &QButtonGroup::idClicked, this, [this](int id) { setTool(DrawingPens::Tool(id)); });
    connect(m_colors, &QButtonGroup::idClicked, this,
            [this](int id) { setColor(DrawingPens::palette().at(id).color); });
    connect(m_otherColor, &QToolButton::clicked, this, &DrawingToolBar::chooseOtherColor);
    connect(m_widths, &QButtonGroup::idClicked, this, &DrawingToolBar::setWidthChoice);
    updateIcons();
    showPens();
}

void DrawingToolBar::addToolButton(DrawingPens::Tool tool)
{
    switch (tool) {
    case DrawingPens::Pen:
        addButton(QStringLiteral("btnPEN"), tr("Pen (P): drag to write or draw"), m_tools, tool);
        break;
    case DrawingPens::Highlighter:
        addButton(QStringLiteral("btnHIGHLIGHTER"), tr("Highlighter (H): translucent ink over what is there"),
                  m_tools, tool);
        break;
    case DrawingPens::Eraser:
        addButton(QStringLiteral("btnERASER"), tr("Eraser (E): rub ink away; Ctrl+drag clears a rectangle"),
                  m_tools, tool);
        break;
    case DrawingPens::Text:
        addButton(QStringLiteral("btnTEXT"), tr("Text (T): click where a text should go"), m_tools, tool);
        break;
    case DrawingPens::Pointer:
        addButton(QStringLiteral("btnPOINTER"), tr("Select (S): choose and move without drawing"), m_tools,
                  tool);
        break;
    }
}

QToolButton *DrawingToolBar::addButton(const QString &name, const QString &toolTip, QButtonGroup *group,
                                       int id)
{
    auto *button = new QToolButton(this);
    button->setObjectName(name);
    button->setToolTip(toolTip);
    button->setAccessibleName(toolTip.section(QLatin1Char(':'), 0, 0));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    if (group) {
        button->setCheckable(true);
        group->addButton(button, id);
    }
    layout()->addWidget(button);
    return button;
}

void DrawingToolBar::setTool(DrawingPens::Tool tool)
{
    m_pens.setTool(tool);
    showPens();
    emit pensChanged();
}

void DrawingToolBar::setColor(const QColor &color)
{
    m_pens.setColor(color);
    showPens();
    emit pensChanged();
}

void DrawingToolBar::setWidthChoice(int choice)
{
    m_pens.setWidthChoice(choice);
    showPens();
    emit pensChanged();
}

void DrawingToolBar::chooseOtherColor()
{
    const QColor chosen = QColorDialog::getColor(m_pens.color(), this, tr("Ink Colour"));
    if (chosen.isValid())
        setColor(chosen);
}

void DrawingToolBar::setInk(const QColor &ink)
{
    m_ink = ink;
    updateIcons();
}

void DrawingToolBar::showPens()
{
    m_tools->button(m_pens.tool())->setChecked(true);
    const QList<DrawingPens::NamedColor> &palette = DrawingPens::palette();
    // An exclusive group cannot be left with nothing chosen; it is made so for a moment when
    // the colour is not one of the swatches.
    m_colors->setExclusive(false);
    for (int i = 0; i < palette.size(); ++i) {
        m_colors->button(i)->setChecked(m_pens.hasColor() && palette[i].color == m_pens.color());
        m_colors->button(i)->setEnabled(m_pens.hasColor());
    }
    m_colors->setExclusive(true);
    m_otherColor->setEnabled(m_pens.hasColor());
    m_widths->button(m_pens.widthChoice())->setChecked(true);
    updateIcons();
}

void DrawingToolBar::updateIcons()
{
    const int side = iconSide(this);
    const qreal ratio = devicePixelRatioF();
    const QSize size(side, side);
    for (QAbstractButton *button : m_tools->buttons()) {
        button->setIcon(ToolGlyph(
            DrawingPens::Tool(m_tools->id(button)), m_ink,
            m_pens.tool() == DrawingPens::Highlighter ? m_pens.color() : QColor(255, 230, 0), side, ratio));
        button->setIconSize(size);
    }
    const QList<DrawingPens::NamedColor> &palette = DrawingPens::palette();
    for (int i = 0; i < palette.size(); ++i) {
        m_colors->button(i)->setIcon(SwatchGlyph(palette[i].color, side, ratio));
        m_colors->button(i)->setIconSize(size);
    }
    m_otherColor->setIcon(SwatchGlyph(m_pens.hasColor() ? m_pens.color() : QColor(Qt::gray), side, ratio));
    m_otherColor->setIconSize(size);
    const QList<qreal> widths = DrawingPens::widths(m_pens.tool());
    for (int i = 0; i < widths.size(); ++i) {
        // The dots grow with the choice even where the widths are larger than the icon.
        const qreal shown = qMin(widths[i], 3.0 + i * (side - 6) / 3.0);
        m_widths->button(i)->setIcon(WidthGlyph(shown, m_ink, side, ratio));
        m_widths->button(i)->setIconSize(size);
        m_widths->button(i)->setToolTip(tr("%1 line: %2 pixels").arg(widthName(i)).arg(widths[i]));
    }
}
