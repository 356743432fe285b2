/// @file
/// CMemFile: IFile over a byte block in memory.
///
/// The bytes are the TArray<unsigned char> base's block (on the process heap,
/// malloc/free), the file's size is its count. The position is 32 bits and
/// may stand past the end; Seek does not clamp, and only the low 32 bits of an
/// offset count. Reading past the end gives 0 bytes (GetRemaining is then
/// negative).
///
/// Growth. With grow set (the default) a write past the end extends the file;
/// the block grows in steps of the array's growth rate, 5 bytes unless the
/// owner calls SetGrowthRate on the base, which writers of large memory files
/// should do. Without grow, a write that would pass the end (the count, not the
/// capacity) writes nothing and returns 0. A write beyond the end fills the
/// bytes between with zeros. SetSize above 0x40000000 bytes is refused.
///
/// Ownership. An owned block (the default) is freed with the file. Attach
/// releases the present block (freed if owned, left to its owner otherwise)
/// and takes p, a malloc block when owned is true. A foreign block is never
/// reallocated: when the file must grow, its bytes move to a block of the
/// file's own first (the owner's block then no longer follows). A copy always owns a copy
/// of the bytes and takes the position and the grow flag.
///
/// GetFilename gives the empty text; Flush and Close do nothing (the bytes
/// survive Close). GetFileSystem is the disk file system, as for CFile.
///
/// Threads: an object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/files/IFile.h"

namespace qv {

/// @copydoc MemFile.h
class QV_API CMemFile : public IFile, public TArray<unsigned char> {
public:
    CMemFile();
    /// An owned copy of the bytes, with the position and the grow flag.
    ///@{
    CMemFile(CMemFile const &other);
    CMemFile &operator=(CMemFile const &other);
    ///@}
    ~CMemFile() override;

    void SetGrow(bool grow); ///< whether writes may extend the file (see Growth above)
    /// Releases the present block and shows the n bytes at p instead; owned:
    /// p is a malloc block the file frees. The position is not changed.
    void Attach(unsigned char *p, uint32_t n, bool owned);
    void Reset(); ///< SetSize(0), SetPosition(0)
    int64_t ConstGetSize() const; ///< GetSize for a const file

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

    /// The file's editing operations, not the array's.
    ///@{
    using IFile::Insert;
    using IFile::Remove;
    ///@}

protected:
    uint32_t position = 0; ///< may stand past the end
    bool grow = true;      ///< writes may extend the file
    bool owned = true;     ///< the file frees the block

private:
    void ReleaseBlock(); ///< frees an owned block, forgets a foreign one
    bool CopyBytes(CMemFile const &other);
    bool Reserve(uint32_t n); ///< capacity for n bytes in a block of our own
    bool AdoptCopy();
};

} // namespace qv
