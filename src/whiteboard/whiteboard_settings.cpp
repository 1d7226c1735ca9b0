#include "whiteboard/whiteboard_settings.h"

#include "core/app_paths.h"
#include "core/file_helpers.h"
#include "core/settings_store.h"
#include "themes/theme_painter.h"

#include <QDir>

#include <algorithm>
#include <array>

namespace {

const QString kFolder = QStringLiteral("Board Folder Location");
const QString kColorName = QStringLiteral("board-Color-name");
const QString kColorValue = QStringLiteral("board-Color-value");
// The name the whiteboard itself falls back on; it too means the window background.
const QString kWhiteboardDefaultName = QStringLiteral("vbWindowBackground");

struct NamedColor
{
    const char *name;
    const char *rgb; // RRGGBB; empty for the window background
};

// "Grey" is darker than "Stone" on purpose: boards saved with either name keep their look.
constexpr std::array<NamedColor, 15> kBoardColors = {{
    {"White", "FFFFFF"},
    {kWindowColorName, ""},
    {"Purple", "A68FC8"},
    {"Pink", "C77CB8"},
    {"Cherry", "D2646D"},
    {"Red", "A7536A"},
    {"Brown", "5C3E3E"},
    {"Grey", "343434"},
    {"Stone", "68666C"},
    {"Slate", "94A2CA"},
    {"Blue", "32549B"},
    {"Turquoise", "54999D"},
    {"Green", "2B4523"},
    {"Lime", "9FBE7F"},
    {"Yellow", "CBD06C"},
}};

QString windowName()
{
    return QLatin1String(kWhiteboardSettingsName);
}

QString defaultFolder()
{
    return AppPaths::dataPath(QStringLiteral("wboard"));
}

// An older save could nest the folder in itself ("...\wboard\wboard\"); the whole doubled part
// becomes one "wboard", without the trailing separator.
QString repairedFolder(const QString &stored)
{
    QString folder = WithTrailingBackslash(stored);
    folder.replace(QStringLiteral("wboard\\wboard\\"), QStringLiteral("wboard"));
    folder.replace(QStringLiteral("wboard/wboard/"), QStringLiteral("wboard"));
    return folder;
}

WhiteboardSettings read(const QString &defaultName)
{
    WhiteboardSettings s;
    s.folder = repairedFolder(ReadDetail(windowName(), kFolder, defaultFolder()));
    s.colorName = ReadDetail(windowName(), kColorName, defaultName);
    s.colorValue = ReadDetail(windowName(), kColorValue, ColorToText(kWindowBackground));
    return s;
}

WhiteboardSettings &shared()
{
    static WhiteboardSettings settings;
    return settings;
}

bool &sharedLoaded()
{
    static bool loaded = false;
    return loaded;
}

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

bool isHexDigit(QChar c)
{
    const QChar lower = c.toLower();
    return isDigit(c) || (lower >= QLatin1Char('a') && lower <= QLatin1Char('f'));
}

bool allOf(const QString &text, bool (*test)(QChar))
{
    return !text.isEmpty() && std::all_of(text.cbegin(), text.cend(), test);
}

std::optional<OleColor> parseHex(const QString &digits)
{
    if (digits.size() > 8 || !allOf(digits, isHexDigit))
        return std::nullopt;
    return OleColor(digits.toUInt(nullptr, 16));
}

std::optional<OleColor> parseDecimal(const QString &text)
{
    bool ok = false;
    const qint64 value = text.toLongLong(&ok);
    if (!ok || value < qint64(INT32_MIN) || value > qint64(UINT32_MAX))
        return std::nullopt;
    return OleColor(quint32(value));
}

} // namespace

QStringList BoardColorNames()
{
    QStringList names;
    for (const NamedColor &color : kBoardColors)
        names << QLatin1String(color.name);
    return names;
}

QString BoardColorValue(const QString &name)
{
    for (const NamedColor &color : kBoardColors) {
        if (name != QLatin1String(color.name))
            continue;
        const QString h = QLatin1String(color.rgb);
        if (h.isEmpty())
            return QString();
        return QStringLiteral("&H00") + h.mid(4, 2) + h.mid(2, 2) + h.left(2);
    }
    return QString();
}

std::optional<OleColor> ParseBoardColorText(const QString &text)
{
    const QString t = text.trimmed();
    if (t.startsWith(QLatin1String("&H"), Qt::CaseInsensitive))
        return parseHex(t.mid(2));
    // Only an optional minus and digits: toLongLong alone would also take a '+' sign.
    const QString digits = t.startsWith(QLatin1Char('-')) ? t.mid(1) : t;
    if (!allOf(digits, isDigit))
        return std::nullopt;
    return parseDecimal(t);
}

QColor BoardColorFromText(const QString &text)
{
    return ResolveColor(ParseBoardColorText(text).value_or(kWindowBackground));
}

QColor BoardColorOfName(const QString &name)
{
    return BoardColorFromText(BoardColorValue(name));
}

bool FolderHoldsBoards(const QString &folder)
{
    if (!FolderExists(folder))
        return false;
    const QStringList pictures = {QStringLiteral("*.png"), QStringLiteral("*.bmp"), QStringLiteral("*.jpg"),
                                  QStringLiteral("*.jpeg")};
    QDir dir(LocalPath(folder));
    dir.setNameFilters(pictures);
    dir.setFilter(QDir::Files);
    return !dir.isEmpty();
}

WhiteboardSettings WhiteboardSettings::load()
{
    return read(QLatin1String(kWindowColorName));
}

bool WhiteboardSettings::save(bool folderChanged) const
{
    bool folderReady = true;
    if (folderChanged) {
        folderReady = CreateFolderIfMissing(folder);
        WriteDetail(windowName(), kFolder, folder);
    }
    // "Window" and any name the table lacks store the window background itself, so the value
    // always reads as a colour.
    const QString value = BoardColorValue(colorName);
    WriteDetail(windowName(), kColorName, colorName);
    WriteDetail(windowName(), kColorValue, value.isEmpty() ? ColorToText(kWindowBackground) : value);
    ReloadWhiteboardSettings();
    return folderReady;
}

QColor WhiteboardSettings::boardColor() const
{
    return BoardColorFromText(colorValue);
}

QString WhiteboardSettings::boardFolderPath() const
{
    return LocalPath(folder);
}

const WhiteboardSettings &CurrentWhiteboardSettings()
{
    if (!sharedLoaded())
        ReloadWhiteboardSettings();
    return shared();
}

void ReloadWhiteboardSettings()
{
    shared() = read(kWhiteboardDefaultName);
    sharedLoaded() = true;
}
