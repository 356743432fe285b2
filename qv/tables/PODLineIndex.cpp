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

bool AppendRow(CPersistedArray &index, int64_t position, int64_t end) {
    if (end - position > UINT32_MAX) return false;
    uint8_t *item = index.GetItem(index.GetCount());
    if (!item) return false;
    std::memset(item, 0, index.GetItemSize());
    SPODRowSpan span{position, uint32_t(end - position)};
    std::memcpy(item, &span, sizeof span);
    return true;
}

} // namespace

bool IndexPODLines(IFile &file, int64_t start, CPersistedArray &index) {
    if (index.GetItemSize() < sizeof(SPODRowSpan) || file.Seek(start, kSeekStart) != start) return false;
    std::unique_ptr<uint8_t[]> block(new (std::nothrow) uint8_t[kBlock]);
    if (!block) return false;
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
            if (!AppendRow(index, lineStart, next)) return false;
            lineStart = next;
            p = lf + 1;
        }
        blockPosition += got;
    }
    if (blockPosition < file.GetSize()) return false; // a read failed short of the end
    return blockPosition == lineStart || AppendRow(index, lineStart, blockPosition);
}

} // namespace qv
