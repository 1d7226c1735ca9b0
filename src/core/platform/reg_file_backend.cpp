#include "core/platform/reg_file_backend.h"

#include "core/safe_file_write.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QLoggingCategory>
#include <QStringConverter>
#include <QStringDecoder>
#include <QStringEncoder>

Q_LOGGING_CATEGORY(lcSettingsFile, "vantora.settings")

namespace {

const QLatin1String kHeader("Windows Registry Editor Version 5.00");

// A temporary file this old beside the settings is left over from a save that was killed:
// saves take milliseconds, and another copy of the program may be in the middle of one.
constexpr int kStaleTemporaryFileSeconds = 60;

// Saves hold the lock beside the file for milliseconds. One older than this belongs to a
// copy of the program that hangs (one whose process has gone is taken over at once).
constexpr int kStaleLockMs = 10000;
// How long a save waits for another copy's save before it goes ahead without the lock.
constexpr int kLockWaitMs = 5000;

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

// Beside the file: "settings.reg.damaged", then "settings.reg.damaged-2", ... The first one
// that is free, or already holds exactly these bytes.
QString damagedCopyPath(const QString &filePath, const QByteArray &bytes, bool *alreadyKept)
{
    *alreadyKept = false;
    const QString base = filePath + QStringLiteral(".damaged");
    for (int n = 1;; ++n) {
        const QString candidate = n == 1 ? base : base + QStringLiteral("-%1").arg(n);
        QFile existing(candidate);
        if (!existing.exists())
            return candidate;
        if (existing.open(QIODevice::ReadOnly) && existing.readAll() == bytes) {
            *alreadyKept = true;
            return candidate;
        }
    }
}

} // namespace

RegFileBackend::RegFileBackend(const QString &filePath, ProblemReporter reporter)
    : m_filePath(filePath), m_reporter(std::move(reporter))
{
    RemoveStaleTemporaryFiles(m_filePath, kStaleTemporaryFileSeconds);
    syncFromDisk();
}

QString RegFileBackend::hiveName(Hive hive)
{
    return hive == Hive::LocalMachine ? QStringLiteral("HKEY_LOCAL_MACHINE")
                                      : QStringLiteral("HKEY_CURRENT_USER");
}

QString RegFileBackend::sectionName(Hive hive, const QString &key)
{
    const QString path = tidyKeyPath(key);
    return path.isEmpty() ? hiveName(hive) : hiveName(hive) + QLatin1Char('\\') + path;
}

SettingsValue RegFileBackend::read(Hive hive, const QString &key, const QString &name)
{
    recheckIfDue();
    const Entry *entry = m_doc.find(sectionName(hive, key), name);
    return entry ? entry->value : SettingsValue();
}

bool RegFileBackend::write(Hive hive, const QString &key, const QString &name, const SettingsValue &value)
{
    if (value.type != SettingsValueType::Text && value.type != SettingsValueType::Number)
        return false;
    // From the read to the rename no other copy of the program may save, or the one that
    // renames last would drop the other's values.
    QDir().mkpath(QFileInfo(m_filePath).absolutePath());
    QLockFile lock(m_filePath + QStringLiteral(".lock"));
    lock.setStaleLockTime(kStaleLockMs);
    if (!lock.tryLock(kLockWaitMs))
        qCWarning(lcSettingsFile, "Saving settings without the lock on %s (error %d)",
                  qUtf8Printable(lock.fileName()), int(lock.error()));
    syncFromDisk(); // another copy of the program may have saved since: merge onto its file

    const QString section = sectionName(hive, key);
    const Entry entry{name, value, QString()};
    const bool changed = m_doc.set(section, entry);
    if (!changed && m_pending.isEmpty() && m_stamp.exists)
        return true; // already in the file as it is

    const QString foldedSection = fold(section);
    const QString foldedName = fold(name);
    m_pending.removeIf([&](const Pending &p) {
        return fold(p.section) == foldedSection && fold(p.entry.name) == foldedName;
    });
    m_pending.append({section, entry});
    if (!save())
        return false;
    m_pending.clear();
    return true;
}

RegFileBackend::FileStamp RegFileBackend::stampNow() const
{
    const QFileInfo info(m_filePath);
    if (!info.isFile())
        return {};
    return {true, info.size(), info.lastModified()};
}

void RegFileBackend::recheckIfDue()
{
    if (m_sinceCheck.isValid() && m_sinceCheck.elapsed() < m_recheckMs)
        return;
    m_sinceCheck.start();
    if (stampNow() != m_stamp)
        syncFromDisk();
}

