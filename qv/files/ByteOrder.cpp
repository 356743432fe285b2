#include "qv/files/ByteOrder.h"

#include <algorithm>
#include <cstring>

namespace qv {

namespace {

// The common widths swap a whole word at a time.
template <class Word, Word (*Swap)(Word)> void SwapWords(unsigned char *bytes, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i, bytes += sizeof(Word)) {
        Word word;
        std::memcpy(&word, bytes, sizeof word);
        word = Swap(word);
        std::memcpy(bytes, &word, sizeof word);
    }
}

uint16_t Swap16(uint16_t v) {
    return __builtin_bswap16(v);
}
uint32_t Swap32(uint32_t v) {
    return __builtin_bswap32(v);
}
uint64_t Swap64(uint64_t v) {
    return __builtin_bswap64(v);
}

} // namespace

void ReverseItems(void *p, uint32_t count, uint32_t itemSize) {
    auto bytes = static_cast<unsigned char *>(p);
    switch (itemSize) {
    case 0:
    case 1:
        return;
    case 2:
        return SwapWords<uint16_t, Swap16>(bytes, count);
    case 4:
        return SwapWords<uint32_t, Swap32>(bytes, count);
    case 8:
        return SwapWords<uint64_t, Swap64>(bytes, count);
    default:
        for (uint32_t i = 0; i < count; ++i, bytes += itemSize)
            std::reverse(bytes, bytes + itemSize);
    }
}

} // namespace qv
