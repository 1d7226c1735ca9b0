#include "core/widget_frame.h"

#include "core/sound_output.h"

#include <QCursor>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QScreen>
#include <QShortcut>
#include <QHash>
#include <QWidget>
#include <QWindow>

#include <memory>

namespace {

ContextMenuHandler g_contextMenuHandler;
SoundRecorder g_soundRecorder;

void playEffect(const QUrl &source)
{
    if (SoundOutput *output = LoadedSoundOutput())
        output->play(source);
}

bool isWindowNormal(const QWidget *window)
{
    return !(window->windowState() & (Qt::WindowMinimized | Qt::WindowMaximized | Qt::WindowFullScreen));
}

} // namespace

void MakeBorderless(QWidget *window)
{
    window->setWindowFlag(Qt::FramelessWindowHint, true);
    HideFromTaskbar(window);
}

void HideFromTaskbar(QWidget *window)
{
    // A tool window gets no taskbar button; the tray icon and the dashboard lead back to it.
    window->setWindowFlag(Qt::Tool, true);
}

void SetKeepOnTop(QWidget *window, bool on)
{
    if (bool(window->windowFlags() & Qt::WindowStaysOnTopHint) == on)
        return;
    const bool wasVisible = window->isVisible();
    window->setAttribute(Qt::WA_ShowWithoutActivating, true);
    window->setWindowFlag(Qt::WindowStaysOnTopHint, on);
    // Changing a window flag hides the window; show it again where it was, without focus.
    if (wasVisible)
        window->show();
    window->setAttribute(Qt::WA_ShowWithoutActivating, false);
}

void WidgetMouseDown(QWidget *window, Qt::MouseButton button, const QPoint &globalPos)
{
    if (button == Qt::LeftButton) {
        if (isWindowNormal(window))
            DragWindow(window);
    } else if (button == Qt::RightButton) {
        if (g_contextMenuHandler)
            g_contextMenuHandler(window, globalPos);
    }
}

void DragWindow(QWidget *window)
{
    if (QWindow *handle = window->windowHandle())
        handle->startSystemMove();
}

bool ResizeFromCorner(QWidget *window)
{
    QWindow *handle = window->windowHandle();
    return handle && handle->startSystemResize(Qt::BottomEdge | Qt::RightEdge);
}

bool IsCursorOverWindow(const QWidget *window)
{
    const QRect frame(window->mapToGlobal(QPoint(0, 0)), window->size());
    const QPoint cursor = QCursor::pos();
    // Edges included, as the pointer-over test of the bar buttons expects.
    return cursor.x() >= frame.left() && cursor.x() <= frame.left() + frame.width() &&
           cursor.y() >= frame.top() && cursor.y() <= frame.top() + frame.height();
}

void SetHandCursor(QWidget *widget)
{
    widget->setCursor(Qt::PointingHandCursor);
}

void PlayBuiltInSound(const QString &resourceName)
{
    if (g_soundRecorder) {
        g_soundRecorder(resourceName);
        return;
    }
    const QString path = QStringLiteral(":/sounds/%1.wav").arg(resourceName.toLower());
    if (!QFileInfo::exists(path))
        return;
    playEffect(QUrl(QStringLiteral("qrc") + path));
}

void PlaySoundFile(const QString &path)
{
    if (g_soundRecorder) {
        g_soundRecorder(path);
        return;
    }
    if (path.isEmpty() || !QFileInfo::exists(path))
        return;
    playEffect(QUrl::fromLocalFile(path));
}

QUrl LinkTargetToUrl(const QString &target, const QString &folder)
{
    if (target.isEmpty())
        return QUrl();
    const QString lowered = target.toLower();
    static const char *const schemes[] = {"http://", "mailto:", "news:", "ftp:", "https:"};
    for (const char *scheme : schemes) {
        if (lowered.contains(QLatin1String(scheme)))
            return QUrl(target, QUrl::TolerantMode);
    }
    // Anything else is a local file, relative to the working folder when one is given.
    QString path = target;
    if (!folder.isEmpty() && QFileInfo(path).isRelative())
        path = QDir(folder).filePath(path);
    return QUrl::fromLocalFile(path);
}

void OpenLink(QWidget *, const QString &target, const QString &folder)
{
    const QUrl url = LinkTargetToUrl(target, folder);
    if (url.isValid())
        QDesktopServices::openUrl(url);
}

void KeepInsideScreen(QWidget *window)
{
    const QRect frame = window->frameGeometry();
    QScreen *screen = QGuiApplication::screenAt(frame.center());
    if (!screen)
        screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    QPoint topLeft = frame.topLeft();
    topLeft.setX(qMax(area.left(), qMin(topLeft.x(), area.right() + 1 - frame.width())));
    topLeft.setY(qMax(area.top(), qMin(topLeft.y(), area.bottom() + 1 - frame.height())));
    if (topLeft != frame.topLeft())
        window->move(window->pos() + (topLeft - frame.topLeft()));
}

void PlaceCloseButton(QWidget *window)
{
    QWidget *button = window->findChild<QWidget *>(QStringLiteral("picCLOSE"));
    if (!button)
        button = window->findChild<QWidget *>(QStringLiteral("CloseRefresh"));
    if (!button)
        return;
    QWidget *container = button->parentWidget();
    const int right = container->width() - 10;
    const int y = qMax(0, (qMin(container->height(), 40) - button->height()) / 2);
    button->move(right - button->width(), y);
}

void SetContextMenuHandler(ContextMenuHandler handler)
{
    g_contextMenuHandler = std::move(handler);
}

void SetSoundRecorderForTesting(SoundRecorder recorder)
{
    g_soundRecorder = std::move(recorder);
}

void AddWindowShortcut(QWidget *window, const QKeySequence &keys, const std::function<void()> &action)
{
    auto *shortcut = new QShortcut(keys, window);
    shortcut->setContext(Qt::WindowShortcut);
    QObject::connect(shortcut, &QShortcut::activated, window, action);
}
