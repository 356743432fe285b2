/// @file
/// STypedData: a buffer pointer tagged with the type of its elements, the
/// currency of the typed array operations (TypedArray.h) and of pixel data.
///
/// Ownership: an STypedData never owns its buffer; it is passed by value and
/// the caller keeps the memory alive. Threads: no shared state.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

/// Element types; the values are stored in image files, so they never change.
/// 7 is a hole: no type and no operation answers to it.
enum EDataType : int32_t {
    DT_Int8 = 0,
    DT_UInt8 = 1,
    DT_Int16 = 2,
    DT_UInt16 = 3,
    DT_Int32 = 4,
    DT_UInt32 = 5,
    DT_Int64 = 6,
    DT_Float = 8,
    DT_Double = 9,
    DT_Packed = 10, ///< a pixel that is no single number (YUV, RGB)
    DT_Unknown = 11,
};

/// Bytes of one element; 0 for the hole, DT_Packed, DT_Unknown and anything
/// out of range.
QV_API int DataTypeSize(EDataType type);

/// @copydoc TypedData.h
struct QV_API STypedData {
    /// Element i of a typed buffer, read and written in the buffer's own type.
    /// Holds a pointer to the STypedData it came from, which must outlive it.
    /// Reads of a type without arithmetic give 0; writes to one do nothing.
    /// Writes convert as ConvertArray does (floating point truncates toward
    /// zero to 64 bits, NaN and out of range give INT64_MIN, then wrap).
    struct QV_API VALUE {
        STypedData const *Owner; ///< the buffer
        int Index;               ///< the element

        operator double() const;     ///< the element's value
        VALUE &operator=(double v);  ///< stores v, converted
        /// Exact for every integer element, 64-bit ones included.
        ///@{
        int64_t GetInt64() const;
        void SetInt64(int64_t v);
        VALUE &operator=(VALUE const &other); ///< copies the element's value
        VALUE(VALUE const &) = default;
        VALUE(STypedData const *owner, int index) : Owner(owner), Index(index) {}
        ///@}
    };

    void *Data = nullptr;        ///< the buffer, not owned
    EDataType Type = DT_Unknown; ///< the type of its elements

    STypedData() = default; ///< no buffer, DT_Unknown
    STypedData(void *data, EDataType type) : Data(data), Type(type) {} ///< tags data with type

    VALUE operator[](int i) const { return VALUE(this, i); } ///< element i; no bounds test
};

} // namespace qv
