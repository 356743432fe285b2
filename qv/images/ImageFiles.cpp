// Choosing the codec: by content on loading, by name on saving.
#include "qv/core/String.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/filesystems/Path.h"
#include "qv/files/IFile.h"
#include "qv/images/Images.h"

namespace qv {
namespace {

constexpr uint32_t kOpenRead = 0x12;

enum class EFormat { BMP, PNG, JPEG, TIFF };

EFormat FormatForName(CString const &name) {
    CString extension = path::GetExtension(name);
    auto is = [&](char16_t const *e) { return extension.CompareNoCase(e) == 0; };
    if (is(u".png")) return EFormat::PNG;
    if (is(u".jpg") || is(u".jpeg")) return EFormat::JPEG;
    if (is(u".tif") || is(u".tiff")) return EFormat::TIFF;
    return EFormat::BMP;
}

CString NameOf(IFile *file) {
    char16_t name[1024] = {};
    file->GetFilename(name, 1024);
    return CString(name);
}

bool SaveAs(EFormat format, HBITMAP bitmap, IFile *file, CPropertyArray const &properties) {
    switch (format) {
    case EFormat::PNG:
        return SavePNG(bitmap, file, properties);
    case EFormat::JPEG:
        return SaveJPEG(bitmap, file, properties);
    case EFormat::TIFF:
        return SaveTIFF(bitmap, file, properties);
    case EFormat::BMP:
        break;
    }
    return SaveBMP(bitmap, file, properties);
}

template <class Use> auto WithFile(IFileSystem *fs, char16_t const *path, Use &&use) -> decltype(use(nullptr)) {
    IFile *file = (fs && path) ? fs->CreateFileW(path, kOpenRead) : nullptr;
    if (!file) return {};
    auto result = use(file);
    file->Close();
    delete file;
    return result;
}

} // namespace

bool IsImageFile(IFile *file) { return IsBMP(file) || IsPNG(file) || IsJPEG(file) || IsTIFF(file); }

bool IsImageFile(IFileSystem *fs, char16_t const *path) {
    return WithFile(fs, path, [](IFile *file) { return IsImageFile(file); });
}

HBITMAP LoadHBITMAP(IFile *file) { return LoadHBITMAP(file, CPropertyArray()); }

HBITMAP LoadHBITMAP(IFile *file, CPropertyArray properties) {
    if (IsBMP(file)) return LoadBMP(file);
    if (IsPNG(file)) return LoadPNG(file, properties);
    if (IsJPEG(file)) return LoadJPEG(file, nullptr);
    if (IsTIFF(file)) return LoadTIFF(file);
    return nullptr;
}

HBITMAP LoadHBITMAP(IFileSystem *fs, char16_t const *path) { return LoadHBITMAP(fs, path, CPropertyArray()); }

HBITMAP LoadHBITMAP(IFileSystem *fs, char16_t const *path, CPropertyArray properties) {
    return WithFile(fs, path, [&](IFile *file) { return LoadHBITMAP(file, properties); });
}

bool SaveHBITMAP(HBITMAP bitmap, IFile *file) { return SaveHBITMAP(bitmap, file, CPropertyArray()); }

bool SaveHBITMAP(HBITMAP bitmap, IFile *file, CPropertyArray properties) {
    if (!file) return false;
    return SaveAs(FormatForName(NameOf(file)), bitmap, file, properties);
}

bool SaveHBITMAP(HBITMAP bitmap, IFileSystem *fs, char16_t const *path) {
    return SaveHBITMAP(bitmap, fs, path, CPropertyArray());
}

// The temporary file's name hides the target's extension, so the format is
// chosen from the target's name here.
bool SaveHBITMAP(HBITMAP bitmap, IFileSystem *fs, char16_t const *path, CPropertyArray properties) {
    if (!bitmap || !fs || !path) return false;
    EFormat format = FormatForName(CString(path));
    return SaveAtomically(fs, path, [&](IFile &file) { return SaveAs(format, bitmap, &file, properties); });
}

} // namespace qv
