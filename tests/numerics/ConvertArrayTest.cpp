// ConvertArray over every type pair, odd lengths, odd addresses, in place;
// and element access through STypedData::VALUE.
#include <gtest/gtest.h>

#include <bit>

#include "TypedTestSupport.h"
#include "qv/core/CpuPath.h"
#include "qv/numerics/TypedArray.h"

namespace qv {
namespace {

using namespace typedtest;

TEST(ConvertArray, EveryPairMatchesElementRuleAtOddAddressesAndLengths) {
    ForEachType([](auto sourceTag) {
        using S = typename decltype(sourceTag)::type;
        ForEachType([](auto targetTag) {
            using D = typename decltype(targetTag)::type;
            for (size_t n : {size_t(0), size_t(1), size_t(15), size_t(16), size_t(17), size_t(67)}) {
                std::vector<S> source = Repeated<S>(n);
                COddBuffer in(n * sizeof(S)), out(n * sizeof(D));
                in.Fill(source);
                ConvertArray(out.Typed<D>(), in.Typed<S>(), uint32_t(n));
                std::vector<D> got = out.Read<D>(n);
                for (size_t i = 0; i < n; ++i)
                    ASSERT_TRUE(Same(got[i], ReferenceCast<D>(source[i])))
                        << "from " << kCode<S> << " to " << kCode<D> << " element " << i;
                ASSERT_TRUE(out.GuardsIntact() && in.GuardsIntact());
                std::vector<S> after = in.Read<S>(n);
                ASSERT_TRUE(n == 0 || std::memcmp(after.data(), source.data(), n * sizeof(S)) == 0);
            }
        });
    });
}

// Floating point to integers on every CPU path: blocks of plain values take
// the hardware's vector truncation; a block with one value it cannot take
// (NaN, 2^31 and above, ...) goes again exactly. Same bits on every path.
template <class S> std::vector<S> PlainWithSpecials(size_t n, size_t every) {
    std::vector<S> specials = Samples<S>(), out;
    for (size_t i = 0; i < n; ++i)
        out.push_back(every && i % every == every - 1 ? specials[(i / every) % specials.size()]
                                                      : S(double(int64_t(i * 2654435761u % 200000) - 100000) / 7));
    return out;
}

TEST(ConvertArray, TruncationIsTheSameOnEveryCpuPath) {
    for (int path = cpu::BestCpuPath(); path >= 0; --path) {
        cpu::LimitCpuPath(cpu::ECpuPath(path));
        ForEachType([path](auto sourceTag) {
            using S = typename decltype(sourceTag)::type;
            if constexpr (std::is_floating_point_v<S>) {
                ForEachType([path](auto targetTag) {
                    using D = typename decltype(targetTag)::type;
                    for (size_t n : {size_t(1), size_t(7), size_t(256), size_t(257), size_t(1031)})
                        for (size_t every : {size_t(0), size_t(300), size_t(5)}) {
                            std::vector<S> source = PlainWithSpecials<S>(n, every);
                            COddBuffer in(n * sizeof(S)), out(n * sizeof(D));
                            in.Fill(source);
                            ConvertArray(out.Typed<D>(), in.Typed<S>(), uint32_t(n));
                            std::vector<D> got = out.Read<D>(n);
                            for (size_t i = 0; i < n; ++i)
                                ASSERT_TRUE(Same(got[i], ReferenceCast<D>(source[i])))
                                    << "path " << path << " from " << kCode<S> << " to " << kCode<D> << " element " << i
                                    << " of " << n;
                            ASSERT_TRUE(out.GuardsIntact());
                        }
                });
            }
        });
        // In place, same width.
        std::vector<float> f = PlainWithSpecials<float>(700, 9);
        std::vector<float> const fBefore = f;
        ConvertArray({f.data(), DT_Int32}, {f.data(), DT_Float}, uint32_t(f.size()));
        for (size_t i = 0; i < f.size(); ++i) {
            int32_t got;
            std::memcpy(&got, &f[i], sizeof got);
            ASSERT_EQ(got, ReferenceCast<int32_t>(fBefore[i])) << "path " << path << " element " << i;
        }
        std::vector<double> d = PlainWithSpecials<double>(700, 9);
        std::vector<double> const dBefore = d;
        ConvertArray({d.data(), DT_Int64}, {d.data(), DT_Double}, uint32_t(d.size()));
        for (size_t i = 0; i < d.size(); ++i) {
            int64_t got;
            std::memcpy(&got, &d[i], sizeof got);
            ASSERT_EQ(got, ReferenceCast<int64_t>(dBefore[i])) << "path " << path << " element " << i;
        }
    }
    cpu::LimitCpuPath(cpu::BestCpuPath());
}

TEST(ConvertArray, ExactValues) {
    double d[] = {1.9, -1.0, 70000.0, -0.5, 3e9, std::nan(""), 1e19};
    uint8_t u8[7];
    uint16_t u16[7];
    int32_t i32[7];
    int64_t i64[7];
    ConvertArray({u8, DT_UInt8}, {d, DT_Double}, 7);
    ConvertArray({u16, DT_UInt16}, {d, DT_Double}, 7);
    ConvertArray({i32, DT_Int32}, {d, DT_Double}, 7);
    ConvertArray({i64, DT_Int64}, {d, DT_Double}, 7);
    EXPECT_EQ(std::vector<uint8_t>(u8, u8 + 7), (std::vector<uint8_t>{1, 255, 112, 0, 0, 0, 0}));
    EXPECT_EQ(std::vector<uint16_t>(u16, u16 + 7), (std::vector<uint16_t>{1, 65535, 4464, 0, 0x5E00, 0, 0}));
    EXPECT_EQ(std::vector<int32_t>(i32, i32 + 7), (std::vector<int32_t>{1, -1, 70000, 0, -1294967296, 0, 0}));
    EXPECT_EQ(std::vector<int64_t>(i64, i64 + 7),
              (std::vector<int64_t>{1, -1, 70000, 0, 3000000000, INT64_MIN, INT64_MIN}));

    int16_t s16[] = {-129, 300, -32768};
    int8_t s8[3];
    uint32_t u32[3];
    ConvertArray({s8, DT_Int8}, {s16, DT_Int16}, 3);
    ConvertArray({u32, DT_UInt32}, {s16, DT_Int16}, 3);
    EXPECT_EQ(std::vector<int8_t>(s8, s8 + 3), (std::vector<int8_t>{127, 44, 0}));
    EXPECT_EQ(std::vector<uint32_t>(u32, u32 + 3), (std::vector<uint32_t>{4294967167u, 300u, 4294934528u}));

    int64_t big[] = {9007199254740993, INT64_MIN};
    double asDouble[2];
    float asFloat[2];
    ConvertArray({asDouble, DT_Double}, {big, DT_Int64}, 2);
    ConvertArray({asFloat, DT_Float}, {big, DT_Int64}, 2);
    EXPECT_EQ(asDouble[0], 9007199254740992.0);
    EXPECT_EQ(asDouble[1], -0x1p63);
    EXPECT_EQ(asFloat[0], 0x1p53f);
}

TEST(ConvertArray, InPlaceAndTypesWithoutArithmetic) {
    // Same pointer, same width: every element converted from its old value.
    std::vector<int32_t> words = Repeated<int32_t>(37);
    std::vector<int32_t> original = words;
    ConvertArray({words.data(), DT_Float}, {words.data(), DT_Int32}, 37);
    for (size_t i = 0; i < words.size(); ++i)
        EXPECT_EQ(std::bit_cast<float>(words[i]), float(original[i]));
    // Narrowing in place works as the plain loop would.
    std::vector<double> wide = {1.5, 2.5, 300.0, -1.0, 5.0};
    ConvertArray({wide.data(), DT_UInt16}, {wide.data(), DT_Double}, 5);
    uint16_t narrow[5];
    std::memcpy(narrow, wide.data(), sizeof narrow);
    EXPECT_EQ(std::vector<uint16_t>(narrow, narrow + 5), (std::vector<uint16_t>{1, 2, 300, 65535, 5}));

    // Partial overlap: unspecified values, but nothing outside the buffers is touched.
    COddBuffer shared(40 * sizeof(double));
    shared.Fill(Repeated<double>(40));
    ConvertArray(STypedData(static_cast<char *>(shared.Data()) + 3, DT_UInt16), shared.Typed<double>(), 30);
    ConvertArray(STypedData(static_cast<char *>(shared.Data()) + 80, DT_Int64), shared.Typed<uint16_t>(), 30);
    EXPECT_TRUE(shared.GuardsIntact());

    double untouched[3] = {1, 2, 3};
    int32_t source[3] = {7, 8, 9};
    for (int type : {7, 10, 11, -1, 12, 99}) {
        ConvertArray({untouched, EDataType(type)}, {source, DT_Int32}, 3);
        ConvertArray({untouched, DT_Double}, {source, EDataType(type)}, 3);
    }
    EXPECT_EQ(std::vector<double>(untouched, untouched + 3), (std::vector<double>{1, 2, 3}));
}

TEST(TypedValue, ReadsAndWritesInTheBufferType) {
    EXPECT_EQ(STypedData().Data, nullptr);
    EXPECT_EQ(STypedData().Type, DT_Unknown);

    uint16_t pixels[4] = {10, 20, 30, 40};
    STypedData data(pixels, DT_UInt16);
    EXPECT_EQ(double(data[2]), 30.0);
    data[1] = -1.0;
    data[3] = 70000.0;
    EXPECT_EQ(pixels[1], 65535);
    EXPECT_EQ(pixels[3], 4464);

    int64_t exact[2] = {0, 0};
    STypedData wide(exact, DT_Int64);
    wide[0].SetInt64(9007199254740993);
    EXPECT_EQ(wide[0].GetInt64(), 9007199254740993);
    wide[1] = wide[0]; // copies the value, not the holder
    EXPECT_EQ(exact[1], 9007199254740993);

    double fractions[1] = {2.75};
    STypedData real(fractions, DT_Double);
    data[0] = real[0];
    EXPECT_EQ(pixels[0], 2);
    real[0] = data[2];
    EXPECT_EQ(fractions[0], 30.0);

    STypedData packed(pixels, DT_Packed);
    EXPECT_EQ(double(packed[0]), 0.0);
    packed[0] = 5.0;
    EXPECT_EQ(pixels[0], 2);

    EXPECT_EQ(DataTypeSize(DT_Int8), 1);
    EXPECT_EQ(DataTypeSize(DT_UInt32), 4);
    EXPECT_EQ(DataTypeSize(DT_Int64), 8);
    EXPECT_EQ(DataTypeSize(DT_Float), 4);
    EXPECT_EQ(DataTypeSize(EDataType(7)), 0);
    EXPECT_EQ(DataTypeSize(DT_Packed), 0);
}

} // namespace
} // namespace qv
