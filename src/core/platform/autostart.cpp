#include "core/platform/autostart.h"

#include "core/safe_file_write.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#ifdef Q_OS_WIN
#include "core/settings_store.h"
#endif

void Autostart::apply(bool on)
{
    const QString executable = QCoreApplication::applicationFilePath();
#ifdef Q_OS_WIN
    WriteSetting(Hive::LocalMachine, QStringLiteral("Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
                 QStringLiteral("Vantora"), on ? QDir::toNativeSeparators(executable) : QString());
#else
    const QString path = desktopEntryPath();
    QDir().mkpath(QFileInfo(path).absolutePath());
    WriteFileSafely(path, desktopEntryText(executable, on).toUtf8());
#endif
}

#ifndef Q_OS_WIN
namespace {

// The autostart file's lines; none when there is no file.
QList<QByteArray> readEntryLines()
{
    QFile file(Autostart::desktopEntryPath());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    return file.readAll().split('\n');
}

bool entryIsOn(const QList<QByteArray> &lines)
{
    return !lines.isEmpty() && !lines.contains(QByteArrayLiteral("Hidden=true"));
}

} // namespace
#endif

bool Autostart::isOn()
{
#ifdef Q_OS_WIN
    return !ReadSetting(Hive::LocalMachine,
                        QStringLiteral("Software\\Microsoft\\Windows\\CurrentVersion\\Run"),
                        QStringLiteral("Vantora"), QString())
                .isEmpty();
#else
    return entryIsOn(readEntryLines());
#endif
}

bool Autostart::followExecutable(const QString &executable, bool installed)
{
#ifdef Q_OS_WIN
    Q_UNUSED(executable)
    Q_UNUSED(installed)
    return false;
#else
    const QList<QByteArray> lines = readEntryLines();
    if (!entryIsOn(lines))
        return false;
    QString named;
    for (const QByteArray &line : lines) {
        if (line.startsWith("Exec="))
            named = executableOfExecLine(QString::fromUtf8(line.mid(5)).trimmed());
    }
    if (named == executable || (!installed && QFileInfo::exists(named)))
        return false;
    return WriteFileSafely(desktopEntryPath(), desktopEntryText(executable, true).toUtf8());
#endif
}

void Autostart::followRunningProgram()
{
    const QString executable = QCoreApplication::applicationFilePath();
    const QString onPath = QStandardPaths::findExecutable(QStringLiteral("vantora"));
    followExecutable(executable, !onPath.isEmpty() && QFileInfo(onPath).canonicalFilePath() ==
                                                          QFileInfo(executable).canonicalFilePath());
}

QString Autostart::desktopEntryPath()
{
    const QString home = QString::fromLocal8Bit(qgetenv("VANTORA_HOME"));
    const QString base =
        home.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) : home;
    return QDir::cleanPath(base + QStringLiteral("/autostart/vantora.desktop"));
}

QString Autostart::desktopEntryText(const QString &executable, bool on)
{
    const QString hidden = on ? QStringLiteral("false") : QStringLiteral("true");
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=Vantora\n"
                          "Comment=Themed desktop widgets\n"
                          "Exec=%1\n"
                          "Icon=io.vantora.Vantora\n"
                          "Terminal=false\n"
                          "X-GNOME-Autostart-enabled=%2\n"
                          "Hidden=%3\n")
        .arg(execLine(executable), on ? QStringLiteral("true") : QStringLiteral("false"), hidden);
}

QString Autostart::execLine(const QString &executable)
{
    // Exec= quoting: inside double quotes, '"', '`', '$' and '\' are escaped with a backslash,
    // and a literal '%' is doubled because it starts a field code.
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    QString escaped;
    bool needsQuotes = false;
    for (const QChar c : executable) {
        if (reserved.contains(c))
            needsQuotes = true;
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') || c == QLatin1Char('\\'))
            escaped += QLatin1Char('\\');
        if (c == QLatin1Char('%'))
            escaped += QLatin1Char('%');
        escaped += c;
    }
    if (!needsQuotes)
        return escaped;
    return QLatin1Char('"') + escaped + QLatin1Char('"');
}

QString Autostart::executableOfExecLine(const QString &line)
{
    // Only the program, not arguments: execLine() writes nothing after it.
    QString text = line;
    const bool quoted =
        text.size() >= 2 && text.startsWith(QLatin1Char('"')) && text.endsWith(QLatin1Char('"'));
    if (quoted)
        text = text.mid(1, text.size() - 2);
    QString executable;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (quoted && c == QLatin1Char('\\') && i + 1 < text.size())
            executable += text.at(++i);
        else if (c == QLatin1Char('%') && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('%'))
            executable += text.at(++i);
        else
            executable += c;
    }
    return executable;
}
