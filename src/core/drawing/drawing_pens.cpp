#include "core/drawing/drawing_pens.h"

#include "core/settings_store.h"

#include <QCoreApplication>

namespace {
const QString kTool = QStringLiteral("Tool");
const QString kPenColor = QStringLiteral("Pen Color");
const QString kHighlighterColor = QStringLiteral("Highlighter Color");
const QString kWidths[3] = {QStringLiteral("Pen Width"), QStringLiteral("Highlighter Width"),
                            QStringLiteral("Eraser Width")};

QColor readColor(const QString &window, const QString &name, const QColor &fallback)
{
    const QColor color = QColor::fromString(ReadDetail(window, name, fallback.name()));
    return color.isValid() ? color : fallback;
}

QString tr(const char *text)
{
    return QCoreApplication::translate("DrawingPens", text);
}
} // namespace

DrawingPens::DrawingPens(const QString &window, const QList<Tool> &tools)
    : m_window(window), m_tools(tools), m_tool(tools.value(0, Pen))
{
}

void DrawingPens::setTool(Tool tool)
{
    if (m_tools.contains(tool))
        m_tool = tool;
}

const QList<DrawingPens::NamedColor> &DrawingPens::palette()
{
    static const QList<NamedColor> colors = {
        {tr("Black"), QColor(0x20, 0x20, 0x20)},  {tr("White"), QColor(0xff, 0xff, 0xff)},
        {tr("Red"), QColor(0xd6, 0x28, 0x28)},    {tr("Orange"), QColor(0xf0, 0x8c, 0x00)},
        {tr("Yellow"), QColor(0xff, 0xe6, 0x00)}, {tr("Green"), QColor(0x2e, 0x9e, 0x3e)},
        {tr("Blue"), QColor(0x1e, 0x5a, 0xd2)},   {tr("Purple"), QColor(0x8a, 0x3c, 0xc8)},
    };
    return colors;
}

QList<qreal> DrawingPens::widths(Tool tool)
{
    switch (tool) {
    case Highlighter:
        return {8, 16, 24, 36};
    case Eraser:
        return {8, 20, 40, 80};
    case Pen:
    case Text:
    case Pointer:
        break;
    }
    return {1.5, 3, 6, 12};
}

QColor DrawingPens::color() const
{
    return m_tool == Highlighter ? m_highlighterColor : m_penColor;
}

void DrawingPens::setColor(const QColor &color)
{
    if (!color.isValid() || !hasColor())
        return;
    (m_tool == Highlighter ? m_highlighterColor : m_penColor) = color;
}

int DrawingPens::widthChoice() const
{
    return m_widthChoice[drawingTool()];
}

void DrawingPens::setWidthChoice(int choice)
{
    m_widthChoice[drawingTool()] = qBound(0, choice, kWidthChoices - 1);
}

InkPen DrawingPens::pen(qreal layerScale) const
{
    const Tool tool = drawingTool();
    InkPen pen;
    pen.kind = tool == Highlighter ? InkKind::Highlighter : tool == Eraser ? InkKind::Eraser : InkKind::Pen;
    pen.color = tool == Highlighter ? m_highlighterColor : m_penColor;
    pen.width = widths(tool).at(m_widthChoice[tool]) * layerScale;
    return pen;
}

DrawingPens DrawingPens::load(const QString &window, const QList<Tool> &tools)
{
    DrawingPens pens(window, tools);
    pens.setTool(Tool(ReadIntDetail(window, kTool, pens.m_tool)));
    pens.m_penColor = readColor(window, kPenColor, pens.m_penColor);
    pens.m_highlighterColor = readColor(window, kHighlighterColor, pens.m_highlighterColor);
    for (int i = 0; i < 3; ++i)
        pens.m_widthChoice[i] = qBound(0, ReadIntDetail(window, kWidths[i], 1), kWidthChoices - 1);
    return pens;
}

void DrawingPens::save() const
{
    WriteDetail(m_window, kTool, QString::number(m_tool));
    WriteDetail(m_window, kPenColor, m_penColor.name());
    WriteDetail(m_window, kHighlighterColor, m_highlighterColor.name());
    for (int i = 0; i < 3; ++i)
        WriteDetail(m_window, kWidths[i], QString::number(m_widthChoice[i]));
}
