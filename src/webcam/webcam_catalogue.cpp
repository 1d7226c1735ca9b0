#include "webcam/webcam_catalogue.h"

#include "core/app_paths.h"
#include "core/file_helpers.h"
#include "core/safe_file_write.h"
#include "core/shipped_data.h"

#include <QCoreApplication>
#include <QFile>
#include <QUrl>

namespace {
QString tr(const char *text)
{
    return QCoreApplication::translate("WebcamCatalogue", text);
}

// "Name: value" from the shipped table's header field; nothing for an empty or odd field.
QList<QPair<QByteArray, QByteArray>> headerOf(const QString &field)
{
    const qsizetype colon = field.indexOf(u':');
    if (colon <= 0)
        return {};
    return {{field.left(colon).trimmed().toLatin1(), field.mid(colon + 1).trimmed().toUtf8()}};
}

WebcamCamera shippedCamera(const QString &line)
{
    const QStringList fields = line.split(u'|');
    WebcamCamera camera;
    camera.name = fields.value(0);
    camera.address = fields.value(1);
    camera.credit = fields.value(2);
    camera.creditPage = fields.value(3);
    camera.headers = headerOf(fields.value(4));
    return camera;
}

// Only web addresses are read: a camera address is fetched without asking, so a file:, ftp: or
// data: address (typed into the file by hand or by another program) must never be followed.
bool isWebAddress(const QString &address)
{
    const QUrl url(address.trimmed(), QUrl::StrictMode);
    return url.isValid() && (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"))
           && !url.host().isEmpty();
}

QByteArray ownFileText(const QList<WebcamCamera> &cameras)
{
    QByteArray text;
    for (const WebcamCamera &camera : cameras) {
        if (camera.own)
            text += (camera.name + u'|' + camera.address + QStringLiteral("\r\n")).toUtf8();
    }
    return text;
}
} // namespace

WebcamCatalogue::WebcamCatalogue()
{
    for (const QString &line : ShippedData::readLines(QString::fromLatin1(ShippedData::WebcamTable)))
        m_cameras.append(shippedCamera(line));
    m_builtInCount = int(m_cameras.size());

    QFile file(ownCamerasPath());
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        m_loadProblem = tr("Your own cameras could not be read from %1 (%2).")
                            .arg(LocalPath(file.fileName()), file.errorString());
        return;
    }
    const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
    QStringList refused;
    for (QString line : lines) {
        line = line.trimmed();
        const qsizetype bar = line.indexOf(u'|');
        if (bar <= 0)
            continue; // blank or damaged line: skipped rather than shown as a broken camera
        WebcamCamera camera;
        camera.name = line.left(bar).trimmed();
        camera.address = line.mid(bar + 1).trimmed();
        camera.own = true;
        if (!isWebAddress(camera.address))
            refused.append(camera.name);
        else if (!find(camera.name))
            m_cameras.append(camera);
    }
    if (!refused.isEmpty())
        m_loadProblem = tr("These cameras in %1 were left out because their address is not a web address "
                           "(https:// or http://): %2.")
                            .arg(LocalPath(file.fileName()), refused.join(QStringLiteral(", ")));
}

const WebcamCamera *WebcamCatalogue::find(const QString &name) const
{
    for (const WebcamCamera &camera : m_cameras) {
        if (camera.name == name)
            return &camera;
    }
    return nullptr;
}

QString WebcamCatalogue::checkOwnCamera(const QString &name, const QString &address, const QString &replacing) const
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty())
        return tr("Give the camera a name.");
    if (trimmed.contains(u'|'))
        return tr("A camera's name cannot contain the character |.");
    if (trimmed != replacing && find(trimmed))
        return tr("There is already a camera called \"%1\".").arg(trimmed);
    if (!isWebAddress(address))
        return tr("Enter the full address of the camera's picture, starting with https:// or http://.");
    if (address.contains(u'|') || address.trimmed().contains(u' '))
        return tr("The address cannot contain spaces or the character |.");
    return {};
}

bool WebcamCatalogue::addOwn(const QString &name, const QString &address, QString *error)
{
    if (const QString problem = checkOwnCamera(name, address); !problem.isEmpty()) {
        *error = problem;
        return false;
    }
    QList<WebcamCamera> cameras = m_cameras;
    cameras.append({name.trimmed(), address.trimmed(), {}, {}, {}, true});
    return saveOwn(cameras, error);
}

bool WebcamCatalogue::replaceOwn(const QString &oldName, const QString &name, const QString &address, QString *error)
{
    const WebcamCamera *old = find(oldName);
    if (!old || !old->own) {
        *error = tr("Only cameras you added yourself can be changed.");
        return false;
    }
    if (const QString problem = checkOwnCamera(name, address, oldName); !problem.isEmpty()) {
        *error = problem;
        return false;
    }
    QList<WebcamCamera> cameras = m_cameras;
    cameras[old - m_cameras.constData()] = {name.trimmed(), address.trimmed(), {}, {}, {}, true};
    return saveOwn(cameras, error);
}

bool WebcamCatalogue::removeOwn(const QString &name, QString *error)
{
    const WebcamCamera *camera = find(name);
    if (!camera || !camera->own) {
        *error = tr("Only cameras you added yourself can be removed.");
        return false;
    }
    QList<WebcamCamera> cameras = m_cameras;
    cameras.removeAt(camera - m_cameras.constData());
    return saveOwn(cameras, error);
}

QString WebcamCatalogue::ownCamerasPath()
{
    return AppPaths::dataPath(QStringLiteral("webcam/cameras.txt"));
}

bool WebcamCatalogue::saveOwn(const QList<WebcamCamera> &cameras, QString *error)
{
    QString reason;
    CreateFolderIfMissing(AppPaths::dataPath(QStringLiteral("webcam")));
    if (!WriteFileSafely(ownCamerasPath(), ownFileText(cameras), &reason)) {
        *error = tr("Your cameras could not be saved to %1 (%2).").arg(LocalPath(ownCamerasPath()), reason);
        return false;
    }
    m_cameras = cameras;
    return true;
}
