#include "core/platform/reg_file_document.h"

#include <QStringDecoder>
#include <QStringEncoder>
#include <QStringList>

namespace {

const QLatin1String kHeader("Windows Registry Editor Version 5.00");

// Registry paths tolerate doubled and trailing separators; the file holds them tidy.
QString tidyKeyPath(const QString &path)
{
    QString out;
    out.reserve(path.size());
    for (const QChar c : path) {
        if (c == QLatin1Char('\\') && (out.isEmpty() || out.endsWith(QLatin1Char('\\'))))
            continue;
        out.append(c);
    }
    if (out.endsWith(QLatin1Char('\\')))
        out.chop(1);
    return out;
}

QString fold(const QString &text)
{
    return text.toCaseFolded();
}

// Reads a "quoted" token starting at text[pos]; leaves pos after the closing quote. A
// backslash escapes '\' and '"'; before anything else it is kept as it is, which is how a
// hand-typed "C:\temp" survives.
bool readQuoted(const QString &text, qsizetype &pos, QString &out)
{
    if (pos >= text.size() || text.at(pos) != QLatin1Char('"'))
        return false;
    out.clear();
    for (qsizetype i = pos + 1; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('"')) {
            pos = i + 1;
            return true;
        }
        if (c == QLatin1Char('\\') && i + 1 < text.size()) {
            const QChar next = text.at(i + 1);
            if (next == QLatin1Char('\\') || next == QLatin1Char('"')) {
                out.append(next);
                ++i;
                continue;
            }
        }
        out.append(c);
    }
    return false;
}

QString quoted(const QString &text)
{
    QString out = text;
    out.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
    out.replace(QLatin1Char('"'), QLatin1String("\\\""));
    return QLatin1Char('"') + out + QLatin1Char('"');
}

// Text that cannot stand between quotes on one line of the file: line breaks and other
// control characters, and lone surrogates, which no text encoding can carry.
bool needsHexForm(const QString &text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.unicode() < 0x20 && c != QLatin1Char('\t'))
            return true;
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        if (c.isSurrogate())
            return true;
    }
    return false;
}

// hex(1): form of a string: its UTF-16LE bytes and a terminator, comma-separated.
QString hexStringForm(const QString &text)
{
    QStringList bytes;
    for (const QChar c : text + QChar(0)) {
        bytes << QStringLiteral("%1").arg(c.unicode() & 0xff, 2, 16, QLatin1Char('0'));
        bytes << QStringLiteral("%1").arg(c.unicode() >> 8, 2, 16, QLatin1Char('0'));
    }
    return QLatin1String("hex(1):") + bytes.join(QLatin1Char(','));
}

bool parseHexString(const QString &list, QString &out)
{
    QByteArray bytes;
    for (const QString &part : list.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        bool ok = false;
        const uint b = part.trimmed().toUInt(&ok, 16);
        if (!ok || b > 0xff)
            return false;
        bytes.append(char(b));
    }
    if (bytes.size() % 2)
        bytes.chop(1);
    out = QString(reinterpret_cast<const QChar *>(bytes.constData()), bytes.size() / 2);
    // The terminator that ends the data is not part of the text; a NUL before it is.
    if (out.endsWith(QChar(0)))
        out.chop(1);
    return true;
}

SettingsValue parseData(const QString &data, bool &understood)
{
    understood = true;
    if (data.startsWith(QLatin1Char('"'))) {
        qsizetype pos = 0;
        QString text;
        if (readQuoted(data, pos, text) && data.mid(pos).trimmed().isEmpty())
            return SettingsValue::fromText(text);
    } else if (data.startsWith(QLatin1String("dword:"), Qt::CaseInsensitive)) {
        const QString digits = data.mid(6).trimmed();
        bool ok = false;
        const quint32 n = digits.toUInt(&ok, 16);
        if (ok && digits.size() <= 8)
            return SettingsValue::fromNumber(n);
    } else if (data.startsWith(QLatin1String("hex(1):"), Qt::CaseInsensitive) ||
               data.startsWith(QLatin1String("hex(2):"), Qt::CaseInsensitive)) {
        QString text;
        if (parseHexString(data.mid(7), text))
            return SettingsValue::fromText(text);
    }
    understood = false;
    return {SettingsValueType::Other, QString(), 0};
}

// A line that goes on a binary value: not the start of a section or of another value.
bool isContinuation(const QString &line)
{
    const QString t = line.trimmed();
    return !t.isEmpty() && !t.startsWith(QLatin1Char('[')) && !t.startsWith(QLatin1Char('"')) &&
           !t.startsWith(QLatin1Char('@'));
}

// UTF-16 (with its byte-order mark, as the registry editor writes) or UTF-8. Stateless, so
// that a sequence cut off at the end of the file counts as an error instead of vanishing.
QString decodeFile(const QByteArray &bytes, bool *lossless)
{
    const auto encoding = QStringConverter::encodingForData(bytes);
    QStringDecoder decoder(encoding.value_or(QStringConverter::Utf8), QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    *lossless = !decoder.hasError();
    return text;
}

// Lines that carry nothing and lose nothing when dropped: blanks, comments, the header.
bool isHarmlessLine(const QString &trimmed)
{
    return trimmed.isEmpty() || trimmed.startsWith(QLatin1Char(';')) || trimmed == kHeader ||
           trimmed == QLatin1String("REGEDIT4");
}

} // namespace

