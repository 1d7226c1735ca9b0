#!/usr/bin/env bash
# Runs one desktop test on a private X server with a window manager, as a user's session has:
#   run_desktop_test.sh TEST [ARGS...]
# Xvfb picks a free display itself (bench/bench_session.sh), openbox manages its windows, and
# TEST runs with DISPLAY set and QT_QPA_PLATFORM=xcb; both are stopped when it ends. Each test
# gets a server of its own, so tests run side by side (ctest -j2). Exits 77, which CTest counts
# as skipped, only when the server or the window manager cannot be started here.
set -u

here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=../../bench/bench_session.sh
source "$here/../../bench/bench_session.sh"

skip() {
    echo "SKIPPED: $*"
    exit 77
}

for tool in Xvfb openbox xdotool xprop; do
    command -v "$tool" >/dev/null || skip "$tool is not installed (packaging/install-build-deps.sh installs it)"
done

wm_pid=
stop_session() {
    if [[ -n $wm_pid ]]; then
        kill "$wm_pid" 2>/dev/null
        wait "$wm_pid" 2>/dev/null
        wm_pid=
    fi
    stop_private_xvfb
}
trap stop_session EXIT

# Two servers starting at once may both go for the same free display; the loser tries again.
started=
for _ in 1 2 3 4; do
    if start_private_xvfb 2>/dev/null; then
        started=1
        break
    fi
    stop_private_xvfb
    sleep "0.$((RANDOM % 5 + 1))"
done
[[ -n $started ]] || skip "Xvfb could not be started"
openbox --sm-disable >/dev/null 2>&1 &
wm_pid=$!
# The window manager is up once it has announced itself on the root window.
for _ in $(seq 50); do
    xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' && break
    kill -0 "$wm_pid" 2>/dev/null || skip "openbox could not be started"
    sleep 0.1
done
xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id' || skip "openbox did not come up"

export QT_QPA_PLATFORM=xcb
"$@"
status=$?
stop_session
exit "$status"
