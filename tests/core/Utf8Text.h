// Test helper: UTF-16 text as UTF-8, so expectations read naturally and
// failures print legibly.
#pragma once

#include <string>

#include "qv/core/CodePage.h"
#include "qv/core/WideChar.h"

inline std::string Utf8(char16_t const *text, size_t length) {
    if (!length) return {};
    std::string out(size_t(length) * 3, '\0');
    int n = qv::WideCharToMultiByte(qv::CP_UTF8, text, int(length), out.data(), int(out.size()));
    out.resize(size_t(n));
    return out;
}

inline std::string Utf8(std::u16string const &text) {
    return Utf8(text.data(), text.size());
}