QString RegFileDocument::hiveName(Hive hive)
{
    return hive == Hive::LocalMachine ? QStringLiteral("HKEY_LOCAL_MACHINE")
                                      : QStringLiteral("HKEY_CURRENT_USER");
}

QString RegFileDocument::sectionName(Hive hive, const QString &key)
{
    const QString path = tidyKeyPath(key);
    return path.isEmpty() ? hiveName(hive) : hiveName(hive) + QLatin1Char('\\') + path;
}

RegFileDocument RegFileDocument::fromBytes(const QByteArray &bytes, int *unreadable)
{
    RegFileDocument doc;
    bool lossless = true;
    const QStringList lines = decodeFile(bytes, &lossless).split(QLatin1Char('\n'));
    int dropped = lossless ? 0 : 1;
    QString section;      // empty before the first section and inside a deleted one
    bool deleted = false; // inside a [-...] section, whose lines mean nothing to keep
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = lines.at(i).trimmed();
        if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']'))) {
            // Blanks inside the brackets belong to the key's name ("Notes \ Draft ").
            const QString name = tidyKeyPath(line.mid(1, line.size() - 2));
            deleted = name.startsWith(QLatin1Char('-'));
            section = deleted ? QString() : name;
            if (!section.isEmpty())
                doc.section(section);
            continue;
        }
        // Binary values may go on over several lines, each but the last ending in '\'.
        if (line.contains(QLatin1String("=hex"), Qt::CaseInsensitive)) {
            while (line.endsWith(QLatin1Char('\\')) && i + 1 < lines.size() &&
                   isContinuation(lines.at(i + 1))) {
                line.chop(1);
                line += lines.at(++i).trimmed();
            }
        }
        if (deleted || isHarmlessLine(line))
            continue;
        if (section.isEmpty() || !doc.parseValueLine(line, section))
            ++dropped;
    }
    if (unreadable)
        *unreadable = dropped;
    return doc;
}

bool RegFileDocument::parseValueLine(const QString &line, const QString &section)
{
    Entry entry;
    qsizetype pos = 0;
    if (line.startsWith(QLatin1Char('@')))
        pos = 1;
    else if (!readQuoted(line, pos, entry.name))
        return false; // not a value: dropped
    while (pos < line.size() && line.at(pos).isSpace())
        ++pos;
    if (pos >= line.size() || line.at(pos) != QLatin1Char('='))
        return false;
    const QString data = line.mid(pos + 1).trimmed();
    if (data == QLatin1String("-"))
        return true; // a deletion mark of a merge file: there is nothing to keep
    bool understood = false;
    entry.value = parseData(data, understood);
    if (!understood)
        entry.raw = data;
    set(section, entry);
    return true;
}

// As the registry editor writes its exports, so that one imports this file unchanged: UTF-16LE
// with a byte-order mark and CR LF line ends (an 8-bit file would be read in the ANSI code page).
QByteArray RegFileDocument::toBytes() const
{
    const QLatin1String newline("\r\n");
    QString out = kHeader + newline + newline;
    for (const Section &section : m_sections) {
        out += QLatin1Char('[') + section.name + QLatin1Char(']') + newline;
        for (const Entry &e : section.entries) {
            out += e.name.isEmpty() ? QStringLiteral("@") : quoted(e.name);
            out += QLatin1Char('=');
            switch (e.value.type) {
            case SettingsValueType::Text:
                out += needsHexForm(e.value.text) ? hexStringForm(e.value.text) : quoted(e.value.text);
                break;
            case SettingsValueType::Number:
                out += QStringLiteral("dword:%1").arg(e.value.number, 8, 16, QLatin1Char('0'));
                break;
            default:
                out += e.raw;
                break;
            }
            out += newline;
        }
        out += newline;
    }
    QStringEncoder encoder(QStringConverter::Utf16LE, QStringConverter::Flag::WriteBom);
    return encoder.encode(out);
}

RegFileDocument::Section &RegFileDocument::section(const QString &name)
{
    const QString key = fold(name);
    auto it = m_index.constFind(key);
    if (it != m_index.constEnd())
        return m_sections[*it];
    m_index.insert(key, int(m_sections.size()));
    m_sections.append(Section{name, {}, {}});
    return m_sections.last();
}

const RegFileDocument::Entry *RegFileDocument::find(const QString &sectionName, const QString &name) const
{
    const auto s = m_index.constFind(fold(sectionName));
    if (s == m_index.constEnd())
        return nullptr;
    const Section &sec = m_sections.at(*s);
    const auto e = sec.index.constFind(fold(name));
    return e == sec.index.constEnd() ? nullptr : &sec.entries.at(*e);
}

bool RegFileDocument::set(const QString &sectionName, const Entry &entry)
{
    Section &sec = section(sectionName);
    const QString key = fold(entry.name);
    const auto it = sec.index.constFind(key);
    if (it == sec.index.constEnd()) {
        sec.index.insert(key, int(sec.entries.size()));
        sec.entries.append(entry);
        return true;
    }
    Entry &old = sec.entries[*it];
    if (old.value == entry.value && old.raw == entry.raw)
        return false;
    old.value = entry.value; // the name keeps the spelling it was first written with
    old.raw = entry.raw;
    return true;
}
