/// @file
/// CString: the library's one string class, UTF-16 text in char16_t code units
/// behind a shared, reference-counted record (copy on write).
///
/// Ownership. A CString holds one pointer to a CStringRep. Copies share the
/// record; the text is copied on the first mutation ("detaching"). The pointer
/// may be null: Empty(), Destroy() and the destructor leave it so, while a
/// default-constructed string holds the empty text. A null string answers:
/// GetLength 0, IsEmpty true, GetTChar and operator char16_t const * a null
/// pointer, GetUTF16/ConvertToUTF16 a static empty wide text, GetUTF8/
/// ConvertToUTF8/ConvertToCodePage a static empty byte text, the member
/// compares -1, Equals and its kin false (also against the empty text), the
/// finds -1. Callers depend on these answers.
///
/// Lengths and positions count UTF-16 code units; a length of -1 means "up to
/// the terminator". char const * arguments are UTF-8 unless a code page is
/// named. A null text argument counts as the empty text.
///
/// Failure. Nothing here reports failure: an exhausted heap makes operator new
/// throw std::bad_alloc (the allocator's exception; sizes saturate, so an
/// absurd request fails there rather than wrapping).
///
/// Threads. Only the reference count is atomic. Two CStrings that share a
/// record may be used from two threads as long as each is only read or changed
/// through detaching operations. ConvertToUTF8, ConvertToCodePage and a write
/// through operator[] touch the shared record without detaching.
///
/// Relocation. A CString is one pointer and may be moved as raw bytes (TArray
/// does so).
#pragma once

#include <atomic>
#include <cstdarg>
#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

/// The shared record, owned by the strings that point to it. text holds at
/// least (capacity + 1) units (appending may leave spare room behind the
/// capacity); narrow caches the last conversion to UTF-8 or a code page, a
/// block of narrowSize bytes. A new record has refCount 1 and every other field
/// zero. Only CString allocates and frees the blocks.
struct CStringRep {
    std::atomic<int32_t> refCount; ///< strings sharing the record
    char16_t *text;                ///< the units, NUL-terminated
    int32_t length;                ///< units before the terminator
    int32_t capacity;              ///< units the text may hold without growing
    char *narrow;                  ///< last UTF-8 or code page conversion, or null
    int32_t narrowSize;            ///< bytes of the narrow block
};

/// @copydoc String.h
class QV_API CString {
public:
    CString(); ///< the empty text (not null)
    /// A copy of the text (UTF-8 or UTF-16); a null pointer gives the empty text.
    ///@{
    CString(char const *utf8);
    CString(char16_t const *text);
    ///@}
    CString(CString const &other);     ///< shares the record
    CString(CString &&other) noexcept; ///< takes the record; other becomes null
    ~CString();

    /// Copy(text): detaches and copies; a null pointer gives the empty text.
    ///@{
    CString &operator=(char const *utf8);
    CString &operator=(char16_t const *text);
    ///@}
    CString &operator=(CString const &other); ///< releases its own record, shares other's
    CString &operator=(CString &&other) noexcept; ///< takes the record; other becomes null

    /// Detach and copy n units of s (n of -1, negative or past the text: all of
    /// it). The capacity only changes when it is too small, and then becomes
    /// exactly the new length. The char form reads UTF-8 and n
    /// counts bytes.
    ///@{
    void Copy(char16_t const *s, int n = -1);
    void Copy(char const *s, int n = -1);
    ///@}

    /// Detach and guarantee capacity >= n, keeping the text (GetBuffer(-1): the
    /// current length). Write at most capacity units plus a terminator into the
    /// buffer, then ReleaseBuffer() recounts the length up to the terminator.
    ///@{
    void Alloc(int n);
    char16_t *GetBuffer(int n);
    void ReleaseBuffer();
    ///@}

    void Destroy(); ///< release the record; the string becomes null
    void Empty();   ///< the same

    int GetLength() const; ///< units before the terminator; 0 when null
    bool IsEmpty() const;  ///< length 0, null included
    /// The text, or a null pointer for a null string.
    ///@{
    char16_t const *GetTChar() const;
    operator char16_t const *() const;
    ///@}
    /// The text, or a static empty text for a null string; never null.
    /// ConvertToUTF16 gives a writable pointer into the record without detaching.
    ///@{
    char16_t const *GetUTF16() const;
    char16_t *ConvertToUTF16();
    ///@}

