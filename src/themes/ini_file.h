#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

// A small initialisation file ("[section]" lines, then "key=value" lines) read and written
// with the classic profile-file rules: section and key names match without regard to case and
// blanks around them; values are trimmed and lose one pair of enclosing quotes; a read gives at
// most 399 characters. A write replaces the first matching line of the section, or adds the
// key at the end of the section, or adds the section at the end of the file. Every other line
// (comments, unknown keys, odd text) is kept exactly as it was, and so are the file's line
// endings (each line its own: CR LF, LF or a lone CR; a last line without one stays so until
// a line is added after it) and encoding (UTF-8 with or without a byte-order mark, UTF-16 with
// one, or Latin-1 for any other bytes). Loading and saving a file without changing it gives
// back the same bytes. Files are saved through a temporary file and a rename, every write
// checked, so a failed save (a full disk) leaves the old file as it was.
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
    // The content as the file would hold it, and content taken as if loaded from a file.
    QByteArray bytes() const;
    void setBytes(const QByteArray &bytes);

    // Writes the file (created when missing; its folder must exist). *error says why it failed.
    bool save(QString *error = nullptr) const;

    const QStringList &lines() const { return m_lines; }

    // Longest value a read returns (the classic 400-character buffer less its terminator).
    static constexpr int kMaxValueLength = 399;

    enum class Encoding
    {
        Utf8,
        Utf8WithBom,
        Utf16LE, // with its byte-order mark
        Utf16BE, // with its byte-order mark
        Latin1,  // any bytes that are none of the above
    };
    Encoding encoding() const { return m_encoding; }

private:
    void splitLines(const QString &text);
    // Inserts a line before `index`, ending in the file's usual line break.
    void insertLine(int index, const QString &line);
    static QByteArray encoded(const QString &text, Encoding encoding);

    // Index of the section's header line, or -1.
    int findSection(const QString &section) const;
    // Index of the key's line inside the section starting after `header`, or -1.
    int findKey(int header, const QString &key) const;
    // One past the section's last line (the next header or the end of the file).
    int sectionEnd(int header) const;

    QString m_path;
    QStringList m_lines;
    QStringList m_endings;                      // each line's own line break, "" for a last line without one
    QString m_newline = QStringLiteral("\r\n"); // for added lines: the file's most common one
    Encoding m_encoding = Encoding::Utf8;
    bool m_exists = false;
};
