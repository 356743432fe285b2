// CFile on the disk: dispositions, access, the log line, attributes,
// delete-on-close, handles and copies.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "FileTestSupport.h"
#include "qv/core/DebugOutput.h"

namespace qv::test {
namespace {

constexpr uint32_t kOpenAlways = 0x01, kOpenExisting = 0x02, kCreateNew = 0x04, kCreateAlways = 0x08;
constexpr uint32_t kRead = 0x10, kWrite = 0x20, kAtEnd = 0x40, kShareAll = 0x300;

// Collects the log lines that reach the debug text sink meanwhile (the log
// echoes there while it has no file), without their time prefix and with LF
// line ends.
class LogCapture {
public:
    LogCapture() { previous = SetDebugTextHook(&Collect, this); }
    ~LogCapture() { SetDebugTextHook(previous, nullptr); }
    std::string text;

private:
    static void Collect(char const *utf8, void *self) {
        std::string line = utf8;
        if (line.starts_with("[")) line.erase(0, line.find("]: ") + 3);
        if (line.ends_with("\r\n")) line.erase(line.size() - 2, 1);
        static_cast<LogCapture *>(self)->text += line;
    }
    DebugTextHook previous;
};

class FileOnDisk : public testing::Test {
protected:
    ScratchDir dir;
    std::string path = dir.Path("f.bin");
    std::u16string name = Wide(path);
    bool Open(CFile &f, uint32_t flags) { return f.Open(name.c_str(), flags); }
};

TEST_F(FileOnDisk, Dispositions) {
    CFile f;
    LogCapture log;
    EXPECT_FALSE(Open(f, kOpenExisting | kRead)); // must exist
    EXPECT_FALSE(Open(f, kRead));                 // none of the four: must exist
    EXPECT_EQ(log.text, "CFile::Open(" + path + ") FAILED.\nCFile::Open(" + path + ") FAILED.\n");
    EXPECT_EQ(f.GetHandle(), kInvalidFileHandle);

    WriteDiskBytes(path, Text("keep"));
    EXPECT_FALSE(Open(f, kCreateNew | kWrite)); // must not exist
    EXPECT_EQ(ReadDiskBytes(path), Text("keep"));
    ASSERT_TRUE(Open(f, kOpenAlways | kCreateAlways | kRead | kWrite)); // 0x01 wins: no truncation
    EXPECT_EQ(f.GetSize(), 4);
    f.Close();
    ASSERT_TRUE(Open(f, kOpenExisting | kCreateAlways | kRead)); // 0x02 wins over 0x08
    EXPECT_EQ(f.GetSize(), 4);
    f.Close();
    ASSERT_TRUE(Open(f, kCreateAlways | kCreateNew | kWrite)); // 0x08 wins over 0x04: truncates
    EXPECT_EQ(f.GetSize(), 0);
    f.Close();

    std::remove(path.c_str());
    ASSERT_TRUE(Open(f, kOpenAlways | kWrite)); // creates
    EXPECT_EQ(f.Write("xy", 2), 2u);
    f.Close();
    EXPECT_FALSE(Open(f, kCreateNew | kWrite));
    EXPECT_EQ(ReadDiskBytes(path), Text("xy"));
}

TEST_F(FileOnDisk, CreateNewOnAMissingFile) {
    CFile f;
    ASSERT_TRUE(Open(f, kCreateNew | kRead | kWrite));
    EXPECT_EQ(f.Write("abc", 3), 3u);
    EXPECT_EQ(f.GetPosition(), 3);
    f.Close();
    f.Close(); // nothing on a closed file
    EXPECT_EQ(ReadDiskBytes(path), Text("abc"));
}

TEST_F(FileOnDisk, StartAtTheEndSeekAndSize) {
    WriteDiskBytes(path, Text("0123456789"));
    CFile f;
    ASSERT_TRUE(Open(f, kOpenExisting | kRead | kWrite | kAtEnd));
    EXPECT_EQ(f.GetPosition(), 10);
    EXPECT_EQ(f.Seek(-4, 3), 6);
    EXPECT_EQ(f.Seek(1, 2), 7);
    EXPECT_EQ(f.Seek(2, 0), 0); // unknown origins move nothing
    EXPECT_EQ(f.Seek(2, 4), 0);
    EXPECT_EQ(f.GetPosition(), 7);
    EXPECT_TRUE(f.SetSize(5)); // the position stays
    EXPECT_EQ(f.GetPosition(), 7);
    EXPECT_EQ(f.GetSize(), 5);
    f.SetPosition(3);
    EXPECT_TRUE(f.SetEOF());
    EXPECT_EQ(f.GetSize(), 3);
    f.Flush();
    EXPECT_EQ(ReadDiskBytes(path), Text("012"));
    char16_t buf[600];
    EXPECT_EQ(std::u16string(f.GetFilename(buf, 600)), name);
    f.GetFilename(buf, 3);
    EXPECT_EQ(std::u16string(buf), name.substr(0, 2));
}

TEST_F(FileOnDisk, ReadOnlyAttributeAndWriteThrough) {
    CFile f;
    ASSERT_TRUE(Open(f, kCreateNew | kWrite | 0x2000 | 0x200000));
    EXPECT_EQ(f.Write("ro", 2), 2u); // the creating handle may write
    EXPECT_EQ(fcntl(int(f.GetHandle()), F_GETFL) & O_DSYNC, O_DSYNC);
    f.Close();
    struct stat st;
    ASSERT_EQ(stat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0222, 0u);

    std::string other = dir.Path("normal");
    CFile g;
    ASSERT_TRUE(g.Open(Wide(other).c_str(), kCreateNew | kWrite | 0x1000 | 0x2000)); // normal overrides
    ASSERT_EQ(stat(other.c_str(), &st), 0);
    EXPECT_NE(st.st_mode & 0200, 0u);
}

TEST_F(FileOnDisk, DeleteOnCloseRemovesTheNameAtOnce) {
    CFile f;
    ASSERT_TRUE(Open(f, kCreateAlways | kRead | kWrite | 0x100000));
    EXPECT_FALSE(std::filesystem::exists(path));
    EXPECT_EQ(f.Write("data", 4), 4u);
    f.SeekToBegin();
    char buf[4];
    EXPECT_EQ(f.Read(buf, 4), 4u);
}

TEST_F(FileOnDisk, OnlyRegularFilesOpen) {
    CFile f;
    LogCapture log;
    EXPECT_FALSE(f.Open(Wide(dir.path).c_str(), kOpenExisting | kRead));
    EXPECT_FALSE(f.Open(u"/dev/null", kOpenExisting | kRead));
    std::string fifo = dir.Path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_FALSE(f.Open(Wide(fifo).c_str(), kOpenExisting | kRead)); // and does not block
    EXPECT_FALSE(f.Open(nullptr, kOpenAlways | kRead));
    EXPECT_FALSE(f.Open(Wide(dir.path + "/" + std::string(600, 'n')).c_str(), kOpenAlways | kWrite));
    EXPECT_EQ(f.GetHandle(), kInvalidFileHandle);
}

TEST_F(FileOnDisk, FullPathsResolveRelativeNames) {
    ASSERT_EQ(mkdir(dir.Path("sub").c_str(), 0700), 0);
    std::string saved = std::filesystem::current_path();
    std::filesystem::current_path(dir.Path("sub"));
    CFile f;
    bool opened = f.Open(u"..\\missing\\..\\.\\rel.txt", kCreateNew | kWrite);
    std::filesystem::current_path(saved);
    ASSERT_TRUE(opened);
    char16_t buf[600];
    EXPECT_EQ(std::u16string(f.GetFilename(buf, 600)), Wide(dir.Path("rel.txt")));
    EXPECT_TRUE(std::filesystem::exists(dir.Path("rel.txt")));
    EXPECT_TRUE(CFile::Remove(buf));
    EXPECT_FALSE(CFile::Remove(buf));
}

TEST_F(FileOnDisk, HandlesCopiesAndDescriptors) {
    WriteDiskBytes(path, Text("abcdef"));
    CFile f;
    ASSERT_TRUE(Open(f, kOpenExisting | kRead | kShareAll));
    EXPECT_EQ(fcntl(int(f.GetHandle()), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    f.m_swap = true;
    {
        CFile copy(f); // a duplicate: same position, its own descriptor
        EXPECT_NE(copy.GetHandle(), f.GetHandle());
        EXPECT_TRUE(copy.m_swap);
        EXPECT_EQ(fcntl(int(copy.GetHandle()), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
        char c;
        copy.Read(&c, 1);
        EXPECT_EQ(f.GetPosition(), 1);
    } // closes its own
    char c = 0;
    EXPECT_EQ(f.Read(&c, 1), 1u);
    EXPECT_EQ(c, 'b');

    CFile assigned;
    assigned = f;
    EXPECT_EQ(assigned.Read(&c, 1), 1u);
    EXPECT_EQ(c, 'c');

    FileHandle raw = f.Detach();
    EXPECT_EQ(f.GetHandle(), kInvalidFileHandle);
    CFile adopted(raw);
    EXPECT_EQ(adopted.Read(&c, 1), 1u);
    EXPECT_EQ(c, 'd');
    CFile attached;
    attached.Attach(adopted.Detach());
    EXPECT_EQ(attached.GetSize(), 6);
    EXPECT_EQ(&attached.GetFileSystem(), &CMemFile().GetFileSystem());
}

} // namespace
} // namespace qv::test
