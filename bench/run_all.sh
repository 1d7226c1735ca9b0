#!/usr/bin/env bash
# Builds the benchmarks and prints all their figures. Run from the repository root after the
# README's build command:  bench/run_all.sh [build folder]
set -euo pipefail

build=${1:-build}
cmake --build "$build" --target startup_bench paint_bench notes_file_bench notes_layout_bench spell_bench spell_list print_bench catalogue_bench whiteboard_bench forecast_bench vantora

echo "== Start-up to the first painted frame beside a bare Qt label window, on the X server =="
"$(dirname "$0")/launch_vs_bare_qt.sh" "$build"

echo
echo "== Start-up: time to the first window and resident memory (fresh VANTORA_HOME) =="
QT_QPA_PLATFORM=offscreen "$build/bin/startup_bench" 9

echo
echo "== Painting one 400x300 themed widget =="
QT_QPA_PLATFORM=offscreen "$build/bin/paint_bench"

echo
echo "== Opening and saving a 5 MB rich-text note with pictures and tables =="
QT_QPA_PLATFORM=offscreen "$build/bin/notes_file_bench"

echo
echo "== Opening into an editor page until laid out: nested tables, a big table, long runs and lines =="
QT_QPA_PLATFORM=offscreen "$build/bin/notes_layout_bench"

echo
echo "== Spell checker: word list, listing a 1 MB text against hunspell, typing in 100 pages =="
"$(dirname "$0")/spell_vs_hunspell.sh" "$build"

echo
echo "== Printing a 200-page note to PDF: layout, PDF writing, peak memory =="
QT_QPA_PLATFORM=offscreen "$build/bin/print_bench"

echo
echo "== Weather location catalogue: place list of the largest state, resolving the last line =="
"$build/bin/catalogue_bench"

echo
echo "== Whiteboard: 10,000 pointer samples drawn on a 1920x1080 board, repainted every frame =="
QT_QPA_PLATFORM=offscreen "$build/bin/whiteboard_bench"

echo
echo "== Calendar: month turns, page repaints, drawing frames and saves at 1400x900 =="
QT_QPA_PLATFORM=offscreen "$build/bin/calendar_bench"

echo
echo "== Weather forecast panel: 48 hours and 7 days drawn at 340x230, 700x420 and at 2x =="
QT_QPA_PLATFORM=offscreen "$build/bin/forecast_bench"

echo
echo "== Idle: dashboard, clock, stopwatch, timer and calculator under Xvfb (60 s) =="
PROGRAM="$build/bin/vantora" "$(dirname "$0")/idle_cost.sh"
