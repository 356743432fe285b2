// Exp and ExpMarked: e^x of one double or of four or eight at once, with the
// same results on every instruction-set path (internal to libqv).
//
// The result is within a few hundredths of an ulp before its final rounding,
// so it is the correctly rounded value but for rare ties, and agrees with the
// C library's exp to the last bit nearly everywhere (stored radiances were
// made with that). A fused multiply-add appears only where it computes an
// exact value that the portable path also computes exactly (SFusedSquare):
// every path must give the same bits. Values whose result would overflow,
// be subnormal or NaN are left to the C library's exp.
//
// Method: x = n ln2 + r with |r| <= ln2/2, ln2 in two parts so that r is
// exact as a pair of doubles; e^r = 1 + r + r^2/2 + r^3/6 + r^4 P2(r), the
// Taylor series to r^15 (its remainder is below 3e-21), the first terms
// summed without loss (exact square, error-free sums) and the rest added
// last; then 2^n goes into the exponent.
#pragma once

#include <cmath>
#include <cstdint>

namespace qv::numerics_detail {

inline constexpr double kExpLowest = -708.0; // from here to kExpHighest,
inline constexpr double kExpHighest = 709.0; // e^x and 2^n are normal

// Four doubles as one value: GCC turns their arithmetic into one AVX2
// instruction each, or two SSE2 ones on the portable path, with the same bits.
using ExpVector = double __attribute__((vector_size(32)));
using ExpBits = uint64_t __attribute__((vector_size(32)));
// Eight, for AVX-512 (one instruction each there); again the same bits.
using ExpVector8 = double __attribute__((vector_size(64)));
using ExpBits8 = uint64_t __attribute__((vector_size(64)));

/// r * r - square, exactly, for square = r * r rounded: Dekker's product,
/// every step of it exact wherever the result can matter.
struct SDekkerSquare {
    /// error = r * r - square, exactly.
    template <class Real> [[gnu::always_inline]] static void Error(Real const &r, Real const &square, Real &error) {
        constexpr double kSplit = 134217729.0; // 2^27 + 1
        Real const c = r * kSplit;
        Real const rh = c - (c - r);
        Real const rl = r - rh;
        error = ((rh * rh - square) + 2 * rh * rl) + rl * rl;
    }
};

/// The same exact value in one fused multiply-subtract, for eight lanes in
/// code built for AVX-512 only. (Written as an instruction: an intrinsic would
/// ask every caller up the inlined chain to be built for AVX-512 too. clang
/// judges the operand by the enclosing function's instruction set, so its
/// builds keep Dekker's product.)
#if defined(__clang__)
using SFusedSquare = SDekkerSquare;
#else
struct SFusedSquare {
    /// error = r * r - square, exactly.
    [[gnu::always_inline]] static void Error(ExpVector8 const &r, ExpVector8 const &square, ExpVector8 &error) {
        error = square;
        asm("vfmsub231pd %1, %1, %0" : "+v"(error) : "v"(r));
    }
};
#endif

// e^x for x in [kExpLowest, kExpHighest]; Real is double or ExpVector, Bits
// the matching unsigned integers, Square how rHi^2's rounding error is found
// (the same exact value either way). (Vectors pass by reference: by value
// their calling convention would depend on the instruction set.)
template <class Real, class Bits, class Square = SDekkerSquare>
[[gnu::always_inline]] inline void ExpInRange(Real const &x, Real &y) {
    constexpr double kInvLn2 = 0x1.71547652b82fep0;
    constexpr double kLn2Hi = 0x1.62e42fee00000p-1; // 32 bits: n * kLn2Hi is exact
    constexpr double kLn2Lo = 0x1.a39ef35793c76p-33;
    constexpr double kRoundShift = 0x1.8p52; // adding it rounds to an integer

    Real const shifted = x * kInvLn2 + kRoundShift;
    Real const n = shifted - kRoundShift;
    Bits const exponent = __builtin_bit_cast(Bits, shifted) - __builtin_bit_cast(uint64_t, kRoundShift);
    // r = rHi + rLo = x - n ln2; x - n kLn2Hi is exact (Sterbenz).
    Real const hi = x - n * kLn2Hi;
    Real const lo = n * kLn2Lo;
    Real const rHi = hi - lo;
    Real const rLo = (hi - rHi) - lo;
    // rHi^2 as sqHi + sqLo, exactly.
    Real const sqHi = rHi * rHi;
    Real sqLo;
    Square::Error(rHi, sqHi, sqLo);
    // 1 + rHi + sqHi/2, each sum with its rounding error kept.
    Real const aHi = 1 + rHi;
    Real const aLo = (1 - aHi) + rHi;
    Real const bHi = aHi + sqHi * 0.5;
    Real const bLo = (aHi - bHi) + sqHi * 0.5;
    // P2 by Estrin's scheme: a short chain of dependent operations lets the
    // processor overlap many groups of four.
    Real const r2 = sqHi;
    Real const r4 = r2 * r2;
    Real const r8 = r4 * r4;
    Real const q0 = 1.0 / 24.0 + rHi * (1.0 / 120.0);
    Real const q1 = 1.0 / 720.0 + rHi * (1.0 / 5040.0);
    Real const q2 = 1.0 / 40320.0 + rHi * (1.0 / 362880.0);
    Real const q3 = 1.0 / 3628800.0 + rHi * (1.0 / 39916800.0);
    Real const q4 = 1.0 / 479001600.0 + rHi * (1.0 / 6227020800.0);
    Real const q5 = 1.0 / 87178291200.0 + rHi * (1.0 / 1307674368000.0);
    Real const p2 = (q0 + r2 * q1) + r4 * (q2 + r2 * q3) + r8 * (q4 + r2 * q5);
    // 1 + rHi + sqHi/2 + r^3/6 as a pair again; the small terms, smallest
    // first; rLo enters as e^rLo ~ 1 + rLo, times e^rHi ~ bHi.
    Real const cube = sqHi * rHi * (1.0 / 6.0);
    Real const cHi = bHi + cube;
    Real const cLo = (bHi - cHi) + cube;
    Real const small = ((((r4 * p2 + rLo * bHi) + sqLo * 0.5) + aLo) + bLo) + cLo;
    Real const scale = __builtin_bit_cast(Real, (exponent + 1023) << 52);
    y = (cHi + small) * scale;
}

inline bool ExpInRangeFor(double x) {
    return x >= kExpLowest && x <= kExpHighest;
}

// Marks in outside the lanes of x beyond [kExpLowest, kExpHighest], or NaN.
// Vector is ExpVector or ExpVector8, Bits the matching ExpBits.
template <class Vector, class Bits> [[gnu::always_inline]] inline void MarkOutside(Vector const &x, Bits &outside) {
    outside |= ~((Bits)(x >= kExpLowest) & (Bits)(x <= kExpHighest));
}

// y = e^x, lane by lane, for the lanes in range; the others get some value
// (the same arithmetic, harmless on any double) and are marked in outside,
// for the caller to redo with the scalar Exp. Marking them costs less than
// testing each group.
template <class Vector, class Bits>
[[gnu::always_inline]] inline void ExpMarked(Vector const &x, Vector &y, Bits &outside) {
    MarkOutside(x, outside);
    ExpInRange<Vector, Bits>(x, y);
}

// y = e^x: the C library's exp beyond the range.
[[gnu::always_inline]] inline void Exp(double const &x, double &y) {
    if (ExpInRangeFor(x))
        ExpInRange<double, uint64_t>(x, y);
    else
        y = std::exp(x);
}

} // namespace qv::numerics_detail
