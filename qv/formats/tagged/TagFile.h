/// @file
/// The tag dictionary: what a SAF header may hold. CTagEntry describes one
/// tag (name or name pattern, description, data type, bounds, permitted
/// texts, category, units, write mode, location); CTagFile is the sorted
/// dictionary; GetTagFile() the library's one shared dictionary; CTagArray a
/// light list of name and value pairs.
///
/// Name patterns: an entry name may hold variables, two percent signs with an
/// optional decimal width between them ("Lens%2%" matches Lens07, not Lens7 or
/// Lens107; "Lens%%" matches Lens followed by one or more digits). Everything
/// else compares without regard to case. Numbered variants of one pattern
/// order by their numbers, the last variable counting most (CompareTags).
///
/// Three stored forms, all read by Load (by their first bytes):
///  - binary "TAGF": "TAGF", a version byte (3 written, 0..3 read), a DWORD
///    count, then each entry: name (UTF-8 string with a 4-byte length), a WORD
///    of flags (type bit 0x1 text, 0x2 int16, 0x4 int32, 0x8 flt32, 0x10
///    flt64; 0x2000 numeric bounds; 0x8000 texts as bounds, 0x4000 texts as
///    suggestions, either forcing 0x1 on), the description (code page 1252),
///    category (v1+), units (v2+), write mode (v1+), location (v3+) bytes,
///    bounds as two Int64 (int types) or two Doubles (flt64 only: existing
///    files have no bounds for flt32 entries, and reader and writer agree on
///    it), then the text values if a text mode is on (a mode of 0 stores
///    none). Version 0 files read location 1 ("Include"). Int bounds are
///    truncated: 1.5 comes back as 1.
///  - SBF (qv/formats/tagged/SBFile.h), application "TAGF" 0.1: top-level
///    "TagEntry" elements with the attributes Name, Description (text),
///    DataType (long), UseNumericBounds (bool), LowBound, HighBound (double),
///    TextValuesMode, Category, WriteMode, Units, Location (long); each text
///    value a child "TextValue" with the attribute "Value".
///  - XML (qv/formats/tagged/XMLFile.h): the declaration, a root "TagFile",
///    one "TagEntry" per entry with the same attributes, enumerations as
///    their texts, bools as "True"/"False", bounds in the shortest "%g" form
///    that reads back exactly (17 digits where "%g" would lose bits), and each
///    text value as a child "TextValue" holding it as its text.
///
/// Every load first empties the dictionary and sorts it on success; every
/// save sorts first. Sorting is by name without regard to case with the text
/// runtime's lower-case fold (_wcsicmp), stable for equal names.
///
/// Hostile input: counts and lengths are checked against the bytes left, so
/// a count far above the file's size fails without allocating; a binary load
/// stops at the first failing entry and keeps the entries read so far,
/// unsorted, with the result false.
///
/// Saving by path writes a temporary file beside the target and renames it
/// over the target (qv/filesystems/AtomicSave.h); a file system that cannot
/// rename gets the direct write. Saves build the file in memory and fail on
/// a short write.
///
/// Threads: the shared dictionary is loaded once and then only read; no
/// locks. Everything else belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

class IFile;
class IFileSystem;
class CSBFile;
class CXMLFile;

/// One entry of the dictionary. Plain accessors; Destroy only empties the
/// text values.
class QV_API CTagEntry {
public:
    /// The type of the tag's value.
    enum DATA_TYPE : int { DT_TEXT, DT_INT16, DT_INT32, DT_FLT32, DT_FLT64, DATA_TYPE_COUNT };
    /// What the text values are for: unused, the only values allowed, or
    /// suggestions.
    enum TEXT_VALUES_MODE : int { TVM_DISABLED, TVM_USE_AS_BOUNDS, TVM_USE_AS_SUGGESTIONS, TEXT_VALUES_MODE_COUNT };
    /// 17 groups (0..16) of SAF headers and 17, comment lines.
    enum CATEGORY : int { CAT_MISC, CAT_COMMENT = 17, CATEGORY_COUNT = 18 };
    /// Where the tag is written: the header itself, an include file, or the
    /// defaults.
    enum LOCATION : int { LOC_HEADER, LOC_INCLUDE, LOC_DEFAULT, LOCATION_COUNT };
    /// How an application writing the tag treats it: ask, current file only,
    /// all files, or never write.
    enum WRITE_MODE : int { WM_PROMPT, WM_CURRENT_ONLY, WM_ALL, WM_READ_ONLY, WRITE_MODE_COUNT };
    /// Units of the value; 0 is none, the others are named by UnitsToStr.
    enum UNITS : int { UNITS_NONE, UNITS_COUNT = 20 };

