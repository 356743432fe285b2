// The contract every IFileSystem keeps, run over each kind of file system.
// A kind gives a file system and an empty directory in it; the cases work
// only below that directory. A kind joins by adding itself to Kinds(); one
// that lacks a part of the contract says so and the cases that need it skip.
//
// Exceptions by design, each told by its kind: the memory file system serves
// only blocks it was given (no new files, deletes or directories), the
// resource file system only what the program carries; both are read through
// the seeded cases. Flat tables (memory, CDFS) have no directories of their
// own and keep no attributes or times; a CDFS answers true when deleting a
// missing path (existing callers depend on it). A merge of two mounts makes
// directories only with one mount.
#include <gtest/gtest.h>

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/filesystems/MemFileSystem.h"
#include "qv/filesystems/MergeFileSystem.h"
#include "qv/filesystems/RFSFileSystem.h"
#include "qv/filesystems/Path.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

// One file system under test, with an empty directory of its own.
class FileSystemUnderTest {
public:
    virtual ~FileSystemUnderTest() = default;
    virtual IFileSystem &Get() = 0;
    virtual CString Root() const = 0;
    // The optional parts: creating and writing files, directories of its
    // own, attributes and times.
    virtual bool Writes() const { return true; }
    virtual bool MakesDirectories() const { return true; }
    virtual bool KeepsAttributesAndTimes() const { return true; }
    // Puts a file with bytes at path (below Root()); the seeded cases read it.
    virtual bool Seed(CString const &path, std::string const &bytes) {
        IFileSystem &fs = Get();
        CString dir = path::GetDirectory(path);
        if (MakesDirectories() && !fs.IsDirectory(dir) && !fs.CreateDirectoryW(dir, true)) return false;
        return WriteWhole(fs, path, bytes);
    }
};

class DiskUnderTest : public FileSystemUnderTest {
public:
    IFileSystem &Get() override { return *FileSystem; }
    CString Root() const override { return scratch.Text(); }

private:
    ScratchDir scratch;
};

// Blocks of memory: only what was added exists, and nothing new is made.
class MemoryUnderTest : public FileSystemUnderTest {
public:
    IFileSystem &Get() override { return fs; }
    CString Root() const override { return u"/t/"; }
    bool Writes() const override { return false; }
    bool MakesDirectories() const override { return false; }
    bool KeepsAttributesAndTimes() const override { return false; }
    bool Seed(CString const &path, std::string const &bytes) override {
        std::string const &block = blocks.emplace_back(bytes);
        return fs.AddFile(path, block.data(), uint32_t(block.size()));
    }

private:
    CMemFileSystem fs;
    std::deque<std::string> blocks;
};

// The program's own resources: the seeded files are compiled in
// (tests/filesystems/resources.qvrc), so seeding only checks them.
class ResourcesUnderTest : public FileSystemUnderTest {
public:
    IFileSystem &Get() override { return fs; }
    CString Root() const override { return u"/CONTRACT/t/"; }
    bool Writes() const override { return false; }
    bool MakesDirectories() const override { return false; }
    bool KeepsAttributesAndTimes() const override { return false; }
    bool Seed(CString const &path, std::string const &bytes) override { return ReadWhole(fs, path) == bytes; }

private:
    CRFSFileSystem fs;
};

// A CDFS, its host given by the kind; a flat table with files only.
class CDFSUnderTest : public FileSystemUnderTest {
public:
    IFileSystem &Get() override { return cdfs; }
    CString Root() const override { return u"/t/"; }
    bool MakesDirectories() const override { return false; }
    bool KeepsAttributesAndTimes() const override { return false; }

protected:
    CCDFileSystem cdfs;
};

class CDFSOnDisk : public CDFSUnderTest {
public:
    CDFSOnDisk() { EXPECT_TRUE(cdfs.Create(scratch.Text("host.cdfs"), false)); }
    ~CDFSOnDisk() override { cdfs.Close(); }

private:
    ScratchDir scratch;
};

class CDFSInMemory : public CDFSUnderTest {
public:
    CDFSInMemory() { EXPECT_TRUE(cdfs.Create(&hosts, u"/host", false)); }
    ~CDFSInMemory() override { cdfs.Close(); } // while the host is there

private:
    MemoryHosts hosts;
};

