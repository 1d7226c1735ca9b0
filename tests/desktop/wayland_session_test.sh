#!/usr/bin/env bash
# Runs the real program in a Wayland session: a headless weston, drawn by the CPU, with XWayland
# when weston has it.
#   1. Asked for Wayland itself (VANTORA_PLATFORM=wayland), the program runs on Qt's Wayland
#      platform, its clock maps as a toplevel of the compositor and shows on the screen, and a
#      stored place neither hangs nor crashes it (the compositor places the window there).
#   2. With XWayland and nothing asked for, it chooses X11 by itself, and the window maps too.
# Each run must end within a few seconds of SIGTERM, without a crash. Given the launcher entry,
# the X11 window's class must be the entry's StartupWMClass, so that docks match the two.
#   wayland_session_test.sh PROGRAM [LAUNCHER_ENTRY]
# Skipped (77) only when weston cannot be started. With VANTORA_SHOTS set to a folder, the
# screenshots are kept there.
set -u

program=$1
entry=${2:-}
here=$(cd "$(dirname "$0")" && pwd)
# shellcheck source=../../bench/bench_session.sh
source "$here/../../bench/bench_session.sh"

skip() {
    echo "SKIPPED: $*"
    exit 77
}
for tool in weston weston-screenshooter weston-debug; do
    command -v "$tool" >/dev/null || skip "$tool is not installed (packaging/install-build-deps.sh installs weston)"
done

work=$(mktemp -d)
weston_pid=
program_pid=
finish() {
    [[ -n $program_pid ]] && kill -KILL "$program_pid" 2>/dev/null
    if [[ -n $weston_pid ]]; then
        kill "$weston_pid" 2>/dev/null
        wait "$weston_pid" 2>/dev/null
    fi
    rm -rf "$work"
}
trap finish EXIT

