/// @file
/// ICompositeFile: a file system kept inside one file (a container format),
/// and the process-wide registry of such formats, so that a caller can open a
/// composite without knowing its format. The library registers none itself;
/// formats come from other modules, usually while they start.
///
/// A format gives a name (unique, compared exactly), a function that makes an
/// empty object, and a test that says whether a file (fs, path) is of the
/// format. OpenCompositeFile asks the tests in order of registration; for each
/// that says yes it makes an object and calls OpenComposite, and the first
/// that opens is the answer (the caller's to delete); the others are deleted.
///
/// Failure: Register gives kCompositeNameTaken for a name already there (and
/// changes nothing); no format that opens the file gives null.
/// Threads: the registry is made on first use and locked, so formats may
/// register and files be opened from any thread.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv {

class ICompositeFile;

inline constexpr uint32_t kCompositeNameTaken = 0xFFFFFFFF; ///< Register's answer for a name already registered

/// @copydoc CompositeFile.h
struct REGISTER {
    char16_t name[128];          ///< the format's unique name
    ICompositeFile *(*create)(); ///< makes an empty object of the format
    bool (*test)(IFileSystem *fs, char16_t const *path); ///< whether the file at path in fs is of the format
};

/// @copydoc CompositeFile.h
class QV_API ICompositeFile : public IFileSystem {
public:
    class CRegister : public TArray<REGISTER> {};

    /// Opens the composite stored at path in fs.
    virtual bool OpenComposite(IFileSystem *fs, char16_t const *path) = 0;
    /// Closes what OpenComposite opened (nothing in the library calls it).
    virtual bool CloseComposite() = 0;
    /// The file inside that stands for the whole composite; the base: false.
    virtual bool GetDefaultFile(char16_t *out);

    /// The format's index, or kCompositeNameTaken.
    ///@{
    static uint32_t Register(char16_t const *name, ICompositeFile *(*create)(),
                             bool (*test)(IFileSystem *, char16_t const *));
    static bool IsCompositeFile(IFileSystem *fs, char16_t const *path);
    static ICompositeFile *OpenCompositeFile(IFileSystem *fs, char16_t const *path);
    ///@}
};

} // namespace qv
