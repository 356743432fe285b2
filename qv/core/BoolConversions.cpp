#include "qv/core/BoolConversions.h"

#include <initializer_list>

#include "qv/core/IntegerConversions.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

bool IsAnyOf(char16_t const *s, std::initializer_list<char16_t const *> words) {
    for (char16_t const *word : words)
        if (_wcsicmp(s, word) == 0) return true;
    return false;
}

} // namespace

bool CBool::Parse(char16_t const *s) {
    if (!s) return false;
    if (IsAnyOf(s, {u"true", u"yes", u"t", u"y"})) return true;
    if (IsAnyOf(s, {u"false", u"no", u"f", u"n"})) return false;
    return CInt64::Parse(s) != 0;
}

bool CBool::ParseHex(char16_t const *s) {
    return CUInt64::ParseHex(s) != 0;
}

CString CBool::ToString(bool v) {
    return CString(v ? u"True" : u"False");
}

CString CBool::ToStringHex(bool v) {
    return CString(v ? u"1" : u"0");
}

} // namespace qv
