/// @file
/// CVQRFile: the indexed camera container. A 64-byte header, a table of
/// 32-byte index records (type, subtype, version, id, offset, size, two spare
/// values), and packed data blocks, each read and written as a file of its
/// own through its index's IFile (CIndexDataFile).
///
/// Byte order. The word at offset 36 read little-endian: 1 means the header
/// and the table are little-endian, anything else big-endian. Save always
/// writes big-endian with that word 0. Block bytes are never swapped.
///
/// The block engine (packing, hostile-input checks) is CIndexedContainer's.
///
/// Failures: no messages; false, 0, 0xFFFFFFFF or null. A failed growth or
/// shrink leaves the block at its old size and every other block in place.
///
/// Ownership. Indices and their IFile objects belong to the container and
/// live until Close; a host given to Open(IFile *) / Create(IFile *) stays the
/// caller's, one opened from a path is the container's.
///
/// Threads: no lock. A container and its blocks belong to one thread at a
/// time; all blocks share the host's position.
#pragma once

#include <cstdint>

#include "qv/formats/indexed/IndexedContainer.h"

namespace qv {

class IFileSystem;

/// @copydoc VQRFile.h
class QV_API CVQRFile : public CIndexedContainer {
public:
    static constexpr uint32_t kMagic = 0x00525156; ///< "VQR\0"

    CVQRFile() = default;
    ~CVQRFile();
    CVQRFile(CVQRFile const &) = delete;
    CVQRFile &operator=(CVQRFile const &) = delete;

    /// The host stays the caller's and must outlive the container.
    bool Open(IFile *file, bool readOnly);
    /// The container owns the host. The host opens for writing only if the
    /// object was already writable (a new object is read-only): writers open
    /// read-only and call ReOpenForWrite, as existing callers do.
    ///@{
    bool Open(IFileSystem *fs, char16_t const *path, bool readOnly);
    bool Open(char16_t const *path, bool readOnly); ///< on the disk
    bool Create(IFile *file);
    bool Create(IFileSystem *fs, char16_t const *path);
    bool Create(char16_t const *path);
    ///@}
    /// End of the block with the largest offset; (slots + 2) * 32 with no blocks.
    int64_t GetEndOfData() const { return m_endOfData; }

private:
    bool ReadHeader() override;
    void EncodeHeader(unsigned char *header) const override;
    int64_t LiveSize(CIndex const &index) const override { return index.m_storedSize; }
    void StoreSize(CIndex &index) const override { index.m_storedSize = uint32_t(index.m_size); }
    int64_t NewBlockOffset() const override;
    bool SavesWhenTableGrows() const override { return true; }

    uint32_t m_magic = kMagic;
};

} // namespace qv
