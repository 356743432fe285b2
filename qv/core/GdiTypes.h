/// @file
/// The value types that settings and pictures exchange: a rectangle, a colour
/// and a font description, with the fields and widths callers know from the
/// design (32-bit LONG fields, a BYTE per flag, a face name of 32 char16_t
/// units). Plain records: copy them freely, no ownership, no threads rules.
#pragma once

#include <cstdint>

namespace qv {

/// @copydoc GdiTypes.h
struct RECT {
    int32_t left;   ///< x of the left edge
    int32_t top;    ///< y of the top edge
    int32_t right;  ///< x of the right edge
    int32_t bottom; ///< y of the bottom edge
};

/// 0x00BBGGRR: red in the low byte.
using COLORREF = uint32_t;

inline constexpr int LF_FACESIZE = 32; ///< units of LOGFONTW::lfFaceName, terminator included

/// @copydoc GdiTypes.h
struct LOGFONTW {
    int32_t lfHeight;         ///< character height in logical units
    int32_t lfWidth;          ///< average character width; 0: chosen to suit the height
    int32_t lfEscapement;     ///< angle of the text line, in tenths of a degree
    int32_t lfOrientation;    ///< angle of each character, in tenths of a degree
    int32_t lfWeight;         ///< 0 to 1000; 400 normal, 700 bold
    uint8_t lfItalic;         ///< non-zero: italic
    uint8_t lfUnderline;      ///< non-zero: underlined
    uint8_t lfStrikeOut;      ///< non-zero: struck out
    uint8_t lfCharSet;        ///< character set code
    uint8_t lfOutPrecision;   ///< output precision code
    uint8_t lfClipPrecision;  ///< clipping precision code
    uint8_t lfQuality;        ///< output quality code
    uint8_t lfPitchAndFamily; ///< pitch in the low two bits, family in the high four
    char16_t lfFaceName[LF_FACESIZE]; ///< typeface name, NUL-terminated
};

} // namespace qv
