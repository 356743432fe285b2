/// @file
/// CCDFileSystem: a whole tree of named files inside one host file ("CDFS"),
/// offered as a flat file system (see qv/filesystems/FlatFileSystem.h). The host
/// comes from any file system: the disk, memory, or another container.
///
/// Layout, offsets relative to the base (0, or the old length of a file the
/// CDFS was appended to): "CDFS", two zero bytes, the table, zero padding to
/// the table's capacity (0x1000 at creation), the entries' regions in order of
/// allocation with holes, then at the end of the last region the base (64-bit)
/// and "CDFSFOOT", which let a CDFS ride at the end of a file of another kind.
/// The table: the root record, a 32-bit count, count records; a record is
/// name, path (strings: 32-bit byte count and UTF-8), attributes (32-bit),
/// size and timestamp (64-bit; CDateTime::GetTimestamp(0)), a 32-bit property
/// count and that many key/value strings. Files carry "Offset" and "Capacity"
/// (decimal text); a region is [Offset, Offset + Capacity). Integers are
/// little-endian.
///
/// Growth. A region grows in blocks of 0x1000 to (size / 0x1000 + 1) * 0x1000
/// by moving the rest of the host up (MoveTailUp), and every region at or
/// behind the insertion point moves with it. An empty entry is first placed
/// behind all regions (NextFileOffset), so entries created back to back never
/// share a region; a lone new file therefore still moves 0x1000 up on its first
/// write, as existing files show. Capacity never shrinks; the space of deleted
/// entries is not reclaimed. Bytes between an entry's old end and a write or
/// SetSize beyond it read as zeros.
///
/// Untrusted hosts. Open refuses (false) a table whose offsets or sizes leave
/// the host, whose regions overlap each other or the table, with a count or
/// string beyond its bytes, with duplicate paths or a file used as a directory,
/// entries other than files, or a foot that points outside the host. The table
/// is read from at most its own capacity (no more than 64 MiB and the host).
///
/// Persistence. Flush (and closing any file inside, and Close) writes the table
/// and the foot and flushes the host; nothing else writes the table. A table
/// write that fails is written once more (so a passing fault leaves a whole
/// table) and Flush answers false. A host that keeps failing can be left with a
/// table cut short, which the next Open refuses. A crash
/// between a growth and the next flush can leave the stored table behind the
/// moved data (no journal). A growth that fails leaves the host and the table
/// as they were (see MoveTailUp) and the write answers short.
///
/// Choices that keep data where the older behaviour lost it: every handle is
/// kept in the open files (also one that created its entry), so deleting an
/// earlier entry re-targets it and never makes it write into another file;
/// a table that outgrew 0x1000 bytes is read back whole; failed writes answer
/// false. DeleteFileW answers true also for a path that is not there, as
/// existing callers expect. RenameFileW moves an entry's name, replacing a
/// file at the new path (capability kCapabilityRename); it is stored with the
/// next flush. CreateFileW and RenameFileW refuse a path below a file ("/a/b"
/// or "/a/" beside a file "/a"), which Open would refuse. CreateDirectoryW and
/// RemoveDirectoryW answer false.
///
/// Ownership: the host file is owned and closed by Close. Files from
/// CreateFileW are the caller's to delete; they should go before the file
/// system, and one that outlives it only answers failures.
///
/// Threads: one recursive lock (Lock/Unlock) guards the table and the host's
/// position; every call takes it, the listings, GetFileInfo and the working
/// directory included, so one CCDFileSystem may be used from several threads.
/// Each CCDFile belongs to one thread (its position is its own); its calls take
/// the lock too, as a delete on another thread re-targets it. Use Lock/Unlock
/// around longer sequences.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/FlatFileSystem.h"
#include "qv/threads/CriticalSection.h"

namespace qv {

class CMemFile;

/// @copydoc CDFileSystem.h
class QV_API CCDFileSystem : public CFlatFileSystem {
public:
    /// A file inside: entry index -1 is the table, -2 closed.
    class QV_API CCDFile : public IFile {
    public:
        /// The file of entry index of owner (-1: the table); owner must outlive it.
        CCDFile(CCDFileSystem *owner, int index);
        ~CCDFile() override;
        CCDFile(CCDFile const &) = delete;
        CCDFile &operator=(CCDFile const &) = delete;

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
        uint32_t GetType() const { return 0xFFFFFFFF; } ///< always 0xFFFFFFFF, as the file system's own GetType

    private:
        friend class CCDFileSystem;
        CCDFileSystem *owner;
        int index;
        int64_t position = 0;
    };

