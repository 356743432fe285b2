// OS binding: page-aligned, locked blocks for virtAlloc (mmap, mlock).
#include <sys/mman.h>

#include "qv/threads/LockedMemory.h"

namespace qv {

// Anonymous mappings come zero-filled and page-aligned.
void *virtAlloc(uint32_t size) {
    if (size == 0) return nullptr;
    void *block = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED) return nullptr;
    (void)mlock(block, size); // a refused lock leaves the block usable
    return block;
}

void virtFree(void *block, uint32_t size) {
    if (!block) return;
    munlock(block, size);
    munmap(block, size);
}

void lockAlloc(uint32_t) {}

void lockFree(uint32_t) {}

} // namespace qv
