// CString's Split and Join.
#include "qv/core/String.h"
#include "qv/core/WideChar.h"

namespace qv {

// The text after the last delimiter is always a piece, so "" gives one empty
// piece and a trailing delimiter an empty last one.
int CString::Split(TArray<CString> &out, char16_t const *delims) const {
    out.Empty();
    int start = 0;
    for (int cut = FindChar(start, delims); cut >= 0; cut = FindChar(start, delims)) {
        out.Add(SubString(start, cut - start));
        start = cut + 1;
    }
    out.Add(SubString(start, -1));
    return int(out.nItems());
}

int CString::Split(char16_t const *s, TArray<CString> &out, char16_t const *delims) {
    return CString(s).Split(out, delims);
}

CString CString::Join(TArray<CString> const &parts, char16_t const *sep) {
    int64_t sepLength = sep ? int64_t(wcslen(sep)) : 0, total = 0;
    for (uint32_t i = 0; i < parts.nItems(); ++i)
        total += int64_t(wcslen(parts.GetAt(i).TextOrEmpty())) + (i ? sepLength : 0);
    CString joined{NullTag{}};
    joined.Unshare();
    joined.Reserve(total, false);
    joined.Assign(u"", 0);
    for (uint32_t i = 0; i < parts.nItems(); ++i) {
        if (i) joined.Append(sep, sepLength);
        char16_t const *part = parts.GetAt(i).TextOrEmpty();
        joined.Append(part, int64_t(wcslen(part)));
    }
    return joined;
}

} // namespace qv
