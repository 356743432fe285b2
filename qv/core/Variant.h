/// @file
/// CVariant: the typed value of tables and properties.
///
/// Storage. Every variant carries all of its storage: the type, eight value
/// bytes shared by the scalar types and the enum's number, a text, an enum
/// name table and a blob (a CMemFile). Only the part the type names means
/// anything; setType and Destroy leave the value bytes stale.
///
/// Conversions (ToX, ToString, FromString, setValue) never fail: what cannot
/// be converted gives 0, false or the empty text. Floating point reaches
/// integers by the library's one rule (qv/core/FloatToInt.h). Some results
/// look odd and are kept because existing files and callers depend on them:
/// a string converts to targets up to 32 bits through the saturating _wtol
/// (so "4294967295" read as ToUInt32 gives 2147483647), ToBool of a string is
/// true only for "true" and "yes" (so "1" is false), and ToFlt32/ToFlt64 take
/// an uint64 as signed.
///
/// File form (Save/Load over IFile, little-endian unless the file's m_swap):
/// a DWORD type, then the value by type: bool 1 byte, int8/uint8 1, int16/
/// uint16 2, int32/uint32 4, int64/uint64 8, flt32 4, flt64 8, string a DWORD
/// byte count and UTF-8, blob a DWORD size and the bytes, enum the int64
/// value, a DWORD count and per entry the name as a string and its int64
/// value; undefined has no value. Load does not clear the variant first (enum
/// entries add to the table there). Bytes from a file are untrusted: a type
/// beyond Enum loads as Undefined; a blob size beyond the bytes that remain
/// leaves the blob empty; an enum table stops at the first entry that cannot be
/// read. Save and Load always return true.
///
/// Threads: a variant belongs to one thread at a time. Enum name lookups share
/// one static default entry, made at first use.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/files/IFile.h"
#include "qv/files/MemFile.h"

namespace qv {

/// @copydoc Variant.h
struct SEnumValue {
    CString name;      ///< the entry's name, matched with case mattering
    int64_t value = 0; ///< the number the name stands for
};

class IConfigStore;

/// @copydoc Variant.h
class QV_API CVariant {
public:
    /// The texts of TypeToString and ParseType are the names below.
    enum EType : uint32_t {
        Undefined = 0,
        Bool = 1,
        Int8 = 2,
        UInt8 = 3,
        Int16 = 4,
        UInt16 = 5,
        Int32 = 6,
        UInt32 = 7,
        Int64 = 8,
        UInt64 = 9,
        Flt32 = 10,
        Flt64 = 11,
        String = 12,
        Blob = 13,
        Enum = 14,
    };

    /// The type follows the argument (int gives Int32, char Int8). A null text
    /// gives the empty String. EType: that type with value zero. (p, n): a Blob
    /// holding a copy of n bytes. (v, e): an Enum with value v and table e.
    ///@{
    CVariant();
    CVariant(bool v);
    CVariant(char v);
    CVariant(int8_t v);
    CVariant(uint8_t v);
    CVariant(int16_t v);
    CVariant(uint16_t v);
    CVariant(int32_t v);
    CVariant(uint32_t v);
    CVariant(int64_t v);
    CVariant(uint64_t v);
    CVariant(float v);
    CVariant(double v);
    CVariant(char16_t const *s);
    CVariant(EType t);
    CVariant(void const *p, uint32_t n);
    CVariant(int64_t v, TArray<SEnumValue> const &e);
    CVariant(CVariant const &other);
    ~CVariant();
    ///@}

    /// Assignment changes the type: Destroy, then the argument's type and
    /// value (for an enum also the table, for a blob the bytes).
    ///@{
    CVariant &operator=(CVariant const &other);
    CVariant &operator=(bool v);
    CVariant &operator=(char v);
    CVariant &operator=(int8_t v);
    CVariant &operator=(uint8_t v);
    CVariant &operator=(int16_t v);
    CVariant &operator=(uint16_t v);
    CVariant &operator=(int32_t v);
    CVariant &operator=(uint32_t v);
    CVariant &operator=(int64_t v);
    CVariant &operator=(uint64_t v);
    CVariant &operator=(float v);
    CVariant &operator=(double v);
    CVariant &operator=(char16_t const *s);
    ///@}

    /// Keeps this variant's type and converts v to it with the target's ToX. A
    /// String takes v.ToString(); a Blob takes v's bytes if v is a blob and is
    /// otherwise cut to zero length; an Enum takes GetEnumValueFromName of v's
    /// text if v is a string, else v.ToInt64(). Undefined stays as it is.
    void setValue(CVariant const &v);

    EType getType() const; ///< the type; the value is read by the ToX of the caller's choice
    void setType(EType t); ///< Destroy, then the type: the value bytes stay stale
    void Destroy();        ///< text emptied, blob freed, enum table emptied, Undefined

