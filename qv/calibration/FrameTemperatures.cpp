// CFrameTemperatures: integer counts through a table of the per-value road,
// floating-point counts through Horner's rule, both a block at a time.
#include "qv/calibration/FrameTemperatures.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "qv/calibration/CountLookUp.h"
#include "qv/calibration/RCalFile.h"
#include "qv/calibration/RCalStream.h"
#include "qv/core/Array.h"
#include "qv/core/CpuPath.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;
using namespace calibration_detail;

namespace {

// Wider spans are cheaper count by count than tabulated for one frame.
constexpr int64_t kMaxTableSpan = 65536;
constexpr uint32_t kWorkBlock = 256;

bool IsScale(ETempType t) { return t >= TT_Celsius && t <= TT_Rankine; }

bool IsTemperatureType(EDataType t) { return t == DT_Float || t == DT_Double; }

template <class T> constexpr bool kIsCount = std::is_integral_v<T>;

// y = the polynomial c (constant first) at x by Horner's rule; 0 for fewer
// than two coefficients, as PolyValue gives. Elements outermost in the
// coefficient loop's body, so the compiler runs several pixels per vector.
void HornerBlock(TArray<double> &c, double const *x, double *y, uint32_t count) {
    uint32_t const n = c.GetSize();
    double const *k = c.GetData();
    if (n < 2) {
        for (uint32_t e = 0; e < count; ++e)
            y[e] = 0.0;
        return;
    }
    for (uint32_t e = 0; e < count; ++e)
        y[e] = k[n - 1];
    for (uint32_t i = n - 1; i-- > 0;)
        for (uint32_t e = 0; e < count; ++e)
            y[e] = y[e] * x[e] + k[i];
}

// The span of integer counts in blocks of 64 with running minima per lane,
// a loop the compiler vectorises for the path it is compiled for.
template <class C> [[gnu::always_inline]] inline void SpanLoop(void const *in, size_t n, C &low, C &high) {
    constexpr size_t kLanes = 64;
    C lo[kLanes], hi[kLanes];
    for (size_t k = 0; k < kLanes; ++k)
        lo[k] = hi[k] = LoadElement<C>(in, 0);
    size_t i = 0;
    for (; n - i >= kLanes; i += kLanes)
        for (size_t k = 0; k < kLanes; ++k) {
            C const v = LoadElement<C>(in, i + k);
            lo[k] = v < lo[k] ? v : lo[k];
            hi[k] = v > hi[k] ? v : hi[k];
        }
    for (; i < n; ++i) {
        C const v = LoadElement<C>(in, i);
        lo[0] = v < lo[0] ? v : lo[0];
        hi[0] = v > hi[0] ? v : hi[0];
    }
    low = lo[0];
    high = hi[0];
    for (size_t k = 1; k < kLanes; ++k) {
        low = lo[k] < low ? lo[k] : low;
        high = hi[k] > high ? hi[k] : high;
    }
}

template <class C> __attribute__((target("avx2"))) void SpanAvx2(void const *in, size_t n, C &low, C &high) {
    SpanLoop<C>(in, n, low, high);
}

template <class C>
__attribute__((target("avx512f,avx512bw,avx512vl"))) void SpanAvx512(void const *in, size_t n, C &low, C &high) {
    SpanLoop<C>(in, n, low, high);
}

// The span of n > 0 integer counts.
template <class C> void Extremes(STypedData counts, uint32_t n, int64_t &low, int64_t &high) {
    C lo, hi;
    cpu::ECpuPath const path = cpu::CpuPath();
    if (path >= cpu::CP_AVX512)
        SpanAvx512<C>(counts.Data, n, lo, hi);
    else if (path >= cpu::CP_AVX2)
        SpanAvx2<C>(counts.Data, n, lo, hi);
    else
        SpanLoop<C>(counts.Data, n, lo, hi);
    low = lo;
    high = hi;
}

// The table's entries at four packed places, stored together at out (which
// may be unaligned).
template <class O> [[gnu::always_inline]] inline void FourEntries(O const *table, uint64_t places, unsigned char *out) {
    O const four[4] = {table[places & 0xffff], table[(places >> 16) & 0xffff], table[(places >> 32) & 0xffff],
                       table[places >> 48]};
    std::memcpy(out, four, sizeof four);
}

// out[i] = table[in[i] - low] for 16-bit counts, eight at a time: one load
// gives four places, and the entries leave in vector stores (measured faster
// here than one load and store per count, and than AVX-512 gathers).
// Gives the number of counts done, a multiple of 8.
template <class C, class O>
size_t LookUpPacked(void const *in, O const *table, int64_t low, unsigned char *out, size_t n) {
    auto const *counts = static_cast<unsigned char const *>(in);
    SFourPlaces<C> const places(low);
    size_t i = 0;
    for (; n - i >= 8; i += 8) {
        FourEntries(table, places(counts + i * sizeof(C)), out + i * sizeof(O));
        FourEntries(table, places(counts + (i + 4) * sizeof(C)), out + (i + 4) * sizeof(O));
    }
    return i;
}

template <class T> T *Offset(STypedData d, size_t i) { return static_cast<T *>(d.Data) + i; }

} // namespace