class CDFSInCDFS : public CDFSUnderTest {
public:
    CDFSInCDFS() {
        EXPECT_TRUE(outer.Create(&hosts, u"/host", false));
        EXPECT_TRUE(WriteWhole(outer, u"/neighbour", "neighbour"));
        EXPECT_TRUE(cdfs.Create(&outer, u"/inner.cdfs", false));
    }
    ~CDFSInCDFS() override {
        cdfs.Close();
        EXPECT_EQ(ReadWhole(outer, u"/neighbour"), "neighbour");
    }

private:
    MemoryHosts hosts;
    CCDFileSystem outer;
};

// Two mounts at the root: a CDFS in memory first, then a disk directory.
class MergeUnderTest : public FileSystemUnderTest {
public:
    MergeUnderTest() {
        EXPECT_TRUE(cdfs.Create(&hosts, u"/host", false));
        EXPECT_TRUE(merge.Mount(u"/", &cdfs, u"/"));
        EXPECT_TRUE(merge.Mount(u"/", FileSystem, scratch.Text()));
    }
    IFileSystem &Get() override { return merge; }
    CString Root() const override { return u"/t/"; }
    bool MakesDirectories() const override { return false; }
    bool KeepsAttributesAndTimes() const override { return false; }

private:
    ScratchDir scratch;
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    CMergeFileSystem merge;
};

struct FileSystemKind {
    char const *name;
    std::function<std::unique_ptr<FileSystemUnderTest>()> make;
};

// Every kind of file system the contract runs over.
std::vector<FileSystemKind> Kinds() {
    return {
        {"Disk", [] { return std::make_unique<DiskUnderTest>(); }},
        {"Memory", [] { return std::make_unique<MemoryUnderTest>(); }},
        {"Resources", [] { return std::make_unique<ResourcesUnderTest>(); }},
        {"CDFSOnDisk", [] { return std::make_unique<CDFSOnDisk>(); }},
        {"CDFSInMemory", [] { return std::make_unique<CDFSInMemory>(); }},
        {"CDFSInCDFS", [] { return std::make_unique<CDFSInCDFS>(); }},
        {"MergeOfTwo", [] { return std::make_unique<MergeUnderTest>(); }},
    };
}

using Calls = std::vector<std::pair<int64_t, int64_t>>;

void Record(int64_t total, int64_t done, void *context) {
    static_cast<Calls *>(context)->emplace_back(total, done);
}

// A file system whose files keep only half of every write.
class HalfWritingFileSystem : public ForwardingFileSystem {
public:
    using ForwardingFileSystem::ForwardingFileSystem;
    IFile *CreateFileW(char16_t const *path, uint32_t flags) override {
        IFile *file = inner.CreateFileW(path, flags);
        return file ? new HalfWritingFile(file) : nullptr;
    }

private:
    class HalfWritingFile : public ForwardingFile {
    public:
        using ForwardingFile::ForwardingFile;
        uint32_t Write(void const *p, uint32_t n) override { return inner->Write(p, n / 2); }
    };
};

std::string Pattern(size_t size) {
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = char(i * 7 + i / 251);
    return bytes;
}

class FileSystemContract : public testing::TestWithParam<FileSystemKind> {
protected:
    void SetUp() override {
        under = GetParam().make();
        root = under->Root();
    }
    IFileSystem &fs() { return under->Get(); }
    bool Lacks(bool (FileSystemUnderTest::*part)() const) const { return !(under.get()->*part)(); }
    CString At(char16_t const *name) const { return IFileSystem::MakePath(root, CString(name), u'/'); }

    std::unique_ptr<FileSystemUnderTest> under;
    CString root;
};

// The seeded files: a file in the root, one in a directory below it.
constexpr char kSeedA[] = "alpha";
constexpr char kSeedC[] = "gamma, a little longer";

class SeededContract : public FileSystemContract {
protected:
    void SetUp() override {
        FileSystemContract::SetUp();
        ASSERT_TRUE(under->Seed(At(u"a.txt"), kSeedA));
        ASSERT_TRUE(under->Seed(At(u"sub/c.txt"), kSeedC));
    }
};

