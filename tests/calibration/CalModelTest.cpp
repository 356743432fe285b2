// The calibration model: defaults, pages, points and their order, façades on
// bad indices, copies, extraction, merging, presets, tags and backgrounds.
#include <vector>

#include "CalTestSupport.h"

using namespace qv;

namespace {

struct ReorderCounter {
    std::vector<int> pages;
    void OnReordered(void *, int page) { pages.push_back(page); }
};

TEST(CalModel, DefaultsAndOrders) {
    CRCalFile cal;
    EXPECT_EQ(cal.FileRevision, 7);
    EXPECT_TRUE(cal.LookupUpdates);
    EXPECT_FALSE(cal.UseTophat);
    EXPECT_FALSE(cal.UseResponseFile);
    EXPECT_EQ(cal.ResponseStatus, RS_NotLoaded);
    EXPECT_EQ(cal.ModtranStatus, RS_NotLoaded);
    EXPECT_EQ(cal.TophatStart, 3.0);
    EXPECT_EQ(cal.TophatEnd, 5.0);
    EXPECT_EQ(cal.TophatDelta, 0.001);
    EXPECT_EQ(cal.Range, 1.0);
    EXPECT_EQ(cal.SpectralResponse.getFile(), nullptr);
    EXPECT_EQ(cal.Modtran.getFile(), nullptr);
    EXPECT_EQ(cal.Pages.getCount(), 0);
    // No response curve yet: nothing is integrated.
    EXPECT_EQ(cal.CalcRadiance(100, 1.0), 0.0);

    EXPECT_EQ(CRCalFile::GetNumCoeffsForOrder(0), 0);
    EXPECT_EQ(CRCalFile::GetNumCoeffsForOrder(-1), 2);
    EXPECT_EQ(CRCalFile::GetNumCoeffsForOrder(-2), 2);
    EXPECT_EQ(CRCalFile::GetNumCoeffsForOrder(-3), 0);
    EXPECT_EQ(CRCalFile::GetNumCoeffsForOrder(4), 5);

    CRCalFile::CAL_PAGE page;
    EXPECT_EQ(page.PolyOrder, 1);
    EXPECT_EQ(page.TempPolyOrder, 6);
    EXPECT_EQ(page.LookupEnd, 100.0);
    EXPECT_TRUE(page.RangeAuto);
    CRCalFile::CAL_POINT point;
    EXPECT_EQ(point.Emissivity, 1.0);
    EXPECT_TRUE(point.AuxFlag);
    EXPECT_FALSE(point.Enabled);
}

TEST(CalModel, AtMostFourPages) {
    CRCalFile cal;
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(cal.Pages.Add(), i);
    EXPECT_EQ(cal.Pages.Add(), -1);
    EXPECT_EQ(cal.Pages.getCount(), 4);
    EXPECT_FALSE(cal.Pages.Remove(4));
    EXPECT_FALSE(cal.Pages.Remove(-1));
    EXPECT_TRUE(cal.Pages.Remove(1));
    EXPECT_EQ(cal.Pages.getCount(), 3);
    EXPECT_FALSE(cal.Pages[3].getExists());
    EXPECT_TRUE(cal.Pages[2].getExists());
}

TEST(CalModel, PointsKeepTemperatureOrder) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    int page = cal.Pages.Add();
    ReorderCounter counter;
    cal.PointsReordered.AddHandlerEx(&counter, &ReorderCounter::OnReordered);
    CCalPoints points = cal.Pages[page].Points;
    EXPECT_EQ(points.Add(10, 1, 100, true), 0);
    EXPECT_EQ(points.Add(30, 1, 300, true), 1);
    EXPECT_TRUE(counter.pages.empty());
    EXPECT_EQ(points.Add(20, 1, 200, true), 1);
    ASSERT_EQ(counter.pages.size(), 1u);
    EXPECT_EQ(counter.pages[0], page);
    // Equal temperatures keep their order: a new point goes after them.
    EXPECT_EQ(points.Add(20, 1, 201, true), 2);
    EXPECT_EQ(counter.pages.size(), 2u);
    EXPECT_EQ(points.Add(30, 1, 301, true), 4); // already in place: no event
    EXPECT_EQ(counter.pages.size(), 2u);
    EXPECT_TRUE(points.Remove(4));
    EXPECT_EQ(points[1].getMeasurement(), 200);
    EXPECT_EQ(points[2].getMeasurement(), 201);
    // A temperature change re-sorts: the point at index 0 moves to the end.
    points[0].setTemperature(40);
    EXPECT_EQ(counter.pages.size(), 3u);
    EXPECT_EQ(points[3].getTemperature(), 40);
    EXPECT_EQ(points[3].getMeasurement(), 100);
    EXPECT_EQ(points[0].getMeasurement(), 200);
    EXPECT_GT(points[3].getRadiance(), points[2].getRadiance());
    EXPECT_EQ(points.getNumEnabled(), 4);
}

