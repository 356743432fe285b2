// CString's text blocks: operator new blocks that remember their room.
#include "qv/core/StringBlock.h"

#include <cstddef>
#include <limits>
#include <new>

namespace qv::detail {

namespace {

struct alignas(std::max_align_t) BlockHeader {
    int64_t room;
};

BlockHeader *HeaderOf(char16_t const *text) {
    return reinterpret_cast<BlockHeader *>(const_cast<char16_t *>(text)) - 1;
}

// A room that does not fit a record's 32-bit capacity saturates the byte
// count, so operator new refuses it instead of a size wrapping.
size_t BlockBytes(int64_t room) {
    if (room < 0 || room >= std::numeric_limits<int32_t>::max()) return std::numeric_limits<size_t>::max();
    return sizeof(BlockHeader) + size_t(room + 1) * sizeof(char16_t);
}

} // namespace

char16_t *AllocateText(int64_t room) {
    auto *header = static_cast<BlockHeader *>(::operator new(BlockBytes(room)));
    header->room = room;
    auto *text = reinterpret_cast<char16_t *>(header + 1);
    text[0] = 0;
    text[room] = 0;
    return text;
}

void FreeText(char16_t *text) {
    if (text) ::operator delete(HeaderOf(text));
}

int64_t TextRoom(char16_t const *text) {
    return text ? HeaderOf(text)->room : 0;
}

} // namespace qv::detail
