#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "qv/core/PersistedArray.h"
#include "qv/files/MemFile.h"
#include "support/FaultInjection.h"

namespace {

using qv::CPersistedArray;

struct SItem {
    uint32_t value;
    uint32_t check;
};

SItem Make(uint32_t v) { return SItem{v, v ^ 0xA5A5A5A5u}; }

uint32_t ValueAt(qv::TPersistedArray<SItem> &a, uint32_t i) {
    SItem item{};
    EXPECT_TRUE(a.Get(i, item)) << i;
    EXPECT_EQ(item.check, item.value ^ 0xA5A5A5A5u) << i;
    return item.value;
}

TEST(PersistedArray, StartsEmptyWithTheWindowOfTheBudget) {
    qv::TPersistedArray<SItem> a;
    ASSERT_TRUE(a.IsReady());
    EXPECT_EQ(a.GetCount(), 0u);
    EXPECT_EQ(a.GetCapacity(), CPersistedArray::kWindowBudget / sizeof(SItem));
}

TEST(PersistedArray, ReachingPastTheEndCreatesZeroItems) {
    qv::TPersistedArray<SItem> a;
    SItem item{1, 1};
    ASSERT_TRUE(a.Get(9, item));
    EXPECT_EQ(a.GetCount(), 10u);
    EXPECT_EQ(item.value, 0u);
    EXPECT_EQ(item.check, 0u);
}

TEST(PersistedArray, ItemsSurviveWindowMovesBothWays) {
    qv::TPersistedArray<SItem> a;
    uint32_t const n = a.GetCapacity() * 3 + 17;
    for (uint32_t i = 0; i < n; ++i) ASSERT_TRUE(a.Set(i, Make(i)));
    for (uint32_t i = n; i-- > 0;) ASSERT_EQ(ValueAt(a, i), i);
    for (uint32_t i = 0; i < n; i += 4099) ASSERT_EQ(ValueAt(a, i), i);
    EXPECT_EQ(a.GetCount(), n);
}

TEST(PersistedArray, FarReachThenRemoveShiftsTheRightItems) {
    qv::TPersistedArray<SItem> a;
    uint32_t const far = a.GetCapacity() * 2;
    ASSERT_TRUE(a.Set(far, Make(far)));
    ASSERT_TRUE(a.Set(0, Make(0)));
    ASSERT_TRUE(a.Remove(1));
    EXPECT_EQ(a.GetCount(), far);
    EXPECT_EQ(ValueAt(a, far - 1), far);
    EXPECT_EQ(ValueAt(a, 0), 0u);
}

// Removing an item before the window moves every item in the window down one
// place; the window must show the moved items, not the old ones.
TEST(PersistedArray, RemoveBeforeTheWindowLeavesNoStaleWindow) {
    qv::TPersistedArray<SItem> a;
    uint32_t const n = a.GetCapacity() * 3;
    for (uint32_t i = 0; i < n; ++i) ASSERT_TRUE(a.Set(i, Make(i)));
    uint32_t const late = n - 10;
    ASSERT_EQ(ValueAt(a, late), late); // the window now stands at the end
    ASSERT_TRUE(a.Remove(5));           // far before the window
    EXPECT_EQ(a.GetCount(), n - 1);
    EXPECT_EQ(ValueAt(a, late), late + 1);
    EXPECT_EQ(ValueAt(a, n - 2), n - 1);
    EXPECT_EQ(ValueAt(a, 4), 4u);
    EXPECT_EQ(ValueAt(a, 5), 6u);
}

TEST(PersistedArray, RemoveInsideAndAfterTheWindow) {
    qv::TPersistedArray<SItem> a;
    uint32_t const n = a.GetCapacity() * 2;
    for (uint32_t i = 0; i < n; ++i) ASSERT_TRUE(a.Set(i, Make(i)));
    ASSERT_EQ(ValueAt(a, 3), 3u);
    ASSERT_TRUE(a.Remove(3));           // inside the window, edited and unsaved before
    ASSERT_TRUE(a.Remove(n - 2));       // after the window
    EXPECT_EQ(ValueAt(a, 3), 4u);
    EXPECT_EQ(ValueAt(a, n - 3), n - 2);
    EXPECT_EQ(a.GetCount(), n - 2);
    EXPECT_TRUE(a.Remove(n)); // past the end: nothing
    EXPECT_EQ(a.GetCount(), n - 2);
}

// A window standing at the top of the item numbers reaches past 2^32: the
// test whether a removal touched it must not wrap (the file is sparse).
TEST(PersistedArray, RemoveInAWindowAtTheTopOfTheNumbersMovesItsItems) {
    CPersistedArray a(1, 16);
    uint32_t const top = UINT32_MAX - 2;
    for (uint8_t k = 1; k <= 3; ++k) {
        uint8_t *item = a.GetItem(top - 3 + k);
        ASSERT_NE(item, nullptr);
        *item = k;
    }
    ASSERT_TRUE(a.Remove(top - 1));
    EXPECT_EQ(a.GetCount(), top);
    uint8_t const *item = a.ReadItem(top - 1);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(*item, 3);
    item = a.ReadItem(top - 2);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(*item, 1);
}

TEST(PersistedArray, ItemSizeChangeKeepsItemsAndZeroesTheNewTail) {
    CPersistedArray a(4);
    uint32_t const n = a.GetCapacity() + 1000;
    for (uint32_t i = 0; i < n; ++i) {
        uint8_t *p = a.GetItem(i);
        ASSERT_NE(p, nullptr);
        std::memcpy(p, &i, 4);
    }
    ASSERT_TRUE(a.SetItemSize(10));
    EXPECT_EQ(a.GetCapacity(), CPersistedArray::kWindowBudget / 10);
    for (uint32_t i = 0; i < n; i += 7) {
        uint8_t const *p = a.ReadItem(i);
        ASSERT_NE(p, nullptr);
        uint32_t v;
        std::memcpy(&v, p, 4);
        ASSERT_EQ(v, i);
        for (int k = 4; k < 10; ++k) ASSERT_EQ(p[k], 0) << i;
    }
    ASSERT_TRUE(a.SetItemSize(2));
    for (uint32_t i = 0; i < n; i += 13) {
        uint8_t const *p = a.ReadItem(i);
        ASSERT_NE(p, nullptr);
        uint16_t v;
        std::memcpy(&v, p, 2);
        ASSERT_EQ(v, uint16_t(i));
    }
    EXPECT_EQ(a.GetCount(), n);
}

TEST(PersistedArray, OverACallersFileTheBytesAreTheItems) {
    qv::CMemFile file;
    uint32_t raw[5] = {10, 11, 12, 13, 14};
    ASSERT_EQ(file.Write(raw, sizeof raw), sizeof raw);
    ASSERT_EQ(file.Write("xy", 2), 2u); // a partial item is not an item
    {
        CPersistedArray a(file, 4);
        EXPECT_EQ(a.GetCount(), 5u);
        uint32_t v;
        std::memcpy(&v, a.ReadItem(2), 4);
        EXPECT_EQ(v, 12u);
        std::memcpy(a.GetItem(4), &raw[0], 4);
        ASSERT_TRUE(a.Remove(0));
    }
    // Written back on destruction.
    ASSERT_EQ(file.Seek(0, 1), 0);
    uint32_t back[4];
    ASSERT_EQ(file.Read(back, sizeof back), sizeof back);
    EXPECT_EQ(back[0], 11u);
    EXPECT_EQ(back[3], 10u);
}

TEST(PersistedArray, EmptyForgetsEverything) {
    qv::TPersistedArray<SItem> a;
    ASSERT_TRUE(a.Set(100, Make(100)));
    ASSERT_TRUE(a.Empty());
    EXPECT_EQ(a.GetCount(), 0u);
    SItem item{7, 7};
    ASSERT_TRUE(a.Get(100, item));
    EXPECT_EQ(item.value, 0u);
}

} // namespace

