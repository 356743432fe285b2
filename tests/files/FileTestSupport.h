// Helpers shared by the file-layer tests: scratch directories, file bytes,
// and file factories for the contract suites.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "qv/core/CodePage.h"
#include "qv/files/File.h"
#include "qv/files/MemFile.h"

namespace qv::test {

using Bytes = std::vector<uint8_t>;

// A fresh directory under the test temp dir, removed with its contents.
class ScratchDir {
public:
    ScratchDir() {
        std::string pattern = testing::TempDir() + "qv_files_XXXXXX";
        path = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~ScratchDir() { std::filesystem::remove_all(path); }
    std::string Path(char const *name) const { return path + "/" + name; }
    std::string path;
};

inline std::u16string Wide(std::string const &utf8) {
    std::u16string out(utf8.size(), u'\0');
    int n = MultiByteToWideChar(CP_UTF8, utf8.data(), int(utf8.size()), out.data(), int(out.size()));
    out.resize(size_t(n > 0 ? n : 0));
    return out;
}

inline std::u16string Str(CString const &s) {
    return s.GetUTF16();
}

inline void WriteDiskBytes(std::string const &path, Bytes const &bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<char const *>(bytes.data()), std::streamsize(bytes.size()));
}

inline Bytes ReadDiskBytes(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

// All bytes of f; the position ends at the end.
inline Bytes AllBytes(IFile &f) {
    Bytes out(size_t(f.GetSize()));
    f.SeekToBegin();
    if (!out.empty()) f.Read(out.data(), uint32_t(out.size()));
    return out;
}

inline void SetBytes(IFile &f, Bytes const &bytes) {
    f.SetSize(0);
    f.SeekToBegin();
    if (!bytes.empty()) f.Write(bytes.data(), uint32_t(bytes.size()));
    f.SeekToBegin();
}

inline Bytes Text(char const *s) {
    return Bytes(s, s + std::char_traits<char>::length(s));
}

// An empty read/write file of each kind; the disk one vanishes at close.
template <class F> std::unique_ptr<F> MakeEmptyFile();

template <> inline std::unique_ptr<CMemFile> MakeEmptyFile<CMemFile>() {
    auto f = std::make_unique<CMemFile>();
    f->SetGrowthRate(4096);
    return f;
}

template <> inline std::unique_ptr<CFile> MakeEmptyFile<CFile>() {
    static ScratchDir dir;
    static int serial = 0;
    auto f = std::make_unique<CFile>();
    std::string path = dir.Path(("contract" + std::to_string(++serial)).c_str());
    EXPECT_TRUE(f->Open(Wide(path).c_str(), 0x08 | 0x10 | 0x20 | 0x100000));
    return f;
}

} // namespace qv::test
