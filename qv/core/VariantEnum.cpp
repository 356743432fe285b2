// CVariant: the enum value and its name table.
#include "qv/core/IntegerConversions.h"
#include "qv/core/TextOrEmpty.h"
#include "qv/core/Variant.h"
#include "qv/core/VariantStorage.h"
#include "qv/core/WideChar.h"

namespace qv {

void CVariant::AddEnum(char16_t const *name, int64_t v) {
    enumValues.Add(SEnumValue{CString(name ? name : u""), v});
}

void CVariant::ClearEnum() {
    enumValues.Empty();
}

int CVariant::GetEnumCount() const {
    return int(enumValues.nItems());
}

// A negative index wraps past the count and so reads the default entry.
char16_t const *CVariant::GetEnumName(int i) const {
    return detail::TextOrEmpty(enumValues.ConstGetItem(uint32_t(i)).name);
}

int64_t CVariant::GetEnumValue(int i) const {
    return enumValues.ConstGetItem(uint32_t(i)).value;
}

void CVariant::GetEnumNames(TArray<CString> &out) const {
    out.Empty();
    for (uint32_t i = 0; i < enumValues.nItems(); ++i)
        out.Add(enumValues.ConstGetItem(i).name);
}

char16_t const *CVariant::GetEnumNameFromValue(int64_t v) const {
    for (uint32_t i = 0; i < enumValues.nItems(); ++i) {
        SEnumValue const &entry = enumValues.ConstGetItem(i);
        if (entry.value == v) return detail::TextOrEmpty(entry.name);
    }
    return u"";
}

int64_t CVariant::GetEnumValueFromName(char16_t const *name) const {
    if (!name) return 0;
    for (uint32_t i = 0; i < enumValues.nItems(); ++i) {
        SEnumValue const &entry = enumValues.ConstGetItem(i);
        if (wcscmp(detail::TextOrEmpty(entry.name), name) == 0) return entry.value;
    }
    return CInt64::Parse(name);
}

void CVariant::setEnumValue(int64_t v) {
    Store(Enum, v);
}

int64_t CVariant::getEnumValue() const {
    return Stored<int64_t>();
}

} // namespace qv
