#include "notes/plain_text_file.h"

#include "notes/code_page.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace {

const QByteArray kUtf8Bom("\xEF\xBB\xBF", 3);
const QByteArray kUtf16LeBom("\xFF\xFE", 2);
const QByteArray kUtf16BeBom("\xFE\xFF", 2);

// Our own byte-order mark handling: the converters must neither drop a second mark that
// belongs to the text nor add one.
constexpr auto kConverterFlags = QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom;

// The text of `bytes` in a UTF encoding; *valid is false when some bytes were not valid.
QString DecodeUtf(const QByteArray &bytes, QStringConverter::Encoding encoding, bool *valid = nullptr)
{
    // The last byte of an odd-sized UTF-16 file is half a character.
    const bool oddUtf16 = encoding != QStringConverter::Utf8 && bytes.size() % 2 != 0;
    QStringDecoder decoder(encoding, kConverterFlags);
    QString text = decoder.decode(oddUtf16 ? bytes.chopped(1) : bytes);
    if (oddUtf16)
        text.append(QChar::ReplacementCharacter);
    if (valid)
        *valid = !decoder.hasError();
    return text;
}

QByteArray EncodeUtf(const QString &text, QStringConverter::Encoding encoding)
{
    QStringEncoder encoder(encoding, kConverterFlags);
    return encoder.encode(text);
}

// The most frequent line end of `text`; the platform's when there is none.
LineEnding DetectLineEnding(const QString &text)
{
    qsizetype crlf = 0, lf = 0, cr = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'\r') {
            const bool pair = i + 1 < text.size() && text[i + 1] == u'\n';
            pair ? ++crlf : ++cr;
            i += pair ? 1 : 0;
        } else if (text[i] == u'\n') {
            ++lf;
        }
    }
    if (crlf == 0 && lf == 0 && cr == 0)
        return PlatformLineEnding();
    if (crlf >= lf && crlf >= cr)
        return LineEnding::CrLf;
    return lf >= cr ? LineEnding::Lf : LineEnding::Cr;
}

// Every kind of line break as "\n".
QString WithNewlines(QString text)
{
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(u'\r', u'\n');
    text.replace(QChar::ParagraphSeparator, u'\n');
    text.replace(QChar::LineSeparator, u'\n');
    return text;
}

QString WithLineEnding(QString text, LineEnding ending)
{
    text = WithNewlines(std::move(text));
    if (ending == LineEnding::CrLf)
        text.replace(u'\n', QLatin1String("\r\n"));
    else if (ending == LineEnding::Cr)
        text.replace(u'\n', u'\r');
    return text;
}

} // namespace

LineEnding PlatformLineEnding()
{
#ifdef Q_OS_WIN
    return LineEnding::CrLf;
#else
    return LineEnding::Lf;
#endif
}

PlainTextFile::PlainTextFile()
    : m_lineEnding(PlatformLineEnding())
{
}

PlainTextFile PlainTextFile::fromBytes(const QByteArray &bytes)
{
    PlainTextFile file;
    QString raw;
    file.m_byteOrderMark = true;
    if (bytes.startsWith(kUtf8Bom)) {
        raw = DecodeUtf(bytes.mid(kUtf8Bom.size()), QStringConverter::Utf8);
    } else if (bytes.startsWith(kUtf16LeBom)) {
        file.m_encoding = TextEncoding::Utf16LittleEndian;
        raw = DecodeUtf(bytes.mid(kUtf16LeBom.size()), QStringConverter::Utf16LE);
    } else if (bytes.startsWith(kUtf16BeBom)) {
        file.m_encoding = TextEncoding::Utf16BigEndian;
        raw = DecodeUtf(bytes.mid(kUtf16BeBom.size()), QStringConverter::Utf16BE);
    } else {
        file.m_byteOrderMark = false;
        bool validUtf8 = false;
        raw = DecodeUtf(bytes, QStringConverter::Utf8, &validUtf8);
        if (!validUtf8) {
            file.m_encoding = TextEncoding::Windows1252;
            raw = DecodeWindows1252(bytes);
        }
    }
    file.m_lineEnding = DetectLineEnding(raw);
    file.m_text = WithNewlines(raw);
    return file;
}

QByteArray PlainTextFile::toBytes(bool *lossless) const
{
    const QString text = WithLineEnding(m_text, m_lineEnding);
    if (lossless)
        *lossless = true;
    switch (m_encoding) {
    case TextEncoding::Windows1252:
        return EncodeWindows1252(text, lossless);
    case TextEncoding::Utf16LittleEndian:
        return (m_byteOrderMark ? kUtf16LeBom : QByteArray()) + EncodeUtf(text, QStringConverter::Utf16LE);
    case TextEncoding::Utf16BigEndian:
        return (m_byteOrderMark ? kUtf16BeBom : QByteArray()) + EncodeUtf(text, QStringConverter::Utf16BE);
    case TextEncoding::Utf8:
        break;
    }
    return (m_byteOrderMark ? kUtf8Bom : QByteArray()) + EncodeUtf(text, QStringConverter::Utf8);
}

bool PlainTextFile::canEncodeLosslessly() const
{
    if (m_encoding != TextEncoding::Windows1252)
        return true;
    bool lossless = true;
    EncodeWindows1252(m_text, &lossless);
    return lossless;
}

void PlainTextFile::switchToUtf8()
{
    m_encoding = TextEncoding::Utf8;
    m_byteOrderMark = false;
}

QString PlainTextFile::encodingName(TextEncoding encoding)
{
    switch (encoding) {
    case TextEncoding::Utf16LittleEndian: return QStringLiteral("UTF-16 LE");
    case TextEncoding::Utf16BigEndian: return QStringLiteral("UTF-16 BE");
    case TextEncoding::Windows1252: return QStringLiteral("Windows-1252");
    case TextEncoding::Utf8: break;
    }
    return QStringLiteral("UTF-8");
}
