#!/usr/bin/env bash
# What the program costs while nobody touches it: starts the built program under a private Xvfb
# with the dashboard and the clock, stopwatch, timer and calculator open (or the windows named on
# the command line), lets it settle, and measures its CPU use (% of one core, from the
# scheduler's account in /proc/PID/task/*/schedstat), how often it woke up (context switches of
# all its threads) and its resident memory. Beside it, over the same interval and on the same X
# server, runs bench/bare_timer_window.cpp: a bare Qt window with the 55 ms and 100 ms timers the
# clock and the alarm check need, whose ticks do nothing; what that costs is the floor of Qt's
# event loop on this machine.
#
# One interval decides little on a virtual machine: what a wake-up costs depends on whether the
# processor was asleep, so two copies of the same bare window started together differ by a
# quarter, and the difference lasts as long as they run. Both programs are therefore started
# afresh for each of several rounds, and the medians are compared. Builds nothing.
#
#   bench/idle_cost.sh                              dashboard, clock, stopwatch, timer, calculator
#   bench/idle_cost.sh clock weather notes          any list of --open names
#   PROGRAM=build/bin/vantora REFERENCE=build/bin/bare_timer_window ROUNDS=5 DURATION=40 SETTLE=5 ...
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
program=${PROGRAM:-build/bin/vantora}
reference=${REFERENCE:-build/bin/bare_timer_window}
rounds=${ROUNDS:-5}
duration=${DURATION:-40}
settle=${SETTLE:-5}
if (($# == 0)); then
    set -- dashboard clock stopwatch timer calculator
fi
windows=$(IFS=,; echo "$*")
target_cpu=0.25
target_mb=45
target_ratio=1.15

if [[ ! -x $program ]]; then
    echo "No program at '$program'. Build it first, or set PROGRAM." >&2
    exit 2
fi
[[ -x $reference ]] || reference=
command -v Xvfb >/dev/null || { echo "Xvfb is needed (apt-get install xvfb)." >&2; exit 2; }

source "$here/bench_session.sh"
home=$(mktemp -d)
results=$(mktemp)
pids=()
stop_programs() {
    # A killed program's status is not 0: under set -e the first wait would end the clean-up
    # and leave the other program running.
    for pid in "${pids[@]}"; do kill "$pid" && wait "$pid" || true; done 2>/dev/null
    pids=()
}
cleanup() {
    stop_programs
    stop_private_xvfb
    rm -rf "$home" "$results"
}
trap cleanup EXIT
start_private_xvfb || exit 1
write_chosen_settings "$home"

# CPU time of all of a process's threads in nanoseconds, from the scheduler's own account
# (first field of schedstat): utime+stime in /proc/PID/stat counts whole 10 ms ticks, too coarse
# for a program that uses a few milliseconds a second.
cpu_ns() {
    cat /proc/"$1"/task/*/schedstat 2>/dev/null | awk '{n += $1} END {printf "%.0f\n", n}'
}
# Voluntary and involuntary context switches summed over every thread: one per wake-up, near enough.
wakeups() {
    cat /proc/"$1"/task/*/status 2>/dev/null |
        awk '/^(voluntary|nonvoluntary)_ctxt_switches:/ {n += $2} END {print n + 0}'
}
rss_kb() {
    awk '/^VmRSS:/ {print $2}' "/proc/$1/status"
}

# One round: both programs started afresh, settled, measured over the same interval. Appends
# "seconds cpu_ns wakeups rss_kb [ref_cpu_ns ref_wakeups ref_rss_kb]" to the results.
measure_round() {
    VANTORA_HOME=$home VANTORA_OFFLINE=1 QT_QPA_PLATFORM=xcb QT_LOGGING_RULES='qt.multimedia*=false' \
        "$program" --open "$windows" >/dev/null 2>&1 &
    local program_pid=$! reference_pid=
    pids+=("$program_pid")
    if [[ -n $reference ]]; then
        QT_QPA_PLATFORM=xcb "$reference" >/dev/null 2>&1 &
        reference_pid=$!
        pids+=("$reference_pid")
    fi
    sleep "$settle"
    kill -0 "$program_pid" 2>/dev/null || { echo "The program ended during start-up." >&2; exit 1; }
    local cpu0 wake0 rcpu0= rwake0= start_ns end_ns line
    cpu0=$(cpu_ns "$program_pid")
    wake0=$(wakeups "$program_pid")
    if [[ -n $reference_pid ]]; then
        rcpu0=$(cpu_ns "$reference_pid")
        rwake0=$(wakeups "$reference_pid")
    fi
    start_ns=$(date +%s%N)
    sleep "$duration"
    kill -0 "$program_pid" 2>/dev/null || { echo "The program ended during the measurement." >&2; exit 1; }
    line="$(($(cpu_ns "$program_pid") - cpu0)) $(($(wakeups "$program_pid") - wake0)) $(rss_kb "$program_pid")"
    if [[ -n $reference_pid ]]; then
        line+=" $(($(cpu_ns "$reference_pid") - rcpu0)) $(($(wakeups "$reference_pid") - rwake0)) $(rss_kb "$reference_pid")"
    fi
    end_ns=$(date +%s%N)
    if ((round == rounds)) && command -v xdotool >/dev/null; then
        shown=$(xdotool search --onlyvisible --pid "$program_pid" --name '^Vantora' 2>/dev/null |
            while read -r id; do xdotool getwindowname "$id"; done | sort | paste -sd, - || true)
    fi
    echo "$(((end_ns - start_ns) / 1000000)) $line" >>"$results"
    stop_programs
}

shown=
for ((round = 1; round <= rounds; round++)); do
    measure_round
done

awk -v asked="$windows" -v shown="$shown" -v tcpu="$target_cpu" -v tmb="$target_mb" \
    -v tratio="$target_ratio" '
function median(a, n,    i, j, t) {
    for (i = 2; i <= n; i++)
        for (j = i; j > 1 && a[j - 1] > a[j]; j--) { t = a[j]; a[j] = a[j - 1]; a[j - 1] = t }
    return (n % 2) ? a[(n + 1) / 2] : (a[n / 2] + a[n / 2 + 1]) / 2
}
{
    n++
    seconds = $1 / 1000
    cpu[n] = 100 * $2 / 1e9 / seconds; wake[n] = $3 / seconds; mb[n] = $4 / 1024
    line[n] = sprintf("  round %d: %.3f %% of one core, %.1f wake-ups per second", n, cpu[n], wake[n])
    if (NF >= 7) {
        refs++
        rcpu[n] = 100 * $5 / 1e9 / seconds; rwake[n] = $6 / seconds; rmb[n] = $7 / 1024
        ratio[n] = cpu[n] / rcpu[n]
        line[n] = line[n] sprintf("; bare window %.3f %%, %.1f per second: %.2fx", rcpu[n], rwake[n], ratio[n])
    }
    total += seconds
}
END {
    printf "idle with %s open: %d rounds of %.0f s, each program started afresh\n", asked, n, total / n
    for (i = 1; i <= n; i++) print line[i]
    c = median(cpu, n); m = median(mb, n)
    printf "  CPU use (median): %.3f %% of one core   target under %.2f %%: %s\n", c, tcpu, (c < tcpu) ? "met" : "MISSED"
    printf "  wake-ups (median): %.1f per second\n", median(wake, n)
    printf "  resident memory (median): %.1f MB   target under %d MB: %s\n", m, tmb, (m < tmb) ? "met" : "MISSED"
    if (refs == n) {
        rc = median(rcpu, n); r = median(ratio, n)
        printf "  beside it, a bare Qt window with a 55 ms and a 100 ms timer (median): %.3f %%, %.1f wake-ups per second, %.1f MB\n", rc, median(rwake, n), median(rmb, n)
        printf "  CPU use against the bare window (median of the rounds): %.2fx   target at most %.2fx: %s\n", r, tratio, (r <= tratio) ? "met" : "MISSED"
    }
    if (shown != "") printf "  windows on screen: %s\n", shown
}' "$results"
