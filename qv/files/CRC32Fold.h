// CRC-32 of the IEEE polynomial by carry-less-multiply folding (internal
// header of qv/files).
//
// The block is cut into 128-bit lanes; each lane is multiplied forward over
// the distance to the lane it lands on (PCLMULQDQ) and added there, so the
// whole block folds into one 128-bit value congruent to it modulo the
// polynomial, whose CRC a table finishes. With VPCLMULQDQ, sixteen lanes fold
// at once. The path is chosen once per call (qv/core/CpuPath.h); every path
// gives the table's results, which the tests check path by path.
#pragma once

#include <cstdint>

namespace qv::crc_detail {

// The register after the n bytes at p, from register crc (the reflected
// table algorithm's register: Init gives all ones, Fini complements), or
// nothing done and false when this machine's path has no folding kernel.
bool FoldCRC32(uint8_t const *p, uint32_t n, uint32_t &crc);

} // namespace qv::crc_detail
