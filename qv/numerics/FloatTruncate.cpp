// Block truncation kernels: SSE2 (baseline x86-64), AVX2 and the portable
// loop, chosen per call.
#include "qv/numerics/FloatTruncate.h"

#include <immintrin.h>

#include "qv/core/CpuPath.h"
#include "qv/numerics/ElementCast.h"
#include "qv/numerics/TypedKernel.h"

namespace qv::numerics_detail {

namespace {

template <class S> void PortableLow32(int32_t *out, void const *in, size_t n) {
    for (size_t k = 0; k < n; ++k)
        out[k] = int32_t(TruncateToLow32Branchless(double(LoadElement<S>(in, k))));
}

template <class S> void PortableInt64(int64_t *out, void const *in, size_t n) {
    for (size_t k = 0; k < n; ++k)
        out[k] = TruncateToInt64Branchless(double(LoadElement<S>(in, k)));
}

// The hardware's 64-bit truncation: the rule for every input.
inline int64_t HardwareInt64(double x) { return _mm_cvttsd_si64(_mm_set_sd(x)); }

template <class S> void ExactLow32(int32_t *out, void const *in, size_t from, size_t to) {
    for (size_t k = from; k < to; ++k)
        out[k] = int32_t(uint32_t(uint64_t(HardwareInt64(double(LoadElement<S>(in, k))))));
}

template <class S> void HardwareInt64Block(int64_t *out, void const *in, size_t n) {
    for (size_t k = 0; k < n; ++k)
        out[k] = HardwareInt64(double(LoadElement<S>(in, k)));
}

inline __m128i Indefinite128() { return _mm_set1_epi32(INT32_MIN); }

// Plain loops, no lambdas: a lambda would not inherit the target attribute.
void Sse2Low32FromDouble(int32_t *out, void const *in, size_t n) {
    auto const *p = static_cast<double const *>(in);
    __m128i flags = _mm_setzero_si128();
    size_t k = 0;
    for (; n - k >= 4; k += 4) {
        __m128i const v = _mm_unpacklo_epi64(_mm_cvttpd_epi32(_mm_loadu_pd(p + k)), _mm_cvttpd_epi32(_mm_loadu_pd(p + k + 2)));
        flags = _mm_or_si128(flags, _mm_cmpeq_epi32(v, Indefinite128()));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + k), v);
    }
    // A flagged block goes again, exactly, from its start.
    ExactLow32<double>(out, in, _mm_movemask_epi8(flags) ? 0 : k, n);
}

void Sse2Low32FromFloat(int32_t *out, void const *in, size_t n) {
    auto const *p = static_cast<float const *>(in);
    __m128i flags = _mm_setzero_si128();
    size_t k = 0;
    for (; n - k >= 4; k += 4) {
        __m128i const v = _mm_cvttps_epi32(_mm_loadu_ps(p + k));
        flags = _mm_or_si128(flags, _mm_cmpeq_epi32(v, Indefinite128()));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + k), v);
    }
    ExactLow32<float>(out, in, _mm_movemask_epi8(flags) ? 0 : k, n);
}

__attribute__((target("avx2"))) void Avx2Low32FromDouble(int32_t *out, void const *in, size_t n) {
    auto const *p = static_cast<double const *>(in);
    __m256i flags = _mm256_setzero_si256();
    __m256i const indefinite = _mm256_set1_epi32(INT32_MIN);
    size_t k = 0;
    for (; n - k >= 8; k += 8) {
        __m256i const v = _mm256_set_m128i(_mm256_cvttpd_epi32(_mm256_loadu_pd(p + k + 4)),
                                           _mm256_cvttpd_epi32(_mm256_loadu_pd(p + k)));
        flags = _mm256_or_si256(flags, _mm256_cmpeq_epi32(v, indefinite));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + k), v);
    }
    ExactLow32<double>(out, in, _mm256_movemask_epi8(flags) ? 0 : k, n);
}

__attribute__((target("avx2"))) void Avx2Low32FromFloat(int32_t *out, void const *in, size_t n) {
    auto const *p = static_cast<float const *>(in);
    __m256i flags = _mm256_setzero_si256();
    __m256i const indefinite = _mm256_set1_epi32(INT32_MIN);
    size_t k = 0;
    for (; n - k >= 8; k += 8) {
        __m256i const v = _mm256_cvttps_epi32(_mm256_loadu_ps(p + k));
        flags = _mm256_or_si256(flags, _mm256_cmpeq_epi32(v, indefinite));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out + k), v);
    }
    ExactLow32<float>(out, in, _mm256_movemask_epi8(flags) ? 0 : k, n);
}

} // namespace

template <> Low32Kernel PickLow32Kernel<double>() {
    cpu::ECpuPath const path = cpu::CpuPath();
    if (path >= cpu::CP_AVX2) return Avx2Low32FromDouble;
    if (path >= cpu::CP_SSE41) return Sse2Low32FromDouble;
    return PortableLow32<double>;
}

template <> Low32Kernel PickLow32Kernel<float>() {
    cpu::ECpuPath const path = cpu::CpuPath();
    if (path >= cpu::CP_AVX2) return Avx2Low32FromFloat;
    if (path >= cpu::CP_SSE41) return Sse2Low32FromFloat;
    return PortableLow32<float>;
}

template <class S> Int64Kernel PickInt64Kernel() {
    return cpu::CpuPath() >= cpu::CP_SSE41 ? HardwareInt64Block<S> : PortableInt64<S>;
}

template Int64Kernel PickInt64Kernel<float>();
template Int64Kernel PickInt64Kernel<double>();

} // namespace qv::numerics_detail
