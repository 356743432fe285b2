// CVariant in a settings store: its type, its value and an enum's table as keys.
#include "qv/config/IConfigStore.h"
#include "qv/core/IntegerConversions.h"
#include "qv/core/Variant.h"

namespace qv {

bool CVariant::Save(IConfigStore &store) const {
    store.SetString(u"Type", TypeToString(getType()));
    store.SetString(u"Value", ToString());
    if (getType() != Enum) return true;
    store.cdin(u"EnumValues");
    store.SetDWORD(u"Count", uint32_t(GetEnumCount()));
    for (int i = 0; i < GetEnumCount(); ++i) {
        store.cdin(u"[%03d]", i);
        store.SetString(u"Name", GetEnumName(i));
        store.SetString(u"Value", CInt64::ToString(GetEnumValue(i)));
        store.cdout();
    }
    store.cdout();
    return true;
}

bool CVariant::Load(IConfigStore &store) {
    Destroy();
    setType(ParseType(store.GetString(u"Type", TypeToString(getType()))));
    if (getType() == Enum) {
        store.cdin(u"EnumValues");
        // The count comes from the store: no more entries than it holds.
        TArray<CString> entries;
        store.list(entries, u".");
        uint32_t count = std::min(store.GetDWORD(u"Count", 0), entries.GetSize());
        for (uint32_t i = 0; i < count; ++i) {
            store.cdin(u"[%03d]", int(i));
            CString name = store.GetString(u"Name", u"");
            AddEnum(name, CInt64::Parse(store.GetString(u"Value", u"0")));
            store.cdout();
        }
        store.cdout();
    }
    FromString(store.GetString(u"Value", ToString()));
    return true;
}

} // namespace qv
