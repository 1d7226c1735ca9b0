#!/usr/bin/env bash
# Reads the program as a screen reader does: a private session bus with the accessibility bus
# and its registry, the program with accessibility on, and atspi_walk.py over its windows.
#   atspi_tree_test.sh PROGRAM [atspi_walk.py options]   (run by run_desktop_test.sh)
#   atspi_tree_test.sh PROGRAM --keyboard-only
# The second form uses the program from the keyboard alone, as someone who cannot use a mouse
# does: opens the calculator from the dashboard, works out a sum, reads the answer as a screen
# reader would, and closes it again.
# Skipped (77) only where the session bus, the accessibility services or pyatspi are missing.
set -u
here=$(cd "$(dirname "$0")" && pwd)
launcher=/usr/libexec/at-spi-bus-launcher
registry=/usr/libexec/at-spi2-registryd
python=/usr/bin/python3

skip() {
    echo "SKIPPED: $*"
    exit 77
}

if [[ -z ${VANTORA_ATSPI_INNER:-} ]]; then
    command -v dbus-run-session >/dev/null || skip "dbus-run-session is missing (package dbus)"
    [[ -x $launcher && -x $registry ]] || skip "the AT-SPI bus and registry are missing (package at-spi2-core)"
    "$python" -c 'import pyatspi' 2>/dev/null || skip "pyatspi is missing (package python3-pyatspi)"
    VANTORA_ATSPI_INNER=1 exec dbus-run-session -- "$0" "$@"
fi

program=$1
shift
source "$here/../desktop/desktop_session.sh"

"$launcher" --launch-immediately >/dev/null 2>&1 &
launcher_pid=$!
stop_all() {
    stop_program
    kill "$launcher_pid" 2>/dev/null
    wait "$launcher_pid" 2>/dev/null
}
trap stop_all EXIT
# The accessibility bus is up once the launcher answers with its address.
for _ in $(seq 50); do
    dbus-send --session --print-reply --dest=org.a11y.Bus /org/a11y/bus org.a11y.Bus.GetAddress \
        >/dev/null 2>&1 && break
    sleep 0.1
done

export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_ACCESSIBILITY=1 NO_AT_BRIDGE=0

keyboard_only() {
    start_program
    dashboard=$(window_named '^Vantora Dashboard$') || fail "the dashboard did not open"
    xdotool windowactivate --sync "$dashboard"
    wait_for_active '^Vantora Dashboard$' || fail "the dashboard did not get the keyboard"
    # The first tile has the keyboard; the arrow keys move along the tiles.
    xdotool key Right Return
    wait_for_active '^Vantora Calculator$' || fail "Enter on the tile left the keyboard on '$(active_title)'"
    xdotool type --delay 40 '12+30'
    xdotool key Return
    answer=$("$python" "$here/atspi_walk.py" --read 'Calculator:Display') || fail "$answer"
    [[ $answer == 'Display: 42'* ]] || fail "the screen reader read '$answer' after 12+30="
    xdotool key shift+F10
    sleep 0.3
    xdotool key c
    for _ in $(seq 30); do
        [[ -z $(xdotool search --onlyvisible --name '^Vantora Calculator$' 2>/dev/null) ]] && break
        sleep 0.1
    done
    [[ -z $(xdotool search --onlyvisible --name '^Vantora Calculator$' 2>/dev/null) ]] ||
        fail "the widget menu's Close did not close the calculator"
    wait_for_active '^Vantora Dashboard$' || fail "after closing, the keyboard went to '$(active_title)'"
    echo "PASS: dashboard, calculator ($answer) and back, from the keyboard alone"
    exit 0
}
[[ ${1:-} == --keyboard-only ]] && keyboard_only

start_program
window_named '^Vantora Dashboard$' >/dev/null || fail "the dashboard did not open"
open_in_program calculator,clock,stopwatch,timer,notes,whiteboard,calendar
for title in Calculator "Alarm Clock" Stopwatch Timer Notes Whiteboard Calendar; do
    window_named "^Vantora $title" >/dev/null || fail "the $title window did not open"
done

windows='Dashboard:13,Calculator:26,Alarm Clock:3,Stopwatch:3,Timer:3,Notes:12,Whiteboard:5,Calendar:5'
"$python" "$here/atspi_walk.py" --windows "$windows" "$@" || fail "the accessible tree has the faults above"
echo "PASS: every control has a name and a role, Tab reaches each, no access key twice"
