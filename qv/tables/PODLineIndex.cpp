#include "qv/tables/PODLineIndex.h"

#include <cstring>
#include <memory>
#include <new>

#include "qv/core/PersistedArray.h"
#include "qv/files/IFile.h"

namespace qv {

namespace {

constexpr uint32_t kBlock = 0x80000;
// Items go out in 64 KiB writes: large enough that the calls cost nothing,
// small enough that the batch stays in cache.
constexpr uint32_t kBatch = 0x10000;
constexpr uint32_t kSeekStart = 1;

// Items made a block at a time; bytes behind the span stay zero.
class CRowBatch {
public:
    explicit CRowBatch(CPersistedArray &index)
        : index(index), itemSize(index.GetItemSize()), capacity(kBatch / itemSize ? kBatch / itemSize : 1),
          items(new (std::nothrow) uint8_t[size_t(capacity) * itemSize]()) {}

    bool IsReady() const { return items != nullptr; }

    bool Add(int64_t position, int64_t end) {
        if (end - position > UINT32_MAX) return false;
        if (count == capacity && !Flush()) return false;
        SPODRowSpan const span{position, uint32_t(end - position)};
        std::memcpy(items.get() + size_t(count++) * itemSize, &span, sizeof span);
        return true;
    }

    bool Flush() {
        bool ok = count == 0 || index.Append(items.get(), count);
        count = 0;
        return ok;
    }

private:
    CPersistedArray &index;
    uint32_t const itemSize;
    uint32_t const capacity;
    std::unique_ptr<uint8_t[]> items;
    uint32_t count = 0;
};

} // namespace

bool IndexPODLines(IFile &file, int64_t start, CPersistedArray &index) {
    if (index.GetItemSize() < sizeof(SPODRowSpan) || file.Seek(start, kSeekStart) != start)
        return false;
    std::unique_ptr<uint8_t[]> block(new (std::nothrow) uint8_t[kBlock]);
    CRowBatch rows(index);
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