TEST(CalModel, AddLeavesTheRangeAlone) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    int page = cal.Pages.Add();
    CCalPage p = cal.Pages[page];
    p.Points.Add(10, 1, 100, true);
    p.Points.Add(30, 1, 300, true);
    EXPECT_EQ(p.Range.getMinCounts(), 0);
    EXPECT_EQ(p.Range.getMaxCounts(), 0);
    p.Points[0].setEnabled(true);
    EXPECT_EQ(p.Range.getMinCounts(), 100);
    EXPECT_EQ(p.Range.getMaxCounts(), 300);
    EXPECT_EQ(p.Range.getMaxTemperature(), 30);
    p.Points.Add(50, 1, 500, true);
    EXPECT_EQ(p.Range.getMaxCounts(), 300);
    EXPECT_EQ(p.Range.setAuto(true), true);
    EXPECT_EQ(p.Range.getMaxCounts(), 500);

    // With automatic mode on, the setters return the argument and store nothing.
    EXPECT_EQ(p.Range.setMaxTemperature(50.5), 50.5);
    EXPECT_EQ(p.Range.getMaxTemperature(), 50);
    p.Range.setAuto(false);
    EXPECT_EQ(p.Range.setMaxTemperature(60), 60);
    EXPECT_EQ(p.Range.getMaxTemperature(), 60);
}

TEST(CalModel, OrdersAreClamped) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    int page = cal.Pages.Add();
    CCalPage p = cal.Pages[page];
    p.setPolyOrder(3);
    EXPECT_EQ(p.getPolyOrder(), 1); // no points: order 1
    for (double t : {10.0, 20.0, 30.0, 40.0})
        p.Points.Add(t, 1, t * 10, true);
    p.setPolyOrder(9);
    EXPECT_EQ(p.getPolyOrder(), 3);
    p.setPolyOrder(0);
    EXPECT_EQ(p.getPolyOrder(), 1);
    p.setTempPolyOrder(9);
    EXPECT_EQ(p.getTempPolyOrder(), 6);
    p.setTempPolyOrder(-2);
    EXPECT_EQ(p.getTempPolyOrder(), 1);

    p.setPolyOrder(3);
    EXPECT_TRUE(p.Points.Remove(0)); // three left: order down to count - 1
    EXPECT_EQ(p.getPolyOrder(), 2);
    EXPECT_TRUE(p.Points.Remove(7)); // past the end: nothing removed, still true
    EXPECT_EQ(p.Points.getCount(), 3);
    EXPECT_TRUE(p.Points.Remove(0)); // two left: order 1
    EXPECT_EQ(p.getPolyOrder(), 1);
}

