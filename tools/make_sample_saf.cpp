// Writes the sample SAF file of the repository (data/sample.saf): a small
// header of thermal-camera tags and four synthetic 64 x 48 frames of 16-bit
// counts, a warm disc drifting over a gradient. The output depends on nothing
// but this source, so the file can be made again byte for byte.
//
// usage: make_sample_saf PATH
#include <cstdint>
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
        {u"Width", u"64"},
        {u"Height", u"48"},
        {u"PixelType", u"UI16"},
        {u"BitDepth", u"14"},
        {u"Frames", u"4"},
        {u"FrameRate", u"30"},
        {u"IntegrationTime", u"1.200000e-003"},
        {u"Description", u"warm disc drifting over a gradient"},
    };
    for (auto const &tag : tags)
        if (!saf.AddTag(tag[0], tag[1])) return false;
    return true;
}

// Counts of one frame: a gradient of 12 per column and 8 per row from 7000,
// and a disc of radius 6 that is 2500 counts warmer, 10 columns further on
// in each frame. Everything stays below 14 bits.
std::vector<uint16_t> MakeFrame(int frame) {
    std::vector<uint16_t> counts(size_t(kWidth) * kHeight);
    int const cx = 16 + 10 * frame, cy = 24;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            int value = 7000 + 12 * x + 8 * y;
            if ((x - cx) * (x - cx) + (y - cy) * (y - cy) < 36) value += 2500;
            counts[size_t(y) * kWidth + x] = uint16_t(value);
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
        if (!file.WriteArray(counts.data(), uint32_t(counts.size()), sizeof(uint16_t))) {
            std::fprintf(stderr, "make_sample_saf: cannot write frame %d to %s\n", frame, argv[1]);
            return 1;
        }
    }
    std::printf("%s: header %u bytes, %d frames of %d x %d, %lld bytes in all\n", argv[1], dataPosition, kFrames,
                kWidth, kHeight, static_cast<long long>(file.GetSize()));
    return 0;
}
