#include "notes/rtf_tokenizer.h"

#include <algorithm>
#include <limits>

namespace {

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Longer names or numbers are damage; reading stops there so the rest becomes text.
constexpr qsizetype kLongestWord = 32;
constexpr qsizetype kLongestNumber = 11;

} // namespace

RtfTokenizer::RtfTokenizer(QByteArrayView data) : m_data(data) {}

RtfTokenizer::Token RtfTokenizer::next()
{
    while (m_pos < m_data.size()) {
        const qsizetype start = m_pos;
        const char c = m_data[m_pos];
        if (c == '\r' || c == '\n' || c == '\0') {
            ++m_pos;
            continue;
        }
        Token token;
        token.offset = start;
        if (c == '{') {
            ++m_pos;
            token.type = Type::GroupStart;
            return token;
        }
        if (c == '}') {
            ++m_pos;
            token.type = Type::GroupEnd;
            return token;
        }
        if (c == '\\')
            return readControl(start);
        return readText(start);
    }
    Token end;
    end.offset = m_pos;
    return end;
}

RtfTokenizer::Token RtfTokenizer::readText(qsizetype start)
{
    qsizetype end = start;
    while (end < m_data.size()) {
        const char c = m_data[end];
        if (c == '{' || c == '}' || c == '\\' || c == '\r' || c == '\n' || c == '\0')
            break;
        ++end;
    }
    m_pos = end;
    Token token;
    token.type = Type::Text;
    token.offset = start;
    token.word = m_data.sliced(start, end - start);
    return token;
}

RtfTokenizer::Token RtfTokenizer::readControl(qsizetype start)
{
    Token token;
    token.offset = start;
    m_pos = start + 1;
    if (m_pos >= m_data.size()) {
        token.type = Type::Symbol;
        token.symbol = '\\';
        return token;
    }
    const char c = m_data[m_pos];
    if (!isLetter(c)) {
        ++m_pos;
        if (c == '\'') {
            const int high = m_pos < m_data.size() ? hexValue(m_data[m_pos]) : -1;
            const int low = m_pos + 1 < m_data.size() ? hexValue(m_data[m_pos + 1]) : -1;
            if (high >= 0 && low >= 0) {
                m_pos += 2;
                token.type = Type::HexByte;
                token.symbol = char(high * 16 + low);
                return token;
            }
        }
        token.type = Type::Symbol;
        token.symbol = c;
        return token;
    }
    const qsizetype nameStart = m_pos;
    while (m_pos < m_data.size() && isLetter(m_data[m_pos]) && m_pos - nameStart < kLongestWord)
        ++m_pos;
    token.type = Type::Word;
    token.word = m_data.sliced(nameStart, m_pos - nameStart);

    bool negative = false;
    if (m_pos + 1 < m_data.size() && m_data[m_pos] == '-' && isDigit(m_data[m_pos + 1])) {
        negative = true;
        ++m_pos;
    }
    const qsizetype digitsStart = m_pos;
    qint64 value = 0;
    while (m_pos < m_data.size() && isDigit(m_data[m_pos])) {
        if (m_pos - digitsStart < kLongestNumber)
            value = value * 10 + (m_data[m_pos] - '0');
        ++m_pos;
    }
    if (m_pos > digitsStart) {
        token.hasParameter = true;
        value = negative ? -value : value;
        value = std::clamp<qint64>(value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
        token.parameter = int(value);
    }
    if (m_pos < m_data.size() && m_data[m_pos] == ' ')
        ++m_pos; // the delimiting space belongs to the control word
    return token;
}

QByteArrayView RtfTokenizer::readBinary(qint64 count)
{
    const qint64 available = m_data.size() - m_pos;
    const qsizetype taken = qsizetype(qBound<qint64>(0, count, available));
    const QByteArrayView bytes = m_data.sliced(m_pos, taken);
    m_pos += taken;
    return bytes;
}
