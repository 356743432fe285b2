// CVariant: the enum value and its name table.
#include "qv/core/IntegerConversions.h"
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

namespace {
char16_t const *TextOf(CString const &s) {
    char16_t const *p = s.GetTChar();
    return p ? p : u"";
}
} // namespace

// A negative index wraps past the count and so reads the default entry.
char16_t const *CVariant::GetEnumName(int i) const {
    return TextOf(enumValues.ConstGetItem(uint32_t(i)).name);
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
    for (uint32_t i = 0; i < enumValues.nItems(); ++i)
        if (enumValues.ConstGetItem(i).value == v) return TextOf(enumValues.ConstGetItem(i).name);
    return u"";
}

int64_t CVariant::GetEnumValueFromName(char16_t const *name) const {
    if (!name) return 0;
    for (uint32_t i = 0; i < enumValues.nItems(); ++i)
        if (wcscmp(TextOf(enumValues.ConstGetItem(i).name), name) == 0) return enumValues.ConstGetItem(i).value;
    return CInt64::Parse(name);
}

void CVariant::setEnumValue(int64_t v) {
    Store(Enum, v);
}

int64_t CVariant::getEnumValue() const {
    return Stored<int64_t>();
}

} // namespace qv
