// CVariant: the binary file form over IFile.
#include "qv/core/Variant.h"
#include "qv/core/VariantStorage.h"

namespace qv {

bool CVariant::Save(IFile *file) const {
    if (!file) return true;
    file->PutDWORD(type);
    switch (type) {
    case Bool:
        file->PutBool(Stored<uint8_t>() != 0);
        break;
    case Int8:
        file->PutChar(Stored<char>());
        break;
    case UInt8:
        file->PutBYTE(Stored<uint8_t>());
        break;
    case Int16:
        file->PutShort(Stored<int16_t>());
        break;
    case UInt16:
        file->PutWORD(Stored<uint16_t>());
        break;
    case Int32:
        file->PutLong(Stored<int32_t>());
        break;
    case UInt32:
        file->PutDWORD(Stored<uint32_t>());
        break;
    case Int64:
        file->PutInt64(Stored<int64_t>());
        break;
    case UInt64:
        file->PutQWORD(Stored<uint64_t>());
        break;
    case Flt32:
        file->PutFloat(Stored<float>());
        break;
    case Flt64:
        file->PutDouble(Stored<double>());
        break;
    case String:
        file->PutString(text.GetTChar());
        break;
    case Blob:
        file->PutDWORD(blob.nItems());
        file->WriteBytes(blob.GetData(), blob.nItems());
        break;
    case Enum:
        file->PutInt64(Stored<int64_t>());
        file->PutDWORD(enumValues.nItems());
        for (uint32_t i = 0; i < enumValues.nItems(); ++i) {
            file->PutString(enumValues.ConstGetItem(i).name.GetTChar());
            file->PutInt64(enumValues.ConstGetItem(i).value);
        }
        break;
    case Undefined:
        break;
    }
    return true;
}

// A failed read leaves the value bytes as they were.
template <class T> void CVariant::LoadScalar(IFile &file, bool (IFile::*get)(T &)) {
    T v;
    if ((file.*get)(v)) Store(type, v);
}

// The size is untrusted: one beyond the bytes that remain leaves the blob
// empty and allocates nothing.
void CVariant::LoadBlob(IFile &file) {
    blob.Reset();
    uint32_t size;
    if (!file.GetDWORD(size) || size == 0 || int64_t(size) > file.GetRemaining()) return;
    if (!blob.SetSize(size)) {
        file.Seek(size, 2);
        return;
    }
    blob.SetSize(file.Read(blob.GetData(), size));
}

// Entries add to the table there. Each entry takes at least twelve bytes, so
// a hostile count ends with the bytes at the first entry that cannot be read.
void CVariant::LoadEnum(IFile &file) {
    LoadScalar(file, &IFile::GetInt64);
    uint32_t count;
    if (!file.GetDWORD(count)) return;
    for (uint32_t i = 0; i < count; ++i) {
        SEnumValue entry;
        if (!file.GetString(entry.name) || !file.GetInt64(entry.value)) return;
        enumValues.Add(entry);
    }
}

bool CVariant::Load(IFile *file) {
    uint32_t stored;
    if (!file || !file->GetDWORD(stored)) return true;
    type = stored <= Enum ? EType(stored) : Undefined;
    switch (type) {
    case Bool: {
        bool b;
        if (file->GetBool(b)) Store(Bool, uint8_t(b));
        break;
    }
    case Int8:
        LoadScalar(*file, &IFile::GetChar);
        break;
    case UInt8:
        LoadScalar(*file, &IFile::GetBYTE);
        break;
    case Int16:
        LoadScalar(*file, &IFile::GetShort);
        break;
    case UInt16:
        LoadScalar(*file, &IFile::GetWORD);
        break;
    case Int32:
        LoadScalar(*file, &IFile::GetLong);
        break;
    case UInt32:
        LoadScalar(*file, &IFile::GetDWORD);
        break;
    case Int64:
        LoadScalar(*file, &IFile::GetInt64);
        break;
    case UInt64:
        LoadScalar(*file, &IFile::GetQWORD);
        break;
    case Flt32:
        LoadScalar(*file, &IFile::GetFloat);
        break;
    case Flt64:
        LoadScalar(*file, &IFile::GetDouble);
        break;
    case String:
        text = file->GetString();
        break;
    case Blob:
        LoadBlob(*file);
        break;
    case Enum:
        LoadEnum(*file);
        break;
    case Undefined:
        break;
    }
    return true;
}

} // namespace qv
