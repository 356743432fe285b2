// CTagArray: a plain list of name and value texts.
#include "qv/core/WideChar.h"
#include "qv/formats/tagged/TagFile.h"

namespace qv {

using TAG = CTagArray::TAG;

TAG &TAG::operator=(char16_t const *v) {
    value = v ? v : u"";
    return *this;
}

TAG &TAG::operator=(int v) {
    value.Format(u"%d", v);
    return *this;
}

TAG &TAG::operator=(double v) {
    value.Format(u"%g", v);
    return *this;
}

TAG &CTagArray::operator[](int i) {
    static TAG dummy;
    if (i < 0 || uint32_t(i) > tags.nItems()) return dummy;
    return tags.GetItem(uint32_t(i));
}

TAG &CTagArray::operator[](char16_t const *name) {
    uint32_t i = FindTag(name);
    if (i != UINT32_MAX) return tags.GetItem(i);
    TAG &tag = tags.GetItem(tags.nItems());
    tag.name = name ? name : u"";
    return tag;
}

uint32_t CTagArray::FindTag(char16_t const *name) const {
    for (uint32_t i = 0; i < tags.nItems(); ++i)
        if (_wcsicmp(tags.GetAt(i).name.GetUTF16(), name ? name : u"") == 0) return i;
    return UINT32_MAX;
}

char16_t const *CTagArray::GetTagValue(char16_t const *name) const {
    uint32_t i = FindTag(name);
    if (i == UINT32_MAX) return nullptr;
    char16_t const *value = tags.GetAt(i).value.GetUTF16();
    return value ? value : u"";
}

void CTagArray::SetTagValue(char16_t const *name, char16_t const *value) {
    (*this)[name] = value;
}

void CTagArray::RemoveTag(char16_t const *name) {
    uint32_t i = FindTag(name);
    if (i != UINT32_MAX) tags.Remove(i);
}

} // namespace qv
