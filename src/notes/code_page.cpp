#include "notes/code_page.h"

#include <QStringDecoder>

#include <array>

namespace {

// Windows-1252 bytes 0x80-0x9F; the rest of the page is Latin-1.
constexpr std::array<char16_t, 32> kWindows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

constexpr char kUnencodable = '?';

// The names Qt (through ICU) may know a page by, best match first: "windows-31j" is
// Microsoft's Shift-JIS with its extensions, plain "Shift_JIS" the fallback.
struct PageNames
{
    int codePage;
    const char *names[2];
};

constexpr PageNames kPageNames[] = {
    {1250, {"windows-1250", nullptr}}, {1251, {"windows-1251", nullptr}},
    {1253, {"windows-1253", nullptr}}, {1254, {"windows-1254", nullptr}},
    {1255, {"windows-1255", nullptr}}, {1256, {"windows-1256", nullptr}},
    {1257, {"windows-1257", nullptr}}, {1258, {"windows-1258", nullptr}},
    {874, {"windows-874", "TIS-620"}}, {437, {"IBM437", "cp437"}},
    {850, {"IBM850", "cp850"}},        {10000, {"macintosh", "x-mac-roman"}},
    {932, {"windows-31j", "Shift_JIS"}}, {936, {"GBK", "windows-936"}},
    {949, {"windows-949", "EUC-KR"}},  {950, {"windows-950", "Big5"}},
};

const PageNames *NamesOf(int codePage)
{
    for (const PageNames &entry : kPageNames) {
        if (entry.codePage == codePage)
            return &entry;
    }
    return nullptr;
}

// True when the last byte is a lead byte whose second byte is missing.
bool EndsInsideCharacter(const QByteArray &bytes, int codePage)
{
    qsizetype i = 0;
    while (i < bytes.size())
        i += IsLeadByte(codePage, uchar(bytes[i])) ? 2 : 1;
    return i > bytes.size();
}

// ICU marks a broken double-byte sequence with the control character SUB (U+001A) rather than
// U+FFFD. When the input holds no SUB byte of its own, every SUB in the output is such a mark.
void MarkBrokenSequences(const QByteArray &bytes, int codePage, QString *text)
{
    if (!bytes.contains('\x1a'))
        text->replace(QChar(0x1A), QChar::ReplacementCharacter);
    if (EndsInsideCharacter(bytes, codePage))
        text->append(QChar::ReplacementCharacter);
}

bool DecodeWithQt(const QByteArray &bytes, int codePage, QString *text)
{
    const PageNames *page = NamesOf(codePage);
    if (!page)
        return false;
    for (const char *name : page->names) {
        if (!name)
            break;
        QStringDecoder decoder(name, QStringConverter::Flag::Stateless);
        if (!decoder.isValid())
            continue;
        *text = decoder.decode(bytes);
        if (IsDoubleByteCodePage(codePage))
            MarkBrokenSequences(bytes, codePage, text);
        return true;
    }
    return false;
}

char EncodeWindows1252Char(char32_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return char(c);
    for (int i = 0; i < int(kWindows1252High.size()); ++i) {
        if (kWindows1252High[i] == c)
            return char(0x80 + i);
    }
    return 0;
}

} // namespace

QString DecodeCodePage(const QByteArray &bytes, int codePage)
{
    if (codePage == kSymbolCodePage)
        return QString::fromLatin1(bytes);
    if (codePage == 65001)
        return QString::fromUtf8(bytes);
    QString text;
    if (codePage != kWindows1252 && DecodeWithQt(bytes, codePage, &text))
        return text;
    return DecodeWindows1252(bytes);
}

bool IsDoubleByteCodePage(int codePage)
{
    return codePage == 932 || codePage == 936 || codePage == 949 || codePage == 950;
}

bool IsLeadByte(int codePage, uchar byte)
{
    switch (codePage) {
    case 932: return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC);
    case 936:
    case 949:
    case 950: return byte >= 0x81 && byte <= 0xFE;
    default: return false;
    }
}

int CodePageForCharset(int rtfCharset)
{
    switch (rtfCharset) {
    case 0: return kWindows1252;
    case 2: return kSymbolCodePage;
    case 77: return 10000;
    case 128: return 932;
    case 129: return 949;
    case 134: return 936;
    case 136: return 950;
    case 161: return 1253;
    case 162: return 1254;
    case 163: return 1258;
    case 177: return 1255;
    case 178: return 1256;
    case 186: return 1257;
    case 204: return 1251;
    case 222: return 874;
    case 238: return 1250;
    default: return -1;
    }
}

QString DecodeWindows1252(const QByteArray &bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    QChar *out = text.data();
    for (const char byte : bytes) {
        const uchar b = uchar(byte);
        *out++ = (b >= 0x80 && b < 0xA0) ? QChar(kWindows1252High[b - 0x80]) : QChar(b);
    }
    return text;
}

QByteArray EncodeWindows1252(const QString &text, bool *lossless)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    bool kept = true;
    for (qsizetype i = 0; i < text.size(); ++i) {
        char32_t c = text[i].unicode();
        // A surrogate pair is one character and becomes one '?'.
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            c = QChar::surrogateToUcs4(text[i], text[i + 1]);
            ++i;
        }
        const char byte = EncodeWindows1252Char(c);
        if (byte == 0 && c != 0) {
            kept = false;
            bytes.append(kUnencodable);
        } else {
            bytes.append(byte);
        }
    }
    if (lossless)
        *lossless = kept;
    return bytes;
}
