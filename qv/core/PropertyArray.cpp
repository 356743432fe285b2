#include "qv/core/PropertyArray.h"

#include "qv/core/TextOrEmpty.h"
#include "qv/core/WideChar.h"

namespace qv {

int CPropertyArray::nValues() const {
    return int(nItems());
}

void CPropertyArray::Clear() {
    Empty();
}

int CPropertyArray::FindValue(char16_t const *name) const {
    if (!name) name = u"";
    for (uint32_t i = 0; i < nItems(); ++i)
        if (_wcsicmp(detail::TextOrEmpty(ConstGetItem(i).name), name) == 0) return int(i);
    return -1;
}

char16_t const *CPropertyArray::GetValue(char16_t const *name) const {
    int i = FindValue(name);
    return i < 0 ? u"" : detail::TextOrEmpty(ConstGetItem(uint32_t(i)).value);
}

void CPropertyArray::SetValue(char16_t const *name, char16_t const *value) {
    if (!value) value = u"";
    int i = FindValue(name);
    if (i >= 0)
        data[i].value = value;
    else
        Add(ENTRY{CString(name ? name : u""), CString(value)});
}

CPropertyArray::CEntry CPropertyArray::operator[](char16_t const *name) {
    return CEntry(this, name);
}

CPropertyArray::CEntry CPropertyArray::operator[](int i) {
    return CEntry(this, detail::TextOrEmpty(ConstGetItem(uint32_t(i)).name));
}

} // namespace qv
