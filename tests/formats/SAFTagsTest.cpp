// The tag list of CSAFFile: fixed tags, lookup, the checked edits, copies,
// and CTagValue's conversions.
#include <gtest/gtest.h>

#include <clocale>
#include <string>

#include "SAFTestSupport.h"

using namespace qv;
using namespace qv::saftest;

namespace {

std::string Value(CSAFFile &saf, char16_t const *name) {
    return Narrow(saf.GetTagValue(name));
}

TEST(SAFTags, LifecycleOfTheFixedTags) {
    CSAFFile saf;
    EXPECT_EQ(saf.nTags(), 0u);
    EXPECT_FALSE(saf.SetTagValue(u"A", u"1")); // no tags at all
    EXPECT_FALSE(saf.AddTag(u"A", u"1"));

    ASSERT_TRUE(saf.New(false));
    EXPECT_EQ(saf.nTags(), 2u);
    EXPECT_EQ(Value(saf, u"hdsize"), "auto");
    EXPECT_EQ(Narrow(saf[1u].name.GetUTF16()), "DATA");
    EXPECT_EQ(Value(saf, u"DATA"), "");
    EXPECT_EQ(Narrow(saf.GetFilename()), "");
    EXPECT_EQ(saf.GetFileSystem(), nullptr);

    CMemFile f;
    uint32_t position = 0;
    saf.SaveTo(&f, position, true);
    saf.Load(&f);
    EXPECT_EQ(saf.GetDataPosition(), position);
    saf.AddTag(u"A", u"1");
    saf.New(true); // keeps the file, drops the tags
    EXPECT_EQ(saf.GetDataPosition(), position);
    EXPECT_EQ(saf.nTags(), 2u);
    saf.AddTag(u"A", u"1");
    saf.DropData(); // keeps the tags, drops the file
    EXPECT_EQ(saf.GetDataPosition(), 0u);
    EXPECT_EQ(saf.nTags(), 3u);
    saf.Destroy();
    EXPECT_EQ(saf.nTags(), 0u);
}

TEST(SAFTags, FindSetAddRemove) {
    CSAFFile saf;
    saf.New(false);
    ASSERT_TRUE(saf.SetTagValue(u"Width", u"64")); // absent: added before DATA
    ASSERT_TRUE(saf.AddTag(u"Camera", u"one"));
    ASSERT_TRUE(saf.AddTag(u"camera", u"two")); // duplicates are legal
    ASSERT_EQ(saf.nTags(), 5u);
    EXPECT_EQ(Narrow(saf[4u].name.GetUTF16()), "DATA");

    uint32_t index = 99;
    ASSERT_TRUE(saf.FindTag(u"CAMERA", index));
    EXPECT_EQ(index, 2u);
    EXPECT_FALSE(saf.FindTag(u"Height", index));
    EXPECT_EQ(saf.GetTagValue(u"Height"), nullptr);

    ASSERT_TRUE(saf.SetTagValue(u"CAMERA", u"first")); // replaces the first match only
    EXPECT_EQ(Narrow(saf[2u].value.GetUTF16()), "first");
    EXPECT_EQ(Narrow(saf[3u].value.GetUTF16()), "two");
    ASSERT_TRUE(saf.SetTagValue(1u, u"65"));
    EXPECT_EQ(Value(saf, u"Width"), "65");
    ASSERT_TRUE(saf.SetTagValue(u"Width", nullptr)); // a null value is the empty text
    EXPECT_EQ(Value(saf, u"Width"), "");

    EXPECT_TRUE(saf.RemoveTag(u"camera"));
    EXPECT_EQ(Value(saf, u"Camera"), "two");
    EXPECT_FALSE(saf.RemoveTag(u"Nothing"));
    EXPECT_TRUE(saf.RemoveTag(100u)); // past the end: no effect
    EXPECT_EQ(saf.nTags(), 4u);

    // The index forms extend the list, as the array does.
    saf[5u].name = u"Far";
    EXPECT_EQ(saf.nTags(), 6u);
    EXPECT_TRUE(saf.SetTagValue(7u, u"x"));
    EXPECT_EQ(saf.nTags(), 8u);
}

TEST(SAFTags, TextThatWouldCorruptAHeaderIsRefused) {
    CSAFFile saf;
    saf.New(false);
    saf.AddTag(u"Keep", u"kept");
    uint32_t const tags = saf.nTags();

    EXPECT_FALSE(saf.AddTag(u"Two words", u"v"));
    EXPECT_FALSE(saf.AddTag(u"Cr\r", u"v"));
    EXPECT_FALSE(saf.AddTag(u"Lf\n", u"v"));
    EXPECT_FALSE(saf.AddTag(u"Name", u"line\r\nbreak"));
    EXPECT_FALSE(saf.AddTag(u"Name", u"cr\ronly"));
    EXPECT_FALSE(saf.SetTagValue(u"Keep", u"new\nline"));
    EXPECT_FALSE(saf.SetTagValue(1u, u"new\nline"));
    EXPECT_FALSE(saf.SetTagValue(u"New name", u"v"));
    for (char16_t const *reserved : {u"HdSize", u"hdsize", u"DATA", u"data", u"SAF_PADDING"})
        EXPECT_FALSE(saf.AddTag(reserved, u"auto"));
    EXPECT_FALSE(saf.SetTagValue(u"saf_padding", u"x")); // would be added, and then skipped by a reader
    EXPECT_FALSE(saf.SetTagValue(u"HdSize", u"1024"));   // a reader would stop at byte 1024
    EXPECT_FALSE(saf.SetTagValue(0u, u"12"));
    EXPECT_TRUE(saf.SetTagValue(u"HdSize", u"AUTO"));
    EXPECT_TRUE(saf.SetTagValue(u"DATA", u"ignored")); // the DATA line is written bare

    // A line holds 510 bytes before its CR LF: name, blank, value (UTF-8).
    std::u16string fits = std::u16string(253, u'\u00e9') + u"ab"; // 508 bytes
    EXPECT_TRUE(saf.AddTag(u"N", fits.c_str()));
    std::u16string over = fits + u"c";
    EXPECT_FALSE(saf.AddTag(u"N", over.c_str()));
    EXPECT_FALSE(saf.SetTagValue(u"Keep", std::u16string(506, u'k').c_str()));
    EXPECT_TRUE(saf.SetTagValue(u"Keep", std::u16string(505, u'k').c_str()));

    EXPECT_EQ(saf.nTags(), tags + 1);
    EXPECT_EQ(Value(saf, u"HdSize"), "AUTO");

    // What was accepted reads back as it was written.
    CMemFile f;
    uint32_t position = 0;
    ASSERT_TRUE(saf.SaveTo(&f, position, true));
    CSAFFile loaded;
    ASSERT_TRUE(loaded.Load(&f));
    EXPECT_EQ(loaded.GetDataPosition(), position);
    EXPECT_EQ(Value(loaded, u"N"), Narrow(fits.c_str()));
    EXPECT_EQ(Value(loaded, u"Keep"), std::string(505, 'k'));
    EXPECT_EQ(loaded.nTags(), saf.nTags());
}

TEST(SAFTags, MakeDuplicate) {
    CSAFFile fresh, target;
    fresh.New(false);
    target.New(false);
    target.AddTag(u"Old", u"gone");
    ASSERT_TRUE(fresh.MakeDuplicate(target));
    EXPECT_EQ(target.nTags(), 2u); // a new file
    EXPECT_EQ(Value(target, u"HdSize"), "auto");
    EXPECT_EQ(Narrow(target[1u].name.GetUTF16()), "DATA");

    CMemFile f;
    uint32_t position = 0;
    CSAFFile source;
    MakeCameraHeader(source);
    source.AddTag(u"Camera", u"dup");
    source.SaveTo(&f, position, true);
    source.Load(&f); // HdSize now "Auto", a data position set
    ASSERT_TRUE(source.MakeDuplicate(target));
    ASSERT_EQ(target.nTags(), source.nTags());
    EXPECT_EQ(Value(target, u"HdSize"), "auto");
    EXPECT_EQ(target.GetDataPosition(), 0u);
    for (uint32_t i = 1; i + 1 < source.nTags(); ++i) {
        EXPECT_EQ(Narrow(target[i].name.GetUTF16()), Narrow(source[i].name.GetUTF16()));
        EXPECT_EQ(Narrow(target[i].value.GetUTF16()), Narrow(source[i].value.GetUTF16()));
    }

    // A tag the target refuses stops the copy with false.
    source[2u].name = u"bad name";
    EXPECT_FALSE(source.MakeDuplicate(target));
    EXPECT_EQ(target.nTags(), 3u);

    CSAFFile copy(source); // a plain copy keeps everything
    EXPECT_EQ(copy.nTags(), source.nTags());
    EXPECT_EQ(copy.GetDataPosition(), source.GetDataPosition());
}

TEST(SAFTags, TagValueConversions) {
    CSAFFile saf;
    saf.New(false);
    saf[u"Frames"] = 42;
    saf[u"Negative"] = -7;
    saf[u"Gain"] = 1.5;
    saf[u"Tiny"] = -2.5e-10;
    saf[u"Text"] = u"12.75abc";
    EXPECT_EQ(Value(saf, u"Frames"), "42");
    EXPECT_EQ(Value(saf, u"Negative"), "-7");
    EXPECT_EQ(Value(saf, u"Gain"), "1.500000e+000");
    EXPECT_EQ(Value(saf, u"Tiny"), "-2.500000e-010");

    int32_t frames = saf[u"frames"];
    double gain = saf[u"GAIN"];
    EXPECT_EQ(frames, 42);
    EXPECT_DOUBLE_EQ(gain, 1.5);
    EXPECT_EQ(int32_t(saf[u"Text"]), 12);
    EXPECT_DOUBLE_EQ(double(saf[u"Text"]), 12.75);
    EXPECT_EQ(saf[u"Text"].ToLong(5), 12);

    // Absent tags: 0, 0.0, null, or the fallback.
    EXPECT_FALSE(saf[u"Missing"].Exists());
    EXPECT_TRUE(saf[u"Frames"].Exists());
    EXPECT_EQ(int32_t(saf[u"Missing"]), 0);
    EXPECT_EQ(double(saf[u"Missing"]), 0.0);
    EXPECT_EQ(static_cast<char16_t const *>(saf[u"Missing"]), nullptr);
    EXPECT_EQ(saf[u"Missing"].ToLong(-3), -3);
    EXPECT_EQ(saf[u"Missing"].ToDouble(2.25), 2.25);
    EXPECT_EQ(saf[u"Text"].ToDouble(2.25), 12.75);

    // Assigning one handle to another copies the handle, not the value.
    CSAFFile::CTagValue handle = saf[u"Frames"];
    handle = saf[u"Gain"];
    handle = u"9";
    EXPECT_EQ(Value(saf, u"Gain"), "9");
    EXPECT_EQ(Value(saf, u"Frames"), "42");

    // A refused text leaves the tag alone.
    saf[u"Frames"] = u"4\r\n2";
    EXPECT_EQ(Value(saf, u"Frames"), "42");
}

TEST(SAFTags, NumberTextIgnoresTheProcessLocale) {
    char const *old = std::setlocale(LC_ALL, nullptr);
    std::string saved = old ? old : "C";
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    CSAFFile saf;
    saf.New(false);
    saf[u"Gain"] = 0.25;
    double gain = saf[u"Gain"];
    std::setlocale(LC_ALL, saved.c_str());
    EXPECT_EQ(Value(saf, u"Gain"), "2.500000e-001");
    EXPECT_DOUBLE_EQ(gain, 0.25);
}

} // namespace