TEST(CalModel, TemperatureRangeNeedsTwoPoints) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    CCalPage p = cal.Pages[cal.Pages.Add()];
    double lo = -1, hi = -1;
    EXPECT_FALSE(p.GetTemperatureRange(lo, hi));
    p.Points.Add(25, 1, 100, true);
    p.Points.Add(35, 1, 200, false);
    EXPECT_FALSE(p.GetTemperatureRange(lo, hi));
    EXPECT_EQ(lo, 25);
    EXPECT_EQ(hi, 25);
    p.Points[1].setEnabled(true);
    EXPECT_TRUE(p.GetTemperatureRange(lo, hi));
    EXPECT_EQ(hi, 35);
    TArray<double> values;
    p.Points[0].setEnabled(false);
    p.getTemperature(values, false);
    ASSERT_EQ(values.GetSize(), 1u);
    EXPECT_EQ(values[0], 35);
    p.getMeasurement(values, true);
    ASSERT_EQ(values.GetSize(), 2u);
    EXPECT_EQ(values[0], 100);
    EXPECT_FALSE(cal.Pages[5].GetTemperatureRange(lo, hi));
}

TEST(CalModel, BadIndicesGiveDefaults) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    cal.Pages.Add();
    CCalPage bad = cal.Pages[3];
    EXPECT_EQ(bad.Coefficients.getR2(), -1.0);
    EXPECT_EQ(bad.TempCoefficients.getR2(), -1.0);
    EXPECT_TRUE(bad.Range.getAuto());
    EXPECT_EQ(bad.Range.setMinCounts(5), 0);
    EXPECT_EQ(bad.getPolyOrder(), 0);
    EXPECT_EQ(bad.Points.Add(10, 1, 1, true), -1);
    EXPECT_FALSE(bad.Points.Remove(0));
    EXPECT_EQ(bad.Points.getCount(), 0);
    bad.setPolyOrder(2);
    bad.Lookup.setStart(5);
    EXPECT_EQ(bad.Lookup.getStart(), 0);
    EXPECT_EQ(bad.Lookup.getCount(), 0);
    EXPECT_EQ(bad.Lookup.X[0], 0);

    CCalPoint point = cal.Pages[0].Points[7];
    EXPECT_EQ(point.getTemperature(), 0);
    EXPECT_FALSE(point.getEnabled());
    EXPECT_EQ(point.getReflectedRadianceType(), RRT_None);
    point.setTemperature(5);
    point.setEnabled(true);
    point.setMeasurement(3);
    EXPECT_EQ(cal.Pages[0].Points.getCount(), 0);
    EXPECT_EQ(cal.Pages[0].Points[-1].getRadiance(), 0);

    // Coefficient access: the page one past the end is grown, beyond it fails.
    double values[8] = {};
    int order = 0;
    EXPECT_FALSE(cal.GetCoefficients(-1, values));
    EXPECT_FALSE(cal.GetPolyOrder(2, order));
    EXPECT_EQ(cal.GetLookupSize(2), -1);
    EXPECT_EQ(cal.GetLookupSize(1), 0);
    EXPECT_EQ(cal.Pages.getCount(), 2);
    EXPECT_TRUE(cal.GetPolyOrder(2, order));
    EXPECT_EQ(order, 1);
    EXPECT_EQ(cal.Pages.getCount(), 3);
    EXPECT_EQ(cal.CalPages[2].LookupRadiance.GetSize(), 0u); // grown, never computed

    // Curve numbers that name nothing.
    CCurve none(cal, -9);
    EXPECT_EQ(none.getCount(), 0);
    EXPECT_EQ(none.Y[0], 0);
    EXPECT_EQ(cal.SpectralResponse.Curve.X[100000], 0);
}

TEST(CalModel, LookupSettersIgnoreTinyChanges) {
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    CCalPage p = cal.Pages[cal.Pages.Add()];
    EXPECT_EQ(p.Lookup.getCount(), 100);
    p.Lookup.setStart(1e-9);
    EXPECT_EQ(p.Lookup.getStart(), 0);
    EXPECT_EQ(p.Lookup.X[0], cal.CalcRadiance(0, 1.0));
    p.Lookup.setStart(20);
    EXPECT_EQ(p.Lookup.getStart(), 20);
    EXPECT_EQ(p.Lookup.Y[0], 20);
    EXPECT_EQ(p.Lookup.getCount(), 80);
    cal.LookupUpdates = false;
    p.Lookup.setEnd(50);
    EXPECT_EQ(p.Lookup.getEnd(), 50);
    EXPECT_EQ(p.Lookup.getCount(), 80); // not rebuilt
}

