// namespace path: the CString forms size their own buffers, so long paths come
// through whole, and a null CString counts as the empty text.
#include <gtest/gtest.h>

#include <string>

#include "qv/core/Array.h"
#include "qv/core/String.h"
#include "qv/filesystems/Path.h"

using qv::CString;
using qv::TArray;

namespace {

std::u16string Text(CString const &s) {
    return s.GetUTF16();
}

CString Null() {
    CString s;
    s.Destroy();
    return s;
}

} // namespace

TEST(PathNamespace, NamesAndJoins) {
    EXPECT_EQ(Text(qv::path::ConvertSlashes(u"a\\b/c", u'/')), u"a/b/c");
    EXPECT_EQ(Text(qv::path::GetFilename(u"a/b\\c.txt")), u"c.txt");
    EXPECT_EQ(Text(qv::path::GetExtension(u"/file.tar.gz")), u".gz");
    EXPECT_EQ(Text(qv::path::GetExtension(u"dir.x/file")), u"");
    EXPECT_EQ(Text(qv::path::GetDirectory(u"//srv/x")), u"//srv");
    EXPECT_EQ(Text(qv::path::GetDirectory(u"file")), u"");
    EXPECT_EQ(Text(qv::path::MakePath(u"", u"f", u'\\')), u"\\f");
    EXPECT_EQ(Text(qv::path::MakePath(u"d/", u"f", u'\\')), u"d/f");
    EXPECT_EQ(Text(qv::path::RemoveExtension(u"a.b/c.d")), u"a.b/c");
    EXPECT_EQ(Text(qv::path::MakeFilename(u"a", u".b")), u"a.b");
    EXPECT_EQ(Text(qv::path::ExpandRelativePath(u"a/b", u"c/./d", u'/')), u"a/b/d");
    EXPECT_EQ(Text(qv::path::ExpandRelativePath(u"a/b/", u"../..", u'/')), u"");
    EXPECT_EQ(Text(qv::path::RemoveTrailingSlash(u"a/")), u"a");
    EXPECT_EQ(Text(qv::path::AppendTrailingSlash(u"a", u'/')), u"a/");
    EXPECT_EQ(Text(qv::path::AppendTrailingSlash(u"", u'/')), u"");
    EXPECT_EQ(Text(qv::path::RemoveLeadingSlash(u"/a")), u"a");
    EXPECT_EQ(Text(qv::path::AppendLeadingSlash(u"", u'/')), u"/");
    EXPECT_EQ(Text(qv::path::RelativePath(u"/x/y", u"/x/z/w")), u"../z/w");
    EXPECT_EQ(Text(qv::path::RelativePath(u"c:/x/y", u"d:/z")), u"d:/z");
    EXPECT_EQ(Text(qv::path::GetFirstPathItem(u"//a/b")), u"a");
    EXPECT_EQ(Text(qv::path::MakeSafeFilename(u"x.y:z")), u"x_y_z");

    EXPECT_EQ(Text(qv::path::ChangeExtension(u"a.txt", u".tif")), u"a.tif");
    EXPECT_EQ(Text(qv::path::ChangeExtension(u"dir.x/a", u".tif")), u"dir.x/a.tif");
    EXPECT_EQ(Text(qv::path::ChangeExtension(u"a.tar.gz", u"")), u"a.tar");
}

TEST(PathNamespace, ItemsKindsAndWildcards) {
    TArray<CString> items;
    EXPECT_EQ(qv::path::SplitPath(items, u"//a//b/"), 2);
    EXPECT_EQ(Text(items.GetAt(1)), u"b");
    EXPECT_TRUE(qv::path::InDirectory(u"/a", u"/A/b"));
    EXPECT_FALSE(qv::path::InDirectory(u"/a", u"/a/b/c"));
    EXPECT_FALSE(qv::path::IsChildOfDirectory(u"/a", u"/a"));
    EXPECT_TRUE(qv::path::IsSamePath(u"a/b", u"\\A\\B\\"));
    EXPECT_TRUE(qv::path::IsWindowsPath(u"c:\\"));
    EXPECT_TRUE(qv::path::IsUNCPath(u"\\\\srv"));
    EXPECT_TRUE(qv::path::IsUnixPath(u"/usr"));
    EXPECT_TRUE(qv::path::WildcardMatch(u"*.txt|*.TIF", u"A.tif"));
    EXPECT_FALSE(qv::path::WildcardMatch(u"", u"A.tif"));
}

TEST(PathNamespace, LongPathsComeThroughWhole) {
    std::u16string dir(1500, u'd'), file(1500, u'f'), steps;
    for (int i = 0; i < 400; ++i)
        steps += u"s/";
    CString d(dir.c_str()), f(file.c_str()), s(steps.c_str());

    EXPECT_EQ(Text(qv::path::MakePath(d, f, u'/')), dir + u"/" + file);
    EXPECT_EQ(Text(qv::path::ConvertSlashes(s, u'\\')).size(), steps.size());
    EXPECT_EQ(Text(qv::path::AppendLeadingSlash(d, u'/')), u"/" + dir);
    EXPECT_EQ(Text(qv::path::AppendTrailingSlash(d, u'/')), dir + u"/");
    EXPECT_EQ(Text(qv::path::MakeFilename(d, f)), dir + file);
    EXPECT_EQ(Text(qv::path::ChangeExtension(d, u".ext")), dir + u".ext");
    EXPECT_EQ(Text(qv::path::GetFirstPathItem(d)), dir);
    // Every step adds an item behind a separator.
    EXPECT_EQ(Text(qv::path::ExpandRelativePath(d, s, u'/')), dir + u"/" + steps.substr(0, steps.size() - 1));
    CString ups = CString(u"a/b/") + s;
    EXPECT_EQ(Text(qv::path::ExpandRelativePath(u"", ups, u'/')), u"/a/b/" + steps.substr(0, steps.size() - 1));
    // Each "s" of from becomes ".." on the way up.
    std::u16string way;
    for (int i = 0; i < 400; ++i)
        way += u"../";
    EXPECT_EQ(Text(qv::path::RelativePath(s, u"x/y")), way + u"x/y");
    EXPECT_EQ(Text(qv::path::RelativePath(u"a/b/c/d/e/f", u"z")), u"../../../../../../z");
}

TEST(PathNamespace, NullStringsCountAsEmpty) {
    CString null = Null();
    EXPECT_EQ(Text(qv::path::MakePath(null, null, u'/')), u"/");
    EXPECT_EQ(Text(qv::path::GetDirectory(null)), u"");
    EXPECT_EQ(Text(qv::path::GetFilename(null)), u"");
    EXPECT_EQ(Text(qv::path::AppendLeadingSlash(null, u'/')), u"/");
    EXPECT_EQ(Text(qv::path::ExpandRelativePath(null, null, u'/')), u"/");
    EXPECT_EQ(Text(qv::path::RelativePath(null, u"a")), u"a");
    EXPECT_EQ(Text(qv::path::ChangeExtension(null, u".x")), u".x");
    EXPECT_TRUE(qv::path::IsSamePath(null, u"/"));
    EXPECT_FALSE(qv::path::WildcardMatch(null, null));
    TArray<CString> items;
    EXPECT_EQ(qv::path::SplitPath(items, null), 0);
}
