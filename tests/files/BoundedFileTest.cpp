#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "FileTestSupport.h"
#include "qv/files/BoundedFile.h"

namespace qv {
namespace {

using test::Bytes;

Bytes Counting(size_t n) {
    Bytes b(n);
    for (size_t i = 0; i < n; ++i)
        b[i] = uint8_t(i);
    return b;
}

TEST(BoundedFileTest, WindowReadsSeeksAndClamps) {
    CMemFile inner;
    test::SetBytes(inner, Counting(300));
    CBoundedFile w;
    w.Create(&inner, 100, 100, false);
    EXPECT_EQ(w.GetStartPos(), 100);
    EXPECT_EQ(w.GetSize(), 100);
    Bytes got(150);
    EXPECT_EQ(w.Read(got.data(), 150), 100u);
    Bytes const all = Counting(300);
    EXPECT_EQ(Bytes(got.begin(), got.begin() + 100), Bytes(all.begin() + 100, all.begin() + 200));
    EXPECT_EQ(w.Read(got.data(), 1), 0u);
    EXPECT_EQ(w.Seek(-5, 1), 0);
    EXPECT_EQ(w.Seek(500, 1), 100);
    EXPECT_EQ(w.Seek(-10, 3), 90);
    EXPECT_EQ(w.Seek(-100, 2), 0);
    EXPECT_EQ(w.Seek(INT64_MIN, 2), 0);
    EXPECT_EQ(w.Seek(INT64_MAX, 3), 100);
    EXPECT_EQ(w.Seek(40, 4), 100); // an unknown origin leaves the position
    EXPECT_EQ(w.Seek(40, 1), 40);
    // The inner position is shared: every call seeks it first.
    inner.Seek(7, 1);
    uint8_t b = 0;
    EXPECT_TRUE(w.GetBYTE(b));
    EXPECT_EQ(b, 140);
    EXPECT_EQ(w.GetPosition(), 41);
    EXPECT_FALSE(w.SetSize(10));
    w.Close(); // does nothing
    EXPECT_EQ(w.Read(&b, 1), 1u);
    char16_t name[4] = {u'x'};
    EXPECT_EQ(std::u16string(w.GetFilename(name, 4)), u"");
}

TEST(BoundedFileTest, WritesStayInsideTheWindow) {
    CMemFile inner;
    test::SetBytes(inner, Bytes(20, 0xEE));
    CBoundedFile w;
    w.Create(&inner, 5, 10, false);
    w.Seek(8, 1);
    EXPECT_EQ(w.Write("ABCD", 4), 2u);
    EXPECT_EQ(w.Write("X", 1), 0u);
    Bytes expected(20, 0xEE);
    expected[13] = 'A';
    expected[14] = 'B';
    EXPECT_EQ(test::AllBytes(inner), expected);
}

TEST(BoundedFileTest, WithoutFileNothingPasses) {
    CBoundedFile w;
    char c;
    EXPECT_EQ(w.Read(&c, 1), 0u);
    EXPECT_EQ(w.Write("a", 1), 0u);
    EXPECT_EQ(w.GetSize(), 0);
    w.Flush();
    CBoundedFile negative;
    CMemFile inner;
    test::SetBytes(inner, Counting(10));
    negative.Create(&inner, -4, -2, false);
    EXPECT_EQ(negative.GetStartPos(), 0);
    EXPECT_EQ(negative.GetSize(), 0);
}

TEST(BoundedFileTest, OwnershipAndCopies) {
    auto *inner = new CMemFile;
    test::SetBytes(*inner, Counting(50));
    {
        CBoundedFile owner;
        owner.Create(inner, 10, 20, true); // deleted with owner (the leak checker would see it)
        owner.Seek(3, 1);
        CBoundedFile copy(owner); // shares the window, never owns
        EXPECT_EQ(copy.GetPosition(), 3);
        EXPECT_EQ(copy.GetBYTE(), 13);
        CBoundedFile assigned;
        assigned = copy;
        EXPECT_EQ(assigned.GetBYTE(), 14);
        owner = copy; // a window of its own file keeps its ownership
        EXPECT_EQ(owner.GetBYTE(), 14);
    }
}

} // namespace
} // namespace qv
