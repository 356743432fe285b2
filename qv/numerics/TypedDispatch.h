/// @file
/// Run-time element types to compile-time ones (internal header of
/// qv/numerics). Each typed operation dispatches once per call, here, to one
/// template instance for its exact types; nothing is decided per element.
#pragma once

#include <cstdint>

#include "qv/numerics/TypedData.h"

namespace qv::numerics_detail {

/// @copydoc TypedDispatch.h
template <class T> struct TypeTag {
    using type = T; ///< the element type
};

/// f(TypeTag<T>{}) for the element type T of `type`; types without arithmetic
/// (7, DT_Packed, DT_Unknown, out of range) call nothing.
template <class F> void DispatchOne(EDataType type, F &&f) {
    switch (type) {
    case DT_Int8: f(TypeTag<int8_t>{}); return;
    case DT_UInt8: f(TypeTag<uint8_t>{}); return;
    case DT_Int16: f(TypeTag<int16_t>{}); return;
    case DT_UInt16: f(TypeTag<uint16_t>{}); return;
    case DT_Int32: f(TypeTag<int32_t>{}); return;
    case DT_UInt32: f(TypeTag<uint32_t>{}); return;
    case DT_Int64: f(TypeTag<int64_t>{}); return;
    case DT_Float: f(TypeTag<float>{}); return;
    case DT_Double: f(TypeTag<double>{}); return;
    default: return;
    }
}

/// f(TypeTag<T1>{}, TypeTag<T2>{}, ...) for the element types of `types`, in
/// order; nothing if any of them has no arithmetic.
template <class F> void Dispatch(F &&f) { f(); }

/// The step of Dispatch: resolves the first type, then the rest.
template <class F, class... More> void Dispatch(F &&f, EDataType first, More... more) {
    DispatchOne(first, [&](auto tag) { Dispatch([&](auto... tags) { f(tag, tags...); }, more...); });
}

} // namespace qv::numerics_detail
