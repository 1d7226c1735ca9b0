#pragma once

#include <cstdio>
#include <cstdlib>

// A property every input must keep. A broken one aborts, which the fuzzer reports as a
// finding and saves the input that broke it.
#define FUZZ_CHECK(condition)                                                                                \
    do {                                                                                                     \
        if (!(condition)) {                                                                                  \
            std::fprintf(stderr, "%s:%d: property broken: %s\n", __FILE__, __LINE__, #condition);            \
            std::abort();                                                                                    \
        }                                                                                                    \
    } while (false)
