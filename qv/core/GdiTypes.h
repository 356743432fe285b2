/// @file
/// The value types that settings and pictures exchange: a rectangle, a colour
/// and a font description, with the fields and widths callers know from the
/// design (32-bit LONG fields, a BYTE per flag, a face name of 32 char16_t
/// units). Plain records: copy them freely, no ownership, no threads rules.
#pragma once

#include <cstdint>

namespace qv {

struct RECT {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};

/// 0x00BBGGRR: red in the low byte.
using COLORREF = uint32_t;

inline constexpr int LF_FACESIZE = 32;

struct LOGFONTW {
    int32_t lfHeight;
    int32_t lfWidth;
    int32_t lfEscapement;
    int32_t lfOrientation;
    int32_t lfWeight;
    uint8_t lfItalic;
    uint8_t lfUnderline;
    uint8_t lfStrikeOut;
    uint8_t lfCharSet;
    uint8_t lfOutPrecision;
    uint8_t lfClipPrecision;
    uint8_t lfQuality;
    uint8_t lfPitchAndFamily;
    char16_t lfFaceName[LF_FACESIZE];
};

} // namespace qv
