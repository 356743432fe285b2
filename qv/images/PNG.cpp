// PNG through libpng, with its I/O over IFile. libpng reports errors by
// longjmp: the functions that set the jump point hold only plain data, and
// everything they make is freed after they return.
#include <png.h>

#include <csetjmp>
#include <cstdlib>
#include <cstring>

#include "qv/files/IFile.h"
#include "qv/images/DecodeLimits.h"
#include "qv/images/Images.h"
#include "qv/images/Rows24.h"

namespace qv {
namespace {

constexpr double kScreenGamma = 2.2;

void ReadData(png_structp png, png_bytep data, png_size_t length) {
    IFile *file = static_cast<IFile *>(png_get_io_ptr(png));
    if (file->Read(data, uint32_t(length)) != length) png_error(png, "Read Error");
}

void WriteData(png_structp png, png_bytep data, png_size_t length) {
    IFile *file = static_cast<IFile *>(png_get_io_ptr(png));
    if (file->Write(data, uint32_t(length)) != length) png_error(png, "Write Error");
}

void FlushData(png_structp) {}

// Errors end in our longjmp; warnings are dropped (the caller sees only the result).
void ErrorQuiet(png_structp png, png_const_charp) { png_longjmp(png, 1); }
void WarningQuiet(png_structp, png_const_charp) {}

struct SPngRead {
    IFile *file = nullptr;
    png_structp png = nullptr;
    png_infop info = nullptr;
    png_bytepp rows = nullptr;
    // LoadPNG
    bool hasBackground = false;
    uint32_t background = 0;
    HBITMAP bitmap = nullptr;
    // LoadPNG16
    unsigned short *buffer = nullptr;
    unsigned long size = 0;
    bool done = false;
};

bool StartRead(SPngRead &s) {
    s.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, ErrorQuiet, WarningQuiet);
    if (!s.png) return false;
    s.info = png_create_info_struct(s.png);
    if (!s.info) return false;
    png_set_read_fn(s.png, s.file, ReadData);
    return true;
}

void EndRead(SPngRead &s) {
    std::free(s.rows);
    if (s.png) png_destroy_read_struct(&s.png, s.info ? &s.info : nullptr, nullptr);
}

// The file's own gamma against the screen's.
void CorrectGamma(SPngRead &s) {
    double gamma = 0;
    if (png_get_gAMA(s.png, s.info, &gamma)) png_set_gamma(s.png, kScreenGamma, gamma);
}

// Palette, low bit depth and transparency to 8-bit samples, then gamma.
void ExpandCommon(SPngRead &s, int colorType, int bitDepth) {
    if (colorType == PNG_COLOR_TYPE_PALETTE) png_set_expand(s.png);
    if (bitDepth < 8) png_set_expand(s.png);
    if (png_get_valid(s.png, s.info, PNG_INFO_tRNS)) png_set_expand(s.png);
    CorrectGamma(s);
}

void SetBackground(SPngRead &s, uint8_t red, uint8_t green, uint8_t blue) {
    png_color_16 colour{};
    colour.red = red;
    colour.green = green;
    colour.blue = blue;
    png_set_background(s.png, &colour, PNG_BACKGROUND_GAMMA_FILE, 1, 1.0);
}

// The file's data inflates to its rows as stored, a filter byte each: the
// bound is on those, since the picture's own pixels may take several times
// their bytes (a flat picture packed tightly would be refused otherwise).
bool Fits(SPngRead &s, png_uint_32 height) {
    uint64_t storedRow = uint64_t(png_get_rowbytes(s.png, s.info)) + 1;
    return images::FileCanCarry(storedRow, height, 1, s.file->GetSize(), images::kLosslessExpansion);
}

void ReadBitmap(SPngRead &s) {
    if (setjmp(png_jmpbuf(s.png))) return;
    png_read_info(s.png, s.info);
    png_uint_32 width = 0, height = 0;
    int bitDepth = 0, colorType = 0;
    png_get_IHDR(s.png, s.info, &width, &height, &bitDepth, &colorType, nullptr, nullptr, nullptr);
    if (!Fits(s, height)) return;
    if (bitDepth == 16) png_set_strip_16(s.png);
    if ((colorType & PNG_COLOR_MASK_ALPHA) && s.hasBackground)
        SetBackground(s, uint8_t(s.background), uint8_t(s.background >> 8), uint8_t(s.background >> 16));
    if (colorType == PNG_COLOR_TYPE_GRAY || colorType == PNG_COLOR_TYPE_GRAY_ALPHA) png_set_gray_to_rgb(s.png);
    png_color_16p fileBackground = nullptr;
    if (png_get_bKGD(s.png, s.info, &fileBackground))
        png_set_background(s.png, fileBackground, PNG_BACKGROUND_GAMMA_FILE, 1, 1.0);
    ExpandCommon(s, colorType, bitDepth);
    png_set_bgr(s.png);
    png_read_update_info(s.png, s.info);
    int channels = png_get_channels(s.png, s.info);
    if (channels != 3 && channels != 4) return;
    s.bitmap = CreateBitmap(int32_t(width), int32_t(height), 8 * channels);
    if (!s.bitmap) return;
    s.rows = static_cast<png_bytepp>(std::malloc(sizeof(png_bytep) * height));
    if (!s.rows) return;
    for (png_uint_32 y = 0; y < height; ++y) s.rows[y] = s.bitmap->Row(int32_t(height - 1 - y));
    png_read_image(s.png, s.rows);
    png_read_end(s.png, nullptr);
    s.done = true;
}

void ReadGrey16(SPngRead &s) {
    if (setjmp(png_jmpbuf(s.png))) return;
    png_read_info(s.png, s.info);
    png_uint_32 width = 0, height = 0;
    int bitDepth = 0, colorType = 0;
    png_get_IHDR(s.png, s.info, &width, &height, &bitDepth, &colorType, nullptr, nullptr, nullptr);
    uint64_t pixels = uint64_t(width) * height;
    // Too small a buffer, not 16-bit grey, or a size that is neither the
    // picture nor four times it.
    if (pixels > s.size || bitDepth != 16 || colorType != PNG_COLOR_TYPE_GRAY) return;
    if (pixels != s.size && 4 * pixels != s.size) return;
    // Only 16-bit grey gets here, so nothing needs expanding; a transparency
    // chunk must not add an alpha word, which would run past the buffer.
    CorrectGamma(s);
    png_set_swap(s.png); // PNG samples are big-endian; the buffer holds host words
    png_read_update_info(s.png, s.info);
    s.rows = static_cast<png_bytepp>(std::malloc(sizeof(png_bytep) * height));
    if (!s.rows) return;
    for (png_uint_32 y = 0; y < height; ++y) s.rows[y] = reinterpret_cast<png_bytep>(s.buffer + size_t(y) * width);
    png_read_image(s.png, s.rows);
    png_read_end(s.png, nullptr);
    s.done = true;
}

// Each sample to 2 x 2, from the end backwards so that nothing is read after
// it was overwritten.
void SpreadDouble(unsigned short *buffer, size_t width, size_t height) {
    for (size_t y = 2 * height; y-- > 0;)
        for (size_t x = 2 * width; x-- > 0;) buffer[y * 2 * width + x] = buffer[(y / 2) * width + x / 2];
}

struct SPngWrite {
    IFile *file = nullptr;
    images::SRows24 *rows = nullptr;
    png_bytepp table = nullptr;
    bool done = false;
};

void WriteRows(SPngWrite &s, png_structp png, png_infop info) {
    if (setjmp(png_jmpbuf(png))) return;
    png_set_write_fn(png, s.file, WriteData, FlushData);
    png_set_IHDR(png, info, png_uint_32(s.rows->width), png_uint_32(s.rows->height), 8, PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png, info);
    png_set_bgr(png);
    png_write_image(png, s.table);
    png_write_end(png, nullptr);
    s.done = true;
}

} // namespace

