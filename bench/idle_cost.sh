#!/usr/bin/env bash
# What the program costs while nobody touches it: starts the built program under a private Xvfb
# with the dashboard and the clock, stopwatch, timer and calculator open (or the windows named on
# the command line), lets it settle, and prints its CPU use over a minute (% of one core, from
# the scheduler's account in /proc/PID/task/*/schedstat), how often it woke up (context switches
# of all its threads) and
# its resident memory. Builds nothing.
#
#   bench/idle_cost.sh                              dashboard, clock, stopwatch, timer, calculator
#   bench/idle_cost.sh clock weather notes          any list of --open names
#   PROGRAM=build/bin/vantora DURATION=60 SETTLE=5 bench/idle_cost.sh
set -euo pipefail

here=$(cd "$(dirname "$0")" && pwd)
program=${PROGRAM:-build/bin/vantora}
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
command -v Xvfb >/dev/null || { echo "Xvfb is needed (apt-get install xvfb)." >&2; exit 2; }

source "$here/bench_session.sh"
home=$(mktemp -d)
program_pid=
cleanup() {
    if [[ -n $program_pid ]]; then kill "$program_pid"; wait "$program_pid"; fi 2>/dev/null
    stop_private_xvfb
    rm -rf "$home"
}
trap cleanup EXIT
start_private_xvfb || exit 1

write_chosen_settings "$home"

VANTORA_HOME=$home VANTORA_OFFLINE=1 QT_QPA_PLATFORM=xcb QT_LOGGING_RULES='qt.multimedia*=false' \
    "$program" --open "$windows" >/dev/null 2>&1 &
program_pid=$!

# CPU time of all the program's threads in nanoseconds, from the scheduler's own account
# (/proc/PID/task/*/schedstat, first field): utime+stime in /proc/PID/stat counts whole 10 ms
# ticks, too coarse for a program that uses a few milliseconds a second. Threads that ended
# during the minute are missed, which is why the count of threads is printed.
cpu_ns() {
    cat /proc/"$program_pid"/task/*/schedstat 2>/dev/null | awk '{n += $1} END {printf "%d\n", n}'
}
# Voluntary and involuntary context switches summed over every thread: one per wake-up, near enough.
wakeups() {
    cat /proc/"$program_pid"/task/*/status 2>/dev/null |
        awk '/^(voluntary|nonvoluntary)_ctxt_switches:/ {n += $2} END {print n + 0}'
}
alive() {
    kill -0 "$program_pid" 2>/dev/null
}

sleep "$settle"
alive || { echo "The program ended during start-up." >&2; exit 1; }
start_cpu=$(cpu_ns)
start_wakeups=$(wakeups)
start_ns=$(date +%s%N)
sleep "$duration"
alive || { echo "The program ended during the measurement." >&2; exit 1; }
end_cpu=$(cpu_ns)
end_wakeups=$(wakeups)
end_ns=$(date +%s%N)
rss_kb=$(awk '/^VmRSS:/ {print $2}' "/proc/$program_pid/status")
threads=$(ls /proc/"$program_pid"/task | wc -l)
shown=
if command -v xdotool >/dev/null; then
    shown=$(xdotool search --onlyvisible --name '^Vantora' 2>/dev/null | while read -r id; do
        xdotool getwindowname "$id"; done | sort | paste -sd, - || true)
fi

awk -v cpu_ns=$((end_cpu - start_cpu)) -v ns=$((end_ns - start_ns)) \
    -v w=$((end_wakeups - start_wakeups)) -v kb="$rss_kb" -v asked="$windows" -v shown="$shown" \
    -v threads="$threads" -v tcpu="$target_cpu" -v tmb="$target_mb" 'BEGIN {
    seconds = ns / 1e9
    cpu = 100 * cpu_ns / ns
    mb = kb / 1024
    printf "idle for %.0f s with %s open\n", seconds, asked
    printf "  CPU use: %.3f %% of one core (%.1f ms of CPU time)   target under %.2f %%: %s\n", cpu, cpu_ns / 1e6, tcpu, (cpu < tcpu) ? "met" : "MISSED"
    printf "  wake-ups: %.1f per second (context switches of its %d threads)\n", w / seconds, threads
    printf "  resident memory: %.1f MB   target under %d MB: %s\n", mb, tmb, (mb < tmb) ? "met" : "MISSED"
    if (shown != "") printf "  windows on screen: %s\n", shown
}'
