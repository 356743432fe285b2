// The static path algebra: names, directories, joining, relative paths, item
// comparisons and wildcards, the odd required cases, and buffers that hostile
// input must never overrun.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>

#include "qv/core/Array.h"
#include "qv/core/String.h"
#include "qv/filesystems/PathAlgebra.h"

using qv::CPathAlgebra;
using qv::CString;
using qv::TArray;

namespace {

constexpr int kBuffer = CPathAlgebra::PathBufferSize;

// A heap block of exactly size units, so that the address sanitizer sees any
// write past it.
class Buffer {
public:
    explicit Buffer(int size = kBuffer, char16_t fill = u'#') : units(new char16_t[size_t(size)]) {
        std::fill(units.get(), units.get() + size, fill);
    }
    char16_t *get() { return units.get(); }
    operator char16_t *() { return units.get(); }

private:
    std::unique_ptr<char16_t[]> units;
};

std::u16string Dir(char16_t const *path) {
    Buffer b;
    return CPathAlgebra::GetDirectory(b, path);
}

std::u16string Expand(char16_t const *base, char16_t const *relative, char16_t slash = u'/') {
    Buffer b;
    return CPathAlgebra::ExpandRelativePath(b, base, relative, slash);
}

std::u16string Relative(char16_t const *from, char16_t const *to) {
    Buffer b;
    return CPathAlgebra::RelativePath(b, from, to);
}

std::u16string Join(char16_t const *dir, char16_t const *file, char16_t slash = u'/') {
    Buffer b;
    return CPathAlgebra::MakePath(b, dir, file, slash);
}

std::u16string Items(char16_t const *path) {
    TArray<CString> items;
    items.Add(CString(u"stale"));
    int n = CPathAlgebra::SplitPath(items, path);
    EXPECT_EQ(n, int(items.nItems()));
    std::u16string joined;
    for (uint32_t i = 0; i < items.nItems(); ++i)
        joined += (i ? u"|" : u"") + std::u16string(items.GetAt(i).GetUTF16());
    return joined;
}

bool Match(char16_t const *patterns, char16_t const *name) {
    return CPathAlgebra::WildcardMatch(patterns, name);
}

std::u16string Repeat(char16_t c, size_t n) {
    return std::u16string(n, c);
}

} // namespace

TEST(PathAlgebra, SlashesAndFileNames) {
    Buffer b;
    EXPECT_EQ(std::u16string(CPathAlgebra::ConvertSlashes(b, u"a/b\\c//d", kBuffer, u'\\')), u"a\\b\\c\\\\d");
    EXPECT_EQ(std::u16string(CPathAlgebra::ConvertSlashes(b, u"a/b\\c", 4, u'/')), u"a/b");
    char16_t inPlace[] = u"x\\y/z";
    EXPECT_EQ(std::u16string(CPathAlgebra::ConvertSlashes(inPlace, inPlace, 1, u'/')), u"x/y/z"); // size unused
    EXPECT_EQ(std::u16string(CPathAlgebra::ConvertSlashes(inPlace, u'\\')), u"x\\y\\z");

    EXPECT_EQ(std::u16string(CPathAlgebra::GetFilename(u"a/b\\c.txt")), u"c.txt");
    EXPECT_EQ(std::u16string(CPathAlgebra::GetFilename(u"plain")), u"plain");
    EXPECT_EQ(std::u16string(CPathAlgebra::GetFilename(u"dir/")), u"");
    EXPECT_EQ(std::u16string(CPathAlgebra::GetFilename(b, u"/x/name")), u"name");
    char16_t self[] = u"/x/name";
    EXPECT_EQ(std::u16string(CPathAlgebra::GetFilename(self, self)), u"name");

    char16_t const *dotInDir = u"dir.x/file";
    EXPECT_EQ(CPathAlgebra::GetExtension(dotInDir), dotInDir + 10);
    EXPECT_EQ(std::u16string(CPathAlgebra::GetExtension(u"/file.tar.gz")), u".gz");
    EXPECT_EQ(std::u16string(CPathAlgebra::GetExtension(u"noext")), u"");
    EXPECT_EQ(std::u16string(CPathAlgebra::GetExtension(u"a\\.rc")), u".rc");
    EXPECT_EQ(std::u16string(CPathAlgebra::GetExtension(u"a.b\\c")), u"");
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveExtension(b, u"/d.x/f.tar.gz")), u"/d.x/f.tar");
    char16_t name[] = u"dir.x/file";
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveExtension(name)), u"dir.x/file");
    char16_t writable[] = u"d/f.txt";
    *CPathAlgebra::GetFilename(writable) = u'F';
    *CPathAlgebra::GetExtension(writable) = 0;
    EXPECT_EQ(std::u16string(writable), u"d/F");

    EXPECT_EQ(std::u16string(CPathAlgebra::MakeFilename(b, u"name", u".txt")), u"name.txt");
    EXPECT_EQ(std::u16string(CPathAlgebra::MakeFilename(b, u"name", u"")), u"name");
    // The dot goes too, so that no extension survives.
    EXPECT_EQ(CPathAlgebra::MakeSafeFilename(u"a:b/c\\d*e?f\"g<h>i|j.k").GetUTF16(),
              std::u16string(u"a_b_c_d_e_f_g_h_i_j_k"));
    EXPECT_EQ(CPathAlgebra::MakeSafeFilename(CString()).GetUTF16(), std::u16string());
}

