/// @file
/// The registry: keys and typed values under two roots, HKEY_CURRENT_USER and
/// HKEY_LOCAL_MACHINE, kept by the library itself.
///
/// Storage. Each root is one file in the registry editor's export text form:
/// UTF-16LE with a byte-order mark and CR LF line ends, the header line
/// "Windows Registry Editor Version 5.00", then a blank line and a block per
/// key ("[HKEY_CURRENT_USER\Software\qv]" and its values, each block followed
/// by a blank line), keys depth first with subkeys sorted without regard to
/// case. Value forms: "text" for REG_SZ (with \\ and \" escaped; a string
/// holding a line break or a NUL is written as hex(1): so that it survives),
/// dword:0000000a for REG_DWORD, hex:.. for REG_BINARY, hex(N):.. for every
/// other type N (hex(2) expand string, hex(7) multi-string, hex(b) 64-bit
/// number); a hex list line that passes 76 characters ends in ",\" and the
/// list goes on in the next line, indented by two spaces. The default value
/// is written @. Reading takes the same form in UTF-16LE or UTF-8 (with or
/// without a byte-order mark) and any line breaking of hex lists; anything else (another header, a deletion line,
/// a broken escape, a value outside a key, a key deeper than 512 levels) makes
/// the root unreadable: its calls fail with ERROR_BADDB and the file is never
/// overwritten.
///
/// Files: HKEY_CURRENT_USER is "user.reg" in $XDG_CONFIG_HOME/qv/registry
/// ($HOME/.config/qv/registry without it); HKEY_LOCAL_MACHINE is
/// "machine.reg" in /etc/qv/registry. RegSetRootDirectory changes either
/// directory for the process. A missing file is an empty root.
///
/// Changes are saved at once, whole and atomically: under an advisory lock on
/// "\<file\>.lock" the root is read again, changed, written to a temporary file
/// beside it and renamed over it, so writers in several processes lose
/// nothing and readers see the old or the new file, never a mix. Reads take
/// no lock. The directories are made when a root is first written.
///
/// Handles. HKEY is an opaque handle. HKEY_CURRENT_USER and HKEY_LOCAL_MACHINE
/// are predefined (closing them does nothing); RegOpenKeyExW and
/// RegCreateKeyExW give new handles that the caller closes with RegCloseKey.
/// A handle names a key by path: a key deleted meanwhile makes its calls
/// fail with ERROR_KEY_DELETED.
///
/// Results are Win32 status codes (ERROR_SUCCESS is 0). Sizes of names count
/// char16_t units with the terminator, sizes of data bytes.
///
/// Threads: every function may be called from any thread; each root is
/// guarded by a mutex inside the process and by the file lock across
/// processes.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

struct SRegKeyHandle;
/// An opaque key handle.
using HKEY = SRegKeyHandle *;

/// The predefined roots (user.reg and machine.reg); never closed.
///@{
QV_API extern HKEY const HKEY_CURRENT_USER;
QV_API extern HKEY const HKEY_LOCAL_MACHINE;
///@}

/// Value types, with the Windows numbers so that callers written for it work.
///@{
inline constexpr uint32_t REG_NONE = 0;
inline constexpr uint32_t REG_SZ = 1;
inline constexpr uint32_t REG_EXPAND_SZ = 2;
inline constexpr uint32_t REG_BINARY = 3;
inline constexpr uint32_t REG_DWORD = 4;
inline constexpr uint32_t REG_MULTI_SZ = 7;
inline constexpr uint32_t REG_QWORD = 11;
///@}

/// Access rights for opening and creating keys, with the Windows values.
///@{
inline constexpr uint32_t KEY_QUERY_VALUE = 0x0001;
inline constexpr uint32_t KEY_SET_VALUE = 0x0002;
inline constexpr uint32_t KEY_CREATE_SUB_KEY = 0x0004;
inline constexpr uint32_t KEY_ENUMERATE_SUB_KEYS = 0x0008;
inline constexpr uint32_t KEY_READ = 0x20019;
inline constexpr uint32_t KEY_WRITE = 0x20006;
inline constexpr uint32_t KEY_ALL_ACCESS = 0xF003F;
///@}

/// Status codes the Reg functions return, with the Windows values.
///@{
inline constexpr int32_t ERROR_SUCCESS = 0;
inline constexpr int32_t ERROR_FILE_NOT_FOUND = 2;
inline constexpr int32_t ERROR_ACCESS_DENIED = 5;
inline constexpr int32_t ERROR_INVALID_HANDLE = 6;
inline constexpr int32_t ERROR_WRITE_FAULT = 29;
inline constexpr int32_t ERROR_INVALID_PARAMETER = 87;
inline constexpr int32_t ERROR_MORE_DATA = 234;
inline constexpr int32_t ERROR_NO_MORE_ITEMS = 259;
inline constexpr int32_t ERROR_BADDB = 1009;
inline constexpr int32_t ERROR_KEY_DELETED = 1018;
inline constexpr int32_t ERROR_UNSUPPORTED_TYPE = 1630;
///@}

