#pragma once

// Where the start-up time goes: with QT_LOGGING_RULES="vantora.startup=true" each step of the
// start prints how many milliseconds have passed since main() began, and how many of them the
// main thread spent working (from the start of the process, libraries loaded), e.g.
//   vantora.startup:   12.4 ms  ( 14.0 ms working)  settings read
// Off by default; a step costs one clock read when nobody is listening.
namespace StartupTrace {
// Starts the clock; main() calls it first thing.
void begin();
// Logs a finished step under the category "vantora.startup".
void mark(const char *step);
} // namespace StartupTrace
