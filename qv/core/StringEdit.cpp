// CString's in-place edits: Delete, Insert, Replace, Truncate.
#include <algorithm>
#include <cstring>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

void MoveUnits(char16_t *to, char16_t const *from, int64_t n) {
    if (n > 0) std::memmove(to, from, size_t(n) * sizeof(char16_t));
}

} // namespace

int CString::Delete(int pos, int n) {
    Unshare();
    int64_t length = rep->length, capacity = rep->capacity;
    if (pos >= length || n < 1 || pos < 0) return rep->length;
    // Clamped against the capacity, not the length, as existing callers see it.
    int64_t count = std::min<int64_t>(n, capacity - pos);
    MoveUnits(rep->text + pos, rep->text + pos + count, capacity - pos - count + 1);
    rep->length = int32_t(std::max<int64_t>(length - count, 0));
    return rep->length;
}

int CString::Insert(int pos, char16_t const *s, int n) {
    int64_t count = !s ? 0 : n < 0 ? int64_t(wcslen(s)) : n;
    if (Aliases(s)) return Insert(pos, Detached(s, count).rep->text, int(count));
    Unshare();
    int64_t length = rep->length;
    if (pos > length || pos < 0) return rep->length;
    Grow(length + count);
    // The tail moves up as far as the buffer reaches; it holds the terminator.
    MoveUnits(rep->text + pos + count, rep->text + pos, rep->capacity - pos - count + 1);
    MoveUnits(rep->text + pos, s, count);
    rep->length = int32_t(length + count);
    return rep->length;
}

int CString::Insert(int pos, char16_t c) {
    return Insert(pos, &c, 1);
}

int CString::Replace(int pos, int n, char16_t const *s, int m) {
    int64_t with = !s ? 0 : m < 0 ? int64_t(wcslen(s)) : m;
    if (Aliases(s)) return Replace(pos, n, Detached(s, with).rep->text, int(with));
    Unshare();
    int64_t length = rep->length;
    if (pos >= length || n < 1 || pos < 0) return rep->length;
    int64_t cut = std::min<int64_t>(n, length - pos);
    Grow(length - cut + with);
    MoveUnits(rep->text + pos + with, rep->text + pos + cut, length - pos - cut + 1);
    MoveUnits(rep->text + pos, s, with);
    rep->length = int32_t(length - cut + with);
    return rep->length;
}

int CString::Replace(char16_t const *find, char16_t const *with, bool caseSensitive) {
    if (!find || !*find) return 0;
    CString findCopy{NullTag{}}, withCopy{NullTag{}};
    if (Aliases(find)) find = findCopy = Detached(find, wcslen(find));
    if (Aliases(with)) with = withCopy = Detached(with, wcslen(with));
    int findLength = int(wcslen(find)), withLength = with ? int(wcslen(with)) : 0;
    int replaced = 0;
    for (int at = FindString(0, find, caseSensitive); at >= 0; at = FindString(at + withLength, find, caseSensitive)) {
        Replace(at, findLength, with, withLength);
        ++replaced;
    }
    return replaced;
}

bool CString::Truncate(int n) {
    Unshare();
    if (n < 0 || n >= rep->length) return false;
    rep->text[n] = 0;
    rep->length = n;
    return true;
}

} // namespace qv
