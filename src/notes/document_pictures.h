#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

class QTextCursor;
class QTextDocument;

// Pictures embedded in a notes document: each is an image resource of the document under a
// "rtfpicture:<n>" name, held as its encoded bytes so that saving writes them back unchanged.
namespace DocumentPictures {

// The widest a newly inserted picture is shown; larger ones are scaled down to it (the
// picture itself keeps all its pixels).
constexpr int kWidestInsertedPicture = 640;

// Adds the encoded picture (PNG or JPEG bytes) as a resource under a name the document does
// not use yet, and returns that name.
QString AddPicture(QTextDocument *document, const QByteArray &encoded);

// Inserts a picture at the cursor as one undo step. PNG and JPEG files keep their own bytes;
// any other kind (BMP, GIF, a pasted image) is stored as PNG. False when there is nothing to
// insert (a null image).
bool InsertPicture(QTextCursor &cursor, const QImage &image, const QByteArray &fileBytes = QByteArray());

// Moves every picture of `source` into `target` under fresh names, renaming the references in
// `source`, so that its content can be inserted into `target` (pasting from another document).
void AdoptPictures(QTextDocument *source, QTextDocument *target);

} // namespace DocumentPictures
