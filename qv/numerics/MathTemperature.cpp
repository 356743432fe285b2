// CMath::ConvertTemperature: element types dispatched once to a loop that
// reads a block into doubles, applies the scale change to the block, and
// writes it in the destination type.
#include "qv/numerics/ElementCast.h"
#include "qv/numerics/Math.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/TypedDispatch.h"
#include "qv/numerics/TypedKernel.h"

namespace qv {

using namespace numerics_detail;

namespace {

using BlockFormula = void (*)(double *block);

template <double (*F)(double)> void ApplyToBlock(double *block) {
    for (size_t k = 0; k < kBlock; ++k)
        block[k] = F(block[k]);
}

// [from][to]; each formula exactly as stored results were computed (order of
// operations and the division by 1.8 included).
constexpr BlockFormula kFormulas[4][4] = {
    {nullptr, ApplyToBlock<+[](double x) { return x * 1.8 + 32.0; }>,
     ApplyToBlock<+[](double x) { return x + 273.15; }>, ApplyToBlock<+[](double x) { return (x + 273.15) * 1.8; }>},
    {ApplyToBlock<+[](double x) { return (x - 32.0) / 1.8; }>, nullptr,
     ApplyToBlock<+[](double x) { return (x + 459.67) / 1.8; }>, ApplyToBlock<+[](double x) { return x + 459.67; }>},
    {ApplyToBlock<+[](double x) { return x - 273.15; }>, ApplyToBlock<+[](double x) { return x * 1.8 - 459.67; }>,
     nullptr, ApplyToBlock<+[](double x) { return x * 1.8; }>},
    {ApplyToBlock<+[](double x) { return x / 1.8 - 273.15; }>, ApplyToBlock<+[](double x) { return x - 459.67; }>,
     ApplyToBlock<+[](double x) { return x / 1.8; }>, nullptr},
};

// One indirect call per block, none per element.
template <class D, class S> void ConvertBlocks(void *dst, void const *src, uint32_t n, BlockFormula formula) {
    double work[kBlock] = {}; // a short last block leaves stale, harmless values behind
    ForEachBlock<D>(dst, n, [&](D *block, size_t first, auto count) {
        for (size_t k = 0; k < count; ++k)
            work[k] = ElementCast<double>(LoadElement<S>(src, first + k));
        formula(work);
        for (size_t k = 0; k < count; ++k)
            block[k] = ElementCast<D>(work[k]);
    });
}

bool IsScale(ETempType t) { return t >= TT_Celsius && t <= TT_Rankine; }

} // namespace

void CMath::ConvertTemperature(STypedData dst, STypedData src, uint32_t n, ETempType from, ETempType to) {
    if (!IsScale(from) || !IsScale(to)) return;
    if (from == to) {
        if (dst.Data != src.Data) ConvertArray(dst, src, n);
        return;
    }
    BlockFormula formula = kFormulas[from][to];
    Dispatch(
        [&](auto d, auto s) {
            ConvertBlocks<typename decltype(d)::type, typename decltype(s)::type>(dst.Data, src.Data, n, formula);
        },
        dst.Type, src.Type);
}

} // namespace qv
