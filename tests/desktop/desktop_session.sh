# Shared steps of the desktop tests, sourced by each (run_desktop_test.sh starts the server):
#   start_program ARGS...   runs the program in a fresh home (the first-run choice made, the
#                           dashboard its first window, unless the test wrote settings.reg
#                           itself) and waits until a window is visible
#   window_named REGEX      the id of the first visible window whose title matches (10 s)
#   window_rect ID          "x y width height" of a window as the server has it
#   active_title            the title of the window that has the keyboard
#   use_document_folder     gives the program $docs as its document folder (before start_program)
#   wait_for_file PATH      waits (5 s at most) until the file is there and not empty
#   fail MESSAGE            prints what went wrong, the document folder, the program's output,
#                           and exits 1
# The program is stopped and its home removed when the test ends.

desktop_here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
# shellcheck source=../../bench/bench_session.sh
source "$desktop_here/../../bench/bench_session.sh"

program=${program:?the test sets program to the program under test}
home=$(mktemp -d)
program_pid=

stop_program() {
    if [[ -n $program_pid ]]; then
        kill "$program_pid" 2>/dev/null
        wait "$program_pid" 2>/dev/null
        program_pid=
    fi
    rm -rf "$home"
}
trap stop_program EXIT

fail() {
    echo "FAIL: $*"
    if [[ -n ${docs:-} ]]; then
        echo "--- files in the document folder:"
        ls -la "$docs"
    fi
    echo "--- program output:"
    cat "$home/program.log" 2>/dev/null
    exit 1
}

window_named() {
    timeout 10 xdotool search --sync --onlyvisible --name "$1" 2>/dev/null | head -n 1
}

window_rect() {
    xwininfo -id "$1" | awk '/Absolute upper-left X/ {x=$NF} /Absolute upper-left Y/ {y=$NF}
        /^ *Width:/ {w=$NF} /^ *Height:/ {h=$NF} END {print x, y, w, h}'
}

active_title() {
    xdotool getactivewindow getwindowname 2>/dev/null
}

# Waits (5 s at most) until the window with the keyboard has a title matching REGEX.
wait_for_active() {
    for _ in $(seq 50); do
        [[ $(active_title) =~ $1 ]] && return 0
        sleep 0.1
    done
    return 1
}

use_document_folder() {
    docs=$home/docs
    mkdir -p "$docs"
    write_chosen_settings "$home"
    cat >>"$home/settings.reg" <<REG

[HKEY_CURRENT_USER\\SOFTWARE\\Vantora\\fnte_IDX\\Details]
"Text-Folder-Loc"="$docs"
REG
}

wait_for_file() {
    for _ in $(seq 50); do
        [[ -s $1 ]] && return 0
        sleep 0.1
    done
    return 1
}

start_program() {
    [[ -e $home/settings.reg ]] || write_chosen_settings "$home"
    VANTORA_HOME=$home "$program" "$@" >"$home/program.log" 2>&1 &
    program_pid=$!
    window_named '^Vantora' >/dev/null || fail "no window came up"
}

# Asks the running copy to open windows, as a second start does (a launcher, a key binding).
open_in_program() {
    VANTORA_HOME=$home "$program" --open "$1" >>"$home/program.log" 2>&1 || fail "--open $1 was not handed over"
}
