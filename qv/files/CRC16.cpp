#include <array>

#include "qv/files/CRC.h"
#include "qv/files/FileBlockScan.h"

namespace qv {

namespace {

using Crc16Tables = std::array<std::array<uint16_t, 256>, 8>;

// tables[0] is the classic CCITT table (entry 1 is 0x1021); tables[k][b] is
// the effect of byte b followed by k zero bytes, so eight bytes take one step.
constexpr Crc16Tables MakeCrc16Tables() {
    Crc16Tables t{};
    for (uint32_t i = 0; i < 256; ++i) {
        uint32_t crc = i << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x8000) ? (crc << 1) ^ 0x1021 : crc << 1;
        t[0][i] = uint16_t(crc);
    }
    for (size_t k = 1; k < t.size(); ++k)
        for (size_t i = 0; i < 256; ++i)
            t[k][i] = uint16_t((t[k - 1][i] << 8) ^ t[0][t[k - 1][i] >> 8]);
    return t;
}

constexpr Crc16Tables kCrc16 = MakeCrc16Tables();
static_assert(kCrc16[0][1] == 0x1021);

uint16_t StepByte(uint16_t crc, uint8_t byte) {
    return uint16_t((crc << 8) ^ kCrc16[0][(crc >> 8) ^ byte]);
}

// Eight bytes at once: the register folds into the next two message bytes.
inline uint16_t StepEight(uint16_t crc, uint8_t const *p) {
    return kCrc16[7][p[0] ^ (crc >> 8)] ^ kCrc16[6][p[1] ^ (crc & 0xFF)] ^ kCrc16[5][p[2]] ^ kCrc16[4][p[3]] ^
           kCrc16[3][p[4]] ^ kCrc16[2][p[5]] ^ kCrc16[1][p[6]] ^ kCrc16[0][p[7]];
}

// a * b modulo the generator x^16 + x^12 + x^5 + 1, without carries.
uint16_t MultiplyMod(uint16_t a, uint16_t b) {
    uint32_t r = 0;
    for (int bit = 15; bit >= 0; --bit) {
        r <<= 1;
        if (r & 0x10000) r ^= 0x11021;
        if (b >> bit & 1) r ^= a;
    }
    return uint16_t(r);
}

// x^(8 n) modulo the generator: what n bytes after a register do to it.
uint16_t ByteShift(uint64_t n) {
    uint16_t result = 1, square = 0x0100; // x^8
    for (; n; n >>= 1) {
        if (n & 1) result = MultiplyMod(result, square);
        square = MultiplyMod(square, square);
    }
    return result;
}

// One chain of table steps waits on its loads; four independent lanes over
// four quarters of the block keep the loads flowing. The CRC is linear, so
// the lanes join as crc(A B) = crc(A) * x^(8 |B|) + crc(B), where only the
// first lane starts from the caller's register.
constexpr size_t kLanes = 4;

uint16_t LanesCRC16(uint8_t const *&p, uint32_t &n, uint16_t crc) {
    size_t const lane = (n / kLanes) & ~size_t(7);
    if (lane < 64) return crc;
    uint16_t c[kLanes] = {crc};
    for (size_t i = 0; i < lane; i += 8)
        for (size_t s = 0; s < kLanes; ++s)
            c[s] = StepEight(c[s], p + s * lane + i);
    uint16_t const shift = ByteShift(lane);
    crc = c[0];
    for (size_t s = 1; s < kLanes; ++s)
        crc = MultiplyMod(crc, shift) ^ c[s];
    p += kLanes * lane;
    n -= uint32_t(kLanes * lane);
    return crc;
}

} // namespace

uint16_t InitCRC16() {
    return 0;
}

uint16_t FiniCRC16(uint16_t crc) {
    return crc;
}

uint16_t CalcMultBlockCRC16(uint8_t const *p, uint32_t n, uint16_t crc) {
    if (!p) return crc;
    crc = LanesCRC16(p, n, crc);
    for (; n >= 8; n -= 8, p += 8)
        crc = StepEight(crc, p);
    for (; n; --n)
        crc = StepByte(crc, *p++);
    return crc;
}

uint16_t CalcBlockCRC16(uint8_t const *p, uint32_t n) {
    return FiniCRC16(CalcMultBlockCRC16(p, n, InitCRC16()));
}

bool CalcCRC16(uint16_t &crc, IFile *f) {
    crc = InitCRC16();
    bool ok = ScanFileToEnd(f, [&crc](uint8_t const *p, uint32_t n) { crc = CalcMultBlockCRC16(p, n, crc); });
    crc = FiniCRC16(crc);
    return ok;
}

} // namespace qv
