#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "qv/core/DebugOutput.h"
#include "qv/core/String.h"
#include "qv/filesystems/DiskDirectoryMonitor.h"

namespace qv {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

// Generous: only a broken monitor ever waits this long.
constexpr auto kTimeLimit = std::chrono::seconds(20);

// ASCII as it stands, every other unit as <XXXX>, so that tests see exact units.
std::string Units(char16_t const *text) {
    static char const kHex[] = "0123456789ABCDEF";
    std::string out;
    for (; *text; ++text) {
        if (*text < 0x80) {
            out += char(*text);
            continue;
        }
        out += '<';
        for (int shift = 12; shift >= 0; shift -= 4)
            out += kHex[(*text >> shift) & 0xF];
        out += '>';
    }
    return out;
}

// Lines that several threads add to, and a wait for a line with a time limit.
class CLines {
public:
    void Add(std::string line) {
        std::lock_guard<std::mutex> hold(lock);
        lines.push_back(std::move(line));
        changed.notify_all();
    }
    bool WaitFor(std::string const &line) {
        std::unique_lock<std::mutex> hold(lock);
        return changed.wait_for(hold, kTimeLimit, [&] { return Has(line); });
    }
    bool WaitForText(std::string const &part) {
        std::unique_lock<std::mutex> hold(lock);
        return changed.wait_for(hold, kTimeLimit, [&] {
            return std::any_of(lines.begin(), lines.end(),
                               [&](std::string const &l) { return l.find(part) != l.npos; });
        });
    }
    bool Contains(std::string const &line) {
        std::lock_guard<std::mutex> hold(lock);
        return Has(line);
    }
    Lines All() {
        std::lock_guard<std::mutex> hold(lock);
        return lines;
    }

private:
    bool Has(std::string const &line) const { return std::find(lines.begin(), lines.end(), line) != lines.end(); }

    std::mutex lock;
    std::condition_variable changed;
    Lines lines;
};

// Writes every event of a monitor down, and may act on the monitor from a
// handler.
class CRecorder : public IEventTarget {
public:
    CLines events;
    enum class EAction { None, Stop, StopTwice, Delete, Block };
    std::atomic<EAction> action{EAction::None}; // what the next added event does

    void Attach(IDirectoryMonitor &monitor) {
        monitor.FileAdded.AddHandlerEx(this, &CRecorder::OnAdded);
        monitor.FileRemoved.AddHandlerEx(this, &CRecorder::OnRemoved);
        monitor.FileModified.AddHandlerEx(this, &CRecorder::OnModified);
        monitor.FileRenamed.AddHandlerEx(this, &CRecorder::OnRenamed);
    }
    void Release() {
        std::lock_guard<std::mutex> hold(blockLock);
        released = true;
        unblocked.notify_all();
    }

private:
    void OnAdded(void *sender, char16_t const *path) {
        Act(static_cast<IDirectoryMonitor *>(sender));
        events.Add("added " + Units(path));
    }
    void OnRemoved(void *, char16_t const *path) { events.Add("removed " + Units(path)); }
    void OnModified(void *, char16_t const *path) { events.Add("modified " + Units(path)); }
    void OnRenamed(void *, char16_t const *from, char16_t const *to) {
        events.Add("renamed " + Units(from) + " " + Units(to));
    }
    void Act(IDirectoryMonitor *monitor) {
        switch (action.exchange(EAction::None)) {
        case EAction::Stop:
            monitor->Stop();
            break;
        case EAction::StopTwice:
            monitor->Stop();
            monitor->Stop();
            break;
        case EAction::Delete:
            delete monitor;
            break;
        case EAction::Block: {
            events.Add("blocked");
            std::unique_lock<std::mutex> hold(blockLock);
            unblocked.wait_for(hold, kTimeLimit, [&] { return released; });
            break;
        }
        case EAction::None:
            break;
        }
    }