void RegFileBackend::syncFromDisk()
{
    m_sinceCheck.start();
    m_stamp = stampNow();
    if (!m_stamp.exists)
        return; // nothing (yet, or any more) on disk: what is in memory stays
    QFile file(m_filePath);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError || bytes == m_diskBytes)
        return;
    int unreadable = 0;
    Document doc = parse(bytes, &unreadable);
    if (unreadable > 0)
        keepDamagedCopy(bytes, unreadable);
    for (const Pending &p : std::as_const(m_pending))
        doc.set(p.section, p.entry);
    m_doc = std::move(doc);
    m_diskBytes = bytes;
}

bool RegFileBackend::save()
{
    const QByteArray bytes = serialise(m_doc);
    const QFileInfo info(m_filePath);
    QString error;
    if (!QDir().mkpath(info.absolutePath()))
        error = QStringLiteral("cannot create the folder %1").arg(info.absolutePath());
    else
        WriteFileSafely(m_filePath, bytes, &error);

    if (!error.isEmpty()) {
        if (error != m_lastError) { // once per new problem, not once per write
            qCWarning(lcSettingsFile, "Settings not saved to %s: %s", qUtf8Printable(m_filePath),
                      qUtf8Printable(error));
            report(QStringLiteral("Vantora cannot save its settings to %1 (%2). Changes made now "
                                  "last only until Vantora ends.")
                       .arg(QDir::toNativeSeparators(m_filePath), error));
        }
        m_lastError = error;
        return false;
    }
    m_lastError.clear();
    m_diskBytes = bytes;
    m_stamp = stampNow();
    return true;
}

void RegFileBackend::keepDamagedCopy(const QByteArray &bytes, int unreadable)
{
    if (bytes == m_keptDamaged)
        return;
    m_keptDamaged = bytes;
    bool alreadyKept = false;
    const QString copyPath = damagedCopyPath(m_filePath, bytes, &alreadyKept);
    const QString file = QDir::toNativeSeparators(m_filePath);
    if (!alreadyKept) {
        QString error;
        if (!WriteFileSafely(copyPath, bytes, &error)) {
            report(QStringLiteral("Part of the settings file %1 could not be read (%2 unreadable "
                                  "lines), and no copy of it could be kept (%3). Settings that "
                                  "could not be read are back at their defaults.")
                       .arg(file)
                       .arg(unreadable)
                       .arg(error));
            return;
        }
    }
    report(QStringLiteral("Part of the settings file %1 could not be read (%2 unreadable lines). "
                          "The file as it was is kept as %3; settings that could not be read are "
                          "back at their defaults.")
               .arg(file)
               .arg(unreadable)
               .arg(QDir::toNativeSeparators(copyPath)));
}

void RegFileBackend::report(const QString &message)
{
    if (m_reporter)
        m_reporter(message);
}

RegFileBackend::Document RegFileBackend::parse(const QByteArray &bytes, int *unreadable)
{
    Document doc;
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
        if (section.isEmpty() || !parseValueLine(line, doc, section))
            ++dropped;
    }
    if (unreadable)
        *unreadable = dropped;
    return doc;
}

bool RegFileBackend::parseValueLine(const QString &line, Document &doc, const QString &section)
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
    doc.set(section, entry);
    return true;
}

// As the registry editor writes its exports, so that one imports this file unchanged: UTF-16LE
// with a byte-order mark and CR LF line ends (an 8-bit file would be read in the ANSI code page).
QByteArray RegFileBackend::serialise(const Document &doc)
{
    const QLatin1String newline("\r\n");
    QString out = kHeader + newline + newline;
    for (const Section &section : doc.sections) {
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

RegFileBackend::Section &RegFileBackend::Document::section(const QString &name)
{
    const QString key = fold(name);
    auto it = index.constFind(key);
    if (it != index.constEnd())
        return sections[*it];
    index.insert(key, int(sections.size()));
    sections.append(Section{name, {}, {}});
    return sections.last();
}

const RegFileBackend::Entry *RegFileBackend::Document::find(const QString &sectionName,
                                                            const QString &name) const
{
    const auto s = index.constFind(fold(sectionName));
    if (s == index.constEnd())
        return nullptr;
    const Section &sec = sections.at(*s);
    const auto e = sec.index.constFind(fold(name));
    return e == sec.index.constEnd() ? nullptr : &sec.entries.at(*e);
}

bool RegFileBackend::Document::set(const QString &sectionName, const Entry &entry)
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
