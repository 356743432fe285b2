// JPEG through libjpeg, with source and destination managers over IFile.
// libjpeg reports errors through error_exit, which leaves by longjmp here:
// the functions that set the jump point hold only plain data.
#include <cstdio>

#include <jpeglib.h>

#include <csetjmp>
#include <cstdlib>
#include <cstring>
#include <new>

#include "qv/files/IFile.h"
#include "qv/images/DecodeLimits.h"
#include "qv/images/Images.h"
#include "qv/images/RadiometricJPEG.h"
#include "qv/images/Rows24.h"

namespace qv {
namespace {

constexpr size_t kBlock = 0x1000;

struct SErrorManager {
    jpeg_error_mgr pub;
    jmp_buf jump;
};

void ErrorExit(j_common_ptr cinfo) { longjmp(reinterpret_cast<SErrorManager *>(cinfo->err)->jump, 1); }
void OutputMessage(j_common_ptr) {}

void UseErrorManager(SErrorManager &err) {
    jpeg_std_error(&err.pub);
    err.pub.error_exit = ErrorExit;
    err.pub.output_message = OutputMessage;
}

struct SSource {
    jpeg_source_mgr pub;
    IFile *file;
    bool ranOut; ///< the file ended before the picture did
    JOCTET buffer[kBlock];
};

void InitSource(j_decompress_ptr) {}

boolean FillInput(j_decompress_ptr cinfo) {
    SSource *src = reinterpret_cast<SSource *>(cinfo->src);
    uint32_t n = src->file->Read(src->buffer, kBlock);
    // A read that fails before the end is no cut file: the picture fails.
    if (n == 0 && src->file->GetRemaining() > 0) cinfo->err->error_exit(reinterpret_cast<j_common_ptr>(cinfo));
    if (n == 0) {
        // A cut file ends as if its end marker were there: a file of one scan
        // that lacks only that marker decodes whole, and the decoder warns
        // when it must make up rows past the end (see Decode).
        src->ranOut = true;
        src->buffer[0] = 0xFF;
        src->buffer[1] = JPEG_EOI;
        n = 2;
    }
    src->pub.next_input_byte = src->buffer;
    src->pub.bytes_in_buffer = n;
    return TRUE;
}

void SkipInput(j_decompress_ptr cinfo, long count) {
    SSource *src = reinterpret_cast<SSource *>(cinfo->src);
    while (count > long(src->pub.bytes_in_buffer)) {
        count -= long(src->pub.bytes_in_buffer);
        FillInput(cinfo);
    }
    if (count > 0) {
        src->pub.next_input_byte += count;
        src->pub.bytes_in_buffer -= size_t(count);
    }
}

void TermSource(j_decompress_ptr) {}

void UseSource(j_decompress_ptr cinfo, SSource &src, IFile *file) {
    src.file = file;
    src.ranOut = false;
    src.pub.init_source = InitSource;
    src.pub.fill_input_buffer = FillInput;
    src.pub.skip_input_data = SkipInput;
    src.pub.resync_to_restart = jpeg_resync_to_restart;
    src.pub.term_source = TermSource;
    src.pub.bytes_in_buffer = 0;
    src.pub.next_input_byte = nullptr;
    cinfo->src = &src.pub;
}

// A short write ends the compression through the error manager's exit.
void WriteFailed(j_compress_ptr cinfo) { cinfo->err->error_exit(reinterpret_cast<j_common_ptr>(cinfo)); }

struct SDestination {
    jpeg_destination_mgr pub;
    IFile *file;
    JOCTET buffer[kBlock];
};

void InitDestination(j_compress_ptr cinfo) {
    SDestination *dst = reinterpret_cast<SDestination *>(cinfo->dest);
    dst->pub.next_output_byte = dst->buffer;
    dst->pub.free_in_buffer = kBlock;
}

boolean EmptyOutput(j_compress_ptr cinfo) {
    SDestination *dst = reinterpret_cast<SDestination *>(cinfo->dest);
    if (dst->file->Write(dst->buffer, kBlock) != kBlock) WriteFailed(cinfo);
    InitDestination(cinfo);
    return TRUE;
}

void TermDestination(j_compress_ptr cinfo) {
    SDestination *dst = reinterpret_cast<SDestination *>(cinfo->dest);
    uint32_t n = uint32_t(kBlock - dst->pub.free_in_buffer);
    if (dst->file->Write(dst->buffer, n) != n) WriteFailed(cinfo);
}

struct SJpegRead {
    jpeg_decompress_struct cinfo;
    SErrorManager err;
    SSource src;
    IFile *payload = nullptr;
    HBITMAP bitmap = nullptr;
    JSAMPARRAY rows = nullptr;
    bool done = false;
};

bool Fits(SJpegRead &s) {
    return images::FileCanCarry(s.cinfo.image_width, s.cinfo.image_height, 3, s.src.file->GetSize(),
                                images::kJpegExpansion);
}

// Comments and every application segment are kept whole, so that the
// radiometric chunks can be taken from the list after the picture.
void SaveMarkers(SJpegRead &s) {
    jpeg_save_markers(&s.cinfo, JPEG_COM, 0xFFFF);
    for (int marker = JPEG_APP0; marker <= JPEG_APP0 + 15; ++marker) jpeg_save_markers(&s.cinfo, marker, 0xFFFF);
}

bool IsRadiometricChunk(jpeg_saved_marker_ptr marker) {
    return marker->marker == kRadiometricMarker && marker->data_length >= kRadiometricChunkHeader &&
           std::memcmp(marker->data, kRadiometricWord, 4) == 0;
}

// The chunks in file order, each without its word and chunk header. Bytes a
// cut file made up (see FillInput) could stand inside a chunk, so such a file
// gives none. False when a write to the payload fails.
bool WritePayload(SJpegRead &s) {
    // Segments after the last scan are read up to the end marker first;
    // jpeg_finish_decompress would do it too, but frees the list.
    for (int got = -1; got != JPEG_REACHED_EOI && got != JPEG_SUSPENDED;) got = jpeg_consume_input(&s.cinfo);
    if (s.src.ranOut) return true;
    for (jpeg_saved_marker_ptr marker = s.cinfo.marker_list; marker; marker = marker->next) {
        if (!IsRadiometricChunk(marker)) continue;
        uint32_t n = marker->data_length - kRadiometricChunkHeader;
        if (s.payload->Write(marker->data + kRadiometricChunkHeader, n) != n) return false;
    }
    return true;
}

void Decode(SJpegRead &s) {
    if (setjmp(s.err.jump)) return;
    if (s.payload) SaveMarkers(s);
    jpeg_read_header(&s.cinfo, TRUE);
    if (!Fits(s)) return;
    s.cinfo.out_color_space = JCS_EXT_BGR;
    jpeg_start_decompress(&s.cinfo);
    JDIMENSION width = s.cinfo.output_width, height = s.cinfo.output_height;
    s.bitmap = CreateBitmap(int32_t(width), int32_t(height), 24);
    if (!s.bitmap) return;
    s.rows = static_cast<JSAMPARRAY>(std::malloc(sizeof(JSAMPROW) * height));
    if (!s.rows) return;
    for (JDIMENSION y = 0; y < height; ++y) s.rows[y] = s.bitmap->Row(int32_t(height - 1 - y));
    while (s.cinfo.output_scanline < height)
        jpeg_read_scanlines(&s.cinfo, s.rows + s.cinfo.output_scanline, height - s.cinfo.output_scanline);
    // A cut file is no picture when the decoder had to make up rows (it warns
    // then) or when whole scans of a file of several may be missing.
    if (s.src.ranOut && (s.err.pub.num_warnings > 0 || jpeg_has_multiple_scans(&s.cinfo))) return;
    if (s.payload && !WritePayload(s)) return;
    jpeg_finish_decompress(&s.cinfo);
    s.done = true;
}

bool ReadsHeader(SJpegRead &s) {
    if (setjmp(s.err.jump)) return false;
    return jpeg_read_header(&s.cinfo, TRUE) == JPEG_HEADER_OK;
}

// The decompressor is created before any jump point, so that the jump's
// landing can always destroy it.
void CreateDecompressor(SJpegRead &s, IFile *file) {
    UseErrorManager(s.err);
    s.cinfo.err = &s.err.pub;
    jpeg_create_decompress(&s.cinfo);
    UseSource(&s.cinfo, s.src, file);
}

struct SJpegWrite {
    jpeg_compress_struct cinfo;
    SErrorManager err;
    SDestination dst;
    JSAMPARRAY rows = nullptr;
    bool done = false;
};

void Encode(SJpegWrite &s, images::SRows24 &rows, int quality) {
    if (setjmp(s.err.jump)) return;
    s.cinfo.image_width = JDIMENSION(rows.width);
    s.cinfo.image_height = JDIMENSION(rows.height);
    s.cinfo.input_components = 3;
    s.cinfo.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&s.cinfo);
    if (quality >= 0) jpeg_set_quality(&s.cinfo, quality, TRUE);
    jpeg_start_compress(&s.cinfo, TRUE);
    while (s.cinfo.next_scanline < s.cinfo.image_height)
        jpeg_write_scanlines(&s.cinfo, s.rows + s.cinfo.next_scanline, s.cinfo.image_height - s.cinfo.next_scanline);
    jpeg_finish_compress(&s.cinfo);
    s.done = true;
}

// "quality": 100 or less counts; anything else, or no entry, leaves the
// library's default (-1 here).
int QualityOf(CPropertyArray &properties) {
    if (properties.FindValue(u"quality") < 0) return -1;
    int quality = properties[u"quality"];
    return quality <= 100 ? (quality < 0 ? 0 : quality) : -1;
}

} // namespace

