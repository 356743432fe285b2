// CVersionInfo on Windows executables: Extract and Update on the PE32 and
// PE32+ files of tools/make_pe_version.py (committed in tests/core/data),
// what Update refuses, hostile files, and a failing system call at every
// point of an Update.
#include <gtest/gtest.h>

#include <unistd.h>

#include <cerrno>
#include <string>

#include "files/FileTestSupport.h"
#include "qv/core/PEResources.h"
#include "qv/core/VersionInfo.h"
#include "qv/files/MemFile.h"
#include "qv/platform/Syscalls.h"

namespace qv::test {
namespace {

// The layout make_pe_version.py gives both files (file offsets).
constexpr size_t kSectionCount = 0x46;    // COFF NumberOfSections
constexpr size_t kRootEntries = 0x410;    // the root directory's entries: type 16, type 24
constexpr size_t kVersionLanguage = 0x460; // the version's language entry
constexpr size_t kVersionEntry = 0x480;    // its IMAGE_RESOURCE_DATA_ENTRY: RVA, size
constexpr size_t kVersionData = 0x528;     // its data, 0x2D8 bytes
constexpr size_t kVersionSize = 0x2D8;
constexpr size_t kSectionEnd = 0xA00;      // the end of .rsrc and of the file
constexpr size_t kCompanyName = kVersionData + 92 + 36 + 24; // the first string entry

Bytes DataFile(char const *name) {
    return ReadDiskBytes(std::string(QV_TEST_DATA_DIR) + "/../tests/core/data/" + name);
}

void Put32(Bytes &b, size_t at, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        b[at + size_t(i)] = uint8_t(v >> (8 * i));
}

std::u16string Text(char16_t const *s) {
    return s ? s : u"(null)";
}

class PEVersion : public testing::TestWithParam<char const *> {
protected:
    ScratchDir dir;
    std::string diskPath = dir.Path("app.exe");
    std::u16string path = Wide(diskPath);
    Bytes original = DataFile(GetParam());

