// CFrameTemperatures against the per-value road: bit for bit for integer
// counts, within 1e-12 relative for floating-point counts, on every scale.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "CalTestSupport.h"
#include "qv/calibration/FrameTemperatures.h"
#include "qv/core/CpuPath.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/Math.h"
#include "qv/numerics/TypedArray.h"

using namespace qv;

namespace {

constexpr ETempType kScales[] = {TT_Celsius, TT_Fahrenheit, TT_Kelvin, TT_Rankine};

// A mid-wave page fitted to a synthetic camera (counts about 1500..9000).
struct CalibratedPage {
    CRCalFile cal;
    int page = -1;
    CalibratedPage() {
        cal.SetSpectralResponseTophat(3, 5, 0.01);
        page = caltest::AddCameraPage(cal, caltest::SyntheticCamera{}, {0, 20, 40, 60, 80, 100});
    }
};

// The road an application takes for one count, as the frame API promises it.
template <class O> O PerValue(CRCalFile &cal, int page, double count, ETempType scale) {
    TArray<double> c, t;
    cal.GetCoefficients(page, c);
    cal.GetTempCoefficients(page, t);
    double v = PolyValue(PolyValue(count, c), t);
    CMath::ConvertTemperature({&v, DT_Double}, {&v, DT_Double}, 1, TT_Celsius, scale);
    O out;
    ConvertArray({&out, std::is_same_v<O, float> ? DT_Float : DT_Double}, {&v, DT_Double}, 1);
    return out;
}

template <class O> constexpr EDataType kOut = std::is_same_v<O, float> ? DT_Float : DT_Double;

template <class C, class O>
void ExpectBitIdentical(CalibratedPage &p, std::vector<C> counts, EDataType countType, ETempType scale) {
    CFrameTemperatures frame;
    ASSERT_TRUE(frame.SetPage(p.cal, p.page, scale));
    std::vector<O> out(counts.size(), O(-1));
    ASSERT_TRUE(frame.Convert({counts.data(), countType}, {out.data(), kOut<O>}, uint32_t(counts.size())));
    for (size_t i = 0; i < counts.size(); ++i) {
        O want = PerValue<O>(p.cal, p.page, double(counts[i]), scale);
        ASSERT_EQ(std::memcmp(&want, &out[i], sizeof(O)), 0)
            << "count " << double(counts[i]) << " scale " << scale << ": " << out[i] << " vs " << want;
    }
}

template <class C> std::vector<C> Spread(int64_t from, int64_t step, int n) {
    std::vector<C> v;
    for (int i = 0; i < n; ++i)
        v.push_back(C(from + step * ((i * 7919) % n)));
    return v;
}

} // namespace

TEST(FrameTemperatures, IntegerCountsAreBitIdenticalOnEveryScale) {
    CalibratedPage p;
    for (int path = cpu::BestCpuPath(); path >= 0; --path) {
        cpu::LimitCpuPath(cpu::ECpuPath(path));
        for (ETempType scale : kScales)
            ExpectBitIdentical<uint16_t, float>(p, Spread<uint16_t>(1500, 3, 3001), DT_UInt16, scale);
    }
    cpu::LimitCpuPath(cpu::BestCpuPath());
    for (ETempType scale : kScales) {
        ExpectBitIdentical<uint16_t, float>(p, Spread<uint16_t>(1500, 3, 3000), DT_UInt16, scale);
        ExpectBitIdentical<uint16_t, double>(p, Spread<uint16_t>(1500, 3, 3000), DT_UInt16, scale);
    }
    ExpectBitIdentical<uint8_t, float>(p, Spread<uint8_t>(0, 1, 256), DT_UInt8, TT_Kelvin);
    ExpectBitIdentical<int8_t, double>(p, Spread<int8_t>(-128, 1, 256), DT_Int8, TT_Celsius);
    ExpectBitIdentical<int16_t, float>(p, Spread<int16_t>(-32768, 1, 65536), DT_Int16, TT_Celsius);
    ExpectBitIdentical<int32_t, double>(p, Spread<int32_t>(-5000, 11, 2000), DT_Int32, TT_Fahrenheit);
    ExpectBitIdentical<uint32_t, float>(p, Spread<uint32_t>(4000000000u, 1, 1000), DT_UInt32, TT_Celsius);
    ExpectBitIdentical<int64_t, double>(p, Spread<int64_t>(int64_t(1) << 60, 1, 500), DT_Int64, TT_Celsius);
}

