// Full paths are resolved by text: separators, "." and "..".
#include "qv/platform/FullPath.h"
#include "FileTestSupport.h"

namespace qv::test {
namespace {

TEST(FullPath, ResolvesLexically) {
    struct Case {
        char16_t const *base, *path, *full;
    };
    Case const cases[] = {
        {u"/home/u", u"a.txt", u"/home/u/a.txt"},
        {u"/home/u", u"/abs/b", u"/abs/b"},
        {u"/home/u", u"\\abs\\b", u"/abs/b"},
        {u"/home/u", u"sub\\x/y", u"/home/u/sub/x/y"},
        {u"/home/u", u"./a//b/./c", u"/home/u/a/b/c"},
        {u"/home/u", u"../v", u"/home/v"},
        {u"/home/u", u"../../../../x", u"/x"},
        {u"/home/u", u"missing/../f", u"/home/u/f"},
        {u"/home/u", u"..", u"/home"},
        {u"/home/u", u"dir/", u"/home/u/dir/"},
        {u"/home/u", u"dir\\..\\", u"/home/u/"},
        {u"/", u"", u"/"},
        {u"/", u"/..", u"/"},
        {u"/", u"\\\\", u"/"},
        {u"/a", u"\u00e9\u20ac", u"/a/\u00e9\u20ac"},
        {u"/a/b/", u"..", u"/a"},
    };
    for (Case const &c : cases)
        EXPECT_EQ(Str(CompletePath(c.base, c.path)), std::u16string(c.full)) << Str(CString(c.path)).size();
}

} // namespace
} // namespace qv::test
