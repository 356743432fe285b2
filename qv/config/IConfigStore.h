/// @file
/// IConfigStore: the library's one contract for named settings.
///
/// Settings form a tree addressed by '/'-paths, like a file system, with a
/// current path ("/" at construction, at most 511 units; longer results are
/// cut). A name starting with '/' or '\' is absolute; any other is relative to
/// the current path; "." and ".." work as in IFileSystem::ExpandRelativePath,
/// and '\' separates as '/' does.
///
/// A value is at bottom a string: every typed Get and Set here turns the value
/// into a text form and calls GetString / SetString, so a backend needs only
/// those, list, isLeaf, isEntry and copyValue. A backend may override typed
/// operations where it has native types (the registry and SQLite stores do).
///
/// Text forms (locale-free, three-digit exponents):
///   double, float       "%.14e"                     read with _wtof
///   long (int32_t)      CInt32::ToString            CInt32::Parse
///   DWORD, WORD, BYTE   "%u"                        _wtoi64 cut to 32 bits;
///                                                   WORD/BYTE mask default and result
///   QWORD               CUInt64::ToString           CUInt64::Parse
///   bool                "1" / "0"                   not zero is true
///   RECT                "{ top, left, bottom, right }"  fewer than four numbers: all zeros
///   COLORREF            "RGB(r, g, b)"              fewer than three numbers: 0xFFFFFFFF
///   LOGFONTW            "{ h, w, esc, orient, weight, italic, underline, strikeout,
///                        charset, outprec, clipprec, quality, pitch, \"face\" }"
///                       a field that does not scan keeps the default's value
/// A Get forms the default's text and passes it to GetString, so a store that
/// keeps defaults on a miss (CMemStore) keeps them in text form.
///
/// Failures: reads always give a value (the default where nothing can be
/// read); writes give false where the backend could not store. unlink is not
/// supported by the base (false).
///
/// Threads: no locks; a store belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/GdiTypes.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc IConfigStore.h
class QV_API IConfigStore {
public:
    /// The longest current path, terminator included.
    static constexpr int PathSize = 512;

    static RECT const DefaultRect; ///< All zeros; the fallback a copy uses when reading a rectangle
    static LOGFONTW const DefaultFont; ///< -12, 0, 0, 0, 400, zeros, "Arial"

    /// Starts at the root path "/"; copies take the current path with them.
    ///@{
    IConfigStore();
    IConfigStore(IConfigStore const &) = default;
    IConfigStore &operator=(IConfigStore const &) = default;
    ///@}

    /// ---- The contract, in slot order ----
    virtual ~IConfigStore();
    /// Moves the current path; always true.
    virtual bool cd(char16_t const *path);
    /// Copies the subtree at sourcePath of this store to targetPath of target.
    virtual bool copy(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath);
    /// Copies one value, in the type this store knows it by.
    virtual bool copyValue(IConfigStore &target, char16_t const *targetPath, char16_t const *sourcePath) = 0;
    /// Adds the names of path's children to names (whether it is emptied first
    /// is the store's own; CMemStore and CsqliteStore append, CRegStore clears).
    ///@{
    virtual bool list(TArray<CString> &names, char16_t const *path) = 0;
    virtual bool unlink(char16_t const *path); ///< false
    virtual bool isLeaf(char16_t const *path) = 0;
    virtual bool isEntry(char16_t const *path) = 0;
    virtual double GetDouble(char16_t const *name, double defaultValue);
    virtual bool SetDouble(char16_t const *name, double value);
    virtual float GetFloat(char16_t const *name, float defaultValue);
    virtual bool SetFloat(char16_t const *name, float value);
    virtual int32_t GetLong(char16_t const *name, int32_t defaultValue);
    virtual bool SetLong(char16_t const *name, int32_t value);
    virtual uint32_t GetDWORD(char16_t const *name, uint32_t defaultValue);
    virtual bool SetDWORD(char16_t const *name, uint32_t value);
    virtual uint64_t GetQWORD(char16_t const *name, uint64_t defaultValue);
    virtual bool SetQWORD(char16_t const *name, uint64_t value);
    virtual uint16_t GetWORD(char16_t const *name, uint16_t defaultValue);
    virtual bool SetWORD(char16_t const *name, uint16_t value);
    virtual uint8_t GetBYTE(char16_t const *name, uint8_t defaultValue);
    virtual bool SetBYTE(char16_t const *name, uint8_t value);
    virtual CString GetString(char16_t const *name, char16_t const *defaultValue) = 0;
    virtual bool SetString(char16_t const *name, char16_t const *value) = 0;
    virtual RECT GetRect(char16_t const *name, RECT defaultValue);
    virtual bool SetRect(char16_t const *name, RECT value);
    virtual COLORREF GetClr(char16_t const *name, COLORREF defaultValue);
    virtual bool SetClr(char16_t const *name, COLORREF value);
    virtual bool GetBool(char16_t const *name, bool defaultValue);
    virtual bool SetBool(char16_t const *name, bool value);
    virtual LOGFONTW GetFont(char16_t const *name, LOGFONTW defaultValue);
    virtual bool SetFont(char16_t const *name, LOGFONTW value);
    ///@}

    /// ---- Navigation ----
    /// cd(".\<format formatted>"), the text formed in 512 units.
    ///@{
    bool cdin(char16_t const *format, ...);
    bool cdout(); ///< cd("..")
    CString GetCurrentPath() const { return current; }
    ///@}

    /// Copies source's subtree at sourcePath into target at targetPath: leaves
    /// through source.copyValue, entries by recursion. A failing child does not
    /// stop the walk; true only if every child went well.
    static bool copy(IConfigStore &target, char16_t const *targetPath, IConfigStore &source,
                     char16_t const *sourcePath);

    /// The absolute, expanded form of name against the current path, '/'
    /// separated, cut to PathSize - 1 units; "/" when nothing is left.
    CString ExpandPath(char16_t const *name) const;

protected:
    CString current; ///< The current path, absolute and '/' separated.
};

} // namespace qv
