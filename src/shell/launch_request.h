#pragma once

#include <QByteArray>
#include <QStringList>

// What one launch of the program asks for: the windows named on its command line, the documents
// to open in the notes editor, and whether to start in the tray. The first copy acts on it as it
// starts; a later launch sends it to the running copy (as compact JSON) and exits.
struct LaunchRequest
{
    // Names as the command line spells them, lower case: "clock", "calculator", ... "webcam",
    // "dashboard" (see targetNames()).
    QStringList open;
    // Absolute paths.
    QStringList documents;
    bool hidden = false;

    // Nothing named: the running copy brings its dashboard forward.
    bool asksForWindows() const { return !open.isEmpty() || !documents.isEmpty(); }

    QByteArray toJson() const;
    // False (and *request untouched) for anything that is not a request this program wrote.
    static bool fromJson(const QByteArray &json, LaunchRequest *request);

    // Every name --open accepts, in the order the help lists them.
    static QStringList targetNames();
    // The widget index of a widget name (WidgetClock, ...); WidgetNone for "webcam",
    // "dashboard" and unknown names.
    static int widgetIndexOf(const QString &name);

    bool operator==(const LaunchRequest &other) const = default;
};
