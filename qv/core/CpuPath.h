/// @file
/// Which instruction-set path the library's SIMD kernels take (internal header
/// of libqv, exported for its tests).
///
/// libqv is built for baseline x86-64; kernels that gain from newer
/// instructions carry their own target attributes and are chosen at run time.
/// The best path is found once (cpuid) and kept in one atomic word; each
/// kernel reads it once per call (never per element) and indexes its table of
/// implementations. Every path gives the same results; tests prove it by
/// running each path the machine has and the portable one.
/// Threads: safe from any thread; LimitCpuPath is for tests and changes the
/// path of calls that start afterwards.
#pragma once

#include "qv/core/Export.h"

namespace qv::cpu {

/// The instruction-set paths, from the portable one up; each includes those below.
enum ECpuPath : int {
    CP_Portable = 0, ///< plain C++, any machine
    CP_SSE41 = 1,    ///< SSE4.1 and PCLMULQDQ
    CP_AVX2 = 2,     ///< AVX2, plus the above
    CP_AVX512 = 3,   ///< AVX-512 F/BW/VL and VPCLMULQDQ, plus the above
};
inline constexpr int kCpuPaths = 4; ///< the number of paths: the size of a kernel's table

QV_API ECpuPath BestCpuPath(); ///< what this machine offers
QV_API ECpuPath CpuPath();     ///< what kernels use now
/// Kernels use no path above ceiling (and none above BestCpuPath). Tests only.
QV_API void LimitCpuPath(ECpuPath ceiling);

} // namespace qv::cpu
