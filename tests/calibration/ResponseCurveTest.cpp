// Spectral responses from files and top hats, the band pass, the final axis,
// additional responses, the atmosphere and what bad tables do.
#include <cmath>

#include "CalTestSupport.h"

using namespace qv;

namespace {

double Gauss(double x) {
    return 2.0 * std::exp(-(x - 4) * (x - 4) / 0.5);
}

TEST(SpectralResponse, TophatAndFileAxes) {
    caltest::ScratchDir dir;
    CRCalFile cal;
    EXPECT_TRUE(cal.SetSpectralResponseTophat(3, 5, 0.001));
    EXPECT_EQ(cal.SpectralResponse.getType(), SRT_Tophat);
    EXPECT_EQ(cal.SpectralResponse.Curve.getCount(), 2000);
    EXPECT_EQ(cal.SpectralResponse.Curve.Y[1999], 1.0);
    EXPECT_EQ(cal.SpectralResponse.getBandpassLow(), 3.0);

    CString rows200 = dir.Write("r200.txt", caltest::XYRows(200, 3, 5, Gauss));
    EXPECT_TRUE(cal.SetSpectralResponseFile(rows200));
    EXPECT_EQ(cal.SpectralResponse.getType(), SRT_File);
    EXPECT_EQ(cal.SpectralResponse.getStatus(), RS_OK);
    EXPECT_EQ(cal.SpectralResponse.Curve.getCount(), 200);
    // Scaled to a peak of 1, band edges at samples above half of it.
    double peak = 0;
    for (uint32_t i = 0; i < cal.RawResponse.Y.GetSize(); ++i)
        peak = std::fmax(peak, cal.RawResponse.Y[i]);
    EXPECT_EQ(peak, 1.0);
    double lo = cal.SpectralResponse.getBandpassLow(), hi = cal.SpectralResponse.getBandpassHigh();
    EXPECT_GT(lo, 3.4);
    EXPECT_LT(lo, 3.45);
    EXPECT_NEAR(lo + hi, 8, 0.011);

    CString fine = dir.Write("fine.txt", caltest::XYRows(100000, 3, 5, Gauss));
    EXPECT_TRUE(cal.SetSpectralResponseFile(fine));
    // Step 0.00002: 100000 points spread evenly from 3 to 5.
    EXPECT_EQ(cal.SpectralResponse.Curve.getCount(), 100000);
    EXPECT_NEAR(cal.SpectralResponse.Curve.X[1] - cal.SpectralResponse.Curve.X[0], 2.0 / 99999, 1e-15);

    // Values that never rise above 0.5 after scaling: the whole table.
    CString flat = dir.Write("flat.txt", "3 0\n4 0\n5 0\n");
    cal.SetSpectralResponseFile(flat);
    cal.GetCalcBandpass(lo, hi);
    EXPECT_EQ(lo, 3);
    EXPECT_EQ(hi, 5);

    // Top-hat setters only store while a file is in use.
    EXPECT_TRUE(cal.SetSpectralResponseFile(rows200));
    cal.SpectralResponse.Tophat.setStart(4);
    EXPECT_EQ(cal.SpectralResponse.Tophat.getStart(), 4);
    EXPECT_EQ(cal.SpectralResponse.Curve.getCount(), 200);
    cal.SpectralResponse.setType(SRT_Tophat);
    EXPECT_EQ(cal.SpectralResponse.Curve.X[0], 4);
    cal.SpectralResponse.setType(SRT_File);
    EXPECT_EQ(cal.SpectralResponse.getType(), SRT_File);
}

TEST(SpectralResponse, BadFilesLeaveTheCalibrationUsable) {
    caltest::ScratchDir dir;
    CRCalFile cal;
    caltest::SyntheticCamera camera;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    caltest::AddCameraPage(cal, camera, {10, 30, 50});

    struct Case {
        char const *name;
        char const *text;
        EResponseStatus status;
    } cases[] = {
        {"empty.txt", "", RS_TooFewPoints},
        {"one.txt", "4.0 1.0\n", RS_TooFewPoints},
        {"junk.txt", "\x01\xff garbage\nnot numbers at all\n", RS_ReadError}, // two tokens read as 0 0
        {"jumbled.txt", "3 1\n5 1\n4 1\n", RS_ReadError},
        {"zero.txt", "3 0\n4 0\n5 0\n", RS_ReadError}, // no peak to scale to 1
        {"negative.txt", "3 -1\n4 1\n", RS_ReadError}, // no response is below 0
        {"nan.txt", "3 1\n4 nan\n5 1\n", RS_ReadError},
        {"header.txt", "wavelength,response\n3 1\n4 1\n", RS_ReadError}, // a row at 0 microns
        {"single.txt", "garbage\n3 1\n4 1\n", RS_TooFewPoints},          // one token ends the reading
    };
    for (Case const &c : cases) {
        CString path = dir.Write(c.name, c.text);
        cal.SetSpectralResponseFile(path);
        EXPECT_EQ(cal.SpectralResponse.getStatus(), c.status) << c.name;
    }
    EXPECT_FALSE(cal.SetSpectralResponseFile(dir.Path("missing.txt")));
    EXPECT_EQ(cal.SpectralResponse.getStatus(), RS_FileNotFound);
    EXPECT_EQ(cal.SpectralResponse.getType(), SRT_Tophat);
    EXPECT_EQ(cal.SpectralResponse.getBandpassLow(), 3);
    EXPECT_EQ(cal.SpectralResponse.getBandpassHigh(), 5);
    EXPECT_FALSE(cal.SetSpectralResponseFile(dir.Path("")));
    EXPECT_EQ(cal.SpectralResponse.getStatus(), RS_FileNotFound); // a directory is no file
    EXPECT_FALSE(cal.SetSpectralResponseFile(nullptr));

    // Falling back to the top hat keeps the pages computable.
    EXPECT_GT(cal.CalcRadiance(30, 1.0), 0);
    TArray<double> c;
    ASSERT_TRUE(cal.GetCoefficients(0, c));
    EXPECT_NEAR(c[1], 1 / camera.gain, 1e-12);

    // A table that falls is turned around: the same curve as the rising one.
    CString falling = dir.Write("falling.txt", "5 1\n4 0.5\n3 1\n");
    EXPECT_TRUE(cal.SetSpectralResponseFile(falling));
    EXPECT_EQ(cal.SpectralResponse.getStatus(), RS_OK);
    EXPECT_EQ(cal.RawResponse.X[0], 3);
    EXPECT_EQ(cal.RawResponse.Y[1], 0.5);
    double fromFalling = cal.CalcRadiance(30, 1.0);
    EXPECT_TRUE(cal.SetSpectralResponseFile(dir.Write("rising.txt", "3 1\n4 0.5\n5 1\n")));
    EXPECT_EQ(cal.CalcRadiance(30, 1.0), fromFalling);
    EXPECT_GT(fromFalling, 0);

    // getType with the file flag set but a failed load is the top hat.
    cal.UseResponseFile = true;
    cal.ResponseStatus = RS_ReadError;
    EXPECT_EQ(cal.SpectralResponse.getType(), SRT_Tophat);
}

TEST(SpectralResponse, AdditionalResponses) {
    caltest::ScratchDir dir;
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    double open = cal.CalcRadiance(50, 1.0);
    CString one = dir.Write("one.txt", "4 0.5\n");
    EXPECT_EQ(cal.AdditionalResponses.Add(one, true), RS_TooFewPoints);
    EXPECT_EQ(cal.AdditionalResponses.Add(dir.Path("none.txt"), true), RS_FileNotFound);
    EXPECT_EQ(cal.AdditionalResponses.getCount(), 0);

    // A filter of 0.5 over 3..4 um only: beyond its table it shuts light out.
    CString half = dir.Write("half.txt", "3 0.5\n4 0.5\n");
    EXPECT_EQ(cal.AdditionalResponses.Add(half, true), RS_OK);
    EXPECT_EQ(cal.AdditionalResponses.getCount(), 1);
    CAdditionalResponse filter = cal.AdditionalResponses[0];
    EXPECT_EQ(filter.Curve.getCount(), 200);
    EXPECT_EQ(filter.Curve.Y[0], 0.5); // not scaled
    EXPECT_EQ(filter.Curve.Y[199], 0);
    double filtered = cal.CalcRadiance(50, 1.0);
    EXPECT_LT(filtered, open / 2);
    filter.setEnabled(false);
    EXPECT_EQ(cal.CalcRadiance(50, 1.0), open);
    EXPECT_EQ(CString::Compare(filter.getFile(), half), 0);

    // Bad indices; the index equal to the count is reached (grown).
    CAdditionalResponse far = cal.AdditionalResponses[5];
    EXPECT_EQ(far.getStatus(), RS_FileNotFound);
    EXPECT_EQ(CString::Compare(far.getFile(), u""), 0);
    EXPECT_FALSE(far.getEnabled());
    EXPECT_FALSE(cal.AdditionalResponses.Remove(5));
    filter.setFile(dir.Path("gone.txt"));
    EXPECT_EQ(filter.getStatus(), RS_FileNotFound);
    EXPECT_TRUE(cal.AdditionalResponses.Remove(0));
    EXPECT_EQ(cal.AdditionalResponses.getCount(), 0);
}

std::string Table(int f0, int f1, int step, char const *values) {
    std::string table = "  freq  trans  rad\n";
    for (int f = f0; f <= f1; f += step)
        table += std::to_string(f) + " " + values + "\n";
    return table + "-9999.\n";
}

TEST(Atmosphere, EnableLogicAndStatus) {
    caltest::ScratchDir dir;
    CRCalFile cal;
    cal.SetSpectralResponseTophat(3, 5, 0.01);
    caltest::SyntheticCamera camera;
    int page = caltest::AddCameraPage(cal, camera, {10, 30, 50});
    double before = cal.Pages[page].Points[1].getRadiance();

    cal.Modtran.setFile(dir.Path("missing.table"));
    cal.Modtran.Transmission.setEnabled(true);
    EXPECT_FALSE(cal.Modtran.Transmission.getEnabled());
    EXPECT_EQ(cal.Modtran.getStatus(), RS_FileNotFound);
    EXPECT_EQ(cal.Pages[page].Points[1].getRadiance(), before);

    struct Case {
        char const *name;
        std::string text;
        EResponseStatus status;
    } cases[] = {
        {"empty.table", "", RS_TooFewPoints},
        {"nohead.table", "2000 0.5 0\n3000 0.5 0\n", RS_TooFewPoints},
        {"one.table", Table(2500, 2500, 10, "0.5 0"), RS_TooFewPoints},
        {"short.table", "freq\n2000 0.5 0\n2100 0.5\n-9999.\n", RS_ReadError},
        {"junk.table", "\xff\xfe\x01 FREQ\n", RS_TooFewPoints},
        // Cut short before its end line: the rows read would pass for the whole.
        {"cut.table", "freq\n2000 0.5 0\n2100 0.5 0\n", RS_ReadError},
        {"opaque.table", Table(2500, 2600, 10, "1.5 0"), RS_ReadError},   // a transmission above 1
        {"glowing.table", Table(2500, 2600, 10, "0.5 -1"), RS_ReadError}, // a negative path radiance
        {"zero.table", "freq\n0 0.5 0\n2100 0.5 0\n-9999.\n", RS_ReadError},
        {"jumbled.table", "freq\n2000 0.5 0\n2200 0.5 0\n2100 0.5 0\n-9999.\n", RS_ReadError},
    };
    for (Case const &c : cases) {
        cal.Modtran.setFile(dir.Write(c.name, c.text));
        EXPECT_EQ(cal.Modtran.getStatus(), c.status) << c.name;
        EXPECT_EQ(cal.Pages[page].Points[1].getRadiance(), before) << c.name; // ignored unless RS_OK
    }

    // 2500..3333 cm^-1 is 3..4 um: beyond 4 um the transmission is 0.
    cal.Modtran.setFile(dir.Write("near.table", Table(2500, 3340, 20, "1.0 0")));
    EXPECT_EQ(cal.Modtran.getStatus(), RS_OK);
    EXPECT_TRUE(cal.Modtran.Transmission.getEnabled());
    EXPECT_FALSE(cal.Modtran.PathRadiance.getEnabled());
    double through = cal.Pages[page].Points[1].getRadiance();
    EXPECT_LT(through, before);
    CRCalFile narrow;
    narrow.SetSpectralResponseTophat(3, 4, 0.01);
    EXPECT_NEAR(through, narrow.CalcRadiance(30, 1.0), 0.02 * through);
    EXPECT_EQ(cal.CalcSourceRadiance(30, 1.0), cal.CalcRadianceNoModtran(30, 1.0));

    // Both off: one more page update, no value changes.
    cal.Modtran.Transmission.setEnabled(false);
    EXPECT_EQ(cal.Pages[page].Points[1].getRadiance(), before);
    cal.Modtran.PathRadiance.setEnabled(false);
    EXPECT_EQ(cal.Pages[page].Points[1].getRadiance(), before);

    // A failed status switches the atmosphere off even with the flags on.
    cal.TransmissionEnabled = true;
    cal.ModtranStatus = RS_ReadError;
    EXPECT_EQ(cal.CalcRadiance(30, 1.0), before);
}

} // namespace

namespace {

TEST(SpectralResponse, HostileSpansAreRefused) {
    caltest::ScratchDir dir;
    CRCalFile cal;
    int page = cal.Pages.Add();
    cal.Pages[page].Points.Add(20, 1, 100, true);
    // Billions of points asked for: no curve, radiance 0, nothing allocated.
    EXPECT_TRUE(cal.SetSpectralResponseTophat(3, 5, 1e-12));
    EXPECT_EQ(cal.SpectralResponse.Curve.getCount(), 0);
    EXPECT_EQ(cal.CalcRadiance(20, 1), 0);
    EXPECT_TRUE(cal.SetSpectralResponseFile(dir.Write("wide.txt", "0.5 1\n1e9 1\n")));
    EXPECT_EQ(cal.SpectralResponse.Curve.getCount(), 0);
    EXPECT_EQ(cal.Pages[page].Points[0].getRadiance(), 0);
    EXPECT_TRUE(cal.SetSpectralResponseTophat(3, 5, 0.01));
    EXPECT_GT(cal.Pages[page].Points[0].getRadiance(), 0);
}

} // namespace
