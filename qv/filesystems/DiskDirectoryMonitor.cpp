#include "qv/filesystems/DiskDirectoryMonitor.h"

#include <new>

#include "qv/core/StringFunctions.h"
#include "qv/filesystems/DiskMonitorWorker.h"

namespace qv {

CWin32DirectoryMonitor::CWin32DirectoryMonitor(char16_t const *dir, uint32_t flags) : IDirectoryMonitor(dir, flags) {}

CWin32DirectoryMonitor::~CWin32DirectoryMonitor() {
    Stop();
}

bool CWin32DirectoryMonitor::Start() {
    if (worker && !worker->HasEnded()) return true;
    Stop();
    try {
        auto starting = std::make_shared<CDiskMonitorWorker>(this);
        if (!starting->Begin()) return false;
        // A run let go from within a handler may still be running handlers:
        // the new one fires only after it.
        thread = std::thread([run = starting, before = leaving] {
            if (before) before->WaitEnded();
            run->Run();
        });
        leaving.reset();
        worker = std::move(starting);
        worker->Go();
        return true;
    } catch (...) { // no memory or no thread
        return false;
    }
}

void CWin32DirectoryMonitor::Stop() {
    if (!worker) return;
    worker->RequestStop();
    // The thread holds its own share of the worker, so letting it go is safe.
    if (thread.get_id() == std::this_thread::get_id()) {
        thread.detach();
        leaving = worker;
    } else {
        thread.join();
    }
    worker.reset();
}

IDirectoryMonitor *CreateDiskDirectoryMonitor(char16_t const *dir, uint32_t flags) {
    if (!dir || !*dir || StrLen(dir) >= size_t(IDirectoryMonitor::kMaxDirectory)) return nullptr;
    return new (std::nothrow) CWin32DirectoryMonitor(dir, flags);
}

} // namespace qv
