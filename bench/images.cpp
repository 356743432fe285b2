// The image codecs on a 640 x 512 picture, against the same libraries called
// directly: PNG and JPEG save and load through qv (over a memory IFile)
// against libpng and libjpeg on a memory buffer (goal 0.95), and a 16-bit
// raw TIFF frame written and read through qv over a disk CFile against
// libtiff's own TIFFOpen on a plain file (goal 0.9). All timed by the
// thread's CPU clock, which counts the system calls too.
#include <benchmark/benchmark.h>

#include <jpeglib.h>
#include <png.h>
#include <tiffio.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/files/File.h"
#include "qv/files/MemFile.h"
#include "qv/images/Images.h"
#include "qv/images/TIFF.h"

namespace {

constexpr int kWidth = 640, kHeight = 512;

qv::HBITMAP Picture() {
    static qv::HBITMAP picture = [] {
        qv::HBITMAP b = qv::CreateBitmap(kWidth, kHeight, 24);
        for (int y = 0; y < kHeight; ++y)
            for (int x = 0; x < kWidth; ++x) {
                uint8_t *p = b->Row(y) + 3 * x;
                p[0] = uint8_t(x / 3 + y / 5);
                p[1] = uint8_t((x * y) >> 9);
                p[2] = uint8_t(255 - y / 2);
            }
        return b;
    }();
    return picture;
}

// ---- PNG through libpng directly on a memory buffer ----

struct SBuffer {
    std::vector<uint8_t> bytes;
    size_t at = 0;
};

void PngWrite(png_structp png, png_bytep data, png_size_t n) {
    auto *b = static_cast<SBuffer *>(png_get_io_ptr(png));
    b->bytes.insert(b->bytes.end(), data, data + n);
}
void PngFlush(png_structp) {}
void PngRead(png_structp png, png_bytep data, png_size_t n) {
    auto *b = static_cast<SBuffer *>(png_get_io_ptr(png));
    if (b->at + n > b->bytes.size()) png_error(png, "short");
    std::copy(b->bytes.begin() + long(b->at), b->bytes.begin() + long(b->at + n), data);
    b->at += n;
}

void LibpngSave(SBuffer &out, std::vector<png_bytep> &rows) {
    out.bytes.clear();
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png)) == 0) {
        png_set_write_fn(png, &out, PngWrite, PngFlush);
        png_set_IHDR(png, info, kWidth, kHeight, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(png, info);
        png_set_bgr(png);
        png_write_image(png, rows.data());
        png_write_end(png, nullptr);
    }
    png_destroy_write_struct(&png, &info);
}

void LibpngLoad(SBuffer &in, std::vector<uint8_t> &pixels, std::vector<png_bytep> &rows) {
    in.at = 0;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    if (setjmp(png_jmpbuf(png)) == 0) {
        png_set_read_fn(png, &in, PngRead);
        png_read_info(png, info);
        png_set_bgr(png);
        png_read_update_info(png, info);
        pixels.assign(size_t(kWidth) * 3 * kHeight, 0);
        for (int y = 0; y < kHeight; ++y) rows[size_t(y)] = pixels.data() + size_t(kHeight - 1 - y) * kWidth * 3;
        png_read_image(png, rows.data());
        png_read_end(png, nullptr);
    }
    png_destroy_read_struct(&png, &info, nullptr);
}

std::vector<png_bytep> BottomUpRows(qv::HBITMAP b) {
    std::vector<png_bytep> rows(kHeight);
    for (int y = 0; y < kHeight; ++y) rows[size_t(y)] = b->Row(kHeight - 1 - y);
    return rows;
}

