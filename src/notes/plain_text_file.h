#pragma once

#include <QByteArray>
#include <QString>

enum class TextEncoding { Utf8, Utf16LittleEndian, Utf16BigEndian, Windows1252 };
enum class LineEnding { CrLf, Lf, Cr };

// CR LF on Windows, LF elsewhere: the line end of a new file and of a file without any.
LineEnding PlatformLineEnding();

// A plain-text note: its text, with "\n" between lines, and the way its file stores it, so
// that saving writes the encoding, the byte-order mark and the line ends the file came with.
// Reading then writing an unchanged file gives back the same bytes, as long as its line ends
// are all alike.
//
// Reading tells the encoding from the bytes: a UTF-8 or UTF-16 byte-order mark; else valid
// UTF-8 (pure ASCII included, which reads the same in Windows-1252); else Windows-1252, which
// takes any bytes, so a binary file still opens. Mixed line ends are written back as the
// most frequent of them.
class PlainTextFile
{
public:
    // A new, empty note: UTF-8 without byte-order mark, the platform's line ends.
    PlainTextFile();

    static PlainTextFile fromBytes(const QByteArray &bytes);

    QString text() const { return m_text; }
    // Takes the text as QTextDocument gives it; paragraph and line separators (U+2029,
    // U+2028) and any CR LF or CR count as line breaks.
    void setText(const QString &text) { m_text = text; }

    TextEncoding encoding() const { return m_encoding; }
    bool hasByteOrderMark() const { return m_byteOrderMark; }
    LineEnding lineEnding() const { return m_lineEnding; }

    // The bytes to store; *lossless (when given) is false when a character of the text had
    // no place in the encoding (only Windows-1252 can lack one).
    QByteArray toBytes(bool *lossless = nullptr) const;
    bool canEncodeLosslessly() const;

    // From now on the note is stored as UTF-8 (without byte-order mark, same line ends): what
    // the editor does when the text no longer fits in Windows-1252.
    void switchToUtf8();

    // "UTF-8", "UTF-16 LE", "UTF-16 BE" or "Windows-1252", for messages.
    static QString encodingName(TextEncoding encoding);

private:
    QString m_text;
    TextEncoding m_encoding = TextEncoding::Utf8;
    bool m_byteOrderMark = false;
    LineEnding m_lineEnding;
};
