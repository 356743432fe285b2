// Fuzzes the text parsers of the conversion classes (CGUID::Parse, the
// integer, bool and float Parse/ParseHex forms) and CVariant::FromString on
// the input taken as char16_t text. A parsed identifier must survive its own
// text.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "qv/core/Conversions.h"
#include "qv/core/Variant.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::vector<char16_t> text(size / 2 + 1, u'\0');
    if (size >= 2) std::memcpy(text.data(), data, size / 2 * 2);
    char16_t const *s = text.data();

    qv::GUID g = qv::CGUID::Parse(s);
    if (!(qv::CGUID::Parse(qv::CGUID::ToString(g)) == g)) __builtin_trap();
    qv::CInt8::Parse(s);
    qv::CUInt16::ParseHex(s);
    qv::CInt64::Parse(s);
    qv::CUInt64::ParseHex(s);
    qv::CBool::Parse(s);
    qv::CFlt32::Parse(s);
    qv::CFlt64::ParseHex(s);
    for (uint32_t t = qv::CVariant::Undefined; t <= qv::CVariant::Enum; ++t) {
        qv::CVariant v{qv::CVariant::EType(t)};
        v.AddEnum(u"name", 1);
        v.FromString(s);
        v.ToString();
    }
    return 0;
}
