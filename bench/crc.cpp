// CRC kernels on 1 MiB: CRC-32 against the system zlib's crc32() (goal: at
// least equal), on a foreign polynomial for reference, and CRC-16 against a
// plain table a byte a step (goal: at least 3 times faster).
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <vector>

#include "ZlibEntryPoints.h"
#include "qv/files/CRC.h"

namespace {

constexpr size_t kSize = 1 << 20;

std::vector<uint8_t> const &Data() {
    static std::vector<uint8_t> const data = [] {
        std::vector<uint8_t> d(kSize);
        uint32_t x = 1;
        for (auto &b : d)
            b = uint8_t((x = x * 1664525u + 1013904223u) >> 24);
        return d;
    }();
    return data;
}

void BM_CRC32_qv(benchmark::State &state) {
    qv::InitCRC32Table(0x04C11DB7);
    for (auto _ : state)
        benchmark::DoNotOptimize(qv::CalcBlockCRC32(Data().data(), kSize));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kSize));
}
BENCHMARK(BM_CRC32_qv);

void BM_CRC32_zlib(benchmark::State &state) {
    auto crc32 = bench::Zlib().crc32;
    for (auto _ : state)
        benchmark::DoNotOptimize(crc32(0, Data().data(), kSize));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kSize));
}
BENCHMARK(BM_CRC32_zlib);

void BM_CRC32_qv_castagnoli(benchmark::State &state) {
    qv::InitCRC32Table(0x1EDC6F41);
    for (auto _ : state)
        benchmark::DoNotOptimize(qv::CalcBlockCRC32(Data().data(), kSize));
    qv::InitCRC32Table(0x04C11DB7);
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kSize));
}
BENCHMARK(BM_CRC32_qv_castagnoli);

void BM_CRC16_qv(benchmark::State &state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(qv::CalcBlockCRC16(Data().data(), kSize));
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kSize));
}
BENCHMARK(BM_CRC16_qv);

void BM_CRC16_bytewise(benchmark::State &state) {
    static std::array<uint16_t, 256> const table = [] {
        std::array<uint16_t, 256> t{};
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t c = i << 8;
            for (int b = 0; b < 8; ++b)
                c = (c & 0x8000) ? (c << 1) ^ 0x1021 : c << 1;
            t[i] = uint16_t(c);
        }
        return t;
    }();
    for (auto _ : state) {
        uint16_t crc = 0;
        for (uint8_t byte : Data())
            crc = uint16_t((crc << 8) ^ table[(crc >> 8) ^ byte]);
        benchmark::DoNotOptimize(crc);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(kSize));
}
BENCHMARK(BM_CRC16_bytewise);

} // namespace
