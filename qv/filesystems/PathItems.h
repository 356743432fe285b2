/// @file
/// Internal to the path algebra (not installed for callers): walking the items
/// of a path, the runs of non-separators. Leading, doubled and trailing
/// separators give no item.
#pragma once

#include <cstddef>

#include "qv/filesystems/PathAlgebra.h"

namespace qv {

/// @copydoc PathItems.h
class CPathItems {
public:
    /// Before the first item of path, which must outlive the walk.
    explicit CPathItems(char16_t const *path) : next(path) {}

    /// Moves to the next item; false when there is none left.
    ///@{
    bool Next() {
        while (CPathAlgebra::IsSeparator(*next))
            ++next;
        if (*next == 0) return false;
        item = next;
        while (*next != 0 && !CPathAlgebra::IsSeparator(*next))
            ++next;
        return true;
    }
    char16_t const *Item() const { return item; }
    size_t Length() const { return size_t(next - item); }
    ///@}

private:
    char16_t const *next;
    char16_t const *item = nullptr;
};

/// The items of path, separators not counted.
size_t CountPathItems(char16_t const *path);
/// Leading items that a and b share, compared without regard to case.
size_t CountCommonPathItems(char16_t const *a, char16_t const *b);

} // namespace qv
