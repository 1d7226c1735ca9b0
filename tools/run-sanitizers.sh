#!/bin/sh
# Builds the program and its tests with AddressSanitizer and UndefinedBehaviorSanitizer (clang,
# no recovery: the first report ends the test program) in build-sanitize/, runs every test and
# prints how many passed and how long it all took. Leaks are reported at each program's end.
#
#   tools/run-sanitizers.sh [ctest arguments, e.g. -R notes]
#
# Needs: clang (Debian), besides the usual build dependencies.
set -eu
cd "$(dirname "$0")/.."
build=build-sanitize
started=$(date +%s)

if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVANTORA_SANITIZE=ON -DVANTORA_BUILD_BENCH=OFF >/dev/null
fi
cmake --build "$build"
built=$(date +%s)

# Qt's own allocations that live until the process ends are not the program's leaks.
ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=1:abort_on_error=1:strict_init_order=1}
UBSAN_OPTIONS=${UBSAN_OPTIONS:-halt_on_error=1:print_stacktrace=1}
LSAN_OPTIONS=${LSAN_OPTIONS:-suppressions=$(pwd)/tools/sanitizer-suppressions.txt:print_suppressions=0}
export ASAN_OPTIONS UBSAN_OPTIONS LSAN_OPTIONS

status=0
ctest --test-dir "$build" --output-on-failure -j2 --timeout 600 "$@" || status=$?
finished=$(date +%s)
echo "sanitizers: build $((built - started)) s, tests $((finished - built)) s"
exit $status
