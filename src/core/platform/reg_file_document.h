#pragma once

#include "core/platform/settings_backend.h"

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

// The settings file's content in the registry editor's export layout (version 5):
//
//     Windows Registry Editor Version 5.00
//
//     [HKEY_CURRENT_USER\SOFTWARE\Vantora\falc_SET\Details]
//     "Alarm Sound"="BELL"
//     "Count"=dword:0000000a
//
// Bytes are written as the registry editor writes its exports (UTF-16LE with a byte-order
// mark, CR LF line ends), so the file can be imported on Windows unchanged; they are read as
// UTF-16 or UTF-8, with either line end. Strings escape '\' and '"' with a backslash; a string
// holding a line break, another control character or a lone surrogate is written as hex(1):
// (UTF-16LE bytes and a terminator) so that every value stays on its line exactly. Key paths
// and value names are matched without regard to case and written back as first written; the
// blanks in them are part of the name. Values of other types (dword, hex, lines that make no
// sense) are kept and written back as they were, so a hand edit never loses anything; text
// that is neither a section nor a value is dropped and counted.
class RegFileDocument
{
public:
    struct Entry
    {
        QString name; // as first written ("" is the key's default value, written @)
        SettingsValue value;
        QString raw; // for Other: the text after '=' exactly as it was in the file
    };
    struct Section
    {
        QString name; // "HKEY_...\path" as first written
        QList<Entry> entries;
        QHash<QString, int> index; // case-folded name -> entries position
    };

    // `unreadable` counts the lines that were dropped, and a decoding that lost bytes.
    static RegFileDocument fromBytes(const QByteArray &bytes, int *unreadable = nullptr);
    QByteArray toBytes() const;

    // "HKEY_CURRENT_USER" or "HKEY_LOCAL_MACHINE".
    static QString hiveName(Hive hive);
    // The section of a key: the hive's name, '\', and the path tidied of doubled and trailing
    // separators.
    static QString sectionName(Hive hive, const QString &key);

    const QList<Section> &sections() const { return m_sections; }
    const Entry *find(const QString &sectionName, const QString &name) const;
    // Adds or changes a value; false when it was already there as it is.
    bool set(const QString &sectionName, const Entry &entry);

private:
    Section &section(const QString &name);
    bool parseValueLine(const QString &line, const QString &section);

    QList<Section> m_sections;
    QHash<QString, int> m_index; // case-folded section name -> m_sections position
};
