#!/usr/bin/env bash
# Exit with an unsaved note asks before anything closes; Cancel keeps every widget open.
#   exit_asks_first_test.sh PROGRAM      (run by run_desktop_test.sh)
set -u
program=$1
source "$(dirname "$0")/desktop_session.sh"

start_program
dashboard=$(window_named '^Vantora Dashboard$') || fail "the dashboard did not open"
open_in_program calendar
open_in_program calculator
open_in_program notes
editor=$(window_named '^Vantora Notes') || fail "the notes editor did not open"
window_named '^Vantora Calendar' >/dev/null || fail "the calendar did not open"
xdotool windowactivate --sync "$editor"
xdotool type --delay 20 'unsaved'

# File > Exit on the dashboard, from the keyboard.
xdotool windowactivate --sync "$dashboard"
xdotool key alt+f
sleep 0.3
xdotool key x
window_named '^Vantora Message$' >/dev/null || fail "Exit did not ask about the unsaved note"
for title in '^Vantora Calendar' '^Vantora Calculator$'; do
    [[ -n $(xdotool search --onlyvisible --name "$title" 2>/dev/null) ]] ||
        fail "a window matching $title closed before the question was answered"
done
xdotool key Escape
sleep 0.5
kill -0 "$program_pid" 2>/dev/null || fail "the program ended although Exit was cancelled"
for title in '^Vantora Calendar' '^Vantora Calculator$' '^Vantora Notes' '^Vantora Dashboard$'; do
    [[ -n $(xdotool search --onlyvisible --name "$title" 2>/dev/null) ]] || fail "a window matching $title closed"
done
echo "PASS: Exit asked first and Cancel kept every window"
