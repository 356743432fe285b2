// Share modes between two opens of one file behave as on Windows: each
// open's access must be allowed by the other's share mode.
#include <string>

#include "FileTestSupport.h"

namespace qv::test {
namespace {

constexpr uint32_t kOpenExisting = 0x02, kCreateAlways = 0x08, kRead = 0x10, kWrite = 0x20;

struct Mode {
    bool read, write;           // access
    bool shareRead, shareWrite; // what others may do
    uint32_t Flags() const {
        uint32_t flags = kOpenExisting | (read ? kRead : 0) | (write ? kWrite : 0);
        if (shareRead || shareWrite) return flags | (shareRead ? 0x200 : 0) | (shareWrite ? 0x100 : 0);
        return flags | 0x400 | 0x800; // deny both
    }
    std::string Name() const {
        return std::string(read ? "R" : "") + (write ? "W" : "") + "/share" + (shareRead ? "R" : "") +
               (shareWrite ? "W" : "");
    }
};

bool Compatible(Mode const &a, Mode const &b) {
    auto allows = [](Mode const &holder, Mode const &other) {
        return (!other.read || holder.shareRead) && (!other.write || holder.shareWrite);
    };
    return allows(a, b) && allows(b, a);
}

class FileSharing : public testing::Test {
protected:
    ScratchDir dir;
    std::string path = dir.Path("shared.bin");
    std::u16string name = Wide(path);
    void SetUp() override { WriteDiskBytes(path, Text("content")); }
    bool Open(CFile &f, uint32_t flags) { return f.Open(name.c_str(), flags); }
};

TEST_F(FileSharing, TheWindowsShareMatrix) {
    std::vector<Mode> modes;
    for (int access = 1; access <= 3; ++access)
        for (int share = 0; share <= 3; ++share)
            modes.push_back({bool(access & 1), bool(access & 2), bool(share & 1), bool(share & 2)});
    for (Mode const &first : modes) {
        for (Mode const &second : modes) {
            CFile a, b;
            ASSERT_TRUE(Open(a, first.Flags())) << first.Name();
            EXPECT_EQ(Open(b, second.Flags()), Compatible(first, second)) << first.Name() << " then " << second.Name();
        }
    }
}

TEST_F(FileSharing, DefaultsAndDenyFlags) {
    CFile reader, other;
    ASSERT_TRUE(Open(reader, kOpenExisting | kRead)); // a reader shares read
    EXPECT_TRUE(Open(other, kOpenExisting | kRead));
    other.Close();
    EXPECT_FALSE(Open(other, kOpenExisting | kRead | kWrite | 0x300));
    reader.Close();

    CFile writer;
    ASSERT_TRUE(Open(writer, kOpenExisting | kWrite)); // a writer shares nothing
    EXPECT_FALSE(Open(other, kOpenExisting | kRead | 0x300));
    EXPECT_TRUE(Open(other, kOpenExisting)); // no access: never in conflict
    other.Close();
    writer.Close();

    CFile denyRead;
    ASSERT_TRUE(Open(denyRead, kOpenExisting | kWrite | 0x400)); // shares write only
    EXPECT_TRUE(Open(other, kOpenExisting | kWrite | 0x300));
    other.Close();
    EXPECT_FALSE(Open(other, kOpenExisting | kRead | 0x300));
    denyRead.Close();

    CFile denyWrite;
    ASSERT_TRUE(Open(denyWrite, kOpenExisting | kRead | 0x800)); // shares read only
    EXPECT_TRUE(Open(other, kOpenExisting | kRead | 0x300));
    other.Close();
    EXPECT_FALSE(Open(other, kOpenExisting | kWrite | 0x300));
}

TEST_F(FileSharing, ARefusedOpenNeverTruncates) {
    CFile holder, intruder;
    ASSERT_TRUE(Open(holder, kOpenExisting | kRead | 0x400 | 0x800));
    EXPECT_FALSE(Open(intruder, kCreateAlways | kRead | kWrite | 0x300));
    EXPECT_FALSE(Open(intruder, kCreateAlways | kWrite | 0x100000 | 0x300));
    EXPECT_EQ(ReadDiskBytes(path), Text("content"));
    holder.Close();
    EXPECT_TRUE(Open(intruder, kCreateAlways | kWrite));
    EXPECT_EQ(ReadDiskBytes(path), Bytes{});
}

TEST_F(FileSharing, DeclarationsLastUntilTheLastDuplicateCloses) {
    CFile exclusive, other;
    ASSERT_TRUE(Open(exclusive, kOpenExisting | kRead | kWrite | 0x400 | 0x800));
    {
        CFile copy(exclusive);
        exclusive.Close();
        EXPECT_FALSE(Open(other, kOpenExisting | kRead | 0x300));
        char c;
        EXPECT_EQ(copy.Read(&c, 1), 1u); // a duplicate never collides with its own open
    }
    EXPECT_TRUE(Open(other, kOpenExisting | kRead | 0x300));
}

} // namespace
} // namespace qv::test