TEST_P(SeededContract, ReadsFilesAndTheirDirectories) {
    EXPECT_EQ(ReadWhole(fs(), At(u"a.txt")), kSeedA);
    EXPECT_EQ(ReadWhole(fs(), At(u"sub/c.txt")), kSeedC);
    IFileSystem::CDirectoryEntry info = fs().GetFileInfo(At(u"sub/c.txt"));
    EXPECT_EQ(info.attributes, kAttributeFile);
    EXPECT_EQ(info.size, int64_t(sizeof(kSeedC) - 1));
    EXPECT_EQ(U16(info.name), u"c.txt");
    EXPECT_TRUE(IFileSystem::IsSamePath(info.path, fs().GetFullPath(At(u"sub/c.txt"))));

    EXPECT_TRUE(fs().IsDirectory(At(u"sub")));
    EXPECT_FALSE(fs().FileExists(At(u"sub"))); // only files exist
    EXPECT_EQ(fs().GetFileInfo(At(u"sub")).attributes, kAttributeDirectory);
    EXPECT_EQ(fs().GetFileInfo(At(u"missing")).attributes, kAttributeNone);
    EXPECT_EQ(fs().CreateFileW(At(u"missing"), 0x12), nullptr);
}

TEST_P(SeededContract, ListsFilesAndDirectories) {
    IFileSystem::CDirectoryListing all = fs().GetDirectoryListing(root, nullptr);
    EXPECT_EQ(all.fileSystem, &fs());
    ASSERT_EQ(all.GetSize(), 2u);
    all.Sort(kSortFilesFirst);
    EXPECT_EQ(U16(all[0].name), u"a.txt");
    EXPECT_EQ(all[0].attributes, kAttributeFile);
    EXPECT_EQ(all[0].size, int64_t(sizeof(kSeedA) - 1));
    EXPECT_EQ(U16(all[1].name), u"sub");
    EXPECT_EQ(all[1].attributes, kAttributeDirectory);
    EXPECT_TRUE(IFileSystem::IsSamePath(all[1].path, At(u"sub")));
    IFileSystem::CDirectoryListing matched = fs().GetDirectoryListing(root, u"*.TXT");
    ASSERT_EQ(matched.GetSize(), 1u);
    EXPECT_EQ(U16(matched[0].name), u"a.txt");
    EXPECT_EQ(fs().GetDirectoryListing(At(u"sub"), nullptr).GetSize(), 1u);
}

TEST_P(SeededContract, CopiesFilesOut) {
    ScratchDir elsewhere;
    Calls calls;
    EXPECT_TRUE(IFileSystem::CopyFileW(&fs(), At(u"sub/c.txt"), FileSystem, elsewhere.Text("c"), false, &Record,
                                       &calls));
    int64_t size = int64_t(sizeof(kSeedC) - 1);
    EXPECT_EQ(calls, (Calls{{size, 0}, {size, size}}));
    EXPECT_EQ(ReadWhole(*FileSystem, elsewhere.Text("c")), kSeedC);
    CMemFile memory;
    EXPECT_TRUE(IFileSystem::CopyFileW(&fs(), At(u"a.txt"), &memory, nullptr, nullptr));
    EXPECT_EQ(memory.GetSize(), int64_t(sizeof(kSeedA) - 1));
    EXPECT_FALSE(IFileSystem::CopyFileW(&fs(), At(u"missing"), FileSystem, elsewhere.Text("m"), false, nullptr,
                                        nullptr));
}

