/// @file
/// CIndexedContainer: the block engine shared by the indexed camera
/// containers (CVQRFile, CXDNFile). A header, a table of 32-byte index records
/// (type, subtype, version, id, offset, size, two spare values) and packed
/// data blocks, each read and written as a file of its own through its
/// index's IFile (CIndexDataFile). The formats differ only in their header,
/// in how a slot gives a block's size, and in where a new block starts.
///
/// Packing. A block that grows moves every later block up, one that shrinks
/// moves them down (IFile::Insert / Remove on the host, which reserve room
/// first and roll back on failure). Which blocks count as "later" is decided
/// by position, not by the literal offset comparison older writers used, so
/// that empty neighbours and a table that lies behind the data never end up
/// under another block's bytes.
///
/// Untrusted files. Opening refuses (false, object closed) a table that
/// starts inside the header or runs past the end of the file, a block that
/// lies in the header or the table, runs past the end, or overlaps another
/// block. A growth that would push data beyond 32-bit offsets is refused, and
/// so is a new block, or a table growth, in a host that would then end past them.
///
/// Failures: no messages; false, 0, 0xFFFFFFFF or null. A failed growth or
/// shrink leaves the block at its old size and every other block in place.
///
/// Ownership. Indices and their IFile objects belong to the container and
/// live until Close.
///
/// Threads: no lock. A container and its blocks belong to one thread at a
/// time; all blocks share the host's position.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/files/IFile.h"
#include "qv/files/OpenFlags.h"

namespace qv {

class IFileSystem;

/// @copydoc IndexedContainer.h
class QV_API CIndexedContainer {
public:
    static constexpr uint32_t kNoIndex = 0xFFFFFFFF; ///< "no such index" from FindIndex and CreateIndex
    static constexpr uint32_t kMaxSlots = 100;       ///< a larger table is refused on reading and never made

    class CIndex;

    /// One block as a file: positions relative to the block start. Flush and
    /// Close do nothing; GetType gives 0xFFFFFFFF.
    class QV_API CIndexDataFile : public IFile {
    public:
        /// The block of index, positioned at its start; index owns this file.
        explicit CIndexDataFile(CIndex *index) : m_index(index) {}
        char16_t *GetFilename(char16_t *buf, int size) override;
        IFileSystem &GetFileSystem() override;
        uint32_t Write(void const *p, uint32_t n) override;
        uint32_t Read(void *p, uint32_t n) override;
        int64_t GetSize() override;
        int64_t GetPosition() override;
        int64_t Seek(int64_t offset, uint32_t origin) override; ///< negative results give 0
        bool SetSize(int64_t size) override;
        void Flush() override {}
        void Close() override {}
        uint32_t GetType() const { return 0xFFFFFFFF; } ///< no file kind of its own

    private:
        CIndex *m_index;
        int64_t m_position = 0;
    };

    /// One index record and its block; made and deleted by its container
    /// (valid until Close).
    class QV_API CIndex {
    public:
        /// An empty record of owner at offset 0.
        explicit CIndex(CIndexedContainer *owner) : m_file(this), m_owner(owner) {}
        CIndex(CIndex const &) = delete;
        CIndex &operator=(CIndex const &) = delete;

        uint16_t m_type = 0;    ///< the caller's block type; a slot of type 0 reads as empty
        uint16_t m_subtype = 0; ///< the caller's subtype
        uint32_t m_version = 0; ///< the caller's version of the block
        uint32_t m_id = 0;      ///< the caller's id (not required to be unique)
        uint32_t m_spare1 = 0;  ///< first spare value, carried unchanged
        uint32_t m_spare2 = 0;  ///< second spare value (XDN: the item count)
        uint32_t m_storedSize = 0; ///< refreshed at Save
        CIndexDataFile m_file;     ///< this block as an IFile
        int64_t m_offset = 0;      ///< block start in the host
        int64_t m_size = 0;        ///< live size
        CIndexedContainer *m_owner; ///< the container the block lies in
        uint32_t getOffset() const { return uint32_t(m_offset); } ///< the offset as stored (32 bits)
    };

    CIndexedContainer(CIndexedContainer const &) = delete;
    CIndexedContainer &operator=(CIndexedContainer const &) = delete;

    /// Save (if writable and the table changed since the last Save), then drop
    /// the indices and close an owned host.
    void Close();
    /// Writes header and table (not the blocks); false if not open, read-only,
    /// or a write failed.
    ///@{
    bool Save();
    bool ReOpenForRead();
    bool ReOpenForWrite();
    bool IsReadOnly() const { return m_readOnly; }
    bool IsOpen() const { return m_open; }
    ///@}

