// Writes the sample SAF file of the repository (data/sample.saf): a small
// image header (the tags CSAFFrames reads) and four synthetic 64 x 48 frames
// of 16-bit counts, low byte first: a warm disc drifting over a gradient of
// temperatures, turned into counts with the sample calibration's page 0
// (data/cal_points.csv). The output depends on nothing
// but this source, so the file can be made again byte for byte.
//
// usage: make_sample_saf PATH
#include <cmath>
#include <cstdint>
#include <iterator>
#include <cstdio>
#include <vector>

#include "qv/core/String.h"
#include "qv/files/File.h"
#include "qv/files/OpenFlags.h"
#include "qv/formats/tagged/SAFFile.h"

namespace {

constexpr int kWidth = 64;
constexpr int kHeight = 48;
constexpr int kFrames = 4;

// Create or truncate, write only.
constexpr uint32_t kCreateFlags = qv::kOpenCreateAlways | qv::kOpenWrite;

bool AddSampleTags(qv::CSAFFile &saf) {
    saf.New(false);
    char16_t const *const tags[][2] = {
        {u"Camera", u"qv synthetic camera"},
        {u"SerialNumber", u"SIM-0001"},
        {u"KeyWrd", u"IMG"},
        {u"Multi", u"NoHeaders"},
        {u"BytOrd", u"LH"},
        {u"DaType", u"UInt16"},
        {u"ADBits", u"14"},
        {u"xPixls", u"64"},
        {u"yPixls", u"48"},
        {u"IMSize", u"6144"},
        {u"FrameRate", u"30"},
        {u"IntegrationTime", u"1.200000e-003"},
        {u"Description", u"warm disc drifting over a gradient"},
    };
    for (auto const &tag : tags)
        if (!saf.AddTag(tag[0], tag[1])) return false;
    return true;
}

// Page 0 of data/cal_points.csv: counts of the black bodies (emissivity 1) at
// each temperature in degrees Celsius, rising; a scene temperature takes the
// counts between.
constexpr double kPage0[][2] = {{-10.0, 2920.28}, {10.0, 4291.54}, {20.0, 5372.09}, {40.0, 8662.20}, {50.0, 11030.58}};

uint16_t CountsAt(double celsius) {
    size_t i = 1;
    while (i + 1 < std::size(kPage0) && celsius > kPage0[i][0]) ++i;
    double const t0 = kPage0[i - 1][0], c0 = kPage0[i - 1][1], t1 = kPage0[i][0], c1 = kPage0[i][1];
    return uint16_t(std::lround(c0 + (celsius - t0) * (c1 - c0) / (t1 - t0)));
}

// One frame: a gradient from 15 degrees at the top left to about 33 at the
// bottom right, and a 45-degree disc of radius 6, 10 columns further on in
// each frame. Every count stays below 14 bits.
std::vector<uint16_t> MakeFrame(int frame) {
    std::vector<uint16_t> counts(size_t(kWidth) * kHeight);
    int const cx = 16 + 10 * frame, cy = 24;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            bool const disc = (x - cx) * (x - cx) + (y - cy) * (y - cy) < 36;
            double const celsius = disc ? 45.0 : 15.0 + 0.2 * x + 0.1 * y;
            counts[size_t(y) * kWidth + x] = CountsAt(celsius);
        }
    return counts;
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_sample_saf PATH\n");
        return 2;
    }
    qv::CSAFFile saf;
    if (!AddSampleTags(saf)) {
        std::fprintf(stderr, "make_sample_saf: a sample tag was refused\n");
        return 1;
    }
    qv::CFile file;
    if (!file.Open(qv::CString(argv[1]).GetUTF16(), kCreateFlags)) {
        std::fprintf(stderr, "make_sample_saf: cannot create %s\n", argv[1]);
        return 1;
    }
    uint32_t dataPosition = 0;
    if (!saf.SaveTo(&file, dataPosition, true)) {
        std::fprintf(stderr, "make_sample_saf: cannot write the header of %s\n", argv[1]);
        return 1;
    }
    for (int frame = 0; frame < kFrames; ++frame) {
        std::vector<uint16_t> counts = MakeFrame(frame);
        std::vector<uint8_t> bytes; // "LH": low byte first, whatever the host
        for (uint16_t count : counts) bytes.insert(bytes.end(), {uint8_t(count), uint8_t(count >> 8)});
        if (file.Write(bytes.data(), uint32_t(bytes.size())) != bytes.size()) {
            std::fprintf(stderr, "make_sample_saf: cannot write frame %d to %s\n", frame, argv[1]);
            return 1;
        }
    }
    std::printf("%s: header %u bytes, %d frames of %d x %d, %lld bytes in all\n", argv[1], dataPosition, kFrames,
                kWidth, kHeight, static_cast<long long>(file.GetSize()));
    return 0;
}
