// Insert and Remove stream a file's tail in place; checked byte for byte
// against a model, for small files and for files of the largest block class.
#include "FileTestSupport.h"

namespace qv::test {
namespace {

template <class F> class IFileEdit : public testing::Test {
protected:
    std::unique_ptr<F> file = MakeEmptyFile<F>();
};
using FileKinds = testing::Types<CMemFile, CFile>;
TYPED_TEST_SUITE(IFileEdit, FileKinds);

// Bytes that differ from their neighbours and from a shifted copy.
Bytes Pattern(size_t n) {
    Bytes out(n);
    uint32_t x = 12345;
    for (auto &b : out)
        b = uint8_t((x = x * 1103515245 + 12345) >> 16);
    return out;
}

// Insert leaves the gap's old bytes, which are the tail's first bytes where
// the gap is inside the old file, and nothing defined beyond it.
Bytes ModelInsert(Bytes const &in, size_t pos, size_t n) {
    Bytes out(in.size() + n);
    std::copy(in.begin(), in.end(), out.begin());
    std::copy(in.begin() + std::ptrdiff_t(pos), in.end(), out.begin() + std::ptrdiff_t(pos + n));
    return out;
}

Bytes ModelRemove(Bytes const &in, size_t pos, size_t n) {
    Bytes out(in.begin(), in.begin() + std::ptrdiff_t(pos));
    if (pos + n < in.size()) out.insert(out.end(), in.begin() + std::ptrdiff_t(pos + n), in.end());
    return out;
}

void CheckEdits(IFile &f, size_t size, size_t at, uint32_t n) {
    Bytes model = Pattern(size);
    SetBytes(f, model);
    ASSERT_TRUE(f.Insert(int64_t(at), n));
    model = ModelInsert(model, at, n);
    ASSERT_EQ(f.GetSize(), int64_t(model.size()));
    ASSERT_TRUE(AllBytes(f) == model);

    ASSERT_TRUE(f.Remove(int64_t(at), n + 3));
    model = ModelRemove(model, at, n + 3);
    ASSERT_EQ(f.GetSize(), int64_t(model.size()));
    ASSERT_TRUE(AllBytes(f) == model);
}

TYPED_TEST(IFileEdit, SmallFiles) {
    IFile &f = *this->file;
    CheckEdits(f, 1000, 100, 7);
    CheckEdits(f, 1000, 0, 2048);
    CheckEdits(f, 1000, 999, 1);
    // Several blocks of the smallest class (0x80000).
    CheckEdits(f, 0x80000 * 2 + 123, 5000, 3);
    CheckEdits(f, 0x80000 * 2 + 123, 0, 0x80000 + 1);
}

TYPED_TEST(IFileEdit, LargestBlockClass) {
    IFile &f = *this->file;
    CheckEdits(f, 52428800 + 0x500000 * 2 + 12345, 777, 0x500000 + 9);
}

TYPED_TEST(IFileEdit, EmptyTailsChangeNothing) {
    IFile &f = *this->file;
    Bytes model = Pattern(100);
    SetBytes(f, model);
    EXPECT_TRUE(f.Insert(100, 10)); // Insert(size, 10)
    EXPECT_TRUE(f.Insert(200, 10));
    EXPECT_TRUE(f.Remove(100, 10));
    EXPECT_TRUE(f.Remove(150, 10));
    EXPECT_EQ(AllBytes(f), model);
    EXPECT_FALSE(f.Insert(-1, 10));
    EXPECT_FALSE(f.Remove(-1, 10));

    // Removing past the end cuts the file at pos.
    EXPECT_TRUE(f.Remove(40, 1000));
    EXPECT_EQ(AllBytes(f), Bytes(model.begin(), model.begin() + 40));
}

TEST(IFileEditLimits, NoRoomLeavesTheFileAsItWas) {
    CMemFile f;
    Bytes model = Pattern(100);
    SetBytes(f, model);
    IFile::EditOutcome outcome = IFile::EditOutcome::Done;
    EXPECT_FALSE(f.Insert(10, 0x40000000, outcome)); // beyond what a memory file may hold
    EXPECT_EQ(outcome, IFile::EditOutcome::Unchanged);
    EXPECT_EQ(AllBytes(f), model);
}

} // namespace
} // namespace qv::test
