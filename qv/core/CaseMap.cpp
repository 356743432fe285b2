// towlower/towupper: the one-to-one Unicode case mappings of the whole BMP
// (Latin, Greek, Coptic, Cyrillic, Armenian, Georgian, Cherokee, Glagolitic,
// full-width forms and the rest), never depending on the process locale.
// Characters whose case mapping needs several characters, surrogates and
// characters outside the BMP map to themselves.
#include <algorithm>
#include <iterator>

#include "qv/core/CaseMapTable.h"
#include "qv/core/WideChar.h"

namespace qv {

namespace {

template <size_t N> char16_t Apply(detail::CaseRule const (&rules)[N], char16_t c) {
    auto rule = std::upper_bound(std::begin(rules), std::end(rules), c,
                                 [](char16_t v, detail::CaseRule const &r) { return v < r.first; });
    if (rule == std::begin(rules)) return c;
    --rule;
    if (c > rule->last || (rule->stride == 2 && ((c - rule->first) & 1))) return c;
    return static_cast<char16_t>(c + rule->delta);
}

} // namespace

char16_t towlower(char16_t c) {
    if (c < 0x80) return c >= u'A' && c <= u'Z' ? char16_t(c + 0x20) : c;
    return Apply(detail::kLowerRules, c);
}

char16_t towupper(char16_t c) {
    if (c < 0x80) return c >= u'a' && c <= u'z' ? char16_t(c - 0x20) : c;
    return Apply(detail::kUpperRules, c);
}

} // namespace qv
