// Reading SAF headers: older fixed-size headers, the odd cases existing files
// rely on, and hostile input that must end cleanly.
#include <gtest/gtest.h>

#include <string>

#include "SAFTestSupport.h"

using namespace qv;
using namespace qv::saftest;

namespace {

template <class F> class SAFLoadTest : public ::testing::Test {};
using FileKinds = ::testing::Types<CMemFile, CFile>;
TYPED_TEST_SUITE(SAFLoadTest, FileKinds);

std::string TagName(CSAFFile &saf, uint32_t i) {
    return Narrow(saf[i].name.GetUTF16());
}

// An older header: HdSize holds its size in bytes and there is no DATA line.
// The lines end exactly at byte 1024; the data behind looks like header text.
std::string OldHeader() {
    std::string text = "HdSize 1024\r\nWidth 64\r\nCamera Old one\r\n";
    std::string comment1 = "Comment1 " + std::string(480, 'c') + "\r\n";
    text += comment1;
    text += "Comment2 " + std::string(1024 - text.size() - 11, 'd') + "\r\n";
    return text;
}

TYPED_TEST(SAFLoadTest, OlderFixedSizeHeaderReadsUpToItsSize) {
    std::string header = OldHeader();
    ASSERT_EQ(header.size(), 1024u);
    auto f = MakeFile<TypeParam>(header + "Fake 1\r\nDATA\r\n\x01\x02\n\x03");
    CSAFFile saf;
    ASSERT_TRUE(saf.Load(f.get()));
    EXPECT_EQ(saf.GetDataPosition(), 1024u);
    ASSERT_EQ(saf.nTags(), 6u);
    EXPECT_EQ(Narrow(saf.GetTagValue(u"HdSize")), "Auto");
    EXPECT_EQ(Narrow(saf.GetTagValue(u"Camera")), "Old one");
    EXPECT_EQ(saf.GetTagValue(u"Fake"), nullptr);
    EXPECT_EQ(TagName(saf, 5), "DATA");
    EXPECT_EQ(Narrow(saf[5u].value.GetUTF16()), "");

    // Rewritten, it is a header of the new kind with "Auto" and the same data.
    uint32_t position = saf.GetDataPosition();
    ASSERT_TRUE(saf.Update(f.get(), position, true));
    std::string bytes = AllBytes(*f);
    EXPECT_EQ(bytes.substr(0, 13), "HdSize Auto\r\n");
    EXPECT_EQ(bytes.substr(position), "Fake 1\r\nDATA\r\n\x01\x02\n\x03");
}

TYPED_TEST(SAFLoadTest, PaddingLinesAreSkippedEvenAtTheLimit) {
    // The size named ends right behind a padding line: reading goes on.
    std::string head = "HdSize 40\r\nsaf_padding 123456789012345\r\n";
    ASSERT_EQ(head.size(), 40u);
    auto f = MakeFile<TypeParam>(head + "After 1\r\nDATA\r\nxyz");
    CSAFFile saf;
    ASSERT_TRUE(saf.Load(f.get()));
    EXPECT_EQ(saf.nTags(), 3u);
    EXPECT_EQ(Narrow(saf.GetTagValue(u"After")), "1");
    EXPECT_EQ(saf.GetDataPosition(), head.size() + 15);
}

TYPED_TEST(SAFLoadTest, LineSplittingAndCase) {
    auto f = MakeFile<TypeParam>("hdsize auto\r\nName   spaced value  \r\nBare\r\nLf only\n"
                                 "Dup first\r\nDUP second\r\n\r\ndata\r\nrest");
    CSAFFile saf;
    ASSERT_TRUE(saf.Load(f.get()));
    ASSERT_EQ(saf.nTags(), 8u);
    EXPECT_EQ(Narrow(saf.GetTagValue(u"HDSIZE")), "Auto");
    EXPECT_EQ(Narrow(saf.GetTagValue(u"name")), "spaced value");
    EXPECT_EQ(Narrow(saf.GetTagValue(u"Bare")), "");
    EXPECT_EQ(Narrow(saf.GetTagValue(u"Lf")), "only");
    EXPECT_EQ(Narrow(saf.GetTagValue(u"dup")), "first");
    EXPECT_EQ(TagName(saf, 6), ""); // an empty line is a tag without name
    EXPECT_EQ(TagName(saf, 7), "data");
    EXPECT_EQ(saf.GetDataPosition(), AllBytes(*f).size() - 4);
}

TYPED_TEST(SAFLoadTest, RefusedFiles) {
    // A failed load keeps the tags read so far and a cleared file name.
    struct Refused {
        char const *text;
        uint32_t tagsRead;
    } const refused[] = {{"", 0},
                         {"HdSiz", 0},
                         {"HdSizX auto\r\nDATA\r\n", 0},
                         {"Width 1\r\nDATA\r\n", 0},
                         {"HdSizeX auto\r\nDATA\r\n", 2}};
    for (Refused const &r : refused) {
        SCOPED_TRACE(r.text);
        auto f = MakeFile<TypeParam>(r.text);
        CSAFFile saf;
        saf.New(false);
        EXPECT_FALSE(saf.Load(f.get()));
        EXPECT_EQ(saf.nTags(), r.tagsRead);
        EXPECT_EQ(Narrow(saf.GetFilename()), "");
    }
    CSAFFile saf;
    EXPECT_FALSE(saf.Load(static_cast<IFile *>(nullptr)));
}

// Each hostile header loads as designed: true with the tags that could be
// read and a DATA tag at the end, and the data position where reading ended.
struct Hostile {
    char const *what;
    std::string bytes;
    uint32_t tags;
    uint32_t dataPosition;
};

TYPED_TEST(SAFLoadTest, HostileHeadersEndCleanly) {
    std::string const longLine = "Long " + std::string(600, 'z') + "\r\n";
    std::string const line510 = "Edge " + std::string(505, 'e') + "\r\n";
    Hostile const cases[] = {
        {"no DATA line", "HdSize Auto\r\nA 1\r\n", 3, 18},
        {"truncated line", "HdSize auto\r\nA 1", 3, 16},
        {"only the magic", "HdSize", 2, 6},
        {"line over 511 bytes", "HdSize auto\r\n" + longLine + "DATA\r\n", 2, 13},
        {"line of 510 bytes", "HdSize auto\r\n" + line510 + "DATA\r\n", 3, 13 + 512 + 6},
        {"HdSize limit inside the first line", "HdSize 3\r\nA 1\r\nDATA\r\nd", 3, 21},
        {"HdSize past the file", "HdSize 999999999999\r\nA 1\r\n", 3, 26},
        {"negative HdSize", "HdSize -13\r\nA 1\r\nDATA\r\n", 3, 23},
        {"binary after the header", std::string("HdSize Auto\r\n\0\xff\n\r\r\n", 19), 4, 19},
    };
    for (Hostile const &c : cases) {
        SCOPED_TRACE(c.what);
        auto f = MakeFile<TypeParam>(c.bytes);
        CSAFFile saf;
        ASSERT_TRUE(saf.Load(f.get()));
        EXPECT_EQ(saf.nTags(), c.tags);
        EXPECT_EQ(saf.GetDataPosition(), c.dataPosition);
        EXPECT_EQ(TagName(saf, saf.nTags() - 1), "DATA");
        EXPECT_EQ(Narrow(saf.GetTagValue(u"HdSize")), "Auto");
    }
}

} // namespace

TEST(SAFLoad, HeaderOfEndlessLinesStopsAtTheLineCap) {
    std::string bytes = "HdSize Auto\r\n" + std::string(70000, '\n');
    CMemFile f;
    f.Write(bytes.data(), uint32_t(bytes.size()));
    CSAFFile saf;
    ASSERT_TRUE(saf.Load(&f));
    EXPECT_EQ(saf.nTags(), 65536u + 1);
    EXPECT_EQ(saf.GetDataPosition(), 13u + 65535);
}