    /// Integer targets: bool 1 or 0; integers and enum extend to 64 bits by
    /// their sign and are cut to the target; floats truncate by the library's
    /// rule; a string goes through _wtol (targets up to 32 bits) or _wtoi64;
    /// blob and undefined give 0.
    ///@{
    bool ToBool() const; ///< numbers: not 0 (NaN is true); strings: "true"/"yes" only
    int8_t ToInt8() const;
    uint8_t ToUInt8() const;
    int16_t ToInt16() const;
    uint16_t ToUInt16() const;
    int32_t ToInt32() const;
    uint32_t ToUInt32() const;
    int64_t ToInt64() const;
    uint64_t ToUInt64() const;
    float ToFlt32() const;
    double ToFlt64() const;
    ///@}
    /// bool "true"/"false"; integers "%d", "%u", "%I64d", "%I64u"; floats "%g";
    /// blob "%02X" a byte; enum the name of its value (empty if none).
    CString ToString() const;

    /// The same as the matching ToX (ToBool, ToInt8, ..., ToFlt64, ToString).
    ///@{
    operator bool() const;
    operator int8_t() const;
    operator uint8_t() const;
    operator int16_t() const;
    operator uint16_t() const;
    operator int32_t() const;
    operator uint32_t() const;
    operator int64_t() const;
    operator uint64_t() const;
    operator float() const;
    operator double() const;
    operator CString() const;
    ///@}

    /// Keeps the type and reads s into it (null reads as the empty text): bool
    /// CBool::Parse; int8 to uint32 _wtol cut to the width; int64/uint64
    /// _wtoi64; floats _wtof; enum GetEnumValueFromName; blob: length / 2
    /// bytes, each pair of units one byte (high nibble first; a unit that is no
    /// hexadecimal digit counts 0; an odd last unit is dropped).
    CVariant &FromString(char16_t const *s);

    /// The enum table, in the order added. Out of range indices give the empty
    /// text and 0. GetEnumNames replaces out's contents.
    ///@{
    void AddEnum(char16_t const *name, int64_t value);
    void ClearEnum();
    int GetEnumCount() const;
    char16_t const *GetEnumName(int i) const;
    int64_t GetEnumValue(int i) const;
    void GetEnumNames(TArray<CString> &out) const;
    ///@}
    /// The first name with that value, or the empty text.
    char16_t const *GetEnumNameFromValue(int64_t value) const;
    /// The first name that matches exactly (case mattering), otherwise
    /// CInt64::Parse(name), so numbers pass through.
    ///@{
    int64_t GetEnumValueFromName(char16_t const *name) const;
    void setEnumValue(int64_t value); ///< type Enum, the table left as it is
    int64_t getEnumValue() const;     ///< the eight value bytes
    ///@}

    /// The file form described in the file comment; a null file does nothing.
    /// Both always return true. Load takes the type it reads; a scalar it cannot
    /// read leaves the old value bytes in place.
    ///@{
    bool Save(IFile *file) const;
    bool Load(IFile *file);
    ///@}

    /// In a settings store (qv/config/IConfigStore.h), at its current path:
    /// "Type" (TypeToString) and "Value" (ToString); an enum also its table,
    /// "EnumValues/Count" and "EnumValues/[000]/Name" and ".../Value" (the
    /// value as CInt64::ToString) per entry. Load starts with Destroy, reads
    /// the type, an enum's table (no more entries than the store lists), then
    /// "Value" into FromString with the present ToString as default. Both
    /// always give true; the store's current path is back where it was.
    ///@{
    bool Save(IConfigStore &store) const;
    bool Load(IConfigStore &store);
    ///@}

    /// Case does not matter; unknown or null text gives Undefined.
    static EType ParseType(char16_t const *s);
    /// An unknown type gives "Undefined".
    static char16_t const *TypeToString(EType t);

private:
    template <class T> void Store(EType t, T v);
    template <class T> T Stored() const;
    template <class T> CVariant &AssignScalar(EType t, T v);
    static bool IsWideInteger(EType t);           ///< Int64, UInt64
    int64_t IntegerBits(bool sixtyFourBit) const; ///< the 64-bit pattern cut to any integer target
    void StoreInteger(int64_t bits);              ///< cut to this integer type's width
    void BlobFromHex(char16_t const *s);
    template <class T> void LoadScalar(IFile &file, bool (IFile::*get)(T &));
    void LoadBlob(IFile &file);
    void LoadEnum(IFile &file);
    template <class F> F ToFloating() const;
    void CopyFrom(CVariant const &other);
    void SetBlob(void const *p, uint32_t n);

    EType type = Undefined;
    alignas(8) unsigned char value[8] = {};
    CString text;
    TArray<SEnumValue> enumValues;
    CMemFile blob;
};

} // namespace qv
