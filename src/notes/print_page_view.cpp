#include "notes/print_page_view.h"

#include "notes/print_engine.h"

#include <QPainter>
#include <QWheelEvent>

namespace {

constexpr int kShadowOffset = 5;
const QColor kDesk(96, 100, 108);

} // namespace

PrintPageView::PrintPageView(PrintEngine *engine, QWidget *parent) : QWidget(parent), m_engine(engine)
{
    setObjectName(QStringLiteral("picPAGE"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(tr("Ctrl with the mouse wheel zooms; Page Up and Page Down turn the pages"));
}

qreal PrintPageView::dotsPerMm() const
{
    return logicalDpiX() / 25.4;
}

void PrintPageView::refreshPage()
{
    m_image = m_engine->pageCount() > 0 ? m_engine->currentPageImage(dotsPerMm(), devicePixelRatioF()) : QImage();
    setAreaSize(m_area);
    update();
}

void PrintPageView::setAreaSize(const QSize &area)
{
    m_area = area;
    const QRect page = pageRect();
    resize(QSize(std::max(area.width(), page.right() + 1 + page.left()),
                 std::max(area.height(), page.bottom() + 1 + page.top())));
}

QSize PrintPageView::sizeHint() const
{
    return size();
}

QRect PrintPageView::pageRect() const
{
    return m_engine->PageReposition(m_area, dotsPerMm());
}

void PrintPageView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), kDesk);
    if (m_image.isNull())
        return;
    const QRect page = pageRect();
    // The shadow: a soft dark band right and below, as if the page lay on the desk.
    for (int i = kShadowOffset; i > 0; --i) {
        painter.fillRect(page.translated(i, i), QColor(0, 0, 0, 18 + 8 * (kShadowOffset - i)));
    }
    painter.drawImage(page.topLeft(), m_image);
    painter.setPen(QColor(60, 60, 60));
    painter.drawRect(page.adjusted(0, 0, -1, -1));
}

void PrintPageView::wheelEvent(QWheelEvent *event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        if (event->angleDelta().y() > 0)
            m_engine->PageZoomIn();
        else if (event->angleDelta().y() < 0)
            m_engine->PageZoomOut();
        event->accept();
        return;
    }
    event->ignore();
}