// Every failing read, write or seek of the temporary file reaches the caller
// as a null item; no item ever comes back with other bytes than were put in.
TEST(PersistedArrayFaults, FailedTransfersAreReportedAndNeverReadAsOtherBytes) {
    constexpr uint32_t kItem = 8192, kItems = 200; // a window of 64 items: many moves
    bool wrong = false;
    auto fill = [](uint8_t *p, uint32_t i) { std::memset(p, int(i * 7 + 1), kItem); };
    auto same = [&](uint8_t const *p, uint32_t i) {
        std::vector<uint8_t> want(kItem);
        fill(want.data(), i);
        return std::memcmp(p, want.data(), kItem) == 0;
    };
    int runs = qv::test::RunUnderFaults(
        [&] { wrong = false; },
        [&] {
            CPersistedArray a(kItem);
            if (!a.IsReady()) return false;
            for (uint32_t i = 0; i < kItems; ++i) {
                uint8_t *p = a.GetItem(i);
                if (!p) return false;
                fill(p, i);
            }
            for (uint32_t pass = 0; pass < 2; ++pass) {
                for (uint32_t k = 0; k < kItems; ++k) {
                    uint32_t i = pass == 0 ? kItems - 1 - k : (k * 37) % kItems;
                    uint8_t const *p = a.ReadItem(i);
                    if (!p) return false;
                    wrong |= !same(p, i);
                }
            }
            return true;
        },
        [&](qv::test::FaultRun const &run) {
            EXPECT_FALSE(wrong) << "an item read back with bytes never put in";
            if (!run.IsClean()) qv::test::ExpectFailureReported(run);
        },
        {qv::test::Fault::kRead, qv::test::Fault::kWrite, qv::test::Fault::kWriteShort, qv::test::Fault::kLseek});
    EXPECT_GT(runs, 20);
}

