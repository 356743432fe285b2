/// @file
/// CSBFile: the structured binary file, a tree of named elements, each with
/// typed attributes, one typed datum and children, saved with a shared table
/// of names. The tag dictionary's SBF form is its main user.
///
/// File form (little-endian): "SBF", a zero byte, the 4-byte application
/// identifier, major and minor version bytes; the string count and strings;
/// the count of top-level elements and the elements. A string is a 32-bit
/// length L and L bytes: the UTF-8 text with its terminating zero, every byte
/// complemented (so the terminator shows as 0xFF). An element, depth first:
/// name index, child count, the children in full, attribute count, each
/// attribute as name index and VARIANT, then the datum as a VARIANT: an
/// element's attributes and datum come after its children. A VARIANT is a
/// type byte (0 none .. 13 binary, see EType) and its value; a string value
/// is stored like a table string (length 0: a null string), a binary value as
/// a 32-bit size and raw bytes.
///
/// Loading. The caller sets the expected identifier with SetAppInfo first:
/// a file of another identifier is refused. The version bytes are stored,
/// never judged. A name index past the table gives the empty name.
///
/// Hostile input. The rest of the file is read into one buffer of its own
/// size; every count and length is checked against the bytes that remain, so
/// a count far above the file's size fails at once and nothing is allocated
/// from a length field beyond the file. The tree is built and saved with
/// explicit stacks (a file nested 100,000 deep loads). Unlike the bare
/// format walk, a short read fails the load: a truncated file is refused
/// rather than filled with zeros.
///
/// Saving by path writes a temporary file beside the target and renames it
/// over the target (qv/filesystems/AtomicSave.h); a file system that cannot
/// rename is written directly. Save(IFile*) builds the whole file in memory
/// and writes it at once; a short write is false.
///
/// Failures: Load and Save give false. A failed Load keeps the tree read so
/// far until the next Destroy. No message is produced.
///
/// Ownership: the file owns its elements (made with CElement::New or new);
/// Remove deletes one with its subtree. GetAttribute's fallbacks, the empty
/// element of Curr and the VARIANT text forms are shared scratch: a result is
/// good until the next such call, and a CSBFile belongs to one thread.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/formats/tagged/TreeCursor.h"

namespace qv {

class IFile;
class IFileSystem;

/// @copydoc SBFile.h
class QV_API CSBFile {
public:
    /// One typed value: an attribute's or an element's datum.
    class QV_API VARIANT {
    public:
        /// The type byte as stored in the file.
        enum EType : uint8_t {
            VT_NONE = 0,
            VT_BOOL = 1,
            VT_CHAR = 2,
            VT_UCHAR = 3,
            VT_SHORT = 4,
            VT_USHORT = 5,
            VT_LONG = 6,
            VT_ULONG = 7,
            VT_INT64 = 8,
            VT_UINT64 = 9,
            VT_FLOAT = 10,
            VT_DOUBLE = 11,
            VT_STRING = 12,
            VT_BINARY = 13,
        };

        VARIANT() = default;
        /// A value of the matching type (VT_BOOL .. VT_DOUBLE).
        ///@{
        VARIANT(bool v);
        VARIANT(char v);
        VARIANT(unsigned char v);
        VARIANT(int16_t v);
        VARIANT(uint16_t v);
        VARIANT(int32_t v);
        VARIANT(uint32_t v);
        VARIANT(int64_t v);
        VARIANT(uint64_t v);
        VARIANT(float v);
        VARIANT(double v);
        ///@}
        VARIANT(char16_t const *v); ///< null: the null string
        VARIANT(CString const &v); ///< a string; a null CString is the null string
        VARIANT(void const *p, uint32_t size); ///< binary, a copy of size bytes at p (null or 0: empty)
        /// Copies own their string or bytes.
        ///@{
        VARIANT(VARIANT const &other) = default;
        VARIANT &operator=(VARIANT const &other) = default;
        ///@}

