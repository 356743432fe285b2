#include <gtest/gtest.h>

#include "qv/tables/PODUnits.h"

namespace {

TEST(PODUnits, LongAndShortNamesIgnoringCase) {
    EXPECT_EQ(qv::GetPODUnitIndex(u"meters"), 0);
    EXPECT_EQ(qv::GetPODUnitIndex(u"MM"), 1);
    EXPECT_EQ(qv::GetPODUnitIndex(u"Milimeters"), 1); // the stored spelling
    EXPECT_EQ(qv::GetPODUnitIndex(u"millimeters"), -1);
    EXPECT_EQ(qv::GetPODUnitIndex(u"hrs"), 11);
    EXPECT_EQ(qv::GetPODUnitIndex(u"umrad"), 14);
    EXPECT_EQ(qv::GetPODUnitIndex(u"cm"), 12);
    EXPECT_EQ(qv::GetPODUnitIndex(nullptr), -1);
}

TEST(PODUnits, FactorsAsStoredTablesUseThem) {
    int m = qv::GetPODUnitIndex(u"m"), in = qv::GetPODUnitIndex(u"in");
    EXPECT_DOUBLE_EQ(qv::GetPODUnitFactor(m, in), 39.408);
    EXPECT_DOUBLE_EQ(qv::GetPODUnitFactor(m, qv::GetPODUnitIndex(u"mi")), 0.000622);
    // Time rows run the other way round: ms to sec is 1000.
    EXPECT_DOUBLE_EQ(qv::GetPODUnitFactor(qv::GetPODUnitIndex(u"ms"), qv::GetPODUnitIndex(u"sec")), 1000);
    EXPECT_DOUBLE_EQ(qv::GetPODUnitFactor(qv::GetPODUnitIndex(u"deg"), qv::GetPODUnitIndex(u"rad")), 0.01745329);
    EXPECT_EQ(qv::GetPODUnitFactor(m, qv::GetPODUnitIndex(u"deg")), 0);
    EXPECT_EQ(qv::GetPODUnitFactor(-1, 0), 0);
    EXPECT_EQ(qv::GetPODUnitFactor(0, qv::kPODUnitCount), 0);
    for (int i = 0; i < qv::kPODUnitCount; ++i) EXPECT_EQ(qv::GetPODUnitFactor(i, i), 1) << i;
}

TEST(PODUnits, PeriodsOfWrappingUnits) {
    double p = 0;
    ASSERT_TRUE(qv::GetPODUnitPeriod(u"irig", p));
    EXPECT_EQ(p, 86400);
    ASSERT_TRUE(qv::GetPODUnitPeriod(u"Degrees", p));
    EXPECT_EQ(p, 360);
    ASSERT_TRUE(qv::GetPODUnitPeriod(u"microradians", p));
    EXPECT_DOUBLE_EQ(p, 6283185.307179);
    EXPECT_FALSE(qv::GetPODUnitPeriod(u"deg", p));
    EXPECT_FALSE(qv::GetPODUnitPeriod(nullptr, p));
}

} // namespace