bool IsPNG(IFile *file) {
    if (!file || file->Seek(0, 1) != 0) return false;
    png_byte signature[8] = {};
    uint32_t n = file->Read(signature, 8);
    file->Seek(0, 1);
    return n == 8 && png_sig_cmp(signature, 0, 8) == 0;
}

HBITMAP LoadPNG(IFile *file, CPropertyArray properties) {
    if (!file) return nullptr;
    SPngRead s;
    s.file = file;
    s.hasBackground = properties.FindValue(u"BackgroundColor") >= 0;
    if (s.hasBackground) s.background = uint32_t(int(properties[u"BackgroundColor"]));
    if (StartRead(s)) ReadBitmap(s);
    EndRead(s);
    if (!s.done && s.bitmap) {
        DeleteBitmap(s.bitmap);
        s.bitmap = nullptr;
    }
    return s.bitmap;
}

bool LoadPNG16(IFile *file, unsigned short *buffer, unsigned long size) {
    if (!file || !buffer) return false;
    SPngRead s;
    s.file = file;
    s.buffer = buffer;
    s.size = size;
    if (StartRead(s)) ReadGrey16(s);
    png_uint_32 width = s.info ? png_get_image_width(s.png, s.info) : 0;
    png_uint_32 height = s.info ? png_get_image_height(s.png, s.info) : 0;
    EndRead(s);
    if (!s.done) return false;
    if (4 * uint64_t(width) * height == size) SpreadDouble(buffer, width, height);
    return true;
}

bool SavePNG(HBITMAP bitmap, IFile *file, CPropertyArray) {
    images::SRows24 rows = images::FetchRows24(bitmap);
    if (rows.empty() || !file) return false;
    SPngWrite s;
    s.file = file;
    s.rows = &rows;
    s.table = static_cast<png_bytepp>(std::malloc(sizeof(png_bytep) * size_t(rows.height)));
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, ErrorQuiet, WarningQuiet);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    if (s.table && info) {
        for (int32_t y = 0; y < rows.height; ++y) s.table[y] = rows.Row(rows.height - 1 - y);
        WriteRows(s, png, info);
    }
    if (png) png_destroy_write_struct(&png, info ? &info : nullptr);
    std::free(s.table);
    return s.done;
}

} // namespace qv