TEST(CalModel, CopyExtractMergePreset) {
    CRCalFile a;
    a.SetSpectralResponseTophat(3, 5, 0.01);
    caltest::SyntheticCamera camera;
    caltest::AddCameraPage(a, camera, {10, 20, 30});
    a.SetTag(u"Site", u"North");
    a.SetRange(250, true);
    a.LookupUpdates = false;

    CRCalFile copy(a);
    EXPECT_EQ(copy.FileRevision, 0);
    EXPECT_TRUE(copy.LookupUpdates); // not copied
    EXPECT_EQ(copy.Range, 250);
    EXPECT_EQ(copy.Pages[0].Points.getCount(), 3);
    copy.Pages[0].Points.Remove(0);
    EXPECT_EQ(a.Pages[0].Points.getCount(), 3); // deep
    CString site;
    EXPECT_TRUE(copy.GetTag(u"SITE", site));
    EXPECT_EQ(CString::Compare(site, u"North"), 0);

    copy = copy; // self-assignment keeps everything
    EXPECT_EQ(copy.Pages.getCount(), 1);

    caltest::AddCameraPage(a, camera, {40, 50});
    CRCalFile out;
    EXPECT_FALSE(a.Extract(out, 2));
    EXPECT_TRUE(a.Extract(out, 1));
    EXPECT_EQ(out.Pages.getCount(), 1);
    EXPECT_EQ(out.Pages[0].Points[0].getTemperature(), 40);
    EXPECT_EQ(a.Pages.getCount(), 2);

    CRCalFile b, c, d;
    b.SetRange(2, true);
    for (CRCalFile *f : {&b, &c, &d})
        caltest::AddCameraPage(*f, camera, {60});
    CRCalFile merged;
    EXPECT_TRUE(merged.Merge(a, b, c, d, 0));
    EXPECT_EQ(merged.Pages.getCount(), 4);
    EXPECT_EQ(merged.Range, 250); // the scalars of a
    EXPECT_EQ(merged.Pages[0].Points[0].getTemperature(), 10);
    EXPECT_EQ(merged.Pages[1].Points[0].getTemperature(), 60);
    EXPECT_TRUE(merged.Merge(a, b, c, d, 1));
    EXPECT_EQ(merged.Range, 2);

    EXPECT_TRUE(merged.RemoveAllExcept(1));
    EXPECT_EQ(merged.Pages.getCount(), 1);
    EXPECT_FALSE(merged.RemoveAllExcept(1));

    CRCalFile target;
    target.SetSpectralResponseTophat(3, 5, 0.01);
    EXPECT_FALSE(target.ImportPreset(a, 3, 0));
    EXPECT_FALSE(target.ImportPreset(a, 0, 4));
    EXPECT_TRUE(target.ImportPreset(a, 0, 1)); // grows to two pages
    EXPECT_EQ(target.Pages.getCount(), 2);
    EXPECT_EQ(target.Pages[1].Points.getCount(), 3);
    EXPECT_EQ(target.Pages[1].Lookup.getCount(), 100);
}

TEST(CalModel, TagsIgnoreCase) {
    CRCalFile cal;
    cal.Pages.Add();
    EXPECT_TRUE(cal.SetTag(u"Lens", u"25mm"));
    EXPECT_TRUE(cal.SetTag(u"LENS", u"50mm"));
    TArray<SNameValuePair> tags;
    EXPECT_TRUE(cal.GetTags(tags));
    ASSERT_EQ(tags.GetSize(), 1u);
    EXPECT_EQ(CString::Compare(tags[0].Value, u"50mm"), 0);
    EXPECT_EQ(CString::Compare(tags[0].Name, u"Lens"), 0);
    EXPECT_TRUE(cal.SetTag(0, u"Filter", u"ND1"));
    CString value;
    EXPECT_FALSE(cal.GetTag(u"Filter", value));
    EXPECT_TRUE(cal.GetTag(0, u"filter", value));
    EXPECT_FALSE(cal.SetTag(1, u"x", u"y"));
    EXPECT_FALSE(cal.RemoveTag(0, u"Lens"));
    EXPECT_TRUE(cal.RemoveTag(0, u"FILTER"));
    EXPECT_TRUE(cal.ClearTags());
    EXPECT_TRUE(cal.GetTags(tags));
    EXPECT_EQ(tags.GetSize(), 0u);
    EXPECT_FALSE(cal.ClearTags(3));
}

