// Text in code pages other than UTF-8 over hostile bytes: IFile::GetString
// with a code page (both forms), GetFixedLengthString, and
// CString::FromCodePage for 1252 and for pages that go through iconv. Nothing
// may overrun a buffer, and a converted text must fit what was asked for.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "qv/core/CodePage.h"
#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/files/MemFile.h"

namespace {

// 1252 has its own table; the others go through iconv.
constexpr uint32_t kCodePages[] = {1252, 437, 850, 932, 936, 949, 950, 1250, 1251, 1253, 20127, 28591, 65001};

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 2) return 0;
    uint32_t codePage = kCodePages[data[0] % (sizeof kCodePages / sizeof kCodePages[0])];
    uint8_t choice = data[1];
    uint8_t const *bytes = data + 2;
    size -= 2;

    qv::CMemFile f;
    f.m_swap = (choice & 0x80) != 0;
    f.Write(bytes, uint32_t(size));
    for (int step = 0; step < 4; ++step) {
        f.SeekToBegin();
        int bufferSize = 1 + (choice + step * 37) % 24;
        switch (step) {
        case 0: {
            qv::CString text;
            f.GetString(codePage, text);
            break;
        }
        case 1: {
            char16_t wide[24];
            if (f.GetString(codePage, wide, bufferSize)) Require(int(qv::wcslen(wide)) < bufferSize);
            break;
        }
        case 2: {
            char narrow[25];
            uint32_t n = uint32_t(bufferSize);
            if (f.GetFixedLengthString(narrow, n)) Require(narrow[n] == '\0');
            break;
        }
        case 3: {
            std::string text(reinterpret_cast<char const *>(bytes), size); // NUL-terminated copy
            qv::CString converted;
            converted.FromCodePage(codePage, text.c_str());
            Require(converted.GetLength() >= 0);
            break;
        }
        }
    }
    return 0;
}
