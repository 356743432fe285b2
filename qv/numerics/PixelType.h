/// @file
/// The pixel-type registry: four-character pixel codes mapped to a name, a
/// byte width and an element type.
///
/// A code is its four characters read as a little-endian 32-bit number
/// ("UI16" is 0x36314955). The registry is process-wide, created and filled
/// with the built-in rows at first use ("UI16", "YUY2", "UYVY", "RGB8"), and
/// never destroyed, so calls stay valid during exit. One lock (a std::mutex,
/// until the library's own lock classes exist) covers each call: every
/// function here is safe from any thread. Nothing throws; failures are
/// the results documented per function.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/numerics/TypedData.h"

namespace qv {

/// One row of the registry.
struct SPixelTypeInfo {
    uint32_t Code; ///< the four-character code (PixelCode)
    CString Name;  ///< a readable name, e.g. "YUV (YUY2)"
    uint8_t Width; ///< bytes a pixel
    EDataType Type; ///< element type; DT_Packed for a pixel of several values
};

/// The code of a four-character text, e.g. PixelCode("YUY2").
constexpr uint32_t PixelCode(char const (&text)[5]) {
    return uint32_t(uint8_t(text[0])) | uint32_t(uint8_t(text[1])) << 8 | uint32_t(uint8_t(text[2])) << 16 |
           uint32_t(uint8_t(text[3])) << 24;
}

/// Adds a row (a null name is the empty name). False, changing nothing, if
/// the code is registered already. True otherwise, even if the registry could
/// not grow (the row is then silently missing): existing callers expect it.
QV_API bool RegisterPixelType(uint32_t code, char16_t const *name, uint8_t width, EDataType type);

/// Width in bytes, -1 for an unknown code.
QV_API int PixelWidth(uint32_t code);

/// The registered name, or "I AM ERROR" for an unknown code (that exact text
/// is what callers test for). The pointer is the registry's; it stays valid
/// for the life of the process.
QV_API char16_t const *PixelTypeToString(uint32_t code);

/// DT_Unknown for an unknown code.
QV_API EDataType PixelTypeToDataType(uint32_t code);

/// The code of a name: "Grayscale", "YUV" and "RGB" (any case) give "UI16",
/// "YUY2" and "RGB8"; otherwise the first row whose name matches ignoring case,
/// or 0. A null name gives 0.
QV_API uint32_t ParsePixelType(char16_t const *name);

/// The pixel codes of an older numbering: 0 "UI16", 1 "YUY2", 2 "RGB8",
/// anything else 0.
QV_API uint32_t OldPixelTypeToNewPixelType(uint8_t old);

} // namespace qv
