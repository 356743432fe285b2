#include "qv/tables/PODLineIndex.h"

#include <cstring>
#include <memory>
#include <new>

#include "qv/core/PersistedArray.h"
#include "qv/files/IFile.h"

namespace qv {

namespace {

constexpr uint32_t kBlock = 0x80000;
constexpr uint32_t kSeekStart = 1;

// Items made a block at a time from one template: the caller's tail behind
// the span, zeros after it.
class CRowBatch {
public:
    CRowBatch(CPersistedArray &index, void const *tail, uint32_t tailSize)
        : index(index), itemSize(index.GetItemSize()), capacity(kBlock / itemSize ? kBlock / itemSize : 1),
          items(new (std::nothrow) uint8_t[size_t(capacity) * itemSize]), tail(tail), tailSize(tailSize) {}

    bool IsReady() const { return items != nullptr; }

    bool Add(int64_t position, int64_t end) {
        if (end - position > UINT32_MAX) return false;
        if (count == capacity && !Flush()) return false;
        uint8_t *item = items.get() + size_t(count++) * itemSize;
        SPODRowSpan const span{position, uint32_t(end - position)};
        std::memcpy(item, &span, sizeof span);
        if (!prepared) Prepare();
        return true;
    }

    bool Flush() {
        bool ok = count == 0 || index.Append(items.get(), count);
        count = 0;
        return ok;
    }

private:
    // The part behind the span is the same in every item: written once into
    // each place of the batch, never again.
    void Prepare() {
        for (uint32_t i = 0; i < capacity; ++i) {
            uint8_t *item = items.get() + size_t(i) * itemSize;
            std::memset(item + sizeof(SPODRowSpan), 0, itemSize - sizeof(SPODRowSpan));
            if (tail) std::memcpy(item + sizeof(SPODRowSpan), tail, tailSize);
        }
        prepared = true;
    }

    CPersistedArray &index;
    uint32_t const itemSize;
    uint32_t const capacity;
    std::unique_ptr<uint8_t[]> items;
    void const *tail;
    uint32_t tailSize;
    uint32_t count = 0;
    bool prepared = false;
};

} // namespace

bool IndexPODLines(IFile &file, int64_t start, CPersistedArray &index, void const *tail, uint32_t tailSize) {
    if (index.GetItemSize() < sizeof(SPODRowSpan) + uint64_t(tail ? tailSize : 0) ||
        file.Seek(start, kSeekStart) != start)
        return false;
    std::unique_ptr<uint8_t[]> block(new (std::nothrow) uint8_t[kBlock]);
    CRowBatch rows(index, tail, tailSize);
    if (!block || !rows.IsReady()) return false;
    int64_t lineStart = start;
    int64_t blockPosition = start;
    for (;;) {
        uint32_t got = file.Read(block.get(), kBlock);
        if (got == 0) break;
        uint8_t const *p = block.get();
        uint8_t const *const end = p + got;
        while (p < end) {
            auto const *lf = static_cast<uint8_t const *>(std::memchr(p, '\n', size_t(end - p)));
            if (!lf) break;
            int64_t next = blockPosition + (lf - block.get()) + 1;
            if (!rows.Add(lineStart, next)) return false;
            lineStart = next;
            p = lf + 1;
        }
        blockPosition += got;
    }
    if (blockPosition < file.GetSize()) { // a read failed short of the end
        rows.Flush();
        return false;
    }
    if (blockPosition != lineStart && !rows.Add(lineStart, blockPosition)) return false;
    return rows.Flush();
}

} // namespace qv
