// TypedMin, TypedMax, TypedSum, TypedSpan, TypedDiv and MinMax: the common
// type rules by example, every type combination against a scalar reference,
// odd lengths and addresses, in place, and types without arithmetic.
#include <gtest/gtest.h>

#include "TypedTestSupport.h"
#include "qv/numerics/TypedArray.h"

namespace qv {
namespace {

using namespace typedtest;

template <class A, class B> using Common = decltype(A() + B());

// Integer arithmetic of the reference wraps through 64 bits, never overflowing.
template <class C> C ReferenceAdd(C x, C y) {
    if constexpr (std::is_integral_v<C>)
        return static_cast<C>(uint64_t(x) + uint64_t(y));
    else
        return x + y;
}

template <class C> C ReferenceAbsDifference(C b, C a) {
    if constexpr (std::is_integral_v<C>) {
        C d = static_cast<C>(uint64_t(b) - uint64_t(a));
        if constexpr (std::is_signed_v<C>)
            if (d < 0) return static_cast<C>(uint64_t(0) - uint64_t(d));
        return d;
    } else {
        return std::fabs(b - a);
    }
}

// Runs op on odd-addressed copies of a and b (n elements) and checks a[i]
// against expect(a[i], b[i]) for every pair of types.
template <class Op, class Expect> void CheckEveryPair(Op op, Expect expect) {
    ForEachType([&](auto aTag) {
        using A = typename decltype(aTag)::type;
        ForEachType([&](auto bTag) {
            using B = typename decltype(bTag)::type;
            size_t const n = 45;
            std::vector<A> a = Repeated<A>(n);
            std::vector<B> b = Shifted<B>(n, 7);
            COddBuffer bufferA(n * sizeof(A)), bufferB(n * sizeof(B));
            bufferA.Fill(a);
            bufferB.Fill(b);
            op(bufferA.Typed<A>(), bufferB.Typed<B>(), uint32_t(n));
            std::vector<A> got = bufferA.Read<A>(n);
            for (size_t i = 0; i < n; ++i)
                ASSERT_TRUE(Same(got[i], A(expect(a[i], b[i])))) << kCode<A> << " with " << kCode<B> << " at " << i;
            ASSERT_TRUE(bufferA.GuardsIntact() && bufferB.GuardsIntact());
        });
    });
}

TEST(TypedOps, MinMaxSumEveryPairMatchesReference) {
    CheckEveryPair(TypedMin, [](auto a, auto b) {
        using C = Common<decltype(a), decltype(b)>;
        return C(b) > C(a) ? a : ReferenceCast<decltype(a)>(C(b));
    });
    CheckEveryPair(TypedMax, [](auto a, auto b) {
        using C = Common<decltype(a), decltype(b)>;
        return C(b) < C(a) ? a : ReferenceCast<decltype(a)>(C(b));
    });
    CheckEveryPair(TypedSum, [](auto a, auto b) {
        using C = Common<decltype(a), decltype(b)>;
        return ReferenceCast<decltype(a)>(ReferenceAdd(C(a), C(b)));
    });
}

TEST(TypedOps, SpanEveryTripleMatchesReference) {
    size_t const n = 23;
    ForEachType([&](auto dTag) {
        using D = typename decltype(dTag)::type;
        ForEachType([&](auto aTag) {
            using A = typename decltype(aTag)::type;
            ForEachType([&](auto bTag) {
                using B = typename decltype(bTag)::type;
                using C = Common<A, B>;
                std::vector<A> a = Repeated<A>(n);
                std::vector<B> b = Shifted<B>(n, 5);
                COddBuffer bufferA(n * sizeof(A)), bufferB(n * sizeof(B)), bufferD(n * sizeof(D));
                bufferA.Fill(a);
                bufferB.Fill(b);
                TypedSpan(bufferD.Typed<D>(), bufferA.Typed<A>(), bufferB.Typed<B>(), uint32_t(n));
                std::vector<D> got = bufferD.Read<D>(n);
                for (size_t i = 0; i < n; ++i)
                    ASSERT_TRUE(Same(got[i], ReferenceCast<D>(ReferenceAbsDifference(C(b[i]), C(a[i])))))
                        << kCode<D> << " from " << kCode<A> << ", " << kCode<B> << " at " << i;
                ASSERT_TRUE(bufferD.GuardsIntact());
            });
        });
    });
    int32_t inPlace[] = {5, -3, 10};
    int32_t other[] = {1, 4, 10};
    TypedSpan({inPlace, DT_Int32}, {inPlace, DT_Int32}, {other, DT_Int32}, 3);
    EXPECT_EQ(std::vector<int32_t>(inPlace, inPlace + 3), (std::vector<int32_t>{4, 7, 0}));
}

TEST(TypedOps, SpanIntoSeparateBufferOfEveryType) {
    int16_t a[] = {5, -7, 32767, -32768, 0};
    uint32_t b[] = {3, 7, 0, 1, 4294967295u};
    int16_t sa[] = {5, -7, 32767, -32768, 0};
    int16_t sb[] = {3, 7, -32768, 32767, -1};
    double d[5];
    TypedSpan({d, DT_Double}, {sa, DT_Int16}, {sb, DT_Int16}, 5); // int arithmetic
    EXPECT_EQ(std::vector<double>(d, d + 5), (std::vector<double>{2, 14, 65535, 65535, 1}));
    // int16 beside uint32 subtracts in unsigned 32 bits: the wrapped value
    // is its own absolute value.
    TypedSpan({d, DT_Double}, {a, DT_Int16}, {b, DT_UInt32}, 5);
    EXPECT_EQ(std::vector<double>(d, d + 5), (std::vector<double>{4294967294.0, 14, 4294934529.0, 32769, 4294967295.0}));
    uint8_t small[5];
    float fa[] = {1.5f, -2.25f, 0, 1e10f, std::nanf("")};
    float fb[] = {-1.5f, 2.0f, -300.7f, 0, 1};
    TypedSpan({small, DT_UInt8}, {fa, DT_Float}, {fb, DT_Float}, 5);
    EXPECT_EQ(std::vector<uint8_t>(small, small + 5), (std::vector<uint8_t>{3, 4, 44, 0, 0}));
}

TEST(TypedOps, CommonTypeRulesByExample) {
    int32_t a[] = {-1, 5, 100, INT32_MAX};
    uint32_t b[] = {1, 5, 200, 1};
    TypedMin({a, DT_Int32}, {b, DT_UInt32}, 4); // -1 compares as 4294967295
    EXPECT_EQ(std::vector<int32_t>(a, a + 4), (std::vector<int32_t>{1, 5, 100, 1}));

    int8_t c[] = {100, -100, 1};
    int8_t e[] = {100, -100, -2};
    TypedSum({c, DT_Int8}, {e, DT_Int8}, 3); // wraps to 8 bits
    EXPECT_EQ(std::vector<int8_t>(c, c + 3), (std::vector<int8_t>{-56, 56, -1}));

    int32_t big[] = {INT32_MAX, INT32_MIN};
    int32_t one[] = {1, -1};
    TypedSum({big, DT_Int32}, {one, DT_Int32}, 2);
    EXPECT_EQ(big[0], INT32_MIN);
    EXPECT_EQ(big[1], INT32_MAX);

    uint8_t pixels[] = {250, 10, 0};
    float offsets[] = {10.5f, -11.75f, -0.5f};
    TypedSum({pixels, DT_UInt8}, {offsets, DT_Float}, 3); // float sum, truncated, wrapped
    EXPECT_EQ(std::vector<uint8_t>(pixels, pixels + 3), (std::vector<uint8_t>{4, 255, 0}));

    double x[] = {1.0, 2.0, std::nan(""), 0.0};
    double y[] = {std::nan(""), 2.0, 5.0, -0.0};
    TypedMax({x, DT_Double}, {y, DT_Double}, 4); // ties and NaN take b
    EXPECT_TRUE(std::isnan(x[0]));
    EXPECT_EQ(x[2], 5.0);
    EXPECT_TRUE(std::signbit(x[3]));
}

TEST(TypedOps, SumInPlaceDoubles) {
    std::vector<int16_t> values = {1, -2, 300, 16384, -16385, 7, 9};
    TypedSum({values.data(), DT_Int16}, {values.data(), DT_Int16}, 7);
    EXPECT_EQ(values, (std::vector<int16_t>{2, -4, 600, -32768, 32766, 14, 18}));
}

TEST(TypedOps, DivideEveryTypeAndDivisor) {
    auto check = [](auto divisor) {
        using T = decltype(divisor);
        ForEachType([&](auto aTag) {
            using A = typename decltype(aTag)::type;
            using C = Common<A, T>;
            size_t const n = 29;
            std::vector<A> a = Repeated<A>(n);
            COddBuffer buffer(n * sizeof(A));
            buffer.Fill(a);
            TypedDiv(buffer.Typed<A>(), divisor, uint32_t(n));
            std::vector<A> got = buffer.Read<A>(n);
            for (size_t i = 0; i < n; ++i) {
                A expected = a[i];
                if constexpr (std::is_integral_v<C>) {
                    if (C(divisor) == C(-1) && std::is_signed_v<C>)
                        expected = static_cast<A>(static_cast<C>(uint64_t(0) - uint64_t(C(a[i]))));
                    else if (C(divisor) != 0)
                        expected = static_cast<A>(C(a[i]) / C(divisor));
                } else {
                    expected = ReferenceCast<A>(C(a[i]) / C(divisor));
                }
                ASSERT_TRUE(Same(got[i], expected)) << kCode<A> << " by " << double(divisor) << " at " << i;
            }
            ASSERT_TRUE(buffer.GuardsIntact());
        });
    };
    for (int v : {-1, 0, 1, 3, -7})
        check(int8_t(v)), check(int16_t(v)), check(int32_t(v)), check(int64_t(v));
    for (unsigned v : {0u, 2u, 255u})
        check(uint8_t(v)), check(uint16_t(v)), check(uint32_t(v));
    for (double v : {2.5, -0.5, 0.0, 1e-300})
        check(float(v)), check(double(v));
}

TEST(TypedOps, DivideByExample) {
    int32_t a[] = {7, -7, INT32_MIN};
    TypedDiv({a, DT_Int32}, int32_t(0), 3); // integer division by zero leaves the buffer
    EXPECT_EQ(std::vector<int32_t>(a, a + 3), (std::vector<int32_t>{7, -7, INT32_MIN}));
    TypedDiv({a, DT_Int32}, int32_t(-1), 3); // the most negative value wraps to itself
    EXPECT_EQ(std::vector<int32_t>(a, a + 3), (std::vector<int32_t>{-7, 7, INT32_MIN}));
    TypedDiv({a, DT_Int32}, int32_t(2), 3); // truncation toward zero
    EXPECT_EQ(std::vector<int32_t>(a, a + 3), (std::vector<int32_t>{-3, 3, -1073741824}));

    int16_t s[] = {-6, 6};
    TypedDiv({s, DT_Int16}, uint32_t(2), 2); // unsigned 32-bit division, then wrapped
    EXPECT_EQ(s[0], -3);
    EXPECT_EQ(s[1], 3);

    uint8_t p[] = {200, 5};
    TypedDiv({p, DT_UInt8}, 2.5, 2);
    EXPECT_EQ(p[0], 80);
    EXPECT_EQ(p[1], 2);
    TypedDiv({p, DT_UInt8}, 0.0, 2); // floating point: inf, then the rule gives 0
    EXPECT_EQ(p[0], 0);
}

TEST(TypedOps, TypesWithoutArithmeticDoNothing) {
    int32_t a[3] = {1, 2, 3}, b[3] = {4, 5, 6}, d[3] = {7, 8, 9};
    for (int bad : {7, 10, 11, 12, -3}) {
        EDataType t = EDataType(bad);
        TypedMin({a, t}, {b, DT_Int32}, 3);
        TypedMax({a, DT_Int32}, {b, t}, 3);
        TypedSum({a, t}, {b, t}, 3);
        TypedSpan({d, t}, {a, DT_Int32}, {b, DT_Int32}, 3);
        TypedSpan({d, DT_Int32}, {a, t}, {b, DT_Int32}, 3);
        TypedSpan({d, DT_Int32}, {a, DT_Int32}, {b, t}, 3);
        TypedDiv({a, t}, 2.0, 3);
        int32_t lo = -5, hi = -6;
        MinMax({a, t}, 3, lo, hi);
        EXPECT_EQ(lo, -5);
        EXPECT_EQ(hi, -6);
    }
    EXPECT_EQ(std::vector<int32_t>(a, a + 3), (std::vector<int32_t>{1, 2, 3}));
    EXPECT_EQ(std::vector<int32_t>(d, d + 3), (std::vector<int32_t>{7, 8, 9}));
}

TEST(TypedOps, ZeroElementsTouchNothing) {
    ForEachType([](auto tag) {
        using T = typename decltype(tag)::type;
        STypedData none(nullptr, kCode<T>);
        ConvertArray(none, none, 0);
        ConvertArray(none, STypedData(nullptr, DT_Double), 0);
        TypedMin(none, none, 0);
        TypedMax(none, none, 0);
        TypedSum(none, none, 0);
        TypedSpan(none, none, none, 0);
        TypedDiv(none, 3, 0);
        TypedDiv(none, 0.5, 0);
        double lo = 1, hi = 2;
        MinMax(none, 0, lo, hi);
        EXPECT_EQ(lo, 1);
        EXPECT_EQ(hi, 2);
    });
}

TEST(MinMax, ExtremesInTheRequestedType) {
    uint16_t frame[] = {300, 7, 65535, 1000, 7};
    uint16_t lo16 = 1, hi16 = 1;
    MinMax({frame, DT_UInt16}, 0, lo16, hi16); // nothing written
    EXPECT_EQ(lo16, 1);
    EXPECT_EQ(hi16, 1);
    MinMax({frame + 1, DT_UInt16}, 4, lo16, hi16);
    EXPECT_EQ(lo16, 7);
    EXPECT_EQ(hi16, 65535);

    uint8_t lo8, hi8;
    MinMax({frame, DT_UInt16}, 5, lo8, hi8); // converted to uint8 first: 44, 7, 255, 232, 7
    EXPECT_EQ(lo8, 7);
    EXPECT_EQ(hi8, 255);
    int16_t loS, hiS;
    MinMax({frame, DT_UInt16}, 5, loS, hiS); // 65535 is -1 in int16
    EXPECT_EQ(loS, -1);
    EXPECT_EQ(hiS, 1000);

    double values[] = {std::nan(""), 1.0, -2.0};
    double lo, hi;
    MinMax({values, DT_Double}, 3, lo, hi); // a NaN start stays
    EXPECT_TRUE(std::isnan(lo) && std::isnan(hi));
    MinMax({values + 1, DT_Double}, 2, lo, hi);
    EXPECT_EQ(lo, -2.0);
    EXPECT_EQ(hi, 1.0);

    float f[] = {2.5f, -1e10f, 3.9f};
    int64_t lo64, hi64;
    MinMax({f, DT_Float}, 3, lo64, hi64);
    EXPECT_EQ(lo64, -10000000000);
    EXPECT_EQ(hi64, 3);

    // Every element type, every result type: odd address and length.
    ForEachType([](auto aTag) {
        using A = typename decltype(aTag)::type;
        std::vector<A> a = Repeated<A>(41);
        COddBuffer buffer(a.size() * sizeof(A));
        buffer.Fill(a);
        auto check = [&](auto resultTag) {
            using T = typename decltype(resultTag)::type;
            T expectLo = ReferenceCast<T>(a[0]), expectHi = expectLo;
            for (A v : a) {
                T t = ReferenceCast<T>(v);
                if (t < expectLo) expectLo = t;
                if (t > expectHi) expectHi = t;
            }
            T gotLo{}, gotHi{};
            MinMax(buffer.Typed<A>(), uint32_t(a.size()), gotLo, gotHi);
            EXPECT_TRUE(Same(gotLo, expectLo) && Same(gotHi, expectHi)) << kCode<A> << " as " << kCode<T>;
        };
        check(Tag<uint8_t>{}), check(Tag<int16_t>{}), check(Tag<uint16_t>{}), check(Tag<int32_t>{});
        check(Tag<uint32_t>{}), check(Tag<int64_t>{}), check(Tag<float>{}), check(Tag<double>{});
    });
}

} // namespace
} // namespace qv
