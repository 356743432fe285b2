// CMemFile's own rules: growth, limits, positions past the end, ownership.
#include <cstdlib>
#include <cstring>

#include "FileTestSupport.h"

namespace qv::test {
namespace {

TEST(MemFile, GrowthAndItsRefusal) {
    CMemFile f;
    EXPECT_EQ(f.Write("abc", 3), 3u);
    EXPECT_EQ(f.GetCapacity(), 5u); // the array's rate of 5
    f.SetGrow(false);
    f.SetPosition(2);
    EXPECT_EQ(f.Write("xy", 2), 0u); // passes the end, though capacity would allow
    EXPECT_EQ(f.Write("x", 1), 1u);
    EXPECT_EQ(AllBytes(f), Text("abx"));

    f.SetGrow(true);
    f.SetPosition(6);
    EXPECT_EQ(f.Write("z", 1), 1u); // far past the end: the bytes between are zeros
    EXPECT_EQ(AllBytes(f), (Bytes{'a', 'b', 'x', 0, 0, 0, 'z'}));
}

TEST(MemFile, SizeLimitAndPositionsPastTheEnd) {
    CMemFile f;
    EXPECT_FALSE(f.SetSize(0x40000001));
    EXPECT_FALSE(f.SetSize(0x100000000 + 4)); // bits in the upper half
    EXPECT_FALSE(f.SetSize(-1));
    EXPECT_TRUE(f.SetSize(10));
    EXPECT_EQ(f.GetSize(), 10);
    EXPECT_EQ(f.ConstGetSize(), 10);

    EXPECT_EQ(f.Seek(15, 1), 15);
    char buf[4];
    EXPECT_EQ(f.Read(buf, 4), 0u);
    EXPECT_EQ(f.GetRemaining(), -5);
    EXPECT_EQ(f.Seek(-3, 2), 12);
    EXPECT_EQ(f.Seek(-1, 3), 9);
    EXPECT_EQ(f.Seek(0x100000002, 1), 2); // only the low 32 bits count
    EXPECT_EQ(f.Seek(7, 4), 2);           // an unknown origin changes nothing
    EXPECT_EQ(f.Read(buf, 4), 4u);
    EXPECT_EQ(f.GetPosition(), 6);
    EXPECT_EQ(f.Read(buf, 10), 4u);

    f.Reset();
    EXPECT_EQ(f.GetSize(), 0);
    EXPECT_EQ(f.GetPosition(), 0);
}

TEST(MemFile, AttachAndOwnership) {
    unsigned char foreign[4] = {1, 2, 3, 4};
    {
        CMemFile f;
        f.Write("xyz", 3);
        f.Attach(foreign, 4, false); // frees its own block
        EXPECT_EQ(AllBytes(f), (Bytes{1, 2, 3, 4}));
        f.SetPosition(1);
        f.Write("\x09", 1);
        EXPECT_EQ(foreign[1], 9); // writes go to the owner's bytes
        f.SetPosition(4);
        EXPECT_EQ(f.Write("\x05", 1), 1u); // growing moves to a block of its own
        foreign[0] = 0x77;
        EXPECT_EQ(AllBytes(f), (Bytes{1, 9, 3, 4, 5}));
    } // the foreign block is not freed

    auto *owned = static_cast<unsigned char *>(std::malloc(3));
    std::memcpy(owned, "pqr", 3);
    CMemFile g;
    g.Attach(owned, 3, true); // freed with g
    EXPECT_EQ(AllBytes(g), Text("pqr"));
    g.Close(); // the bytes survive
    EXPECT_EQ(AllBytes(g), Text("pqr"));
}

TEST(MemFile, CopiesOwnTheirBytes) {
    unsigned char foreign[3] = {'a', 'b', 'c'};
    CMemFile f;
    f.Attach(foreign, 3, false);
    f.SetPosition(2);
    f.SetGrow(false);
    f.m_swap = true;
    CMemFile copy(f);
    EXPECT_EQ(copy.GetPosition(), 2);
    EXPECT_TRUE(copy.m_swap);
    EXPECT_EQ(copy.Write("xy", 2), 0u); // grow flag copied
    copy.SetPosition(0);
    copy.Write("Z", 1);
    EXPECT_EQ(foreign[0], 'a');

    CMemFile assigned;
    assigned.Write("123456", 6);
    assigned = copy;
    EXPECT_EQ(AllBytes(assigned), Text("Zbc"));

    char16_t name[4] = {u'x', 0};
    EXPECT_EQ(f.GetFilename(name, 4), name);
    EXPECT_EQ(name[0], 0);
    EXPECT_EQ(&f.GetFileSystem(), &assigned.GetFileSystem());
}

} // namespace
} // namespace qv::test
