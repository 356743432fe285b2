#include "qv/core/StringTableBlock.h"

namespace qv {

namespace {

uint16_t ReadUnit(unsigned char const *p) {
    return uint16_t(p[0] | (p[1] << 8));
}

} // namespace

uint32_t ReadStringBlock(unsigned char const *data, uint32_t size, SStringBlockText (&texts)[kStringsPerBlock]) {
    uint32_t offset = 0;
    for (uint32_t i = 0; i < kStringsPerBlock; ++i) {
        if (size - offset < 2) return i;
        uint32_t length = ReadUnit(data + offset);
        offset += 2;
        uint32_t available = (size - offset) / 2;
        texts[i] = {data + offset, length < available ? length : available};
        if (length > available) return i + 1;
        offset += 2 * length;
    }
    return kStringsPerBlock;
}

void CopyBlockText(SStringBlockText const &text, char16_t *out) {
    for (uint32_t i = 0; i < text.length; ++i)
        out[i] = char16_t(ReadUnit(text.units + 2 * i));
}

CString BlockString(unsigned char const *data, uint32_t size, uint32_t id) {
    SStringBlockText texts[kStringsPerBlock];
    uint32_t index = id % kStringsPerBlock;
    CString result(u"");
    if (index >= ReadStringBlock(data, size, texts) || texts[index].length == 0) return result;
    char16_t *buffer = result.GetBuffer(int(texts[index].length));
    CopyBlockText(texts[index], buffer);
    buffer[texts[index].length] = 0;
    result.ReleaseBuffer();
    return result;
}

} // namespace qv
