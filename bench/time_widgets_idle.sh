#!/usr/bin/env bash
# Idle cost of the time widgets: starts the built program with the clock, the stopwatch and the
# timer opened at start-up, leaves it alone under a virtual X server, and prints its CPU use
# (% of one core, from utime+stime in /proc/PID/stat) and its resident memory (VmRSS).
# Builds nothing.
#
#   bench/time_widgets_idle.sh [path/to/vantora]     (default: build/bin/vantora)
#   DURATION=60 SETTLE=5 bench/time_widgets_idle.sh  (seconds measured, seconds before that)
set -euo pipefail

program=${1:-build/bin/vantora}
duration=${DURATION:-60}
settle=${SETTLE:-5}

if [[ ! -x $program ]]; then
    echo "No program at '$program'. Build it first, or pass its path." >&2
    exit 2
fi
if ! command -v Xvfb >/dev/null; then
    echo "Xvfb is needed (apt-get install xvfb)." >&2
    exit 2
fi

home=$(mktemp -d)
xvfb_pid=
program_pid=
cleanup() {
    local status=$?
    set +e
    if [[ -n $program_pid ]]; then kill "$program_pid"; wait "$program_pid"; fi 2>/dev/null
    if [[ -n $xvfb_pid ]]; then kill "$xvfb_pid"; wait "$xvfb_pid"; fi 2>/dev/null
    rm -rf "$home"
    exit "$status"
}
trap cleanup EXIT

# A fresh settings file: the first-run choice made ("all widgets through the dashboard") and
# the three time widgets opened at start-up.
cat >"$home/settings.reg" <<'REG'
Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\SOFTWARE\Vantora\msg_WIZ\Details]
"Program-Choice"="8"

[HKEY_CURRENT_USER\SOFTWARE\Vantora\mdb_SET\Details]
"Start-Load-Clock"="True"
"Start-Load-Stopwatch"="True"
"Start-Load-Timer"="True"
REG

# Xvfb picks a free display number itself and writes it to the descriptor it is given.
exec {display_fd}<> <(:)
Xvfb -displayfd "$display_fd" -screen 0 1280x800x24 -nolisten tcp >/dev/null 2>&1 &
xvfb_pid=$!
display=
for _ in $(seq 50); do
    if read -r -t 0.2 -u "$display_fd" display && [[ -n $display ]]; then break; fi
done
exec {display_fd}>&-
if [[ -z $display ]]; then
    echo "Xvfb did not start." >&2
    exit 1
fi

VANTORA_HOME=$home VANTORA_OFFLINE=1 DISPLAY=:$display QT_QPA_PLATFORM=xcb QT_LOGGING_RULES='qt.multimedia*=false' \
    "$program" >/dev/null 2>&1 &
program_pid=$!

# utime + stime of the program, in clock ticks; the fields after the ")" that ends its name.
cpu_ticks() {
    local stat
    stat=$(<"/proc/$program_pid/stat")
    stat=${stat##*) }
    read -r -a f <<<"$stat"
    echo $((f[11] + f[12]))
}
alive() {
    kill -0 "$program_pid" 2>/dev/null
}

sleep "$settle"
alive || { echo "The program ended during start-up." >&2; exit 1; }
ticks_per_second=$(getconf CLK_TCK)
start_ticks=$(cpu_ticks)
start_ns=$(date +%s%N)
sleep "$duration"
alive || { echo "The program ended during the measurement." >&2; exit 1; }
end_ticks=$(cpu_ticks)
end_ns=$(date +%s%N)
rss=$(awk '/^VmRSS:/ {print $2 " " $3}' "/proc/$program_pid/status")

windows=
if command -v xwininfo >/dev/null; then
    windows=$(DISPLAY=:$display xwininfo -root -tree 2>/dev/null | grep -o '"Vantora [^"]*"' | sort -u |
        paste -sd, - || true)
fi

awk -v t=$((end_ticks - start_ticks)) -v hz="$ticks_per_second" -v ns=$((end_ns - start_ns)) \
    -v rss="$rss" -v wall="$duration" -v windows="$windows" 'BEGIN {
    seconds = ns / 1e9
    printf "time widgets idle for %d s (clock, stopwatch, timer open)\n", wall
    printf "  CPU use: %.2f %% of one core (%d ticks of 1/%d s over %.1f s)\n", 100 * t / hz / seconds, t, hz, seconds
    printf "  resident memory (VmRSS): %s\n", rss
    if (windows != "") printf "  windows: %s\n", windows
}'
