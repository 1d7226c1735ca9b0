#include "shell/launch_request.h"

#include "core/widget_index.h"
#include "notes/document_file.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

struct Target
{
    const char *name;
    int widget;
    const char *caption; // for the windows that are not widgets; a widget's is its display name
};

// The order is the help's: the widgets people open most first, then the two extra windows.
constexpr Target kTargets[] = {
    {"clock", WidgetClock, nullptr},
    {"calculator", WidgetCalculator, nullptr},
    {"calendar", WidgetCalendar, nullptr},
    {"notes", WidgetNotes, nullptr},
    {"stopwatch", WidgetStopwatch, nullptr},
    {"timer", WidgetTimer, nullptr},
    {"whiteboard", WidgetWhiteboard, nullptr},
    {"weather", WidgetWeather, nullptr},
    {"webcam", WidgetNone, "Webcam Viewer"},
    {"dashboard", WidgetNone, "Dashboard"},
};

bool readStrings(const QJsonValue &value, QStringList *out)
{
    if (value.isUndefined())
        return true;
    if (!value.isArray())
        return false;
    for (const QJsonValue &item : value.toArray()) {
        if (!item.isString())
            return false;
        out->append(item.toString());
    }
    return true;
}

} // namespace

QByteArray LaunchRequest::toJson() const
{
    QJsonObject object;
    object.insert(QStringLiteral("open"), QJsonArray::fromStringList(open));
    object.insert(QStringLiteral("documents"), QJsonArray::fromStringList(documents));
    object.insert(QStringLiteral("hidden"), hidden);
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

bool LaunchRequest::fromJson(const QByteArray &json, LaunchRequest *request)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(json, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return false;
    const QJsonObject object = document.object();
    LaunchRequest read;
    if (!readStrings(object.value(QStringLiteral("open")), &read.open) ||
        !readStrings(object.value(QStringLiteral("documents")), &read.documents))
        return false;
    for (const QString &name : std::as_const(read.open)) {
        if (!targetNames().contains(name))
            return false;
    }
    read.hidden = object.value(QStringLiteral("hidden")).toBool(false);
    *request = read;
    return true;
}

QString LaunchRequest::documentProblem(const QString &path, const QString &shown)
{
    // The running copy has another working folder than the launch that sent the path.
    if (!QDir::isAbsolutePath(path))
        return QStringLiteral("not an absolute path: %1").arg(shown);
    const QFileInfo info(path);
    if (!info.exists())
        return QStringLiteral("no such file: %1").arg(shown);
    if (!info.isFile())
        return QStringLiteral("not a document: %1").arg(shown);
    if (!info.isReadable())
        return QStringLiteral("cannot be read: %1").arg(shown);
    if (info.size() > DocumentFile::kLargestFile)
        return QStringLiteral("larger than the %1 MB a note can be: %2")
            .arg(DocumentFile::kLargestFile / (1024 * 1024))
            .arg(shown);
    return {};
}

QString LaunchRequest::documentsProblem() const
{
    for (const QString &path : documents) {
        const QString problem = documentProblem(path, QDir::toNativeSeparators(path));
        if (!problem.isEmpty())
            return problem;
    }
    return {};
}

QStringList LaunchRequest::targetNames()
{
    QStringList names;
    for (const Target &target : kTargets)
        names.append(QString::fromLatin1(target.name));
    return names;
}

QString LaunchRequest::targetCaption(const QString &name)
{
    for (const Target &target : kTargets) {
        if (name == QLatin1String(target.name))
            return target.caption ? QString::fromLatin1(target.caption) : WidgetDisplayName(target.widget);
    }
    return {};
}

int LaunchRequest::widgetIndexOf(const QString &name)
{
    for (const Target &target : kTargets) {
        if (name == QLatin1String(target.name))
            return target.widget;
    }
    return WidgetNone;
}
