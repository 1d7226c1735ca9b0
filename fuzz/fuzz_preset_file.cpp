// A theme preset as the user may import it from anywhere. Whatever the bytes: loading and
// saving without a change gives the same bytes, every value reads and converts without harm,
// and a value the program sets reads back.
#include "fuzz_check.h"
#include "themes/ini_file.h"
#include "themes/theme.h"

#include <QList>

#include <cstddef>
#include <cstdint>
#include <utility>

namespace {

using SectionAndKey = std::pair<QString, QString>;

// Reads every key line the way applying a preset would, numbers and colours included, and
// returns the values by section and key.
QList<std::pair<SectionAndKey, QString>> readEveryValue(const IniFile &file)
{
    QList<std::pair<SectionAndKey, QString>> values;
    QString section;
    for (const QString &line : file.lines()) {
        const QString trimmed = line.trimmed();
        if (trimmed.startsWith(QLatin1Char('['))) {
            section = trimmed.mid(1).section(QLatin1Char(']'), 0, 0);
            continue;
        }
        const qsizetype eq = line.indexOf(QLatin1Char('='));
        if (eq < 0)
            continue;
        const QString value = file.value(section, line.left(eq));
        FUZZ_CHECK(value.size() <= IniFile::kMaxValueLength);
        ParseThemeNumber(value, 0);
        TextToColor(value, 0);
        values.append({{section, line.left(eq)}, value});
    }
    return values;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    IniFile file(QString{});
    file.setBytes(input);
    FUZZ_CHECK(file.bytes() == input);
    const auto before = readEveryValue(file);

    // Setting one value changes that value only, in the file as the next load reads it.
    const QString section = QStringLiteral("main");
    const QString key = QStringLiteral("> Main-Color");
    file.setValue(section, key, QStringLiteral("13855252"));
    IniFile saved(QString{});
    saved.setBytes(file.bytes());
    FUZZ_CHECK(saved.value(section, key) == QStringLiteral("13855252"));
    for (const auto &[where, value] : before) {
        if (where.second.trimmed().compare(key, Qt::CaseInsensitive) != 0)
            FUZZ_CHECK(saved.value(where.first, where.second) == value);
    }
    return 0;
}
