/// @file
/// CBoundedFile: a window of another IFile shown as a file of its own.
///
/// Create(f, start, length, owned) shows the bytes start .. start + length of
/// f; positions and the size are relative to start. Read and Write are cut at
/// the window's end and seek the inner file to start + position on every
/// call, so several windows (and other users) may share one inner file. Seek
/// takes origins 1, 2, 3, ignores others, and clamps the result to
/// 0 .. length. SetSize is false; Close does nothing; Flush is forwarded;
/// GetFilename gives the empty text; GetFileSystem the disk file system.
/// Without a file (default construction) Read and Write give 0.
///
/// Ownership. With owned set the inner file is deleted with the window (and
/// when Create gives the window another file). A copy shows the same window of
/// the same inner file but never owns it: the original must outlive it.
/// A negative start or length counts as 0.
///
/// Threads: an object belongs to one thread at a time, with its inner file.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/files/IFile.h"

namespace qv {

/// @copydoc BoundedFile.h
class QV_API CBoundedFile : public IFile {
public:
    CBoundedFile() = default;
    /// The same window and position of the same inner file, not owned; an
    /// assignment keeps owning only an inner file it already owned.
    ///@{
    CBoundedFile(CBoundedFile const &other);
    CBoundedFile &operator=(CBoundedFile const &other);
    ///@}
    ~CBoundedFile() override;

    /// Shows the window start .. start + length of f (see the top of this
    /// file), position 0; a previous, different owned file is deleted.
    void Create(IFile *f, int64_t start, int64_t length, bool owned);
    int64_t GetStartPos(); ///< the window's start in the inner file

    char16_t *GetFilename(char16_t *buf, int size) override;
    IFileSystem &GetFileSystem() override;
    uint32_t Write(void const *p, uint32_t n) override;
    uint32_t Read(void *p, uint32_t n) override;
    int64_t GetSize() override;
    int64_t GetPosition() override;
    int64_t Seek(int64_t offset, uint32_t origin) override;
    bool SetSize(int64_t size) override;
    void Flush() override;
    void Close() override;

protected:
    IFile *file = nullptr; ///< the inner file, or null
    int64_t start = 0;     ///< the window's first byte in the inner file
    int64_t end = 0;       ///< start + length
    int64_t length = 0;    ///< the window's size
    int64_t position = 0; ///< relative to start
    bool owned = false; ///< the window deletes file

private:
    void ReleaseFile();
    /// n cut to the window's rest; 0 without a file. Seeks the inner file.
    uint32_t PrepareTransfer(uint32_t n);
};

} // namespace qv
