// The settings file as another program or a hand edit may leave it. Whatever the bytes, what
// the program writes back reads cleanly, holds every value that was read, and is written the
// same way again.
#include "core/platform/reg_file_document.h"
#include "fuzz_check.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const RegFileDocument read = RegFileDocument::fromBytes(input);
    const QByteArray written = read.toBytes();

    int unreadable = -1;
    const RegFileDocument reread = RegFileDocument::fromBytes(written, &unreadable);
    FUZZ_CHECK(unreadable == 0);
    FUZZ_CHECK(reread.toBytes() == written);
    FUZZ_CHECK(reread.sections().size() == read.sections().size());
    for (const RegFileDocument::Section &section : read.sections()) {
        for (const RegFileDocument::Entry &entry : section.entries) {
            const RegFileDocument::Entry *again = reread.find(section.name, entry.name);
            FUZZ_CHECK(again != nullptr);
            FUZZ_CHECK(again->value == entry.value);
            FUZZ_CHECK(again->raw == entry.raw);
        }
    }
    return 0;
}
