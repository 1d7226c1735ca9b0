#include "core/window_placement.h"

#include "core/settings_store.h"

#include <QApplication>
#include <QGuiApplication>
#include <QScreen>
#include <QWidget>
#include <cmath>

namespace {

const QString kState = QStringLiteral("Window State");
const QString kLeft = QStringLiteral("Left");
const QString kTop = QStringLiteral("Top");
const QString kWidth = QStringLiteral("Width");
const QString kHeight = QStringLiteral("Height");

enum StoredState
{
    Normal = 0,
    Minimised = 1,
    Maximised = 2
};

QString placementKey(const QWidget *window)
{
    return SettingsRoot() + window->objectName() + QStringLiteral("\\Window");
}

QScreen *screenOf(const QWidget *window)
{
    QScreen *screen = window->screen();
    return screen ? screen : QGuiApplication::primaryScreen();
}

double dotsPerInch(const QWidget *window)
{
    const QScreen *screen = screenOf(window);
    const double dpi = screen ? screen->logicalDotsPerInch() : 96.0;
    return dpi > 0 ? dpi : 96.0;
}

int storedStateOf(const QWidget *window)
{
    const Qt::WindowStates state = window->windowState();
    if (state & Qt::WindowMinimized)
        return Minimised;
    if (state & (Qt::WindowMaximized | Qt::WindowFullScreen))
        return Maximised;
    return Normal;
}

// Twips are written as single-precision numbers, as decimal text.
QString twipsText(double twips)
{
    return QString::number(double(float(twips)), 'g', 7);
}

void writeValue(const QString &key, const QString &name, const QString &text)
{
    WriteSetting(Hive::CurrentUser, key, name, text);
}

// The stored number, or `current` when it is missing or is not a number.
double readNumber(const QString &key, const QString &name, double current)
{
    bool ok = false;
    const double value = ReadSetting(Hive::CurrentUser, key, name, twipsText(current)).toDouble(&ok);
    return ok && std::isfinite(value) ? value : current;
}

// Applies the stored state; true when the window is to stay at its normal size and place.
// A value other than 0, 1 or 2 is skipped and the window keeps its present state.
bool restoreState(QWidget *window, const QString &key)
{
    bool ok = false;
    const QString text = ReadSetting(Hive::CurrentUser, key, kState, QString::number(storedStateOf(window)));
    const int stored = SettingToInt(text, &ok);
    constexpr Qt::WindowStates notNormal = Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen;
    if (ok && stored == Normal)
        window->setWindowState(window->windowState() & ~notNormal);
    const bool maximise =
        (ok && (stored == Minimised || stored == Maximised)) || storedStateOf(window) != Normal;
    if (maximise)
        window->setWindowState(Qt::WindowMaximized); // minimised comes back maximised, by design
    return !maximise;
}

} // namespace

double PixelsToTwips(double pixels, double dotsPerInch)
{
    return pixels * 1440.0 / dotsPerInch;
}

int TwipsToPixels(double twips, double dotsPerInch)
{
    return int(std::lround(twips * dotsPerInch / 1440.0));
}

double CentredPosition(double windowSize, double screenSize)
{
    const double centred = std::nearbyint((screenSize + windowSize) * 0.5 - windowSize); // halves to even
    return centred < 0 ? 15.0 : centred;
}

double PlacementAxis(double stored, double windowSize, double screenSize)
{
    if (stored < 0 || stored + windowSize > screenSize)
        return CentredPosition(windowSize, screenSize);
    return stored;
}

void SaveWindowPlacement(QWidget *window, bool withSize)
{
    if (!window)
        return;
    const QString key = placementKey(window);
    const double dpi = dotsPerInch(window);
    if (withSize) {
        const int state = storedStateOf(window);
        writeValue(key, kState, QString::number(state));
        if (state != Normal)
            return; // keep the last normal rectangle
    }
    writeValue(key, kLeft, twipsText(PixelsToTwips(window->x(), dpi)));
    writeValue(key, kTop, twipsText(PixelsToTwips(window->y(), dpi)));
    if (withSize) {
        writeValue(key, kWidth, twipsText(PixelsToTwips(window->width(), dpi)));
        writeValue(key, kHeight, twipsText(PixelsToTwips(window->height(), dpi)));
    }
}

