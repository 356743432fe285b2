#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "qv/images/RowOps.h"

namespace qv {
namespace {

std::vector<int> Rows(int height) {
    std::vector<int> v(static_cast<size_t>(height));
    std::iota(v.begin(), v.end(), 0);
    return v;
}

TEST(RowOps, FlipTurnsByHalfATurn) {
    std::vector<int> column{1, 2, 3}; // 1 wide, 3 high
    flip(column.data(), 1, 3, sizeof(int), -1);
    EXPECT_EQ(column, (std::vector<int>{3, 2, 1}));
    std::vector<int> grid{1, 2, 3, 4, 5, 6}; // 3 wide, 2 high
    flip(grid.data(), 3, 2, sizeof(int), -1);
    EXPECT_EQ(grid, (std::vector<int>{6, 5, 4, 3, 2, 1}));
    std::vector<int> odd{1, 2, 3, 4, 5, 6}; // 2 wide, 3 high: the middle row reversed in itself
    flip(odd.data(), 2, 3, sizeof(int), -1);
    EXPECT_EQ(odd, (std::vector<int>{6, 5, 4, 3, 2, 1}));
}

TEST(RowOps, VflipAndHflip) {
    std::vector<int> one{1, 2, 3};
    vflip(one.data(), 3, 1, sizeof(int), -1);
    EXPECT_EQ(one, (std::vector<int>{1, 2, 3}));
    std::vector<int> grid{1, 2, 3, 4, 5, 6};
    vflip(grid.data(), 3, 2, sizeof(int), -1);
    EXPECT_EQ(grid, (std::vector<int>{4, 5, 6, 1, 2, 3}));
    hflip(grid.data(), 3, 2, sizeof(int), -1);
    EXPECT_EQ(grid, (std::vector<int>{6, 5, 4, 3, 2, 1}));
}

TEST(RowOps, StridesAndOutOfPlaceForms) {
    // 2 x 2 pixels of 2 bytes, rows padded to 6 bytes; the padding stays.
    std::vector<uint8_t> src{1, 2, 3, 4, 0xEE, 0xEE, 5, 6, 7, 8, 0xEE, 0xEE};
    std::vector<uint8_t> dst(8, 0);
    flip(dst.data(), src.data(), 2, 2, 2, 6, 4);
    EXPECT_EQ(dst, (std::vector<uint8_t>{7, 8, 5, 6, 3, 4, 1, 2}));
    vflip(dst.data(), src.data(), 2, 2, 2, 6, -1);
    EXPECT_EQ(dst, (std::vector<uint8_t>{5, 6, 7, 8, 1, 2, 3, 4}));
    hflip(dst.data(), src.data(), 2, 2, 2, 6, -1);
    EXPECT_EQ(dst, (std::vector<uint8_t>{3, 4, 1, 2, 7, 8, 5, 6}));
    hflip(src.data(), 2, 2, 2, 6);
    EXPECT_EQ(src, (std::vector<uint8_t>{3, 4, 1, 2, 0xEE, 0xEE, 7, 8, 5, 6, 0xEE, 0xEE}));
}

TEST(RowOps, InterlaceSplitsEvenAndOddRows) {
    std::vector<int> src = Rows(4), dst(4, -1);
    interlace(dst.data(), src.data(), 1, 4, sizeof(int), -1, -1);
    EXPECT_EQ(dst, (std::vector<int>{0, 2, 1, 3})); // rows 0,1,2,3 went to 0,2,1,3
    std::vector<int> back(4, -1);
    deinterlace(back.data(), dst.data(), 1, 4, sizeof(int), -1, -1);
    EXPECT_EQ(back, src);
    std::vector<int> six = Rows(6), out(6, -1);
    interlace(out.data(), six.data(), 1, 6, sizeof(int), -1, -1);
    EXPECT_EQ(out, (std::vector<int>{0, 2, 4, 1, 3, 5}));
    std::vector<int> odd = Rows(3), untouched(3, -1);
    interlace(untouched.data(), odd.data(), 1, 3, sizeof(int), -1, -1);
    EXPECT_EQ(untouched, (std::vector<int>(3, -1)));
}

TEST(RowOps, InPlaceInterlaceIsOnePassOfSwaps) {
    // Not the out-of-place permutation, and callers depend on that: with
    // height 4, i=1 swaps rows 1 and 2 and i=2 swaps them back.
    std::vector<int> four = Rows(4);
    interlace(four.data(), 1, 4, sizeof(int), -1);
    EXPECT_EQ(four, Rows(4));
    std::vector<int> six = Rows(6);
    interlace(six.data(), 1, 6, sizeof(int), -1);
    // i=1 swaps rows 1,3; i=2 rows 2,1; i=3 rows 3,4; i=4 rows 4,2.
    EXPECT_EQ(six, (std::vector<int>{0, 2, 1, 4, 3, 5}));
    std::vector<int> again = Rows(6);
    deinterlace(again.data(), 1, 6, sizeof(int), -1);
    EXPECT_EQ(again, six);
}

TEST(RowOps, EmptySizesDoNothing) {
    std::vector<int> v{1, 2};
    flip(v.data(), 0, 2, sizeof(int), -1);
    vflip(v.data(), 2, 0, sizeof(int), -1);
    hflip(v.data(), 2, 1, 0, -1);
    EXPECT_EQ(v, (std::vector<int>{1, 2}));
}

} // namespace
} // namespace qv
