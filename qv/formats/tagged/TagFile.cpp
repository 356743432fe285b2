// The dictionary in memory: sorting, lookup through name patterns, and the
// order of numbered tags.
#include "qv/formats/tagged/TagFile.h"

#include "qv/core/WideChar.h"

namespace qv {

namespace {

int CompareEntries(CTagEntry const *a, CTagEntry const *b) {
    return _wcsicmp(a->GetName(), b->GetName());
}

char16_t const *FindPercent(char16_t const *s) {
    while (*s && *s != u'%') ++s;
    return *s ? s : nullptr;
}

// Walks name along pattern, handing each variable's value to found. False
// when name does not fit.
template <class Found> bool WalkPattern(char16_t const *name, char16_t const *pattern, Found &&found) {
    for (;;) {
        char16_t const *open = FindPercent(pattern);
        if (!open) return _wcsicmp(name, pattern) == 0;
        size_t literal = size_t(open - pattern);
        if (_wcsnicmp(name, pattern, literal) != 0) return false;
        name += literal;
        char16_t const *close = FindPercent(open + 1);
        if (!close) return false;
        int32_t width = iswdigit(open[1]) ? _wtol(open + 1) : 0;
        char16_t const *digits = name;
        if (!iswdigit(*name)) return false;
        if (width >= 1) {
            for (int32_t i = 0; i < width; ++i)
                if (!iswdigit(*name++)) return false;
            if (iswdigit(*name)) return false;
        } else {
            while (iswdigit(*name)) ++name;
        }
        found(_wtol(digits));
        pattern = close + 1;
    }
}

} // namespace

bool CTagFile::MatchesPattern(char16_t const *name, char16_t const *pattern) {
    return WalkPattern(name ? name : u"", pattern ? pattern : u"", [](int32_t) {});
}

void CTagFile::Sort() {
    TArray<CTagEntry>::Sort(CompareEntries);
}

CTagEntry &CTagFile::GetTagEntry(uint32_t i) {
    static CTagEntry fallback;
    if (i < nItems()) return GetItem(i);
    fallback = CTagEntry();
    return fallback;
}

bool CTagFile::AddTagEntry(CTagEntry const &e) {
    for (uint32_t i = 0; i < nItems(); ++i)
        if (_wcsicmp(GetAt(i).GetName(), e.GetName()) == 0) return false;
    return Add(e);
}

bool CTagFile::RemoveTagEntry(uint32_t i) {
    return i >= nItems() || Remove(i);
}

bool CTagFile::FindTag(char16_t const *name, uint32_t &index) const {
    if (!name) return false;
    uint32_t low = 0, high = nItems();
    while (low < high) {
        uint32_t mid = low + (high - low) / 2;
        char16_t const *entry = GetAt(mid).GetName();
        int order = MatchesPattern(name, entry) ? 0 : _wcsicmp(name, entry);
        if (order == 0) {
            index = mid;
            return true;
        }
        if (order < 0) high = mid;
        else low = mid + 1;
    }
    return false;
}

bool CTagFile::IsComment(char16_t const *name) const {
    uint32_t index = 0;
    return FindTag(name, index) && GetAt(index).GetCategory() == CTagEntry::CAT_COMMENT;
}

bool CTagFile::GetVars(char16_t const *name, uint32_t index, TArray<int> &out) const {
    char16_t const *pattern = GetAt(index).GetName();
    if (!FindPercent(pattern)) return true;
    return WalkPattern(name ? name : u"", pattern, [&](int32_t v) { out.Add(v); });
}

int CTagFile::CompareTags(char16_t const *a, char16_t const *b) const {
    uint32_t ia = 0, ib = 0;
    if (!FindTag(a, ia) || !FindTag(b, ib) || ia != ib) return _wcsicmp(a ? a : u"", b ? b : u"");
    TArray<int> va, vb;
    GetVars(a, ia, va);
    GetVars(b, ib, vb);
    for (uint32_t i = va.nItems(); i-- > 0;) {
        int64_t diff = int64_t(va.GetAt(i)) - vb.GetAt(i); // saturated: the values may span all 32 bits
        if (diff != 0) return int(diff < INT32_MIN ? INT32_MIN : diff > INT32_MAX ? INT32_MAX : diff);
    }
    return 0;
}

CTagFile &GetTagFile() {
    static CTagFile dictionary;
    return dictionary;
}

} // namespace qv
