#include "themes/ini_file.h"

#include "core/safe_file_write.h"

#include <QFile>
#include <QHash>
#include <QStringDecoder>
#include <QStringEncoder>

namespace {

bool isSectionLine(const QString &trimmed)
{
    return trimmed.startsWith(QLatin1Char('['));
}

QString sectionName(const QString &trimmed)
{
    const int close = trimmed.indexOf(QLatin1Char(']'));
    return (close < 0 ? trimmed.mid(1) : trimmed.mid(1, close - 1)).trimmed();
}

bool sameName(const QString &a, const QString &b)
{
    return a.trimmed().compare(b.trimmed(), Qt::CaseInsensitive) == 0;
}

QString unquote(const QString &value)
{
    if (value.size() >= 2) {
        const QChar first = value.front();
        if ((first == QLatin1Char('"') || first == QLatin1Char('\'')) && value.back() == first)
            return value.mid(1, value.size() - 2);
    }
    return value;
}

struct Decoded
{
    QString text;
    IniFile::Encoding encoding;
};

// Decodes strictly (a sequence cut off at the end is an error too) and accepts the result only
// when encoding it again gives the same bytes, so that a save can give the file back as it was.
bool decodeExactly(const QByteArray &bytes, QStringConverter::Encoding encoding, QString *text)
{
    QStringDecoder decoder(encoding, QStringConverter::Flag::Stateless);
    *text = decoder.decode(bytes);
    if (decoder.hasError())
        return false;
    QStringEncoder encoder(encoding);
    return QByteArray(encoder.encode(*text)) == bytes;
}

Decoded decodeFile(const QByteArray &bytes)
{
    QString text;
    if (bytes.startsWith("\xef\xbb\xbf") && decodeExactly(bytes.mid(3), QStringConverter::Utf8, &text))
        return {text, IniFile::Encoding::Utf8WithBom};
    if (bytes.startsWith("\xff\xfe") && decodeExactly(bytes.mid(2), QStringConverter::Utf16LE, &text))
        return {text, IniFile::Encoding::Utf16LE};
    if (bytes.startsWith("\xfe\xff") && decodeExactly(bytes.mid(2), QStringConverter::Utf16BE, &text))
        return {text, IniFile::Encoding::Utf16BE};
    if (decodeExactly(bytes, QStringConverter::Utf8, &text))
        return {text, IniFile::Encoding::Utf8};
    // Files written by older 8-bit tools: every byte is a Latin-1 character, so nothing is lost.
    return {QString::fromLatin1(bytes), IniFile::Encoding::Latin1};
}

} // namespace

IniFile::IniFile(const QString &path) : m_path(path) {}

bool IniFile::load()
{
    m_lines.clear();
    m_endings.clear();
    QFile file(m_path);
    m_exists = file.exists();
    if (!m_exists)
        return true;
    if (!file.open(QIODevice::ReadOnly))
        return false;
    setBytes(file.readAll());
    return true;
}

void IniFile::setBytes(const QByteArray &bytes)
{
    m_lines.clear();
    m_endings.clear();
    const Decoded decoded = decodeFile(bytes);
    m_encoding = decoded.encoding;
    splitLines(decoded.text);
}

void IniFile::splitLines(const QString &text)
{
    QHash<QString, int> counts;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c != QLatin1Char('\n') && c != QLatin1Char('\r'))
            continue;
        const bool crLf =
            c == QLatin1Char('\r') && i + 1 < text.size() && text.at(i + 1) == QLatin1Char('\n');
        const QString ending = crLf ? QStringLiteral("\r\n") : QString(c);
        m_lines.append(text.mid(start, i - start));
        m_endings.append(ending);
        ++counts[ending];
        if (crLf)
            ++i;
        start = i + 1;
    }
    if (start < text.size()) {
        m_lines.append(text.mid(start));
        m_endings.append(QString());
    }
    // New lines follow the file's custom; CR LF for a file without any line break yet.
    m_newline = QStringLiteral("\r\n");
    int best = 0;
    for (const QString &ending : {QStringLiteral("\r\n"), QStringLiteral("\n"), QStringLiteral("\r")}) {
        if (counts.value(ending) > best) {
            best = counts.value(ending);
            m_newline = ending;
        }
    }
}

