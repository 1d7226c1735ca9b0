#!/usr/bin/env bash
# Start-up time beside a bare Qt program: builds bench/bare_label_window.cpp (one label window),
# then starts it and the program alternately under a private Xvfb, timing each from the start of
# its process to its first mapped window as the X server sees it (bench/first_map_timer.cpp).
# The program starts with the first-run choice made, so its first window is the dashboard.
# Prints the medians, their ratio and each one's resident memory.
#
#   bench/launch_vs_bare_qt.sh [build folder]      (default: build)
#   RUNS=9 bench/launch_vs_bare_qt.sh              (timed runs of each, after one untimed)
#   NO_BUILD=1 ...                                 (use what is built)
#   PROGRAM=other/vantora ...                      (time another build of the program)
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=${1:-build}
runs=${RUNS:-9}
program_path=${PROGRAM:-$build/bin/vantora}
target_ratio=1.30

if [[ -z ${NO_BUILD:-} ]]; then
    cmake --build "$build" --target vantora bare_label_window first_map_timer >/dev/null
fi
for tool in bare_label_window first_map_timer; do
    if [[ ! -x $build/bin/$tool ]]; then
        echo "No $build/bin/$tool: build it first (first_map_timer needs the xcb headers)." >&2
        exit 2
    fi
done
[[ -x $program_path ]] || { echo "No program at $program_path." >&2; exit 2; }
command -v Xvfb >/dev/null || { echo "Xvfb is needed (apt-get install xvfb)." >&2; exit 2; }

source "$here/bench_session.sh"
home=$(mktemp -d)
trap 'stop_private_xvfb; rm -rf "$home"' EXIT
start_private_xvfb || exit 1

write_chosen_settings "$home"

measure() {
    VANTORA_HOME=$home VANTORA_OFFLINE=1 QT_QPA_PLATFORM=xcb "$build/bin/first_map_timer" "$@"
}

bare=()
program=()
# One untimed start of each fills the file cache and lets the program lay out its data folder.
measure "$build/bin/bare_label_window" >/dev/null
measure "$program_path" >/dev/null
for ((i = 0; i < runs; i++)); do
    bare+=("$(measure "$build/bin/bare_label_window")")
    program+=("$(measure "$program_path")")
done

# Median of one column of the "ms kB-at-map kB-later" lines.
median() {
    local column=$1
    shift
    printf '%s\n' "$@" | awk -v c="$column" '{print $c}' | sort -n |
        awk '{v[NR] = $1} END {m = int((NR + 1) / 2); print (NR % 2) ? v[m] : (v[m] + v[m + 1]) / 2}'
}

bare_ms=$(median 1 "${bare[@]}")
program_ms=$(median 1 "${program[@]}")
awk -v b="$bare_ms" -v p="$program_ms" -v runs="$runs" -v target="$target_ratio" \
    -v bk="$(median 2 "${bare[@]}")" -v bl="$(median 3 "${bare[@]}")" \
    -v pk="$(median 2 "${program[@]}")" -v pl="$(median 3 "${program[@]}")" \
    -v all_b="$(printf '%s\n' "${bare[@]}" | awk '{print $1}' | paste -sd' ')" \
    -v all_p="$(printf '%s\n' "${program[@]}" | awk '{print $1}' | paste -sd' ')" 'BEGIN {
    printf "launch to first mapped window under Xvfb, median of %d runs each, taken alternately\n", runs
    printf "  bare Qt label window: %6.1f ms   resident %5.1f MB at the window, %5.1f MB 1 s later\n", b, bk / 1024, bl / 1024
    printf "  vantora (dashboard):  %6.1f ms   resident %5.1f MB at the window, %5.1f MB 1 s later\n", p, pk / 1024, pl / 1024
    printf "  ratio: %.2f (target at most %.2f: %s)\n", p / b, target, (p / b <= target) ? "met" : "MISSED"
    printf "  all runs, ms: bare %s\n                vantora %s\n", all_b, all_p
}'
