/// @file
/// CVersionInfo: the version resource of an executable, read, edited and
/// written back without a resource compiler.
///
/// The in-memory form follows the published VS_VERSIONINFO block: the root's
/// lengths, type and key ("VS_VERSION_INFO", 16 units), two bytes of padding,
/// the thirteen DWORDs of VS_FIXEDFILEINFO, then the children: the string
/// tables of the StringFileInfo block and the variables of the VarFileInfo
/// block. Every block starts on a 32-bit boundary counted from the root's
/// first byte, and so do the key's value and the children inside a block;
/// padding is written as zeros.
///
/// Lengths. Each record keeps the lengths and type read from the file. Save
/// recomputes every wLength from what the block holds (so an edit corrects
/// the entry and every block that holds it) and keeps each wValueLength and
/// wType as read; a string whose value is edited gets the published
/// wValueLength, its characters with the terminator. A block read and saved
/// unedited comes out byte for byte as it went in, provided its padding was
/// zeros and its strings had no bytes behind their values.
///
/// Untrusted input. Load refuses a block whose lengths pass its parent or
/// the bytes there are, whose key runs past the block, whose string value is
/// longer than its block, whose fixed part is neither absent nor 52 bytes,
/// whose StringFileInfo, VarFileInfo or string table claims a value,
/// whose root key is not "VS_VERSION_INFO", or whose children are neither a
/// StringFileInfo nor a VarFileInfo (or come twice). The depth is fixed, so
/// nothing recurses on input.
///
/// Executables. Extract and Update read and patch the resource section of a
/// Windows PE32 or PE32+ file through qv/core/PEResources.h, on any platform.
/// Extract takes the version resource (type 16, id 1) in language 0x0409,
/// else the language-neutral one, else the first. Update writes the block
/// into the resource of type 16, id 1 and language 0x0409 in place. It
/// refuses a file it cannot parse completely (the block it would replace
/// included), a block larger than the room the resource has (its bytes and
/// the zero bytes behind them up to the next structure of the resource
/// section), and a file without a resource in 0x0409: adding one, as the
/// platform's updater would, means rebuilding the section, which is not done
/// in place. The file's other bytes stay as they were, the PE checksum
/// included. A failed Update leaves the file byte for byte as it was: the
/// replaced bytes are kept and written back when a write or the final sync
/// fails.
///
/// Failures are false results; nothing throws, and nothing is logged but
/// CFile's own line for a file that cannot be opened.
/// Threads: an object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

class IFile;
class CMemFile;
struct SPEResource;

/// @copydoc VersionInfo.h
struct VS_FIXEDFILEINFO {
    uint32_t dwSignature; ///< 0xFEEF04BD
    uint32_t dwStrucVersion; ///< version of this structure, as read
    uint32_t dwFileVersionMS; ///< file version, high 32 bits (major, minor)
    uint32_t dwFileVersionLS; ///< file version, low 32 bits (build, revision)
    uint32_t dwProductVersionMS; ///< product version, high 32 bits
    uint32_t dwProductVersionLS; ///< product version, low 32 bits
    uint32_t dwFileFlagsMask; ///< which bits of dwFileFlags are valid
    uint32_t dwFileFlags; ///< VS_FF_ flags, such as kPrerelease
    uint32_t dwFileOS; ///< target operating system, as read
    uint32_t dwFileType; ///< file type (application, DLL, ...), as read
    uint32_t dwFileSubtype; ///< subtype for drivers and fonts, as read
    uint32_t dwFileDateMS; ///< file date, high 32 bits
    uint32_t dwFileDateLS; ///< file date, low 32 bits
};

/// One entry of a string table: a name such as "FileVersion" and its text.
struct VS_STRING {
    uint16_t wLength = 0; ///< bytes of the whole entry; Save recomputes it
    uint16_t wValueLength = 0; ///< characters of the value, terminator included
    uint16_t wType = 1; ///< 1: text value
    CString key; ///< the name, such as "FileVersion"
    CString value; ///< the text
};

/// A string table; its key is the language and code page ("040904b0").
struct VS_STRINGTABLE {
    uint16_t wLength = 0; ///< bytes of the whole table; Save recomputes it
    uint16_t wValueLength = 0; ///< always 0: a table holds no value of its own
    uint16_t wType = 1; ///< as read
    CString key; ///< language and code page, such as "040904b0"
    TArray<VS_STRING> strings; ///< the entries, in file order
};

