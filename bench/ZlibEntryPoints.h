// The system zlib's entry points, the reference the CRC and TGZF benchmarks
// measure against in the same run.
#pragma once

#include <zlib.h>

namespace bench {

struct ZlibEntryPoints {
    decltype(&::crc32) crc32;
    decltype(&::deflateInit2_) deflateInit2_;
    decltype(&::deflate) deflate;
    decltype(&::deflateEnd) deflateEnd;
    decltype(&::inflateInit2_) inflateInit2_;
    decltype(&::inflate) inflate;
    decltype(&::inflateEnd) inflateEnd;
};

inline ZlibEntryPoints const &Zlib() {
    static ZlibEntryPoints const z{&::crc32,         &::deflateInit2_, &::deflate,   &::deflateEnd,
                                   &::inflateInit2_, &::inflate,       &::inflateEnd};
    return z;
}

} // namespace bench