TEST_P(FileSystemContract, CreatesReadsAndDescribesFiles) {
    if (Lacks(&FileSystemUnderTest::Writes)) GTEST_SKIP() << "not kept by this kind";
    CString path = At(u"data.bin");
    ASSERT_TRUE(WriteWhole(fs(), path, "hello"));
    EXPECT_EQ(ReadWhole(fs(), path), "hello");

    IFileSystem::CDirectoryEntry info = fs().GetFileInfo(path);
    EXPECT_EQ(info.attributes, kAttributeFile);
    EXPECT_EQ(info.size, 5);
    EXPECT_EQ(U16(info.name), u"data.bin");
    EXPECT_TRUE(IFileSystem::IsSamePath(info.path, fs().GetFullPath(path)));
    EXPECT_TRUE(fs().FileExists(path));
    EXPECT_TRUE(fs().IsFile(path));
    EXPECT_FALSE(fs().IsDirectory(path));

    // Must-not-exist refuses an existing file and leaves it whole; must-exist
    // refuses a missing one.
    EXPECT_EQ(fs().CreateFileW(path, 0x24), nullptr);
    EXPECT_EQ(ReadWhole(fs(), path), "hello");
    EXPECT_EQ(fs().CreateFileW(At(u"missing"), 0x12), nullptr);

    IFileSystem::CDirectoryEntry missing = fs().GetFileInfo(At(u"missing"));
    EXPECT_EQ(missing.attributes, kAttributeNone);
    EXPECT_EQ(missing.name[0], 0);
    EXPECT_EQ(missing.path[0], 0);
    EXPECT_FALSE(fs().FileExists(At(u"missing")));
}

TEST_P(FileSystemContract, MakesAndRemovesDirectoryTrees) {
    if (Lacks(&FileSystemUnderTest::Writes) || Lacks(&FileSystemUnderTest::MakesDirectories) ||
        Lacks(&FileSystemUnderTest::KeepsAttributesAndTimes))
        GTEST_SKIP() << "not kept by this kind";
    EXPECT_TRUE(fs().CreateDirectoryW(At(u"a/b/c"), true));
    EXPECT_TRUE(fs().CreateDirectoryW(At(u"a/b/c"), true)); // existing levels are no failure
    EXPECT_TRUE(fs().IsDirectory(At(u"a/b")));
    EXPECT_FALSE(fs().FileExists(At(u"a"))); // only files exist
    IFileSystem::CDirectoryEntry info = fs().GetFileInfo(At(u"a/b/"));
    EXPECT_EQ(info.attributes, kAttributeDirectory);
    EXPECT_EQ(U16(info.name), u"b");
    EXPECT_FALSE(fs().CreateDirectoryW(At(u"x/y"), false));

    ASSERT_TRUE(WriteWhole(fs(), At(u"a/one.txt"), "1"));
    ASSERT_TRUE(WriteWhole(fs(), At(u"a/b/c/two.txt"), "2"));
    EXPECT_TRUE(fs().SetFileAttributesW(At(u"a/b/c/two.txt"), kAttributeReadOnly));
    EXPECT_FALSE(fs().RemoveDirectoryW(At(u"a"), false)); // not empty
    EXPECT_TRUE(fs().RemoveDirectoryW(At(u"a"), true));
    EXPECT_EQ(fs().GetFileInfo(At(u"a")).attributes, kAttributeNone);
    EXPECT_FALSE(fs().RemoveDirectoryW(At(u"a"), true)); // nothing there
    EXPECT_TRUE(fs().IsDirectory(root));
}

TEST_P(FileSystemContract, ListsDirectoriesWithPatterns) {
    if (Lacks(&FileSystemUnderTest::Writes) || Lacks(&FileSystemUnderTest::MakesDirectories))
        GTEST_SKIP() << "not kept by this kind";
    IFileSystem::CDirectoryListing empty = fs().GetDirectoryListing(root, nullptr);
    EXPECT_EQ(empty.GetSize(), 0u);
    EXPECT_EQ(empty.fileSystem, &fs());
    EXPECT_EQ(U16(empty.directory), U16(root));

    for (char16_t const *name : {u"b.txt", u"A.TIF", u"c.dat"})
        ASSERT_TRUE(WriteWhole(fs(), At(name), "x"));
    ASSERT_TRUE(fs().CreateDirectoryW(At(u"sub"), false));

    IFileSystem::CDirectoryListing all = fs().GetDirectoryListing(root, nullptr);
    ASSERT_EQ(all.GetSize(), 4u);
    all.Sort(kSortDirectoriesFirst);
    EXPECT_EQ(U16(all[0].name), u"sub");
    EXPECT_EQ(all[0].attributes, kAttributeDirectory);
    EXPECT_EQ(U16(all[1].name), u"A.TIF");
    EXPECT_EQ(U16(all[3].name), u"c.dat");
    for (uint32_t i = 0; i < all.GetSize(); ++i)
        EXPECT_TRUE(IFileSystem::IsSamePath(all[i].path, At(all[i].name))) << i;
    all.Sort(kSortDirectoriesFirst | kSortDescending); // directories stay first
    EXPECT_EQ(U16(all[0].name), u"sub");
    EXPECT_EQ(U16(all[1].name), u"c.dat");
    EXPECT_EQ(U16(all[3].name), u"A.TIF");

    IFileSystem::CDirectoryListing matched = fs().GetDirectoryListing(root, u"*.txt|*.tif");
    matched.Sort(kSortByName | kSortDescending);
    ASSERT_EQ(matched.GetSize(), 2u);
    EXPECT_EQ(U16(matched[0].name), u"b.txt");
    EXPECT_EQ(U16(matched[1].name), u"A.TIF");
    EXPECT_EQ(matched[1].size, 1);
}