    /// A new empty block; its place in the array, or kNoIndex on failure.
    /// id 0xFFFFFFFF takes the next free id. When the table has to grow, the
    /// blocks move; a container that writes its table at once then fails if
    /// that write fails (the table is written again at the next Save).
    uint32_t CreateIndex(uint16_t type, uint16_t subtype, uint32_t version, uint32_t id);
    /// Place of the first index at or after start with this type, subtype
    /// (0xFFFF: any) and a version in [minVersion, maxVersion]; kNoIndex if none.
    ///@{
    uint32_t FindIndex(uint16_t type, uint16_t subtype, uint32_t minVersion, uint32_t maxVersion,
                       uint32_t start) const;
    CIndex *GetIndex(uint16_t type, uint16_t subtype, uint32_t minVersion, uint32_t maxVersion, uint32_t start) const;
    ///@}

    uint32_t GetIndexCount() const { return m_indices.GetSize(); } ///< indices in slot order, empty slots dropped
    /// The index at place i, null beyond the count; owned by the container.
    CIndex *GetIndexAt(uint32_t i) const { return i < m_indices.GetSize() ? m_indices.GetAt(i) : nullptr; }
    uint32_t GetSlots() const { return m_slots; }             ///< slots in the table, used or not
    uint32_t GetIndexOffset() const { return m_indexOffset; } ///< where the table starts in the host
    uint32_t GetNextId() const { return m_nextId; }           ///< the id CreateIndex gives for 0xFFFFFFFF

protected:
    static constexpr uint32_t kHeaderSize = 64; ///< bytes of the header at offset 0
    static constexpr uint32_t kSlotSize = 32;   ///< bytes of one index record
    /// How a host is opened by path: an existing one to read or to write, or
    /// a new one.
    ///@{
    static constexpr uint32_t kOpenForRead = kOpenExisting | kOpenRead;               // 0x12
    static constexpr uint32_t kOpenForWrite = kOpenExisting | kOpenRead | kOpenWrite; // 0x32
    static constexpr uint32_t kOpenNew = kOpenCreateAlways | kOpenRead | kOpenWrite;  // 0x38
    ///@}

    CIndexedContainer() = default;
    ~CIndexedContainer(); ///< derived classes Close first: Save needs their header

    /// Reads the header (and then ReadTable); false refuses the file.
    virtual bool ReadHeader() = 0;
    /// The 64 header bytes as Save writes them.
    virtual void EncodeHeader(unsigned char *header) const = 0;
    /// A slot's live size from its stored fields.
    virtual int64_t LiveSize(CIndex const &index) const = 0;
    /// Sets the stored size fields from the live size before a Save.
    virtual void StoreSize(CIndex &index) const = 0;
    /// Where CreateIndex puts a new, empty block.
    virtual int64_t NewBlockOffset() const = 0;
    /// Whether the table is written at once when it grows (blocks moved).
    virtual bool SavesWhenTableGrows() const = 0;

    /// Reads the slots at the index offset into indices; false if they cannot
    /// be read or the table would overlay the header.
    bool ReadTable(bool littleEndian);
    /// Whether table and blocks lie inside a host of fileSize bytes, clear of
    /// the header, the table and each other.
    bool LayoutIsSound(int64_t fileSize) const;
    /// Takes file as the host and reads it; false leaves the object closed.
    bool Attach(IFile *file, bool readOnly, bool owned);
    /// Takes an emptied file as the host of a new container and saves it.
    bool AttachNew(IFile *file, bool owned, uint32_t version);
    /// Reopens the host by file system and name with these open flags; false
    /// (no host) if there is none to reopen or the open fails.
    bool OpenHost(uint32_t flags);
    void DropHost();      ///< closes and deletes an owned host; forgets any host
    void DeleteIndices(); ///< deletes every index (their IFile objects go with them)
    /// The first byte behind the table.
    int64_t TableEnd() const { return int64_t(m_indexOffset) + int64_t(m_slots) * kSlotSize; }

    unsigned char m_opaque[16] = {}; ///< header bytes 4 to 19, kept as read
    TArray<CIndex *> m_indices;      ///< owned, in slot order
    int64_t m_endOfData = 0;         ///< end of the block with the largest offset
    CString m_fileName;              ///< the host's path, for reopening
    uint32_t m_version = 0;          ///< format version, read and written back
    uint32_t m_indexOffset = 0;      ///< where the table starts
    uint32_t m_nextId = 0;           ///< next free id
    uint32_t m_slots = 0;            ///< slots in the table
    IFile *m_host = nullptr;         ///< the container file
    bool m_owned = false;            ///< the host is this object's to close and delete
    bool m_open = false;             ///< a container is open
    bool m_readOnly = true;          ///< no edits; true on a new object and after Close
    bool m_dirty = false;            ///< the table changed since it was last written
    IFileSystem *m_fileSystem = nullptr; ///< where the host was opened, for reopening

private:
    friend class CIndexDataFile;

    uint32_t ReadIndex(CIndex *index, int64_t position, void *buffer, uint32_t n);
    uint32_t WriteIndex(CIndex *index, int64_t position, void const *buffer, uint32_t n);
    int64_t SetIndexSize(CIndex *index, int64_t size);
    bool GrowHost(int64_t pos, int64_t delta);
    void MoveBlocksBehind(CIndex *changed, int64_t delta);
    void MoveBlocksFrom(int64_t from, int64_t delta);
};

} // namespace qv
