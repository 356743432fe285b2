#include "qv/core/ResourceId.h"

#include "qv/core/WideChar.h"

namespace qv {

namespace {

// "#" and one to five decimal digits up to 65535; anything else is a name.
bool ParseHashNumber(char16_t const *text, uint16_t &id) {
    if (text[0] != u'#' || text[1] == 0) return false;
    uint32_t value = 0;
    for (char16_t const *p = text + 1; *p; ++p) {
        if (*p < u'0' || *p > u'9' || p - text > 5) return false;
        value = value * 10 + uint32_t(*p - u'0');
    }
    if (value > 0xFFFF) return false;
    id = uint16_t(value);
    return true;
}

} // namespace

SResourceId SResourceId::FromText(char16_t const *text) {
    if (IsIntResource(text)) return Number(uint16_t(reinterpret_cast<uintptr_t>(text)));
    uint16_t id = 0;
    if (ParseHashNumber(text, id)) return Number(id);
    return Name(text);
}

bool SResourceId::Matches(SResourceId const &other) const {
    if (IsNumeric() != other.IsNumeric()) return false;
    return IsNumeric() ? id == other.id : _wcsicmp(name, other.name) == 0;
}

} // namespace qv
