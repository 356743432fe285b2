/// @file
/// CFile: IFile over a disk file.
///
/// The handle is an opaque intptr_t-sized value (on Linux a POSIX descriptor);
/// -1 means none and is the state after default construction. Handles are
/// close-on-exec and take 64-bit offsets. Platform types stay out of this
/// header: only qv/platform looks inside a handle.
///
/// Ownership. A CFile closes its handle on destruction. Copies duplicate the
/// handle, so each copy closes its own (the duplicates share the position and
/// the share declarations, which end with the last of them). Attach adopts a
/// handle without closing the old one; Detach hands the handle back.
///
/// Open(path, flags) takes the flag word of IFileSystem::CreateFileW, named in
/// qv/files/OpenFlags.h (kOpenExisting | kOpenRead | kOpenShareRead ...). The
/// path is completed to a full path ('/' and '\' both separate, "." and ".."
/// resolved by text, no links followed), kept as the file name; a full path
/// longer than 511 units fails. Sharing behaves as on Windows between the opens
/// of one file, also across processes; a refused open never truncates or
/// removes the file. Only regular files open. An open that should start at the
/// end (0x40) and cannot seek there fails. Delete-on-close removes the name at
/// once. On failure the handle stays as it was, the log gets
/// "CFile::Open(<full path>) FAILED." and the result is false. Open does not
/// close a handle it already has: open a CFile once.
///
/// Failures: Read/Write return the bytes that passed (a failing write shows as
/// a short count); Seek with an origin other than 1, 2, 3 moves nothing and
/// returns 0; a failing seek or size query returns -1. Nothing guards a closed
/// file: its calls fail as the system says.
///
/// Threads: an object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/files/IFile.h"

namespace qv {

using FileHandle = intptr_t;                  ///< the platform's handle (see the top of this file)
constexpr FileHandle kInvalidFileHandle = -1; ///< no handle

/// @copydoc File.h
class QV_API CFile : public IFile {
public:
    CFile();
    explicit CFile(FileHandle handle); ///< adopts handle
    CFile(CFile const &other);         ///< duplicates other's handle
    /// Closes its own handle, then duplicates other's.
    ///@{
    CFile &operator=(CFile const &other);
    ~CFile() override;
    ///@}

    /// Opens path on the disk with the flag word (see the top of this file);
    /// false, with a log line, if it cannot, and the object is as it was. A
    /// handle already held is replaced without being closed.
    bool Open(char16_t const *path, uint32_t flags);
    void Attach(FileHandle handle); ///< the old handle is not closed
    FileHandle Detach();            ///< returns the handle and forgets it
    FileHandle GetHandle() const; ///< kInvalidFileHandle when closed
    bool SetEOF(); ///< the file ends at the current position
    /// Removes the file's name from its directory; true on success.
    static bool Remove(char16_t const *path);

    char16_t *GetFilename(char16_t *buf, int size) override;
    IFileSystem &GetFileSystem() override;
    uint32_t Write(void const *p, uint32_t n) override;
    uint32_t Read(void *p, uint32_t n) override;
    int64_t GetSize() override;
    int64_t GetPosition() override;
    int64_t Seek(int64_t offset, uint32_t origin) override;
    /// Sets the size; the position does not move. Growing takes the disk
    /// blocks at once, as Windows does, so a full disk fails here and not at a
    /// later write. False if the system refuses; the file is then as it was.
    ///@{
    bool SetSize(int64_t size) override;
    void Flush() override;
    ///@}
    /// Flush that tells whether the system wrote the data to the device.
    ///@{
    bool Sync();
    void Close() override; ///< nothing on a closed file
    ///@}

    /// The file's Remove(pos, n) forms beside the static one.
    ///@{
    using IFile::Remove; ///< the file's Remove(pos, n) beside the static one
    ///@}

protected:
    /// Insert's scratch copies go through a shared mapping of the file: each
    /// block is read straight into the scratch room and written from there,
    /// so the copy costs no write of its own. Null when the system refuses a
    /// mapping. Another opener must not cut the file short meanwhile: a
    /// mapped page past the end faults the process, as any mapping would.
    ///@{
    void *EditView(int64_t pos, uint32_t n) override;
    void ReleaseEditView(void *view, uint32_t n) override;
    ///@}

    FileHandle handle; ///< kInvalidFileHandle when closed
    CString filename; ///< the full path
};

} // namespace qv
