// Complemented strings of the SBF file (the bytes do not appear in plain).
#include "qv/formats/tagged/SBFString.h"

#include <cstring>
#include <string>

#include "qv/formats/tagged/Utf8Text.h"

namespace qv::sbf {

bool PutString(IFile &f, CString const &text) {
    if (!text.GetUTF16()) return f.PutDWORD(0);
    char const *utf8 = text.GetUTF8();
    std::string bytes(utf8, std::strlen(utf8) + 1);
    for (char &c : bytes) c = char(~c);
    return f.PutDWORD(uint32_t(bytes.size())) && f.WriteBytes(bytes.data(), uint32_t(bytes.size()));
}

bool GetString(IFile &f, CString &text) {
    uint32_t length = 0;
    if (!f.GetDWORD(length)) return false;
    if (length == 0) {
        text.Destroy();
        return true;
    }
    if (int64_t(length) > f.GetRemaining()) return false;
    std::string bytes(length, '\0');
    if (!f.ReadBytes(bytes.data(), length)) return false;
    for (char &c : bytes) c = char(~c);
    size_t end = bytes.find('\0'); // the terminator, or a NUL a hostile file put earlier
    bytes.resize(end == std::string::npos ? bytes.size() : end);
    text = tagged::TextFromUtf8(bytes.data(), uint32_t(bytes.size()));
    return true;
}

} // namespace qv::sbf