TEST(PathAlgebra, GetDirectoryWalk) {
    EXPECT_EQ(Dir(u"/file"), u"/");
    EXPECT_EQ(Dir(u"file"), u"");
    EXPECT_EQ(Dir(u""), u"");
    EXPECT_EQ(Dir(u"a//b"), u"a");
    EXPECT_EQ(Dir(u"a/b/"), u"a/b");
    EXPECT_EQ(Dir(u"a\\b/c"), u"a\\b");
    EXPECT_EQ(Dir(u"/"), u"/");
    // A leading pair survives; later doubles collapse.
    EXPECT_EQ(Dir(u"//srv/x"), u"//srv");
    EXPECT_EQ(Dir(u"\\\\srv\\share\\\\f"), u"\\\\srv\\share");
    EXPECT_EQ(Dir(u"//srv"), u"/");
    EXPECT_EQ(Dir(u"///a"), u"/");
    EXPECT_EQ(Dir(u"a///b//c"), u"a/b");

    char16_t inPlace[] = u"x//y//z";
    EXPECT_EQ(std::u16string(CPathAlgebra::GetDirectory(inPlace)), u"x/y");
    Buffer small(5);
    EXPECT_EQ(std::u16string(CPathAlgebra::GetDirectory(small, u"ab/cd/ef", 5)), u"ab"); // "ab/c" first
}

TEST(PathAlgebra, MakePathAndSlashesAtTheEnds) {
    EXPECT_EQ(Join(u"a", u"b"), u"a/b");
    EXPECT_EQ(Join(u"a/", u"b"), u"a/b");
    EXPECT_EQ(Join(u"a\\", u"b"), u"a\\b");
    EXPECT_EQ(Join(u"a", u"b", u'\\'), u"a\\b");
    EXPECT_EQ(Join(u"", u"b"), u"/b");
    EXPECT_EQ(Join(u"", u""), u"/");
    EXPECT_EQ(Join(u"a", u""), u"a/");
    EXPECT_EQ(CPathAlgebra::MakePath(CString(u"dir"), CString(u"f"), u'\\').GetUTF16(), std::u16string(u"dir\\f"));

    Buffer b;
    std::u16string seed = u"abc";
    std::copy(seed.begin(), seed.end() + 1, b.get());
    EXPECT_EQ(std::u16string(CPathAlgebra::MakePath(b, b, u"x", u'/')), u"abc/x");
    EXPECT_EQ(std::u16string(CPathAlgebra::MakePath(b, u"pre", b.get() + 4, u'/')), u"pre/x");
    EXPECT_EQ(std::u16string(CPathAlgebra::MakePath(b, b, b, u'/')), u"pre/x/pre/x");

    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveTrailingSlash(b, u"a/b/")), u"a/b");
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveTrailingSlash(b, u"a/b//")), u"a/b/");
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveTrailingSlash(b, u"")), u"");
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendTrailingSlash(b, u"a", u'\\')), u"a\\");
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendTrailingSlash(b, u"a/", u'\\')), u"a/");
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendTrailingSlash(b, u"", u'/')), u"");
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveLeadingSlash(b, u"\\\\a")), u"\\a");
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveLeadingSlash(b, u"a")), u"a");
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendLeadingSlash(b, u"a", u'/')), u"/a");
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendLeadingSlash(b, u"\\a", u'/')), u"\\a");
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendLeadingSlash(b, u"", u'/')), u"/");

    char16_t text[8] = u"ab";
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendLeadingSlash(text, u'/', 8)), u"/ab");
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendTrailingSlash(text, u'/', 8)), u"/ab/");
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveLeadingSlash(text)), u"ab/");
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveTrailingSlash(text)), u"ab");
}

