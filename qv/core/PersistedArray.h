/// @file
/// CPersistedArray / TPersistedArray<T>: a growable array of fixed-size items
/// kept in a file, of which one window of items (a 512 KiB budget) is held in
/// memory. Memory stays the same whatever the item count, so tables of any
/// length can keep a per-row record.
///
/// Storage. Item i lies at byte i * item size of the file. The default
/// constructor works over a temporary disk file ("par" prefix, delete-on-close,
/// so a crashed process leaves nothing behind) made when items first leave the
/// window, so an array that fits its window never touches the disk, and whose
/// window is not written back on destruction; the other constructor works over a
/// caller's IFile, which it does not own or close, and takes its size ÷ item
/// size as the count (bytes of a partial last item are ignored).
///
/// Access. GetItem(i) gives a pointer to item i for reading and writing (the
/// window is then written back before it moves); ReadItem(i) for reading only.
/// Reaching i at or past the count makes the count i + 1; new items read as
/// zeros. A pointer stays good until the next GetItem/ReadItem/Remove/
/// SetItemSize/Empty. Sequential access in either direction reads each item
/// once: a window move keeps an eighth of the window behind the new item.
///
/// Failures. A null result, or false, when the file is missing or cannot be
/// made, or a transfer fails (a read that brings fewer bytes than the file
/// holds for the items is a failure, never items of zeros); a window that
/// could not be written back stays in memory (and dirty),
/// so no item written through GetItem is lost by a failed move. Item bytes
/// read from the file are untrusted data: the array never interprets them.
/// SetItemSize of a temporary array writes the items into a new file that
/// replaces the old one only when whole, so a failure leaves them as they
/// were; over a caller's file it works in place, and a failure half-way
/// leaves the items unusable and the array refuses further access (IsReady false).
///
/// Threads: one thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "qv/core/Export.h"

namespace qv {

class IFile;

/// @copydoc PersistedArray.h
class QV_API CPersistedArray {
public:
    static constexpr uint32_t kWindowBudget = 0x80000; ///< bytes of items held in memory at most, by default

    /// An empty array over a temporary disk file made when first needed,
    /// holding windowBudget bytes of items in memory (at least one item).
    explicit CPersistedArray(uint32_t itemSize = 16, uint32_t windowBudget = kWindowBudget);
    /// The items already in backing (not owned, left open), whole items only.
    CPersistedArray(IFile &backing, uint32_t itemSize);
    ~CPersistedArray(); ///< writes the window back to a caller's file, closes an owned one
    CPersistedArray(CPersistedArray const &) = delete;
    CPersistedArray &operator=(CPersistedArray const &) = delete;

    bool IsReady() const;                                ///< a window exists, and a file or the means to make one
    uint32_t GetCount() const { return m_count; }        ///< items in the array
    uint32_t GetItemSize() const { return m_itemSize; }  ///< bytes of one item
    uint32_t GetCapacity() const { return m_capacity; } ///< items in the window

    /// Item i to read and write (it is written back before the window moves);
    /// reaching past the count extends the array. Null on failure.
    uint8_t *GetItem(uint32_t i);
    /// Item i to read only; as GetItem otherwise.
    uint8_t const *ReadItem(uint32_t i);

    /// Appends n items from items (n * item size bytes) in one write, past
    /// the window; false, with the count unchanged, on failure.
    bool Append(uint8_t const *items, uint32_t n);
    /// Cuts item i out; later items move down by one. True with nothing done
    /// when i is not below the count.
    bool Remove(uint32_t i);
    /// Rewrites every item at the new size: a grown item gets a zero tail, a
    /// shrunk one keeps its first bytes. Linear in the count.
    bool SetItemSize(uint32_t itemSize);
    /// Count to 0; the file is cut to nothing.
    bool Empty();
    /// Writes a changed window back.
    bool Flush();

private:
    bool HasFile();
    bool Locate(uint32_t i);
    bool LoadWindow(uint32_t first);
    bool ReadItems(uint32_t first, uint32_t n, uint8_t *out);
    bool WriteItems(uint32_t first, uint32_t n, uint8_t const *in);
    bool MaterialiseUpToCount();
    bool ResizeItems(uint32_t oldSize, uint32_t newSize);
    bool ResizeIntoNewFile(uint32_t newSize);
    bool AllocateWindow();
    int64_t Offset(uint32_t i) const { return int64_t(i) * m_itemSize; }

    std::unique_ptr<IFile> m_owned;
    IFile *m_file = nullptr;
    bool m_temporary = false; ///< m_owned is made on first need
    std::unique_ptr<uint8_t[]> m_window;
    uint32_t m_count = 0;
    uint32_t m_itemSize = 16;
    uint32_t m_budget = kWindowBudget;
    uint32_t m_capacity = 0;
    uint32_t m_first = 0;       ///< first item held in the window
    uint32_t m_dirtyLow = 0;    ///< dirty items [m_dirtyLow, m_dirtyHigh)
    uint32_t m_dirtyHigh = 0;
    bool m_loaded = false;
    bool m_broken = false;
};

/// Typed view: T must be trivially copyable and sizeof(T) the item size.
/// Items whose size is chosen at run time use CPersistedArray itself.
template <class T>
class TPersistedArray : public CPersistedArray {
public:
    /// An empty array in a new temporary disk file.
    TPersistedArray() : CPersistedArray(sizeof(T)) {}
    /// The items already in backing (not owned).
    explicit TPersistedArray(IFile &backing) : CPersistedArray(backing, sizeof(T)) {}
    /// Copies item i out; false (and out untouched) on failure.
    bool Get(uint32_t i, T &out) {
        uint8_t const *p = ReadItem(i);
        if (!p) return false;
        __builtin_memcpy(&out, p, sizeof(T));
        return true;
    }
    /// Copies value into item i, extending the array as GetItem does; false on failure.
    bool Set(uint32_t i, T const &value) {
        uint8_t *p = GetItem(i);
        if (!p) return false;
        __builtin_memcpy(p, &value, sizeof(T));
        return true;
    }
};

} // namespace qv
