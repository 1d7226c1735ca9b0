#pragma once

#include <QByteArray>
#include <QByteArrayView>

// Splits RTF bytes into tokens: group braces, control words with their optional number,
// control symbols, escaped bytes (\'hh) and runs of plain text. Line ends in the text are
// dropped (they carry no meaning in RTF) and NUL bytes are ignored. Every call consumes at
// least one byte, so a loop over next() always ends.
class RtfTokenizer
{
public:
    enum class Type { End, GroupStart, GroupEnd, Word, Symbol, HexByte, Text };

    struct Token
    {
        Type type = Type::End;
        QByteArrayView word;  // control word name, or the text of a Text token
        int parameter = 0;    // number after a control word, clamped to the int range
        bool hasParameter = false;
        char symbol = 0;      // control symbol character, or the byte of a HexByte
        qsizetype offset = 0; // where the token starts in the input
    };

    explicit RtfTokenizer(QByteArrayView data);

    Token next();
    // Consumes up to `count` raw bytes (after \binN) and returns them; fewer when the data
    // ends first, which the caller reports.
    QByteArrayView readBinary(qint64 count);
    qsizetype position() const { return m_pos; }
    bool atEnd() const { return m_pos >= m_data.size(); }

private:
    Token readControl(qsizetype start);
    Token readText(qsizetype start);

    QByteArrayView m_data;
    qsizetype m_pos = 0;
};