    CCDFileSystem();
    ~CCDFileSystem() override;
    CCDFileSystem(CCDFileSystem const &) = delete;
    CCDFileSystem &operator=(CCDFileSystem const &) = delete;

    /// Whether the disk file at path holds a CDFS (at its start or by its foot).
    ///@{
    static bool IsCDFile(char16_t const *path);
    static bool IsCDFile(IFileSystem *fs, char16_t const *path);
    ///@}

    /// Opens path in fs read-only as Open does; on a refusal problem tells
    /// why in one sentence (English), otherwise it is emptied.
    static bool Check(IFileSystem *fs, char16_t const *path, CString &problem);

    /// Makes a CDFS at path in fs (the disk for the short form): a new file, or
    /// with append one appended to an existing file that holds none yet (its
    /// bytes stay; a failure cuts it back to its old length).
    ///@{
    bool Create(IFileSystem *fs, char16_t const *path, bool append);
    bool Create(char16_t const *path, bool append);
    ///@}
    /// Opens the CDFS at path; a missing file is created unless readOnly.
    ///@{
    bool Open(IFileSystem *fs, char16_t const *path, bool readOnly);
    bool Open(char16_t const *path, bool readOnly);
    ///@}
    /// Flushes, closes the host, empties the table. Files still open answer failures.
    void Close();
    /// Table and foot to the host, then the host's Flush. False if a write failed.
    ///@{
    bool Flush();
    bool IsOpen();
    void Lock();
    void Unlock();
    uint32_t GetType() const { return 0xFFFFFFFF; }
    ///@}
    /// The first offset behind the table and every region.
    int64_t NextFileOffset();
    /// One table record from or to file at its position.
    ///@{
    static bool GetDirectoryEntry(IFile *file, CDirectoryEntry *entry);
    static bool PutDirectoryEntry(IFile *file, CDirectoryEntry *entry);
    ///@}

    uint32_t GetCapabilities() override;
    IFile *CreateFileW(char16_t const *path, uint32_t flags) override;
    bool DeleteFileW(char16_t const *path) override;
    bool CreateDirectoryW(char16_t const *path, bool recursive) override;
    bool RemoveDirectoryW(char16_t const *path, bool recursive) override;
    bool RenameFileW(char16_t const *oldPath, char16_t const *newPath) override;
    CDirectoryListing GetDirectoryListing(char16_t const *dir, char16_t const *pattern) override;
    CDirectoryEntry GetFileInfo(char16_t const *path) override;
    bool GetFullPath(char16_t *out, char16_t const *path, int size) override;
    bool SetCurrentWorkingDirectory(char16_t const *path) override;
    bool GetCurrentWorkingDirectory(char16_t *out, int size) override;
    using IFileSystem::GetCurrentWorkingDirectory; ///< the CString helper of IFileSystem
    using IFileSystem::GetFullPath;                ///< the CString helper of IFileSystem

private:
    struct SRegion {
        int64_t offset;
        int64_t capacity;
    };

    bool Refuse(char const *why);
    void DropHost(); ///< closes the host without a flush and empties the table
    bool WriteTableAndFoot();
    bool SaveFileTable();
    bool LoadFileTable();
    bool WriteHeader();
    bool FindBase();
    bool Serialize(CMemFile &table);
    bool AcceptTable(CDirectoryEntry const &root, TArray<CDirectoryEntry> &loaded);
    void SetRegion(int index, int64_t offset, int64_t capacity);
    int64_t NextFileOffset(int except);
    bool GrowRegion(int index, int64_t size);
    void AdjustOffsets(int64_t from, int64_t delta);
    int64_t EntrySize(int index);
    void SetEntrySizeField(int index, int64_t size);
    int64_t SetEntrySize(int index, int64_t size);
    bool ZeroEntry(int index, int64_t from, int64_t to);
    uint32_t ReadEntry(int index, int64_t position, void *buffer, uint32_t n);
    uint32_t WriteEntry(int index, int64_t position, void const *buffer, uint32_t n);
    void Forget(CCDFile *file);
    void RemoveEntry(int index);
    bool HasFileAbove(char16_t const *full, int except) const;

    IFile *host = nullptr;
    char const *refusal = nullptr; ///< why the last Open refused, for Check
    bool readOnly = false;
    int64_t base = 0;
    CDirectoryEntry root;
    SRegion rootRegion{0, 0};
    TArray<SRegion> regions; ///< beside entries, index for index
    TArray<CCDFile *> openFiles;
    CCriticalSection lock;
};

} // namespace qv
