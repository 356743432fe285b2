// The texts of the dictionary's enumerations, as files hold them.
#include "qv/core/WideChar.h"
#include "qv/formats/tagged/TagFile.h"

namespace qv {

namespace {

template <size_t N> struct Texts {
    char16_t const *items[N];
};

constexpr Texts<CTagEntry::DATA_TYPE_COUNT> kDataTypes{{u"Text", u"Int16", u"Int32", u"Flt32", u"Flt64"}};
constexpr Texts<CTagEntry::TEXT_VALUES_MODE_COUNT> kTextValuesModes{
    {u"Disabled", u"Use As Bounds", u"Use As Suggestions"}};
constexpr Texts<CTagEntry::CATEGORY_COUNT> kCategories{
    {u"Misc Tags", u"File Info", u"Classification Info", u"Mission Info", u"Time Info", u"EUD Info",
     u"Sensor Info", u"Target Info", u"Instrument Info", u"Referenced Files", u"Impact/Launch Info",
     u"Uncertainty Info", u"Imager Tags", u"Data Tags", u"Active Source Tags", u"Atmospheric Tags", u"MSX Tags",
     u"Comment Tags"}};
constexpr Texts<CTagEntry::LOCATION_COUNT> kLocations{{u"Header", u"Include", u"Default"}};
constexpr Texts<CTagEntry::WRITE_MODE_COUNT> kWriteModes{
    {u"Prompt For Update", u"Change Current Only", u"Change All", u"Read Only"}};
// "Milimeters" and "Milibar" are spelled as existing files have them.
constexpr Texts<CTagEntry::UNITS_COUNT> kUnits{
    {u"None", u"Years", u"Days", u"Hours", u"Minutes", u"Seconds", u"Degrees", u"Meters", u"Meters/Second",
     u"Microns", u"Microradians", u"Klbf", u"Percent", u"Milimeters", u"Hertz", u"Kelvin", u"Gram/Cubic Meter",
     u"Milibar", u"Parts/Million", u"Kilometers"}};

template <size_t N> char16_t const *ToText(Texts<N> const &t, int v) {
    return t.items[v >= 0 && size_t(v) < N ? v : 0];
}

template <size_t N, class E> bool FromText(Texts<N> const &t, char16_t const *s, E &v) {
    for (size_t i = 0; i < N; ++i) {
        if (_wcsicmp(t.items[i], s ? s : u"") != 0) continue;
        v = E(i);
        return true;
    }
    v = E(0);
    return false;
}

template <size_t N, class E> E FromText(Texts<N> const &t, char16_t const *s) {
    E v;
    FromText(t, s, v);
    return v;
}

} // namespace

using E = CTagEntry;

char16_t const *E::DataTypeToStr(int v) { return ToText(kDataTypes, v); }
char16_t const *E::TextValuesModeToStr(int v) { return ToText(kTextValuesModes, v); }
char16_t const *E::CategoryToStr(int v) { return ToText(kCategories, v); }
char16_t const *E::LocationToStr(int v) { return ToText(kLocations, v); }
char16_t const *E::WriteModeToStr(int v) { return ToText(kWriteModes, v); }
char16_t const *E::UnitsToStr(int v) { return ToText(kUnits, v); }
bool E::StrToDataType(char16_t const *s, DATA_TYPE &v) { return FromText(kDataTypes, s, v); }
bool E::StrToTextValuesMode(char16_t const *s, TEXT_VALUES_MODE &v) { return FromText(kTextValuesModes, s, v); }
bool E::StrToCategory(char16_t const *s, CATEGORY &v) { return FromText(kCategories, s, v); }
bool E::StrToLocation(char16_t const *s, LOCATION &v) { return FromText(kLocations, s, v); }
bool E::StrToWriteMode(char16_t const *s, WRITE_MODE &v) { return FromText(kWriteModes, s, v); }
bool E::StrToUnits(char16_t const *s, UNITS &v) { return FromText(kUnits, s, v); }
E::DATA_TYPE E::StrToDataType(char16_t const *s) { return FromText<DATA_TYPE_COUNT, DATA_TYPE>(kDataTypes, s); }
E::TEXT_VALUES_MODE E::StrToTextValuesMode(char16_t const *s) {
    return FromText<TEXT_VALUES_MODE_COUNT, TEXT_VALUES_MODE>(kTextValuesModes, s);
}
E::CATEGORY E::StrToCategory(char16_t const *s) { return FromText<CATEGORY_COUNT, CATEGORY>(kCategories, s); }
E::LOCATION E::StrToLocation(char16_t const *s) { return FromText<LOCATION_COUNT, LOCATION>(kLocations, s); }
E::WRITE_MODE E::StrToWriteMode(char16_t const *s) { return FromText<WRITE_MODE_COUNT, WRITE_MODE>(kWriteModes, s); }
E::UNITS E::StrToUnits(char16_t const *s) { return FromText<UNITS_COUNT, UNITS>(kUnits, s); }

} // namespace qv
