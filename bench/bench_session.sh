# Sourced by the benchmark scripts that run the program on a display: a private Xvfb for one
# run, on a display number it picks itself, so a benchmark never draws on the user's screen or
# meets another program's windows; and a data folder with the first-run choice made.
#   start_private_xvfb      starts it and exports DISPLAY; returns 1 when it does not come up
#   stop_private_xvfb       ends it (safe to call twice, or when it never started)
#   write_chosen_settings D writes D/settings.reg: all widgets through the dashboard chosen, so
#                           that no wizard opens and the dashboard is the first window

private_xvfb_pid=

start_private_xvfb() {
    local display= display_fd
    # Xvfb writes the display number it chose to the descriptor it is given.
    exec {display_fd}<> <(:)
    # -noreset: the server stays up between programs (it resets when its last client leaves);
    # -br: a black root, so a window not painted yet reads as one colour.
    Xvfb -displayfd "$display_fd" -screen 0 1280x800x24 -nolisten tcp -noreset -br >/dev/null 2>&1 &
    private_xvfb_pid=$!
    for _ in $(seq 50); do
        if read -r -t 0.2 -u "$display_fd" display && [[ -n $display ]]; then break; fi
    done
    exec {display_fd}>&-
    if [[ -z $display ]]; then
        echo "Xvfb did not start." >&2
        return 1
    fi
    export DISPLAY=:$display
}

stop_private_xvfb() {
    if [[ -n $private_xvfb_pid ]]; then
        kill "$private_xvfb_pid" 2>/dev/null
        wait "$private_xvfb_pid" 2>/dev/null
        private_xvfb_pid=
    fi
    return 0
}

write_chosen_settings() {
    cat >"$1/settings.reg" <<'REG'
Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\SOFTWARE\Vantora\msg_WIZ\Details]
"Program-Choice"="8"
REG
}
