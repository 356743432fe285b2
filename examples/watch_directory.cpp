// Watches a directory tree and prints each change until SECONDS have passed.
//   watch_directory DIR SECONDS
#include <qv/qv.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

// Handlers run on the monitor's own thread; the texts live during the call only.
void OnAdded(void *, char16_t const *path) {
    std::printf("added %s\n", qv::CString(path).GetUTF8());
    std::fflush(stdout);
}
void OnRemoved(void *, char16_t const *path) {
    std::printf("removed %s\n", qv::CString(path).GetUTF8());
    std::fflush(stdout);
}
void OnModified(void *, char16_t const *path) {
    std::printf("modified %s\n", qv::CString(path).GetUTF8());
    std::fflush(stdout);
}
void OnRenamed(void *, char16_t const *from, char16_t const *to) {
    std::printf("renamed %s -> %s\n", qv::CString(from).GetUTF8(), qv::CString(to).GetUTF8());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: watch_directory DIR SECONDS\n");
        return 2;
    }
    qv::IDirectoryMonitor *monitor =
        qv::FileSystem->MonitorDirectory(qv::CString(argv[1]), qv::IDirectoryMonitor::kWatchNames);
    if (!monitor) {
        std::fprintf(stderr, "watch_directory: %s is not a directory\n", argv[1]);
        return 1;
    }
    // Handlers first, then Start.
    monitor->FileAdded.AddHandler(&OnAdded);
    monitor->FileRemoved.AddHandler(&OnRemoved);
    monitor->FileModified.AddHandler(&OnModified);
    monitor->FileRenamed.AddHandler(&OnRenamed);
    if (!monitor->Start()) {
        std::fprintf(stderr, "watch_directory: cannot watch %s\n", argv[1]);
        delete monitor;
        return 1;
    }
    std::this_thread::sleep_for(std::chrono::seconds(std::atoi(argv[2])));
    delete monitor; // stops the monitor and joins its thread
    return 0;
}
