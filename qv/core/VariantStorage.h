/// @file
/// Internal: how CVariant keeps a scalar in its eight value bytes. A bool is
/// stored as the byte 1 or 0 and read back as "not 0", so stale bytes never
/// make an invalid bool.
#pragma once

#include <cstring>
#include <type_traits>

#include "qv/core/Variant.h"

namespace qv {

template <class T> void CVariant::Store(EType t, T v) {
    static_assert(sizeof(T) <= sizeof value && !std::is_same_v<T, bool>, "a scalar of up to eight bytes");
    type = t;
    std::memcpy(value, &v, sizeof v);
}

template <class T> T CVariant::Stored() const {
    static_assert(sizeof(T) <= sizeof value && !std::is_same_v<T, bool>, "a scalar of up to eight bytes");
    T v;
    std::memcpy(&v, value, sizeof v);
    return v;
}

} // namespace qv
