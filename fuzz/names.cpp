// Parsers of names over arbitrary text: ParsePixelType, CompletePath and
// FullDiskPath, both SplitPath forms, and LcidFromLocaleName. The input is
// taken as char16_t units for the wide parsers and as bytes for the locale
// name; NUL units split it into a base and a path.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "qv/core/Array.h"
#include "qv/core/LanguageTags.h"
#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/Path.h"
#include "qv/filesystems/PathAlgebra.h"
#include "qv/numerics/PixelType.h"
#include "qv/platform/FullPath.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::vector<char16_t> units(size / 2 + 2, u'\0');
    std::memcpy(units.data(), data, size / 2 * 2);
    char16_t const *first = units.data();
    char16_t const *second = first + qv::wcslen(first) + 1;
    if (second > units.data() + units.size() - 1) second = units.data() + units.size() - 1;

    qv::ParsePixelType(first);

    qv::CString completed = qv::CompletePath(first, second);
    // A completed path names no "." or ".." item and has no doubled separator.
    Require(std::u16string(completed.GetUTF16()).find(u"//") == std::u16string::npos);
    qv::CString full;
    if (qv::FullDiskPath(second, full)) Require(full.GetLength() > 0);

    qv::TArray<qv::CString> items;
    int n = qv::CPathAlgebra::SplitPath(items, first);
    Require(n == int(items.GetSize()));
    qv::TArray<qv::CString> more;
    int m = qv::path::SplitPath(more, qv::CString(second));
    Require(m == int(more.GetSize()));
    for (uint32_t i = 0; i < items.GetSize(); ++i)
        Require(items.GetAt(i).GetLength() > 0);

    std::string name(reinterpret_cast<char const *>(data), size); // up to its first NUL
    qv::LcidFromLocaleName(name.c_str());
    return 0;
}
