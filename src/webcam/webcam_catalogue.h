#pragma once

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

// One camera of the viewer's list: its name (the key the list is searched by) and the address
// of its still picture, with the operator's credit and any header its server wants.
struct WebcamCamera
{
    QString name;
    QString address; // empty: no address is known, nothing can be fetched
    QString credit;  // "Picture: <operator>", shown under the picture
    QString creditPage;
    QList<QPair<QByteArray, QByteArray>> headers;
    bool own = false; // added by the user, kept in the data folder

    bool operator==(const WebcamCamera &) const = default;
};

// The cameras the viewer offers: the 50 shipped ones in their fixed order, then the user's own,
// which are kept in "webcam/cameras.txt" in the data folder ("name|address" per line, UTF-8).
class WebcamCatalogue
{
public:
    // Reads the shipped table and the user's file; a user file that cannot be read leaves the
    // shipped cameras alone and says why in loadProblem().
    WebcamCatalogue();

    const QList<WebcamCamera> &cameras() const { return m_cameras; }
    int builtInCount() const { return m_builtInCount; }
    // The first camera with exactly this name, or null.
    const WebcamCamera *find(const QString &name) const;
    QString loadProblem() const { return m_loadProblem; }

    // Why a camera of the user's could not be stored under `name` with `address` (empty when
    // it can). `replacing` is the name of the camera being edited, which may keep its name.
    QString checkOwnCamera(const QString &name, const QString &address, const QString &replacing = {}) const;

    // Each stores the user's cameras at once; false with the reason in *error when the check
    // fails or the file could not be written, and then nothing changes.
    bool addOwn(const QString &name, const QString &address, QString *error);
    bool replaceOwn(const QString &oldName, const QString &name, const QString &address, QString *error);
    bool removeOwn(const QString &name, QString *error);

    static QString ownCamerasPath();

private:
    bool saveOwn(const QList<WebcamCamera> &cameras, QString *error);

    QList<WebcamCamera> m_cameras;
    int m_builtInCount = 0;
    QString m_loadProblem;
};