        EType GetType() const { return type; } ///< VT_NONE for an empty VARIANT
        void Destroy(); ///< frees the value, type none
        /// False on a type byte outside 0..13 or a short write/read. Load
        /// never takes more bytes for a value than the file still has.
        ///@{
        bool Save(IFile *f) const;
        bool Load(IFile *f);
        ///@}

        /// Numbers convert (floating point to integers as the library's
        /// float-to-int rule); bool is 0 or 1; a string goes through _wtol
        /// (_wtof for float and double); other types give 0. To bool: numbers
        /// are true when not zero, a string when it is "true" or "yes" in any
        /// case, other types false.
        ///@{
        operator bool() const;
        operator char() const;
        operator unsigned char() const;
        operator int16_t() const;
        operator uint16_t() const;
        operator int32_t() const;
        operator uint32_t() const;
        operator float() const;
        operator double() const;
        ///@}
        /// "true"/"false", "%d" (char..long), "%u", "%I64d", "%I64u", "%e"
        /// (float, double), the string itself, or "" (none, binary, null).
        /// Good until the next conversion of this VARIANT.
        operator char16_t const *() const;

        /// The binary value (type 13) and its size; null and 0 otherwise.
        ///@{
        uint8_t const *GetBinary() const;
        uint32_t GetBinarySize() const;
        ///@}

    private:
        template <class T> T Number() const;

        EType type = VT_NONE;
        union {
            bool b;
            char c;
            unsigned char uc;
            int16_t s;
            uint16_t us;
            int32_t l;
            uint32_t ul;
            int64_t i64;
            uint64_t u64;
            float f;
            double d;
        } value{};
        CString text;                 ///< type 12; a null CString is the null string
        TSimpleArray<uint8_t> binary; ///< type 13
        mutable CString scratch;      ///< the last text form
    };

    class CElement;

    /// One attribute of an element.
    struct ATTRIB {
        uint32_t nameIndex = 0; ///< index of the name in the string table, as loaded or saved
        CString name;           ///< the name; compared without case
        VARIANT value;          ///< the value
    };

    /// One element of the tree. The links are public so the tree cursor can
    /// walk them; CSBFile's Insert and Remove keep them consistent.
    class QV_API CElement {
    public:
        CSBFile *source = nullptr; ///< the owning file; not owned
        CElement *next = nullptr;       ///< the next sibling, or null
        CElement *prev = nullptr;       ///< the previous sibling, or null
        CElement *firstChild = nullptr; ///< the first child, or null
        CElement *lastChild = nullptr;  ///< the last child, or null
        CElement *parent = nullptr;     ///< null at the top level
        uint32_t nameIndex = 0;         ///< index of the name in the string table, as loaded or saved
        CString name;                   ///< the element's name
        TArray<ATTRIB> attributes;      ///< in the order added or read
        VARIANT data;                   ///< the element's one datum

        CElement() = default;
        ~CElement(); ///< deletes everything below, not the siblings
        CElement(CElement const &) = delete;
        CElement &operator=(CElement const &) = delete;

        static CElement *New() { return new CElement; } ///< a new empty element; the file it is inserted in owns it

        char16_t const *GetName() const { return name.GetUTF16(); } ///< may be null for an unnamed element
        void SetName(char16_t const *n) { name = n ? n : u""; } ///< null stores the empty name
        VARIANT &GetData() { return data; } ///< the datum, to read or change
        /// Replaces the datum with a VARIANT made from the arguments.
        ///@{
        template <class T> void SetData(T const &v) { data = VARIANT(v); }
        void SetData(char16_t const *v) { data = VARIANT(v); }
        void SetData(void const *p, uint32_t size) { data = VARIANT(p, size); }
        ///@}
        uint32_t NumChildren() const; ///< the count of direct children
        void SetSource(CSBFile *file) { source = file; } ///< sets the owning file; not owned

