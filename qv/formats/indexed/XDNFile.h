/// @file
/// CXDNFile: the second indexed camera container, on CVQRFile's plan and
/// block engine (CIndexedContainer). The differences:
///
/// - Header and table are always big-endian (no byte-order word); the magic
///   is "XDN\0"; a 32-bit value of the caller's at offset 52 is kept.
/// - A slot's size field (offset 16) is the size of one item and its second
///   spare field (offset 24) a number of items, 0 counting as 1; the block is
///   their product. Save writes a non-empty block as (size, 1); an empty
///   block keeps its stored count, as existing files carry it, with size 0
///   (a block emptied since it was read must not keep claiming its bytes).
/// - A new block starts at the host's current end; two blocks made without
///   writes between share an offset, and writing the first moves the second.
///   A table that grows is written at the next Save, not at once.
/// - The object always owns its host, opened from a file system or the disk.
///
/// Untrusted files: besides the engine's checks, Open refuses a bad magic,
/// 101 or more slots and a block of more than 0xFFFFFFFF bytes.
///
/// Failures: no messages; false, 0, 0xFFFFFFFF or null. Threads: no lock;
/// one thread at a time per container and its blocks.
#pragma once

#include <cstdint>

#include "qv/formats/indexed/IndexedContainer.h"

namespace qv {

/// @copydoc XDNFile.h
class QV_API CXDNFile : public CIndexedContainer {
public:
    static constexpr uint32_t kMagic = 0x004E4458; ///< "XDN\0"

    CXDNFile() = default;
    ~CXDNFile();

    /// The host opens for writing when readOnly is false. False (object
    /// closed) for a missing or unreadable file or a refused layout.
    ///@{
    bool Open(IFileSystem *fs, char16_t const *path, bool readOnly);
    bool Open(char16_t const *path, bool readOnly); ///< on the disk
    bool Create(IFileSystem *fs, char16_t const *path);
    bool Create(char16_t const *path);
    ///@}

    uint32_t GetUserValue() const { return m_userValue; } ///< the value at offset 52
    /// Sets the value at offset 52; written at the next Save.
    void SetUserValue(uint32_t value) {
        m_userValue = value;
        m_dirty = true;
    }

private:
    bool ReadHeader() override;
    void EncodeHeader(unsigned char *header) const override;
    int64_t LiveSize(CIndex const &index) const override;
    void StoreSize(CIndex &index) const override;
    int64_t NewBlockOffset() const override { return m_host->GetSize(); }
    bool SavesWhenTableGrows() const override { return false; }
    bool TakeHost(IFileSystem *fs, char16_t const *path, IFile *host);

    uint32_t m_userValue = 0;
};

} // namespace qv
