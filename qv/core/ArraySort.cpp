// The stable sort behind TArray::Sort, over elements relocated as raw bytes.
#include "qv/core/ArraySort.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace qv::detail {

namespace {

// Sorted runs of this many elements are built by insertion before merging.
constexpr size_t RunLength = 16;

struct Elements {
    unsigned char *base;
    size_t size;
    RelocatableCompare cmp;
    void *context;

    unsigned char *At(unsigned char *block, size_t i) const { return block + i * size; }
    bool Before(void const *a, void const *b) const { return cmp(context, a, b) < 0; }

    // Stable insertion sort of [from, to): each element moves left past the
    // ones that order strictly after it, by rotating bytes (no scratch).
    void InsertionSort(size_t from, size_t to) const {
        for (size_t i = from + 1; i < to; ++i) {
            size_t j = i;
            while (j > from && Before(At(base, i), At(base, j - 1)))
                --j;
            if (j < i) std::rotate(At(base, j), At(base, i), At(base, i + 1));
        }
    }

    // Merges the sorted runs [lo, mid) and [mid, hi) of from into to; ties
    // take the left run first.
    void Merge(unsigned char *from, unsigned char *to, size_t lo, size_t mid, size_t hi) const {
        size_t left = lo, right = mid, out = lo;
        while (left < mid && right < hi) {
            size_t take = Before(At(from, right), At(from, left)) ? right++ : left++;
            std::memcpy(At(to, out++), At(from, take), size);
        }
        std::memcpy(At(to, out), At(from, left), (mid - left) * size);
        out += mid - left;
        std::memcpy(At(to, out), At(from, right), (hi - right) * size);
    }
};

} // namespace

void SortRelocatable(void *base, size_t count, size_t size, RelocatableCompare cmp, void *context) {
    if (count < 2 || !base || size == 0) return;
    Elements elements{static_cast<unsigned char *>(base), size, cmp, context};
    for (size_t lo = 0; lo < count; lo += RunLength)
        elements.InsertionSort(lo, std::min(lo + RunLength, count));
    if (count <= RunLength) return;
    auto *scratch = static_cast<unsigned char *>(std::malloc(count * size));
    if (!scratch) return elements.InsertionSort(0, count); // slow but needs no memory
    unsigned char *from = elements.base, *to = scratch;
    for (size_t width = RunLength; width < count; width *= 2) {
        for (size_t lo = 0; lo < count; lo += 2 * width) {
            size_t mid = std::min(lo + width, count), hi = std::min(lo + 2 * width, count);
            elements.Merge(from, to, lo, mid, hi);
        }
        std::swap(from, to);
    }
    if (from != elements.base) std::memcpy(elements.base, from, count * size);
    std::free(scratch);
}

} // namespace qv::detail
