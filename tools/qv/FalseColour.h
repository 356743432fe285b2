// The picture `qv render` writes: a frame of temperatures in false colour,
// scaled up to be seen, with a colour bar beside it labelled in degrees
// Celsius by a tiny built-in font of digits (no font library needed).
#pragma once

#include <cstdint>

#include "qv/images/Bitmap.h"

namespace qvtool {

// A new 24-bit bitmap of width x height temperatures (row 0 at the top),
// coloured from low (black, blue) to high (yellow, white) between the
// frame's coldest and warmest finite values. Null when the bitmap cannot be
// made. The caller frees it with qv::DeleteBitmap.
qv::HBITMAP FalseColourPicture(float const *celsius, uint32_t width, uint32_t height);

} // namespace qvtool