struct CFrameTemperatures::SState {
    TArray<double> radiance;    // counts to radiance
    TArray<double> temperature; // radiance to degrees Celsius
    ETempType scale = TT_Celsius;
    // The road for counts tableLow .. tableLow + size - 1, in double and
    // stored as float.
    int64_t tableLow = 0;
    std::vector<double> asDouble;
    std::vector<float> asFloat;

    // The per-value road for a block of counts held as doubles, in place.
    void Road(double *v, uint32_t count) {
        for (uint32_t e = 0; e < count; ++e)
            v[e] = PolyValue(PolyValue(v[e], radiance), temperature);
        ToScale(v, count);
    }
    void Horner(double *v, uint32_t count) {
        double celsius[kWorkBlock];
        double radianceBlock[kWorkBlock];
        HornerBlock(radiance, v, radianceBlock, count);
        HornerBlock(temperature, radianceBlock, celsius, count);
        std::copy(celsius, celsius + count, v);
        ToScale(v, count);
    }
    void ToScale(double *v, uint32_t count) {
        CMath::ConvertTemperature({v, DT_Double}, {v, DT_Double}, count, TT_Celsius, scale);
    }

    // Counts read a block at a time into doubles, evaluated by `method`,
    // stored in the output's type.
    template <void (SState::*Method)(double *, uint32_t)>
    void Evaluate(STypedData counts, STypedData out, uint32_t n) {
        int const inSize = DataTypeSize(counts.Type), outSize = DataTypeSize(out.Type);
        double block[kWorkBlock];
        for (uint32_t first = 0; first < n; first += kWorkBlock) {
            uint32_t const count = n - first < kWorkBlock ? n - first : kWorkBlock;
            ConvertArray({block, DT_Double}, {Offset<unsigned char>(counts, size_t(first) * inSize), counts.Type}, count);
            (this->*Method)(block, count);
            ConvertArray({Offset<unsigned char>(out, size_t(first) * outSize), out.Type}, {block, DT_Double}, count);
        }
    }

    // The road for counts from .. to - 1 into out.
    void Tabulate(double *out, int64_t from, int64_t to) {
        for (int64_t c = from; c < to; ++c)
            out[c - from] = double(c);
        Road(out, uint32_t(to - from));
    }

    // Grows the table to cover low..high; false when it cannot.
    bool Cover(int64_t low, int64_t high) {
        int64_t const oldLow = tableLow, oldHigh = tableLow + int64_t(asDouble.size()) - 1;
        if (!asDouble.empty()) {
            if (low >= oldLow && high <= oldHigh) return true;
            low = std::min(low, oldLow);
            high = std::max(high, oldHigh);
        }
        if (uint64_t(high) - uint64_t(low) >= uint64_t(kMaxTableSpan)) return false;
        std::vector<double> grown;
        std::vector<float> grownFloat;
        try {
            grown.resize(size_t(high - low + 1));
            grownFloat.resize(grown.size());
        } catch (std::bad_alloc const &) {
            return false;
        }
        if (asDouble.empty()) {
            Tabulate(grown.data(), low, high + 1);
        } else {
            Tabulate(grown.data(), low, oldLow);
            std::copy(asDouble.begin(), asDouble.end(), grown.begin() + (oldLow - low));
            Tabulate(grown.data() + (oldHigh + 1 - low), oldHigh + 1, high + 1);
        }
        ConvertArray({grownFloat.data(), DT_Float}, {grown.data(), DT_Double}, uint32_t(grown.size()));
        asDouble = std::move(grown);
        asFloat = std::move(grownFloat);
        tableLow = low;
        return true;
    }

