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

    // Why `path` cannot be opened as a document, or an empty text when it can: an absolute path
    // to an existing regular file this user may read, no larger than a note can be. Pipes and
    // devices are refused, as opening one could wait for ever or never end. `shown` is how the
    // message names it (as the user typed it). The command line and the running copy, for a
    // request from a later launch, both check with it.
    static QString documentProblem(const QString &path, const QString &shown);
    // The first problem of any of `documents`; empty when all can be opened.
    QString documentsProblem() const;

    // Every name --open accepts, in the order the help lists them.
    static QStringList targetNames();
    // How a target is named to the user ("Alarm Clock", "Dashboard"); empty for an unknown name.
    static QString targetCaption(const QString &name);
    // The widget index of a widget name (WidgetClock, ...); WidgetNone for "webcam",
    // "dashboard" and unknown names.
    static int widgetIndexOf(const QString &name);

    bool operator==(const LaunchRequest &other) const = default;
};
