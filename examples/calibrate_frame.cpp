// Builds a radiometric calibration in memory from black-body points of a
// simulated camera, then turns a small frame of raw counts into degrees
// Celsius through the page's two polynomials.
#include <qv/qv.h>

#include <cmath>
#include <cstdio>

namespace {

// The simulated camera: counts grow linearly with in-band radiance.
double CameraCounts(double radiance) {
    return 1200.0 + 2.5e6 * radiance;
}

} // namespace

int main() {
    qv::CRCalFile cal;
    cal.SetSpectralResponseTophat(3.0, 5.0, 0.01); // a flat mid-wave band, microns
    if (cal.Pages.Add() < 0) return 1;
    qv::CCalPage page = cal.Pages[0];
    page.Lookup.setStart(15); // the temperatures the camera will see, 0.5 C apart
    page.Lookup.setEnd(65);
    page.Lookup.setDelta(0.5);
    page.setTempPolyOrder(6);
    for (double celsius = 10; celsius <= 70; celsius += 5)
        page.Points.Add(celsius, 1.0, CameraCounts(cal.CalcRadiance(celsius, 1.0)), true);

    qv::TArray<double> toRadiance, toCelsius;
    if (!cal.GetCoefficients(0, toRadiance) || !cal.GetTempCoefficients(0, toCelsius)) {
        std::fprintf(stderr, "calibrate_frame: the page has no fit\n");
        return 1;
    }

    // A 4 x 3 frame of a warm spot over a cool background.
    double const frame[3][4] = {{CameraCounts(cal.CalcRadiance(20, 1)), CameraCounts(cal.CalcRadiance(25, 1)),
                                 CameraCounts(cal.CalcRadiance(25, 1)), CameraCounts(cal.CalcRadiance(20, 1))},
                                {CameraCounts(cal.CalcRadiance(25, 1)), CameraCounts(cal.CalcRadiance(60, 1)),
                                 CameraCounts(cal.CalcRadiance(62, 1)), CameraCounts(cal.CalcRadiance(25, 1))},
                                {CameraCounts(cal.CalcRadiance(20, 1)), CameraCounts(cal.CalcRadiance(25, 1)),
                                 CameraCounts(cal.CalcRadiance(25, 1)), CameraCounts(cal.CalcRadiance(20, 1))}};
    double worst = 0;
    double const truth[3][4] = {{20, 25, 25, 20}, {25, 60, 62, 25}, {20, 25, 25, 20}};
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            double radiance = qv::PolyValue(std::round(frame[row][column]), toRadiance);
            double celsius = qv::PolyValue(radiance, toCelsius);
            worst = std::fmax(worst, std::fabs(celsius - truth[row][column]));
            std::printf("%7.2f", celsius);
        }
        std::printf("\n");
    }
    std::printf("largest error %.3f C\n", worst);
    return worst < 0.1 ? 0 : 1;
}
