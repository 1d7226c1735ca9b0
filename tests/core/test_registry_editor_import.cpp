// A settings file taken to Windows: the registry editor must import it with every value as the
// program wrote it. Checked with Wine's regedit, which reads files as the registry editor
// does (an 8-bit file in the ANSI code page, UTF-16 by its byte-order mark); skipped where
// Wine is not installed.
#include "core/platform/reg_file_backend.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTest>

namespace {

const QString kKey = QStringLiteral("SOFTWARE\\Vantora\\falc_SET\\Details");

struct Value
{
    Hive hive;
    QString key;
    QString name;
    SettingsValue value;
};

// Not among them: a text with a NUL inside. The file carries it (hex(1) bytes), but Wine's
// export and its reg tool both show a text only up to its first NUL, so they cannot tell
// whether the import kept the rest.
QList<Value> valuesToWrite()
{
    const auto text = [](const char *name, const QString &value) {
        return Value{Hive::CurrentUser, kKey, QString::fromUtf8(name), SettingsValue::fromText(value)};
    };
    return {
        text("Plain", QStringLiteral("BELL")),
        text("Café", QString::fromUtf8("Café ☕")),
        text("Beyond the basic plane", QString::fromUtf8("😀 ok")),
        text("Path", QStringLiteral("C:\\Users\\me \"quoted\"\\")),
        text("Lines", QStringLiteral("one\r\ntwo\nthree")),
        text("Tab", QStringLiteral("a\tb")),
        text("Empty", QString()),
        text("Long", QString(254, QLatin1Char('x'))),
        Value{Hive::CurrentUser, kKey, QStringLiteral("Count"), SettingsValue::fromNumber(0xabcdef01)},
        Value{Hive::CurrentUser, QStringLiteral("SOFTWARE\\Vantora\\Notes \\ Draft"),
              QStringLiteral(" spaced "), SettingsValue::fromText(QStringLiteral("x"))},
        Value{Hive::LocalMachine, QStringLiteral("Software\\Vantora Run"), QStringLiteral("Vantora"),
              SettingsValue::fromText(QStringLiteral("/usr/bin/vantora"))},
    };
}

QString windowsPath(const QString &path)
{
    return QStringLiteral("Z:") + QDir::toNativeSeparators(path).replace(QLatin1Char('/'), QLatin1Char('\\'));
}

// Wine's exports escape a quoted string's backslashes, quotes, line breaks and NULs.
QString unescapeWineString(QStringView quoted)
{
    QString out;
    for (qsizetype i = 0; i < quoted.size(); ++i) {
        const QChar c = quoted.at(i);
        if (c != QLatin1Char('\\') || i + 1 == quoted.size()) {
            out += c;
            continue;
        }
        const QChar next = quoted.at(++i);
        out += next == QLatin1Char('n')   ? QChar(QLatin1Char('\n'))
               : next == QLatin1Char('r') ? QChar(QLatin1Char('\r'))
               : next == QLatin1Char('0') ? QChar(0)
                                          : next;
    }
    return out;
}

// A hex(1) value's UTF-16LE bytes as text, less the terminator.
QString hexText(const QString &list)
{
    QByteArray bytes;
    for (const QString &part : list.split(QLatin1Char(',')))
        bytes.append(char(part.toUInt(nullptr, 16)));
    QString text(reinterpret_cast<const QChar *>(bytes.constData()), bytes.size() / 2);
    if (text.endsWith(QChar(0)))
        text.chop(1);
    return text;
}

// "name"="text" or "name"=dword:... from one line of an export; the name and value by reference.
bool readExportLine(const QString &line, QString *name, SettingsValue *value)
{
    static const QRegularExpression form(QStringLiteral("^\"((?:[^\"\\\\]|\\\\.)*)\"=(.*)$"));
    const QRegularExpressionMatch m = form.match(line);
    if (!m.hasMatch())
        return false;
    *name = unescapeWineString(m.capturedView(1));
    const QString data = m.captured(2);
    if (data.startsWith(QLatin1String("dword:")))
        *value = SettingsValue::fromNumber(data.mid(6).toUInt(nullptr, 16));
    else if (data.startsWith(QLatin1Char('"')) && data.endsWith(QLatin1Char('"')))
        *value = SettingsValue::fromText(unescapeWineString(QStringView(data).mid(1, data.size() - 2)));
    else if (data.startsWith(QLatin1String("hex(1):")))
        *value = SettingsValue::fromText(hexText(data.mid(7)));
    else
        return false;
    return true;
}

// The lines of an export, with hex values that go on over several lines joined.
QStringList exportLines(const QString &text)
{
    QStringList lines;
    for (const QString &line : text.split(QStringLiteral("\r\n"))) {
        if (!lines.isEmpty() && lines.back().endsWith(QLatin1Char('\\')) &&
            line.startsWith(QLatin1Char(' '))) {
            lines.back().chop(1);
            lines.back() += line.trimmed();
        } else {
            lines << line;
        }
    }
    return lines;
}

} // namespace