void BM_PngSave(benchmark::State &state) {
    qv::CMemFile mem;
    mem.SetGrowthRate(65535);
    SBuffer out;
    std::vector<png_bytep> rows = BottomUpRows(Picture());
    bench::RunPaired(state, {"PNG save 640x512, qv over IFile vs libpng on memory", 0.95}, 1,
                     [&] { mem.Reset(); qv::SavePNG(Picture(), &mem, qv::CPropertyArray()); },
                     [&] { LibpngSave(out, rows); });
}
BENCHMARK(BM_PngSave)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_PngLoad(benchmark::State &state) {
    qv::CMemFile mem;
    qv::SavePNG(Picture(), &mem, qv::CPropertyArray());
    SBuffer in;
    std::vector<png_bytep> rows = BottomUpRows(Picture());
    LibpngSave(in, rows);
    std::vector<uint8_t> pixels;
    bench::RunPaired(state, {"PNG load 640x512, qv over IFile vs libpng on memory", 0.95}, 1,
                     [&] { mem.Seek(0, 1); qv::DeleteBitmap(qv::LoadPNG(&mem, qv::CPropertyArray())); },
                     [&] { LibpngLoad(in, pixels, rows); });
}
BENCHMARK(BM_PngLoad)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- JPEG through libjpeg directly on a memory buffer ----

void LibjpegSave(unsigned char *&out, unsigned long &size, std::vector<JSAMPROW> &rows) {
    jpeg_compress_struct c;
    jpeg_error_mgr err;
    c.err = jpeg_std_error(&err);
    jpeg_create_compress(&c);
    jpeg_mem_dest(&c, &out, &size);
    c.image_width = kWidth;
    c.image_height = kHeight;
    c.input_components = 3;
    c.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&c);
    jpeg_start_compress(&c, TRUE);
    while (c.next_scanline < c.image_height) jpeg_write_scanlines(&c, rows.data() + c.next_scanline, kHeight);
    jpeg_finish_compress(&c);
    jpeg_destroy_compress(&c);
}

void LibjpegLoad(unsigned char const *in, unsigned long size, std::vector<uint8_t> &pixels,
                 std::vector<JSAMPROW> &rows) {
    jpeg_decompress_struct d;
    jpeg_error_mgr err;
    d.err = jpeg_std_error(&err);
    jpeg_create_decompress(&d);
    jpeg_mem_src(&d, in, size);
    jpeg_read_header(&d, TRUE);
    d.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&d);
    pixels.assign(size_t(kWidth) * 3 * kHeight, 0);
    for (int y = 0; y < kHeight; ++y) rows[size_t(y)] = pixels.data() + size_t(kHeight - 1 - y) * kWidth * 3;
    while (d.output_scanline < d.output_height)
        jpeg_read_scanlines(&d, rows.data() + d.output_scanline, d.output_height - d.output_scanline);
    jpeg_finish_decompress(&d);
    jpeg_destroy_decompress(&d);
}

void BM_JpegSave(benchmark::State &state) {
    qv::CMemFile mem;
    mem.SetGrowthRate(65535);
    std::vector<JSAMPROW> rows = BottomUpRows(Picture());
    unsigned char *out = nullptr;
    unsigned long size = 0;
    bench::RunPaired(state, {"JPEG save 640x512, qv over IFile vs libjpeg on memory", 0.95}, 1,
                     [&] { mem.Reset(); qv::SaveJPEG(Picture(), &mem, qv::CPropertyArray()); },
                     [&] { LibjpegSave(out, size, rows); });
    std::free(out);
}
BENCHMARK(BM_JpegSave)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_JpegLoad(benchmark::State &state) {
    qv::CMemFile mem;
    qv::SaveJPEG(Picture(), &mem, qv::CPropertyArray());
    std::vector<JSAMPROW> rows = BottomUpRows(Picture());
    unsigned char *in = nullptr;
    unsigned long size = 0;
    LibjpegSave(in, size, rows);
    std::vector<uint8_t> pixels;
    bench::RunPaired(state, {"JPEG load 640x512, qv over IFile vs libjpeg on memory", 0.95}, 1,
                     [&] { mem.Seek(0, 1); qv::DeleteBitmap(qv::LoadJPEG(&mem, nullptr)); },
                     [&] { LibjpegLoad(in, size, pixels, rows); });
    std::free(in);
}
BENCHMARK(BM_JpegLoad)->UseManualTime()->Unit(benchmark::kMillisecond);