    /// Convert into the record's narrow cache and return it. The result stays
    /// valid until the next conversion on the same record (the UTF-8 and code
    /// page forms share one block) or until the record goes away.
    ///@{
    char const *GetUTF8() const;
    char *ConvertToUTF8() const;
    char *ConvertToCodePage(uint32_t codePage) const;
    ///@}
    /// Replaces the text by s converted from codePage. The length counts the
    /// converted terminator too (one more than the visible text) until a
    /// ReleaseBuffer or another recount: existing callers depend on it.
    void FromCodePage(uint32_t codePage, char const *s);

    /// Null string or i above the length: a static scratch unit. i equal to the
    /// length: a NUL is appended first and the reference is to it. Otherwise a
    /// reference into the text without detaching: a write through it changes
    /// every string sharing the record.
    char16_t &operator[](int i);
    /// Read only: the unit at i, or 0 outside the text.
    char16_t operator[](int i) const;

    /// Appending; the capacity grows to exactly the new length (the block may
    /// keep spare room, so repeated appends do not copy the text each time).
    /// A null string appends as the empty text.
    ///@{
    void Concatenate(char16_t const *s, int n = -1);
    CString &operator+=(char16_t const *s);
    CString &operator+=(char16_t c);
    ///@}

    /// Editing; each detaches first and returns the new length (Replace by
    /// text: the number of replacements).
    /// Delete clamps n against the capacity, not the length, so a count past
    /// the text (with spare capacity) leaves a length too small (never below
    /// 0): callers pass valid ranges, and the order of checks is kept as
    /// existing callers see it.
    int Delete(int pos, int n);
    /// pos above the length (or negative) changes nothing; n of -1 (negative):
    /// all of s, otherwise exactly n units (a NUL among them included).
    ///@{
    int Insert(int pos, char16_t const *s, int n = -1);
    int Insert(int pos, char16_t c);
    ///@}
    /// Replaces n units at pos by m units of s (m of -1: all of s); n past the
    /// end of the text replaces up to the end.
    int Replace(int pos, int n, char16_t const *s, int m = -1);
    /// Replaces every find by with, never searching replaced text again. An
    /// empty find replaces nothing.
    ///@{
    int Replace(char16_t const *find, char16_t const *with, bool caseSensitive = true);
    bool Truncate(int n); ///< false unless 0 <= n < length
    ///@}

    /// Index or -1. The set forms stop at any unit of the set (an empty set
    /// finds nothing). ReverseFindChar starts at start, or at length - 1 if
    /// start is not below the length, and goes down to 0.
    ///@{
    int FindChar(char16_t c) const;
    int FindChar(char16_t const *set) const;
    int FindChar(int start, char16_t c) const;
    int FindChar(int start, char16_t const *set) const;
    int ReverseFindChar(char16_t c) const;
    int ReverseFindChar(char16_t const *set) const;
    int ReverseFindChar(int start, char16_t c) const;
    int ReverseFindChar(int start, char16_t const *set) const;
    ///@}
    /// First occurrence at or after start (a negative start counts as 0); an
    /// empty s is found at start. Without case both sides go through towupper.
    ///@{
    int FindString(char16_t const *s, bool caseSensitive = true) const;
    int FindString(int start, char16_t const *s, bool caseSensitive = true) const;
    bool Contains(char16_t const *s, bool caseSensitive = true) const;
    bool ContainsNoCase(char16_t const *s) const;
    ///@}

    /// n of -1: whole texts, result -1, 0 or 1 by unsigned code unit; with n:
    /// the result of wcsncmp. The NoCase forms are _wcsicmp/_wcsnicmp (they
    /// fold to lower case). A null string compares -1.
    ///@{
    int Compare(char16_t const *s, int n = -1) const;
    int CompareTo(char16_t const *s, int n = -1) const;
    int CompareNoCase(char16_t const *s, int n = -1) const;
    static int Compare(char16_t const *a, char16_t const *b);
    static int CompareNoCase(char16_t const *a, char16_t const *b);
    ///@}

    /// Whole-text or prefix comparisons through Compare/CompareNoCase; a null
    /// string gives false, even against the empty text.
    ///@{
    bool Equals(char16_t const *s) const;
    bool EqualsNoCase(char16_t const *s) const;
    bool StartsWith(char16_t const *s) const;
    bool StartsWithNoCase(char16_t const *s) const;
    ///@}
    /// The ends are found by scanning the stored text for its terminator.
    ///@{
    bool EndsWith(char16_t const *s) const;
    bool EndsWithNoCase(char16_t const *s) const;
    ///@}

