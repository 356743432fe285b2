// CSAFFile by path: loads, the three roads of a save, and the magic test.
#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/formats/tagged/ByPath.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qv {

namespace {

constexpr uint32_t kOpenOldForReading = 0x12;  // must exist, read
constexpr uint32_t kOpenInPlace = 0x32;        // must exist, read, write

IFileSystem *OrDisk(IFileSystem *fs) {
    return fs ? fs : static_cast<IFileSystem *>(FileSystem);
}

// Closes and deletes a file object on every way out.
struct OpenFile {
    IFile *f;
    ~OpenFile() {
        if (!f) return;
        f->Close();
        delete f;
    }
};

} // namespace

bool CSAFFile::Load(IFileSystem *fs, char16_t const *path) {
    IFileSystem *system = OrDisk(fs);
    if (!tagged::LoadByPath(system, path, [&](IFile *f) { return Load(f); })) return false;
    filename = path;
    fileSystem = system;
    return true;
}

bool CSAFFile::Load(char16_t const *path) {
    return Load(nullptr, path);
}

bool CSAFFile::IsSAFFile(IFileSystem *fs, char16_t const *path) {
    return tagged::LoadByPath(OrDisk(fs), path, [](IFile *f) {
        char magic[6];
        return f->ReadBytes(magic, 6) && _strnicmp(magic, "HDSize", 6) == 0;
    });
}

bool CSAFFile::Save(char16_t const *path, bool pad) {
    return Save(nullptr, path, pad);
}

bool CSAFFile::Save() {
    return Save(nullptr, nullptr, true);
}

bool CSAFFile::Save(IFileSystem *fs, char16_t const *path, bool pad) {
    if (tags.nItems() == 0) return false;
    IFileSystem *system = OrDisk(fs);
    uint32_t newPosition = 0;
    bool saved = false;
    if (filename.IsEmpty()) {
        // A new file: the header alone.
        saved = path && SaveAtomically(system, path, [&](IFile &f) { return SaveTo(&f, newPosition, pad); });
    } else if ((path && CString::Compare(path, filename.GetUTF16()) != 0) || system != fileSystem) {
        // Save as: the header, then the old data segment behind it.
        OpenFile old{fileSystem ? fileSystem->CreateFileW(filename.GetUTF16(), kOpenOldForReading) : nullptr};
        if (!old.f) return false;
        int64_t dataBytes = old.f->GetSize() - int64_t(dataPosition);
        saved = SaveAtomically(system, path ? path : filename.GetUTF16(), [&](IFile &f) {
            if (!SaveTo(&f, newPosition, dataBytes > 0)) return false;
            if (dataBytes <= 0) return true;
            return old.f->Seek(dataPosition, 1) == int64_t(dataPosition) &&
                   IFileSystem::CopyFileW(old.f, &f, dataBytes, nullptr, nullptr);
        });
    } else {
        // In place: only Update keeps the data segment where it is.
        OpenFile same{fileSystem->CreateFileW(filename.GetUTF16(), kOpenInPlace)};
        newPosition = dataPosition;
        saved = same.f && Update(same.f, newPosition, pad);
    }
    if (!saved) return false;
    dataPosition = newPosition;
    if (path) {
        filename = path;
        fileSystem = system;
    }
    return true;
}

} // namespace qv
