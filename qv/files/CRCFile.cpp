#include "qv/files/CRCFile.h"

#include "qv/core/DebugOutput.h"
#include "qv/core/StringFunctions.h"
#include "qv/core/WideFormat.h"
#include "qv/files/CRC.h"
#include "qv/filesystems/FileSystem.h"

namespace qv {

char16_t *CCalcCRCFile::GetFilename(char16_t *buf, int size) {
    return StrCpy(buf, u"none", size > 0 ? size_t(size) : 0);
}

IFileSystem &CCalcCRCFile::GetFileSystem() {
    return qv::GetFileSystem();
}

void CCalcCRCFile::NotImplemented(char16_t const *operation) const {
    char16_t text[96];
    swprintf(text, 96, u"%s::%s: Not Implemented.\n", className, operation);
    OutputDebugStringW(text);
}

uint32_t CCalcCRCFile::Read(void *, uint32_t) {
    NotImplemented(u"Read");
    return 0;
}

int64_t CCalcCRCFile::Seek(int64_t, uint32_t) {
    NotImplemented(u"Seek");
    return count;
}

bool CCalcCRCFile::SetSize(int64_t) {
    NotImplemented(u"SetSize");
    return false;
}

int64_t CCalcCRCFile::GetSize() {
    return count;
}

int64_t CCalcCRCFile::GetPosition() {
    return count;
}

void CCalcCRCFile::Flush() {}

void CCalcCRCFile::Close() {}

CCalcCRC16File::CCalcCRC16File() : CCalcCRCFile(u"CCalcCRC16File"), crc(InitCRC16()) {}

uint32_t CCalcCRC16File::Write(void const *p, uint32_t n) {
    crc = CalcMultBlockCRC16(static_cast<uint8_t const *>(p), n, crc);
    count += n;
    return n;
}

uint16_t CCalcCRC16File::GetCRC() const {
    return FiniCRC16(crc);
}

void CCalcCRC16File::Reset() {
    count = 0;
    crc = InitCRC16();
}

CCalcCRC32File::CCalcCRC32File() : CCalcCRCFile(u"CCalcCRC32File"), crc(InitCRC32()) {}

uint32_t CCalcCRC32File::Write(void const *p, uint32_t n) {
    crc = CalcMultBlockCRC32(static_cast<uint8_t const *>(p), n, crc);
    count += n;
    return n;
}

uint32_t CCalcCRC32File::GetCRC() const {
    return FiniCRC32(crc);
}

void CCalcCRC32File::Reset() {
    count = 0;
    crc = InitCRC32();
}

} // namespace qv
