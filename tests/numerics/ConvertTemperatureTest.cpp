// CMath::ConvertTemperature: all 4 x 4 scale pairs bit for bit, element
// types on both sides, same-scale and in-place calls, invalid scales.
#include <gtest/gtest.h>

#include "TypedTestSupport.h"
#include "qv/numerics/Math.h"

namespace qv {
namespace {

using namespace typedtest;

// Each formula with its order of operations, as stored results were made.
double Expected(double x, ETempType from, ETempType to) {
    double const table[4][4] = {
        {x, x * 1.8 + 32.0, x + 273.15, (x + 273.15) * 1.8},
        {(x - 32.0) / 1.8, x, (x + 459.67) / 1.8, x + 459.67},
        {x - 273.15, x * 1.8 - 459.67, x, x * 1.8},
        {x / 1.8 - 273.15, x - 459.67, x / 1.8, x},
    };
    return table[from][to];
}

ETempType const kScales[] = {TT_Celsius, TT_Fahrenheit, TT_Kelvin, TT_Rankine};

TEST(ConvertTemperature, EveryScalePairBitForBit) {
    std::vector<double> source = Repeated<double>(37);
    source[3] = 100.0; // a few ordinary temperatures beside the special values
    source[4] = -40.0;
    source[5] = 36.6;
    for (ETempType from : kScales)
        for (ETempType to : kScales) {
            std::vector<double> out(source.size());
            CMath::ConvertTemperature({out.data(), DT_Double}, {source.data(), DT_Double}, uint32_t(source.size()),
                                      from, to);
            for (size_t i = 0; i < source.size(); ++i)
                ASSERT_TRUE(Same(out[i], Expected(source[i], from, to))) << from << "->" << to << " of " << source[i];
        }
}

TEST(ConvertTemperature, KnownPoints) {
    double c[] = {100.0, 0.0, -40.0};
    double out[3];
    CMath::ConvertTemperature({out, DT_Double}, {c, DT_Double}, 3, TT_Celsius, TT_Fahrenheit);
    EXPECT_EQ(std::vector<double>(out, out + 3), (std::vector<double>{212.0, 32.0, -40.0}));
    CMath::ConvertTemperature({out, DT_Double}, {c, DT_Double}, 3, TT_Celsius, TT_Kelvin);
    EXPECT_EQ(out[1], 273.15);
    // Division by 1.8, not multiplication by 5/9: they differ in the last bit here.
    double f[] = {1.25};
    CMath::ConvertTemperature({out, DT_Double}, {f, DT_Double}, 1, TT_Fahrenheit, TT_Celsius);
    EXPECT_EQ(out[0], -17.083333333333332);
    EXPECT_NE(out[0], (1.25 - 32.0) * (5.0 / 9.0));
}

TEST(ConvertTemperature, ElementTypesOnBothSides) {
    // Kelvin counts in uint16 to Celsius in int16: double arithmetic, then truncation.
    uint16_t kelvin[] = {0, 273, 300, 1000, 65535};
    int16_t celsius[5];
    CMath::ConvertTemperature({celsius, DT_Int16}, {kelvin, DT_UInt16}, 5, TT_Kelvin, TT_Celsius);
    // 65535 - 273.15 = 65261.85 -> 65261, wrapped to int16 is -275.
    EXPECT_EQ(std::vector<int16_t>(celsius, celsius + 5), (std::vector<int16_t>{-273, 0, 26, 726, -275}));

    ForEachType([](auto sTag) {
        using S = typename decltype(sTag)::type;
        ForEachType([](auto dTag) {
            using D = typename decltype(dTag)::type;
            size_t const n = 21;
            std::vector<S> source = Repeated<S>(n);
            COddBuffer in(n * sizeof(S)), out(n * sizeof(D));
            in.Fill(source);
            CMath::ConvertTemperature(out.Typed<D>(), in.Typed<S>(), uint32_t(n), TT_Rankine, TT_Celsius);
            std::vector<D> got = out.Read<D>(n);
            for (size_t i = 0; i < n; ++i) {
                double x = static_cast<double>(source[i]);
                ASSERT_TRUE(Same(got[i], ReferenceCast<D>(x / 1.8 - 273.15))) << kCode<S> << "->" << kCode<D>;
            }
            ASSERT_TRUE(out.GuardsIntact());
        });
    });
}

TEST(ConvertTemperature, SameScaleInPlaceAndInvalidScales) {
    int16_t a[] = {1, -2, 3};
    // Same scale, same pointer: nothing, whatever the types say.
    CMath::ConvertTemperature({a, DT_UInt16}, {a, DT_Int16}, 3, TT_Kelvin, TT_Kelvin);
    EXPECT_EQ(std::vector<int16_t>(a, a + 3), (std::vector<int16_t>{1, -2, 3}));
    // Same scale, other buffer: a plain conversion.
    double d[3];
    CMath::ConvertTemperature({d, DT_Double}, {a, DT_Int16}, 3, TT_Rankine, TT_Rankine);
    EXPECT_EQ(std::vector<double>(d, d + 3), (std::vector<double>{1, -2, 3}));
    // Other scale, in place.
    float t[] = {0.0f, 100.0f, -273.15f};
    CMath::ConvertTemperature({t, DT_Float}, {t, DT_Float}, 3, TT_Celsius, TT_Kelvin);
    EXPECT_EQ(t[0], float(0.0 + 273.15));
    EXPECT_EQ(t[1], float(100.0 + 273.15));
    EXPECT_EQ(t[2], float(double(-273.15f) + 273.15));
    // Scales outside 0..3 and types without arithmetic do nothing.
    for (int bad : {-1, 4, 100}) {
        CMath::ConvertTemperature({d, DT_Double}, {a, DT_Int16}, 3, ETempType(bad), TT_Celsius);
        CMath::ConvertTemperature({d, DT_Double}, {a, DT_Int16}, 3, TT_Celsius, ETempType(bad));
        CMath::ConvertTemperature({d, DT_Double}, {a, DT_Int16}, 3, ETempType(bad), ETempType(bad));
    }
    CMath::ConvertTemperature({nullptr, DT_Double}, {nullptr, DT_Float}, 0, TT_Celsius, TT_Kelvin);
    CMath::ConvertTemperature({d, DT_Packed}, {a, DT_Int16}, 3, TT_Celsius, TT_Kelvin);
    CMath::ConvertTemperature({d, DT_Double}, {a, EDataType(7)}, 3, TT_Celsius, TT_Kelvin);
    EXPECT_EQ(std::vector<double>(d, d + 3), (std::vector<double>{1, -2, 3}));
}

} // namespace
} // namespace qv
