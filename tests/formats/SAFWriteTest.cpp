// Exact bytes of written SAF headers, the slack rules of a rewrite, and the
// data segment kept byte for byte, on disk and in memory.
#include <gtest/gtest.h>

#include <string>

#include "SAFTestSupport.h"

using namespace qv;
using namespace qv::saftest;

namespace {

char const kCameraTags[] = "HdSize auto\r\nWidth 64\r\nHeight 48\r\nCamera Test camera\r\n";

// The five padding lines in their order; padding repeats them.
std::string const kFiveLines = "saf_padding The pad tag is used to    \r\n"
                               "saf_padding reserve space for newly   \r\n"
                               "saf_padding added tags which limits   \r\n"
                               "saf_padding the need for file rewrites\r\n"
                               "saf_padding and improves performance  \r\n";

std::string Repeat(std::string const &s, int n) {
    std::string out;
    for (int i = 0; i < n; ++i)
        out += s;
    return out;
}

// 2048 bytes: 51 lines, the last with 8 blanks behind its text.
std::string const kPad2048 = Repeat(kFiveLines, 10) + "saf_padding The pad tag is used to            \r\n";
// 4096 bytes: 102 lines, then a 16-byte line with two characters of text.
std::string const kPad4096 = Repeat(kFiveLines, 20) + kFiveLines.substr(0, 80) + "saf_padding ad\r\n";

template <class F> class SAFWriteTest : public ::testing::Test {};
using FileKinds = ::testing::Types<CMemFile, CFile>;
TYPED_TEST_SUITE(SAFWriteTest, FileKinds);

TYPED_TEST(SAFWriteTest, NewFileBytesWithAndWithoutPadding) {
    ASSERT_EQ(kPad2048.size(), 2048u);
    ASSERT_EQ(kPad4096.size(), 4096u);
    CSAFFile saf;
    MakeCameraHeader(saf);

    auto padded = MakeFile<TypeParam>();
    uint32_t position = 777; // SaveTo starts a new file whatever it held
    ASSERT_TRUE(saf.SaveTo(padded.get(), position, true));
    std::string header = kCameraTags;
    EXPECT_EQ(AllBytes(*padded), header + kPad2048 + "DATA\r\n");
    EXPECT_EQ(position, header.size() + 2048 + 6);

    auto plain = MakeFile<TypeParam>();
    ASSERT_TRUE(saf.SaveTo(plain.get(), position, false));
    EXPECT_EQ(AllBytes(*plain), header + "DATA\r\n");
    EXPECT_EQ(position, header.size() + 6);

    EXPECT_EQ(plain->GetPosition(), int64_t(position));
    EXPECT_EQ(saf.GetDataPosition(), 0u); // the object's own position is not touched
}

TYPED_TEST(SAFWriteTest, WrittenHeaderLoadsBack) {
    CSAFFile saf;
    MakeCameraHeader(saf);
    saf.AddTag(u"Camera", u"second"); // duplicates are written, the first is found
    saf.AddTag(u"Empty", u"");
    saf.AddTag(u"Name", u"Caf\u00e9 \u4e2d");
    auto f = MakeFile<TypeParam>();
    uint32_t position = 0;
    ASSERT_TRUE(saf.SaveTo(f.get(), position, true));
    EXPECT_EQ(f->GetPosition(), int64_t(position));
    std::string bytes = AllBytes(*f);
    EXPECT_NE(bytes.find("Camera Test camera\r\nCamera second\r\nEmpty \r\nName Caf\xc3\xa9 \xe4\xb8\xad\r\n"),
              std::string::npos);

    CSAFFile loaded;
    ASSERT_TRUE(loaded.Load(f.get()));
    EXPECT_EQ(loaded.GetDataPosition(), position);
    ASSERT_EQ(loaded.nTags(), saf.nTags());
    EXPECT_EQ(Narrow(loaded.GetTagValue(u"HdSize")), "Auto");
    EXPECT_EQ(Narrow(loaded.GetTagValue(u"camera")), "Test camera");
    EXPECT_EQ(Narrow(loaded[4u].value.GetUTF16()), "second");
    EXPECT_EQ(Narrow(loaded.GetTagValue(u"Empty")), "");
    EXPECT_EQ(Narrow(loaded.GetTagValue(u"Name")), "Caf\xc3\xa9 \xe4\xb8\xad");
    EXPECT_EQ(Narrow(loaded[loaded.nTags() - 1].name.GetUTF16()), "DATA");
}

// One rewrite of a header whose data segment starts at `dataPosition`.
struct SlackCase {
    int64_t slack;       // dataPosition minus the header's size
    std::string padding; // what the rewrite must put between tags and DATA
};

TYPED_TEST(SAFWriteTest, SlackDecidesPaddingAndWhetherDataMoves) {
    std::string const line0 = kFiveLines.substr(0, 40);
    SlackCase const cases[] = {
        {0, ""},
        {15, kPad2048},
        {16, "saf_padding Th\r\n"},
        {54, line0.substr(0, 38) + std::string(14, ' ') + "\r\n"},
        {55, line0 + "saf_padding r\r\n"},
        {2048, kPad2048},
        {4096, kPad4096},
        {4097, kPad2048},
        {-1, kPad2048},
    };
    CSAFFile saf;
    MakeCameraHeader(saf);
    std::string const header = kCameraTags;
    int64_t const headerSize = int64_t(header.size()) + 6;
    // Larger than one block of IFile::Insert/Remove, so the data moves in pieces.
    std::string const data = DataPattern(1300000);

    for (SlackCase const &c : cases) {
        SCOPED_TRACE(c.slack);
        uint32_t position = uint32_t(headerSize + c.slack);
        auto f = MakeFile<TypeParam>(std::string(position, 'x') + data);
        bool moves = (c.slack < 16 && c.slack != 0) || c.slack > 4096;
        uint32_t expected = uint32_t(headerSize + int64_t(c.padding.size()));
        ASSERT_TRUE(saf.Update(f.get(), position, true));
        EXPECT_EQ(position, expected);
        EXPECT_EQ(moves, int64_t(position) != headerSize + c.slack);
        EXPECT_EQ(f->GetPosition(), int64_t(position));
        std::string bytes = AllBytes(*f);
        EXPECT_EQ(bytes.substr(0, position), header + c.padding + "DATA\r\n");
        EXPECT_TRUE(bytes.substr(position) == data) << "data segment changed";
    }
}

TYPED_TEST(SAFWriteTest, DataStaysByteForByteAcrossRewrites) {
    std::string const data = DataPattern(900000);
    CSAFFile saf;
    MakeCameraHeader(saf);
    auto f = MakeFile<TypeParam>();
    uint32_t position = 0;
    ASSERT_TRUE(saf.SaveTo(f.get(), position, true));
    ASSERT_TRUE(f->WriteBytes(data.data(), uint32_t(data.size())));
    uint32_t const first = position;

    // Each step edits the loaded header and rewrites it as a user would.
    auto rewrite = [&](auto edit) {
        CSAFFile loaded;
        EXPECT_TRUE(loaded.Load(f.get()));
        EXPECT_EQ(loaded.GetDataPosition(), position);
        edit(loaded);
        uint32_t at = loaded.GetDataPosition();
        EXPECT_TRUE(loaded.Update(f.get(), at, true));
        std::string bytes = AllBytes(*f);
        std::string tagLines = HeaderText(loaded);
        tagLines.resize(tagLines.size() - 6);
        EXPECT_EQ(bytes.substr(0, tagLines.size()), tagLines);
        EXPECT_EQ(bytes.substr(tagLines.size(), 12), "saf_padding ");
        EXPECT_EQ(bytes.substr(at - 6, 6), "DATA\r\n");
        EXPECT_TRUE(bytes.substr(at) == data) << "data segment changed";
        position = at;
    };

    rewrite([](CSAFFile &s) { s.AddTag(u"Frames", u"4"); });
    EXPECT_EQ(position, first); // fewer bytes than the slack: less padding, same offset
    rewrite([](CSAFFile &s) { s.SetTagValue(u"Camera", u"A much longer camera name than before"); });
    EXPECT_EQ(position, first);
    rewrite([](CSAFFile &s) {
        for (int i = 0; i < 40; ++i)
            s.AddTag(CString::FromFormat(u"Note%d", i).GetUTF16(), u"a comment of about fifty bytes, give or take");
    });
    EXPECT_GT(position, first); // slack used up: the data moved once, 2048 bytes of slack again
    uint32_t const grown = position;
    rewrite([](CSAFFile &s) {
        for (int i = 0; i < 40; ++i)
            s.RemoveTag(CString::FromFormat(u"Note%d", i).GetUTF16());
    });
    EXPECT_LT(position, grown); // slack above 4096: the data moved down
    rewrite([](CSAFFile &s) { s.RemoveTag(u"Frames"); });

    CSAFFile last;
    ASSERT_TRUE(last.Load(f.get()));
    EXPECT_EQ(last.nTags(), 5u);
    EXPECT_EQ(Narrow(last.GetTagValue(u"Camera")), "A much longer camera name than before");
}

} // namespace

TEST(SAFWrite, RefusesWithoutTagsOrFile) {
    CSAFFile empty;
    CMemFile f;
    f.Write("abc", 3);
    uint32_t position = 0;
    EXPECT_FALSE(empty.SaveTo(&f, position, true));
    EXPECT_EQ(AllBytes(f), "abc");
    CSAFFile saf;
    saf.New(false);
    EXPECT_FALSE(saf.Update(nullptr, position, true));
}

TEST(SAFWrite, ExistingBytesBecomeTheDataOfSaveTo) {
    CSAFFile saf;
    saf.New(false);
    CMemFile f;
    f.Write("payload", 7);
    uint32_t position = 99;
    ASSERT_TRUE(saf.SaveTo(&f, position, false));
    EXPECT_EQ(AllBytes(f), "HdSize auto\r\n" + kPad2048 + "DATA\r\npayload");
    EXPECT_EQ(position, 13u + 2048 + 6);
}