TEST(PathAlgebra, ExpandRelativePath) {
    // "." goes back to the base, not to what was built so far.
    EXPECT_EQ(Expand(u"a/b", u"c/./d"), u"a/b/d");
    EXPECT_EQ(Expand(u"a/b", u"c/d/."), u"a/b/");
    EXPECT_EQ(Expand(u"a/b", u"x/./"), u"a/b/");
    // Nothing left is no error, and climbing further stays empty.
    EXPECT_EQ(Expand(u"a/b/", u"../.."), u"");
    EXPECT_EQ(Expand(u"a/b/", u"../../.."), u"");
    EXPECT_EQ(Expand(u"a/b/", u"../../x/y"), u"x/y");
    EXPECT_EQ(Expand(u"a/b", u".."), u"a/");
    // From a text without a trailing separator ".." climbs two levels.
    EXPECT_EQ(Expand(u"a/b", u"c/../d"), u"a/d");
    EXPECT_EQ(Expand(u"a/b", u""), u"a/b/");
    EXPECT_EQ(Expand(u"a/b", u"."), u"a/b/");
    EXPECT_EQ(Expand(u"a/b", u"c"), u"a/b/c");
    EXPECT_EQ(Expand(u"a/b", u"c/"), u"a/b/c");
    EXPECT_EQ(Expand(u"a/b", u"c//d"), u"a/b/c/d");
    EXPECT_EQ(Expand(u"a/b", u"c//"), u"a/b/c/");
    EXPECT_EQ(Expand(u"a\\b", u"c/d", u'\\'), u"a\\b\\c\\d");
    // No test for an absolute relative, and an empty base anchors at the slash.
    EXPECT_EQ(Expand(u"a", u"/x"), u"a/x");
    EXPECT_EQ(Expand(u"", u"x"), u"/x");
    EXPECT_EQ(Expand(u"/", u"..\\..\\x"), u"x");

    Buffer b;
    std::u16string base = u"root/dir";
    std::copy(base.begin(), base.end() + 1, b.get());
    EXPECT_EQ(std::u16string(CPathAlgebra::ExpandRelativePath(b, b, u"sub/f", u'/')), u"root/dir/sub/f");
    EXPECT_EQ(std::u16string(CPathAlgebra::ExpandRelativePath(b, u"x", b.get() + 5, u'/')), u"x/dir/sub/f");
}

TEST(PathAlgebra, PathKinds) {
    EXPECT_TRUE(CPathAlgebra::IsWindowsPath(u"c:"));
    EXPECT_TRUE(CPathAlgebra::IsWindowsPath(u"Z:/x"));
    EXPECT_FALSE(CPathAlgebra::IsWindowsPath(u"1:"));
    EXPECT_FALSE(CPathAlgebra::IsWindowsPath(u"/:"));
    EXPECT_FALSE(CPathAlgebra::IsWindowsPath(u"\u00e9:"));
    EXPECT_FALSE(CPathAlgebra::IsWindowsPath(u""));
    EXPECT_TRUE(CPathAlgebra::IsUNCPath(u"\\/srv"));
    EXPECT_FALSE(CPathAlgebra::IsUNCPath(u"/srv"));
    EXPECT_FALSE(CPathAlgebra::IsUNCPath(u""));
    EXPECT_TRUE(CPathAlgebra::IsUnixPath(u"/x"));
    EXPECT_TRUE(CPathAlgebra::IsUnixPath(u"\\"));
    EXPECT_FALSE(CPathAlgebra::IsUnixPath(u"//x"));
    EXPECT_FALSE(CPathAlgebra::IsUnixPath(u"x/"));
    EXPECT_TRUE(CPathAlgebra::IsURL(u"http://host"));
    EXPECT_TRUE(CPathAlgebra::IsURL(u"c:\\x"));
    EXPECT_FALSE(CPathAlgebra::IsURL(u"c:x"));
    EXPECT_FALSE(CPathAlgebra::IsURL(u":/x"));
    EXPECT_FALSE(CPathAlgebra::IsURL(u"h2p://x"));
}

