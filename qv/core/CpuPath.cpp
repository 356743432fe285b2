// Run-time choice of the SIMD path: cpuid once, then one atomic word.
#include "qv/core/CpuPath.h"

#include <atomic>

namespace qv::cpu {

namespace {

ECpuPath Detect() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    bool const sse41 = __builtin_cpu_supports("sse4.1") && __builtin_cpu_supports("pclmul");
    bool const avx2 = sse41 && __builtin_cpu_supports("avx2");
    bool const avx512 = avx2 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("vpclmulqdq");
    if (avx512) return CP_AVX512;
    if (avx2) return CP_AVX2;
    if (sse41) return CP_SSE41;
#endif
    return CP_Portable;
}

std::atomic<int> &Current() {
    static std::atomic<int> current{BestCpuPath()};
    return current;
}

} // namespace

ECpuPath BestCpuPath() {
    static ECpuPath const best = Detect();
    return best;
}

ECpuPath CpuPath() { return ECpuPath(Current().load(std::memory_order_relaxed)); }

void LimitCpuPath(ECpuPath ceiling) {
    ECpuPath const best = BestCpuPath();
    Current().store(ceiling < best ? ceiling : best, std::memory_order_relaxed);
}

} // namespace qv::cpu
