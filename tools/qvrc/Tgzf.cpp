#include <zlib.h>

#include <stdexcept>

#include "Script.h"

namespace qvrc {

// compress2 writes the zlib stream that the library's TGZF reader expects:
// window bits 15, memory level 8, default strategy.
std::vector<unsigned char> PackTGZF(std::vector<unsigned char> const &plain) {
    uLongf packedSize = compressBound(uLong(plain.size()));
    std::vector<unsigned char> out(14 + packedSize);
    out[0] = 'T', out[1] = 'G', out[2] = 'Z', out[3] = 'F';
    uint64_t size = plain.size();
    for (int i = 0; i < 8; ++i)
        out[6 + i] = static_cast<unsigned char>(size >> (8 * i));
    if (compress2(out.data() + 14, &packedSize, plain.data(), uLong(plain.size()), Z_DEFAULT_COMPRESSION) != Z_OK)
        throw std::runtime_error("zlib could not compress the data");
    out.resize(14 + packedSize);
    return out;
}

} // namespace qvrc
