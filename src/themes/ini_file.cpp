#include "themes/ini_file.h"

#include <QFile>
#include <QSaveFile>
#include <QStringDecoder>

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

} // namespace

IniFile::IniFile(const QString &path) : m_path(path) {}

bool IniFile::load()
{
    m_lines.clear();
    QFile file(m_path);
    m_exists = file.exists();
    if (!m_exists)
        return true;
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8(bytes);
    // Files written by older 8-bit tools are not UTF-8; read them as Latin-1 and write them
    // back the same way.
    m_latin1 = utf8.hasError();
    if (m_latin1)
        text = QString::fromLatin1(bytes);
    m_newline = text.contains(QLatin1String("\r\n")) || !text.contains(QLatin1Char('\n'))
                    ? QStringLiteral("\r\n")
                    : QStringLiteral("\n");
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    m_lines = text.split(QLatin1Char('\n'));
    if (!m_lines.isEmpty() && m_lines.back().isEmpty())
        m_lines.removeLast(); // the final line break
    return true;
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
            m_lines.append(QString());
        m_lines.append(QLatin1Char('[') + section.trimmed() + QLatin1Char(']'));
        m_lines.append(line);
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
    m_lines.insert(insertAt, line);
}

bool IniFile::save() const
{
    QString text;
    for (const QString &line : m_lines)
        text += line + m_newline;
    bool fitsLatin1 = m_latin1;
    if (fitsLatin1) {
        for (const QChar c : text) {
            if (c.unicode() > 0xFF) {
                fitsLatin1 = false;
                break;
            }
        }
    }
    QSaveFile file(m_path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(fitsLatin1 ? text.toLatin1() : text.toUtf8());
    return file.commit();
}
