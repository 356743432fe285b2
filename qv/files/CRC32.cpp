#include <zlib.h>

#include <array>
#include <atomic>

#include "qv/files/CRC.h"
#include "qv/files/CRC32Fold.h"
#include "qv/files/FileBlockScan.h"

namespace qv {

namespace {

constexpr uint32_t kIeeePolynomial = 0x04C11DB7;

using Crc32Tables = std::array<std::array<uint32_t, 256>, 8>;

// The polynomial in use. The standard one folds with carry-less multiplies
// where the machine has them (CRC32Fold.h) and runs on the system zlib's
// kernel elsewhere, both giving the reflected table's values; any other
// polynomial runs on gTables.
std::atomic<uint32_t> gPolynomial{kIeeePolynomial};
Crc32Tables gTables;

uint32_t ReverseBits(uint32_t v, int width) {
    uint32_t r = 0;
    for (int i = 0; i < width; ++i, v >>= 1)
        r = (r << 1) | (v & 1);
    return r;
}

// Entry i: the bits of i reversed into the top byte, eight shifts with the
// polynomial XORed in whenever the top bit falls out, all 32 bits reversed.
// tables[k][b] is byte b followed by k zero bytes (slicing by eight).
void BuildTables(uint32_t polynomial) {
    for (uint32_t i = 0; i < 256; ++i) {
        uint32_t crc = ReverseBits(i, 8) << 24;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x80000000u) ? (crc << 1) ^ polynomial : crc << 1;
        gTables[0][i] = ReverseBits(crc, 32);
    }
    for (size_t k = 1; k < gTables.size(); ++k)
        for (size_t i = 0; i < 256; ++i)
            gTables[k][i] = (gTables[k - 1][i] >> 8) ^ gTables[0][gTables[k - 1][i] & 0xFF];
}

uint32_t LoadLE32(uint8_t const *p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

uint32_t TableCRC32(uint8_t const *p, uint32_t n, uint32_t crc) {
    auto const &t = gTables;
    for (; n >= 8; n -= 8, p += 8) {
        uint32_t lo = LoadLE32(p) ^ crc;
        uint32_t hi = LoadLE32(p + 4);
        crc = t[7][lo & 0xFF] ^ t[6][(lo >> 8) & 0xFF] ^ t[5][(lo >> 16) & 0xFF] ^ t[4][lo >> 24] ^ t[3][hi & 0xFF] ^
              t[2][(hi >> 8) & 0xFF] ^ t[1][(hi >> 16) & 0xFF] ^ t[0][hi >> 24];
    }
    for (; n; --n)
        crc = (crc >> 8) ^ t[0][(crc & 0xFF) ^ *p++];
    return crc;
}

} // namespace

void InitCRC32Table(uint32_t polynomial) {
    if (polynomial == gPolynomial.load(std::memory_order_acquire)) return;
    if (polynomial != kIeeePolynomial) BuildTables(polynomial);
    gPolynomial.store(polynomial, std::memory_order_release);
}

uint32_t InitCRC32() {
    return 0xFFFFFFFFu;
}

uint32_t FiniCRC32(uint32_t crc) {
    return ~crc;
}

uint32_t CalcMultBlockCRC32(uint8_t const *p, uint32_t n, uint32_t crc) {
    if (!p || !n) return crc;
    if (gPolynomial.load(std::memory_order_acquire) != kIeeePolynomial) return TableCRC32(p, n, crc);
    if (crc_detail::FoldCRC32(p, n, crc)) return crc;
    // The portable path: zlib's crc32, which takes and gives finished values.
    return ~uint32_t(crc32(~crc, p, n));
}

uint32_t CalcBlockCRC32(uint8_t const *p, uint32_t n) {
    if (!n) return 0;
    return FiniCRC32(CalcMultBlockCRC32(p, n, InitCRC32()));
}

bool CalcCRC32(uint32_t &crc, IFile *f) {
    InitCRC32Table(kIeeePolynomial);
    crc = InitCRC32();
    bool ok = ScanFileToEnd(f, [&crc](uint8_t const *p, uint32_t n) { crc = CalcMultBlockCRC32(p, n, crc); });
    crc = FiniCRC32(crc);
    return ok;
}

} // namespace qv
