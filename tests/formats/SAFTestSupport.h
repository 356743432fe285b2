// Helpers of the SAF tests: files of both kinds holding given bytes, their
// bytes back, and SAF headers written out as text.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "qv/core/CodePage.h"
#include "qv/files/File.h"
#include "qv/files/MemFile.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qv::saftest {

inline std::u16string Wide(std::string const &utf8) {
    std::u16string out(utf8.size(), u'\0');
    int n = MultiByteToWideChar(CP_UTF8, utf8.data(), int(utf8.size()), out.data(), int(out.size()));
    out.resize(size_t(n > 0 ? n : 0));
    return out;
}

inline std::string Narrow(char16_t const *text) {
    if (!text) return "(null)";
    CString s(text);
    return s.GetUTF8();
}

// A fresh directory under the test temp dir, removed with its contents.
class ScratchDir {
public:
    ScratchDir() {
        std::string pattern = testing::TempDir() + "qv_saf_XXXXXX";
        path = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~ScratchDir() { std::filesystem::remove_all(path); }
    std::string Path(std::string const &name) const { return path + "/" + name; }

private:
    std::string path;
};

inline std::string AllBytes(IFile &f) {
    std::string out(size_t(f.GetSize()), '\0');
    f.SeekToBegin();
    if (!out.empty()) {
        EXPECT_EQ(f.Read(out.data(), uint32_t(out.size())), out.size());
    }
    return out;
}

inline void SetBytes(IFile &f, std::string const &bytes) {
    f.SetSize(0);
    f.SeekToBegin();
    if (!bytes.empty()) {
        EXPECT_EQ(f.Write(bytes.data(), uint32_t(bytes.size())), bytes.size());
    }
    f.SeekToBegin();
}

// An empty read/write file of each kind. The disk file is removed at close.
template <class F> std::unique_ptr<IFile> MakeFile();

template <> inline std::unique_ptr<IFile> MakeFile<CMemFile>() {
    auto f = std::make_unique<CMemFile>();
    f->SetGrowthRate(60000);
    return f;
}

template <> inline std::unique_ptr<IFile> MakeFile<CFile>() {
    static ScratchDir dir;
    static int serial = 0;
    auto f = std::make_unique<CFile>();
    std::string path = dir.Path("saf" + std::to_string(++serial));
    EXPECT_TRUE(f->Open(Wide(path).c_str(), 0x08 | 0x10 | 0x20 | 0x100000));
    return f;
}

template <class F> std::unique_ptr<IFile> MakeFile(std::string const &bytes) {
    auto f = MakeFile<F>();
    SetBytes(*f, bytes);
    return f;
}

// Deterministic bytes that no header text looks like (all 256 values).
inline std::string DataPattern(size_t size) {
    std::string out(size, '\0');
    uint32_t x = 0x12345678;
    for (char &c : out) {
        x = x * 1664525u + 1013904223u;
        c = char(x >> 24);
    }
    return out;
}

// The lines "name value\r\n" of every tag but the last, then "DATA\r\n",
// as the header without padding must read.
inline std::string HeaderText(CSAFFile &saf) {
    std::string out;
    for (uint32_t i = 0; i + 1 < saf.nTags(); ++i)
        out += Narrow(saf[i].name.GetUTF16()) + " " + Narrow(saf[i].value.GetUTF16()) + "\r\n";
    return out + "DATA\r\n";
}

// A file as New gives it, with a few tags of the kind a camera writes.
inline void MakeCameraHeader(CSAFFile &saf) {
    saf.New(false);
    saf.AddTag(u"Width", u"64");
    saf.AddTag(u"Height", u"48");
    saf.AddTag(u"Camera", u"Test camera");
}

} // namespace qv::saftest