    std::mutex blockLock;
    std::condition_variable unblocked;
    bool released = false;
};

void Touch(fs::path const &path, std::string const &text = "") {
    std::ofstream(path) << text;
}

// A watched tree and a directory beside it, both removed afterwards.
class DirectoryMonitorTest : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "qv_monitor_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        base = pattern;
        tree = base / "tree";
        outside = base / "outside";
        fs::create_directories(tree);
        fs::create_directories(outside);
    }
    void TearDown() override {
        monitor.reset();
        std::error_code ignored;
        fs::remove_all(base, ignored);
    }
    // A monitor of the tree with the recorder attached, started.
    void Watch(uint32_t flags) {
        monitor.reset(CreateDiskDirectoryMonitor(CString(tree.c_str()).GetUTF16(), flags));
        ASSERT_NE(monitor, nullptr);
        recorder.Attach(*monitor);
        ASSERT_TRUE(monitor->Start());
    }
    // Everything the monitor reported before it saw marker made.
    Lines UpToMarker(char const *marker) {
        Touch(tree / marker);
        EXPECT_TRUE(recorder.events.WaitFor(std::string("added ") + marker));
        return recorder.events.All();
    }

    fs::path base, tree, outside;
    CRecorder recorder;
    std::unique_ptr<IDirectoryMonitor> monitor;
};

TEST_F(DirectoryMonitorTest, ReportsAddsWritesRenamesAndDeletes) {
    Watch(IDirectoryMonitor::kWatchNames);
    Touch(tree / "a.txt", "data");
    EXPECT_TRUE(recorder.events.WaitFor("added a.txt"));
    EXPECT_TRUE(recorder.events.WaitFor("modified a.txt"));
    fs::rename(tree / "a.txt", tree / "b.txt");
    EXPECT_TRUE(recorder.events.WaitFor("renamed a.txt b.txt"));
    fs::remove(tree / "b.txt");
    EXPECT_TRUE(recorder.events.WaitFor("removed b.txt"));
    // The rename was one event, neither a removal nor an addition.
    Lines seen = recorder.events.All();
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "removed a.txt"), 0);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "added b.txt"), 0);
}

TEST_F(DirectoryMonitorTest, MovesAcrossTheTreesEdgeAreAddsAndRemovals) {
    Touch(outside / "o.txt");
    fs::create_directories(outside / "od" / "inner");
    Watch(IDirectoryMonitor::kWatchNames);
    fs::rename(outside / "o.txt", tree / "in.txt");
    EXPECT_TRUE(recorder.events.WaitFor("added in.txt"));
    fs::rename(tree / "in.txt", outside / "out.txt");
    EXPECT_TRUE(recorder.events.WaitFor("removed in.txt"));

    // A directory moved in is watched, with what is below it.
    fs::rename(outside / "od", tree / "od");
    EXPECT_TRUE(recorder.events.WaitFor("added od"));
    Touch(tree / "od" / "inner" / "h");
    EXPECT_TRUE(recorder.events.WaitFor("added od/inner/h"));
    // Moved out again, it is no longer watched.
    fs::rename(tree / "od", outside / "gone");
    EXPECT_TRUE(recorder.events.WaitFor("removed od"));
    Touch(outside / "gone" / "inner" / "z");
    for (std::string const &line : UpToMarker("marker"))
        EXPECT_EQ(line.find('z'), line.npos) << line;
}

TEST_F(DirectoryMonitorTest, WatchesTheWholeTreeAsItGrows) {
    fs::create_directories(tree / "pre" / "x");
    Watch(IDirectoryMonitor::kWatchNames);
    Touch(tree / "pre" / "x" / "f");
    EXPECT_TRUE(recorder.events.WaitFor("added pre/x/f"));

    fs::create_directory(tree / "sub");
    EXPECT_TRUE(recorder.events.WaitFor("added sub"));
    Touch(tree / "sub" / "f");
    EXPECT_TRUE(recorder.events.WaitFor("added sub/f"));

    // Made faster than a watch can follow: the levels are found all the same.
    fs::create_directories(tree / "a" / "b" / "c");
    Touch(tree / "a" / "b" / "c" / "f");
    EXPECT_TRUE(recorder.events.WaitFor("added a/b/c"));
    EXPECT_TRUE(recorder.events.WaitFor("added a/b/c/f"));

    // A renamed directory keeps being watched under its new name.
    fs::rename(tree / "sub", tree / "sub2");
    EXPECT_TRUE(recorder.events.WaitFor("renamed sub sub2"));
    Touch(tree / "sub2" / "g");
    EXPECT_TRUE(recorder.events.WaitFor("added sub2/g"));
    fs::remove_all(tree / "sub2");
    EXPECT_TRUE(recorder.events.WaitFor("removed sub2/g"));
    EXPECT_TRUE(recorder.events.WaitFor("removed sub2"));
}