TEST(CalModel, Backgrounds) {
    CRCalFile cal;
    cal.Pages.Add();
    EXPECT_TRUE(cal.SetBackgroundValue(0, 7));
    double value = -1;
    EXPECT_TRUE(cal.GetBackgroundValueEx(0, value));
    EXPECT_EQ(value, 0); // not BG_Fixed
    cal.SetBackgroundType(0, BG_Fixed);
    EXPECT_TRUE(cal.GetBackgroundValueEx(0, value));
    EXPECT_EQ(value, 7);

    double first[6] = {1, 2, 3, 4, 5, 6}, second[6] = {6, 5, 4, 3, 2, 1}, out[6] = {};
    EXPECT_TRUE(cal.AddBackgroundFile(0, 3, 2, first));
    EXPECT_TRUE(cal.AddBackgroundFile(0, 3, 2, second));
    EXPECT_EQ(cal.CalPages[0].BackgroundFiles.GetSize(), 1u);
    EXPECT_TRUE(cal.GetBackgroundFile(0, 3, 2, out));
    EXPECT_EQ(out[0], 6);
    EXPECT_FALSE(cal.GetBackgroundFile(0, 2, 3, out));
    EXPECT_TRUE(cal.HasBackgroundFile(0, 3, 2));
    EXPECT_TRUE(cal.RemoveBackgroundFile(0, 9, 9));
    EXPECT_TRUE(cal.RemoveBackgroundFile(0, 3, 2));
    EXPECT_FALSE(cal.HasBackgroundFile(0, 3, 2));
    EXPECT_FALSE(cal.AddBackgroundFile(2, 3, 2, first));
    EXPECT_FALSE(cal.SetBackgroundType(-1, BG_None));
    EXPECT_TRUE(cal.ClearBackgroundFiles(0));
}

// A file may key an image 65536 x 65537: the product wraps to 65536 in 32
// bits, and a copy of that many values would pass for the whole image.
TEST(CalModel, ABackgroundKeyBeyond32BitsIsNoImageToCopy) {
    CRCalFile cal;
    cal.Pages.Add();
    CRCalFile::BACKGROUND_FILE huge;
    huge.Width = 65536;
    huge.Height = 65537;
    huge.Values.Add(5.0);
    ASSERT_TRUE(cal.CalPages[0].BackgroundFiles.Add(huge));
    EXPECT_TRUE(cal.HasBackgroundFile(0, 65536, 65537));
    std::vector<double> out(65536, -1.0);
    EXPECT_FALSE(cal.GetBackgroundFile(0, 65536, 65537, out.data()));
    EXPECT_EQ(out[0], -1.0);
    EXPECT_FALSE(cal.AddBackgroundFile(0, 65536, 65537, out.data()));
}

} // namespace

namespace {

TEST(CalModel, ReservedTagNames) {
    for (char16_t const *name : {u"hdsize", u"SltRng", u"TPFact", u"bgtype_3", u"PolyOrder_0", u"TempPolyOrder",
                                 u"Coeff4", u"coeff0_2", u"TempCoeff6_3"})
        EXPECT_TRUE(CRCalFile::IsReservedTagName(name)) << CString(name).GetUTF8();
    for (char16_t const *name : {u"Site", u"PolyOrder_4", u"Coeff12", u"Coeff", u"TempCoeff1_9", u""})
        EXPECT_FALSE(CRCalFile::IsReservedTagName(name)) << CString(name).GetUTF8();
    EXPECT_FALSE(CRCalFile::IsReservedTagName(nullptr));
}

} // namespace
