// Reading a radiometric JPEG: the picture's decoder hands over the chunks.
#include "qv/images/RadiometricJPEG.h"

#include "qv/filesystems/IFileSystem.h"
#include "qv/files/IFile.h"
#include "qv/images/Images.h"

namespace qv {

namespace {
constexpr uint32_t kOpenRead = 0x12;
} // namespace

bool RadiometricJPEG(IFile *file, IFile *payload) {
    if (!file || !payload || !IsJPEG(file)) return false;
    file->SeekToBegin();
    // The picture itself is not wanted; a failed decode refuses the payload.
    HBITMAP picture = LoadJPEG(file, payload);
    payload->SeekToBegin();
    if (!picture) return false;
    DeleteBitmap(picture);
    return payload->GetSize() > kMinRadiometricPayload;
}

bool RadiometricJPEG(IFileSystem *fs, char16_t const *path, IFile *payload) {
    IFile *file = (fs && path && payload) ? fs->CreateFileW(path, kOpenRead) : nullptr;
    if (!file) return false;
    bool radiometric = RadiometricJPEG(file, payload);
    file->Close();
    delete file;
    return radiometric;
}

} // namespace qv
