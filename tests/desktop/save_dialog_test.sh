#!/usr/bin/env bash
# Saves a formatted note through the real save dialog as a user does, with keys typed on the X
# server: the rich text type is what the dialog offers, so "shopping" must become shopping.rtf
# holding the formatting, a typed "shopping3.rtf" must stay shopping3.rtf, and Save As of that
# file must stay rich text too.
#   save_dialog_test.sh PROGRAM      (run by run_desktop_test.sh)
set -u

program=$1
source "$(dirname "$0")/desktop_session.sh"

# The first-run choice made, and the document folder the dialog starts in.
use_document_folder

# Types a note in the active document and saves it as a new file named `name`.
save_note_as() {
    local name=$1 editor dialog
    editor=$(window_named '^Vantora Notes') || true
    [[ -n $editor ]] || fail "the notes editor did not open"
    xdotool windowactivate --sync "$editor"
    xdotool type --delay 20 'milk '
    xdotool key ctrl+b
    xdotool type --delay 20 'eggs'
    xdotool key ctrl+b
    xdotool key ctrl+s
    dialog=$(window_named '^Save as a new file$') || true
    [[ -n $dialog ]] || fail "the save dialog did not open"
    xdotool windowactivate --sync "$dialog"
    xdotool key ctrl+a
    xdotool type --delay 20 "$name"
    xdotool key Return
}

start_program --open notes

save_note_as shopping
wait_for_file "$docs/shopping.rtf" || fail "shopping.rtf was not written"
head -c 5 "$docs/shopping.rtf" | grep -qF '{\rtf' || fail "shopping.rtf is not rich text"
grep -qF '\b' "$docs/shopping.rtf" || fail "shopping.rtf lost the bold"
grep -qF 'milk' "$docs/shopping.rtf" || fail "shopping.rtf lost the text"
[[ ! -e $docs/shopping.txt ]] || fail "shopping.txt was written as well"

xdotool key ctrl+n
save_note_as shopping3.rtf
wait_for_file "$docs/shopping3.rtf" || fail "shopping3.rtf was not written"
head -c 5 "$docs/shopping3.rtf" | grep -qF '{\rtf' || fail "shopping3.rtf is not rich text"
[[ ! -e $docs/shopping3.rtf.txt && ! -e $docs/shopping3.rtf.rtf ]] || fail "the typed extension was doubled"
# Save As of the rich file just saved: the dialog offers rich text again.
xdotool key ctrl+shift+s
dialog=$(window_named '^Save as a new file$') || true
[[ -n $dialog ]] || fail "the save dialog did not open for Save As"
xdotool windowactivate --sync "$dialog"
xdotool key ctrl+a
xdotool type --delay 20 copy
xdotool key Return
wait_for_file "$docs/copy.rtf" || fail "Save As of a rich file did not write copy.rtf"
[[ ! -e $docs/copy.txt ]] || fail "Save As of a rich file wrote copy.txt"
echo "PASS: shopping.rtf, shopping3.rtf and copy.rtf written as rich text"
