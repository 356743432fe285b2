// Fuzzes the scanf engine, narrow and wide, with a format and a text taken
// from the input ("format\ntext"); every field lands in scratch storage large
// enough for the whole text, so only the engine itself is under test. The
// locale-free number parsers run on the same text.
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "qv/core/CodePage.h"
#include "qv/core/ScanEngine.h"
#include "qv/core/WideChar.h"

namespace {

class ScratchTargets {
public:
    explicit ScratchTargets(size_t units) : storage((units + 1) * sizeof(char16_t) / sizeof(std::max_align_t) + 2) {}
    template <class T> T *Next() { return reinterpret_cast<T *>(storage.data()); }

private:
    std::vector<std::max_align_t> storage;
};

template <class Char> void Scan(std::basic_string<Char> const &text, std::basic_string<Char> const &format) {
    ScratchTargets targets(text.size());
    int assigned = qv::detail::ScanText(text.c_str(), format.c_str(), targets);
    if (assigned < -1) __builtin_trap();
}

std::u16string Widen(std::string const &s) {
    if (s.empty()) return {};
    std::u16string out(s.size(), u'\0');
    out.resize(size_t(qv::MultiByteToWideChar(qv::CP_UTF8, s.data(), int(s.size()), out.data(), int(out.size()))));
    return out;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::string input(reinterpret_cast<char const *>(data), size);
    size_t split = input.find('\n');
    std::string format = input.substr(0, split);
    std::string text = split == std::string::npos ? std::string() : input.substr(split + 1);
    std::u16string wideText = Widen(text);
    Scan(text, format);
    Scan(wideText, Widen(format));
    char const *end = nullptr;
    qv::c_strtod(text.c_str(), &end);
    if (end < text.c_str() || end > text.c_str() + text.size()) __builtin_trap();
    qv::_wtof(wideText.c_str());
    qv::_wtol(wideText.c_str());
    qv::_wtoi64(wideText.c_str());
    return 0;
}