// 16-bit counts go four to a load: spans across zero, below it and at the
// top of the unsigned range, every path, both outputs, with a ragged end.
TEST(FrameTemperatures, SixteenBitCountsOnEveryPath) {
    CalibratedPage p;
    for (int path = cpu::BestCpuPath(); path >= 0; --path) {
        cpu::LimitCpuPath(cpu::ECpuPath(path));
        ExpectBitIdentical<int16_t, float>(p, Spread<int16_t>(-150, 1, 301), DT_Int16, TT_Kelvin);
        ExpectBitIdentical<int16_t, double>(p, Spread<int16_t>(-30000, 1, 1003), DT_Int16, TT_Celsius);
        ExpectBitIdentical<uint16_t, double>(p, Spread<uint16_t>(65000, 1, 536), DT_UInt16, TT_Rankine);
        ExpectBitIdentical<uint16_t, float>(p, Spread<uint16_t>(0, 1, 7), DT_UInt16, TT_Celsius);
    }
    cpu::LimitCpuPath(cpu::BestCpuPath());
}

// Frames of a megabyte of output and more go through a kernel of their own
// where the CPU has one; outputs at byte offsets, which it takes element by
// element up to a line boundary or leaves wholly to the plain loop, and a
// ragged end.
template <class C, class O> void ExpectLargeFrameBitIdentical(CalibratedPage &p, int64_t from, size_t offset) {
    std::vector<C> const distinct = Spread<C>(from, 1, 3001);
    std::vector<O> want;
    for (C c : distinct)
        want.push_back(PerValue<O>(p.cal, p.page, double(c), TT_Celsius));
    size_t const n = (size_t(1) << 20) / sizeof(O) + 13;
    std::vector<C> counts(n);
    for (size_t i = 0; i < n; ++i)
        counts[i] = distinct[i % distinct.size()];
    std::vector<unsigned char> out(n * sizeof(O) + offset);
    CFrameTemperatures frame;
    ASSERT_TRUE(frame.SetPage(p.cal, p.page));
    ASSERT_TRUE(frame.Convert({counts.data(), std::is_signed_v<C> ? DT_Int16 : DT_UInt16},
                              {out.data() + offset, kOut<O>}, uint32_t(n)));
    for (size_t i = 0; i < n; ++i)
        ASSERT_EQ(std::memcmp(out.data() + offset + i * sizeof(O), &want[i % want.size()], sizeof(O)), 0)
            << "output " << i << " at offset " << offset;
}

TEST(FrameTemperatures, LargeFramesOnEveryPath) {
    CalibratedPage p;
    for (int path = cpu::BestCpuPath(); path >= 0; --path) {
        cpu::LimitCpuPath(cpu::ECpuPath(path));
        ExpectLargeFrameBitIdentical<uint16_t, float>(p, 1500, 0);
        ExpectLargeFrameBitIdentical<int16_t, double>(p, -1500, 0);
    }
    cpu::LimitCpuPath(cpu::BestCpuPath());
    for (size_t offset : {size_t(1), size_t(12), size_t(40)}) {
        ExpectLargeFrameBitIdentical<uint16_t, float>(p, 1500, offset);
        ExpectLargeFrameBitIdentical<int16_t, float>(p, -1500, offset);
        ExpectLargeFrameBitIdentical<uint16_t, double>(p, 1500, offset);
        ExpectLargeFrameBitIdentical<int16_t, double>(p, -1500, offset);
    }
}

// Buffers at odd addresses give the same values as aligned ones.
TEST(FrameTemperatures, UnalignedBuffers) {
    CalibratedPage p;
    std::vector<uint16_t> counts = Spread<uint16_t>(1500, 3, 1001);
    std::vector<unsigned char> in(counts.size() * 2 + 1), out(counts.size() * 8 + 1);
    std::memcpy(in.data() + 1, counts.data(), counts.size() * 2);
    for (EDataType type : {DT_Float, DT_Double}) {
        CFrameTemperatures frame;
        ASSERT_TRUE(frame.SetPage(p.cal, p.page));
        std::vector<double> aligned(counts.size());
        ASSERT_TRUE(frame.Convert({counts.data(), DT_UInt16}, {aligned.data(), type}, uint32_t(counts.size())));
        ASSERT_TRUE(frame.Convert({in.data() + 1, DT_UInt16}, {out.data() + 1, type}, uint32_t(counts.size())));
        EXPECT_EQ(std::memcmp(out.data() + 1, aligned.data(), counts.size() * DataTypeSize(type)), 0) << type;
    }
}