TEST_F(DirectoryMonitorTest, DiskNamesOfAnyFormAndTheLongestLengthComeThroughWhole) {
    Watch(IDirectoryMonitor::kWatchNames);
    // 255 bytes, the longest disk name: U+00E9, a byte that is no UTF-8, 252 more.
    std::string name = "\xC3\xA9\xFF" + std::string(252, 'n');
    std::string nameAsUnits = "<00E9><DCFF>" + std::string(252, 'n');
    std::string dirAsUnits = nameAsUnits.substr(0, 12 + 197);
    Touch(tree / name);
    EXPECT_TRUE(recorder.events.WaitFor("added " + nameAsUnits));
    fs::create_directory(tree / name.substr(0, 200));
    ASSERT_TRUE(recorder.events.WaitFor("added " + dirAsUnits)); // reported once watched
    fs::rename(tree / name, tree / name.substr(0, 200) / name);
    EXPECT_TRUE(recorder.events.WaitFor("renamed " + nameAsUnits + " " + dirAsUnits + "/" + nameAsUnits));
}

TEST_F(DirectoryMonitorTest, AttributeChangesNeedTheirFlag) {
    Touch(tree / "f");
    Watch(IDirectoryMonitor::kWatchNames);
    fs::permissions(tree / "f", fs::perms::owner_read);
    for (std::string const &line : UpToMarker("marker1"))
        EXPECT_NE(line, "modified f");

    Watch(IDirectoryMonitor::kWatchNames | IDirectoryMonitor::kWatchAttributes);
    fs::permissions(tree / "f", fs::perms::owner_all);
    EXPECT_TRUE(recorder.events.WaitFor("modified f"));
}

TEST_F(DirectoryMonitorTest, StartsOnlyOnADirectoryAndStopsAnyNumberOfTimes) {
    EXPECT_EQ(CreateDiskDirectoryMonitor(nullptr, 1), nullptr);
    EXPECT_EQ(CreateDiskDirectoryMonitor(u"", 1), nullptr);
    std::u16string longest(IDirectoryMonitor::kMaxDirectory - 1, u'd');
    std::unique_ptr<IDirectoryMonitor> fits(CreateDiskDirectoryMonitor(longest.c_str(), 1));
    ASSERT_NE(fits, nullptr);
    EXPECT_EQ(std::u16string(fits->GetDirectory()), longest);
    EXPECT_FALSE(fits->Start()); // no such directory
    longest += u'd';
    EXPECT_EQ(CreateDiskDirectoryMonitor(longest.c_str(), 1), nullptr);

    Touch(tree / "file");
    std::unique_ptr<IDirectoryMonitor> onFile(
        CreateDiskDirectoryMonitor(CString((tree / "file").c_str()).GetUTF16(), 1));
    EXPECT_FALSE(onFile->Start());
    onFile->Stop();

    Watch(IDirectoryMonitor::kWatchNames);
    EXPECT_EQ(monitor->GetFlags(), IDirectoryMonitor::kWatchNames);
    EXPECT_TRUE(monitor->Start()); // already running
    monitor->Stop();
    monitor->Stop();
    Touch(tree / "unseen");
    ASSERT_TRUE(monitor->Start());
    Lines seen = UpToMarker("marker");
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "added unseen"), 0);
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "added marker"), 1);
}

TEST_F(DirectoryMonitorTest, RemovedDirectoryEndsTheWatchAndStartWatchesAnew) {
    Watch(IDirectoryMonitor::kWatchNames);
    Touch(tree / "file");
    ASSERT_TRUE(recorder.events.WaitFor("added file"));
    fs::remove_all(tree);
    // Start answers true while the old watch still runs, then, once its
    // thread has ended, tries anew and fails: the directory is gone.
    bool ended = false;
    for (auto start = std::chrono::steady_clock::now(); !ended && std::chrono::steady_clock::now() - start < kTimeLimit;)
        ended = !monitor->Start();
    ASSERT_TRUE(ended);
    EXPECT_TRUE(recorder.events.Contains("removed file"));
    fs::create_directories(tree);
    ASSERT_TRUE(monitor->Start());
    Lines seen = UpToMarker("marker");
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "added marker"), 1);
    monitor->Stop();
    monitor->Stop();
}

TEST_F(DirectoryMonitorTest, AHandlerMayStopRestartOrDeleteItsMonitor) {
    Watch(IDirectoryMonitor::kWatchNames);
    recorder.action = CRecorder::EAction::StopTwice;
    Touch(tree / "first");
    ASSERT_TRUE(recorder.events.WaitFor("added first"));
    monitor->Stop(); // the owner's Stop after the handler's
    ASSERT_TRUE(monitor->Start());
    UpToMarker("marker");

    recorder.action = CRecorder::EAction::Delete;
    Touch(tree / "second");
    ASSERT_TRUE(recorder.events.WaitFor("added second"));
    static_cast<void>(monitor.release()); // the handler deleted it
}

