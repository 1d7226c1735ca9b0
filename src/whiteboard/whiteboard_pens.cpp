#include "whiteboard/whiteboard_pens.h"

#include "core/settings_store.h"

#include <QCoreApplication>

namespace {
const QString kWindow = QStringLiteral("fwbd_IDX");
const QString kTool = QStringLiteral("Tool");
const QString kPenColor = QStringLiteral("Pen Color");
const QString kHighlighterColor = QStringLiteral("Highlighter Color");
const QString kWidths[3] = {QStringLiteral("Pen Width"), QStringLiteral("Highlighter Width"),
                            QStringLiteral("Eraser Width")};

QColor readColor(const QString &name, const QColor &fallback)
{
    const QColor color = QColor::fromString(ReadDetail(kWindow, name, fallback.name()));
    return color.isValid() ? color : fallback;
}

QString tr(const char *text)
{
    return QCoreApplication::translate("WhiteboardPens", text);
}
} // namespace

const QList<WhiteboardPens::NamedColor> &WhiteboardPens::palette()
{
    static const QList<NamedColor> colors = {
        {tr("Black"), QColor(0x20, 0x20, 0x20)},  {tr("White"), QColor(0xff, 0xff, 0xff)},
        {tr("Red"), QColor(0xd6, 0x28, 0x28)},    {tr("Orange"), QColor(0xf0, 0x8c, 0x00)},
        {tr("Yellow"), QColor(0xff, 0xe6, 0x00)}, {tr("Green"), QColor(0x2e, 0x9e, 0x3e)},
        {tr("Blue"), QColor(0x1e, 0x5a, 0xd2)},   {tr("Purple"), QColor(0x8a, 0x3c, 0xc8)},
    };
    return colors;
}

QList<qreal> WhiteboardPens::widths(Tool tool)
{
    switch (tool) {
    case Highlighter:
        return {8, 16, 24, 36};
    case Eraser:
        return {8, 20, 40, 80};
    case Pen:
    case Text:
        break;
    }
    return {1.5, 3, 6, 12};
}

QColor WhiteboardPens::color() const
{
    return m_tool == Highlighter ? m_highlighterColor : m_penColor;
}

void WhiteboardPens::setColor(const QColor &color)
{
    if (!color.isValid() || m_tool == Eraser)
        return;
    (m_tool == Highlighter ? m_highlighterColor : m_penColor) = color;
}

int WhiteboardPens::widthChoice() const
{
    return m_widthChoice[drawingTool()];
}

void WhiteboardPens::setWidthChoice(int choice)
{
    m_widthChoice[drawingTool()] = qBound(0, choice, kWidthChoices - 1);
}

InkPen WhiteboardPens::pen(qreal layerScale) const
{
    const Tool tool = drawingTool();
    InkPen pen;
    pen.kind = tool == Highlighter ? InkKind::Highlighter : tool == Eraser ? InkKind::Eraser : InkKind::Pen;
    pen.color = tool == Highlighter ? m_highlighterColor : m_penColor;
    pen.width = widths(tool).at(m_widthChoice[tool]) * layerScale;
    return pen;
}

WhiteboardPens WhiteboardPens::load()
{
    WhiteboardPens pens;
    pens.m_tool = Tool(qBound(0, ReadIntDetail(kWindow, kTool, Pen), int(Text)));
    pens.m_penColor = readColor(kPenColor, pens.m_penColor);
    pens.m_highlighterColor = readColor(kHighlighterColor, pens.m_highlighterColor);
    for (int i = 0; i < 3; ++i)
        pens.m_widthChoice[i] = qBound(0, ReadIntDetail(kWindow, kWidths[i], 1), kWidthChoices - 1);
    return pens;
}

void WhiteboardPens::save() const
{
    WriteDetail(kWindow, kTool, QString::number(m_tool));
    WriteDetail(kWindow, kPenColor, m_penColor.name());
    WriteDetail(kWindow, kHighlighterColor, m_highlighterColor.name());
    for (int i = 0; i < 3; ++i)
        WriteDetail(kWindow, kWidths[i], QString::number(m_widthChoice[i]));
}
