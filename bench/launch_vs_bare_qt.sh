#!/usr/bin/env bash
# Start-up as the user sees it, beside a bare Qt program: builds bench/bare_label_window.cpp (one
# label window), then starts it, the dashboard, --open calculator, --open clock and --open notes
# in turn under a private Xvfb, timing each from the start of its process to its first painted
# frame (its first window's pixels no longer blank) as the X server shows it, with the program's
# own CPU time to that frame, which load on the machine disturbs far less than wall time
# (bench/first_map_timer.cpp). The program starts with the first-run choice made.
# Prints the medians, their ratios to the bare label of the same run against the targets, and
# each one's memory.
#
#   bench/launch_vs_bare_qt.sh [build folder]      (default: build)
#   RUNS=9 bench/launch_vs_bare_qt.sh              (timed runs of each, after one untimed)
#   NO_BUILD=1 ...                                 (use what is built)
#   PROGRAM=other/vantora ...                      (time another build of the program)
set -uo pipefail

here=$(cd "$(dirname "$0")" && pwd)
build=${1:-build}
runs=${RUNS:-9}
program_path=${PROGRAM:-$build/bin/vantora}

if [[ -z ${NO_BUILD:-} ]]; then
    cmake --build "$build" --target vantora bare_label_window first_map_timer >/dev/null || exit 2
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
runtime=$(mktemp -d) # a private runtime folder, as a session has, so Qt does not warn about it
trap 'stop_private_xvfb; rm -rf "$home" "$runtime"' EXIT
start_private_xvfb || exit 1
write_chosen_settings "$home"

# name | command | first-frame target | CPU target (ratios to the bare label; - for none)
cases=(
    "bare Qt label|$build/bin/bare_label_window|-|-"
    "dashboard|$program_path|1.5|1.4"
    "--open calculator|$program_path --open calculator|1.5|-"
    "--open clock|$program_path --open clock|1.5|-"
    "--open notes|$program_path --open notes|2.0|2.0"
)

# One line per run: "ms-to-map kB-at-map kB-later ms-to-frame cpu-ms-to-frame kB-private
# kB-private-written".
measure() {
    # shellcheck disable=SC2086 # the command's words are its arguments
    VANTORA_HOME=$home VANTORA_OFFLINE=1 XDG_RUNTIME_DIR=$runtime QT_QPA_PLATFORM=xcb "$build/bin/first_map_timer" $1
}

# Processor time the host took from this machine while the runs went on (a virtual machine's
# steal time, from /proc/stat): a busy host slows the programs unevenly, and the ratios of such
# a run vary more than usual.
steal_ticks() { awk '/^cpu / {print $9}' /proc/stat 2>/dev/null || echo 0; }
steal_before=$(steal_ticks)
started_at=$SECONDS

declare -A results
failed=0
# One untimed start of each fills the file cache and lets the program lay out its data folder.
for entry in "${cases[@]}"; do
    IFS='|' read -r _ command _ _ <<<"$entry"
    measure "$command" >/dev/null || true
done
for ((i = 0; i < runs; i++)); do
    for entry in "${cases[@]}"; do
        IFS='|' read -r name command _ _ <<<"$entry"
        if line=$(measure "$command"); then
            results[$name]+="$line"$'\n'
        else
            failed=$((failed + 1)) # a launch that mapped nothing is reported, not fatal
        fi
    done
done

# Median of one column of the collected lines.
median() {
    printf '%s' "$2" | awk -v c="$1" 'NF {print $c}' | sort -n |
        awk '{v[NR] = $1} END {if (!NR) {print 0; exit} m = int((NR + 1) / 2); print (NR % 2) ? v[m] : (v[m] + v[m + 1]) / 2}'
}

bare=${results["bare Qt label"]:-}
[[ -n $bare ]] || { echo "The bare label never painted." >&2; exit 1; }
bare_frame=$(median 4 "$bare")
bare_cpu=$(median 5 "$bare")
printf 'launch to first painted frame under Xvfb, median of %d runs each, taken in turn\n' "$runs"
printf '%-19s %9s %7s %9s %7s %9s %10s %10s %8s\n' "" "frame ms" "x bare" "CPU ms" "x bare" "map ms" "RSS MB 1s" "private MB" "written"
for entry in "${cases[@]}"; do
    IFS='|' read -r name _ frame_target cpu_target <<<"$entry"
    lines=${results[$name]:-}
    [[ -n $lines ]] || { printf '%-19s never painted\n' "$name"; continue; }
    awk -v name="$name" -v frame="$(median 4 "$lines")" -v cpu="$(median 5 "$lines")" \
        -v map="$(median 1 "$lines")" -v rss="$(median 3 "$lines")" -v priv="$(median 6 "$lines")" \
        -v own="$(median 7 "$lines")" -v bf="$bare_frame" -v bc="$bare_cpu" -v ft="$frame_target" -v ct="$cpu_target" 'BEGIN {
        fr = frame / bf; cr = cpu / bc
        printf "%-19s %9.1f %7.2f %9.1f %7.2f %9.1f %10.1f %10.1f %8.1f\n", name, frame, fr, cpu, cr, map, rss / 1024, priv / 1024, own / 1024
        if (ft != "-") printf "%19s first frame at most %.1fx the bare label: %s\n", "", ft, (fr <= ft) ? "met" : "MISSED"
        if (ct != "-") printf "%19s own CPU at most %.1fx the bare label: %s\n", "", ct, (cr <= ct) ? "met" : "MISSED"
    }'
done
for name in "--open calculator" "--open clock"; do
    lines=${results[$name]:-}
    [[ -n $lines ]] || continue
    # The program's own memory is what it wrote; clean private pages are library code that is
    # private only while no other process maps the same library (see first_map_timer.cpp).
    awk -v name="$name" -v own="$(median 7 "$lines")" 'BEGIN {
        printf "private written memory of %s: %.1f MB, target under 10 MB: %s\n", name, own / 1024, (own < 10240) ? "met" : "MISSED"
    }'
done
((failed == 0)) || echo "$failed launches painted nothing within 10 s and were left out."
awk -v ticks="$(($(steal_ticks) - steal_before))" -v hz="$(getconf CLK_TCK)" -v cpus="$(nproc)" \
    -v seconds="$((SECONDS - started_at))" 'BEGIN {
    share = seconds > 0 ? 100 * ticks / hz / (seconds * cpus) : 0
    printf "time the host took from this machine (steal) during the runs: %.1f s of %d s on %d processors (%.1f %%)%s\n",
        ticks / hz, seconds, cpus, share, (share > 2) ? ": a busy host, the ratios vary more than usual" : ""
}'