    /// Pieces. SubString is the empty text when pos >= length (a negative pos
    /// counts as 0), otherwise n units from pos (n of -1 or past the end: the
    /// rest). Right(n) starts at max(length - n, 0). TrimLeft(n)/TrimRight(n)
    /// drop n units from that end; they do not look at white space.
    ///@{
    CString SubString(int pos, int n = -1) const;
    CString Mid(int pos, int n = -1) const;
    CString Left(int n) const;
    CString Right(int n) const;
    CString TrimLeft(int n) const;
    CString TrimRight(int n) const;
    ///@}

    /// White-space trims into a new string (white space by qv::iswspace, ASCII
    /// and Latin-1 rules). Trim and RTrim remove only ONE trailing white-space
    /// unit ("ab  " gives "ab "): existing callers depend on it; the free
    /// function qv::Trim removes all.
    ///@{
    CString Trim() const;
    CString LTrim() const;
    CString RTrim() const;
    ///@}

    /// Formatting with the library's wide printf grammar (qv/core/WideFormat.h)
    /// into a fresh block of three units more than the text needs; old contents
    /// are overwritten, and arguments may point into this string's own text.
    /// FromInt uses "%d", FromDouble "%g".
    ///@{
    void Format(char16_t const *fmt, ...);
    void FormatV(char16_t const *fmt, va_list args);
    static CString FromFormat(char16_t const *fmt, ...);
    static CString FromInt(int value);
    static CString FromDouble(double value);
    ///@}

    /// Split empties out, cuts at every unit of delims and always adds the
    /// text after the last delimiter: "" gives one empty piece, "a,,b," on ','
    /// gives a, "", b, "". Returns the number of pieces.
    ///@{
    int Split(TArray<CString> &out, char16_t const *delims) const;
    static int Split(char16_t const *s, TArray<CString> &out, char16_t const *delims);
    ///@}
    /// The parts in order with sep between them; no parts give the empty text.
    static CString Join(TArray<CString> const &parts, char16_t const *sep);

    /// Each run of ASCII letters becomes: a word starting with a vowel as it
    /// stands, otherwise the part from its first vowel then the leading
    /// consonants; "ay" follows. Other units are copied; case is kept.
    ///@{
    CString ToPigLatin() const;
    static CString ToPigLatin(char16_t const *s);
    ///@}

    /// Thin conversions with the count rules of qv/core/CodePage.h (code page
    /// 65001 where none is named); the result is theirs. When out is not null
    /// and the result is below outLen, out[result] is set to 0.
    ///@{
    static int ConvertToUTF8(char16_t const *w, int wlen, char *out, int outLen);
    static int ConvertToCodePage(uint32_t codePage, char16_t const *w, int wlen, char *out, int outLen);
    static int ConvertFromCodePage(uint32_t codePage, char const *s, int len, char16_t *out, int outLen);
    static int ConvertToUTF16(char const *s, int len, char16_t *out, int outLen);
    static int ConvertToTCHAR(char const *s, int len, char16_t *out, int outLen);
    ///@}
    /// Wide copy: len -1 means to the terminator; outLen 0 returns the length
    /// only; outLen below the length gives -1; otherwise copies, terminating
    /// if room is left, and returns the length.
    static int ConvertToTCHAR(char16_t const *s, int len, char16_t *out, int outLen);

private:
    friend QV_API CString operator+(CString const &a, char16_t const *b);
    friend QV_API CString operator+(CString const &a, CString const &b);
    friend QV_API CString operator+(char16_t const *a, CString const &b);

    struct NullTag {};
    explicit CString(NullTag) : rep(nullptr) {} // a null string, for temporaries built in place

    static CString Joined(char16_t const *a, int64_t aLength, char16_t const *b);
    static CString Detached(char16_t const *s, int64_t n); ///< a copy of n units in a record of its own
    void Unshare();                                        ///< gives this string a record of its own
    void Reserve(int64_t need, bool keepText);             ///< capacity >= need on an unshared record
    void Grow(int64_t need);                               ///< Reserve keeping the text, with spare room
    void Assign(char16_t const *s, int64_t n);             ///< Copy with a known length
    void Append(char16_t const *s, int64_t n);             ///< Concatenate with a known length
    void Adopt(char16_t *block, int64_t capacity);         ///< new block, length recounted, old text dropped
    void TrimLastSpace();                                  ///< the one-unit trailing trim of Trim/RTrim
    bool Aliases(char16_t const *s) const;                 ///< s points into this record's text block
    char16_t const *TextOrEmpty() const;                   ///< never null

    CStringRep *rep;
};

/// A new string holding a followed by b; a null string or pointer joins as the
/// empty text, and the result is never null.
///@{
QV_API CString operator+(CString const &a, char16_t const *b);
QV_API CString operator+(CString const &a, CString const &b);
QV_API CString operator+(char16_t const *a, CString const &b);
///@}

} // namespace qv