// A removal reports what happened: false only with every item where it was,
// true with the items behind it moved down, whatever call fails.
TEST(PersistedArrayFaults, ARemovalIsReportedAsItWent) {
    constexpr uint32_t kItems = 40;
    std::unique_ptr<qv::TPersistedArray<SItem>> a;
    bool removed = false;
    qv::test::RunUnderFaults(
        [&] {
            a = std::make_unique<qv::TPersistedArray<SItem>>();
            for (uint32_t i = 0; i < kItems; ++i) ASSERT_TRUE(a->Set(i, Make(i)));
            ASSERT_TRUE(a->Flush());
        },
        [&] { return removed = a->Remove(21); },
        [&](qv::test::FaultRun const &run) {
            ASSERT_EQ(a->GetCount(), removed ? kItems - 1 : kItems) << run.Describe();
            for (uint32_t i = 0; i < a->GetCount(); ++i)
                ASSERT_EQ(ValueAt(*a, i), removed && i >= 21 ? i + 1 : i) << run.Describe();
        },
        {qv::test::Fault::kRead, qv::test::Fault::kWrite, qv::test::Fault::kLseek, qv::test::Fault::kFtruncate,
         qv::test::Fault::kCopyFileRange});
}

// A new item size either takes, with every item kept, or fails with the
// array as it was: never an array that refuses all further access.
TEST(PersistedArrayFaults, AFailedItemSizeChangeLeavesTheItems) {
    constexpr uint32_t kItems = 300;
    std::unique_ptr<qv::TPersistedArray<SItem>> a;
    for (uint32_t newSize : {12u, 4u}) {
        SCOPED_TRACE("item size " + std::to_string(newSize));
        bool resized = false;
        int runs = qv::test::RunUnderFaults(
            [&] {
                a = std::make_unique<qv::TPersistedArray<SItem>>();
                for (uint32_t i = 0; i < kItems; ++i) ASSERT_TRUE(a->Set(i, Make(i)));
                ASSERT_TRUE(a->Flush());
            },
            [&] { return resized = a->SetItemSize(newSize); },
            [&](qv::test::FaultRun const &run) {
                ASSERT_TRUE(a->IsReady()) << run.Describe();
                ASSERT_EQ(a->GetItemSize(), resized ? newSize : uint32_t(sizeof(SItem))) << run.Describe();
                ASSERT_EQ(a->GetCount(), kItems);
                for (uint32_t i = 0; i < kItems; ++i) {
                    uint8_t const *p = a->ReadItem(i);
                    ASSERT_NE(p, nullptr) << run.Describe();
                    SItem want = Make(i), got{};
                    std::memcpy(&got, p, std::min<size_t>(a->GetItemSize(), sizeof got));
                    if (a->GetItemSize() < sizeof got) want.check = 0;
                    ASSERT_EQ(got.value, want.value) << i << " " << run.Describe();
                    ASSERT_EQ(got.check, want.check) << i << " " << run.Describe();
                    if (a->GetItemSize() > sizeof got) {
                        ASSERT_EQ(p[sizeof got], 0) << i << " " << run.Describe();
                    }
                }
            },
            {qv::test::Fault::kRead, qv::test::Fault::kWrite, qv::test::Fault::kLseek, qv::test::Fault::kFtruncate});
        EXPECT_GT(runs, 4);
    }
}
