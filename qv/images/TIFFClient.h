/// @file
/// libtiff over an IFile: TIFFClientOpen with callbacks on the file, libtiff's
/// messages kept off stderr, and its single allocations bounded by
/// kMaxBitmapBytes. The file stays the caller's: closing the handle leaves it
/// open. Null when libtiff refuses the file.
///
/// libtiff does not check every seek it makes while writing, so a failed
/// write or seek is remembered in the client: from then on every write and
/// seek fails, and a writer asks failed before it reports success. A read
/// that fails short of the file's end is remembered too: libtiff takes it
/// for the end of the chain of directories, so a page count asks before it
/// reports. The client must outlive the handle.
#pragma once

#include <tiffio.h>

#include <cstdint>

#include "qv/images/TIFFClientState.h"
#include "qv/numerics/TypedData.h"

namespace qv::images {

/// A libtiff handle on client.file, mode as for TIFFOpen ("r", "w"); null
/// when libtiff refuses. Close it with TIFFClose.
TIFF *OpenTIFF(STiffClient &client, char const *mode);

/// The mode for reading raw frames: libtiff does not cut a single large
/// strip into small ones ('c'), so ReadFrame reads it into the caller's
/// rows in one call; a strip is never read beyond the caller's frame.
inline constexpr char kReadFrames[] = "rc";

/// The tags that tell a raw frame's pixel form.
struct STiffForm {
    /// IMAGEWIDTH and IMAGELENGTH, in pixels.
    ///@{
    uint32_t width = 0, height = 0;
    ///@}
    /// BITSPERSAMPLE, SAMPLESPERPIXEL, PHOTOMETRIC and SAMPLEFORMAT;
    /// SAMPLESPERPIXEL and SAMPLEFORMAT count as 1 when absent.
    ///@{
    uint16_t bitsPerSample = 0, samplesPerPixel = 1, photometric = 0, sampleFormat = 1;
    ///@}

    /// Same form: every field equal.
    bool operator==(STiffForm const &) const = default;
};

/// Reads the form of the present directory; false without width or height.
bool ReadForm(TIFF *tiff, STiffForm &form);
/// The library's pixel type for a form; DT_Unknown for a form not in its table.
EDataType TypeOfForm(STiffForm const &form);
/// The form for a type of the table, with the size; false for other types.
bool FormOfType(EDataType type, uint32_t width, uint32_t height, STiffForm &form);
/// Bytes a pixel of a form of the table.
uint32_t PixelBytes(EDataType type);
/// Writes the tags of a raw frame and its rows (top row first, rows of
/// width * PixelBytes bytes); false when libtiff fails.
bool WriteFrame(TIFF *tiff, STiffForm const &form, EDataType type, void const *pixels);
/// Reads the rows of the present directory's raw frame.
bool ReadFrame(TIFF *tiff, STiffForm const &form, EDataType type, void *pixels);

} // namespace qv::images
