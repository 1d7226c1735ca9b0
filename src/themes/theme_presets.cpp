#include "themes/theme_presets.h"

#include "core/app_paths.h"
#include "core/safe_file_write.h"
#include "themes/ini_file.h"
#include "themes/message_box.h"
#include "themes/preset_file.h"
#include "themes/theme_painter.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QSet>

namespace {

const QString kMain = QStringLiteral("main");
const QString kText = QStringLiteral("text");
const QString kPreset = QStringLiteral("preset");

// Message 12: "You need to set a name before saving."
constexpr int kNoNameMessage = 12;

// The list of shipped presets already copied once, relative to the themes folder.
const char *const kInstalledList = ".installed-presets";

int readInt(const QString &section, const QString &key, int current)
{
    const qint64 v = ParseThemeNumber(PresetRead(section, key, QString::number(current)), current);
    return int(qBound(qint64(INT32_MIN), v, qint64(INT32_MAX)));
}

OleColor readColor(const QString &section, const QString &key, OleColor current)
{
    return TextToColor(PresetRead(section, key, ColorToText(current)), current);
}

QString themesFolder()
{
    return AppPaths::dataPath(QStringLiteral("themes"));
}

QSet<QString> readInstalledList(const QString &path)
{
    QSet<QString> names;
    QFile file(path);
    if (file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (!line.trimmed().isEmpty())
                names.insert(QString::fromUtf8(line.trimmed()));
        }
    }
    return names;
}

bool writeInstalledList(const QString &path, const QSet<QString> &names)
{
    QStringList sorted(names.begin(), names.end());
    sorted.sort();
    return WriteFileSafely(path, sorted.join(QLatin1Char('\n')).toUtf8() + '\n');
}

} // namespace

QStringList PresetGroups()
{
    return {QStringLiteral("classic"), QStringLiteral("contrast"), QStringLiteral("flat"),
            QStringLiteral("glass"),   QStringLiteral("led"),      QStringLiteral("retro"),
            QStringLiteral("white"),   QStringLiteral("custom")};
}

QString PresetFolderPath(const QString &group)
{
    const QString g = group.trimmed().isEmpty() ? QString::fromLatin1(kDefaultPresetGroup) : group;
    return themesFolder() + QLatin1Char('/') + g;
}

QString PresetFilePath(const QString &group, const QString &fileName)
{
    return PresetFolderPath(group) + QLatin1Char('/') + fileName;
}

QString PresetFileNameFor(const QString &name)
{
    QString safe = name.trimmed();
    for (QChar &c : safe) {
        if (c.unicode() < 32 || QStringLiteral("/\\:*?\"<>|").contains(c))
            c = QLatin1Char('_');
    }
    if (safe.startsWith(QLatin1Char('.')))
        safe[0] = QLatin1Char('_'); // no hidden files, no ".."
    return safe + QStringLiteral(".dcp");
}

Theme ReadPreset(const QString &path, const Theme &current)
{
    SetPresetFile(path);
    Theme t = current;
    t.MainOpacity = qBound(0, readInt(kMain, QStringLiteral("Main-Opacity"), t.MainOpacity), 255);
    t.MainContrast = readInt(kMain, QStringLiteral("Main-Contrast"), t.MainContrast);
    t.MainColor = readColor(kMain, QStringLiteral("Main-Color"), t.MainColor);
    t.PanelFont = PresetRead(kText, QStringLiteral("Panel-Font"), t.PanelFont);
    t.PanelColor = readColor(kText, QStringLiteral("Panel-Color"), t.PanelColor);
    t.PanelAngle = readInt(kText, QStringLiteral("Panel-Angle"), t.PanelAngle);
    t.BarFont = PresetRead(kText, QStringLiteral("Bar-Font"), t.BarFont);
    t.BarColor = readColor(kText, QStringLiteral("Bar-Color"), t.BarColor);
    t.BarAngle = readInt(kText, QStringLiteral("Bar-Angle"), t.BarAngle);
    return t;
}

bool WritePreset(const QString &path, const Theme &t, const QString &caption, QString *error)
{
    SetPresetFile(path);
    RemoveStaleTemporaryFiles(path, 60); // left by a save that was killed
    // Built whole in memory and saved once, through a temporary file: a crash or a full disk
    // in the middle leaves the old preset, never a part of the new one.
    IniFile file(PresetFile().trimmed());
    const auto set = [&file](const QString &section, const char *key, const QString &value) {
        file.setValue(section, QLatin1String(kPresetKeyPrefix) + QLatin1String(key), value);
    };
    set(kMain, "Main-Color", ColorToText(t.MainColor));
    set(kMain, "Main-Opacity", QString::number(t.MainOpacity));
    set(kMain, "Main-Contrast", QString::number(t.MainContrast));
    set(kText, "Bar-Font", t.BarFont);
    set(kText, "Bar-Color", ColorToText(t.BarColor));
    set(kText, "Bar-Angle", QString::number(t.BarAngle));
    set(kText, "Panel-Angle", QString::number(t.PanelAngle));
    set(kText, "Panel-Font", t.PanelFont);
    set(kText, "Panel-Color", ColorToText(t.PanelColor));
    set(kPreset, "caption", caption.trimmed());
    return file.save(error);
}

SavePresetResult SavePreset(const QString &group, const QString &name, const Theme &theme, QString *savedPath,
                            QString *error)
{
    if (name.trimmed().isEmpty()) {
        ShowInfoMessage(kNoNameMessage);
        return SavePresetResult::NoName;
    }
    const QString folder = PresetFolderPath(group);
    QDir().mkpath(folder);
    const QString path = folder + QLatin1Char('/') + PresetFileNameFor(name);
    if (savedPath)
        *savedPath = path;
    return WritePreset(path, theme, name.trimmed(), error) ? SavePresetResult::Saved
                                                        : SavePresetResult::WriteFailed;
}