    template <class C, class O> void LookUp(STypedData counts, STypedData out, uint32_t n) {
        O const *table = std::is_same_v<O, float> ? reinterpret_cast<O const *>(asFloat.data())
                                                  : reinterpret_cast<O const *>(asDouble.data());
        void const *in = counts.Data;
        auto *bytes = static_cast<unsigned char *>(out.Data);
        int64_t const low = tableLow;
        size_t i = 0;
        if constexpr (sizeof(C) == 2) {
            if (size_t(n) * sizeof(O) >= kStreamedBytes && cpu::CpuPath() >= cpu::CP_AVX512)
                i = LookUpStreamed<C, O>(in, table, low, bytes, n);
            if (i == 0) i = LookUpPacked<C, O>(in, table, low, bytes, n);
        }
        // The rest, and other widths: nothing but loads and stores, unrolled.
#pragma GCC unroll 8
        for (; i < n; ++i)
            StoreElement<O>(bytes, i, EntryOf<C>(in, i, table, low));
    }

    template <class C> void ConvertCounts(STypedData counts, STypedData out, uint32_t n) {
        if constexpr (kIsCount<C>) {
            int64_t low = 0, high = 0;
            if (n) Extremes<C>(counts, n, low, high);
            if (n && Cover(low, high)) {
                if (out.Type == DT_Float)
                    LookUp<C, float>(counts, out, n);
                else
                    LookUp<C, double>(counts, out, n);
            } else {
                Evaluate<&SState::Road>(counts, out, n);
            }
        } else {
            Evaluate<&SState::Horner>(counts, out, n);
        }
    }
};

CFrameTemperatures::CFrameTemperatures() = default;
CFrameTemperatures::~CFrameTemperatures() = default;
CFrameTemperatures::CFrameTemperatures(CFrameTemperatures &&other) noexcept = default;
CFrameTemperatures &CFrameTemperatures::operator=(CFrameTemperatures &&other) noexcept = default;

bool CFrameTemperatures::SetPage(CRCalFile &cal, int page, ETempType scale) {
    m_state.reset();
    if (!IsScale(scale) || page < 0 || uint32_t(page) >= cal.CalPages.GetSize()) return false;
    auto state = std::unique_ptr<SState>(new (std::nothrow) SState);
    if (!state) return false;
    if (!cal.GetCoefficients(page, state->radiance) || !cal.GetTempCoefficients(page, state->temperature)) return false;
    // A fit over NaN radiances (a filter table holding NaN, say) leaves
    // coefficients that are no number: every temperature would be NaN.
    if (!AllFinite(state->radiance) || !AllFinite(state->temperature)) return false;
    state->scale = scale;
    m_state = std::move(state);
    return true;
}

bool CFrameTemperatures::Convert(STypedData counts, STypedData temperatures, uint32_t n) {
    if (!m_state || !IsTemperatureType(temperatures.Type) || DataTypeSize(counts.Type) == 0) return false;
    DispatchOne(counts.Type, [&](auto tag) { m_state->ConvertCounts<typename decltype(tag)::type>(counts, temperatures, n); });
    return true;
}

bool CountsToTemperatures(CRCalFile &cal, int page, STypedData counts, STypedData temperatures, uint32_t n,
                          ETempType scale) {
    CFrameTemperatures frame;
    return frame.SetPage(cal, page, scale) && frame.Convert(counts, temperatures, n);
}

} // namespace qv
