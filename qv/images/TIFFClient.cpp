#include "qv/images/TIFFClient.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "qv/core/String.h"
#include "qv/files/IFile.h"
#include "qv/images/Bitmap.h"

namespace qv::images {
namespace {

STiffClient &ClientOf(thandle_t handle) { return *static_cast<STiffClient *>(handle); }
IFile *FileOf(thandle_t handle) { return ClientOf(handle).file; }

// libtiff takes a short read of a directory for the end of the chain, so a
// read that stops short of the file's end is remembered as a failure.
tmsize_t ReadProc(thandle_t h, void *buf, tmsize_t n) {
    if (n < 0 || uint64_t(n) > UINT32_MAX) return -1;
    STiffClient &client = ClientOf(h);
    uint32_t got = client.file->Read(buf, uint32_t(n));
    if (got < uint64_t(n) && client.file->GetRemaining() > 0) client.failed = true;
    return tmsize_t(got);
}

tmsize_t WriteProc(thandle_t h, void *buf, tmsize_t n) {
    STiffClient &client = ClientOf(h);
    if (client.failed || n < 0 || uint64_t(n) > UINT32_MAX) return -1;
    client.failed = client.file->Write(buf, uint32_t(n)) != uint32_t(n);
    return client.failed ? -1 : n;
}

toff_t SeekProc(thandle_t h, toff_t offset, int whence) {
    STiffClient &client = ClientOf(h);
    uint32_t origin = whence == SEEK_CUR ? 2 : whence == SEEK_END ? 3 : 1;
    int64_t position = client.failed ? -1 : client.file->Seek(int64_t(offset), origin);
    client.failed = position < 0;
    return client.failed ? toff_t(-1) : toff_t(position);
}

int CloseProc(thandle_t) { return 0; }

toff_t SizeProc(thandle_t h) {
    int64_t size = FileOf(h)->GetSize();
    return size < 0 ? 0 : toff_t(size);
}

int MapProc(thandle_t, void **, toff_t *) { return 0; }
void UnmapProc(thandle_t, void *, toff_t) {}

constexpr size_t kStripBytes = 1024 * 1024;

int Quiet(TIFF *, void *, char const *, char const *, va_list) { return 1; }

} // namespace

TIFF *OpenTIFF(STiffClient &client, char const *mode) {
    if (!client.file) return nullptr;
    char16_t wide[512] = {};
    client.file->GetFilename(wide, 512);
    CString name(wide);
    TIFFOpenOptions *options = TIFFOpenOptionsAlloc();
    if (!options) return nullptr;
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, tmsize_t(kMaxBitmapBytes));
    TIFFOpenOptionsSetErrorHandlerExtR(options, Quiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options, Quiet, nullptr);
    TIFF *tiff = TIFFClientOpenExt(name.ConvertToUTF8(), mode, &client, ReadProc, WriteProc, SeekProc, CloseProc,
                                   SizeProc, MapProc, UnmapProc, options);
    TIFFOpenOptionsFree(options);
    return tiff;
}

bool ReadForm(TIFF *tiff, STiffForm &form) {
    form = STiffForm{};
    if (!TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &form.width) || !TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &form.height))
        return false;
    TIFFGetField(tiff, TIFFTAG_BITSPERSAMPLE, &form.bitsPerSample);
    TIFFGetField(tiff, TIFFTAG_SAMPLESPERPIXEL, &form.samplesPerPixel);
    TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &form.photometric);
    TIFFGetField(tiff, TIFFTAG_SAMPLEFORMAT, &form.sampleFormat);
    return form.width > 0 && form.height > 0;
}

namespace {

struct SFormRow {
    EDataType type;
    uint16_t photometric, bits, samples, format;
};

// Packed colour has no SAMPLEFORMAT tag; a reader counts its absence as 1.
constexpr SFormRow kForms[] = {
    {DT_UInt16, PHOTOMETRIC_MINISBLACK, 16, 1, SAMPLEFORMAT_UINT},
    {DT_UInt32, PHOTOMETRIC_MINISBLACK, 32, 1, SAMPLEFORMAT_UINT},
    {DT_Float, PHOTOMETRIC_MINISBLACK, 32, 1, SAMPLEFORMAT_IEEEFP},
    {DT_Double, PHOTOMETRIC_MINISBLACK, 64, 1, SAMPLEFORMAT_IEEEFP},
    {DT_Packed, PHOTOMETRIC_RGB, 8, 3, SAMPLEFORMAT_UINT},
};

} // namespace

