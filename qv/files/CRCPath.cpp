#include <memory>

#include "qv/files/CRC.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/FileSystem.h"

namespace qv {

namespace {

constexpr uint32_t kOpenForReading = 0x12; // read, must exist

template <class Crc> bool CalcCRCOfPath(Crc &crc, IFileSystem *fs, CString const &path, bool (*calc)(Crc &, IFile *)) {
    std::unique_ptr<IFile> file((fs ? fs : &GetFileSystem())->CreateFileW(path.GetUTF16(), kOpenForReading));
    if (!file) {
        crc = 0;
        return false;
    }
    return calc(crc, file.get());
}

} // namespace

bool CalcCRC16(uint16_t &crc, IFileSystem *fs, CString path) {
    return CalcCRCOfPath<uint16_t>(crc, fs, path, &CalcCRC16);
}

bool CalcCRC32(uint32_t &crc, IFileSystem *fs, CString path) {
    return CalcCRCOfPath<uint32_t>(crc, fs, path, &CalcCRC32);
}

} // namespace qv
