// CModtranTape7File: the loaded runs by column, and interpolation between
// runs along their geometry.
#include <algorithm>
#include <cstring>

#include "qv/modtran/ModtranTape7File.h"
#include "qv/modtran/Tape7Layouts.h"

namespace qv {

using namespace modtran_detail;

namespace {

// Geometry numbers that group runs (H2) and order them in a group (range).
constexpr int kGroupValue = 1;
constexpr int kRunValue = 2;

// Index of the first item above value in sorted keys, or -1 below the first;
// at or above the last, the last (and low == high).
bool Bracket(TArray<double> const &keys, double value, int &low, int &high) {
    int n = int(keys.GetSize());
    int above = 0;
    while (above < n && keys.GetAt(uint32_t(above)) <= value) ++above;
    if (above == 0) return false;
    low = above - 1;
    high = above < n ? above : low;
    return true;
}

double Fraction(double value, double low, double high) {
    return high == low ? 0.0 : (value - low) / (high - low);
}

} // namespace

CModtranTape7File::CModtranTape7File() : columns(0), mode(-1) {}

CModtranTape7File::~CModtranTape7File() {
    Free();
}

void CModtranTape7File::Free() {
    for (uint32_t i = 0; i < runs.GetSize(); ++i)
        delete runs[i];
    runs.Empty();
    index.Empty();
    columns = 0;
    mode = -1;
}

int CModtranTape7File::nPoints() const {
    return runs.GetSize() ? int(runs.GetAt(0)->data.GetSize()) : 0;
}

bool CModtranTape7File::GetGeometry(int run, double out[3]) const {
    if (run < 0 || run >= nRuns()) return false;
    std::copy(runs.GetAt(uint32_t(run))->geometry, runs.GetAt(uint32_t(run))->geometry + 3, out);
    return true;
}

bool CModtranTape7File::GetFreq(double *out) const {
    return GetData(out, 0, T7C_FREQ);
}

bool CModtranTape7File::GetData(double *out, int run, uint64_t column) const {
    double TAPE7_DATA::*field = Tape7Field(column);
    if (run < 0) run = 0;
    if (!field || run >= nRuns()) return false;
    TArray<TAPE7_DATA> const &data = runs.GetAt(uint32_t(run))->data;
    for (uint32_t i = 0; i < data.GetSize(); ++i)
        out[i] = data.GetAt(i).*field;
    return true;
}

// Groups of runs with one H2, in rising H2; each group in rising range.
void CModtranTape7File::BuildIndex() {
    index.Empty();
    TArray<int> order;
    for (int i = 0; i < nRuns(); ++i)
        order.Add(i);
    auto value = [this](int run, int k) { return runs.GetAt(uint32_t(run))->geometry[k]; };
    std::stable_sort(order.GetData(), order.GetData() + order.GetSize(), [&](int x, int y) {
        if (value(x, kGroupValue) != value(y, kGroupValue)) return value(x, kGroupValue) < value(y, kGroupValue);
        return value(x, kRunValue) < value(y, kRunValue);
    });
    for (uint32_t i = 0; i < order.GetSize(); ++i) {
        int run = order[i];
        bool newGroup = i == 0 || value(order[i - 1], kGroupValue) != value(run, kGroupValue);
        if (newGroup) index.Add(TArray<int>());
        index[index.GetSize() - 1].Add(run);
    }
}

bool CModtranTape7File::Interpolate(TArray<TAPE7_DATA> &out, TArray<TAPE7_DATA> const &low,
                                    TArray<TAPE7_DATA> const &high, double t) const {
    if (low.GetSize() != high.GetSize() || !out.SetSize(low.GetSize())) return false;
    constexpr size_t kFields = sizeof(TAPE7_DATA) / sizeof(double);
    static_assert(sizeof(TAPE7_DATA) == kFields * sizeof(double), "TAPE7_DATA is a row of doubles");
    for (uint32_t i = 0; i < low.GetSize(); ++i) {
        double lows[kFields], highs[kFields];
        std::memcpy(lows, &low.GetAt(i), sizeof lows);
        std::memcpy(highs, &high.GetAt(i), sizeof highs);
        for (size_t k = 1; k < kFields; ++k) // the frequency (field 0) stays that of low
            lows[k] = (highs[k] - lows[k]) * t + lows[k];
        std::memcpy(&out[i], lows, sizeof lows);
    }
    return true;
}

// The runs of one group blended at range b.
bool CModtranTape7File::Blend(TArray<TAPE7_DATA> &out, TArray<int> const &group, double b) const {
    TArray<double> keys;
    for (uint32_t i = 0; i < group.GetSize(); ++i)
        keys.Add(runs.GetAt(uint32_t(group.GetAt(i)))->geometry[kRunValue]);
    int low, high;
    if (!Bracket(keys, b, low, high)) return false;
    TAPE7_RUN const &l = *runs.GetAt(uint32_t(group.GetAt(uint32_t(low))));
    TAPE7_RUN const &h = *runs.GetAt(uint32_t(group.GetAt(uint32_t(high))));
    return Interpolate(out, l.data, h.data, Fraction(b, l.geometry[kRunValue], h.geometry[kRunValue]));
}

bool CModtranTape7File::GetData(double *freq, double *out, double a, double b, uint64_t column) const {
    double TAPE7_DATA::*field = Tape7Field(column);
    if (!field || nRuns() == 0) return false;
    TArray<TAPE7_DATA> result;
    if (nRuns() == 1) {
        result = runs.GetAt(0)->data;
    } else {
        TArray<double> keys;
        for (uint32_t i = 0; i < index.GetSize(); ++i)
            keys.Add(runs.GetAt(uint32_t(index.GetAt(i).GetAt(0)))->geometry[kGroupValue]);
        int low, high;
        TArray<TAPE7_DATA> lower, upper;
        if (!Bracket(keys, a, low, high) || !Blend(lower, index.GetAt(uint32_t(low)), b) ||
            !Blend(upper, index.GetAt(uint32_t(high)), b) ||
            !Interpolate(result, lower, upper, Fraction(a, keys.GetAt(uint32_t(low)), keys.GetAt(uint32_t(high)))))
            return false;
    }
    for (uint32_t i = 0; i < result.GetSize(); ++i) {
        freq[i] = result.GetAt(i).freq;
        out[i] = result.GetAt(i).*field;
    }
    return true;
}

} // namespace qv