bool IsJPEG(IFile *file) {
    if (!file || file->Seek(0, 1) != 0) return false;
    SJpegRead *s = new (std::nothrow) SJpegRead;
    if (!s) return false;
    CreateDecompressor(*s, file);
    bool ok = ReadsHeader(*s);
    jpeg_destroy_decompress(&s->cinfo);
    delete s;
    file->Seek(0, 1);
    return ok;
}

HBITMAP LoadJPEG(IFile *file, IFile *payload) {
    if (!file) return nullptr;
    SJpegRead *s = new (std::nothrow) SJpegRead;
    if (!s) return nullptr;
    CreateDecompressor(*s, file);
    s->payload = payload;
    Decode(*s);
    jpeg_destroy_decompress(&s->cinfo);
    std::free(s->rows);
    HBITMAP bitmap = s->bitmap;
    if (!s->done) {
        DeleteBitmap(bitmap);
        bitmap = nullptr;
    }
    delete s;
    return bitmap;
}

bool SaveJPEG(HBITMAP bitmap, IFile *file, CPropertyArray properties) {
    images::SRows24 rows = images::FetchRows24(bitmap);
    if (rows.empty() || !file) return false;
    SJpegWrite *s = new (std::nothrow) SJpegWrite;
    if (!s) return false;
    s->rows = static_cast<JSAMPARRAY>(std::malloc(sizeof(JSAMPROW) * size_t(rows.height)));
    UseErrorManager(s->err);
    s->cinfo.err = &s->err.pub;
    jpeg_create_compress(&s->cinfo);
    s->dst.file = file;
    s->dst.pub.init_destination = InitDestination;
    s->dst.pub.empty_output_buffer = EmptyOutput;
    s->dst.pub.term_destination = TermDestination;
    s->cinfo.dest = &s->dst.pub;
    if (s->rows) {
        for (int32_t y = 0; y < rows.height; ++y) s->rows[y] = rows.Row(rows.height - 1 - y);
        Encode(*s, rows, QualityOf(properties));
    }
    jpeg_destroy_compress(&s->cinfo);
    std::free(s->rows);
    bool done = s->done;
    delete s;
    return done;
}

} // namespace qv
