// Starts a program and times it from the start of its process to the moment the X server maps its
// first top-level window, and on to its first painted frame: the moment that window's pixels are
// no longer all one colour (the server's black root shows through an unpainted window). The
// watch is on the server (MapNotify on the root window, then the window's own pixels), not on
// anything the program prints, so every program is timed the same way. Also reads the program's
// CPU time at the painted frame, its resident memory at the map and a second after the frame,
// and its private memory then (all of it, and the written part alone), and ends it with SIGTERM.
//
//   DISPLAY=:N first_map_timer PROGRAM [ARGUMENTS...]
//
// Prints one line: "<ms to first map> <kB resident at map> <kB resident 1 s later>
// <ms to first painted frame> <ms of the program's CPU time to that frame> <kB private 1 s later>
// <kB private and written 1 s later>".
// Exits 1 when the program ends or maps or paints nothing within 10 s. Meant for a private X
// server with a black root, no window manager and no other clients mapping windows, as
// bench/launch_vs_bare_qt.sh runs it.

#include <xcb/xcb.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
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

struct PrivateMemory {
    long all = 0; // clean and dirty pages no other process maps, in kB
    long written = 0; // the dirty ones alone: heap, stacks, written data
};

// Clean private pages are mostly library code that no other running process happens to map: the
// same program reads 9 MB beside another Qt program and 33 MB alone. Dirty pages are its own.
PrivateMemory privateKilobytes(pid_t pid)
{
    std::ifstream rollup("/proc/" + std::to_string(pid) + "/smaps_rollup");
    std::string line;
    PrivateMemory memory;
    while (std::getline(rollup, line)) {
        const long kb = std::strtol(line.c_str() + 14, nullptr, 10);
        if (line.rfind("Private_Clean:", 0) == 0)
            memory.all += kb;
        if (line.rfind("Private_Dirty:", 0) == 0) {
            memory.all += kb;
            memory.written += kb;
        }
    }
    return memory;
}

// CPU time of every thread of the process so far, in ms (the scheduler's nanosecond count).
double cpuMilliseconds(pid_t pid)
{
    const std::string tasks = "/proc/" + std::to_string(pid) + "/task";
    double ns = 0;
    if (DIR *dir = opendir(tasks.c_str())) {
        while (dirent *entry = readdir(dir)) {
            if (entry->d_name[0] == '.')
                continue;
            std::ifstream stat(tasks + "/" + entry->d_name + "/schedstat");
            double running = 0;
            if (stat >> running)
                ns += running;
        }
        closedir(dir);
    }
    return ns / 1e6;
}

void endProgram(pid_t pid)
{
    kill(pid, SIGTERM);
    int status = 0;
    waitpid(pid, &status, 0);
}

// Waits for the first MapNotify of a child of the root window and returns that window; 0 when
// none came in time or the program ended first.
xcb_window_t waitForFirstMap(xcb_connection_t *connection, pid_t pid, Clock::time_point started)
{
    const int fd = xcb_get_file_descriptor(connection);
    while (Clock::now() - started < kGiveUpAfter) {
        while (xcb_generic_event_t *event = xcb_poll_for_event(connection)) {
            xcb_window_t mapped = 0;
            if ((event->response_type & 0x7f) == XCB_MAP_NOTIFY)
                mapped = reinterpret_cast<xcb_map_notify_event_t *>(event)->window;
            std::free(event);
            if (mapped)
                return mapped;
        }
        if (xcb_connection_has_error(connection))
            return false;
        int status = 0;
        if (waitpid(pid, &status, WNOHANG) == pid)
            return false;
        pollfd watch{fd, POLLIN, 0};
        poll(&watch, 1, 20);
    }
    return 0;
}

// True when the window's pixels are not all one colour. The whole window is read from the
// server each time: a few hundred microseconds for a dashboard-sized window.
bool windowIsPainted(xcb_connection_t *connection, xcb_window_t window)
{
    xcb_get_geometry_reply_t *geometry =
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr);
    if (!geometry)
        return false;
    const uint16_t width = geometry->width;
    const uint16_t height = geometry->height;
    std::free(geometry);
    xcb_get_image_reply_t *image = xcb_get_image_reply(
        connection, xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, window, 0, 0, width, height, ~0u), nullptr);
    if (!image)
        return false;
    const int length = xcb_get_image_data_length(image);
    const auto *pixels = reinterpret_cast<const uint32_t *>(xcb_get_image_data(image));
    bool painted = false;
    for (int i = 1; i < length / 4 && !painted; ++i)
        painted = (pixels[i] & 0xffffff) != (pixels[0] & 0xffffff);
    std::free(image);
    return painted;
}

// Polls the window every 2 ms until it shows something; false when it never did in time or the
// program ended first.
bool waitForFirstPaint(xcb_connection_t *connection, xcb_window_t window, pid_t pid, Clock::time_point started)
{
    while (Clock::now() - started < kGiveUpAfter) {
        if (windowIsPainted(connection, window))
            return true;
        int status = 0;
        if (xcb_connection_has_error(connection) || waitpid(pid, &status, WNOHANG) == pid)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
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
    const xcb_window_t window = waitForFirstMap(connection, pid, started);
    if (!window) {
        std::fprintf(stderr, "first_map_timer: %s mapped no window\n", argv[1]);
        endProgram(pid);
        return 1;
    }
    const auto msSinceStart = [&] { return std::chrono::duration<double, std::milli>(Clock::now() - started).count(); };
    const double toMap = msSinceStart();
    const long atMap = residentKilobytes(pid);
    if (!waitForFirstPaint(connection, window, pid, started)) {
        std::fprintf(stderr, "first_map_timer: %s painted nothing in its first window\n", argv[1]);
        endProgram(pid);
        return 1;
    }
    const double toPaint = msSinceStart();
    const double cpuToPaint = cpuMilliseconds(pid);
    std::this_thread::sleep_for(std::chrono::seconds(1));
    const long settled = residentKilobytes(pid);
    const PrivateMemory privateKb = privateKilobytes(pid);
    endProgram(pid);
    xcb_disconnect(connection);
    std::printf("%.1f %ld %ld %.1f %.1f %ld %ld\n", toMap, atMap, settled, toPaint, cpuToPaint, privateKb.all,
                privateKb.written);
    return 0;
}