// A handler that restarts its monitor, then waits a moment for the new
// watch to report a file it makes; it counts handlers running at once.
class CRestarter : public IEventTarget {
public:
    CLines events;
    std::atomic<int> inside{0}, most{0};
    fs::path tree;

    void OnAdded(void *sender, char16_t const *path) {
        int const now = ++inside;
        for (int seen = most; now > seen && !most.compare_exchange_weak(seen, now);) {
        }
        if (!restarted.exchange(true)) {
            auto *monitor = static_cast<IDirectoryMonitor *>(sender);
            monitor->Stop();
            started = monitor->Start();
            Touch(tree / "during");
            std::unique_lock<std::mutex> hold(lock);
            reported.wait_for(hold, std::chrono::milliseconds(200), [&] { return sawDuring; });
        }
        if (Units(path) == "during") {
            std::lock_guard<std::mutex> hold(lock);
            sawDuring = true;
            reported.notify_all();
        }
        events.Add("added " + Units(path));
        --inside;
    }
    std::atomic<bool> started{false};

private:
    std::atomic<bool> restarted{false};
    std::mutex lock;
    std::condition_variable reported;
    bool sawDuring = false;
};

TEST_F(DirectoryMonitorTest, RestartFromAHandlerWaitsForTheOldThreadsHandlers) {
    CRestarter restarter;
    restarter.tree = tree;
    monitor.reset(CreateDiskDirectoryMonitor(CString(tree.c_str()).GetUTF16(), IDirectoryMonitor::kWatchNames));
    ASSERT_NE(monitor, nullptr);
    monitor->FileAdded.AddHandlerEx(&restarter, &CRestarter::OnAdded);
    ASSERT_TRUE(monitor->Start());
    Touch(tree / "first");
    ASSERT_TRUE(restarter.events.WaitFor("added first"));
    EXPECT_TRUE(restarter.started);
    EXPECT_TRUE(restarter.events.WaitFor("added during")) << "the new watch reports";
    EXPECT_EQ(restarter.most, 1) << "the new thread fired while the old one still ran a handler";
    monitor.reset();
}

TEST_F(DirectoryMonitorTest, StopWaitsForARunningHandler) {
    Watch(IDirectoryMonitor::kWatchNames);
    recorder.action = CRecorder::EAction::Block;
    Touch(tree / "first");
    ASSERT_TRUE(recorder.events.WaitFor("blocked"));
    std::thread releaser([&] { recorder.Release(); });
    monitor->Stop();
    EXPECT_TRUE(recorder.events.Contains("added first")); // the handler had ended
    releaser.join();
}

// Collects debug text (the log's echo while it has no file) while it lives.
class CDebugText : public CLines {
public:
    CDebugText() { previous = SetDebugTextHook(&Collect, this); }
    ~CDebugText() { SetDebugTextHook(previous, nullptr); }

private:
    static void Collect(char const *utf8, void *lines) { static_cast<CDebugText *>(lines)->Add(utf8); }
    DebugTextHook previous;
};

TEST_F(DirectoryMonitorTest, LostChangesAreLogged) {
    int limit = 0;
    std::ifstream("/proc/sys/fs/inotify/max_queued_events") >> limit;
    if (limit <= 0 || limit > 100000) GTEST_SKIP() << "the change queue is too long to fill here";
    CDebugText debugText;
    Watch(IDirectoryMonitor::kWatchNames);
    recorder.action = CRecorder::EAction::Block;
    Touch(tree / "first");
    ASSERT_TRUE(recorder.events.WaitFor("blocked"));
    // Writes that alternate between two files, so that the system cannot
    // merge them into one record.
    int files[2] = {::open((tree / "a").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600),
                    ::open((tree / "b").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)};
    for (int i = 0; i <= limit; ++i)
        ASSERT_EQ(::write(files[i % 2], "x", 1), 1);
    ::close(files[0]);
    ::close(files[1]);
    fs::create_directory(tree / "late"); // no room left to tell of it
    recorder.Release();
    EXPECT_TRUE(debugText.WaitForText("fs.inotify.max_queued_events"));
    // Directories made while changes were lost are watched all the same.
    Touch(tree / "late" / "f");
    EXPECT_TRUE(recorder.events.WaitFor("added late/f"));
    monitor.reset();
}

} // namespace
} // namespace qv