TEST(FrameTemperatures, WideSpansAreEvaluatedCountByCount) {
    CalibratedPage p;
    // Far beyond one table: the same results without one.
    ExpectBitIdentical<int32_t, double>(p, Spread<int32_t>(-2000000000, 1000003, 4000), DT_Int32, TT_Kelvin);
    ExpectBitIdentical<int64_t, float>(p, {INT64_MIN, INT64_MAX, 0, -1, 1}, DT_Int64, TT_Celsius);
}

TEST(FrameTemperatures, TheTableGrowsFrameAfterFrame) {
    CalibratedPage p;
    CFrameTemperatures frame;
    ASSERT_TRUE(frame.SetPage(p.cal, p.page, TT_Rankine));
    // Each frame reaches further on both sides of what was tabulated.
    for (int round = 0; round < 4; ++round) {
        std::vector<uint16_t> counts = Spread<uint16_t>(8000 - 1000 * round, 1, 2000 * (round + 1));
        std::vector<float> out(counts.size());
        ASSERT_TRUE(frame.Convert({counts.data(), DT_UInt16}, {out.data(), DT_Float}, uint32_t(counts.size())));
        for (size_t i = 0; i < counts.size(); ++i)
            ASSERT_EQ(out[i], PerValue<float>(p.cal, p.page, counts[i], TT_Rankine)) << counts[i];
    }
}

// A frame that leaves the table part-way grows it from there on, or, when the
// rest spans too much for a table, takes the rest count by count.
TEST(FrameTemperatures, AFrameLeavingTheTablePartWay) {
    CalibratedPage p;
    CFrameTemperatures frame;
    ASSERT_TRUE(frame.SetPage(p.cal, p.page, TT_Celsius));
    auto convert = [&](std::vector<int32_t> counts) {
        std::vector<double> out(counts.size(), -1.0);
        ASSERT_TRUE(frame.Convert({counts.data(), DT_Int32}, {out.data(), DT_Double}, uint32_t(counts.size())));
        for (size_t i = 0; i < counts.size(); ++i)
            ASSERT_EQ(out[i], PerValue<double>(p.cal, p.page, counts[i], TT_Celsius)) << i << ": " << counts[i];
    };
    convert(Spread<int32_t>(5000, 1, 100));
    std::vector<int32_t> grows = Spread<int32_t>(5000, 1, 100), wide = grows;
    for (int32_t c : Spread<int32_t>(1000, 4, 2000))
        grows.push_back(c);
    convert(grows);
    for (int32_t c : Spread<int32_t>(-2000000000, 1000003, 4000))
        wide.push_back(c);
    convert(wide);
    convert(grows);
}

TEST(FrameTemperatures, FloatingPointCountsFollowHornersRule) {
    CalibratedPage p;
    std::vector<double> counts;
    for (int i = 0; i < 5000; ++i)
        counts.push_back(1500.0 + i * 1.37);
    std::vector<float> asFloat(counts.begin(), counts.end());
    for (ETempType scale : kScales) {
        CFrameTemperatures frame;
        ASSERT_TRUE(frame.SetPage(p.cal, p.page, scale));
        std::vector<double> out(counts.size()), outOfFloat(counts.size());
        ASSERT_TRUE(frame.Convert({counts.data(), DT_Double}, {out.data(), DT_Double}, uint32_t(counts.size())));
        ASSERT_TRUE(frame.Convert({asFloat.data(), DT_Float}, {outOfFloat.data(), DT_Double}, uint32_t(counts.size())));
        for (size_t i = 0; i < counts.size(); ++i) {
            double want = PerValue<double>(p.cal, p.page, counts[i], scale);
            ASSERT_NEAR(out[i], want, 1e-12 * std::fabs(want)) << counts[i];
            double wantOfFloat = PerValue<double>(p.cal, p.page, asFloat[i], scale);
            ASSERT_NEAR(outOfFloat[i], wantOfFloat, 1e-12 * std::fabs(wantOfFloat)) << asFloat[i];
        }
    }
    // NaN stays NaN on the way.
    double nan = std::numeric_limits<double>::quiet_NaN(), out = 0;
    CFrameTemperatures frame;
    ASSERT_TRUE(frame.SetPage(p.cal, p.page));
    ASSERT_TRUE(frame.Convert({&nan, DT_Double}, {&out, DT_Double}, 1));
    EXPECT_TRUE(std::isnan(out));
}

