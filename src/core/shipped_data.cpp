#include "core/shipped_data.h"

#include "core/app_paths.h"
#include "core/safe_file_write.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>

QStringList ShippedData::dictionaryNames()
{
    return {QStringLiteral("wordsus.dct"), QStringLiteral("wordsuk.dct")};
}

QByteArray ShippedData::read(const QString &resourcePath)
{
    QFile file(resourcePath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

QStringList ShippedData::readLines(const QString &resourcePath)
{
    return QString::fromUtf8(read(resourcePath)).split(QStringLiteral("\r\n"), Qt::SkipEmptyParts);
}

QHash<int, char32_t> ShippedData::weatherGlyphs()
{
    QHash<int, char32_t> glyphs;
    for (const QString &line : readLines(QLatin1String(WeatherGlyphList))) {
        const QStringList fields = line.split(QLatin1Char('|'));
        if (fields.size() != 2)
            continue;
        bool codeOk = false;
        bool pointOk = false;
        const int code = fields[0].toInt(&codeOk);
        const uint point = fields[1].toUInt(&pointOk, 16);
        if (codeOk && pointOk)
            glyphs.insert(code, char32_t(point));
    }
    return glyphs;
}

QString ShippedData::weatherGlyph(int iconNumber)
{
    // The list is tiny and the widget asks every few seconds at most: read once, keep.
    static const QHash<int, char32_t> glyphs = weatherGlyphs();
    const auto it = glyphs.constFind(iconNumber);
    if (it == glyphs.constEnd())
        return {};
    const char32_t point = *it;
    return QString::fromUcs4(&point, 1);
}

QString ShippedData::weatherFontFamily()
{
    static QString family;
    if (family.isEmpty()) {
        const int id = QFontDatabase::addApplicationFont(QLatin1String(WeatherFont));
        const QStringList families = QFontDatabase::applicationFontFamilies(id);
        if (!families.isEmpty())
            family = families.first();
    }
    return family;
}

namespace {

bool installDictionary(const QString &name, const QString &target, QString *errorMessage)
{
    const QString source = QLatin1String(ShippedData::DictionaryFolder) + QLatin1Char('/') + name;
    QFile shipped(source);
    if (!shipped.open(QIODevice::ReadOnly)) {
        *errorMessage =
            QStringLiteral("The built-in dictionary %1 is missing from this copy of the program.").arg(name);
        return false;
    }
    QString error;
    if (!WriteFileSafely(target, shipped.readAll(), &error)) {
        *errorMessage = QStringLiteral("Could not write the dictionary %1: %2")
                            .arg(QDir::toNativeSeparators(target), error);
        return false;
    }
    return true;
}

} // namespace

bool InstallMissingDictionaries(QString *errorMessage)
{
    QString localError;
    QString &error = errorMessage ? *errorMessage : localError;
    const QString notes = AppPaths::dataPath(QStringLiteral("notes"));
    if (!QDir().mkpath(notes)) {
        error = QStringLiteral("Could not create the folder %1 for the dictionaries.")
                    .arg(QDir::toNativeSeparators(notes));
        return false;
    }
    bool allInstalled = true;
    QStringList problems;
    for (const QString &name : ShippedData::dictionaryNames()) {
        const QString target = notes + QLatin1Char('/') + name;
        if (QFileInfo::exists(target))
            continue; // a user's copy, perhaps with added words: never replaced
        QString problem;
        if (!installDictionary(name, target, &problem)) {
            allInstalled = false;
            problems << problem;
        }
    }
    error = problems.join(QLatin1Char('\n'));
    return allInstalled;
}
