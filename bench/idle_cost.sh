#!/usr/bin/env bash
# What the program costs while nobody touches it: starts the built program under a private Xvfb
# with the dashboard and the clock, stopwatch, timer and calculator open (or the windows named on
# the command line), lets it settle, and prints over a minute its CPU use (% of one core, from
# the scheduler's account in /proc/PID/task/*/schedstat), how often it woke up (context switches
# of all its threads) and its resident memory. Beside it, in the same minute and on the same X
# server, runs bench/bare_timer_window.cpp: a bare Qt window with the 55 ms and 100 ms timers the
# clock and the alarm check need, whose ticks do nothing; what that costs is the floor of Qt's
# event loop on this machine, which varies from one minute to the next on a shared machine.
# Builds nothing.
#
#   bench/idle_cost.sh                              dashboard, clock, stopwatch, timer, calculator
#   bench/idle_cost.sh clock weather notes          any list of --open names
#   PROGRAM=build/bin/vantora REFERENCE=build/bin/bare_timer_window DURATION=60 SETTLE=5 ...
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
program=${PROGRAM:-build/bin/vantora}
reference=${REFERENCE:-build/bin/bare_timer_window}
duration=${DURATION:-60}
settle=${SETTLE:-5}
if (($# == 0)); then
    set -- dashboard clock stopwatch timer calculator
fi
windows=$(IFS=,; echo "$*")
target_cpu=0.25
target_mb=45

if [[ ! -x $program ]]; then
    echo "No program at '$program'. Build it first, or set PROGRAM." >&2
    exit 2
fi
[[ -x $reference ]] || reference=
command -v Xvfb >/dev/null || { echo "Xvfb is needed (apt-get install xvfb)." >&2; exit 2; }

source "$here/bench_session.sh"
home=$(mktemp -d)
pids=()
cleanup() {
    # A killed program's status is not 0: under set -e the first wait would end the clean-up
    # and leave the other program and the X server running.
    for pid in "${pids[@]}"; do kill "$pid" && wait "$pid" || true; done 2>/dev/null
    stop_private_xvfb
    rm -rf "$home"
}
trap cleanup EXIT
start_private_xvfb || exit 1

write_chosen_settings "$home"
VANTORA_HOME=$home VANTORA_OFFLINE=1 QT_QPA_PLATFORM=xcb QT_LOGGING_RULES='qt.multimedia*=false' \
    "$program" --open "$windows" >/dev/null 2>&1 &
program_pid=$!
pids+=("$program_pid")
reference_pid=
if [[ -n $reference ]]; then
    QT_QPA_PLATFORM=xcb "$reference" >/dev/null 2>&1 &
    reference_pid=$!
    pids+=("$reference_pid")
fi

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
alive() {
    kill -0 "$program_pid" 2>/dev/null
}

sleep "$settle"
alive || { echo "The program ended during start-up." >&2; exit 1; }
start_cpu=$(cpu_ns "$program_pid")
start_wakeups=$(wakeups "$program_pid")
if [[ -n $reference_pid ]]; then
    reference_start_cpu=$(cpu_ns "$reference_pid")
    reference_start_wakeups=$(wakeups "$reference_pid")
fi
start_ns=$(date +%s%N)
sleep "$duration"
alive || { echo "The program ended during the measurement." >&2; exit 1; }
end_cpu=$(cpu_ns "$program_pid")
end_wakeups=$(wakeups "$program_pid")
end_ns=$(date +%s%N)
reference_line=
if [[ -n $reference_pid ]]; then
    reference_line="$(($(cpu_ns "$reference_pid") - reference_start_cpu)) \
$(($(wakeups "$reference_pid") - reference_start_wakeups)) \
$(awk '/^VmRSS:/ {print $2}' "/proc/$reference_pid/status")"
fi
rss_kb=$(awk '/^VmRSS:/ {print $2}' "/proc/$program_pid/status")
threads=$(ls /proc/"$program_pid"/task | wc -l)
shown=
if command -v xdotool >/dev/null; then
    shown=$(xdotool search --onlyvisible --pid "$program_pid" --name '^Vantora' 2>/dev/null |
        while read -r id; do xdotool getwindowname "$id"; done | sort | paste -sd, - || true)
fi

awk -v cpu_ns=$((end_cpu - start_cpu)) -v ns=$((end_ns - start_ns)) \
    -v w=$((end_wakeups - start_wakeups)) -v kb="$rss_kb" -v asked="$windows" -v shown="$shown" \
    -v threads="$threads" -v tcpu="$target_cpu" -v tmb="$target_mb" -v ref="$reference_line" 'BEGIN {
    seconds = ns / 1e9
    cpu = 100 * cpu_ns / ns
    mb = kb / 1024
    printf "idle for %.0f s with %s open\n", seconds, asked
    printf "  CPU use: %.3f %% of one core (%.1f ms of CPU time)   target under %.2f %%: %s\n", cpu, cpu_ns / 1e6, tcpu, (cpu < tcpu) ? "met" : "MISSED"
    printf "  wake-ups: %.1f per second (context switches of its %d threads)\n", w / seconds, threads
    printf "  resident memory: %.1f MB   target under %d MB: %s\n", mb, tmb, (mb < tmb) ? "met" : "MISSED"
    if (split(ref, r, " ") == 3)
        printf "  beside it, a bare Qt window with a 55 ms and a 100 ms timer: %.3f %%, %.1f wake-ups per second, %.1f MB\n", 100 * r[1] / ns, r[2] / seconds, r[3] / 1024
    if (shown != "") printf "  windows on screen: %s\n", shown
}'
