// The update check's reply from the web site: whatever it holds, a version read from it is a
// finite number, so that no reply can announce an endless or undefined version.
#include "fuzz_check.h"
#include "shell/update_check.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray reply(reinterpret_cast<const char *>(data), qsizetype(size));
    const std::optional<double> version = UpdateCheck::parseVersion(reply);
    if (version)
        FUZZ_CHECK(std::isfinite(*version));
    return 0;
}
