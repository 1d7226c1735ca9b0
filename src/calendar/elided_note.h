#pragma once

#include <QStringList>

class QFont;

// A day's note laid out in its cell: wrapped at word boundaries into lines no wider than
// `width`, as many as fit in `height`; when the note does not fit, the last line shown ends
// with an ellipsis. The note's own line breaks are kept.
QStringList ElidedNoteLines(const QString &note, const QFont &font, qreal width, qreal height);
