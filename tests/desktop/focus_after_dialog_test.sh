#!/usr/bin/env bash
# With the dashboard on screen, the keyboard must go back to the note a dialog was opened
# from when the dialog closes: a question answered with Escape, then the save dialog. The
# window manager alone hands it to the dashboard, where typed letters open widgets.
#   focus_after_dialog_test.sh PROGRAM      (run by run_desktop_test.sh)
set -u
program=$1
source "$(dirname "$0")/desktop_session.sh"

use_document_folder
start_program
window_named '^Vantora Dashboard$' >/dev/null || fail "the dashboard did not open"
open_in_program notes
editor=$(window_named '^Vantora Notes') || true
[[ -n $editor ]] || fail "the notes editor did not open"
xdotool windowactivate --sync "$editor"
xdotool type --delay 20 'hello '

# A question: closing the unsaved note asks; Escape keeps it open.
xdotool key ctrl+w
window_named '^Vantora Message$' >/dev/null || fail "closing the unsaved note did not ask"
wait_for_active '^Vantora Message$' || fail "the question did not get the keyboard"
xdotool key Escape
wait_for_active '^Vantora Notes' || fail "after the question the keyboard went to '$(active_title)'"
xdotool type --delay 20 'and more'

# Qt's own dialog: the save dialog.
xdotool key ctrl+s
dialog=$(window_named '^Save as a new file$') || true
[[ -n $dialog ]] || fail "the save dialog did not open"
wait_for_active '^Save as a new file$' || xdotool windowactivate --sync "$dialog"
xdotool key ctrl+a
xdotool type --delay 20 focus
xdotool key Return
wait_for_active '^Vantora Notes' || fail "after saving the keyboard went to '$(active_title)'"
xdotool type --delay 20 ' typed after'
xdotool key ctrl+s
for _ in $(seq 50); do
    grep -q 'typed after' "$docs/focus.rtf" 2>/dev/null && break
    sleep 0.1
done
grep -q 'hello and more typed after' "$docs/focus.rtf" 2>/dev/null ||
    fail "the note did not get every key: $(grep -o 'hello[^}\\]*' "$docs/focus.rtf" 2>/dev/null)"
[[ -z $(xdotool search --onlyvisible --name '^Vantora (Alarm|Clock|Calculator|Calendar)' 2>/dev/null) ]] ||
    fail "typed letters reached the dashboard and opened widgets"
echo "PASS: the keyboard came back to the note after a question and after the save dialog"
