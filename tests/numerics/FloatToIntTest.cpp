// The vectorisable floating-point to integer rule, bit for bit against the
// library's scalar one (qv/core/FloatToInt.h), at compile time and at run time, for every integer target.
#include <gtest/gtest.h>

#include <random>

#include "TypedTestSupport.h"
#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedArray.h"

namespace qv {
namespace {

using numerics_detail::ElementCast;
using numerics_detail::TruncateToInt64Branchless;
using namespace typedtest;

// Compile-time evaluation must agree with the documented results (and so
// with run time, checked below): constant folding never changes a result.
static_assert(TruncateToInt64Branchless(-1.0) == -1);
static_assert(TruncateToInt64Branchless(70000.0) == 70000);
static_assert(TruncateToInt64Branchless(-0.5) == 0 && TruncateToInt64Branchless(0.5) == 0);
static_assert(TruncateToInt64Branchless(0x1p63) == INT64_MIN && TruncateToInt64Branchless(-0x1p63) == INT64_MIN);
static_assert(TruncateToInt64Branchless(0x1.fffffffffffffp62) == 0x7ffffffffffffc00);
static_assert(TruncateToInt64Branchless(__builtin_nan("")) == INT64_MIN);
static_assert(TruncateToInt64Branchless(__builtin_inf()) == INT64_MIN && TruncateToInt64Branchless(-__builtin_inf()) == INT64_MIN);
static_assert(ElementCast<uint16_t>(-1.0) == 65535 && ElementCast<uint16_t>(70000.0) == 4464);
static_assert(ElementCast<uint8_t>(1.9) == 1 && ElementCast<int32_t>(3e9) == -1294967296);

template <class D> void ExpectEveryTargetMatches(double x) {
    // volatile keeps the compiler from folding the run-time path.
    volatile double v = x;
    EXPECT_EQ(ElementCast<D>(double(v)), ReferenceCast<D>(double(v))) << x;
    volatile float f = static_cast<float>(x); // every sample is within float range or infinite
    EXPECT_EQ(ElementCast<D>(float(f)), ReferenceCast<D>(float(f))) << x;
}

void ExpectAllTargets(double x) {
    ExpectEveryTargetMatches<int8_t>(x);
    ExpectEveryTargetMatches<uint8_t>(x);
    ExpectEveryTargetMatches<int16_t>(x);
    ExpectEveryTargetMatches<uint16_t>(x);
    ExpectEveryTargetMatches<int32_t>(x);
    ExpectEveryTargetMatches<uint32_t>(x);
    ExpectEveryTargetMatches<int64_t>(x);
}

TEST(FloatToInt, SpecialValuesMatchReferenceForEveryIntegerTarget) {
    double const inf = std::numeric_limits<double>::infinity();
    for (double x : {std::nan(""), -std::nan(""), inf, -inf, 0.5, -0.5, 0x1p63, -0x1p63, 70000.0, -1.0, 0.0, -0.0,
                     0x1p31, -0x1p31, 0x1p32 - 0.5, 0x1p32, 0x1p62 + 0x1p40, 1e-300, 1e30})
        ExpectAllTargets(x);
}

TEST(FloatToInt, DocumentedResults) {
    EXPECT_EQ(ElementCast<uint16_t>(-1.0), 65535);
    EXPECT_EQ(ElementCast<uint16_t>(70000.0), 4464);
    EXPECT_EQ(ElementCast<uint8_t>(1.9), 1);
    EXPECT_EQ(ElementCast<int64_t>(std::nan("")), INT64_MIN);
    EXPECT_EQ(ElementCast<int32_t>(std::nan("")), 0); // low bits of INT64_MIN
    EXPECT_EQ(ElementCast<int64_t>(-9.2e18), -9200000000000000000);
    EXPECT_EQ(ElementCast<int64_t>(9.3e18), INT64_MIN); // above 2^63
    EXPECT_EQ(ElementCast<uint32_t>(-0.99f), 0u);
}

TEST(FloatToInt, RandomBitsMatchReference) {
    std::mt19937_64 random(20240611);
    for (int i = 0; i < 200000; ++i) {
        uint64_t bits = random();
        if (i % 2) // exponents where the integer part has up to 70 bits
            bits = (bits & 0x800fffffffffffffu) | (uint64_t(1000 + bits % 90) << 52);
        double x = std::bit_cast<double>(bits);
        ASSERT_EQ(TruncateToInt64Branchless(x), ReferenceTruncate(x)) << x;
    }
}

// The same rule through the library's vectorised loops, every integer target,
// from double and from float buffers.
TEST(FloatToInt, ConvertArrayMatchesReference) {
    auto check = [](auto sourceTag) {
        using S = typename decltype(sourceTag)::type;
        std::vector<S> source = Repeated<S>(101);
        ForEachType([&](auto targetTag) {
            using D = typename decltype(targetTag)::type;
            if constexpr (std::is_integral_v<D>) {
                std::vector<D> out(source.size());
                ConvertArray(STypedData(out.data(), kCode<D>), STypedData(source.data(), kCode<S>),
                             uint32_t(source.size()));
                for (size_t i = 0; i < source.size(); ++i)
                    ASSERT_EQ(out[i], ReferenceCast<D>(source[i])) << double(source[i]) << " to type " << kCode<D>;
            }
        });
    };
    check(Tag<double>{});
    check(Tag<float>{});
}

} // namespace
} // namespace qv
