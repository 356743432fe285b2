// WildcardMatch: '|'-separated patterns with '*' and '?', run as a small
// nondeterministic automaton over the positions of one pattern.
#include <cstdint>
#include <cstring>
#include <utility>

#include "qv/core/WideChar.h"
#include "qv/filesystems/PathAlgebra.h"

namespace qv {

namespace {

constexpr size_t kPatternUnits = CPathAlgebra::PathBufferSize;

// One position per unit that is not a star, plus a final one; a star marks
// the position it stands at, so that position may consume any unit and stay.
struct SPattern {
    char16_t units[kPatternUnits];
    bool star[kPatternUnits + 1];
    size_t count = 0; // the final position
};

void Compile(char16_t const *piece, size_t length, SPattern &pattern) {
    pattern.count = 0;
    pattern.star[0] = false;
    for (size_t i = 0; i < length; ++i) {
        if (piece[i] == u'*') {
            pattern.star[pattern.count] = true;
            continue;
        }
        pattern.units[pattern.count] = piece[i] == u'?' ? u'?' : towlower(piece[i]);
        pattern.star[++pattern.count] = false;
    }
}

// The set of active positions, each entered once per step.
class CActiveSet {
public:
    // Only positions below limit are ever entered.
    explicit CActiveSet(size_t limit) { std::memset(entered, 0, limit * sizeof(entered[0])); }
    void Clear(uint32_t newStep) {
        size = 0;
        step = newStep;
    }
    void Enter(size_t position) {
        if (entered[position] == step) return;
        entered[position] = step;
        positions[size++] = uint16_t(position);
    }
    bool Has(size_t position) const { return entered[position] == step; }
    size_t Size() const { return size; }
    size_t At(size_t i) const { return positions[i]; }

private:
    uint16_t positions[kPatternUnits + 1];
    uint32_t entered[kPatternUnits + 1];
    size_t size = 0;
    uint32_t step = 0;
};

bool Matches(SPattern const &pattern, char16_t const *name) {
    CActiveSet first(pattern.count + 1), second(pattern.count + 1);
    CActiveSet *active = &first, *next = &second;
    uint32_t step = 1;
    active->Clear(step);
    active->Enter(0);
    for (; *name != 0; ++name) {
        char16_t c = towlower(*name);
        next->Clear(++step);
        for (size_t i = 0; i < active->Size(); ++i) {
            size_t p = active->At(i);
            if (pattern.star[p]) next->Enter(p);
            if (p < pattern.count && (pattern.units[p] == c || pattern.units[p] == u'?')) next->Enter(p + 1);
        }
        if (next->Size() == 0) return false;
        std::swap(active, next);
    }
    return active->Has(pattern.count);
}

} // namespace

// A list that does not fit the pattern buffer matches nothing rather than a
// cut pattern matching the wrong names.
bool CPathAlgebra::WildcardMatch(char16_t const *patterns, char16_t const *name) {
    size_t length = 0;
    while (length < kPatternUnits && patterns[length] != 0)
        ++length;
    if (length >= kPatternUnits) return false;

    SPattern pattern;
    for (size_t start = 0; start < length;) {
        size_t end = start;
        while (end < length && patterns[end] != u'|')
            ++end;
        if (end > start) {
            Compile(patterns + start, end - start, pattern);
            if (Matches(pattern, name)) return true;
        }
        start = end + 1;
    }
    return false;
}

} // namespace qv
