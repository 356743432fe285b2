// CGZFile writing and reading a 640 x 512 16-bit image in memory, each paired
// in one run with the system zlib's deflate and inflate with the same
// settings on the same data (goal: at least 0.9 of zlib's speed both ways).
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "PairedTiming.h"
#include "ZlibEntryPoints.h"
#include "qv/files/GZFile.h"
#include "qv/files/MemFile.h"

namespace {

constexpr uint32_t kPiece = 65536;
constexpr uint32_t kChunk = 16384;

std::vector<uint8_t> const &Image() {
    static std::vector<uint8_t> const image = [] {
        size_t const pixels = 640 * 512;
        std::vector<uint8_t> b(pixels * 2);
        uint32_t noise = 12345;
        for (size_t i = 0; i < pixels; ++i) {
            noise = noise * 1103515245u + 12345u;
            uint16_t v = uint16_t(2000 + (i % 640) * 3 + (i / 640) + ((noise >> 16) & 0x1F));
            b[2 * i] = uint8_t(v);
            b[2 * i + 1] = uint8_t(v >> 8);
        }
        return b;
    }();
    return image;
}

void WriteImage(qv::CMemFile &mem) {
    mem.Reset();
    qv::CGZFile gz(&mem, 0x20, false);
    auto const &img = Image();
    for (size_t at = 0; at < img.size(); at += kPiece)
        gz.Write(img.data() + at, uint32_t(std::min<size_t>(kPiece, img.size() - at)));
    gz.Close();
}

void ZlibDeflate(std::vector<uint8_t> &out) {
    auto const &z = bench::Zlib();
    auto const &img = Image();
    uint8_t chunk[kChunk];
    out.clear();
    z_stream s{};
    z.deflateInit2_(&s, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 15, 8, Z_DEFAULT_STRATEGY, ZLIB_VERSION, int(sizeof s));
    s.next_in = const_cast<uint8_t *>(img.data());
    s.avail_in = uInt(img.size());
    int status;
    do {
        s.next_out = chunk;
        s.avail_out = kChunk;
        status = z.deflate(&s, Z_FINISH);
        out.insert(out.end(), chunk, chunk + (kChunk - s.avail_out));
    } while (status == Z_OK);
    z.deflateEnd(&s);
    benchmark::DoNotOptimize(out.data());
}

void GZWriteVsDeflate(benchmark::State &state) {
    qv::CMemFile mem;
    mem.SetGrowthRate(65535);
    std::vector<uint8_t> out;
    out.reserve(Image().size());
    bench::RunPaired(
        state, {"CGZFile writing a 640x512 16-bit image in memory vs zlib deflate", 0.9}, int64_t(Image().size()),
        [&] { WriteImage(mem); }, [&] { ZlibDeflate(out); });
}

qv::CMemFile &Compressed() {
    static qv::CMemFile mem;
    if (!mem.GetSize()) WriteImage(mem);
    return mem;
}

void ZlibInflate(uint8_t const *in, size_t inSize, std::vector<uint8_t> &out) {
    auto const &z = bench::Zlib();
    z_stream s{};
    z.inflateInit2_(&s, 15, ZLIB_VERSION, int(sizeof s));
    s.next_out = out.data();
    s.avail_out = uInt(out.size());
    for (size_t at = 0; at < inSize; at += kChunk) {
        s.next_in = const_cast<uint8_t *>(in + at);
        s.avail_in = uInt(std::min<size_t>(kChunk, inSize - at));
        if (z.inflate(&s, Z_NO_FLUSH) != Z_OK) break;
    }
    z.inflateEnd(&s);
    benchmark::DoNotOptimize(out.data());
}

void GZReadVsInflate(benchmark::State &state) {
    qv::CMemFile &mem = Compressed();
    std::vector<uint8_t> out(Image().size()), reference(Image().size());
    // The deflate stream starts after CGZFile's 14-byte block header.
    uint8_t const *in = mem.GetData() + 14;
    size_t const inSize = size_t(mem.GetSize()) - 14;
    bench::RunPaired(
        state, {"CGZFile reading a 640x512 16-bit image in memory vs zlib inflate", 0.9}, int64_t(out.size()),
        [&] {
            qv::CGZFile gz(&mem, 0x10, false);
            for (size_t at = 0; at < out.size(); at += kPiece)
                gz.Read(out.data() + at, uint32_t(std::min<size_t>(kPiece, out.size() - at)));
            benchmark::DoNotOptimize(out.data());
        },
        [&] { ZlibInflate(in, inSize, reference); });
    if (out != Image()) state.SkipWithError("round trip differs");
}

} // namespace

BENCHMARK(GZWriteVsDeflate)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(GZReadVsInflate)->UseManualTime()->Unit(benchmark::kMillisecond);