void IniFile::insertLine(int index, const QString &line)
{
    if (index == m_lines.size() && !m_endings.isEmpty() && m_endings.back().isEmpty())
        m_endings.back() = m_newline; // the last line gets its break before one follows it
    m_lines.insert(index, line);
    m_endings.insert(index, m_newline);
}

int IniFile::findSection(const QString &section) const
{
    for (int i = 0; i < m_lines.size(); ++i) {
        const QString t = m_lines[i].trimmed();
        if (isSectionLine(t) && sameName(sectionName(t), section))
            return i;
    }
    return -1;
}

int IniFile::sectionEnd(int header) const
{
    int i = header + 1;
    while (i < m_lines.size() && !isSectionLine(m_lines[i].trimmed()))
        ++i;
    return i;
}

int IniFile::findKey(int header, const QString &key) const
{
    const int end = sectionEnd(header);
    for (int i = header + 1; i < end; ++i) {
        const QString &line = m_lines[i];
        if (line.trimmed().startsWith(QLatin1Char(';')))
            continue;
        const int eq = line.indexOf(QLatin1Char('='));
        if (eq >= 0 && sameName(line.left(eq), key))
            return i;
    }
    return -1;
}

QString IniFile::value(const QString &section, const QString &key, bool *found) const
{
    const int header = findSection(section);
    const int line = header < 0 ? -1 : findKey(header, key);
    if (found)
        *found = line >= 0;
    if (line < 0)
        return QString();
    const QString &text = m_lines[line];
    return unquote(text.mid(text.indexOf(QLatin1Char('=')) + 1).trimmed()).left(kMaxValueLength);
}

void IniFile::setValue(const QString &section, const QString &key, const QString &value)
{
    const QString line = key.trimmed() + QLatin1Char('=') + value;
    int header = findSection(section);
    if (header < 0) {
        if (!m_lines.isEmpty() && !m_lines.back().trimmed().isEmpty())
            insertLine(int(m_lines.size()), QString());
        insertLine(int(m_lines.size()), QLatin1Char('[') + section.trimmed() + QLatin1Char(']'));
        insertLine(int(m_lines.size()), line);
        return;
    }
    const int existing = findKey(header, key);
    if (existing >= 0) {
        m_lines[existing] = line;
        return;
    }
    // After the section's last non-blank line, so the blank line before the next section stays.
    int insertAt = sectionEnd(header);
    while (insertAt - 1 > header && m_lines[insertAt - 1].trimmed().isEmpty())
        --insertAt;
    insertLine(insertAt, line);
}

QByteArray IniFile::encoded(const QString &text, Encoding encoding)
{
    switch (encoding) {
    case Encoding::Utf8WithBom:
        return QByteArray("\xef\xbb\xbf") + text.toUtf8();
    case Encoding::Utf16LE:
    case Encoding::Utf16BE: {
        QStringEncoder encoder(encoding == Encoding::Utf16LE ? QStringConverter::Utf16LE
                                                             : QStringConverter::Utf16BE,
                               QStringConverter::Flag::WriteBom);
        return encoder.encode(text);
    }
    case Encoding::Latin1:
        return text.toLatin1();
    case Encoding::Utf8:
        break;
    }
    return text.toUtf8();
}

QByteArray IniFile::bytes() const
{
    QString text;
    for (int i = 0; i < m_lines.size(); ++i)
        text += m_lines.at(i) + m_endings.at(i);
    // The file's own encoding, unless the next load would read the bytes as other text: a
    // value Latin-1 cannot hold, or an edit that makes a Latin-1 file look like UTF-8 or
    // UTF-16. UTF-8 with a byte-order mark always reads back as written.
    QByteArray bytes;
    for (const Encoding encoding : {m_encoding, Encoding::Utf8, Encoding::Utf8WithBom}) {
        bytes = encoded(text, encoding);
        if (decodeFile(bytes).text == text)
            break;
    }
    return bytes;
}

bool IniFile::save(QString *error) const
{
    return WriteFileSafely(m_path, bytes(), error);
}