    /// Texts of the enumerations ("Milimeters" and "Milibar" as files have
    /// them). XToStr gives value 0's text for a value out of range; StrToX
    /// compares without case, and gives 0 (and false) when nothing matches.
    ///@{
    static char16_t const *DataTypeToStr(int v);
    static char16_t const *TextValuesModeToStr(int v);
    static char16_t const *CategoryToStr(int v);
    static char16_t const *LocationToStr(int v);
    static char16_t const *WriteModeToStr(int v);
    static char16_t const *UnitsToStr(int v);
    static bool StrToDataType(char16_t const *s, DATA_TYPE &v);
    static bool StrToTextValuesMode(char16_t const *s, TEXT_VALUES_MODE &v);
    static bool StrToCategory(char16_t const *s, CATEGORY &v);
    static bool StrToLocation(char16_t const *s, LOCATION &v);
    static bool StrToWriteMode(char16_t const *s, WRITE_MODE &v);
    static bool StrToUnits(char16_t const *s, UNITS &v);
    static DATA_TYPE StrToDataType(char16_t const *s);
    static TEXT_VALUES_MODE StrToTextValuesMode(char16_t const *s);
    static CATEGORY StrToCategory(char16_t const *s);
    static LOCATION StrToLocation(char16_t const *s);
    static WRITE_MODE StrToWriteMode(char16_t const *s);
    static UNITS StrToUnits(char16_t const *s);
    ///@}

    /// Plain value copies.
    ///@{
    CTagEntry() = default;
    CTagEntry(CTagEntry const &) = default;
    CTagEntry &operator=(CTagEntry const &) = default;
    ~CTagEntry() = default;
    ///@}
    /// Empties the text values only; the other fields stay.
    void Destroy() { textValues.Destroy(); }

    /// The fields of the entry. Setting a null text stores an empty one;
    /// getters never return null. Bounds apply only when use is true.
    ///@{
    void SetName(char16_t const *n) { name = n ? n : u""; }
    char16_t const *GetName() const { return name.GetUTF16() ? name.GetUTF16() : u""; }
    void SetDescription(char16_t const *d) { description = d ? d : u""; }
    char16_t const *GetDescription() const { return description.GetUTF16() ? description.GetUTF16() : u""; }
    void SetNumericBounds(bool use, double low, double high);
    void GetNumericBounds(bool &use, double &low, double &high) const;
    void SetDataType(DATA_TYPE t) { dataType = t; }
    DATA_TYPE GetDataType() const { return dataType; }
    void SetTextValuesMode(TEXT_VALUES_MODE m) { textValuesMode = m; }
    TEXT_VALUES_MODE GetTextValuesMode() const { return textValuesMode; }
    void SetCategory(CATEGORY c) { category = c; }
    CATEGORY GetCategory() const { return category; }
    void SetWriteMode(WRITE_MODE m) { writeMode = m; }
    WRITE_MODE GetWriteMode() const { return writeMode; }
    void SetUnits(UNITS u) { units = u; }
    UNITS GetUnits() const { return units; }
    void SetLocation(LOCATION l) { location = l; }
    LOCATION GetLocation() const { return location; }
    ///@}

    uint32_t nTextValues() const { return textValues.nItems(); } ///< count of text values
    char16_t const *GetTextValue(uint32_t i) const; ///< null past the end
    void AddTextValue(char16_t const *v); ///< appends; null adds an empty text
    void RemoveTextValue(uint32_t i); ///< past the end: nothing
    void RemoveAllTextValues() { textValues.Destroy(); } ///< as Destroy

    /// The entry in each stored form (see the top of this file). The binary
    /// Load reads the fields of that version.
    ///@{
    bool Save(IFile &f) const;
    bool Load(IFile &f, uint8_t version);
    bool Save(CSBFile &f) const;
    bool Load(CSBFile &f);
    bool Save(CXMLFile &f) const;
    bool Load(CXMLFile &f);
    ///@}

private:
    CString name;
    CString description;
    DATA_TYPE dataType = DT_TEXT;
    bool useNumericBounds = false;
    double lowBound = 0.0;
    double highBound = 0.0;
    TEXT_VALUES_MODE textValuesMode = TVM_DISABLED;
    TArray<CString> textValues;
    CATEGORY category = CAT_MISC;
    WRITE_MODE writeMode = WM_PROMPT;
    UNITS units = UNITS_NONE;
    LOCATION location = LOC_HEADER;
};

