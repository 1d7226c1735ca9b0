#pragma once

#include <QString>
#include <QStringList>

// A small initialisation file ("[section]" lines, then "key=value" lines) read and written
// with the classic profile-file rules: section and key names match without regard to case and
// blanks around them; values are trimmed and lose one pair of enclosing quotes; a read gives at
// most 399 characters. A write replaces the first matching line of the section, or adds the
// key at the end of the section, or adds the section at the end of the file. Every other line
// (comments, unknown keys, odd text) is kept exactly as it was, and so are the file's line
// endings and encoding. Files are saved atomically, so a failed write leaves the old file.
class IniFile
{
public:
    explicit IniFile(const QString &path);

    const QString &path() const { return m_path; }
    // False when the file exists but cannot be read.
    bool load();
    bool exists() const { return m_exists; }

    // The value of key in section; empty (and *found false) when there is no such line.
    QString value(const QString &section, const QString &key, bool *found = nullptr) const;
    // Sets key in section (in memory; call save()).
    void setValue(const QString &section, const QString &key, const QString &value);
    // Writes the file (created when missing; its folder must exist).
    bool save() const;

    const QStringList &lines() const { return m_lines; }

    // Longest value a read returns (the classic 400-character buffer less its terminator).
    static constexpr int kMaxValueLength = 399;

private:
    // Index of the section's header line, or -1.
    int findSection(const QString &section) const;
    // Index of the key's line inside the section starting after `header`, or -1.
    int findKey(int header, const QString &key) const;
    // One past the section's last line (the next header or the end of the file).
    int sectionEnd(int header) const;

    QString m_path;
    QStringList m_lines;
    QString m_newline = QStringLiteral("\r\n");
    bool m_latin1 = false;
    bool m_exists = false;
};
