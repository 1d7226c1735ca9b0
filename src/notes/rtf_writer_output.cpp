#include "notes/rtf_writer_output.h"

#include <array>

namespace {

// Readers ignore line breaks outside text, so long lines are broken for tools that cannot
// cope with them; text lines may run a little longer to end before a space.
constexpr qsizetype kLineLength = 200;
constexpr qsizetype kLongestLine = 250;
constexpr qsizetype kHexBytesPerLine = 64;

const char *const kHexDigits = "0123456789abcdef";

// Windows-1252 bytes 0x80-0x9f and the characters they stand for (0 where the byte is unused).
constexpr std::array<char16_t, 32> kWindows1252High = {
    0x20ac, 0,      0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017d, 0,      0,      0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0,      0x017e, 0x0178};

// The Windows-1252 byte of a character outside ASCII, or 0 when it has none.
unsigned char windows1252Byte(char16_t c)
{
    if (c >= 0xa0 && c <= 0xff)
        return static_cast<unsigned char>(c);
    for (std::size_t i = 0; i < kWindows1252High.size(); ++i) {
        if (kWindows1252High[i] == c)
            return static_cast<unsigned char>(0x80 + i);
    }
    return 0;
}

void appendNumber(QByteArray &bytes, int value)
{
    char digits[12];
    int n = 0;
    unsigned magnitude = value < 0 ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
    do {
        digits[n++] = static_cast<char>('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    if (value < 0)
        bytes.append('-');
    while (n > 0)
        bytes.append(digits[--n]);
}

void appendByteEscape(QByteArray &bytes, int value)
{
    bytes.append("\\'", 2).append(kHexDigits[(value >> 4) & 0xf]).append(kHexDigits[value & 0xf]);
}

} // namespace

RtfWriterOutput::RtfWriterOutput(qsizetype expectedSize)
{
    m_bytes.reserve(expectedSize);
}

void RtfWriterOutput::newLine()
{
    // A line break ends a control word as well as a space would, and is itself ignored.
    m_bytes.append("\r\n", 2);
    m_lineStart = m_bytes.size();
    m_delimiterPending = false;
}

void RtfWriterOutput::startToken()
{
    if (column() >= kLineLength)
        newLine();
    m_delimiterPending = false;
}

void RtfWriterOutput::startText()
{
    if (m_delimiterPending) {
        m_bytes.append(' ');
        m_delimiterPending = false;
    }
}

void RtfWriterOutput::openGroup()
{
    startToken();
    m_bytes.append('{');
}

void RtfWriterOutput::closeGroup()
{
    startToken();
    m_bytes.append('}');
}

void RtfWriterOutput::controlWord(const char *word)
{
    startToken();
    m_bytes.append('\\').append(word);
    m_delimiterPending = true;
}

void RtfWriterOutput::controlWord(const char *word, int value)
{
    startToken();
    m_bytes.append('\\').append(word);
    appendNumber(m_bytes, value);
    m_delimiterPending = true;
}

void RtfWriterOutput::openIgnorableGroup(const char *word)
{
    openGroup();
    m_bytes.append("\\*");
    controlWord(word);
}

void RtfWriterOutput::byteEscape(int value)
{
    startToken();
    appendByteEscape(m_bytes, value);
}

void RtfWriterOutput::punctuation(char symbol)
{
    m_delimiterPending = false;
    m_bytes.append(symbol);
}

void RtfWriterOutput::text(QStringView text)
{
    for (const QChar c : text)
        textCharacter(c.unicode());
}

void RtfWriterOutput::textCharacter(char16_t c)
{
    if (c >= 0x20 && c < 0x7f && c != '\\' && c != '{' && c != '}') {
        startText();
        if ((c == ' ' && column() >= kLineLength) || column() >= kLongestLine)
            newLine();
        m_bytes.append(static_cast<char>(c));
        return;
    }
    switch (c) {
    case '\\':
    case '{':
    case '}':
        startToken();
        m_bytes.append('\\').append(static_cast<char>(c));
        return;
    case '\t':
        controlWord("tab");
        return;
    case 0x2028:
        controlWord("line");
        return;
    default:
        if (c >= 0x80)
            unicodeEscape(c);
        // Other control characters have no place in a paragraph's text.
        return;
    }
}

void RtfWriterOutput::unicodeEscape(char16_t c)
{
    startToken();
    // \u takes a signed 16-bit number; surrogates are written one code unit at a time.
    m_bytes.append("\\u", 2);
    appendNumber(m_bytes, static_cast<int16_t>(c));
    const unsigned char fallback = windows1252Byte(c);
    if (fallback == 0) {
        m_bytes.append('?');
        return;
    }
    // Straight after the \u, so that no line break comes between it and its fallback.
    appendByteEscape(m_bytes, fallback);
}

void RtfWriterOutput::hex(const QByteArray &data)
{
    // Pictures make up most of a large file: the digits go straight into the buffer.
    const qsizetype size = data.size();
    const qsizetype lines = (size + kHexBytesPerLine - 1) / kHexBytesPerLine;
    const qsizetype start = m_bytes.size();
    m_bytes.resize(start + size * 2 + (lines + 1) * 2);
    char *out = m_bytes.data() + start;
    const auto *bytes = reinterpret_cast<const unsigned char *>(data.constData());
    for (qsizetype i = 0; i < size; ++i) {
        if (i % kHexBytesPerLine == 0) {
            *out++ = '\r';
            *out++ = '\n';
        }
        *out++ = kHexDigits[bytes[i] >> 4];
        *out++ = kHexDigits[bytes[i] & 0xf];
    }
    *out++ = '\r';
    *out++ = '\n';
    m_lineStart = m_bytes.size();
    m_delimiterPending = false;
}

void RtfWriterOutput::verbatim(const QByteArray &bytes)
{
    startToken();
    m_bytes.append(bytes);
    const qsizetype lastBreak = bytes.lastIndexOf('\n');
    if (lastBreak >= 0)
        m_lineStart = m_bytes.size() - bytes.size() + lastBreak + 1;
}