QString PresetSizeText(qint64 bytes)
{
    return QString::number((bytes + 1023) / 1024) + QLatin1Char('K');
}

QList<PresetListEntry> ListPresets(const QString &group, const Theme &current)
{
    QList<PresetListEntry> entries;
    const QDir dir(PresetFolderPath(group));
    const QStringList files =
        dir.entryList({QStringLiteral("*.dcp")}, QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QString &fileName : files) {
        PresetListEntry e;
        e.fileName = fileName;
        SetPresetFile(dir.filePath(fileName));
        const OleColor main = readColor(kMain, QStringLiteral("Main-Color"), current.MainColor);
        e.mainSwatch = BlendColor(main, kShadowGrey, 250);
        e.panelColor = readColor(kText, QStringLiteral("Panel-Color"), current.PanelColor);
        e.barColor = readColor(kText, QStringLiteral("bar-Color"), current.BarColor);
        e.caption = PresetRead(kPreset, QStringLiteral("caption"), QFileInfo(fileName).completeBaseName());
        e.bytes = QFileInfo(dir.filePath(fileName)).size();
        e.sizeText = PresetSizeText(e.bytes);
        entries.append(e);
    }
    return entries;
}

bool DeletePreset(const QString &group, const QString &fileName)
{
    if (fileName.isEmpty() || fileName.contains(QLatin1Char('/')) || fileName.contains(QLatin1Char('\\')))
        return false;
    return QFile::remove(PresetFilePath(group, fileName));
}

int DeleteAllPresets(const QString &group)
{
    int removed = 0;
    const QDir dir(PresetFolderPath(group));
    for (const QString &fileName : dir.entryList({QStringLiteral("*.dcp")}, QDir::Files)) {
        if (DeletePreset(group, fileName))
            ++removed;
    }
    return removed;
}

bool ExportTheme(const QString &path, const Theme &theme, QString *writtenPath, QString *error)
{
    QString target = path;
    if (QFileInfo(target).suffix().isEmpty())
        target += QStringLiteral(".dcp");
    if (writtenPath)
        *writtenPath = target;
    return WritePreset(target, theme, QFileInfo(target).completeBaseName(), error);
}

namespace {

// Anything larger is not a preset (they are a few hundred bytes).
constexpr qint64 kMaxPresetBytes = 64 * 1024;

bool looksLikePreset(const QString &path)
{
    const QFileInfo info(path);
    if (!info.isFile() || info.size() > kMaxPresetBytes)
        return false;
    IniFile file(path);
    if (!file.load())
        return false;
    const QStringList mainKeys{"Main-Color", "Main-Opacity", "Main-Contrast"};
    const QStringList textKeys{"Bar-Font",    "Bar-Color",  "Bar-Angle",
                               "Panel-Angle", "Panel-Font", "Panel-Color"};
    for (const QString &k : mainKeys) {
        if (!file.value(kMain, QLatin1String(kPresetKeyPrefix) + k).isEmpty())
            return true;
    }
    for (const QString &k : textKeys) {
        if (!file.value(kText, QLatin1String(kPresetKeyPrefix) + k).isEmpty())
            return true;
    }
    return false;
}

QString freePresetPath(const QString &folder, const QString &baseName)
{
    QString candidate = folder + QLatin1Char('/') + PresetFileNameFor(baseName);
    for (int n = 2; QFileInfo::exists(candidate); ++n)
        candidate =
            folder + QLatin1Char('/') + PresetFileNameFor(QStringLiteral("%1 (%2)").arg(baseName).arg(n));
    return candidate;
}

} // namespace

ImportResult ImportPresetFile(const QString &path, const Theme &current, Theme *theme, QString *installedPath)
{
    if (!looksLikePreset(path))
        return ImportResult::NotAPreset;
    const QString folder = PresetFolderPath(QString::fromLatin1(kDefaultPresetGroup));
    QDir().mkpath(folder);
    const QString copy = freePresetPath(folder, QFileInfo(path).completeBaseName());
    if (!QFile::copy(path, copy))
        return ImportResult::CopyFailed;
    QFile::setPermissions(copy, QFile::permissions(copy) | QFile::WriteOwner | QFile::ReadOwner);
    if (installedPath)
        *installedPath = copy;
    *theme = ReadPreset(copy, current);
    return ImportResult::Imported;
}

int InstallMissingPresets()
{
    const QString target = themesFolder();
    const QString listPath = target + QLatin1Char('/') + QLatin1String(kInstalledList);
    QSet<QString> installed = readInstalledList(listPath);
    const int before = installed.size();
    int copied = 0;
    QDirIterator it(QStringLiteral(":/themes"), {QStringLiteral("*.dcp")}, QDir::Files,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QString relative = source.mid(QStringLiteral(":/themes/").size());
        const QString destination = target + QLatin1Char('/') + relative;
        if (installed.contains(relative))
            continue; // copied before: the user's edit or deletion stands
        installed.insert(relative);
        if (QFileInfo::exists(destination))
            continue;
        QDir().mkpath(QFileInfo(destination).absolutePath());
        if (QFile::copy(source, destination)) {
            // Files copied from the resources are read-only; the user may edit presets.
            QFile::setPermissions(destination,
                                  QFile::permissions(destination) | QFile::WriteOwner | QFile::ReadOwner);
            ++copied;
        } else {
            installed.remove(relative); // try again next start
        }
    }
    if (installed.size() != before)
        writeInstalledList(listPath, installed);
    return copied;
}
