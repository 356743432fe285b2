// TIFF bitmaps, raw frames and multi-page files over libtiff (TIFFClient.h).
#include "qv/images/TIFF.h"

#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/files/IFile.h"
#include "qv/images/DecodeLimits.h"
#include "qv/images/Images.h"
#include "qv/images/Rows24.h"
#include "qv/images/TIFFClient.h"

namespace qv {

using images::STiffForm;

namespace {

constexpr uint32_t kOpenRead = 0x12;

// The byte-order word read little-endian, then 42 in the same order.
bool HasLittleEndianMark(IFile *file) {
    uint16_t order = 0, magic = 0;
    if (!file->GetUInt16(order) || !file->GetUInt16(magic)) return false;
    bool mark = order == 0x4D4D || order == 0x4949 || order == 0x5045 || order == 0x4550;
    return mark && magic == 0x2A;
}

// A handle over a file, closed with the object.
struct STiffHandle {
    images::STiffClient client;
    TIFF *tiff;
    STiffHandle(IFile *file, char const *mode) : client{file}, tiff(images::OpenTIFF(client, mode)) {}
    ~STiffHandle() {
        if (tiff) TIFFClose(tiff);
    }
    STiffHandle(STiffHandle const &) = delete;
    STiffHandle &operator=(STiffHandle const &) = delete;
};

int64_t FileSize(IFile *file) { return file->GetSize(); }

bool FitsFile(STiffForm const &form, uint64_t bytesPerPixel, IFile *file) {
    return images::FileCanCarry(form.width, form.height, bytesPerPixel, FileSize(file), images::kLosslessExpansion) &&
           uint64_t(form.width) * form.height * bytesPerPixel <= kMaxBitmapBytes;
}

IFileSystem *OrDisk(IFileSystem *fs) { return fs ? fs : &GetFileSystem(); }

} // namespace

bool IsTIFF(IFile *file) {
    if (!file || file->Seek(0, 1) != 0) return false;
    bool ok = HasLittleEndianMark(file);
    file->Seek(0, 1);
    if (ok) {
        STiffHandle handle(file, "rh");
        ok = handle.tiff != nullptr;
    }
    file->Seek(0, 1);
    return ok;
}

bool GetTIFFInfo(IFile *file, unsigned long &width, unsigned long &height, EDataType &type, unsigned long &pages) {
    if (!file || file->Seek(0, 1) != 0 || !HasLittleEndianMark(file) || file->Seek(0, 1) != 0) return false;
    STiffHandle handle(file, "r");
    STiffForm form;
    if (!handle.tiff || !images::ReadForm(handle.tiff, form)) {
        file->Seek(0, 1);
        return false;
    }
    width = form.width;
    height = form.height;
    type = images::TypeOfForm(form);
    if (type == DT_Unknown) type = DT_Packed;
    pages = 1;
    while (TIFFReadDirectory(handle.tiff)) ++pages;
    file->Seek(0, 1);
    return !handle.client.failed;
}

bool GetTIFFInfo(IFile *file, unsigned long &width, unsigned long &height, EDataType &type) {
    unsigned long pages = 0;
    return GetTIFFInfo(file, width, height, type, pages);
}

HBITMAP LoadTIFF(IFile *file) {
    if (!file || file->Seek(0, 1) != 0) return nullptr;
    STiffHandle handle(file, "r");
    STiffForm form;
    if (!handle.tiff || !images::ReadForm(handle.tiff, form) || !FitsFile(form, 4, file)) return nullptr;
    HBITMAP bitmap = CreateBitmap(int32_t(form.width), int32_t(form.height), 24);
    uint32_t *rgba = static_cast<uint32_t *>(std::malloc(size_t(form.width) * form.height * 4));
    // TIFFReadRGBAImage delivers the rows bottom-up, as the bitmap holds them.
    // It stops at a strip that cannot be read: going on would leave the
    // strip's rows blank in a picture that passes for whole.
    bool ok = bitmap && rgba && TIFFReadRGBAImage(handle.tiff, form.width, form.height, rgba, 1) == 1;
    for (uint32_t y = 0; ok && y < form.height; ++y) {
        uint8_t *row = bitmap->Row(int32_t(y));
        uint32_t const *in = rgba + size_t(y) * form.width;
        for (uint32_t x = 0; x < form.width; ++x) {
            row[3 * x] = uint8_t(TIFFGetB(in[x]));
            row[3 * x + 1] = uint8_t(TIFFGetG(in[x]));
            row[3 * x + 2] = uint8_t(TIFFGetR(in[x]));
        }
    }
    std::free(rgba);
    if (!ok) {
        DeleteBitmap(bitmap);
        return nullptr;
    }
    return bitmap;
}

bool SaveTIFF(HBITMAP bitmap, IFile *file, CPropertyArray) {
    images::SRows24 rows = images::FetchRows24(bitmap);
    if (rows.empty() || !file) return false;
    STiffForm form;
    images::FormOfType(DT_Packed, uint32_t(rows.width), uint32_t(rows.height), form);
    // Top row first, red before blue: the bitmap's rows turned over and swapped.
    std::vector<uint8_t> top;
    try {
        top.resize(rows.size());
    } catch (std::bad_alloc const &) {
        return false;
    }
    size_t rowBytes = size_t(rows.width) * 3;
    for (int32_t y = 0; y < rows.height; ++y) {
        uint8_t *out = top.data() + size_t(y) * rowBytes;
        std::memcpy(out, rows.Row(rows.height - 1 - y), rowBytes);
        images::SwapRedBlue(out, rows.width);
    }
    STiffHandle handle(file, "w");
    // TIFFClose flushes too but cannot report a failed write.
    return handle.tiff && images::WriteFrame(handle.tiff, form, DT_Packed, top.data()) &&
           TIFFFlush(handle.tiff) == 1 && !handle.client.failed;
}

bool LoadTIFFRaw(IFile *file, void *buffer, unsigned long size) {
    if (!file || !buffer || file->Seek(0, 1) != 0) return false;
    STiffHandle handle(file, images::kReadFrames);
    STiffForm form;
    bool ok = handle.tiff && images::ReadForm(handle.tiff, form);
    EDataType type = ok ? images::TypeOfForm(form) : DT_Unknown;
    ok = ok && type != DT_Unknown &&
         uint64_t(size) == uint64_t(images::PixelBytes(type)) * form.width * form.height &&
         images::ReadFrame(handle.tiff, form, type, buffer);
    file->Seek(0, 1);
    return ok;
}

bool SaveTIFFRaw(IFile *file, void const *pixels, unsigned long width, unsigned long height, EDataType type) {
    STiffForm form;
    if (!file || !pixels || width > UINT32_MAX || height > UINT32_MAX ||
        !images::FormOfType(type, uint32_t(width), uint32_t(height), form))
        return false;
    STiffHandle handle(file, "w");
    return handle.tiff && images::WriteFrame(handle.tiff, form, type, pixels) && TIFFFlush(handle.tiff) == 1 &&
           !handle.client.failed;
}

bool SaveTIFFRaw(IFileSystem *fs, char16_t const *path, void const *pixels, unsigned long width, unsigned long height,
                 EDataType type) {
    STiffForm form;
    if (!path || !pixels || !images::FormOfType(type, uint32_t(width), uint32_t(height), form)) return false;
    return SaveAtomically(OrDisk(fs), path,
                          [&](IFile &file) { return SaveTIFFRaw(&file, pixels, width, height, type); });
}

bool SaveTIFFRaw(char16_t const *path, void const *pixels, unsigned long width, unsigned long height, EDataType type) {
    return SaveTIFFRaw(nullptr, path, pixels, width, height, type);
}

// ---- CMultiPageTIFFFile ----

CMultiPageTIFFFile::~CMultiPageTIFFFile() { Close(); }

bool CMultiPageTIFFFile::Create(IFile *f, unsigned long w, unsigned long h, EDataType t) {
    Close();
    STiffForm form;
    if (!f || w > UINT32_MAX || h > UINT32_MAX || !images::FormOfType(t, uint32_t(w), uint32_t(h), form)) return false;
    client = images::STiffClient{f};
    tiff = images::OpenTIFF(client, "w");
    if (!tiff) return false;
    file = f;
    owned = false;
    writing = true;
    width = form.width;
    height = form.height;
    type = t;
    images = 0;
    bitsPerSample = form.bitsPerSample;
    samplesPerPixel = form.samplesPerPixel;
    photometric = form.photometric;
    sampleFormat = form.sampleFormat;
    return true;
}

bool CMultiPageTIFFFile::Create(IFileSystem *fs, CString const &path, unsigned long w, unsigned long h,
                                EDataType t) {
    Close();
    STiffForm form;
    if (!images::FormOfType(t, uint32_t(w), uint32_t(h), form)) return false;
    CAtomicSave *newSave = new (std::nothrow) CAtomicSave(OrDisk(fs), path);
    if (!newSave) return false;
    // Create(IFile *) closes whatever was open, so the save joins after it.
    if (newSave->File() && Create(newSave->File(), w, h, t)) {
        save = newSave;
        return true;
    }
    delete newSave;
    return false;
}

bool CMultiPageTIFFFile::Create(CString const &path, unsigned long w, unsigned long h, EDataType t) {
    return Create(nullptr, path, w, h, t);
}

bool CMultiPageTIFFFile::Open(IFile *f, bool own) {
    Close();
    if (!f) return false;
    client = images::STiffClient{f};
    TIFF *t = images::OpenTIFF(client, images::kReadFrames);
    STiffForm form;
    EDataType formType = DT_Unknown;
    if (t && images::ReadForm(t, form)) formType = images::TypeOfForm(form);
    // Packed pages are read through a block of 4 bytes a pixel: a header may
    // not ask for more than the file could carry.
    if (formType == DT_Packed && !FitsFile(form, 4, f)) formType = DT_Unknown;
    uint32_t pages = 1;
    while (formType != DT_Unknown && TIFFReadDirectory(t)) ++pages;
    // A failed read in the chain is no last page.
    if (formType == DT_Unknown || client.failed) {
        if (t) TIFFClose(t);
        return false;
    }
    tiff = t;
    file = f;
    owned = own;
    width = form.width;
    height = form.height;
    type = formType;
    bitsPerSample = form.bitsPerSample;
    samplesPerPixel = form.samplesPerPixel;
    photometric = form.photometric;
    sampleFormat = form.sampleFormat;
    images = pages;
    return true;
}

bool CMultiPageTIFFFile::Open(IFileSystem *fs, CString const &path) {
    Close();
    IFile *f = OrDisk(fs)->CreateFileW(path, kOpenRead);
    if (!f) return false;
    if (Open(f, true)) return true;
    f->Close();
    delete f;
    return false;
}

bool CMultiPageTIFFFile::Open(CString const &path) { return Open(nullptr, path); }

bool CMultiPageTIFFFile::WriteImage(void const *pixels) {
    if (!file || !tiff || !pixels || (images != 0 && !TIFFWriteDirectory(tiff))) {
        failed = failed || (file && tiff);
        return false;
    }
    STiffForm form{width, height, bitsPerSample, samplesPerPixel, photometric, sampleFormat};
    if (!images::WriteFrame(tiff, form, type, pixels)) {
        failed = true;
        return false;
    }
    ++images;
    return true;
}

bool CMultiPageTIFFFile::ReadPacked(void *buffer) {
    size_t bytes = size_t(width) * height * 4;
    if (bytes > kMaxBitmapBytes) return false;
    if (conversionSize != bytes) {
        std::free(conversion);
        conversion = static_cast<uint8_t *>(std::malloc(bytes));
        conversionSize = conversion ? bytes : 0;
    }
    // ORIENTATION_TOPLEFT: rows come top first, as the caller's buffer holds
    // them. A strip that cannot be read fails the page (see LoadTIFF).
    if (!conversion || TIFFReadRGBAImageOriented(tiff, width, height, reinterpret_cast<uint32_t *>(conversion),
                                                 ORIENTATION_TOPLEFT, 1) != 1)
        return false;
    auto *out = static_cast<uint8_t *>(buffer);
    for (size_t i = 0; i < size_t(width) * height; ++i) std::memcpy(out + 3 * i, conversion + 4 * i, 3);
    return true;
}

bool CMultiPageTIFFFile::ReadImage(unsigned long index, void *buffer) {
    if (!tiff || !buffer || index >= images || !TIFFSetDirectory(tiff, tdir_t(index))) return false;
    STiffForm page;
    STiffForm mine{width, height, bitsPerSample, samplesPerPixel, photometric, sampleFormat};
    if (!images::ReadForm(tiff, page) || !(page == mine)) return false;
    if (type == DT_Packed) return ReadPacked(buffer);
    return images::ReadFrame(tiff, page, type, buffer);
}

bool CMultiPageTIFFFile::Close() {
    // A file written without a page holds no TIFF that a reader could open.
    bool ok = !failed && !(writing && images == 0);
    if (tiff) {
        // Writing: the last page's directory goes out with the close.
        if (writing) ok = TIFFFlush(tiff) == 1 && ok;
        TIFFClose(tiff);
        ok = ok && !(writing && client.failed);
    }
    if (owned && file) {
        file->Close();
        delete file;
    }
    if (save) {
        if (!ok) save->Fail();
        ok = save->Commit() && ok;
        delete save;
    }
    std::free(conversion);
    file = nullptr;
    owned = false;
    save = nullptr;
    failed = false;
    writing = false;
    tiff = nullptr;
    conversion = nullptr;
    conversionSize = 0;
    images = 0;
    return ok;
}

} // namespace qv
