#!/usr/bin/env bash
# Where windows open on a fresh home with a window manager: widgets opened one after another
# next to the dashboard cover neither each other nor the dashboard while the screen has room;
# dialogs open fully on screen over the window they belong to, never in the corner (0,0),
# also when they are opened again; a window of its own (the webcam viewer) takes a free spot.
#   window_places_test.sh PROGRAM      (run by run_desktop_test.sh)
set -u
program=$1
source "$(dirname "$0")/desktop_session.sh"

read -r screen_w screen_h < <(xwininfo -root | awk '/^ *Width:/ {w=$NF} /^ *Height:/ {h=$NF} END {print w, h}')

# Fails unless the window lies fully on the screen and away from its top-left corner.
check_on_screen() {
    local name=$1 x y w h
    read -r x y w h <<<"$2"
    ((x >= 0 && y >= 0 && x + w <= screen_w && y + h <= screen_h)) ||
        fail "$name is not fully on the ${screen_w}x${screen_h} screen: $x,$y ${w}x$h"
    ((x != 0 || y != 0)) || fail "$name opened in the corner (0,0)"
}

# Fails when the two rectangles ("x y w h") overlap.
check_apart() {
    local ax ay aw ah bx by bw bh
    read -r ax ay aw ah <<<"$2"
    read -r bx by bw bh <<<"$4"
    if ((ax < bx + bw && bx < ax + aw && ay < by + bh && by < ay + ah)); then
        fail "$1 ($2) covers $3 ($4)"
    fi
}

# Fails unless the dialog's centre is within a few pixels of its owner's.
check_centred_over() {
    local dx dy dw dh ox oy ow oh
    read -r dx dy dw dh <<<"$2"
    read -r ox oy ow oh <<<"$4"
    local ddx=$(((dx + dw / 2) - (ox + ow / 2))) ddy=$(((dy + dh / 2) - (oy + oh / 2)))
    ((ddx * ddx <= 16 && ddy * ddy <= 16)) || fail "$1 ($2) is not centred over $3 ($4)"
}

start_program
dashboard=$(window_named '^Vantora Dashboard$') || true
[[ -n $dashboard ]] || fail "the dashboard did not open"
names=("Dashboard")
rects=("$(window_rect "$dashboard")")
for widget in calculator clock stopwatch timer weather; do
    open_in_program "$widget"
    sleep 0.3
    id=$(xdotool search --sync --onlyvisible --name "^Vantora ($widget|${widget^}|Alarm Clock|Countdown)" 2>/dev/null | tail -n 1)
    [[ -n $id ]] || fail "the $widget did not open"
    rect=$(window_rect "$id")
    check_on_screen "the $widget" "$rect"
    for i in "${!names[@]}"; do
        check_apart "the $widget" "$rect" "${names[$i]}" "${rects[$i]}"
    done
    names+=("$widget")
    rects+=("$rect")
done

# A question over a widget, three times: over its owner each time.
calculator=$(window_named '^Vantora Calculator$')
owner_rect=$(window_rect "$calculator")
open_in_program notes
editor=$(window_named '^Vantora Notes') || fail "the notes editor did not open"
check_on_screen "the notes editor" "$(window_rect "$editor")"
for round in 1 2 3; do
    xdotool windowactivate --sync "$editor"
    xdotool type --delay 10 'x'
    xdotool key ctrl+w
    message=$(window_named '^Vantora Message$') || fail "closing the unsaved note did not ask (round $round)"
    sleep 0.3
    rect=$(window_rect "$message")
    check_on_screen "the question (round $round)" "$rect"
    check_centred_over "the question (round $round)" "$rect" "the notes editor" "$(window_rect "$editor")"
    xdotool key Escape
    sleep 0.3
done

# A window of its own: the webcam viewer, opened, closed and opened again.
for round in 1 2; do
    open_in_program webcam
    viewer=$(window_named '^Vantora Webcam') || fail "the webcam viewer did not open (round $round)"
    sleep 0.5
    rect=$(window_rect "$viewer")
    check_on_screen "the webcam viewer (round $round)" "$rect"
    [[ $round == 2 && $rect != "$first_rect" ]] && fail "the webcam viewer moved from $first_rect to $rect when opened again"
    first_rect=$rect
    xdotool windowactivate --sync "$viewer"
    xdotool key Escape
    sleep 0.3
done
echo "PASS: ${#names[@]} windows side by side, questions over their owner, the viewer in its place"