/// ---- Where the roots live ----
/// directory null or empty: back to the default. False for another handle.
QV_API bool RegSetRootDirectory(HKEY root, char16_t const *directory);
/// The file of a predefined root into out (size units); false if it does not fit.
QV_API bool RegGetRootFile(HKEY root, char16_t *out, uint32_t size);

/// ---- The primitives ----
/// subKey null or empty: the key itself. subKey uses '\' (or '/') separators.
QV_API int32_t RegOpenKeyExW(HKEY key, char16_t const *subKey, uint32_t access, HKEY *result);
/// Makes every missing key on the way; *created (if not null) tells whether the
/// last one was made.
///@{
QV_API int32_t RegCreateKeyExW(HKEY key, char16_t const *subKey, uint32_t access, HKEY *result, bool *created);
QV_API int32_t RegCloseKey(HKEY key);
///@}
/// data null: only *type and *size. *size too small: ERROR_MORE_DATA with the
/// size needed in *size. type may be null.
///@{
QV_API int32_t RegQueryValueExW(HKEY key, char16_t const *valueName, uint32_t *type, uint8_t *data, uint32_t *size);
QV_API int32_t RegSetValueExW(HKEY key, char16_t const *valueName, uint32_t type, uint8_t const *data, uint32_t size);
///@}
/// index counts from 0 in the sorted order; ERROR_NO_MORE_ITEMS past the end.
QV_API int32_t RegEnumKeyExW(HKEY key, uint32_t index, char16_t *name, uint32_t *nameSize);
/// In the order made. data may be null.
QV_API int32_t RegEnumValueW(HKEY key, uint32_t index, char16_t *name, uint32_t *nameSize, uint32_t *type,
                             uint8_t *data, uint32_t *dataSize);
/// A key that has subkeys is not deleted (ERROR_ACCESS_DENIED), as Windows does.
///@{
QV_API int32_t RegDeleteKeyW(HKEY key, char16_t const *subKey);
QV_API int32_t RegDeleteValueW(HKEY key, char16_t const *valueName);
///@}

/// ---- The helpers ----
/// Opens subKey for reading and reads a string into buffer (size units, the
/// text cut to fit); REG_DWORD and REG_QWORD come as decimal text. On any
/// failure (also another type) defaultValue is copied into buffer.
QV_API int32_t RegGetValueStr(HKEY key, char16_t const *subKey, char16_t const *valueName, char16_t *buffer,
                              uint32_t size, char16_t const *defaultValue);
/// A REG_DWORD (a REG_QWORD cut to 32 bits; a string read with _wtoi64, cut);
/// on failure out is defaultValue.
///@{
QV_API int32_t RegGetValueDWORD(HKEY key, char16_t const *subKey, char16_t const *valueName, uint32_t &out,
                                uint32_t defaultValue);
QV_API uint32_t RegGetValueDWORD(HKEY key, char16_t const *subKey, char16_t const *valueName, uint32_t defaultValue);
///@}
/// Creates subKey as need be, then writes REG_SZ with its terminator counted.
///@{
QV_API int32_t RegSetValueStr(HKEY key, char16_t const *subKey, char16_t const *valueName, char16_t const *value);
QV_API int32_t RegSetValueDWORD(HKEY key, char16_t const *subKey, char16_t const *valueName, uint32_t value);
QV_API int32_t RegGetValueType(HKEY key, char16_t const *subKey, char16_t const *valueName, uint32_t &type);
///@}
/// subKey empty or null: deletes from key itself.
QV_API int32_t RegDeleteValueEx(HKEY key, char16_t const *subKey, char16_t const *valueName);
/// Deletes subKey with its contents. The contents are deleted with an index
/// that rises after each deletion, so every second entry is passed over and a
/// key with several subkeys takes more than one call; existing callers repeat
/// the call, and the behaviour is kept.
QV_API int32_t RegDeleteKeyExW(HKEY key, char16_t const *subKey);
/// Copies sourceSubKey's values and subkeys into targetSubKey (made as need
/// be). Values above 2,048 bytes end the value enumeration; the first failure
/// ends the copy. Gives the last status.
QV_API int32_t RegCopy(HKEY source, char16_t const *sourceSubKey, HKEY target, char16_t const *targetSubKey);

} // namespace qv
