// CGZFile writing and reading a 640 x 512 16-bit image in memory, against the
// system zlib's deflate and inflate with the same settings on the same data
// (goal: at least 0.9 of zlib's speed both ways).
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <vector>

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

void BM_GZFile_Write(benchmark::State &state) {
    qv::CMemFile mem;
    mem.SetGrowthRate(65535);
    for (auto _ : state)
        WriteImage(mem);
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(Image().size()));
    state.counters["ratio"] = double(Image().size()) / double(mem.GetSize());
}
BENCHMARK(BM_GZFile_Write)->Unit(benchmark::kMillisecond);

void BM_Zlib_Deflate(benchmark::State &state) {
    auto const &z = bench::Zlib();
    auto const &img = Image();
    std::vector<uint8_t> out;
    out.reserve(img.size());
    uint8_t chunk[kChunk];
    for (auto _ : state) {
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
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(img.size()));
}
BENCHMARK(BM_Zlib_Deflate)->Unit(benchmark::kMillisecond);

qv::CMemFile &Compressed() {
    static qv::CMemFile mem;
    if (!mem.GetSize()) WriteImage(mem);
    return mem;
}

void BM_GZFile_Read(benchmark::State &state) {
    qv::CMemFile &mem = Compressed();
    std::vector<uint8_t> out(Image().size());
    for (auto _ : state) {
        qv::CGZFile gz(&mem, 0x10, false);
        for (size_t at = 0; at < out.size(); at += kPiece)
            gz.Read(out.data() + at, uint32_t(std::min<size_t>(kPiece, out.size() - at)));
        benchmark::DoNotOptimize(out.data());
    }
    if (out != Image()) state.SkipWithError("round trip differs");
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(out.size()));
}
BENCHMARK(BM_GZFile_Read)->Unit(benchmark::kMillisecond);

void BM_Zlib_Inflate(benchmark::State &state) {
    auto const &z = bench::Zlib();
    qv::CMemFile &mem = Compressed();
    uint8_t const *in = mem.GetData() + 14;
    size_t const inSize = size_t(mem.GetSize()) - 14;
    std::vector<uint8_t> out(Image().size());
    for (auto _ : state) {
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
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(out.size()));
}
BENCHMARK(BM_Zlib_Inflate)->Unit(benchmark::kMillisecond);

} // namespace