bool HasStoredPlacement(const QWidget *window)
{
    return window && !ReadSetting(Hive::CurrentUser, placementKey(window), kLeft, QString()).isEmpty();
}

bool RestoreWindowPlacement(QWidget *window, bool withSize)
{
    if (!window)
        return true;
    const QString key = placementKey(window);
    const double dpi = dotsPerInch(window);
    if (withSize) {
        if (!restoreState(window, key))
            return true;
        // A size of no pixels would leave a window nobody can see or reach: such a value is
        // refused like any other unusable one, and that side keeps its present length.
        const auto readLength = [&](const QString &name, int currentPixels) {
            const int pixels = TwipsToPixels(readNumber(key, name, PixelsToTwips(currentPixels, dpi)), dpi);
            return pixels > 0 ? pixels : currentPixels;
        };
        const int height = readLength(kHeight, window->height());
        const int width = readLength(kWidth, window->width());
        window->resize(width, height);
    }

    const QScreen *screen = screenOf(window);
    const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    const double originX = PixelsToTwips(area.x(), dpi);
    const double originY = PixelsToTwips(area.y(), dpi);
    const double widthTw = PixelsToTwips(window->width(), dpi);
    const double heightTw = PixelsToTwips(window->height(), dpi);
    const double left = readNumber(key, kLeft, PixelsToTwips(window->x(), dpi));
    const double top = readNumber(key, kTop, PixelsToTwips(window->y(), dpi));
    const double storedX = left - originX;
    const double storedY = top - originY;
    const double placedX = PlacementAxis(storedX, widthTw, PixelsToTwips(area.width(), dpi));
    const double placedY = PlacementAxis(storedY, heightTw, PixelsToTwips(area.height(), dpi));
    window->move(TwipsToPixels(originX + placedX, dpi), TwipsToPixels(originY + placedY, dpi));
    return placedX == storedX && placedY == storedY;
}

namespace {

qint64 coveredArea(const QRect &candidate, const QList<QRect> &taken)
{
    qint64 covered = 0;
    for (const QRect &r : taken) {
        const QRect common = r.intersected(candidate);
        if (!common.isEmpty())
            covered += qint64(common.width()) * common.height();
    }
    return covered;
}

} // namespace

QPoint FreeSpot(const QSize &size, const QRect &area, const QList<QRect> &taken)
{
    constexpr int margin = 16;
    constexpr int stepX = 24;
    constexpr int stepY = 12;
    if (size.width() > area.width() - 2 * margin || size.height() > area.height() - 2 * margin)
        return area.topLeft() + QPoint(qMax(0, (area.width() - size.width()) / 2), 0);
    QPoint best = area.center() - QPoint(size.width() / 2, size.height() / 2);
    qint64 leastCovered = -1;
    const int right = area.right() + 1 - margin - size.width();
    const int bottom = area.bottom() + 1 - margin - size.height();
    for (int x = right; x >= area.left() + margin; x -= stepX) {
        for (int y = area.top() + margin; y <= bottom; y += stepY) {
            const qint64 covered = coveredArea(QRect(QPoint(x, y), size), taken);
            if (covered == 0)
                return QPoint(x, y);
            if (leastCovered < 0 || covered < leastCovered) {
                leastCovered = covered;
                best = QPoint(x, y);
            }
        }
    }
    return best;
}

QPoint CentredOver(const QRect &owner, const QSize &size)
{
    return owner.center() + QPoint(1, 1) - QPoint(size.width() / 2, size.height() / 2);
}

QPoint FreeSpotFor(const QWidget *window)
{
    const QScreen *screen = screenOf(window);
    const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 1024, 768);
    constexpr int gap = 8; // windows side by side keep a little of the desktop between them
    QList<QRect> taken;
    for (const QWidget *other : QApplication::topLevelWidgets()) {
        if (other != window && other->isVisible() && other->windowType() != Qt::Popup &&
            other->windowType() != Qt::ToolTip)
            taken.append(other->frameGeometry().adjusted(-gap, -gap, gap, gap));
    }
    return FreeSpot(window->frameGeometry().size(), area, taken);
}
