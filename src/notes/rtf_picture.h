#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QSize>
#include <QString>
#include <QTextImageFormat>

class QTextDocument;

// One {\pict ...} group of an RTF file: its kind, sizes and data. PNG and JPEG data becomes a
// document resource holding the original bytes; every other kind, and data that does not
// decode, becomes a placeholder image and keeps the whole original group for the writer.
class RtfPicture
{
public:
    // Takes a control word of the picture group; false when it is not one of the picture's.
    bool applyWord(QByteArrayView word, int value, bool hasValue);
    // Hex digits of the picture data; anything else (blanks) is skipped.
    void appendHex(QByteArrayView hex);
    void appendBinary(QByteArrayView bytes) { m_data.append(bytes); }

    // Adds the picture to the document as the resource `name` and returns the format that
    // shows it. `group` is the picture's complete "{\pict ...}" text.
    QTextImageFormat addTo(QTextDocument *document, const QString &name, QByteArrayView group) const;

private:
    enum class Kind { Other, Png, Jpeg };

    QSize ownPixelSize() const;
    QSizeF displaySize(QSize decodedSize) const;

    Kind m_kind = Kind::Other;
    int m_width = 0;  // \picw: pixels for bitmaps, hundredths of a millimetre for metafiles
    int m_height = 0;
    int m_goalWidth = 0; // \picwgoal, twips
    int m_goalHeight = 0;
    int m_scaleX = 100; // percent
    int m_scaleY = 100;
    QByteArray m_data;
    int m_pendingNibble = -1;
};
