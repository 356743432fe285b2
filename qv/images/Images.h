/// @file
/// The bitmap codecs: BMP, PNG, JPEG and TIFF through IFile, into and out of
/// CBitmap (Bitmap.h). Loading chooses the format from the content, in the
/// order BMP, PNG, JPEG, TIFF; saving chooses it from the file's name: ".png",
/// ".jpg"/".jpeg", ".tif"/".tiff" (any case), and BMP for anything else, a
/// file without a name included.
///
/// Pixels. Everything is 24-bit colour except LoadPNG, which keeps what libpng
/// delivers at 8 bits a channel: 32 bits for a picture with alpha and no
/// "BackgroundColor" property, 24 otherwise. LoadPNG16 reads a 16-bit grey
/// PNG into a caller's buffer of size pixels, top row first; with size four
/// times the picture it spreads each sample to 2 x 2.
///
/// Properties read: "quality" (SaveJPEG: 100 or less is used, with baseline
/// tables; anything else leaves the library's default) and "BackgroundColor"
/// (LoadPNG: 0x00BBGGRR, blended under alpha).
///
/// BMP: only 24 bits a pixel, uncompressed, bottom-up, pixels right after the
/// 54-byte header (what SaveBMP writes); anything else gives null. All the
/// rows are read: an image-size field larger than them, or a file too short
/// for them, gives null.
///
/// Untrusted input: every decoder checks its sizes against the file (a
/// picture larger than its bytes could carry is refused) and against
/// kMaxBitmapBytes; the libraries' errors are caught inside and give null.
/// A JPEG cut short of its last row, or a progressive or other multi-scan
/// JPEG cut anywhere, gives null; one of a single scan that lacks only its
/// end marker loads.
///
/// Content tests seek to the start, read, and seek back to the start.
///
/// Savers write from the file's present position and give false when a write
/// fails; the path forms write a temporary file beside the target and rename
/// it (CAtomicSave), so a failed save leaves the old file whole on file
/// systems that rename. LoadHBITMAP by path opens read-only and closes.
///
/// Ownership: loaders give a new bitmap for DeleteBitmap; the files stay the
/// caller's. Threads: calls on different files may run at once.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/PropertyArray.h"
#include "qv/images/Bitmap.h"

namespace qv {

class IFile;
class IFileSystem;

/// Whether the content is of that format (IsImageFile: any of the four; by
/// path, false when the file cannot be opened).
///@{
QV_API bool IsBMP(IFile *file);
QV_API bool IsPNG(IFile *file);
QV_API bool IsJPEG(IFile *file);
QV_API bool IsTIFF(IFile *file);
QV_API bool IsImageFile(IFile *file);
QV_API bool IsImageFile(IFileSystem *fs, char16_t const *path);
///@}

/// Loads a picture of any of the four formats; null on failure.
///@{
QV_API HBITMAP LoadHBITMAP(IFile *file);
QV_API HBITMAP LoadHBITMAP(IFile *file, CPropertyArray properties);
QV_API HBITMAP LoadHBITMAP(IFileSystem *fs, char16_t const *path);
QV_API HBITMAP LoadHBITMAP(IFileSystem *fs, char16_t const *path, CPropertyArray properties);
///@}

/// Saves bitmap in the format its file name asks for; false on failure.
///@{
QV_API bool SaveHBITMAP(HBITMAP bitmap, IFile *file);
QV_API bool SaveHBITMAP(HBITMAP bitmap, IFile *file, CPropertyArray properties);
QV_API bool SaveHBITMAP(HBITMAP bitmap, IFileSystem *fs, char16_t const *path);
QV_API bool SaveHBITMAP(HBITMAP bitmap, IFileSystem *fs, char16_t const *path, CPropertyArray properties);
///@}

/// The 24-bit BMP form that SaveBMP writes; null for anything else.
QV_API HBITMAP LoadBMP(IFile *file);
/// extra: where the radiometric payload of the JPEG goes, at its position,
/// after the picture has decoded (RadiometricJPEG.h); may be null.
///@{
QV_API HBITMAP LoadJPEG(IFile *file, IFile *extra);
QV_API HBITMAP LoadPNG(IFile *file, CPropertyArray properties);
QV_API HBITMAP LoadTIFF(IFile *file);
QV_API bool LoadPNG16(IFile *file, unsigned short *buffer, unsigned long size);
///@}

/// Write bitmap in one format at the file's position; false on failure.
///@{
QV_API bool SaveBMP(HBITMAP bitmap, IFile *file, CPropertyArray properties);
QV_API bool SaveJPEG(HBITMAP bitmap, IFile *file, CPropertyArray properties);
QV_API bool SavePNG(HBITMAP bitmap, IFile *file, CPropertyArray properties);
QV_API bool SaveTIFF(HBITMAP bitmap, IFile *file, CPropertyArray properties);
///@}

} // namespace qv
