/// @file
/// TIFF: the library's profile for raw measurement frames (one or many to a
/// file) and for 24-bit colour bitmaps, through libtiff over IFile, so TIFF
/// works on every file system.
///
/// The profile. A frame's pixel form is told by its tags:
///   DT_UInt16  PHOTOMETRIC 1, BITSPERSAMPLE 16, SAMPLESPERPIXEL 1, SAMPLEFORMAT 1
///   DT_UInt32  1, 32, 1, 1        DT_Float  1, 32, 1, 3      DT_Double  1, 64, 1, 3
///   DT_Packed  2 (RGB), 8, 3, no SAMPLEFORMAT
/// (SAMPLESPERPIXEL and SAMPLEFORMAT count as 1 when absent). Frames are
/// written uncompressed, rows top first, with PLANARCONFIG 1, ORIENTATION 1
/// and SOFTWARE "Ostrivex"; readers take any compression libtiff reads.
///
/// IsTIFF accepts little-endian files only ("II" then 42): files of the
/// library are little-endian, and callers rely on a big-endian file failing
/// the test. GetTIFFInfo gives DT_Packed for a form outside the table.
/// LoadTIFFRaw reads the first page when its form is in the table and size
/// is exactly bytes a pixel * width * height; otherwise false, buffer untouched.
///
/// CMultiPageTIFFFile writes frames of one form one after another
/// (WriteImage), or opens a file and reads any page of the file's form
/// (ReadImage); a page of another form is refused. Create by path writes a
/// temporary file beside the target and puts it in place at Close (a failed
/// write leaves the old file whole). Packed pages read back as 3 bytes a
/// pixel, row after row.
///
/// Failures: false or null; nothing is reported and libtiff's messages stay
/// off the console. Sizes are bounded by kMaxBitmapBytes and by what the file
/// can carry. Ownership: the IFile forms leave the file to the caller (Open's
/// own flag passes it); path forms open and close their own. Threads: one
/// object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/images/TIFFClientState.h"
#include "qv/numerics/TypedData.h"

/// libtiff's handle, declared here so that libtiff's header stays private.
typedef struct tiff TIFF;

namespace qv {

class IFile;
class IFileSystem;
class CAtomicSave;

/// The size and pixel form of the first page, and the number of pages; false
/// for a file that is not a little-endian TIFF or does not read.
///@{
QV_API bool GetTIFFInfo(IFile *file, unsigned long &width, unsigned long &height, EDataType &type);
QV_API bool GetTIFFInfo(IFile *file, unsigned long &width, unsigned long &height, EDataType &type,
                        unsigned long &pages);
///@}
/// Reads the first page into buffer (size bytes); see the file comment.
QV_API bool LoadTIFFRaw(IFile *file, void *buffer, unsigned long size);
/// Writes one frame of width x height pixels of type; the path forms (null
/// fs: the disk) save atomically. False on a bad form or a failed write.
///@{
QV_API bool SaveTIFFRaw(IFile *file, void const *pixels, unsigned long width, unsigned long height, EDataType type);
QV_API bool SaveTIFFRaw(IFileSystem *fs, char16_t const *path, void const *pixels, unsigned long width,
                        unsigned long height, EDataType type);
QV_API bool SaveTIFFRaw(char16_t const *path, void const *pixels, unsigned long width, unsigned long height,
                        EDataType type);
///@}

/// @copydoc TIFF.h
class QV_API CMultiPageTIFFFile {
public:
    CMultiPageTIFFFile() = default;
    ~CMultiPageTIFFFile();
    CMultiPageTIFFFile(CMultiPageTIFFFile const &) = delete;
    CMultiPageTIFFFile &operator=(CMultiPageTIFFFile const &) = delete;

    /// Closes, then starts a file for frames of width x height pixels of
    /// type (by path through a temporary file, null fs: the disk). False on a
    /// bad form or when the file cannot be made.
    ///@{
    bool Create(IFile *file, unsigned long width, unsigned long height, EDataType type);
    bool Create(IFileSystem *fs, CString const &path, unsigned long width, unsigned long height, EDataType type);
    bool Create(CString const &path, unsigned long width, unsigned long height, EDataType type);
    ///@}
    /// Closes, then opens a TIFF for reading; with own the object deletes
    /// file at Close. False when it is not a TIFF of a known form.
    ///@{
    bool Open(IFile *file, bool own);
    bool Open(IFileSystem *fs, CString const &path);
    bool Open(CString const &path);
    ///@}
    /// Appends one frame (after Create); false on a write failure.
    bool WriteImage(void const *pixels);
    /// Reads page index into buffer (after Open); false for a missing page or
    /// one of another form.
    bool ReadImage(unsigned long index, void *buffer);
    /// False when a write or, for a file created by path, the final rename
    /// failed, and for a file created without a page (by path, the old file
    /// then stays).
    bool Close();

    /// Whether a file is open, and its frame size, pixel form and the number
    /// of pages it has (read) or that were written so far.
    ///@{
    bool IsOpen() const { return tiff != nullptr; }
    unsigned long GetWidth() const { return width; }
    unsigned long GetHeight() const { return height; }
    EDataType GetDataType() const { return type; }
    unsigned long GetNumImages() const { return images; }
    ///@}

private:
    bool ReadPacked(void *buffer);

    IFile *file = nullptr;
    bool owned = false;
    CAtomicSave *save = nullptr;
    bool failed = false;
    bool writing = false;
    uint32_t width = 0, height = 0;
    EDataType type = DT_Unknown;
    uint32_t images = 0;
    TIFF *tiff = nullptr;
    images::STiffClient client;
    uint8_t *conversion = nullptr;
    size_t conversionSize = 0;
    uint16_t bitsPerSample = 0, samplesPerPixel = 0, photometric = 0, sampleFormat = 0;
};

} // namespace qv
