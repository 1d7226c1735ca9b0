#include "core/recovery_store.h"

#include "core/file_helpers.h"
#include "core/safe_file_write.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QUuid>

#include <algorithm>
#include <optional>

namespace {

const QString kDescriptionSuffix = QStringLiteral(".entry");
const QString kContentSuffix = QStringLiteral(".content");

// A description is a few hundred bytes; anything much larger is not one of ours.
constexpr qint64 kLargestDescription = 64 * 1024;

QString Checksum(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

QByteArray ReadFile(const QString &path, qint64 largest = -1)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly) || (largest >= 0 && file.size() > largest))
        return {};
    return file.readAll();
}

QByteArray Describe(const RecoveryEntry &entry, const QString &contentName)
{
    QJsonObject json;
    json[QLatin1String("id")] = entry.id;
    json[QLatin1String("caption")] = entry.caption;
    json[QLatin1String("path")] = entry.originalPath;
    json[QLatin1String("type")] = entry.type;
    json[QLatin1String("saved")] = entry.savedAt.toUTC().toString(Qt::ISODateWithMs);
    json[QLatin1String("content")] = contentName;
    json[QLatin1String("size")] = double(entry.content.size());
    json[QLatin1String("sha256")] = Checksum(entry.content);
    return QJsonDocument(json).toJson();
}

// The entry a description and its content file make, or nothing when either is damaged.
std::optional<RecoveryEntry> ReadEntry(const QDir &folder, const QString &descriptionName, const QStringList &types)
{
    const QJsonObject json =
        QJsonDocument::fromJson(ReadFile(folder.filePath(descriptionName), kLargestDescription)).object();
    RecoveryEntry entry;
    entry.id = json.value(QLatin1String("id")).toString();
    entry.caption = json.value(QLatin1String("caption")).toString();
    entry.originalPath = json.value(QLatin1String("path")).toString();
    entry.type = json.value(QLatin1String("type")).toString();
    entry.savedAt = QDateTime::fromString(json.value(QLatin1String("saved")).toString(), Qt::ISODateWithMs);
    const QString contentName = json.value(QLatin1String("content")).toString();
    const bool described = RecoveryStore::isValidId(entry.id) && descriptionName == entry.id + kDescriptionSuffix
        && types.contains(entry.type) && entry.savedAt.isValid()
        && contentName.startsWith(entry.id + u'.') && contentName.endsWith(kContentSuffix)
        && !contentName.contains(u'/') && !contentName.contains(u'\\');
    if (!described)
        return std::nullopt;
    const QFileInfo content(folder.filePath(contentName));
    if (!content.isFile() || content.size() != qint64(json.value(QLatin1String("size")).toDouble(-1)))
        return std::nullopt;
    entry.content = ReadFile(content.filePath());
    if (Checksum(entry.content) != json.value(QLatin1String("sha256")).toString())
        return std::nullopt;
    return entry;
}

} // namespace

RecoveryStore::RecoveryStore(const QString &folder, const QStringList &types)
    : m_folder(folder)
    , m_types(types)
{
}

QString RecoveryStore::newId()
{
    return QUuid::createUuid().toString(QUuid::Id128);
}

bool RecoveryStore::isValidId(const QString &id)
{
    static const QRegularExpression pattern(QStringLiteral("^[A-Za-z0-9_-]{1,64}$"));
    return pattern.match(id).hasMatch();
}

bool RecoveryStore::store(const RecoveryEntry &entry, QString *error)
{
    if (!isValidId(entry.id)) {
        if (error)
            *error = QStringLiteral("\"%1\" is not a valid recovery copy name.").arg(entry.id);
        return false;
    }
    if (!CreateFolderIfMissing(m_folder)) {
        if (error)
            *error = QStringLiteral("The folder %1 could not be created.").arg(QDir::toNativeSeparators(m_folder));
        return false;
    }
    RecoveryEntry described = entry;
    if (!described.savedAt.isValid())
        described.savedAt = QDateTime::currentDateTimeUtc();
    // A new name every time: the description in place keeps naming a whole older copy until
    // the new description replaces it.
    const QString contentName = entry.id + u'.' + newId() + kContentSuffix;
    const QString contentPath = QDir(m_folder).filePath(contentName);
    if (!WriteFileSafely(contentPath, entry.content, error))
        return false;
    if (!WriteFileSafely(descriptionPath(entry.id), Describe(described, contentName), error)) {
        QFile::remove(contentPath);
        return false;
    }
    removeContentFilesExcept(entry.id, contentName);
    return true;
}

void RecoveryStore::remove(const QString &id)
{
    if (!isValidId(id))
        return;
    QFile::remove(descriptionPath(id));
    removeContentFilesExcept(id, QString());
}

bool RecoveryStore::isEmpty() const
{
    return QDir(m_folder).entryList({u'*' + kDescriptionSuffix}, QDir::Files).isEmpty();
}

QList<RecoveryEntry> RecoveryStore::entries() const
{
    const QDir folder(m_folder);
    QList<RecoveryEntry> found;
    for (const QString &name : folder.entryList({u'*' + kDescriptionSuffix}, QDir::Files)) {
        if (std::optional<RecoveryEntry> entry = ReadEntry(folder, name, m_types))
            found << *entry;
    }
    std::sort(found.begin(), found.end(),
              [](const RecoveryEntry &a, const RecoveryEntry &b) { return a.savedAt < b.savedAt; });
    return found;
}

void RecoveryStore::clear()
{
    QDir folder(m_folder);
    const QStringList patterns = {u'*' + kDescriptionSuffix, u'*' + kContentSuffix, QStringLiteral("*.tmp")};
    for (const QString &name : folder.entryList(patterns, QDir::Files | QDir::Hidden))
        folder.remove(name);
}

QString RecoveryStore::descriptionPath(const QString &id) const
{
    return QDir(m_folder).filePath(id + kDescriptionSuffix);
}

void RecoveryStore::removeContentFilesExcept(const QString &id, const QString &keep) const
{
    QDir folder(m_folder);
    for (const QString &name : folder.entryList({id + QLatin1String(".*") + kContentSuffix}, QDir::Files)) {
        if (name != keep)
            folder.remove(name);
    }
}