    void SetUp() override {
        ASSERT_EQ(original.size(), kSectionEnd);
        WriteDiskBytes(diskPath, original);
    }
    // Writes bytes to the file and extracts from it.
    bool ExtractFrom(Bytes const &bytes, CVersionInfo &info) {
        WriteDiskBytes(diskPath, bytes);
        return info.Extract(path.c_str());
    }
};

INSTANTIATE_TEST_SUITE_P(BothKinds, PEVersion, testing::Values("version_pe32.exe", "version_pe64.exe"));

TEST_P(PEVersion, ExtractReadsTheGeneratedResource) {
    CVersionInfo info;
    ASSERT_TRUE(info.Extract(path.c_str()));
    uint16_t a, b, c, d;
    info.GetVersion(a, b, c, d);
    EXPECT_EQ((std::vector<int>{a, b, c, d}), (std::vector<int>{1, 0, 0, 0}));
    EXPECT_EQ(Text(info.GetString(u"FileVersion")), u"1, 0, 0, 0");
    EXPECT_EQ(Text(info.GetString(u"CompanyName")), u"qv test data");
    EXPECT_EQ(info.stringTables[0].strings.GetSize(), 8u);
    EXPECT_EQ(info.vars.GetSize(), 1u);
    // The generator's block comes back byte for byte.
    CMemFile out;
    ASSERT_TRUE(info.Serialize(out));
    EXPECT_EQ(Bytes(out.GetData(), out.GetData() + out.GetSize()),
              Bytes(original.begin() + kVersionData, original.begin() + kVersionData + kVersionSize));
}

TEST_P(PEVersion, TheTreeAndTheRoomOfEachLeaf) {
    CMemFile file;
    file.WriteBytes(original.data(), uint32_t(original.size()));
    CPEResources tree;
    ASSERT_TRUE(tree.Read(file));
    ASSERT_EQ(tree.Count(), 2u);
    SPEResource const *version = tree.Find(16, 1, 0x0409);
    SPEResource const *manifest = tree.Find(24, 1, 0x0409);
    ASSERT_TRUE(version && manifest);
    EXPECT_EQ(version->dataOffset, int64_t(kVersionData));
    EXPECT_EQ(version->entryOffset, int64_t(kVersionEntry));
    EXPECT_EQ(version->size, kVersionSize);
    EXPECT_EQ(manifest->dataOffset, 0x4A0);
    EXPECT_EQ(manifest->size, 0x85u);
    EXPECT_EQ(tree.Find(16, 1, 0x0407), nullptr);
    uint16_t const prefer[] = {0x0407, 0x0000};
    EXPECT_EQ(tree.FindPreferred(16, 1, prefer, 2), version) << "else the first language";
    // The version data runs to the section's end; the manifest to the
    // version data, across the zeros that align it.
    EXPECT_EQ(tree.Room(*version), kSectionEnd - kVersionData);
    EXPECT_EQ(tree.Room(*manifest), kVersionData - 0x4A0);
    // A byte that is not zero ends the room.
    Bytes marked = original;
    marked[0x900] = 1;
    CMemFile other;
    other.WriteBytes(marked.data(), uint32_t(marked.size()));
    ASSERT_TRUE(tree.Read(other));
    EXPECT_EQ(tree.Room(*tree.Find(16, 1, 0x0409)), 0x900 - kVersionData);
}

TEST_P(PEVersion, UpdateRewritesOnlyTheBlockAndItsSize) {
    CVersionInfo info;
    ASSERT_TRUE(info.Extract(path.c_str()));
    ASSERT_TRUE(info.SetVersion(2, 5, 0, 17));
    ASSERT_TRUE(info.SetBeta(true));
    ASSERT_TRUE(info.SetString(u"Comments", u"stamped by qv"));
    ASSERT_TRUE(info.Update(path.c_str()));
    CMemFile block;
    ASSERT_TRUE(info.Serialize(block));
    size_t const size = size_t(block.GetSize());
    ASSERT_GT(size, kVersionSize);

    Bytes expected = original;
    std::copy(block.GetData(), block.GetData() + size, expected.begin() + kVersionData);
    Put32(expected, kVersionEntry + 4, uint32_t(size));
    EXPECT_EQ(ReadDiskBytes(diskPath), expected);

    CVersionInfo back;
    ASSERT_TRUE(back.Extract(path.c_str()));
    uint16_t a, b, c, d;
    back.GetVersion(a, b, c, d);
    EXPECT_EQ((std::vector<int>{a, b, c, d}), (std::vector<int>{2, 5, 0, 17}));
    EXPECT_EQ(Text(back.GetString(u"ProductVersion")), u"2, 5, 0, 17");
    EXPECT_EQ(Text(back.GetString(u"Comments")), u"stamped by qv");
    bool beta = false;
    back.GetBeta(beta);
    EXPECT_TRUE(beta);

    // Shrinking zeroes what the longer block left behind.
    ASSERT_TRUE(back.SetString(u"Comments", u""));
    ASSERT_TRUE(back.SetString(u"FileDescription", u"short"));
    ASSERT_TRUE(back.Update(path.c_str()));
    Bytes const shrunk = ReadDiskBytes(diskPath);
    CMemFile smaller;
    ASSERT_TRUE(back.Serialize(smaller));
    for (size_t i = kVersionData + size_t(smaller.GetSize()); i < kSectionEnd; ++i)
        ASSERT_EQ(shrunk[i], 0) << i;
}

TEST_P(PEVersion, UpdateRefusesWhatItCannotPatchInPlace) {
    CVersionInfo info;
    ASSERT_TRUE(info.Extract(path.c_str()));
    // Room: the block's bytes and the zeros behind it, up to the section's end.
    std::u16string fits((kSectionEnd - kVersionData - kVersionSize - 32) / 2 - 8, u'f');
    std::u16string tooLong = fits + std::u16string(40, u'x');
    CVersionInfo big(info);
    ASSERT_TRUE(big.SetString(u"Comments", tooLong.c_str()));
    EXPECT_FALSE(big.Update(path.c_str()));
    EXPECT_EQ(ReadDiskBytes(diskPath), original);
    ASSERT_TRUE(big.SetString(u"Comments", fits.c_str()));
    EXPECT_TRUE(big.Update(path.c_str()));

    // Only language 0x0409 is written; a resource in another one is read.
    Bytes german = original;
    german[kVersionLanguage] = 0x07;
    WriteDiskBytes(diskPath, german);
    CVersionInfo other;
    EXPECT_TRUE(other.Extract(path.c_str()));
    EXPECT_FALSE(info.Update(path.c_str()));
    EXPECT_EQ(ReadDiskBytes(diskPath), german);

    // A block over other structures cannot be written: the manifest's data
    // entry now claims the version's bytes too.
    Bytes shared = original;
    Put32(shared, kVersionEntry + 16, 0x2000 + kVersionData - 0x400);
    WriteDiskBytes(diskPath, shared);
    EXPECT_FALSE(info.Update(path.c_str()));
    EXPECT_EQ(ReadDiskBytes(diskPath), shared);
}

TEST_P(PEVersion, FilesWithoutAVersionResource) {
    CVersionInfo info;
    Bytes noVersion = original;
    noVersion[kRootEntries] = 17; // the version's type becomes RT_DLGINCLUDE
    EXPECT_FALSE(ExtractFrom(noVersion, info));
    EXPECT_EQ(info.wLength, 0);
    EXPECT_FALSE(info.Update(path.c_str()));

    Bytes noResources = original;
    bool const pe32 = std::string(GetParam()).find("32") != std::string::npos;
    Put32(noResources, 0x58 + (pe32 ? 96 : 112) + 8 * 2, 0); // the resource directory's RVA
    EXPECT_FALSE(ExtractFrom(noResources, info));

    EXPECT_FALSE(ExtractFrom(Bytes(100, 'x'), info)) << "not an executable";
    EXPECT_FALSE(info.Extract(Wide(dir.Path("missing.exe")).c_str()));
}

// Hostile files: Extract refuses each, and Update leaves each untouched.
TEST_P(PEVersion, HostileFilesAreRefused) {
    CVersionInfo good;
    ASSERT_TRUE(good.Extract(path.c_str()));
    struct Case {
        char const *what;
        Bytes bytes;
    };
    std::vector<Case> cases;
    auto mutate = [&](char const *what, auto change) {
        Bytes b = original;
        change(b);
        cases.push_back({what, b});
    };
    mutate("section table past the end", [](Bytes &b) { b[kSectionCount] = 0xFF; });
    mutate("no PE signature", [](Bytes &b) { b[0x41] = 'X'; });
    mutate("e_lfanew past the end", [](Bytes &b) { Put32(b, 0x3C, 0x7FFFFFF0); });
    mutate("a directory that loops to the root", [](Bytes &b) { Put32(b, kRootEntries + 4, 0x80000000); });
    mutate("a subdirectory past the section", [](Bytes &b) { Put32(b, kRootEntries + 4, 0x80007FF0); });
    mutate("a data entry where a directory belongs", [](Bytes &b) { Put32(b, kRootEntries + 4, 0x80); });
    mutate("a directory with more entries than bytes", [](Bytes &b) { b[0x40E] = 0xFF; });
    mutate("data RVA outside every section", [](Bytes &b) { Put32(b, kVersionEntry, 0x9000); });
    mutate("data passing its section", [](Bytes &b) { Put32(b, kVersionEntry + 4, 0x1000); });
    mutate("a string longer than its block", [](Bytes &b) { b[kCompanyName + 3] = 0x7F; });
    mutate("a block longer than its data", [](Bytes &b) { b[kVersionData + 1] = 0x0F; });
    cases.push_back({"cut inside the resource section", Bytes(original.begin(), original.begin() + 0x600)});

    for (Case const &c : cases) {
        CVersionInfo info;
        EXPECT_FALSE(ExtractFrom(c.bytes, info)) << c.what;
        EXPECT_EQ(info.wLength, 0) << c.what;
        EXPECT_FALSE(good.Update(path.c_str())) << c.what;
        EXPECT_EQ(ReadDiskBytes(diskPath), c.bytes) << c.what;
    }
}

// ---- A failing system call at every point of an Update ----

int callsMade = 0;     // calls through the table since the last reset
int failingCall = -1;  // the index of the call that fails
bool shortWrite = false; // the failing call, if a write, first passes half its bytes

bool FailsNow() {
    if (callsMade++ != failingCall) return false;
    errno = EIO;
    return true;
}
int CountedOpen(char const *p, int flags, mode_t mode) {
    return FailsNow() ? -1 : ::open(p, flags, mode);
}
int CountedClose(int fd) {
    if (FailsNow()) {
        ::close(fd); // Linux releases the descriptor even then
        return -1;
    }
    return ::close(fd);
}
ssize_t CountedRead(int fd, void *buf, size_t n) {
    return FailsNow() ? -1 : ::read(fd, buf, n);
}
ssize_t CountedWrite(int fd, void const *buf, size_t n) {
    if (!FailsNow()) return ::write(fd, buf, n);
    if (!shortWrite || n < 2) return -1;
    failingCall = callsMade; // the next call fails: a disk that filled up
    return ::write(fd, buf, n / 2);
}
off_t CountedSeek(int fd, off_t offset, int whence) {
    return FailsNow() ? -1 : ::lseek(fd, offset, whence);
}
int CountedTruncate(int fd, off_t length) {
    return FailsNow() ? -1 : ::ftruncate(fd, length);
}
int CountedSync(int fd) {
    return FailsNow() ? -1 : ::fsync(fd);
}
int CountedLock(int fd, int cmd, struct flock *lock) {
    return FailsNow() ? -1 : ::fcntl(fd, cmd, lock);
}
int CountedFlags(int fd, int cmd, int arg) {
    return FailsNow() ? -1 : ::fcntl(fd, cmd, arg);
}
int CountedStat(int fd, struct stat *st) {
    return FailsNow() ? -1 : ::fstat(fd, st);
}
int CountedUnlink(char const *p) {
    return FailsNow() ? -1 : ::unlink(p);
}
int CountedDup(int fd) {
    return FailsNow() ? -1 : ::fcntl(fd, F_DUPFD_CLOEXEC, 0);
}

void CountEveryCall() {
    SyscallTable &table = Syscalls();
    table.open = &CountedOpen;
    table.close = &CountedClose;
    table.read = &CountedRead;
    table.write = &CountedWrite;
    table.lseek = &CountedSeek;
    table.ftruncate = &CountedTruncate;
    table.fsync = &CountedSync;
    table.fcntlLock = &CountedLock;
    table.fcntlFlags = &CountedFlags;
    table.fstat = &CountedStat;
    table.unlink = &CountedUnlink;
    table.dup = &CountedDup;
}

TEST_P(PEVersion, AFailedUpdateLeavesTheFileByteForByte) {
    CVersionInfo info;
    ASSERT_TRUE(info.Extract(path.c_str()));
    ASSERT_TRUE(info.SetVersion(3, 1, 4, 15));
    ASSERT_TRUE(info.SetString(u"Comments", u"a longer block than before"));
    ASSERT_TRUE(info.Update(path.c_str()));
    Bytes const updated = ReadDiskBytes(diskPath);
    ASSERT_NE(updated, original);

    for (bool halfWrites : {false, true}) {
        int failures = 0;
        for (int at = 0;; ++at) {
            WriteDiskBytes(diskPath, original);
            callsMade = 0;
            failingCall = at;
            shortWrite = halfWrites;
            CountEveryCall();
            bool const done = info.Update(path.c_str());
            ResetSyscalls();
            bool const reached = callsMade > at;
            Bytes const now = ReadDiskBytes(diskPath);
            if (done)
                EXPECT_EQ(now, updated) << "call " << at;
            else
                EXPECT_EQ(now, original) << "call " << at << (halfWrites ? " (half a write)" : "");
            failures += !done;
            if (!reached) break;
        }
        EXPECT_GT(failures, 8) << "every read, seek, write and the sync can fail";
    }
}

} // namespace
} // namespace qv::test
