// CString's pig Latin: each run of ASCII letters is rotated at its first vowel
// and followed by "ay"; everything else is copied.
#include <string_view>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

bool IsVowel(char16_t c) {
    return std::u16string_view(u"aeiouAEIOU").find(c) != std::u16string_view::npos;
}

} // namespace

CString CString::ToPigLatin() const {
    int length = GetLength();
    char16_t const *text = TextOrEmpty();
    CString out{NullTag{}};
    out.Unshare();
    out.Reserve(2 * int64_t(length) + 2, false); // each word adds two units
    out.Assign(u"", 0);
    for (int at = 0; at < length;) {
        if (!IsAsciiLetter(text[at])) {
            out.Append(text + at++, 1);
            continue;
        }
        int end = at, vowel = -1;
        for (; end < length && IsAsciiLetter(text[end]); ++end)
            if (vowel < 0 && IsVowel(text[end])) vowel = end;
        if (vowel < 0) vowel = end;
        out.Append(text + vowel, end - vowel);
        out.Append(text + at, vowel - at);
        out.Append(u"ay", 2);
        at = end;
    }
    return out;
}

CString CString::ToPigLatin(char16_t const *s) {
    return CString(s).ToPigLatin();
}

} // namespace qv
