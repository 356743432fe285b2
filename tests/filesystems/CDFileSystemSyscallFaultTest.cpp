// A CDFS on disk whose middle entry grows (moving a tail of several blocks)
// while the disk fails each system call in turn (tests/support/FaultInjection.h).
// A failure is reported; after a transient one every other entry is whole and
// the grown entry holds its old bytes plus what the write reported, also after
// reopening. A sticky one (the disk stays broken) only has to be reported:
// with no journal, what a broken disk keeps is not promised.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>

#include "qv/filesystems/CDFileSystem.h"
#include "support/FaultInjection.h"
#include "tests/filesystems/CDFileSystemTestSupport.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

TEST(CDFileSystemSyscallFaults, AFailingDiskNeverReachesAnotherEntry) {
    ScratchDir dir;
    CString path = dir.Text("host.cdfs");
    std::map<std::u16string, std::string> const start = {
        {u"/a", SeededBytes(3000, 1)}, {u"/b", SeededBytes(5000, 2)}, {u"/c", SeededBytes(0x280000, 3)}};
    std::string const more = SeededBytes(9000, 4);
    uint32_t written = 0;
    // Made in run, under the faults; closed in check, with the real calls.
    std::unique_ptr<CCDFileSystem> cdfs;
    std::unique_ptr<IFile> b;
    auto prepare = [&] {
        std::remove(dir.Path("host.cdfs").c_str());
        CCDFileSystem made;
        ASSERT_TRUE(made.Create(path, false));
        for (auto const &[name, bytes] : start)
            ASSERT_TRUE(WriteWhole(made, CString(name.c_str()), bytes));
    };
    auto run = [&] {
        cdfs = std::make_unique<CCDFileSystem>();
        written = 0;
        if (!cdfs->Open(path, false)) return false;
        b.reset(cdfs->CreateFileW(u"/b", 0x72));
        if (!b) return false;
        written = b->Write(more.data(), uint32_t(more.size()));
        return cdfs->Flush() && written == more.size();
    };
    auto expectWhole = [&](CCDFileSystem &fs) {
        EXPECT_TRUE(ReadWhole(fs, u"/a") == start.at(u"/a"));
        EXPECT_TRUE(ReadWhole(fs, u"/c") == start.at(u"/c"));
        std::string grown = ReadWhole(fs, u"/b");
        EXPECT_TRUE(grown == start.at(u"/b") + more.substr(0, written)) << grown.size() << " " << written;
    };
    auto check = [&](FaultRun const &result) {
        ExpectFailureReported(result);
        bool opened = cdfs->IsOpen();
        if (!result.sticky && opened) expectWhole(*cdfs); // what it holds in memory
        b.reset();
        cdfs.reset();
        if (result.sticky) return;
        // The stored CDFS: whole, with every entry as before.
        CCDFileSystem again;
        ASSERT_TRUE(again.Open(path, true));
        if (!opened) written = 0;
        expectWhole(again);
    };
    int runs = RunUnderFaults(prepare, run, check,
                              {Fault::kWrite, Fault::kWriteShort, Fault::kRead, Fault::kLseek, Fault::kFtruncate});
    EXPECT_GT(runs, 20);
}

} // namespace
} // namespace qv::test