TEST(PathAlgebra, ItemsAndComparisons) {
    EXPECT_EQ(Items(u"//a//b/"), u"a|b");
    EXPECT_EQ(Items(u"///"), u"");
    EXPECT_EQ(Items(u""), u"");
    EXPECT_EQ(Items(u"./..\\x"), u".|..|x");

    Buffer b;
    EXPECT_EQ(std::u16string(CPathAlgebra::GetFirstPathItem(b, u"\\/first/second")), u"first");
    EXPECT_EQ(std::u16string(CPathAlgebra::GetFirstPathItem(b, u"//")), u"");

    EXPECT_TRUE(CPathAlgebra::InDirectory(u"/a", u"/A/b"));
    EXPECT_FALSE(CPathAlgebra::InDirectory(u"/a", u"/a/b/c"));
    EXPECT_FALSE(CPathAlgebra::InDirectory(u"/a", u"/a"));
    EXPECT_FALSE(CPathAlgebra::InDirectory(u"/a", u"/ab/c"));
    EXPECT_TRUE(CPathAlgebra::InDirectory(u"", u"x"));
    EXPECT_FALSE(CPathAlgebra::IsChildOfDirectory(u"/a", u"/a"));
    EXPECT_TRUE(CPathAlgebra::IsChildOfDirectory(u"/a", u"\\A\\b\\c"));
    EXPECT_FALSE(CPathAlgebra::IsChildOfDirectory(u"/a/b", u"/a/c/d"));
    EXPECT_TRUE(CPathAlgebra::IsSamePath(u"/A//b/", u"a\\B"));
    EXPECT_FALSE(CPathAlgebra::IsSamePath(u"/a/./b", u"/a/b")); // nothing resolves "."
    EXPECT_FALSE(CPathAlgebra::IsSamePath(u"/a/b", u"/a/b/c"));
    EXPECT_TRUE(CPathAlgebra::IsSamePath(u"\u00c4/x", u"\u00e4/X"));
}

TEST(PathAlgebra, RelativePath) {
    EXPECT_EQ(Relative(u"c:/x/y", u"d:/z"), u"d:/z");
    EXPECT_EQ(Relative(u"/x/y", u"/x/z/w"), u"../z/w");
    EXPECT_EQ(Relative(u"\\x\\y", u"\\X\\z"), u"../z");
    EXPECT_EQ(Relative(u"/a/b", u"/c"), u"../../c");
    EXPECT_EQ(Relative(u"a/b", u"c/d"), u"../../c/d"); // no root of its own: a way exists
    EXPECT_EQ(Relative(u"http://a/b", u"ftp://c"), u"ftp://c");
    EXPECT_EQ(Relative(u"//srv/a", u"/b"), u"/b");
    EXPECT_EQ(Relative(u"/x/y", u"/X/Y"), u"");
    EXPECT_EQ(Relative(u"/x", u"/x/y\\z"), u"y/z");
    EXPECT_EQ(Relative(u"", u"\\a\\b"), u"\\a\\b");
    EXPECT_EQ(Relative(u"/a", u"//"), u"//");

    Buffer b;
    std::u16string to = u"/x/z/w";
    std::copy(to.begin(), to.end() + 1, b.get());
    EXPECT_EQ(std::u16string(CPathAlgebra::RelativePath(b, u"/x/y", b)), u"../z/w");
}

TEST(PathAlgebra, WildcardMatch) {
    EXPECT_TRUE(Match(u"*.txt|*.TIF", u"A.tif"));
    EXPECT_TRUE(Match(u"*.txt|*.TIF", u"b.TXT"));
    EXPECT_FALSE(Match(u"*.txt|*.TIF", u"a.tiff"));
    EXPECT_TRUE(Match(u"a?c", u"abc"));
    EXPECT_FALSE(Match(u"a?c", u"ac"));
    EXPECT_FALSE(Match(u"a?c", u"abbc"));
    EXPECT_TRUE(Match(u"?", u"?"));
    EXPECT_TRUE(Match(u"*a*b", u"xaxab"));
    EXPECT_FALSE(Match(u"*a*b", u"xaxa"));
    EXPECT_TRUE(Match(u"a**b", u"ab"));
    EXPECT_FALSE(Match(u"*.*", u"noext"));
    EXPECT_FALSE(Match(u"abc", u"abcd"));
    EXPECT_TRUE(Match(u"\u00c4*", u"\u00e4x"));
    // Stars alone match everything, the empty name too; nothing else matches it.
    EXPECT_TRUE(Match(u"*", u"anything at all"));
    EXPECT_TRUE(Match(u"*", u""));
    EXPECT_TRUE(Match(u"**", u""));
    EXPECT_FALSE(Match(u"a*", u""));
    EXPECT_FALSE(Match(u"?", u""));
    // Empty lists and empty pieces.
    EXPECT_FALSE(Match(u"", u""));
    EXPECT_FALSE(Match(u"", u"a"));
    EXPECT_FALSE(Match(u"|", u""));
    EXPECT_TRUE(Match(u"||x||*", u""));
    EXPECT_TRUE(Match(u"|b|", u"B"));

    // A list of 512 units or more matches nothing, even a star-only one.
    std::u16string fits = Repeat(u'*', 510) + u"a";
    EXPECT_TRUE(Match(fits.c_str(), u"xxa"));
    std::u16string tooLong = Repeat(u'*', 511) + u"a";
    EXPECT_FALSE(Match(tooLong.c_str(), u"xxa"));
    EXPECT_FALSE(Match(Repeat(u'*', 4000).c_str(), u"x"));
    std::u16string longName = Repeat(u'q', 511);
    EXPECT_TRUE(Match(longName.c_str(), Repeat(u'Q', 511).c_str()));
    EXPECT_TRUE(Match(Repeat(u'?', 511).c_str(), longName.c_str()));
    EXPECT_FALSE(Match(Repeat(u'?', 511).c_str(), (longName + u"q").c_str()));
    EXPECT_TRUE(Match(u"*q", Repeat(u'q', 100000).c_str()));
}

