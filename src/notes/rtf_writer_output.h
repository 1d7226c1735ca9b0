#pragma once

#include <QByteArray>
#include <QStringView>

// The bytes of an RTF file as they are written: braces, control words, escaped text, hex data
// and verbatim groups, all 7-bit ASCII.
//
// A control word needs a delimiting space only when text follows it; the space is written
// lazily, just before that text. Lines are broken once they grow long, and only where every
// reader ignores the break: before a control word, a control symbol or a brace, before a
// space in text (or, in a very long word, between two characters), and between hex digit
// pairs. A break never falls between a control word and the space that ends it.
class RtfWriterOutput
{
public:
    explicit RtfWriterOutput(qsizetype expectedSize = 0);

    void openGroup();
    void closeGroup();
    // "\word" and "\wordN".
    void controlWord(const char *word);
    void controlWord(const char *word, int value);
    // "{\*\word": a destination that readers which do not know it skip.
    void openIgnorableGroup(const char *word);
    // "\'hh": one byte given in hex.
    void byteEscape(int value);
    // ASCII punctuation that ends a control word by itself (";" in the font table).
    void punctuation(char symbol);
    // Text with {, } and \ escaped, tabs as \tab, U+2028 as \line, every other character
    // outside ASCII as \uN with a one-byte fallback, and other control characters dropped.
    void text(QStringView text);
    // Binary data as hex digits on lines of their own.
    void hex(const QByteArray &data);
    // Bytes written unchanged (a group kept from the file that was read).
    void verbatim(const QByteArray &bytes);
    void newLine();

    QByteArray take() { return std::move(m_bytes); }

private:
    void startToken();
    void startText();
    void textCharacter(char16_t c);
    void unicodeEscape(char16_t c);
    qsizetype column() const { return m_bytes.size() - m_lineStart; }

    QByteArray m_bytes;
    qsizetype m_lineStart = 0;
    bool m_delimiterPending = false;
};
