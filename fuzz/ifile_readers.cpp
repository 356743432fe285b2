// Runs every string reader of IFile over hostile bytes in a memory file:
// counted strings with small buffers, unicode and archive strings, UTF-8
// characters and lines. The readers may fail anywhere but must never overrun
// a buffer, and a hostile length field never allocates more than the bytes
// that remain in the file (GetRemaining).
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qv/core/CodePage.h"
#include "qv/files/MemFile.h"

namespace {

// The first byte picks the byte order and which reader runs at each step.
void ReadOneField(qv::IFile &f, uint8_t choice) {
    char narrow[8];
    char16_t wide[8];
    char line[16];
    qv::CString text;
    int32_t character;
    switch (choice % 10) {
    case 0:
        f.GetString(narrow, 1 + choice % 8);
        break;
    case 1:
        f.GetString(wide, 1 + choice % 8);
        break;
    case 2:
        f.GetString(text);
        break;
    case 3:
        f.GetString(qv::CP_1252, wide, 1 + choice % 8);
        break;
    case 4:
        f.GetUnicodeString(text);
        break;
    case 5:
        f.GetUnicodeString(wide, 1 + choice % 8);
        break;
    case 6:
        f.GetArchiveString(text);
        break;
    case 7:
        f.GetUTF8Character(character);
        break;
    case 8:
        f.GetLine(line, 1 + choice % 16);
        break;
    case 9:
        f.ReadString(narrow, choice % 8);
        break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 2) return 0;
    uint8_t const *bytes = data + 1;
    uint32_t n = uint32_t(size - 1);
    qv::CMemFile f;
    f.SetGrow(false);
    f.Attach(const_cast<uint8_t *>(bytes), n, false); // never written
    f.m_swap = data[0] & 1;
    uint8_t choice = data[0] >> 1;
    // Each step either moves forward or fails in place; a failed step skips a
    // byte so the loop always ends.
    while (f.GetRemaining() > 0) {
        int64_t before = f.GetPosition();
        ReadOneField(f, choice);
        choice = uint8_t(choice * 31 + 7);
        if (f.GetPosition() <= before) f.SetPosition(before + 1);
    }
    return 0;
}