// Every form that writes gets hostile lengths into a buffer of exactly its
// size: the result is cut at size - 1 units and nothing is written past it.
TEST(PathAlgebra, HostileLengthsStayInTheBuffer) {
    std::u16string huge = Repeat(u'n', 3000), items;
    for (int i = 0; i < 600; ++i)
        items += u"ab/";
    char16_t const *h = huge.c_str();
    std::u16string cut = Repeat(u'n', kBuffer - 1);

    Buffer b;
    EXPECT_EQ(std::u16string(CPathAlgebra::ConvertSlashes(b, h, kBuffer, u'/')), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::GetFilename(b, h)), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveExtension(b, h)), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::GetDirectory(b, items.c_str())).size(), size_t(kBuffer - 3));
    EXPECT_EQ(std::u16string(CPathAlgebra::MakePath(b, h, h, u'/')), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::MakePath(b, u"d", h, u'/')), u"d/" + Repeat(u'n', kBuffer - 3));
    EXPECT_EQ(std::u16string(CPathAlgebra::MakeFilename(b, h, u".x")), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::ExpandRelativePath(b, h, items.c_str(), u'/')), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::ExpandRelativePath(b, u"b", items.c_str(), u'/')).size(),
              size_t(kBuffer - 1));
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveTrailingSlash(b, h)), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendTrailingSlash(b, h, u'/')), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::RemoveLeadingSlash(b, h)), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendLeadingSlash(b, h, u'/')), u"/" + Repeat(u'n', kBuffer - 2));
    EXPECT_EQ(std::u16string(CPathAlgebra::GetFirstPathItem(b, h)), cut);
    EXPECT_EQ(std::u16string(CPathAlgebra::RelativePath(b, items.c_str(), u"/z")).size(), size_t(kBuffer - 1));
    EXPECT_EQ(std::u16string(CPathAlgebra::RelativePath(b, u"", h)), cut);

    // A full buffer takes no trailing slash; a leading one pushes the last unit out.
    std::u16string full = Repeat(u'f', kBuffer - 1);
    std::copy(full.begin(), full.end() + 1, b.get());
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendTrailingSlash(b, u'/')), full);
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendLeadingSlash(b, u'/')), u"/" + Repeat(u'f', kBuffer - 2));

    // A caller's smaller buffer, and sizes that leave no room.
    Buffer small(260);
    EXPECT_EQ(std::u16string(CPathAlgebra::MakePath(small, h, u"x", u'/', 260)), Repeat(u'n', 259));
    Buffer one(1);
    EXPECT_EQ(std::u16string(CPathAlgebra::ExpandRelativePath(one, u"a", u"b", u'/', 1)), u"");
    EXPECT_EQ(std::u16string(CPathAlgebra::AppendLeadingSlash(one, u"a", u'/', 1)), u"");
    EXPECT_EQ(std::u16string(CPathAlgebra::RelativePath(one, u"/a", u"/b", 1)), u"");
    char16_t untouched[2] = {u'#', u'#'};
    CPathAlgebra::MakePath(untouched, u"a", u"b", u'/', 0);
    CPathAlgebra::ConvertSlashes(untouched, u"a", 0, u'/');
    CPathAlgebra::GetFirstPathItem(untouched, u"a", -5);
    EXPECT_EQ(untouched[0], u'#');
}
