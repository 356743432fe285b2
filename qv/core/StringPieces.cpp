// CString's pieces as new strings: substrings and white-space trims.
#include <algorithm>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"

namespace qv {

CString CString::SubString(int pos, int n) const {
    CString piece;
    pos = std::max(pos, 0);
    if (pos < GetLength()) piece.Copy(rep->text + pos, n);
    return piece;
}

CString CString::Mid(int pos, int n) const {
    return SubString(pos, n);
}
CString CString::Left(int n) const {
    return SubString(0, n);
}
CString CString::Right(int n) const {
    return SubString(int(std::max<int64_t>(int64_t(GetLength()) - n, 0)), -1);
}
CString CString::TrimLeft(int n) const {
    return SubString(std::max(n, 0), -1);
}
CString CString::TrimRight(int n) const {
    return SubString(0, int(std::clamp<int64_t>(int64_t(GetLength()) - n, 0, GetLength())));
}

CString CString::LTrim() const {
    CString trimmed;
    if (GetLength() == 0) return trimmed;
    char16_t const *first = rep->text;
    while (iswspace(*first))
        ++first;
    trimmed.Copy(first, -1);
    return trimmed;
}

// Only the last unit is looked at: "ab  " keeps one trailing blank. Existing
// callers depend on this single step.
void CString::TrimLastSpace() {
    int length = GetLength();
    if (length == 0 || !iswspace(rep->text[length - 1])) return;
    rep->text[length - 1] = 0;
    ReleaseBuffer();
}

CString CString::Trim() const {
    CString trimmed = LTrim();
    trimmed.TrimLastSpace();
    return trimmed;
}

CString CString::RTrim() const {
    CString trimmed;
    trimmed.Copy(TextOrEmpty(), -1);
    trimmed.TrimLastSpace();
    return trimmed;
}

} // namespace qv
