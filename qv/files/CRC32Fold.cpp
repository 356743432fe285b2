// Folding kernels for the IEEE CRC-32: PCLMULQDQ over four 128-bit lanes,
// VPCLMULQDQ over four 512-bit registers.
#include "qv/files/CRC32Fold.h"

#include <immintrin.h>

#include <array>
#include <cstring>

#include "qv/core/CpuPath.h"

namespace qv::crc_detail {

namespace {

constexpr uint64_t kPolynomial = 0x104C11DB7;

constexpr uint64_t Reflect32(uint64_t v) {
    uint64_t r = 0;
    for (int i = 0; i < 32; ++i)
        r |= (v >> i & 1) << (31 - i);
    return r;
}

// x^e modulo the polynomial, reflected and shifted as the reflected-domain
// multiplication wants it.
constexpr uint64_t FoldConstant(int e) {
    uint64_t r = 1;
    for (int i = 0; i < e; ++i) {
        r <<= 1;
        if (r >> 32 & 1) r ^= kPolynomial;
    }
    return Reflect32(r) << 1;
}

// Moving a 128-bit lane forward by d bits: its low half times x^(d+32), its
// high half times x^(d-32) (reflected).
struct SFold {
    uint64_t low, high;
};
constexpr SFold FoldBy(int bits) { return {FoldConstant(bits + 32), FoldConstant(bits - 32)}; }

constexpr SFold kFold128 = FoldBy(128);
constexpr SFold kFold512 = FoldBy(512);
constexpr SFold kFold2048 = FoldBy(2048);
static_assert(kFold512.low == 0x154442bd4 && kFold512.high == 0x1c6e41596 && kFold128.low == 0x1751997d0);

constexpr std::array<uint32_t, 256> MakeByteTable() {
    std::array<uint32_t, 256> t{};
    for (uint32_t i = 0; i < 256; ++i) {
        uint32_t c = i;
        for (int b = 0; b < 8; ++b)
            c = (c & 1) ? (c >> 1) ^ 0xEDB88320u : c >> 1;
        t[i] = c;
    }
    return t;
}
constexpr std::array<uint32_t, 256> kByteTable = MakeByteTable();

uint32_t ByteWise(uint8_t const *p, size_t n, uint32_t crc) {
    for (size_t i = 0; i < n; ++i)
        crc = (crc >> 8) ^ kByteTable[(crc ^ p[i]) & 0xFF];
    return crc;
}

// The folded lane is a 16-byte message whose CRC from register 0 is the
// block's; the bytes left over follow it.
uint32_t Finish(uint8_t const (&lane)[16], uint8_t const *rest, size_t n) {
    return ByteWise(rest, n, ByteWise(lane, 16, 0));
}

__attribute__((target("pclmul,sse4.1"))) inline __m128i Fold(__m128i x, __m128i k) {
    return _mm_xor_si128(_mm_clmulepi64_si128(x, k, 0x00), _mm_clmulepi64_si128(x, k, 0x11));
}

__attribute__((target("pclmul,sse4.1"))) inline __m128i Load(uint8_t const *p) {
    return _mm_loadu_si128(reinterpret_cast<__m128i const *>(p));
}

// n >= 64. Folds the rest to one lane, finishes with the table.
__attribute__((target("pclmul,sse4.1"))) uint32_t FoldLanes(__m128i x, uint8_t const *p, size_t n) {
    __m128i const k128 = _mm_set_epi64x(int64_t(kFold128.high), int64_t(kFold128.low));
    for (; n >= 16; p += 16, n -= 16)
        x = _mm_xor_si128(Fold(x, k128), Load(p));
    alignas(16) uint8_t lane[16];
    _mm_store_si128(reinterpret_cast<__m128i *>(lane), x);
    return Finish(lane, p, n);
}

__attribute__((target("pclmul,sse4.1"))) uint32_t PclmulCRC32(uint8_t const *p, size_t n, uint32_t crc) {
    __m128i x0 = _mm_xor_si128(Load(p), _mm_cvtsi32_si128(int(crc)));
    __m128i x1 = Load(p + 16), x2 = Load(p + 32), x3 = Load(p + 48);
    p += 64;
    n -= 64;
    __m128i const k512 = _mm_set_epi64x(int64_t(kFold512.high), int64_t(kFold512.low));
    for (; n >= 64; p += 64, n -= 64) {
        x0 = _mm_xor_si128(Fold(x0, k512), Load(p));
        x1 = _mm_xor_si128(Fold(x1, k512), Load(p + 16));
        x2 = _mm_xor_si128(Fold(x2, k512), Load(p + 32));
        x3 = _mm_xor_si128(Fold(x3, k512), Load(p + 48));
    }
    __m128i const k128 = _mm_set_epi64x(int64_t(kFold128.high), int64_t(kFold128.low));
    __m128i x = _mm_xor_si128(Fold(x0, k128), x1);
    x = _mm_xor_si128(Fold(x, k128), x2);
    x = _mm_xor_si128(Fold(x, k128), x3);
    return FoldLanes(x, p, n);
}

#define QV_VPCLMUL_TARGET __attribute__((target("avx512f,avx512bw,avx512vl,vpclmulqdq,pclmul,sse4.1")))

QV_VPCLMUL_TARGET inline __m512i Fold512(__m512i z, __m512i k, __m512i next) {
    // a ^ b ^ c in one instruction.
    return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(z, k, 0x00), _mm512_clmulepi64_epi128(z, k, 0x11), next,
                                     0x96);
}

QV_VPCLMUL_TARGET inline __m512i Broadcast(SFold f) {
    auto const h = int64_t(f.high), l = int64_t(f.low);
    return _mm512_set_epi64(h, l, h, l, h, l, h, l);
}

// n >= 256: four registers of four lanes each, 256 bytes a step.
QV_VPCLMUL_TARGET uint32_t VpclmulCRC32(uint8_t const *p, size_t n, uint32_t crc) {
    __m512i z0 = _mm512_xor_si512(_mm512_loadu_si512(p), _mm512_castsi128_si512(_mm_cvtsi32_si128(int(crc))));
    __m512i z1 = _mm512_loadu_si512(p + 64), z2 = _mm512_loadu_si512(p + 128), z3 = _mm512_loadu_si512(p + 192);
    p += 256;
    n -= 256;
    __m512i const k2048 = Broadcast(kFold2048);
    for (; n >= 256; p += 256, n -= 256) {
        z0 = Fold512(z0, k2048, _mm512_loadu_si512(p));
        z1 = Fold512(z1, k2048, _mm512_loadu_si512(p + 64));
        z2 = Fold512(z2, k2048, _mm512_loadu_si512(p + 128));
        z3 = Fold512(z3, k2048, _mm512_loadu_si512(p + 192));
    }
    __m512i const k512 = Broadcast(kFold512);
    __m512i z = Fold512(z0, k512, z1);
    z = Fold512(z, k512, z2);
    z = Fold512(z, k512, z3);
    for (; n >= 64; p += 64, n -= 64)
        z = Fold512(z, k512, _mm512_loadu_si512(p));
    // The four lanes of z, earliest first, into one.
    __m128i const k128 = _mm_set_epi64x(int64_t(kFold128.high), int64_t(kFold128.low));
    // Through memory: g++ 12 warns on its own extract intrinsics.
    alignas(64) __m128i lanes[4];
    _mm512_store_si512(lanes, z);
    __m128i x = lanes[0];
    x = _mm_xor_si128(Fold(x, k128), lanes[1]);
    x = _mm_xor_si128(Fold(x, k128), lanes[2]);
    x = _mm_xor_si128(Fold(x, k128), lanes[3]);
    return FoldLanes(x, p, n);
}

} // namespace

bool FoldCRC32(uint8_t const *p, uint32_t n, uint32_t &crc) {
    cpu::ECpuPath const path = cpu::CpuPath();
    if (path >= cpu::CP_AVX512 && n >= 256)
        crc = VpclmulCRC32(p, n, crc);
    else if (path >= cpu::CP_SSE41 && n >= 64)
        crc = PclmulCRC32(p, n, crc);
    else if (path >= cpu::CP_SSE41)
        crc = ByteWise(p, n, crc);
    else
        return false;
    return true;
}

} // namespace qv::crc_detail
