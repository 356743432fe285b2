// CRC kernels on 64 MiB, each paired in one run with its reference: CRC-32
// against the system zlib's crc32(), and CRC-16 against a plain table a byte
// a step.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <vector>

#include "PairedTiming.h"
#include "ZlibEntryPoints.h"
#include "qv/core/CpuPath.h"
#include "qv/files/CRC.h"

namespace {

constexpr size_t kSize = size_t(64) << 20;

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

uint16_t ByteTableCRC16(uint8_t const *data, size_t n) {
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
    uint16_t crc = 0;
    for (size_t i = 0; i < n; ++i)
        crc = uint16_t((crc << 8) ^ table[(crc >> 8) ^ data[i]]);
    return crc;
}

void CRC32VsZlib(benchmark::State &state) {
    qv::InitCRC32Table(0x04C11DB7);
    auto crc32 = bench::Zlib().crc32;
    uint8_t const *data = Data().data();
    bench::RunPaired(
        state, {"CalcBlockCRC32, 64 MiB, vs zlib crc32", 3.0}, int64_t(kSize),
        [&] { benchmark::DoNotOptimize(qv::CalcBlockCRC32(data, kSize)); },
        [&] { benchmark::DoNotOptimize(crc32(0, data, kSize)); });
}

void CRC16VsByteTable(benchmark::State &state) {
    uint8_t const *data = Data().data();
    bench::RunPaired(
        state, {"CalcBlockCRC16, 64 MiB, vs a byte table", 10.0}, int64_t(kSize),
        [&] { benchmark::DoNotOptimize(qv::CalcBlockCRC16(data, kSize)); },
        [&] { benchmark::DoNotOptimize(ByteTableCRC16(data, kSize)); });
}

} // namespace

// The carry-less-multiply path that machines with AVX2 but without
// VPCLMULQDQ take (here forced by limiting the path), against zlib.
void CRC32PclmulPathVsZlib(benchmark::State &state) {
    if (qv::cpu::BestCpuPath() < qv::cpu::CP_SSE41) {
        state.SkipWithError("no PCLMULQDQ on this machine");
        return;
    }
    qv::InitCRC32Table(0x04C11DB7);
    auto crc32 = bench::Zlib().crc32;
    uint8_t const *data = Data().data();
    qv::cpu::LimitCpuPath(qv::cpu::CP_AVX2);
    bench::RunPaired(
        state, {"CalcBlockCRC32, 64 MiB, PCLMULQDQ path (AVX2 without VPCLMULQDQ), vs zlib crc32", 0.0},
        int64_t(kSize), [&] { benchmark::DoNotOptimize(qv::CalcBlockCRC32(data, kSize)); },
        [&] { benchmark::DoNotOptimize(crc32(0, data, kSize)); });
    qv::cpu::LimitCpuPath(qv::cpu::BestCpuPath());
}

BENCHMARK(CRC32VsZlib)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(CRC32PclmulPathVsZlib)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(CRC16VsByteTable)->UseManualTime()->Unit(benchmark::kMillisecond);
