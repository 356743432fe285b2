// A CDFS on disk whose middle entry grows (moving a tail of several blocks),
// and one whose deletes, rename and outgrown table are stored by a flush,
// while the disk fails each system call in turn (tests/support/FaultInjection.h).
// A failure is reported; after a transient one every other entry is whole and
// the grown entry holds its old bytes plus what the write reported, also after
// reopening. A sticky one (the disk stays broken) only has to be reported:
// with no journal, what a broken disk keeps is not promised.
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "qv/filesystems/CDFileSystem.h"
#include "support/FaultInjection.h"
#include "tests/filesystems/CDFileSystemTestSupport.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

using Entries = std::map<std::u16string, std::string>;

// A new CDFS on disk at host.cdfs in dir holding entries, made with the real calls.
void MakeHost(ScratchDir const &dir, Entries const &entries) {
    std::remove(dir.Path("host.cdfs").c_str());
    CCDFileSystem made;
    ASSERT_TRUE(made.Create(dir.Text("host.cdfs"), false));
    for (auto const &[name, bytes] : entries)
        ASSERT_TRUE(WriteWhole(made, CString(name.c_str()), bytes));
}

TEST(CDFileSystemSyscallFaults, AFailingDiskNeverReachesAnotherEntry) {
    ScratchDir dir;
    CString path = dir.Text("host.cdfs");
    Entries const start = {
        {u"/a", SeededBytes(3000, 1)}, {u"/b", SeededBytes(5000, 2)}, {u"/c", SeededBytes(0x280000, 3)}};
    std::string const more = SeededBytes(9000, 4);
    uint32_t written = 0;
    // Made in run, under the faults; closed in check, with the real calls.
    std::unique_ptr<CCDFileSystem> cdfs;
    std::unique_ptr<IFile> b;
    auto prepare = [&] { MakeHost(dir, start); };
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

// Every file of the tree with its bytes.
Entries Stored(CCDFileSystem &cdfs) {
    Entries found;
    CDirectoryListing listing = cdfs.GetDirectoryListing(u"/", nullptr);
    for (uint32_t i = 0; i < listing.GetSize(); ++i) {
        CDirectoryEntry const &entry = listing.GetAt(i);
        if (entry.IsDirectory()) {
            CDirectoryListing below = cdfs.GetDirectoryListing(entry.path, nullptr);
            for (uint32_t k = 0; k < below.GetSize(); ++k)
                listing.Add(below.GetAt(k));
        } else {
            found[entry.path] = ReadWhole(cdfs, entry.path);
        }
    }
    return found;
}

// A delete, a rename and enough new names that the table outgrows its block
// (moving every region up), stored by one flush while the disk fails each
// call in turn. After a transient fault the stored CDFS opens as it was or as
// it became, every entry whole, both before and after the handles close.
TEST(CDFileSystemSyscallFaults, DeletesRenamesAndAGrownTableAreStoredWholeOrNotAtAll) {
    ScratchDir dir;
    CString path = dir.Text("host.cdfs");
    // /c is a little more than one block of a move.
    Entries const before = {
        {u"/a", SeededBytes(3000, 1)}, {u"/b", SeededBytes(5000, 2)}, {u"/c", SeededBytes(0x101000, 3)}};
    Entries after = {{u"/c", before.at(u"/c")}, {u"/renamed", before.at(u"/b")}};
    for (int i = 0; i < 40; ++i)
        after[u"/a fairly long directory name/and a long file name " + Number(i)] = "";
    std::unique_ptr<CCDFileSystem> cdfs;
    std::vector<std::unique_ptr<IFile>> made; // kept open: closing one would flush
    auto prepare = [&] { MakeHost(dir, before); };
    auto run = [&] {
        cdfs = std::make_unique<CCDFileSystem>();
        if (!cdfs->Open(path, false) || !cdfs->DeleteFileW(u"/a") || !cdfs->RenameFileW(u"/b", u"/renamed"))
            return false;
        for (auto const &[name, bytes] : after)
            if (bytes.empty()) made.emplace_back(cdfs->CreateFileW(name.c_str(), 0x28));
        return cdfs->Flush();
    };
    // Judged on a copy of the disk's bytes: the open CDFS holds its host unshared.
    auto expectOldOrNew = [&](char const *when) {
        std::ifstream disk(dir.Path("host.cdfs"), std::ios::binary);
        std::ostringstream bytes;
        bytes << disk.rdbuf();
        MemoryHosts hosts;
        hosts.SetBytes(u"/h", bytes.str());
        CCDFileSystem again;
        ASSERT_TRUE(again.Open(&hosts, u"/h", true)) << when;
        Entries stored = Stored(again);
        EXPECT_TRUE(stored == before || stored == after) << when << ": " << stored.size() << " entries";
    };
    auto check = [&](FaultRun const &result) {
        ExpectFailureReported(result);
        if (!result.sticky) expectOldOrNew("after the flush");
        cdfs.reset(); // closes with the real calls: the handles only answer failures then
        made.clear();
        if (!result.sticky) expectOldOrNew("after closing");
    };
    int runs = RunUnderFaults(prepare, run, check,
                              {Fault::kWrite, Fault::kWriteShort, Fault::kRead, Fault::kLseek, Fault::kFtruncate});
    EXPECT_GT(runs, 20);
}

} // namespace
} // namespace qv::test