TEST(FrameTemperatures, ALoneCoefficientGivesZeroAsPolyValueDoes) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    int page = cal.Pages.Add();
    double one[] = {5.0};
    ASSERT_TRUE(cal.SetUsedCoefficients(page, 0, one, true));
    uint16_t counts[] = {0, 100, 65535};
    double viaTable[3], viaHorner[3];
    double asDouble[] = {0, 100, 65535};
    CFrameTemperatures frame;
    ASSERT_TRUE(frame.SetPage(cal, page));
    ASSERT_TRUE(frame.Convert({counts, DT_UInt16}, {viaTable, DT_Double}, 3));
    ASSERT_TRUE(frame.Convert({asDouble, DT_Double}, {viaHorner, DT_Double}, 3));
    for (int i = 0; i < 3; ++i) {
        double want = PerValue<double>(cal, page, counts[i], TT_Celsius);
        EXPECT_EQ(viaTable[i], want);
        EXPECT_EQ(viaHorner[i], want);
    }
}

TEST(FrameTemperatures, FailuresWriteNothing) {
    CalibratedPage p;
    uint16_t counts[] = {2000, 3000};
    float out[] = {-7, -7};
    CFrameTemperatures empty;
    EXPECT_FALSE(empty.Convert({counts, DT_UInt16}, {out, DT_Float}, 2));
    CFrameTemperatures frame;
    EXPECT_FALSE(frame.SetPage(p.cal, -1));
    EXPECT_FALSE(frame.SetPage(p.cal, 1));
    EXPECT_FALSE(frame.SetPage(p.cal, p.page, ETempType(4)));
    EXPECT_FALSE(frame.Convert({counts, DT_UInt16}, {out, DT_Float}, 2)); // a failed SetPage empties it
    ASSERT_TRUE(frame.SetPage(p.cal, p.page));
    EXPECT_FALSE(frame.Convert({counts, DT_UInt16}, {out, DT_UInt16}, 2));
    EXPECT_FALSE(frame.Convert({counts, DT_Packed}, {out, DT_Float}, 2));
    EXPECT_FALSE(frame.Convert({counts, EDataType(7)}, {out, DT_Float}, 2));
    EXPECT_EQ(out[0], -7.0f);
    EXPECT_TRUE(frame.Convert({counts, DT_UInt16}, {out, DT_Float}, 0));
    EXPECT_EQ(out[0], -7.0f);
    // The one-call form agrees with the object.
    float once[2];
    ASSERT_TRUE(frame.Convert({counts, DT_UInt16}, {out, DT_Float}, 2));
    ASSERT_TRUE(CountsToTemperatures(p.cal, p.page, {counts, DT_UInt16}, {once, DT_Float}, 2));
    EXPECT_EQ(std::memcmp(out, once, sizeof out), 0);
    EXPECT_FALSE(CountsToTemperatures(p.cal, 3, {counts, DT_UInt16}, {once, DT_Float}, 2));
    // Moved, the page goes along.
    CFrameTemperatures moved = std::move(frame);
    EXPECT_TRUE(moved.Convert({counts, DT_UInt16}, {once, DT_Float}, 2));
}

// A filter table holding NaN makes every radiance NaN, and the refits leave
// coefficients that are no number: such a page would give NaN for every
// count, with success. It is refused, as is one given such values by hand.
TEST(FrameTemperatures, APageWhosePolynomialsHoldNoNumberIsRefused) {
    caltest::ScratchDir dir;
    CalibratedPage p;
    ASSERT_EQ(p.cal.AdditionalResponses.Add(dir.Write("nan.txt", "3 0.5\n4 nan\n5 0.5\n"), true), RS_ReadError);
    ASSERT_EQ(p.cal.AdditionalResponses.Add(dir.Write("filter.txt", "3 0.5\n4 0.5\n5 0.5\n"), true), RS_OK);
    CFrameTemperatures frame;
    ASSERT_TRUE(frame.SetPage(p.cal, p.page));
    p.cal.AdditionalResponses[0].setFile(dir.Write("nan.txt", "3 0.5\n4 nan\n5 0.5\n"));
    ASSERT_EQ(p.cal.AdditionalResponses[0].getStatus(), RS_ReadError);
    EXPECT_FALSE(frame.SetPage(p.cal, p.page));
    uint16_t counts[] = {2000, 3000};
    float out[] = {-7, -7};
    EXPECT_FALSE(frame.Convert({counts, DT_UInt16}, {out, DT_Float}, 2));
    EXPECT_EQ(out[0], -7.0f);

    CalibratedPage q;
    double used[] = {1.0, std::numeric_limits<double>::infinity()};
    ASSERT_TRUE(q.cal.SetUsedTempCoefficients(q.page, 1, used, true));
    EXPECT_FALSE(frame.SetPage(q.cal, q.page));
    EXPECT_FALSE(CountsToTemperatures(q.cal, q.page, {counts, DT_UInt16}, {out, DT_Float}, 2));
    EXPECT_EQ(out[0], -7.0f);
}
