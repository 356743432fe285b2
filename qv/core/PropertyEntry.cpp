// CPropertyArray::CEntry: typed reads and writes of one named property.
#include "qv/core/PropertyArray.h"
#include "qv/core/WideChar.h"
#include "qv/core/WideScan.h"

namespace qv {

using CEntry = CPropertyArray::CEntry;

CEntry::CEntry(CPropertyArray *array, char16_t const *name) : array(array), name(name ? name : u"") {}

CEntry::operator char16_t const *() const {
    return array->GetValue(name);
}
CEntry::operator int() const {
    return _wtol(array->GetValue(name));
}
CEntry::operator double() const {
    return _wtof(array->GetValue(name));
}
CEntry::operator int64_t() const {
    return _wtoi64(array->GetValue(name));
}

CEntry::operator void *() const {
    uint64_t address = 0;
    swscanf(array->GetValue(name), u"0x%I64x", &address);
    return reinterpret_cast<void *>(static_cast<uintptr_t>(address));
}

bool CEntry::Exists() const {
    return array->FindValue(name) >= 0;
}

CEntry &CEntry::operator=(char16_t const *v) {
    array->SetValue(name, v);
    return *this;
}

CEntry &CEntry::operator=(int v) {
    return *this = CString::FromFormat(u"%d", v).GetTChar();
}
CEntry &CEntry::operator=(int64_t v) {
    return *this = CString::FromFormat(u"%I64d", v).GetTChar();
}
CEntry &CEntry::operator=(double v) {
    return *this = CString::FromFormat(u"%f", v).GetTChar();
}

CEntry &CEntry::operator=(void *v) {
    constexpr int kDigits = 2 * sizeof(void *);
    uint64_t address = reinterpret_cast<uintptr_t>(v);
    return *this = CString::FromFormat(u"0x%0*I64X", kDigits, address).GetTChar();
}

CEntry &CEntry::operator=(CEntry const &other) {
    return *this = static_cast<char16_t const *>(other);
}

} // namespace qv
