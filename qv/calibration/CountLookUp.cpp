// 16-bit counts through a table with non-temporal stores: measured on a
// 640 x 512 frame with a 48 KB table, streaming the output past the caches
// keeps more of the table in L1 and spares the write-back of a frame that
// would not stay cached anyway, about a quarter faster than plain stores.
#include "qv/calibration/CountLookUp.h"

#include <immintrin.h>

namespace qv::calibration_detail {

namespace {

#define QV_LOOKUP_TARGET __attribute__((target("avx512f,avx512vl")))

// Whole cache lines: measured faster streamed than halves of lines.
constexpr size_t kLineBytes = 64;

// The table's entries at four packed places, as one vector.
QV_LOOKUP_TARGET inline __m128 FourEntries(float const *table, uint64_t places) {
    __m128 v = _mm_load_ss(table + (places & 0xffff));
    v = _mm_insert_ps(v, _mm_load_ss(table + ((places >> 16) & 0xffff)), 0x10);
    v = _mm_insert_ps(v, _mm_load_ss(table + ((places >> 32) & 0xffff)), 0x20);
    return _mm_insert_ps(v, _mm_load_ss(table + (places >> 48)), 0x30);
}

QV_LOOKUP_TARGET inline __m256d FourEntries(double const *table, uint64_t places) {
    __m128d const low = _mm_loadh_pd(_mm_load_sd(table + (places & 0xffff)), table + ((places >> 16) & 0xffff));
    __m128d const high = _mm_loadh_pd(_mm_load_sd(table + ((places >> 32) & 0xffff)), table + (places >> 48));
    return _mm256_insertf128_pd(_mm256_castpd128_pd256(low), high, 1);
}

// Sixteen counts' entries to a line-aligned out, past the caches.
template <class C>
QV_LOOKUP_TARGET inline void SixteenEntries(SFourPlaces<C> const &places, unsigned char const *counts,
                                            float const *table, unsigned char *out) {
    __m512 v = _mm512_castps128_ps512(FourEntries(table, places(counts)));
    v = _mm512_insertf32x4(v, FourEntries(table, places(counts + 4 * sizeof(C))), 1);
    v = _mm512_insertf32x4(v, FourEntries(table, places(counts + 8 * sizeof(C))), 2);
    v = _mm512_insertf32x4(v, FourEntries(table, places(counts + 12 * sizeof(C))), 3);
    _mm512_stream_ps(reinterpret_cast<float *>(out), v);
}

template <class C>
QV_LOOKUP_TARGET inline void SixteenEntries(SFourPlaces<C> const &places, unsigned char const *counts,
                                            double const *table, unsigned char *out) {
    for (int line = 0; line < 2; ++line, counts += 8 * sizeof(C), out += kLineBytes) {
        __m512d const low = _mm512_castpd256_pd512(FourEntries(table, places(counts)));
        // A masked broadcast, as this compiler's insert warns of its undefined filler.
        __m512d const v = _mm512_mask_broadcast_f64x4(low, 0xf0, FourEntries(table, places(counts + 4 * sizeof(C))));
        _mm512_stream_pd(reinterpret_cast<double *>(out), v);
    }
}

template <class C, class O>
QV_LOOKUP_TARGET size_t Streamed(void const *in, O const *table, int64_t low, unsigned char *out, size_t n) {
    if (uintptr_t(out) % sizeof(O)) return 0;
    // Plain stores up to the first line boundary of out.
    size_t i = 0;
    for (; i < n && uintptr_t(out + i * sizeof(O)) % kLineBytes; ++i)
        numerics_detail::StoreElement<O>(out, i, EntryOf<C>(in, i, table, low));
    auto const *counts = static_cast<unsigned char const *>(in);
    SFourPlaces<C> const places(low);
    for (; n - i >= 16; i += 16)
        SixteenEntries(places, counts + i * sizeof(C), table, out + i * sizeof(O));
    // Later plain stores, and readers on other cores, see these outputs.
    _mm_sfence();
    return i;
}

} // namespace

// Out of line from the kernel, whose helpers inline only into a function
// declared with their target.
template <class C, class O>
size_t LookUpStreamed(void const *in, O const *table, int64_t low, unsigned char *out, size_t n) {
    return Streamed<C, O>(in, table, low, out, n);
}

#undef QV_LOOKUP_TARGET

template size_t LookUpStreamed<uint16_t, float>(void const *, float const *, int64_t, unsigned char *, size_t);
template size_t LookUpStreamed<uint16_t, double>(void const *, double const *, int64_t, unsigned char *, size_t);
template size_t LookUpStreamed<int16_t, float>(void const *, float const *, int64_t, unsigned char *, size_t);
template size_t LookUpStreamed<int16_t, double>(void const *, double const *, int64_t, unsigned char *, size_t);

} // namespace qv::calibration_detail
