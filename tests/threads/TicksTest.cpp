#include <gtest/gtest.h>

#include "ThreadTestSupport.h"
#include "qv/platform/Ticks.h"

namespace qv {
namespace {

TEST(Ticks, OffsetMovesTheClockAcrossTheWrap) {
    test::TickScope scope;
    scope.ReadNow(0xFFFFFFFFu - 4);
    uint32_t before = GetTickCount();
    EXPECT_GE(before, 0xFFFFFFF0u);
    Sleep(20);
    uint32_t after = GetTickCount();
    EXPECT_LT(after, 0x10000u) << "the 32-bit count wraps to small values";
    EXPECT_GE(uint32_t(after - before), 20u) << "intervals survive the wrap in unsigned arithmetic";
}

TEST(Ticks, ClockNeverRunsBackAndSleepZeroReturns) {
    uint32_t first = GetTickCount();
    Sleep(0);
    SwitchToThread();
    Sleep(2);
    EXPECT_GE(uint32_t(GetTickCount() - first), 2u);
    EXPECT_LT(uint32_t(GetTickCount() - first), 0x80000000u);
}

} // namespace
} // namespace qv
