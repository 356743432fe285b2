// Typed values and the streaming operators: the binary forms of numbers.
#include <cstring>

#include "qv/files/ByteOrder.h"
#include "qv/files/IFile.h"

namespace qv {

// Put, Get by reference (target untouched on failure), Get by value (0 on
// failure) for a value that goes through the file as sizeof(Type) bytes.
#define QV_IFILE_SCALAR(Name, Type)                                                                                    \
    bool IFile::Put##Name(Type v) {                                                                                    \
        return PutScalar(&v, sizeof v);                                                                                \
    }                                                                                                                  \
    bool IFile::Get##Name(Type &v) {                                                                                   \
        return GetScalar(&v, sizeof v);                                                                                \
    }                                                                                                                  \
    Type IFile::Get##Name() {                                                                                          \
        Type v{};                                                                                                      \
        GetScalar(&v, sizeof v);                                                                                       \
        return v;                                                                                                      \
    }

QV_IFILE_SCALAR(Char, char)
QV_IFILE_SCALAR(Int8, int8_t)
QV_IFILE_SCALAR(BYTE, uint8_t)
QV_IFILE_SCALAR(UInt8, uint8_t)
QV_IFILE_SCALAR(Short, int16_t)
QV_IFILE_SCALAR(Int16, int16_t)
QV_IFILE_SCALAR(WORD, uint16_t)
QV_IFILE_SCALAR(UInt16, uint16_t)
QV_IFILE_SCALAR(Long, int32_t)
QV_IFILE_SCALAR(Int32, int32_t)
QV_IFILE_SCALAR(DWORD, uint32_t)
QV_IFILE_SCALAR(UInt32, uint32_t)
QV_IFILE_SCALAR(Float, float)
QV_IFILE_SCALAR(Flt32, float)
QV_IFILE_SCALAR(Double, double)
QV_IFILE_SCALAR(Flt64, double)
QV_IFILE_SCALAR(Int64, int64_t)
QV_IFILE_SCALAR(QWORD, uint64_t)
QV_IFILE_SCALAR(UInt64, uint64_t)

#undef QV_IFILE_SCALAR

bool IFile::PutBool(bool v) {
    return PutUInt8(v ? 1 : 0);
}

bool IFile::GetBool(bool &v) {
    uint8_t byte;
    if (!GetUInt8(byte)) return false;
    v = byte == 1;
    return true;
}

bool IFile::GetBool() {
    return GetUInt8() == 1;
}

bool IFile::PutBOOL(int32_t v) {
    return PutInt32(v);
}

// Existing callers rely on true whatever the read did.
bool IFile::GetBOOL(int32_t &v) {
    GetInt32(v);
    return true;
}

int32_t IFile::GetBOOL() {
    return GetInt32();
}

namespace {

constexpr size_t kGuidBytes = 16;

// Data1, Data2, Data3 in the file's order (reversed when swap), Data4 raw.
void GuidToBytes(GUID const &v, bool swap, unsigned char *bytes) {
    std::memcpy(bytes, &v.Data1, 4);
    std::memcpy(bytes + 4, &v.Data2, 2);
    std::memcpy(bytes + 6, &v.Data3, 2);
    std::memcpy(bytes + 8, v.Data4, 8);
    if (!swap) return;
    ReverseItems(bytes, 1, 4);
    ReverseItems(bytes + 4, 2, 2);
}

GUID GuidFromBytes(unsigned char *bytes, bool swap) {
    if (swap) {
        ReverseItems(bytes, 1, 4);
        ReverseItems(bytes + 4, 2, 2);
    }
    GUID v;
    std::memcpy(&v.Data1, bytes, 4);
    std::memcpy(&v.Data2, bytes + 4, 2);
    std::memcpy(&v.Data3, bytes + 6, 2);
    std::memcpy(v.Data4, bytes + 8, 8);
    return v;
}

} // namespace

bool IFile::PutGUID(GUID const &v) {
    unsigned char bytes[kGuidBytes];
    GuidToBytes(v, m_swap, bytes);
    return WriteBytes(bytes, kGuidBytes);
}

bool IFile::GetGUID(GUID &v) {
    unsigned char bytes[kGuidBytes];
    if (!ReadBytes(bytes, kGuidBytes)) return false;
    v = GuidFromBytes(bytes, m_swap);
    return true;
}

// Deliberately not the null identifier: callers tell a failed read by it.
GUID IFile::GetGUID() {
    GUID v{0, 0, 4, {0, 0, 0, 0, 0, 0, 0, 0}};
    GetGUID(v);
    return v;
}

IFile &IFile::operator<<(char v) {
    return PutChar(v), *this;
}
IFile &IFile::operator<<(unsigned char v) {
    return PutBYTE(v), *this;
}
IFile &IFile::operator<<(int16_t v) {
    return PutShort(v), *this;
}
IFile &IFile::operator<<(uint16_t v) {
    return PutWORD(v), *this;
}
IFile &IFile::operator<<(int32_t v) {
    return PutLong(v), *this;
}
IFile &IFile::operator<<(uint32_t v) {
    return PutDWORD(v), *this;
}
IFile &IFile::operator<<(float v) {
    return PutFloat(v), *this;
}
IFile &IFile::operator<<(double v) {
    return PutDouble(v), *this;
}
IFile &IFile::operator<<(int64_t v) {
    return PutInt64(v), *this;
}
IFile &IFile::operator<<(uint64_t v) {
    return PutQWORD(v), *this;
}
IFile &IFile::operator<<(bool v) {
    return PutBool(v), *this;
}

IFile &IFile::operator>>(char &v) {
    return GetChar(v), *this;
}
IFile &IFile::operator>>(unsigned char &v) {
    return GetBYTE(v), *this;
}
IFile &IFile::operator>>(int16_t &v) {
    return GetShort(v), *this;
}
IFile &IFile::operator>>(uint16_t &v) {
    return GetWORD(v), *this;
}
IFile &IFile::operator>>(int32_t &v) {
    return GetLong(v), *this;
}
IFile &IFile::operator>>(uint32_t &v) {
    return GetDWORD(v), *this;
}
IFile &IFile::operator>>(float &v) {
    return GetFloat(v), *this;
}
IFile &IFile::operator>>(double &v) {
    return GetDouble(v), *this;
}
IFile &IFile::operator>>(int64_t &v) {
    return GetInt64(v), *this;
}
IFile &IFile::operator>>(uint64_t &v) {
    return GetQWORD(v), *this;
}
IFile &IFile::operator>>(bool &v) {
    return GetBool(v), *this;
}

} // namespace qv