        /// By name without case: replaced, or appended.
        ///@{
        template <class T> void SetAttribute(char16_t const *n, T const &v) { PutAttribute(n, VARIANT(v)); }
        void SetAttribute(char16_t const *n, char16_t const *v) { PutAttribute(n, VARIANT(v)); }
        ///@}
        /// The attribute's VARIANT, or a shared static of type none.
        VARIANT &GetAttribute(char16_t const *n);
        /// The attribute's VARIANT, or a shared static set to the fallback.
        ///@{
        template <class T> VARIANT &GetAttribute(char16_t const *n, T const &fallback) {
            static VARIANT shared;
            ATTRIB *a = FindAttribute(n);
            if (a) return a->value;
            shared = VARIANT(fallback);
            return shared;
        }
        VARIANT &GetAttribute(char16_t const *n, char16_t const *fallback) {
            return GetAttribute<VARIANT>(n, VARIANT(fallback));
        }
        bool RemoveAttribute(char16_t const *n);
        bool AttributeExists(char16_t const *n);
        void Destroy();      ///< deletes the subtree below
        void SelfDestruct(); ///< deletes this unlinked element and its subtree
        ///@}

    private:
        ATTRIB *FindAttribute(char16_t const *n);
        void PutAttribute(char16_t const *n, VARIANT const &v);
    };

    CSBFile() = default;
    ~CSBFile() = default;
    CSBFile(CSBFile const &) = delete;
    CSBFile &operator=(CSBFile const &) = delete;

    /// Empties the file, then reads it from the current position of f. False
    /// on a null f, another application identifier or bad or short input.
    bool Load(IFile *f);
    bool Load(IFileSystem *fs, char16_t const *path); ///< must exist, read, share read
    bool Load(char16_t const *path);                  ///< on the disk
    /// Writes the whole file at the current position of f; false on a null f
    /// or a short write.
    bool Save(IFile *f);
    bool Save(IFileSystem *fs, char16_t const *path); ///< temporary file and rename
    bool Save(char16_t const *path); ///< on the disk

    /// A null id leaves the identifier; otherwise up to 4 bytes, to a NUL.
    void SetAppInfo(char const *id, uint8_t major, uint8_t minor);
    /// id (if not null) gets the 4 bytes and a NUL: give it 5 bytes.
    void GetAppInfo(char *id, uint8_t &major, uint8_t &minor) const;

    /// Cursor moves; see qv/formats/tagged/TreeCursor.h.
    ///@{
    bool Root();
    bool Parent();
    bool Child(bool allowEmpty);
    bool Next();
    bool Prev();
    bool First();
    bool Last();
    uint32_t NumPeers();
    static uint32_t NumPeers(CElement *element);
    bool Insert(CElement *element, bool before);
    bool InsertChild(CElement *element, bool first);
    bool Remove();
    bool FindFirst(char16_t const *name);
    bool FindNext(char16_t const *name);
    bool FindFirstChild(char16_t const *name);
    CElement *GetCurr();
    void SetCurr(CElement *element);
    CElement &Curr(); ///< a static empty element when there is none
    bool IsValid();
    ///@}

    /// The index of a name (without case), added if new.
    uint32_t GetString(char16_t const *name);
    /// The name at an index; the empty text past the end.
    ///@{
    char16_t const *GetString(uint32_t index) const;
    uint32_t nStrings() const { return strings.nItems(); }
    ///@}

    void Destroy(); ///< the whole tree and the table
    void DestroyStringTable(); ///< empties the string table only; the tree stays

private:
    bool Write(IFile &out);
    bool ReadTree(IFile &in);

    TArray<CString> strings;
    TTreeCursor<CElement> cursor;
    char appId[4] = {0, 0, 0, 0};
    uint8_t appMajor = 0;
    uint8_t appMinor = 0;
};

} // namespace qv
