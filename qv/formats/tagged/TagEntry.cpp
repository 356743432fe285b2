// One dictionary entry: its accessors and its binary "TAGF" form.
#include "qv/core/FloatToInt.h"
#include "qv/files/IFile.h"
#include "qv/formats/tagged/TagFile.h"

namespace qv {

namespace {

constexpr uint16_t kTypeFlags[] = {0x0001, 0x0002, 0x0004, 0x0008, 0x0010};
constexpr uint16_t kIntegerTypes = 0x0006;
// No flt32 bit: existing files hold no bounds for flt32 entries.
constexpr uint16_t kDoubleTypes = 0x0090;
constexpr uint16_t kBounds = 0x2000;
constexpr uint16_t kSuggestions = 0x4000;
constexpr uint16_t kAsBounds = 0x8000;
constexpr uint16_t kTextModes = kSuggestions | kAsBounds;
constexpr uint32_t kCodePage1252 = 1252;

uint16_t FlagsOf(CTagEntry::DATA_TYPE type, bool bounds, CTagEntry::TEXT_VALUES_MODE mode) {
    uint16_t flags = kTypeFlags[unsigned(type) < CTagEntry::DATA_TYPE_COUNT ? type : 0];
    if (bounds) flags |= kBounds;
    if (mode == CTagEntry::TVM_USE_AS_BOUNDS) flags |= kAsBounds;
    if (mode == CTagEntry::TVM_USE_AS_SUGGESTIONS) flags |= kSuggestions;
    if (flags & kTextModes) flags |= kTypeFlags[0];
    return flags;
}

CTagEntry::DATA_TYPE TypeOf(uint16_t flags) {
    if (flags & 0x0010) return CTagEntry::DT_FLT64;
    if (flags & 0x0008) return CTagEntry::DT_FLT32;
    if (flags & 0x0004) return CTagEntry::DT_INT32;
    if (flags & 0x0002) return CTagEntry::DT_INT16;
    return CTagEntry::DT_TEXT;
}

CTagEntry::TEXT_VALUES_MODE ModeOf(uint16_t flags) {
    if (flags & kAsBounds) return CTagEntry::TVM_USE_AS_BOUNDS;
    if (flags & kSuggestions) return CTagEntry::TVM_USE_AS_SUGGESTIONS;
    return CTagEntry::TVM_DISABLED;
}

// A byte of a newer version; absent in older files, where it reads as absent.
bool GetVersionByte(IFile &f, bool present, uint8_t absent, uint8_t &v) {
    v = absent;
    return !present || f.GetBYTE(v);
}

} // namespace

void CTagEntry::SetNumericBounds(bool use, double low, double high) {
    useNumericBounds = use;
    lowBound = low;
    highBound = high;
}

void CTagEntry::GetNumericBounds(bool &use, double &low, double &high) const {
    use = useNumericBounds;
    low = lowBound;
    high = highBound;
}

char16_t const *CTagEntry::GetTextValue(uint32_t i) const {
    return i < textValues.nItems() ? textValues.GetAt(i).GetUTF16() : nullptr;
}

void CTagEntry::AddTextValue(char16_t const *v) {
    textValues.Add(CString(v ? v : u""));
}

void CTagEntry::RemoveTextValue(uint32_t i) {
    if (i < textValues.nItems()) textValues.Remove(i);
}

bool CTagEntry::Save(IFile &f) const {
    uint16_t flags = FlagsOf(dataType, useNumericBounds, textValuesMode);
    bool ok = f.PutString(GetName()) && f.PutWORD(flags) && f.PutString(kCodePage1252, GetDescription()) &&
              f.PutBYTE(uint8_t(category)) && f.PutBYTE(uint8_t(units)) && f.PutBYTE(uint8_t(writeMode)) &&
              f.PutBYTE(uint8_t(location));
    if ((flags & kIntegerTypes) && (flags & kBounds))
        ok = ok && f.PutInt64(FloatToInt<int64_t>(lowBound)) && f.PutInt64(FloatToInt<int64_t>(highBound));
    else if ((flags & kDoubleTypes) && (flags & kBounds))
        ok = ok && f.PutDouble(lowBound) && f.PutDouble(highBound);
    if ((flags & 0x0001) && (flags & kTextModes)) {
        ok = ok && f.PutDWORD(textValues.nItems());
        for (uint32_t i = 0; ok && i < textValues.nItems(); ++i) ok = f.PutString(textValues.GetAt(i).GetUTF16());
    }
    return ok;
}

bool CTagEntry::Load(IFile &f, uint8_t version) {
    *this = CTagEntry();
    uint16_t flags = 0;
    uint8_t cat = 0, unit = 0, write = 0, loc = 0;
    if (!f.GetString(name) || !f.GetWORD(flags) || !f.GetString(kCodePage1252, description)) return false;
    // Version 0 files have no location byte and mean "Include"; 1 and 2 mean "Header".
    if (!GetVersionByte(f, version >= 1, 0, cat) || !GetVersionByte(f, version >= 2, 0, unit) ||
        !GetVersionByte(f, version >= 1, 0, write) || !GetVersionByte(f, version >= 3, version == 0 ? 1 : 0, loc))
        return false;
    dataType = TypeOf(flags);
    textValuesMode = ModeOf(flags);
    useNumericBounds = (flags & kBounds) != 0;
    category = CATEGORY(cat);
    units = UNITS(unit);
    writeMode = WRITE_MODE(write);
    location = LOCATION(loc);
    if ((flags & kIntegerTypes) && (flags & kBounds)) {
        int64_t low = 0, high = 0;
        if (!f.GetInt64(low) || !f.GetInt64(high)) return false;
        lowBound = double(low);
        highBound = double(high);
    } else if ((flags & kDoubleTypes) && (flags & kBounds)) {
        if (!f.GetDouble(lowBound) || !f.GetDouble(highBound)) return false;
    }
    if ((flags & 0x0001) && (flags & kTextModes)) {
        uint32_t count = 0;
        if (!f.GetDWORD(count)) return false;
        for (uint32_t i = 0; i < count; ++i) {
            CString value;
            if (!f.GetString(value) || !textValues.Add(value)) return false;
        }
    }
    return true;
}

} // namespace qv