fail() {
    echo "FAIL: $*"
    for log in "$work"/*.log; do
        echo "--- $(basename "$log")"
        tail -n 20 "$log"
    done
    exit 1
}

# A session of our own: nothing of the caller's display may leak in.
unset DISPLAY WAYLAND_DISPLAY XDG_SESSION_TYPE QT_QPA_PLATFORM VANTORA_PLATFORM
export XDG_RUNTIME_DIR=$work/runtime
mkdir -m 700 "$XDG_RUNTIME_DIR"
export WAYLAND_DISPLAY=vantora-test
# As a desktop's Wayland session sets it; Qt then prefers its Wayland platform by itself.
export XDG_SESSION_TYPE=wayland
# A black screen without a panel, so that whatever is not black is the program's.
cat >"$work/weston.ini" <<'INI'
[core]
idle-time=0
[shell]
background-color=0xff000000
panel-position=none
INI

xwayland=()
if command -v Xwayland >/dev/null && [[ -n $(find /usr/lib* -name xwayland.so -path '*weston*' 2>/dev/null) ]]; then
    xwayland=(--xwayland)
fi
# --debug lets the screenshooter and the scene-graph dump in.
weston --config="$work/weston.ini" --backend=headless-backend.so --use-pixman --debug "${xwayland[@]}" \
    --socket="$WAYLAND_DISPLAY" --width=1024 --height=768 >"$work/weston.log" 2>&1 &
weston_pid=$!
for _ in $(seq 50); do
    [[ -S $XDG_RUNTIME_DIR/$WAYLAND_DISPLAY ]] && break
    kill -0 "$weston_pid" 2>/dev/null || break
    sleep 0.1
done
[[ -S $XDG_RUNTIME_DIR/$WAYLAND_DISPLAY ]] || skip "weston could not be started: $(tail -n 1 "$work/weston.log")"
xdisplay=
if [[ ${#xwayland[@]} -gt 0 ]]; then
    xdisplay=$(sed -n 's/.*xserver listening on display \(:[0-9]*\).*/\1/p' "$work/weston.log" | head -n 1)
fi

# A screenshot of the whole output as $work/NAME.png.
screenshot() {
    local folder=$work/shot-$1
    mkdir -p "$folder"
    (cd "$folder" && weston-screenshooter >/dev/null 2>&1) || return 1
    mv "$folder"/*.png "$work/$1.png" 2>/dev/null || return 1
    rmdir "$folder"
    [[ -z ${VANTORA_SHOTS:-} ]] || cp "$work/$1.png" "$VANTORA_SHOTS/wayland-session-$1.png"
}

# Where the window titled $1 is on the screen ("x,y"), once it has mapped (10 s at most); fails
# when it never does. A Wayland window is found in the compositor's scene graph, an X11 one on
# the X server.
mapped_window() {
    local found
    for _ in $(seq 50); do
        if [[ $2 = xcb ]]; then
            found=$(timeout 2 xdotool search --onlyvisible --name "^$1\$" getwindowgeometry %@ 2>/dev/null |
                sed -n 's/.*Position: \([0-9-]*,[0-9-]*\).*/\1/p' | head -n 1)
        else
            found=$(timeout 2 weston-debug scene-graph 2>/dev/null | grep -A 1 "window '$1'" |
                sed -n 's/.*position: (\([0-9-]*\), \([0-9-]*\)).*/\1,\2/p' | head -n 1)
        fi
        [[ -n $found ]] && echo "$found" && return 0
        kill -0 "$program_pid" 2>/dev/null || return 1
        sleep 0.2
    done
    return 1
}

# Sends SIGTERM and expects the program gone within 5 s, ended by the signal or by itself.
stop_program() {
    local status
    kill -TERM "$program_pid"
    for _ in $(seq 50); do
        kill -0 "$program_pid" 2>/dev/null || break
        sleep 0.1
    done
    kill -0 "$program_pid" 2>/dev/null && fail "$1: still running 5 s after SIGTERM"
    wait "$program_pid"
    status=$?
    program_pid=
    [[ $status = 0 || $status = 143 ]] || fail "$1: ended with status $status after SIGTERM"
}

# Starts the program with a fresh data folder whose clock has a stored place (300, 400), and
# opens the clock. $1 names the run; the rest is the environment it gets.
start_program() {
    local name=$1 home=$work/home-$1
    shift
    mkdir "$home"
    write_chosen_settings "$home"
    cat >>"$home/settings.reg" <<'REG'

[HKEY_CURRENT_USER\SOFTWARE\Vantora\falc_IDX\Window]
"Left"="4500"
"Top"="6000"
REG
    env "$@" VANTORA_HOME="$home" QT_LOGGING_RULES="vantora.instance.debug=true" \
        "$program" --open clock >"$work/$name.log" 2>&1 &
    program_pid=$!
}

check_run() {
    local name=$1 platform=$2 place
    # Found as a Wayland toplevel, or as an X11 window: either proves the platform.
    place=$(DISPLAY=${xdisplay:-} mapped_window 'Vantora Alarm Clock' "$platform") ||
        fail "$name: the clock never mapped as a window of the $platform platform"
    sleep 0.5 # a frame drawn
    screenshot "$name" || fail "$name: no screenshot"
    cmp -s "$work/blank.png" "$work/$name.png" && fail "$name: the screen shows nothing"
    kill -0 "$program_pid" 2>/dev/null || fail "$name: the program ended by itself"
    if [[ $platform = xcb && -f $entry ]]; then
        local class expected
        class=$(DISPLAY=$xdisplay xdotool search --onlyvisible --name '^Vantora Alarm Clock$' 2>/dev/null | head -n 1 |
            xargs -r -I{} env DISPLAY="$xdisplay" xprop -id {} WM_CLASS | sed -n 's/.*= "[^"]*", "\([^"]*\)"/\1/p')
        expected=$(sed -n 's/^StartupWMClass=//p' "$entry")
        [[ -n $class && $class = "$expected" ]] ||
            fail "$name: the window's class is '$class', the launcher entry's StartupWMClass '$expected'"
    fi
    if grep -qiE 'fatal|segmentation|could not (load|connect)' "$work/$name.log"; then
        fail "$name: the program reported a fatal problem"
    fi
    stop_program "$name"
    # Not compared: weston places X11 windows itself too, unlike the X window managers of GNOME
    # and Plasma, which keep the place an X11 client asks for.
    echo "PASS: $name: runs on $platform ($(grep -o 'window system: .*' "$work/$name.log")), the clock maps at $place (stored 300,400) and ends on SIGTERM"
}

screenshot blank || skip "weston takes no screenshots here"

start_program wayland VANTORA_PLATFORM=wayland ${xdisplay:+DISPLAY=$xdisplay}
check_run wayland wayland

if [[ -z $xdisplay ]] || ! command -v xdotool >/dev/null; then
    echo "SKIPPED: the XWayland run (no XWayland in weston, or no xdotool)"
    exit 0
fi
start_program xwayland DISPLAY="$xdisplay"
check_run xwayland xcb
