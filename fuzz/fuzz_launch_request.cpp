// A request from a later launch, as the running copy reads it off its socket: anything of this
// user can write there. Whatever it holds, a request read from it names only windows the program
// has, and writing it out again gives the same windows back (document names may hold text JSON
// cannot carry, such as half a surrogate pair).
#include "fuzz_check.h"
#include "shell/launch_request.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray json(reinterpret_cast<const char *>(data), qsizetype(size));
    LaunchRequest request;
    if (!LaunchRequest::fromJson(json, &request))
        return 0;
    for (const QString &name : request.open)
        FUZZ_CHECK(LaunchRequest::targetNames().contains(name));
    LaunchRequest again;
    FUZZ_CHECK(LaunchRequest::fromJson(request.toJson(), &again));
    FUZZ_CHECK(again.open == request.open && again.hidden == request.hidden);
    FUZZ_CHECK(again.documents.size() == request.documents.size());
    return 0;
}