class TestRegistryEditorImport : public QObject
{
    Q_OBJECT

private slots:
    void importsEveryValueUnchanged();

private:
    bool runWine(const QStringList &arguments);

    QProcessEnvironment m_environment;
};

bool TestRegistryEditorImport::runWine(const QStringList &arguments)
{
    QProcess wine;
    wine.setProcessEnvironment(m_environment);
    wine.setProcessChannelMode(QProcess::MergedChannels);
    wine.start(QStringLiteral("wine"), arguments);
    if (!wine.waitForFinished(240000)) {
        qWarning("wine %s did not finish", qPrintable(arguments.join(QLatin1Char(' '))));
        return false;
    }
    if (wine.exitCode() != 0)
        qWarning("wine %s: %s", qPrintable(arguments.join(QLatin1Char(' '))), wine.readAll().constData());
    return wine.exitStatus() == QProcess::NormalExit && wine.exitCode() == 0;
}

void TestRegistryEditorImport::importsEveryValueUnchanged()
{
    if (QStandardPaths::findExecutable(QStringLiteral("wine")).isEmpty())
        QSKIP("Wine is not installed (Debian package wine64)");
    TestHome home;
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("WINEPREFIX"), home.filePath(QStringLiteral("wine")));
    m_environment.insert(QStringLiteral("WINEDEBUG"), QStringLiteral("-all"));
    m_environment.remove(QStringLiteral("DISPLAY"));
    QVERIFY2(runWine({QStringLiteral("wineboot"), QStringLiteral("-i")}), "Wine could not set up its folder");

    const QString file = home.filePath(QStringLiteral("settings.reg"));
    const QList<Value> values = valuesToWrite();
    RegFileBackend backend(file);
    for (const Value &v : values)
        QVERIFY(backend.write(v.hive, v.key, v.name, v.value));

    QVERIFY(runWine({QStringLiteral("regedit"), QStringLiteral("/S"), windowsPath(file)}));
    QMap<QString, SettingsValue> imported; // "section|name" -> value
    for (const QString &root : {QStringLiteral("HKEY_CURRENT_USER\\SOFTWARE\\Vantora"),
                                QStringLiteral("HKEY_LOCAL_MACHINE\\Software\\Vantora Run")}) {
        const QString exported = home.filePath(QStringLiteral("export.reg"));
        QFile::remove(exported);
        QVERIFY(runWine({QStringLiteral("regedit"), QStringLiteral("/E"), windowsPath(exported), root}));
        QFile in(exported);
        QVERIFY(in.open(QIODevice::ReadOnly));
        const QByteArray bytes = in.readAll();
        QVERIFY(bytes.startsWith("\xff\xfe"));
        // Code unit by code unit, so that nothing is replaced on the way.
        const QString text(reinterpret_cast<const QChar *>(bytes.constData() + 2), (bytes.size() - 2) / 2);
        QString section;
        for (const QString &line : exportLines(text)) {
            QString name;
            SettingsValue value;
            if (line.startsWith(QLatin1Char('[')) && line.endsWith(QLatin1Char(']')))
                section = line.mid(1, line.size() - 2);
            else if (readExportLine(line, &name, &value))
                imported.insert(section + QLatin1Char('|') + name, value);
        }
    }
    for (const Value &v : values) {
        const QString where = RegFileDocument::sectionName(v.hive, v.key) + QLatin1Char('|') + v.name;
        QVERIFY2(imported.contains(where), qPrintable(QStringLiteral("not imported: ") + where));
        QVERIFY2(imported.value(where) == v.value,
                 qPrintable(QStringLiteral("%1: imported \"%2\" (type %3)")
                                .arg(where, imported.value(where).text.toHtmlEscaped())
                                .arg(int(imported.value(where).type))));
    }
}

QTEST_GUILESS_MAIN(TestRegistryEditorImport)
#include "test_registry_editor_import.moc"
