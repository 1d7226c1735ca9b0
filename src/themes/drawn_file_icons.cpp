#include "themes/drawn_file_icons.h"

#include "core/drawing/closed_polygon.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace {

// Colours that read on light and dark panels alike.
const QColor kFolderBack(0xd9, 0xa0, 0x32);
const QColor kFolderFront(0xf2, 0xc5, 0x5c);
const QColor kFolderEdge(0xa8, 0x77, 0x20);
const QColor kPaper(0xff, 0xff, 0xff);
const QColor kPaperFold(0xd0, 0xd7, 0xde);
const QColor kPaperEdge(0x6e, 0x77, 0x81);
const QColor kPaperLines(0xae, 0xb6, 0xbf);
const QColor kDriveBody(0xb8, 0xbe, 0xc6);
const QColor kDriveEdge(0x5f, 0x6b, 0x77);
const QColor kDriveLight(0x3f, 0xb9, 0x50);
const QColor kArrow(0x3b, 0x78, 0xd8);
constexpr qreal kDisabledOpacity = 0.45;

enum class Shape
{
    Folder,
    File,
    Drive,
    NetworkDrive,
    Up,
};

// Draws in a unit square; the painter is scaled to the icon's square.
class UnitPainter
{
public:
    UnitPainter(QPainter *painter, qreal side) : m_painter(painter), m_side(side) {}

    QPen edge(const QColor &colour) const
    {
        // About one device pixel at small sizes, a little more when large.
        return QPen(colour, qMax<qreal>(1.0, m_side / 20) / m_side, Qt::SolidLine, Qt::RoundCap,
                    Qt::RoundJoin);
    }
    void fill(const QPainterPath &path, const QColor &colour, const QColor &edgeColour) const
    {
        m_painter->setPen(edge(edgeColour));
        m_painter->setBrush(colour);
        m_painter->drawPath(path);
    }
    bool large() const { return m_side >= 20; }
    QPainter *painter() const { return m_painter; }

private:
    QPainter *m_painter;
    qreal m_side;
};

void drawFolder(const UnitPainter &unit)
{
    unit.fill(ClosedPolygon({{0.06, 0.20}, {0.38, 0.20}, {0.47, 0.30}, {0.94, 0.30}, {0.94, 0.84}, {0.06, 0.84}}),
              kFolderBack, kFolderEdge);
    QPainterPath front;
    front.addRoundedRect(QRectF(0.06, 0.38, 0.88, 0.46), 0.04, 0.04);
    unit.fill(front, kFolderFront, kFolderEdge);
}

void drawFile(const UnitPainter &unit)
{
    unit.fill(ClosedPolygon({{0.20, 0.06}, {0.62, 0.06}, {0.82, 0.26}, {0.82, 0.94}, {0.20, 0.94}}), kPaper, kPaperEdge);
    unit.fill(ClosedPolygon({{0.62, 0.06}, {0.62, 0.26}, {0.82, 0.26}}), kPaperFold, kPaperEdge);
    if (!unit.large())
        return;
    QPainter *painter = unit.painter();
    painter->setPen(unit.edge(kPaperLines));
    for (qreal y : {0.44, 0.58, 0.72})
        painter->drawLine(QPointF(0.32, y), QPointF(0.70, y));
}

void drawDriveBody(const UnitPainter &unit, qreal top)
{
    QPainterPath body;
    body.addRoundedRect(QRectF(0.08, top, 0.84, 0.38), 0.08, 0.08);
    unit.fill(body, kDriveBody, kDriveEdge);
    QPainter *painter = unit.painter();
    painter->setPen(Qt::NoPen);
    painter->setBrush(kDriveLight);
    painter->drawEllipse(QPointF(0.76, top + 0.19), 0.06, 0.06);
}

void drawNetworkDrive(const UnitPainter &unit)
{
    drawDriveBody(unit, 0.14);
    QPainter *painter = unit.painter();
    painter->setPen(unit.edge(kDriveEdge));
    painter->drawLine(QPointF(0.50, 0.52), QPointF(0.50, 0.84));
    painter->drawLine(QPointF(0.14, 0.84), QPointF(0.86, 0.84));
    painter->setBrush(kDriveBody);
    painter->drawRect(QRectF(0.40, 0.76, 0.20, 0.16));
}

// White on a chosen row, whose highlight may be as blue as the arrow.
void drawUp(const UnitPainter &unit, bool selected)
{
    unit.fill(ClosedPolygon({{0.50, 0.10}, {0.86, 0.48}, {0.62, 0.48}, {0.62, 0.90}, {0.38, 0.90}, {0.38, 0.48},
                       {0.14, 0.48}}),
              selected ? kPaper : kArrow, selected ? kPaper : kArrow.darker(130));
}

class DrawnIconEngine : public QIconEngine
{
public:
    explicit DrawnIconEngine(Shape shape) : m_shape(shape) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        if (mode == QIcon::Disabled) {
            // Faded as a whole: shapes faded one by one would show through each other.
            const qreal ratio = painter->device()->devicePixelRatioF();
            QPixmap faded = pixmap(rect.size() * ratio, mode, state);
            faded.setDevicePixelRatio(ratio);
            painter->drawPixmap(rect.topLeft(), faded);
            return;
        }
        draw(painter, rect, mode);
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        draw(&painter, QRect(QPoint(), size), mode);
        if (mode == QIcon::Disabled) {
            painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
            painter.fillRect(pixmap.rect(), QColor(0, 0, 0, qRound(255 * kDisabledOpacity)));
        }
        return pixmap;
    }
    QSize actualSize(const QSize &size, QIcon::Mode, QIcon::State) override { return size; }
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
    {
        return {{16, 16}, {22, 22}, {24, 24}, {32, 32}, {48, 48}, {64, 64}};
    }
    bool isNull() override { return false; }
    QString key() const override { return QStringLiteral("DrawnIconEngine"); }
    QIconEngine *clone() const override { return new DrawnIconEngine(m_shape); }

private:
    void draw(QPainter *painter, const QRect &rect, QIcon::Mode mode) const
    {
        const qreal side = qMin(rect.width(), rect.height());
        if (side <= 0)
            return;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(QRectF(rect).center() - QPointF(side / 2, side / 2));
        painter->scale(side, side);
        const UnitPainter unit(painter, side * painter->device()->devicePixelRatioF());
        switch (m_shape) {
        case Shape::Folder:
            drawFolder(unit);
            break;
        case Shape::File:
            drawFile(unit);
            break;
        case Shape::Drive:
            drawDriveBody(unit, 0.31);
            break;
        case Shape::NetworkDrive:
            drawNetworkDrive(unit);
            break;
        case Shape::Up:
            drawUp(unit, mode == QIcon::Selected);
            break;
        }
        painter->restore();
    }

    Shape m_shape;
};

} // namespace

QIcon DrawnFileIcons::icon(QStyle::StandardPixmap which)
{
    switch (which) {
    case QStyle::SP_DirIcon:
    case QStyle::SP_DirClosedIcon:
    case QStyle::SP_DirOpenIcon:
        return QIcon(new DrawnIconEngine(Shape::Folder));
    case QStyle::SP_FileIcon:
        return QIcon(new DrawnIconEngine(Shape::File));
    case QStyle::SP_DriveHDIcon:
        return QIcon(new DrawnIconEngine(Shape::Drive));
    case QStyle::SP_DriveNetIcon:
        return QIcon(new DrawnIconEngine(Shape::NetworkDrive));
    case QStyle::SP_FileDialogToParent:
        return QIcon(new DrawnIconEngine(Shape::Up));
    default:
        return {};
    }
}