// ---- TIFF raw frames: qv over CFile against TIFFOpen ----

std::vector<uint16_t> const &Frame() {
    static std::vector<uint16_t> const frame = [] {
        std::vector<uint16_t> f(size_t(kWidth) * kHeight);
        for (size_t i = 0; i < f.size(); ++i) f[i] = uint16_t(2000 + (i % kWidth) * 3 + i / kWidth);
        return f;
    }();
    return frame;
}

std::string Scratch(char const *name) { return std::string("/tmp/qv_bench_") + std::to_string(getpid()) + name; }

void LibtiffWrite(std::string const &path) {
    TIFF *t = TIFFOpen(path.c_str(), "w");
    TIFFSetField(t, TIFFTAG_IMAGEWIDTH, kWidth);
    TIFFSetField(t, TIFFTAG_IMAGELENGTH, kHeight);
    TIFFSetField(t, TIFFTAG_BITSPERSAMPLE, 16);
    TIFFSetField(t, TIFFTAG_SAMPLESPERPIXEL, 1);
    TIFFSetField(t, TIFFTAG_PLANARCONFIG, 1);
    TIFFSetField(t, TIFFTAG_PHOTOMETRIC, 1);
    TIFFSetField(t, TIFFTAG_SAMPLEFORMAT, 1);
    TIFFSetField(t, TIFFTAG_ORIENTATION, 1);
    for (int y = 0; y < kHeight; ++y)
        TIFFWriteScanline(t, const_cast<uint16_t *>(Frame().data()) + size_t(y) * kWidth, uint32_t(y), 0);
    TIFFClose(t);
}

void LibtiffRead(std::string const &path, std::vector<uint16_t> &out) {
    TIFF *t = TIFFOpen(path.c_str(), "r");
    for (int y = 0; y < kHeight; ++y) TIFFReadScanline(t, out.data() + size_t(y) * kWidth, uint32_t(y), 0);
    TIFFClose(t);
}

void QvWrite(std::u16string const &path) {
    qv::CFile file;
    file.Open(path.c_str(), 0x08 | 0x20);
    qv::SaveTIFFRaw(&file, Frame().data(), kWidth, kHeight, qv::DT_UInt16);
}

std::u16string Wide(std::string const &s) { return std::u16string(s.begin(), s.end()); }

void BM_TiffRawWrite(benchmark::State &state) {
    std::string ours = Scratch("_qv.tif"), theirs = Scratch("_libtiff.tif");
    std::u16string wide = Wide(ours);
    Frame(); // made before the timing, not inside qv's first round
    bench::RunPaired(state, {"TIFF 640x512 u16 write, qv over CFile vs libtiff on a file", 0.9}, 1,
                     [&] { QvWrite(wide); }, [&] { LibtiffWrite(theirs); });
    std::remove(ours.c_str());
    std::remove(theirs.c_str());
}
BENCHMARK(BM_TiffRawWrite)->UseManualTime()->Unit(benchmark::kMillisecond);

void BM_TiffRawRead(benchmark::State &state) {
    std::string ours = Scratch("_qv_r.tif"), theirs = Scratch("_libtiff_r.tif");
    std::u16string wide = Wide(ours);
    QvWrite(wide);
    LibtiffWrite(theirs);
    std::vector<uint16_t> a(Frame().size()), b(Frame().size());
    bench::RunPaired(state, {"TIFF 640x512 u16 read, qv over CFile vs libtiff on a file", 0.9}, 1,
                     [&] {
                         qv::CFile file;
                         file.Open(wide.c_str(), 0x12);
                         qv::LoadTIFFRaw(&file, a.data(), (unsigned long)(a.size() * 2));
                     },
                     [&] { LibtiffRead(theirs, b); });
    std::remove(ours.c_str());
    std::remove(theirs.c_str());
}
BENCHMARK(BM_TiffRawRead)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