TEST_P(FileSystemContract, KeepsTimesAndDeletesReadOnlyFiles) {
    if (Lacks(&FileSystemUnderTest::Writes) || Lacks(&FileSystemUnderTest::MakesDirectories) ||
        Lacks(&FileSystemUnderTest::KeepsAttributesAndTimes))
        GTEST_SKIP() << "not kept by this kind";
    CString path = At(u"t.txt");
    ASSERT_TRUE(WriteWhole(fs(), path, "abc"));
    CDateTime when = CDateTime::NewYMDHMS(2020, 5, 17, 13, 14, 15, 250, 0);
    EXPECT_TRUE(fs().SetFileModifiedTime(path, when));
    EXPECT_TRUE(fs().GetFileInfo(path).modified == when);

    EXPECT_TRUE(fs().SetFileAttributesW(path, kAttributeReadOnly | kAttributeHidden));
    EXPECT_EQ(fs().GetFileInfo(path).attributes, kAttributeFile); // never reported
    EXPECT_TRUE(fs().DeleteFileW(path));
    EXPECT_FALSE(fs().FileExists(path));
    EXPECT_FALSE(fs().DeleteFileW(path));

    ASSERT_TRUE(fs().CreateDirectoryW(At(u"d"), false));
    EXPECT_FALSE(fs().DeleteFileW(At(u"d")));
    EXPECT_TRUE(fs().IsDirectory(At(u"d")));
}

TEST_P(FileSystemContract, CopiesWithProgress) {
    if (Lacks(&FileSystemUnderTest::Writes)) GTEST_SKIP() << "not kept by this kind";
    Calls calls;
    ASSERT_TRUE(WriteWhole(fs(), At(u"empty"), ""));
    EXPECT_TRUE(IFileSystem::CopyFileW(&fs(), At(u"empty"), &fs(), At(u"empty2"), true, &Record, &calls));
    EXPECT_EQ(calls, (Calls{{0, 0}}));
    EXPECT_TRUE(fs().FileExists(At(u"empty2")));

    int64_t const size = 2 * kCopyBlockSize + 100;
    std::string bytes = Pattern(size_t(size));
    ASSERT_TRUE(WriteWhole(fs(), At(u"big"), bytes));
    calls.clear();
    EXPECT_TRUE(IFileSystem::CopyFileW(&fs(), At(u"big"), &fs(), At(u"copy"), true, &Record, &calls));
    EXPECT_EQ(calls, (Calls{{size, 0}, {size, kCopyBlockSize}, {size, 2 * kCopyBlockSize}, {size, size}}));
    EXPECT_TRUE(ReadWhole(fs(), At(u"copy")) == bytes);

    // Without overwrite an existing destination stays as it was.
    ASSERT_TRUE(WriteWhole(fs(), At(u"kept"), "kept"));
    EXPECT_FALSE(IFileSystem::CopyFileW(&fs(), At(u"big"), &fs(), At(u"kept"), false, nullptr, nullptr));
    EXPECT_EQ(ReadWhole(fs(), At(u"kept")), "kept");
    EXPECT_TRUE(IFileSystem::CopyFileW(&fs(), At(u"empty"), &fs(), At(u"kept"), true, nullptr, nullptr));
    EXPECT_EQ(ReadWhole(fs(), At(u"kept")), "");

    EXPECT_FALSE(IFileSystem::CopyFileW(&fs(), At(u"missing"), &fs(), At(u"out"), true, nullptr, nullptr));
    EXPECT_FALSE(fs().FileExists(At(u"out")));
    EXPECT_FALSE(IFileSystem::CopyFileW(nullptr, At(u"big"), &fs(), At(u"out"), true, nullptr, nullptr));
}

