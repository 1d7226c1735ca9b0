// Starts a program and times it from the start of its process to the moment the X server maps its
// first top-level window. The watch is on the server (MapNotify on the root window), not on
// anything the program prints, so every program is timed the same way. Also reads the program's
// resident memory at that moment and again a second later, then ends it with SIGTERM.
//
//   DISPLAY=:N first_map_timer PROGRAM [ARGUMENTS...]
//
// Prints one line: "<ms to first map> <kB resident at map> <kB resident 1 s later>".
// Exits 1 when the program ends or maps nothing within 10 s. Meant for a private X server with no
// window manager and no other clients mapping windows, as bench/launch_vs_bare_qt.sh runs it.

#include <xcb/xcb.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

extern char **environ;

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kGiveUpAfter = std::chrono::seconds(10);

long residentKilobytes(pid_t pid)
{
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0)
            return std::strtol(line.c_str() + 6, nullptr, 10);
    }
    return -1;
}

void endProgram(pid_t pid)
{
    kill(pid, SIGTERM);
    int status = 0;
    waitpid(pid, &status, 0);
}

// Waits for the first MapNotify of a child of the root window; false when none came in time or
// the program ended first.
bool waitForFirstMap(xcb_connection_t *connection, pid_t pid, Clock::time_point started)
{
    const int fd = xcb_get_file_descriptor(connection);
    while (Clock::now() - started < kGiveUpAfter) {
        while (xcb_generic_event_t *event = xcb_poll_for_event(connection)) {
            const bool mapped = (event->response_type & 0x7f) == XCB_MAP_NOTIFY;
            std::free(event);
            if (mapped)
                return true;
        }
        if (xcb_connection_has_error(connection))
            return false;
        int status = 0;
        if (waitpid(pid, &status, WNOHANG) == pid)
            return false;
        pollfd watch{fd, POLLIN, 0};
        poll(&watch, 1, 20);
    }
    return false;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: first_map_timer PROGRAM [ARGUMENTS...]\n");
        return 2;
    }
    xcb_connection_t *connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        std::fprintf(stderr, "first_map_timer: cannot reach the X server in DISPLAY\n");
        return 2;
    }
    xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
    const uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_void_cookie_t cookie =
        xcb_change_window_attributes_checked(connection, screen->root, XCB_CW_EVENT_MASK, &mask);
    if (xcb_generic_error_t *error = xcb_request_check(connection, cookie)) {
        std::free(error);
        std::fprintf(stderr, "first_map_timer: cannot watch the root window\n");
        return 2;
    }

    const Clock::time_point started = Clock::now();
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[1], nullptr, nullptr, argv + 1, environ) != 0) {
        std::fprintf(stderr, "first_map_timer: cannot start %s: %s\n", argv[1], std::strerror(errno));
        return 2;
    }
    if (!waitForFirstMap(connection, pid, started)) {
        std::fprintf(stderr, "first_map_timer: %s mapped no window\n", argv[1]);
        endProgram(pid);
        return 1;
    }
    const auto elapsed = std::chrono::duration<double, std::milli>(Clock::now() - started).count();
    const long atMap = residentKilobytes(pid);
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const long settled = residentKilobytes(pid);
    endProgram(pid);
    xcb_disconnect(connection);
    std::printf("%.1f %ld %ld\n", elapsed, atMap, settled);
    return 0;
}
