// The SIMD kernels against the portable path on arbitrary bytes: every
// instruction-set path the machine has must give the portable path's very
// bits (CRC-32 and CRC-16 of any block at any alignment, ConvertArray from
// float and double to every element type, Planck over any axis). The first
// byte picks the work, the rest is its input.
#include <cstdint>
#include <cstring>
#include <vector>

#include "qv/core/Array.h"
#include "qv/core/CpuPath.h"
#include "qv/files/CRC.h"
#include "qv/numerics/Planck.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedData.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

// What one path makes of the input, as bytes to compare.
using Result = std::vector<uint8_t>;

template <class T> void Append(Result &out, T const *values, size_t n) {
    auto const *bytes = reinterpret_cast<uint8_t const *>(values);
    out.insert(out.end(), bytes, bytes + n * sizeof(T));
}

Result Crcs(uint8_t const *data, size_t size) {
    Result out;
    for (size_t skip = 0; skip < 8 && skip <= size; ++skip) {
        uint32_t const crc32 = qv::CalcBlockCRC32(data + skip, uint32_t(size - skip));
        uint16_t const crc16 = qv::CalcBlockCRC16(data + skip, uint32_t(size - skip));
        Append(out, &crc32, 1);
        Append(out, &crc16, 1);
    }
    return out;
}

constexpr qv::EDataType kTargets[] = {qv::DT_Int8,  qv::DT_UInt8, qv::DT_Int16, qv::DT_UInt16, qv::DT_Int32,
                                      qv::DT_UInt32, qv::DT_Int64, qv::DT_Float, qv::DT_Double};

// Every conversion out of Source, the input taken as Source values (copied:
// the kernels may meet any alignment, but the values must be whole).
template <class Source> Result Conversions(uint8_t const *data, size_t size) {
    std::vector<Source> in(size / sizeof(Source));
    if (!in.empty()) std::memcpy(in.data(), data, in.size() * sizeof(Source));
    Result out;
    std::vector<uint8_t> converted(in.size() * 8 + 8);
    for (qv::EDataType target : kTargets) {
        size_t const bytes = in.size() * size_t(qv::DataTypeSize(target));
        qv::ConvertArray({converted.data(), target}, {in.data(), sizeof(Source) == 4 ? qv::DT_Float : qv::DT_Double},
                         uint32_t(in.size()));
        out.insert(out.end(), converted.begin(), converted.begin() + std::ptrdiff_t(bytes));
    }
    return out;
}

// Planck with the first two doubles as temperature and emissivity, the rest
// as the wavelength axis.
Result Radiances(uint8_t const *data, size_t size) {
    size_t const n = size / sizeof(double);
    if (n < 2) return {};
    std::vector<double> values(n);
    std::memcpy(values.data(), data, n * sizeof(double));
    qv::TArray<double> x, y;
    for (size_t i = 2; i < n; ++i)
        x.Add(values[i]);
    qv::Planck(x, y, values[0], values[1]);
    Result out;
    Append(out, y.GetData(), y.GetSize());
    return out;
}

Result Run(uint8_t choice, uint8_t const *data, size_t size) {
    switch (choice % 4) {
    case 0: return Crcs(data, size);
    case 1: return Conversions<float>(data, size);
    case 2: return Conversions<double>(data, size);
    default: return Radiances(data, size);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 1 || size > 1 << 16) return 0;
    qv::cpu::LimitCpuPath(qv::cpu::CP_Portable);
    Result const portable = Run(data[0], data + 1, size - 1);
    for (int path = 1; path <= qv::cpu::BestCpuPath(); ++path) {
        qv::cpu::LimitCpuPath(qv::cpu::ECpuPath(path));
        Require(Run(data[0], data + 1, size - 1) == portable);
    }
    return 0;
}
