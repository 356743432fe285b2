// Helpers of the image tests: pictures with known pixels, memory files, a
// scratch directory, and outside tools.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/images/Bitmap.h"

namespace qv::test {

using Bytes = std::vector<uint8_t>;

struct BitmapDeleter {
    void operator()(CBitmap *b) const { DeleteBitmap(b); }
};
using Bitmap = std::unique_ptr<CBitmap, BitmapDeleter>;

// A 24-bit picture whose every byte tells its place: blue x, green y, red x ^ y.
inline Bitmap Pattern(int32_t width, int32_t height) {
    Bitmap b(CreateBitmap(width, height, 24));
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            uint8_t *p = b->Row(y) + 3 * x;
            p[0] = uint8_t(x * 7);
            p[1] = uint8_t(y * 5);
            p[2] = uint8_t((x ^ y) * 3);
        }
    return b;
}

// A smooth picture, for the lossy codec.
inline Bitmap Smooth(int32_t width, int32_t height) {
    Bitmap b(CreateBitmap(width, height, 24));
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x) {
            uint8_t *p = b->Row(y) + 3 * x;
            p[0] = uint8_t(x * 255 / width);
            p[1] = uint8_t(y * 255 / height);
            p[2] = 128;
        }
    return b;
}

inline bool SamePixels(CBitmap const &a, CBitmap const &b) {
    if (a.Width != b.Width || a.Height != b.Height || a.BitCount != b.BitCount) return false;
    for (int32_t y = 0; y < a.Height; ++y)
        if (!std::equal(a.Row(y), a.Row(y) + size_t(a.Width) * a.BitCount / 8, b.Row(y))) return false;
    return true;
}

inline int MaxDifference(CBitmap const &a, CBitmap const &b) {
    int worst = 0;
    for (int32_t y = 0; y < a.Height; ++y)
        for (int32_t i = 0; i < a.Width * 3; ++i) worst = std::max(worst, std::abs(int(a.Row(y)[i]) - int(b.Row(y)[i])));
    return worst;
}

inline Bytes BytesOf(CMemFile &file) {
    return Bytes(file.GetData(), file.GetData() + file.GetSize());
}

inline void Fill(CMemFile &file, Bytes const &bytes) {
    file.Reset();
    if (!bytes.empty()) file.Write(bytes.data(), uint32_t(bytes.size()));
    file.Seek(0, 1);
}

inline Bytes ReadDisk(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

inline void WriteDisk(std::string const &path, Bytes const &bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<char const *>(bytes.data()), std::streamsize(bytes.size()));
}

inline bool HaveTool(char const *name) {
    return std::system((std::string("command -v ") + name + " >/dev/null 2>&1").c_str()) == 0;
}

inline int Run(std::string const &command) { return std::system((command + " >/dev/null 2>&1").c_str()); }

class ScratchDir {
public:
    ScratchDir() {
        std::string pattern = testing::TempDir() + "qv_images_XXXXXX";
        path = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~ScratchDir() { std::filesystem::remove_all(path); }
    std::string Path(char const *name) const { return path + "/" + name; }
    std::string path;
};

} // namespace qv::test
