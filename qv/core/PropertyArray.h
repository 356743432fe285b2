/// @file
/// CPropertyArray: a small dictionary of texts, passed by value (image codecs,
/// file-system entries). Names compare without regard to case; values are
/// always text, numbers stored as their text. Lookups are linear: the arrays
/// hold a handful of entries.
///
/// CPropertyArray::CEntry is a handle: the array's address and a copy of the
/// name. It is a value, not an iterator: it stays usable while entries come and
/// go, and must not outlive its array. Reading an absent name reads the empty
/// text (so numbers read 0); writing creates the entry. Pointers are written in
/// the full pointer width of this host ("0x00007F12345678AB"), so that they
/// survive the round trip.
///
/// Failure: none is reported; an entry that cannot be appended (heap
/// exhausted) is dropped. Threads: an array belongs to one thread at a time.
/// Texts returned point into the array and live until it changes.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc PropertyArray.h
struct QV_API ENTRY {
    CString name;  ///< compared without regard to case
    CString value; ///< always text, numbers as their text
};

/// @copydoc PropertyArray.h
class QV_API CPropertyArray : public TArray<ENTRY> {
public:
    /// The handle operator[] returns: reads and writes one named value.
    class QV_API CEntry {
    public:
        /// A handle on name (null: the empty name) in array, which must outlive it.
        CEntry(CPropertyArray *array, char16_t const *name);

        /// The value, or the empty text if the name is absent; points into the array.
        operator char16_t const *() const;
        operator int() const;     ///< _wtol
        operator double() const;  ///< _wtof
        operator int64_t() const; ///< _wtoi64
        operator void *() const;  ///< "0x" and hexadecimal digits; anything else reads null
        bool Exists() const; ///< true if the array holds the name

        /// Sets the value (null: the empty text), creating the entry if absent.
        CEntry &operator=(char16_t const *v);
        CEntry &operator=(int v);     ///< "%d"
        CEntry &operator=(int64_t v); ///< "%I64d"
        CEntry &operator=(double v);  ///< "%f"
        CEntry &operator=(void *v);   ///< "0x" and upper-case digits, zero-padded to the pointer width
        /// Writes other's value text under this name (copying the handle would
        /// leave the array unchanged).
        ///@{
        CEntry &operator=(CEntry const &other);
        CEntry(CEntry const &other) = default;
        ///@}

    private:
        CPropertyArray *array;
        CString name;
    };

    CPropertyArray() = default;
    /// Copies every entry; the strings are shared until changed.
    ///@{
    CPropertyArray(CPropertyArray const &other) = default;
    CPropertyArray &operator=(CPropertyArray const &other) = default;
    ///@}

    int nValues() const; ///< the number of entries
    void Clear();        ///< removes every entry
    /// The first entry whose name matches without regard to case, or -1.
    int FindValue(char16_t const *name) const;
    /// The value, or the empty text if the name is absent.
    char16_t const *GetValue(char16_t const *name) const;
    /// Replaces the first match's value or appends the entry.
    void SetValue(char16_t const *name, char16_t const *value);

    /// A handle on the named value; reading an absent name reads the empty
    /// text, writing creates the entry.
    CEntry operator[](char16_t const *name);
    /// The i-th entry's name; past the end (or negative) the empty name.
    CEntry operator[](int i);
};

} // namespace qv
