#!/bin/sh
# Builds the fuzz targets (clang, libFuzzer, AddressSanitizer, UndefinedBehaviorSanitizer) in
# build-fuzz/ and runs each for the given time, seeded from the program's own data, then prints
# executions and findings per target. A finding is an input saved under
# build-fuzz/fuzz-findings/<target>/ that crashed the parser or broke one of its properties.
#
#   tools/run-fuzzers.sh [seconds per target, default 60] [target ...]
#
# Needs: clang and libclang-rt-14-dev (Debian), besides the usual build dependencies.
set -eu
cd "$(dirname "$0")/.."
seconds=${1:-60}
[ $# -gt 0 ] && shift
build=build-fuzz

if [ ! -f "$build/CMakeCache.txt" ]; then
  cmake -S . -B "$build" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DVANTORA_FUZZ=ON -DVANTORA_BUILD_TESTS=OFF -DVANTORA_BUILD_BENCH=OFF >/dev/null
fi
targets=${*:-"fuzz_settings_file fuzz_preset_file fuzz_version_reply fuzz_rtf_reader fuzz_launch_request fuzz_weather_forecast"}
# shellcheck disable=SC2086
cmake --build "$build" --target $targets

# Seeds: what the program ships and writes, copied flat (libFuzzer reads one folder level).
seeds_for() {
  dir="$build/fuzz-seeds/$1"
  rm -rf "$dir" && mkdir -p "$dir"
  case $1 in
    fuzz_settings_file) cp fuzz/seeds/settings/* "$dir" ;;
    fuzz_preset_file)
      n=0
      find data/themes -name '*.dcp' | while read -r f; do n=$((n + 1)); cp "$f" "$dir/$n.dcp"; done ;;
    fuzz_version_reply) cp fuzz/seeds/version/* "$dir" ;;
    fuzz_rtf_reader) find tests/data/rtf -name '*.rtf' | while read -r f; do cp "$f" "$dir/$(echo "$f" | tr / _)"; done ;;
    fuzz_launch_request) cp fuzz/seeds/launch/* "$dir" ;;
    fuzz_weather_forecast) cp fuzz/seeds/forecast/* tests/weather/data/*.json "$dir" ;;
  esac
  echo "$dir"
}

status=0
for target in $targets; do
  corpus="$build/fuzz-corpus/$target"
  findings="$build/fuzz-findings/$target"
  mkdir -p "$corpus" "$findings"
  seeds=$(seeds_for "$target")
  log="$build/fuzz-$target.log"
  "$build/bin/$target" -max_total_time="$seconds" -print_final_stats=1 -artifact_prefix="$findings/" \
    "$corpus" "$seeds" >"$log" 2>&1 || true
  execs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log" | tail -n 1)
  found=$(find "$findings" -type f | wc -l)
  printf '%-22s %12s executions  %3s findings  (%s)\n' "$target" "${execs:-?}" "$found" "$log"
  [ "$found" -eq 0 ] || status=1
done
exit $status
