// Which copy runs when file systems say they copy by themselves
// (capabilities 0x2 and 0x4), and how a copy within a file system that only
// copies across goes out to a temporary disk file and back.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

using Calls = std::vector<std::pair<int64_t, int64_t>>;

void Record(int64_t total, int64_t done, void *context) {
    static_cast<Calls *>(context)->emplace_back(total, done);
}

// A disk file system that claims capabilities and does its copies through
// the generic static forms on the disk, noting which form ran.
class CopyingFileSystem : public ForwardingFileSystem {
public:
    explicit CopyingFileSystem(uint32_t capabilities) : ForwardingFileSystem(*FileSystem), capabilities(capabilities) {}
    uint32_t GetCapabilities() override { return capabilities; }

    std::vector<std::string> forms;
    std::vector<CString> paths;

protected:
    bool CopyFileW(IFileSystem *src, char16_t const *srcPath, char16_t const *dstPath, bool overwrite,
                   CopyProgressRoutine progress, void *context) override {
        Note("from fs", srcPath);
        return IFileSystem::CopyFileW(Plain(src), srcPath, &inner, dstPath, overwrite, progress, context);
    }
    bool CopyFileW(char16_t const *srcPath, IFileSystem *dst, char16_t const *dstPath, bool overwrite,
                   CopyProgressRoutine progress, void *context) override {
        Note("to fs", dstPath);
        return IFileSystem::CopyFileW(&inner, srcPath, Plain(dst), dstPath, overwrite, progress, context);
    }
    bool CopyFileW(IFile *src, char16_t const *dstPath, int64_t count, bool overwrite, CopyProgressRoutine progress,
                   void *context) override {
        Note("from counted file", dstPath);
        return IFileSystem::CopyFileW(src, &inner, dstPath, count, overwrite, progress, context);
    }
    bool CopyFileW(IFile *src, char16_t const *dstPath, bool overwrite, CopyProgressRoutine progress,
                   void *context) override {
        Note("from file", dstPath);
        return IFileSystem::CopyFileW(src, &inner, dstPath, overwrite, progress, context);
    }
    bool CopyFileW(char16_t const *srcPath, IFile *dst, CopyProgressRoutine progress, void *context) override {
        Note("to file", srcPath);
        return IFileSystem::CopyFileW(&inner, srcPath, dst, progress, context);
    }
    bool CopyFileW(char16_t const *srcPath, char16_t const *dstPath, bool overwrite, CopyProgressRoutine progress,
                   void *context) override {
        Note("within", dstPath);
        return IFileSystem::CopyFileW(&inner, srcPath, &inner, dstPath, overwrite, progress, context);
    }

private:
    // The disk behind any of these, so a delegated copy does not dispatch again.
    static IFileSystem *Plain(IFileSystem *fs) {
        auto *copying = dynamic_cast<CopyingFileSystem *>(fs);
        return copying ? &copying->inner : fs;
    }
    void Note(char const *form, char16_t const *path) {
        forms.emplace_back(form);
        paths.emplace_back(path);
    }
    uint32_t capabilities;
};

TEST(CopyDispatch, AFileSystemThatCopiesWithinItselfDoesSo) {
    ScratchDir dir;
    CopyingFileSystem within(kCapabilityCopyWithin);
    ASSERT_TRUE(WriteWhole(within, dir.Text("a"), "abc"));
    EXPECT_TRUE(IFileSystem::CopyFileW(&within, dir.Text("a"), &within, dir.Text("b"), false, nullptr, nullptr));
    EXPECT_EQ(within.forms, std::vector<std::string>{"within"});
    EXPECT_EQ(ReadWhole(within, dir.Text("b")), "abc");
}

TEST(CopyDispatch, WithinAFileSystemThatCopiesOnlyAcrossGoesThroughATemporaryFile) {
    ScratchDir dir;
    CopyingFileSystem across(kCapabilityCopyAcross);
    ASSERT_TRUE(WriteWhole(across, dir.Text("a"), "0123456789"));
    Calls calls;
    EXPECT_TRUE(IFileSystem::CopyFileW(&across, dir.Text("a"), &across, dir.Text("b"), true, &Record, &calls));
    EXPECT_EQ(across.forms, (std::vector<std::string>{"to fs", "from fs"}));
    EXPECT_EQ(ReadWhole(across, dir.Text("b")), "0123456789");
    // One running total over both halves.
    EXPECT_EQ(calls, (Calls{{20, 0}, {20, 10}, {20, 10}, {20, 20}}));
    ASSERT_EQ(across.paths.size(), 2u);
    EXPECT_EQ(U16(IFileSystem::GetFilename(across.paths[0].GetUTF16())).substr(0, 3), u"tim");
    EXPECT_FALSE(FileSystem->FileExists(across.paths[0])); // the temporary file is gone
}

TEST(CopyDispatch, TheSourceCopiesAcrossFirstThenTheDestination) {
    ScratchDir dir;
    CopyingFileSystem source(kCapabilityCopyAcross), target(kCapabilityCopyAcross);
    ASSERT_TRUE(WriteWhole(*FileSystem, dir.Text("a"), "x"));
    EXPECT_TRUE(IFileSystem::CopyFileW(&source, dir.Text("a"), &target, dir.Text("b"), true, nullptr, nullptr));
    EXPECT_EQ(source.forms, std::vector<std::string>{"to fs"});
    EXPECT_TRUE(target.forms.empty());

    EXPECT_TRUE(IFileSystem::CopyFileW(FileSystem, dir.Text("a"), &target, dir.Text("c"), true, nullptr, nullptr));
    EXPECT_EQ(target.forms, std::vector<std::string>{"from fs"});
    EXPECT_EQ(ReadWhole(*FileSystem, dir.Text("c")), "x");
}

TEST(CopyDispatch, FileFormsUseTheFileSystemsOwnCopy) {
    ScratchDir dir;
    CopyingFileSystem across(kCapabilityCopyAcross);
    CMemFile memory;
    memory.Write("hello", 5);
    EXPECT_TRUE(IFileSystem::CopyFileW(&memory, &across, dir.Text("a"), true, nullptr, nullptr));
    memory.SetPosition(1);
    EXPECT_TRUE(IFileSystem::CopyFileW(&memory, &across, dir.Text("b"), int64_t(3), true, nullptr, nullptr));
    CMemFile back;
    EXPECT_TRUE(IFileSystem::CopyFileW(&across, dir.Text("a"), &back, nullptr, nullptr));
    EXPECT_EQ(across.forms, (std::vector<std::string>{"from file", "from counted file", "to file"}));
    EXPECT_EQ(ReadWhole(*FileSystem, dir.Text("b")), "ell");
    EXPECT_EQ(back.GetSize(), 5);
}

TEST(CopyDispatch, TheCoreLoopStopsAtAShortSource) {
    CMemFile src, dst;
    src.Write("abc", 3);
    src.SetPosition(0);
    Calls calls;
    EXPECT_FALSE(IFileSystem::CopyFileW(&src, &dst, int64_t(5), &Record, &calls));
    EXPECT_EQ(calls, (Calls{{5, 0}, {5, 3}}));
    EXPECT_FALSE(IFileSystem::CopyFileW(&src, &dst, int64_t(-1), nullptr, nullptr));
    EXPECT_FALSE(IFileSystem::CopyFileW(nullptr, &dst, int64_t(0), nullptr, nullptr));
}

} // namespace
} // namespace qv::test