/// The dictionary: entries kept sorted by name (see the top of this file).
class QV_API CTagFile : public TArray<CTagEntry> {
public:
    /// "TAGF" reads the binary form, "SBF" the SBF form, anything else XML.
    bool Load(IFile *f);
    /// Load or save one stored form from the current position of f. Loads
    /// empty the dictionary first and sort it on success; saves sort first.
    /// False on a null f, bad input or a short write.
    ///@{
    bool LoadBinary(IFile *f);
    bool LoadSBF(IFile *f);
    bool LoadXML(IFile *f);
    ///@}
    bool Save(IFile *f); ///< the binary form, as SaveBinary
    /// @copydoc LoadBinary(IFile*)
    ///@{
    bool SaveBinary(IFile *f);
    bool SaveSBF(IFile *f);
    bool SaveXML(IFile *f);
    ///@}
    /// By path: loads open must-exist, read, share read; saves go through a
    /// temporary file and rename. fs null or absent: the disk.
    ///@{
    bool Load(IFileSystem *fs, char16_t const *path);
    bool LoadBinary(IFileSystem *fs, char16_t const *path);
    bool LoadSBF(IFileSystem *fs, char16_t const *path);
    bool LoadXML(IFileSystem *fs, char16_t const *path);
    bool Save(IFileSystem *fs, char16_t const *path);
    bool SaveBinary(IFileSystem *fs, char16_t const *path);
    bool SaveSBF(IFileSystem *fs, char16_t const *path);
    bool SaveXML(IFileSystem *fs, char16_t const *path);
    bool Load(char16_t const *path);
    bool LoadBinary(char16_t const *path);
    bool LoadSBF(char16_t const *path);
    bool LoadXML(char16_t const *path);
    bool Save(char16_t const *path);
    bool SaveBinary(char16_t const *path);
    bool SaveSBF(char16_t const *path);
    bool SaveXML(char16_t const *path);
    ///@}

    void Sort(); ///< by name without case, stable (see the top of this file)
    uint32_t nTagEntries() const { return nItems(); } ///< the count of entries
    /// Past the end: a static default entry.
    CTagEntry &GetTagEntry(uint32_t i);
    CTagEntry &operator[](uint32_t i) { return GetTagEntry(i); } ///< as GetTagEntry
    /// False if an entry of that name (without case) exists; appends without
    /// sorting, so Sort must follow before FindTag is relied on.
    bool AddTagEntry(CTagEntry const &e);
    bool RemoveTagEntry(uint32_t i); ///< past the end: true, no effect
    /// Binary search: the entry whose pattern matches name, else whose name
    /// equals it without case.
    bool FindTag(char16_t const *name, uint32_t &index) const;
    bool IsComment(char16_t const *name) const; ///< found, category 17
    /// _wcsicmp(a, b), except for two names of one pattern entry: the
    /// difference of their variables, the last one first.
    int CompareTags(char16_t const *a, char16_t const *b) const;
    /// Appends the variables of name as entry index's pattern reads them.
    /// No percent sign: true, nothing. An unclosed variable: false.
    bool GetVars(char16_t const *name, uint32_t index, TArray<int> &out) const;
    void Destroy() { TArray<CTagEntry>::Destroy(); } ///< removes all entries

    /// Whether name fits the entry name pattern (see the top of this file).
    static bool MatchesPattern(char16_t const *name, char16_t const *pattern);
};

/// The library's one dictionary: empty until the application loads it,
/// destroyed at exit.
QV_API CTagFile &GetTagFile();

/// A light list of name and value texts; names compare without case.
class QV_API CTagArray {
public:
    /// One name and its value text.
    struct QV_API TAG {
        CString name;  ///< the tag's name
        CString value; ///< its value as text
        TAG &operator=(char16_t const *v); ///< sets the value; the name stays
        TAG &operator=(int v);    ///< "%d"
        TAG &operator=(double v); ///< "%g"
        TAG &operator=(TAG const &other) = default; ///< copies name and value
        operator char16_t const *() const { return value.GetUTF16(); } ///< the value
    };

    /// Plain value copies.
    ///@{
    CTagArray() = default;
    CTagArray(CTagArray const &) = default;
    CTagArray &operator=(CTagArray const &) = default;
    ///@}

    uint32_t nItems() const { return tags.nItems(); } ///< the count of tags
    void Empty() { tags.Empty(); } ///< removes all tags
    /// Negative or above the count: a static dummy; the count itself adds one.
    TAG &operator[](int i);
    /// The first of that name, or a new one appended.
    TAG &operator[](char16_t const *name);
    uint32_t FindTag(char16_t const *name) const; ///< UINT32_MAX if none
    bool Exists(char16_t const *name) const { return FindTag(name) != UINT32_MAX; } ///< whether FindTag finds it
    char16_t const *GetTagValue(char16_t const *name) const; ///< null if none
    char16_t const *Get(char16_t const *name) const { return GetTagValue(name); } ///< as GetTagValue
    /// Sets the value of the first tag of that name, appending one if none.
    void SetTagValue(char16_t const *name, char16_t const *value);
    void Set(char16_t const *name, char16_t const *value) { SetTagValue(name, value); } ///< as SetTagValue
    void RemoveTag(char16_t const *name); ///< the first of that name; none: nothing
    void Remove(char16_t const *name) { RemoveTag(name); } ///< as RemoveTag

private:
    TArray<TAG> tags;
};

} // namespace qv
