// qv's own exponential (Planck's): within an ulp of the C library's exp and
// nearly always its bits, four or eight lanes giving the bits of one, the C library's
// own results where the range ends.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "qv/core/CpuPath.h"
#include "qv/numerics/VectorExp.h"

using namespace qv::numerics_detail;

namespace {

double Ulp(double v) {
    return std::nextafter(v, std::numeric_limits<double>::infinity()) - v;
}

bool SameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Exp and ExpMarked of four or eight values; lanes ExpMarked marks are the
// scalar Exp's.
template <class Vector, class Bits> void CheckLanes(Vector const &x) {
    Vector y;
    Bits outside{};
    ExpMarked(x, y, outside);
    for (size_t i = 0; i < sizeof x / sizeof x[0]; ++i) {
        double one;
        Exp(x[i], one);
        if (outside[i])
            EXPECT_FALSE(ExpInRangeFor(x[i])) << x[i];
        else
            EXPECT_TRUE(SameBits(y[i], one)) << x[i];
    }
}

void CheckFour(ExpVector const &x) {
    CheckLanes<ExpVector, ExpBits>(x);
}

// Eight lanes with the square's error from one fused instruction.
__attribute__((target("avx512f,avx512vl"))) void FusedExp(ExpVector8 const &x, ExpVector8 &y) {
    ExpInRange<ExpVector8, ExpBits8, SFusedSquare>(x, y);
}

} // namespace

TEST(VectorExp, WithinAnUlpOfTheCLibraryAndNearlyAlwaysItsBits) {
    std::mt19937_64 random(21);
    for (auto [low, high] : {std::pair{-708.0, 709.0}, std::pair{-1.0, 1.0}, std::pair{0.0, 60.0}}) {
        std::uniform_real_distribution<double> draw(low, high);
        int same = 0;
        constexpr int kDraws = 200000;
        for (int i = 0; i < kDraws; i += 4) {
            ExpVector x{draw(random), draw(random), draw(random), draw(random)};
            CheckFour(x);
            for (int k = 0; k < 4; ++k) {
                double y;
                Exp(x[k], y);
                double const want = std::exp(x[k]);
                ASSERT_LE(std::fabs(y - want), Ulp(want)) << x[k];
                same += y == want;
            }
        }
        EXPECT_GE(same, kDraws * 99 / 100) << low << " to " << high;
    }
}

TEST(VectorExp, ExactWhereExactAndTheCLibrarysBeyondTheRange) {
    double y;
    Exp(0.0, y);
    EXPECT_EQ(y, 1.0);
    Exp(-0.0, y);
    EXPECT_EQ(y, 1.0);
    double const inf = std::numeric_limits<double>::infinity();
    for (double x : {kExpLowest, kExpHighest, std::nextafter(kExpLowest, -inf), std::nextafter(kExpHighest, inf), 709.7,
                     709.79, 710.0, -720.0, -745.0, -746.0, 1e300, -1e300, inf, -inf, std::nan("")}) {
        Exp(x, y);
        double const want = std::exp(x);
        if (ExpInRangeFor(x))
            EXPECT_LE(std::fabs(y - want), Ulp(want)) << x;
        else
            EXPECT_TRUE(SameBits(y, want)) << x;
    }
    CheckFour(ExpVector{710.0, -1.0, std::nan(""), -746.0});
    CheckFour(ExpVector{kExpLowest, kExpHighest, 0.5, -inf});
    CheckLanes<ExpVector8, ExpBits8>(ExpVector8{710.0, -1.0, std::nan(""), -746.0, kExpLowest, kExpHighest, 0.5, -inf});
}

// The fused square error is the same exact value as Dekker's: the bits of
// the scalar Exp, small arguments (where the square nears underflow) included.
TEST(VectorExp, FusedSquareGivesTheSameBits) {
    if (qv::cpu::BestCpuPath() < qv::cpu::CP_AVX512) GTEST_SKIP() << "no AVX-512 here";
    std::mt19937_64 random(8);
    std::uniform_real_distribution<double> draw(kExpLowest, kExpHighest);
    std::uniform_real_distribution<double> power(-320.0, 0.0);
    for (int i = 0; i < 100000; ++i) {
        ExpVector8 x;
        for (int k = 0; k < 8; ++k)
            x[k] = k < 4 ? draw(random) : std::copysign(std::pow(10.0, power(random)), draw(random));
        ExpVector8 y;
        FusedExp(x, y);
        for (int k = 0; k < 8; ++k) {
            double one;
            Exp(x[k], one);
            ASSERT_TRUE(SameBits(y[k], one)) << x[k];
        }
    }
}