TEST_P(FileSystemContract, CopiesToAndFromOtherFileSystemsAndFiles) {
    if (Lacks(&FileSystemUnderTest::Writes)) GTEST_SKIP() << "not kept by this kind";
    ScratchDir elsewhere;
    CFileSystem &disk = *FileSystem;
    std::string bytes = Pattern(kCopyBlockSize + 3);
    ASSERT_TRUE(WriteWhole(fs(), At(u"src"), bytes));

    EXPECT_TRUE(IFileSystem::CopyFileW(&fs(), At(u"src"), &disk, elsewhere.Text("out"), false, nullptr, nullptr));
    EXPECT_TRUE(ReadWhole(disk, elsewhere.Text("out")) == bytes);
    EXPECT_TRUE(IFileSystem::CopyFileW(&disk, elsewhere.Text("out"), &fs(), At(u"back"), false, nullptr, nullptr));
    EXPECT_TRUE(ReadWhole(fs(), At(u"back")) == bytes);

    CMemFile memory;
    EXPECT_TRUE(IFileSystem::CopyFileW(&fs(), At(u"src"), &memory, nullptr, nullptr));
    EXPECT_EQ(memory.GetSize(), int64_t(bytes.size()));
    memory.SetPosition(5);
    EXPECT_TRUE(IFileSystem::CopyFileW(&memory, &fs(), At(u"all"), true, nullptr, nullptr)); // from the start
    EXPECT_TRUE(ReadWhole(fs(), At(u"all")) == bytes);
    memory.SetPosition(5);
    EXPECT_TRUE(IFileSystem::CopyFileW(&memory, &fs(), At(u"part"), int64_t(10), true, nullptr, nullptr));
    EXPECT_EQ(ReadWhole(fs(), At(u"part")), bytes.substr(5, 10));

    // A source shorter than the count fails, and the half-made file goes.
    memory.SetPosition(int64_t(bytes.size()) - 4);
    EXPECT_FALSE(IFileSystem::CopyFileW(&memory, &fs(), At(u"short"), int64_t(10), true, nullptr, nullptr));
    EXPECT_FALSE(fs().FileExists(At(u"short")));
}

TEST_P(FileSystemContract, FailedCopyDeletesTheDestination) {
    if (Lacks(&FileSystemUnderTest::Writes)) GTEST_SKIP() << "not kept by this kind";
    HalfWritingFileSystem spoiled(fs());
    ASSERT_TRUE(WriteWhole(fs(), At(u"src"), "0123456789"));
    Calls calls;
    EXPECT_FALSE(IFileSystem::CopyFileW(&fs(), At(u"src"), &spoiled, At(u"dst"), true, &Record, &calls));
    EXPECT_EQ(calls, (Calls{{10, 0}, {10, 5}}));
    EXPECT_FALSE(fs().FileExists(At(u"dst")));

    CMemFile memory;
    memory.Write("abcdef", 6);
    EXPECT_FALSE(IFileSystem::CopyFileW(&memory, &spoiled, At(u"dst"), true, nullptr, nullptr));
    EXPECT_FALSE(fs().FileExists(At(u"dst")));
}

std::string KindName(testing::TestParamInfo<FileSystemKind> const &info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Kinds, FileSystemContract, testing::ValuesIn(Kinds()), KindName);
INSTANTIATE_TEST_SUITE_P(Kinds, SeededContract, testing::ValuesIn(Kinds()), KindName);

} // namespace
} // namespace qv::test