EDataType TypeOfForm(STiffForm const &f) {
    for (SFormRow const &row : kForms)
        if (row.photometric == f.photometric && row.bits == f.bitsPerSample && row.samples == f.samplesPerPixel &&
            row.format == f.sampleFormat)
            return row.type;
    return DT_Unknown;
}

bool FormOfType(EDataType type, uint32_t width, uint32_t height, STiffForm &form) {
    for (SFormRow const &row : kForms)
        if (row.type == type) {
            form = STiffForm{width, height, row.bits, row.samples, row.photometric, row.format};
            return width > 0 && height > 0;
        }
    return false;
}

uint32_t PixelBytes(EDataType type) { return type == DT_Packed ? 3 : uint32_t(DataTypeSize(type)); }

bool WriteFrame(TIFF *tiff, STiffForm const &form, EDataType type, void const *pixels) {
    bool ok = TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, form.width) && TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, form.height) &&
              TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, form.bitsPerSample) &&
              TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, form.samplesPerPixel) &&
              TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
              TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, form.photometric) &&
              (type == DT_Packed || TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, form.sampleFormat)) &&
              TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT) &&
              TIFFSetField(tiff, TIFFTAG_SOFTWARE, "Ostrivex");
    // Rows step by their full size: a frame wider than 65535 bytes a row is
    // written whole rather than cut.
    size_t rowBytes = size_t(form.width) * PixelBytes(type);
    // Strips of up to 1 MiB: a camera frame of 16-bit counts is one strip, whose
    // offset and size stand in the directory itself; larger frames still
    // read a strip at a time without a large buffer.
    uint32_t rowsPerStrip = uint32_t(std::max<size_t>(1, kStripBytes / std::max<size_t>(rowBytes, 1)));
    ok = ok && TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, std::min(rowsPerStrip, form.height));
    // The frame is stored as it stands (no compression, host order), so each
    // strip goes to the file straight from the caller's rows: no copy into
    // libtiff's strip buffer and one write a strip.
    auto *bytes = static_cast<uint8_t *>(const_cast<void *>(pixels));
    uint32_t strip = 0;
    for (uint64_t first = 0; ok && first < form.height; first += rowsPerStrip, ++strip) {
        tmsize_t size = tmsize_t(std::min<uint64_t>(rowsPerStrip, form.height - first) * rowBytes);
        ok = TIFFWriteRawStrip(tiff, strip, bytes + first * rowBytes, size) == size;
    }
    return ok;
}

// Strip by strip straight into the caller's rows: libtiff decodes into the
// buffer without a copy of its own.
bool ReadFrame(TIFF *tiff, STiffForm const &form, EDataType type, void *pixels) {
    uint64_t rowBytes = uint64_t(form.width) * PixelBytes(type);
    uint32_t rowsPerStrip = 0;
    if (TIFFIsTiled(tiff) || TIFFScanlineSize64(tiff) != rowBytes ||
        !TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip) || rowsPerStrip == 0)
        return false;
    uint64_t strips = (uint64_t(form.height) + rowsPerStrip - 1) / rowsPerStrip;
    if (TIFFNumberOfStrips(tiff) < strips) return false;
    auto *bytes = static_cast<uint8_t *>(pixels);
    for (uint64_t strip = 0; strip < strips; ++strip) {
        uint64_t first = strip * rowsPerStrip;
        uint64_t rows = std::min<uint64_t>(rowsPerStrip, form.height - first);
        tmsize_t size = tmsize_t(rows * rowBytes);
        if (TIFFReadEncodedStrip(tiff, tstrip_t(strip), bytes + first * rowBytes, size) != size) return false;
    }
    return true;
}

} // namespace qv::images