/// A variable of VarFileInfo, such as "Translation", with its binary value.
struct VS_VAR {
    uint16_t wLength = 0; ///< bytes of the whole entry; Save recomputes it
    uint16_t wValueLength = 0; ///< bytes of the value
    uint16_t wType = 0; ///< 0: binary value
    CString key; ///< the name, such as "Translation"
    TSimpleArray<uint8_t> value; ///< the value's bytes
};

/// The header of StringFileInfo or VarFileInfo, which hold the lists above.
struct VS_FILEINFO_HEADER {
    bool present = false; ///< the block was read (or is to be written)
    uint16_t wLength = 0; ///< bytes of the whole block; Save recomputes it
    uint16_t wValueLength = 0; ///< always 0: the block holds no value of its own
    uint16_t wType = 1; ///< as read
};

/// @copydoc VersionInfo.h
class QV_API CVersionInfo {
public:
    static constexpr uint32_t kPrerelease = 0x2; ///< VS_FF_PRERELEASE in dwFileFlags

    /// The root block.
    ///@{
    uint16_t wLength = 0; ///< 0: nothing loaded
    uint16_t wValueLength = 0;
    uint16_t wType = 0;
    char16_t szKey[16] = {};
    uint16_t Padding1 = 0;
    VS_FIXEDFILEINFO Value = {};
    ///@}
    /// The children, with the headers of the blocks that hold them.
    ///@{
    VS_FILEINFO_HEADER stringFileInfo;
    TArray<VS_STRINGTABLE> stringTables;
    VS_FILEINFO_HEADER varFileInfo;
    TArray<VS_VAR> vars;
    bool varsFirst = false; ///< VarFileInfo came before StringFileInfo
    ///@}

    CVersionInfo();
    /// Deep copies: the tables and variables are copied, nothing is shared.
    ///@{
    CVersionInfo(CVersionInfo const &other);
    CVersionInfo &operator=(CVersionInfo const &other);
    ///@}
    ~CVersionInfo();
    void Destroy(); ///< back to nothing loaded

    /// The block at the file's position, within what remains of the file.
    /// On failure the object is left empty.
    bool Load(IFile &file);
    /// Writes the block at the file's position; false with nothing loaded or
    /// a block above 65535 bytes, or when a write falls short.
    bool Save(IFile &file);
    /// A file that holds only the block. Save writes a temporary file beside
    /// path and renames it over path, so a failed Save (false) leaves the old
    /// file whole.
    ///@{
    bool Load(char16_t const *path);
    bool Save(char16_t const *path);
    ///@}
    /// From and into a Windows executable; see the header comment.
    ///@{
    bool Extract(char16_t const *path);
    bool Update(char16_t const *path);
    ///@}

    /// a, b: high and low words of dwProductVersionMS; c, d of dwProductVersionLS.
    bool GetVersion(uint16_t &a, uint16_t &b, uint16_t &c, uint16_t &d);
    /// The file and product versions, and the texts "a, b, c, d" of the
    /// entries FileVersion and ProductVersion of the first string table where
    /// they exist. False with nothing loaded or when the block would pass
    /// 65535 bytes (nothing changes then).
    ///@{
    bool SetVersion(uint16_t a, uint16_t b, uint16_t c, uint16_t d);
    bool GetBeta(bool &beta);
    bool SetBeta(bool beta); ///< dwFileFlags only; dwFileFlagsMask stays
    ///@}

    /// The value of an entry of the first string table (names compare
    /// without regard to case); null if there is none.
    char16_t const *GetString(char16_t const *name);
    /// Replaces the entry's value, or adds the entry at the end of the first
    /// string table. False without a string table, for an empty name, or when
    /// the block would pass 65535 bytes (nothing changes then).
    bool SetString(char16_t const *name, char16_t const *value);

    /// The block's bytes into out (replacing its content, position 0), with
    /// every wLength of this object brought up to date; false as Save.
    bool Serialize(CMemFile &out);
    /// Parses a block from bytes; false (and empty) as Load.
    bool Parse(uint8_t const *bytes, uint32_t size);

private:
    VS_STRING *FindString(char16_t const *name);
    /// Parses the resource's data in file.
    ///@{
    bool ParseResource(IFile &file, SPEResource const &leaf);
    static void SetValue(VS_STRING &entry, CString const &value); ///< with its wValueLength
    ///@}
    /// Measures the edited block; if it is too long, goes back to before.
    bool KeepIfItFits(CVersionInfo const &before);
};

} // namespace qv
