// Rich text as the user may open it from anywhere. Whatever the bytes: reading ends, and the
// document's text is valid UTF-16 (no surrogate without its partner).
#include "fuzz_check.h"
#include "notes/rtf_reader.h"

#include <QGuiApplication>
#include <QAbstractTextDocumentLayout>
#include <QTextDocument>

#include <cstddef>
#include <cstdint>

// Qt's font database and the font libraries keep their caches until the program ends, which
// the leak check at exit would report; leaks in the reader itself are still found.
extern "C" const char *__lsan_default_suppressions()
{
    return "leak:libQt6Gui.so\nleak:libfreetype.so\nleak:libfontconfig.so\nleak:libharfbuzz.so\n";
}

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // Documents need fonts, which need a GUI application; no window is ever shown.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication app(*argc, *argv);
    // Fonts and image handlers fill caches that live as long as the program; filling them
    // here keeps the leak check from taking them for leaks of the first input.
    QTextDocument document;
    RtfReader::read("{\\rtf1{\\fonttbl{\\f0 Arial;}}\\f0 text{\\pict\\wmetafile8 0100}"
                    "{\\pict\\pngblip 89504e47}}",
                    &document);
    document.documentLayout()->documentSize();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    QTextDocument document;
    const RtfReadResult result = RtfReader::read(input, &document);
    FUZZ_CHECK(result.ok || !result.error.isEmpty());
    FUZZ_CHECK(document.toRawText().isValidUtf16());
    return 0;
}
