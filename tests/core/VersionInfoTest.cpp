// CVersionInfo on plain blocks: exact bytes and padding, round trips, the
// version numbers and their texts, the prerelease flag, string entries, and
// blocks whose lengths lie.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "files/FileTestSupport.h"
#include "qv/core/VersionInfo.h"
#include "qv/files/MemFile.h"
#include "support/FaultInjection.h"

namespace qv::test {
namespace {

// Little-endian block bytes written by hand, in the published layout.
struct BlockBytes {
    Bytes bytes;
    void Word(uint16_t v) {
        bytes.push_back(uint8_t(v));
        bytes.push_back(uint8_t(v >> 8));
    }
    void DWord(uint32_t v) {
        Word(uint16_t(v));
        Word(uint16_t(v >> 16));
    }
    void Text(std::u16string const &s) {
        for (char16_t c : s)
            Word(c);
        Word(0);
    }
    void Pad() {
        while (bytes.size() % 4)
            bytes.push_back(0);
    }
    void SetWord(size_t at, uint16_t v) {
        bytes[at] = uint8_t(v);
        bytes[at + 1] = uint8_t(v >> 8);
    }
};

// VS_VERSION_INFO with fixed info 1.2.3.4, one table "040904b0" holding
// "FileVersion" = "1, 2, 3, 4" and "Ab" = "x", and "Translation" = 0409 04b0.
Bytes SmallBlock() {
    BlockBytes b;
    b.Word(0); // root wLength, patched below
    b.Word(52);
    b.Word(0);
    b.Text(u"VS_VERSION_INFO");
    b.Pad(); // 38 -> 40
    for (uint32_t v : {0xFEEF04BDu, 0x10000u, 0x10002u, 0x30004u, 0x10002u, 0x30004u, 0x3Fu, 0u, 0x40004u, 1u, 0u,
                       0u, 0u})
        b.DWord(v);
    size_t const sfi = b.bytes.size(); // 92, aligned
    b.Word(0);
    b.Word(0);
    b.Word(1);
    b.Text(u"StringFileInfo");
    b.Pad();
    size_t const table = b.bytes.size();
    b.Word(0);
    b.Word(0);
    b.Word(1);
    b.Text(u"040904b0");
    b.Pad();
    size_t const first = b.bytes.size();
    b.Word(0);
    b.Word(11);
    b.Word(1);
    b.Text(u"FileVersion");
    b.Pad();
    b.Text(u"1, 2, 3, 4");
    b.SetWord(first, uint16_t(b.bytes.size() - first));
    b.Pad();
    size_t const second = b.bytes.size();
    b.Word(0);
    b.Word(2);
    b.Word(1);
    b.Text(u"Ab"); // 6 + 6 = 12, aligned: the value follows at once
    b.Text(u"x");
    b.SetWord(second, uint16_t(b.bytes.size() - second));
    b.SetWord(table, uint16_t(b.bytes.size() - table));
    b.SetWord(sfi, uint16_t(b.bytes.size() - sfi));
    b.Pad();
    size_t const vfi = b.bytes.size();
    b.Word(0);
    b.Word(0);
    b.Word(1);
    b.Text(u"VarFileInfo");
    b.Pad();
    size_t const var = b.bytes.size();
    b.Word(0);
    b.Word(4);
    b.Word(0);
    b.Text(u"Translation");
    b.Pad();
    b.Word(0x0409);
    b.Word(0x04B0);
    b.SetWord(var, uint16_t(b.bytes.size() - var));
    b.SetWord(vfi, uint16_t(b.bytes.size() - vfi));
    b.SetWord(0, uint16_t(b.bytes.size()));
    return b.bytes;
}

Bytes Serialized(CVersionInfo &info) {
    CMemFile out;
    if (!info.Serialize(out)) return {};
    return Bytes(out.GetData(), out.GetData() + out.GetSize());
}

std::u16string Text(char16_t const *s) {
    return s ? s : u"(null)";
}

TEST(VersionInfo, ReadsEveryPartOfTheBlock) {
    Bytes const block = SmallBlock();
    CVersionInfo info;
    ASSERT_TRUE(info.Parse(block.data(), uint32_t(block.size())));
    EXPECT_EQ(info.wLength, block.size());
    EXPECT_EQ(info.wValueLength, 52);
    EXPECT_EQ(std::u16string(info.szKey), u"VS_VERSION_INFO");
    EXPECT_EQ(info.Value.dwSignature, 0xFEEF04BDu);
    EXPECT_EQ(info.Value.dwFileFlagsMask, 0x3Fu);
    ASSERT_EQ(info.stringTables.GetSize(), 1u);
    EXPECT_EQ(Str(info.stringTables[0].key), u"040904b0");
    ASSERT_EQ(info.stringTables[0].strings.GetSize(), 2u);
    EXPECT_EQ(info.stringTables[0].strings[1].wLength, 16);
    EXPECT_EQ(Text(info.GetString(u"fileversion")), u"1, 2, 3, 4");
    EXPECT_EQ(Text(info.GetString(u"Ab")), u"x");
    EXPECT_EQ(info.GetString(u"Missing"), nullptr);
    ASSERT_EQ(info.vars.GetSize(), 1u);
    EXPECT_EQ(Str(info.vars[0].key), u"Translation");
    EXPECT_EQ(Bytes(info.vars[0].value.GetData(), info.vars[0].value.GetData() + 4), (Bytes{0x09, 0x04, 0xB0, 0x04}));
    uint16_t a, b, c, d;
    EXPECT_TRUE(info.GetVersion(a, b, c, d));
    EXPECT_EQ((std::vector<int>{a, b, c, d}), (std::vector<int>{1, 2, 3, 4}));
}

TEST(VersionInfo, WritesTheSameBytesBackWithPadding) {
    Bytes const block = SmallBlock();
    CVersionInfo info;
    ASSERT_TRUE(info.Parse(block.data(), uint32_t(block.size())));
    EXPECT_EQ(Serialized(info), block);

    // Through IFile, from and to the middle of a file: the padding counts
    // from the block's first byte, not the file's.
    CMemFile file;
    file.WriteBytes("xyz", 3);
    ASSERT_TRUE(info.Save(file));
    file.WriteBytes("tail", 4);
    file.SetPosition(3);
    CVersionInfo again;
    ASSERT_TRUE(again.Load(file));
    EXPECT_EQ(file.GetPosition(), int64_t(3 + block.size()));
    EXPECT_EQ(Serialized(again), block);

    CVersionInfo copy(again), assigned;
    assigned = copy;
    EXPECT_EQ(Serialized(assigned), block);
    assigned.Destroy();
    EXPECT_EQ(assigned.wLength, 0);
    CMemFile none;
    EXPECT_FALSE(assigned.Save(none)) << "nothing loaded";
}

TEST(VersionInfo, SetVersionChangesNumbersTextsAndLengths) {
    Bytes const block = SmallBlock();
    CVersionInfo info;
    ASSERT_TRUE(info.Parse(block.data(), uint32_t(block.size())));
    ASSERT_TRUE(info.SetVersion(10, 200, 3000, 40000));
    EXPECT_EQ(info.Value.dwFileVersionMS, 0x000A00C8u);
    EXPECT_EQ(info.Value.dwProductVersionLS, uint32_t(3000 << 16 | 40000));
    EXPECT_EQ(Text(info.GetString(u"FileVersion")), u"10, 200, 3000, 40000");
    EXPECT_EQ(info.GetString(u"ProductVersion"), nullptr) << "only entries that exist change";
    // "1, 2, 3, 4" became five characters longer: the entry, its table,
    // StringFileInfo and the root grow by ten bytes (plus the root's padding
    // before VarFileInfo, which stays aligned).
    EXPECT_EQ(info.stringTables[0].strings[0].wValueLength, 21);
    EXPECT_EQ(info.stringTables[0].strings[0].wLength, 32 + 42);
    Bytes const bytes = Serialized(info);
    EXPECT_EQ(info.wLength, bytes.size());
    CVersionInfo back;
    ASSERT_TRUE(back.Parse(bytes.data(), uint32_t(bytes.size())));
    uint16_t a, b, c, d;
    back.GetVersion(a, b, c, d);
    EXPECT_EQ((std::vector<int>{a, b, c, d}), (std::vector<int>{10, 200, 3000, 40000}));
    EXPECT_EQ(Text(back.GetString(u"FileVersion")), u"10, 200, 3000, 40000");
    EXPECT_EQ(Text(back.GetString(u"Ab")), u"x");
    EXPECT_EQ(back.vars.GetSize(), 1u);

    ASSERT_TRUE(back.SetVersion(1, 2, 3, 4));
    EXPECT_EQ(Serialized(back), block) << "back to the first numbers, back to the first bytes";
}

TEST(VersionInfo, BetaIsTheFlagAlone) {
    Bytes const block = SmallBlock();
    CVersionInfo info;
    ASSERT_TRUE(info.Parse(block.data(), uint32_t(block.size())));
    bool beta = true;
    EXPECT_TRUE(info.GetBeta(beta));
    EXPECT_FALSE(beta);
    EXPECT_TRUE(info.SetBeta(true));
    EXPECT_TRUE(info.GetBeta(beta));
    EXPECT_TRUE(beta);
    EXPECT_EQ(info.Value.dwFileFlags, CVersionInfo::kPrerelease);
    EXPECT_EQ(info.Value.dwFileFlagsMask, 0x3Fu);
    EXPECT_TRUE(info.SetBeta(false));
    EXPECT_EQ(Serialized(info), block);
}

TEST(VersionInfo, SetStringReplacesOrAppends) {
    Bytes const block = SmallBlock();
    CVersionInfo info;
    ASSERT_TRUE(info.Parse(block.data(), uint32_t(block.size())));
    ASSERT_TRUE(info.SetString(u"ab", u""));
    EXPECT_EQ(info.stringTables[0].strings[1].wValueLength, 1) << "the terminator alone";
    ASSERT_TRUE(info.SetString(u"Comments", u"stamped on Linux"));
    EXPECT_EQ(info.stringTables[0].strings.GetSize(), 3u);
    Bytes const bytes = Serialized(info);
    CVersionInfo back;
    ASSERT_TRUE(back.Parse(bytes.data(), uint32_t(bytes.size())));
    EXPECT_EQ(Text(back.GetString(u"Comments")), u"stamped on Linux");
    EXPECT_EQ(Text(back.GetString(u"Ab")), u"");
    EXPECT_FALSE(info.SetString(u"", u"x"));
    EXPECT_FALSE(info.SetString(nullptr, u"x"));

    // A block cannot pass 65535 bytes: the edit is refused and undone.
    std::u16string huge(40000, u'h');
    EXPECT_FALSE(info.SetString(u"Comments", huge.c_str()));
    EXPECT_EQ(Text(info.GetString(u"Comments")), u"stamped on Linux");
    EXPECT_EQ(Serialized(info), bytes);

    CVersionInfo empty;
    EXPECT_FALSE(empty.SetString(u"a", u"b")) << "no string table";
    EXPECT_FALSE(empty.SetVersion(1, 2, 3, 4)) << "nothing loaded";
}

TEST(VersionInfo, RefusesBlocksWhoseLengthsLie) {
    Bytes const good = SmallBlock();
    CVersionInfo info;
    auto refuses = [&](Bytes bytes, char const *what) {
        EXPECT_FALSE(info.Parse(bytes.data(), uint32_t(bytes.size()))) << what;
        EXPECT_EQ(info.wLength, 0) << what;
    };
    Bytes b = good;
    b[0] = uint8_t(b.size() + 2); // root longer than the bytes
    b[1] = uint8_t((b.size() + 2) >> 8);
    refuses(b, "root past the end");
    refuses(Bytes(good.begin(), good.begin() + 5), "shorter than a header");
    b = good;
    b[2] = 40;
    refuses(b, "fixed part of 40 bytes");
    b = good;
    b[6] = 'W';
    refuses(b, "another root key");
    // The string "Ab" claims a value of 200 characters.
    b = good;
    size_t const ab = 92 + 36 + 24 + 56; // root, StringFileInfo, table, FileVersion
    ASSERT_EQ(b[ab + 6], 'A');
    b[ab + 2] = 200;
    refuses(b, "string value past its block");
    b = good;
    b[ab] = 0xFF; // the entry's wLength passes its table
    refuses(b, "entry past its table");
    b = good;
    b[92 + 6] = 'X';
    refuses(b, "an unknown child");
    // A key without terminator inside its block.
    BlockBytes k;
    k.Word(10);
    k.Word(0);
    k.Word(0);
    k.Word('V');
    k.Word('S');
    refuses(k.bytes, "key runs past the block");
    EXPECT_FALSE(info.Parse(nullptr, 0));

    CMemFile file;
    file.WriteBytes(good.data(), uint32_t(good.size() - 1));
    file.SetPosition(0);
    EXPECT_FALSE(info.Load(file)) << "the file ends inside the block";
    EXPECT_EQ(file.GetPosition(), 0);
}

TEST(VersionInfo, BlockFileByPath) {
    ScratchDir dir;
    std::u16string const path = Wide(dir.Path("version.bin"));
    Bytes const block = SmallBlock();
    CVersionInfo info;
    ASSERT_TRUE(info.Parse(block.data(), uint32_t(block.size())));
    ASSERT_TRUE(info.Save(path.c_str()));
    EXPECT_EQ(ReadDiskBytes(dir.Path("version.bin")), block);
    CVersionInfo back;
    ASSERT_TRUE(back.Load(path.c_str()));
    EXPECT_EQ(Serialized(back), block);
    EXPECT_FALSE(back.Load(Wide(dir.Path("missing.bin")).c_str()));
    EXPECT_EQ(back.wLength, 0);
}

// Every fault but a failing close: the new file's data is synced through its
// name before the rename, which is what counts.
std::vector<Fault> SaveFaults() {
    auto kinds = AllFaults();
    std::erase(kinds, Fault::kClose);
    return kinds;
}

TEST(VersionInfo, AFailedSaveKeepsTheOldBlockFile) {
    ScratchDir dir;
    std::string const file = dir.Path("version.bin");
    std::u16string const path = Wide(file);
    CVersionInfo info;
    Bytes const block = SmallBlock();
    ASSERT_TRUE(info.Parse(block.data(), uint32_t(block.size())));
    ASSERT_TRUE(info.SetVersion(1, 2, 3, 4));
    FaultBytes const before(30, uint8_t(0x6F));
    FaultBytes after;
    RunUnderFaults([&] { std::ofstream(file, std::ios::binary | std::ios::trunc) << std::string(30, 'o'); },
                   [&] { return info.Save(path.c_str()); },
                   [&](FaultRun const &run) {
                       if (run.IsClean()) {
                           after = FileBytes(file);
                           return;
                       }
                       ExpectFailureReported(run);
                       ExpectBeforeOrAfter(run, FileBytes(file), before, after);
                   },
                   SaveFaults());
}

} // namespace
} // namespace qv::test
