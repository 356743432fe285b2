// Fuzzes the path algebra on arbitrary char16_t text: WildcardMatch and every
// buffer form writing into heap blocks of exactly 512 units, and the CString
// forms, which must never cut and must agree with the item comparisons.
// NUL units in the input split it into up to three texts.
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/filesystems/Path.h"
#include "qv/filesystems/PathAlgebra.h"

namespace {

using qv::CPathAlgebra;
using qv::CString;

constexpr int kSize = CPathAlgebra::PathBufferSize;

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

char16_t const *After(char16_t const *text) {
    return text + qv::wcslen(text) + 1;
}

// A result written into the block must end inside it.
void Check(char16_t const *result) {
    Require(qv::wcslen(result) < size_t(kSize));
}

void BufferForms(char16_t const *a, char16_t const *b, char16_t const *c) {
    std::unique_ptr<char16_t[]> block(new char16_t[kSize]);
    char16_t *out = block.get();
    Check(CPathAlgebra::ConvertSlashes(out, a, kSize, u'\\'));
    Check(CPathAlgebra::GetFilename(out, a));
    Check(CPathAlgebra::RemoveExtension(out, a));
    Check(CPathAlgebra::GetDirectory(out, a));
    Check(CPathAlgebra::MakePath(out, a, b, u'/'));
    Check(CPathAlgebra::MakePath(out, out, c, u'\\'));
    Check(CPathAlgebra::MakeFilename(out, a, b));
    Check(CPathAlgebra::ExpandRelativePath(out, a, b, u'/'));
    Check(CPathAlgebra::ExpandRelativePath(out, out, c, u'/'));
    Check(CPathAlgebra::RemoveTrailingSlash(out, a));
    Check(CPathAlgebra::AppendTrailingSlash(out, u'/'));
    Check(CPathAlgebra::AppendLeadingSlash(out, u'\\'));
    Check(CPathAlgebra::RemoveLeadingSlash(out));
    Check(CPathAlgebra::AppendLeadingSlash(out, b, u'/'));
    Check(CPathAlgebra::GetFirstPathItem(out, a));
    Check(CPathAlgebra::RelativePath(out, a, b));
    Check(CPathAlgebra::RelativePath(out, c, out));
    CPathAlgebra::WildcardMatch(a, b);
    CPathAlgebra::WildcardMatch(c, a);
}

// The CString forms size their blocks for the whole result.
void StringForms(CString const &a, CString const &b) {
    CString expanded = qv::path::ExpandRelativePath(a, b, u'/');
    int roomy = 3 * (a.GetLength() + b.GetLength()) + 16;
    std::vector<char16_t> reference(static_cast<size_t>(roomy));
    CPathAlgebra::ExpandRelativePath(reference.data(), a.GetUTF16(), b.GetUTF16(), u'/', roomy);
    Require(expanded.Equals(reference.data()));
    CString relative = qv::path::RelativePath(a, b);
    CPathAlgebra::RelativePath(reference.data(), a.GetUTF16(), b.GetUTF16(), roomy);
    Require(relative.Equals(reference.data()));

    CString joined = qv::path::MakePath(a, u"x", u'/');
    Require(qv::path::InDirectory(a, joined) && qv::path::IsChildOfDirectory(a, joined));
    Require(qv::path::IsSamePath(a, qv::path::ConvertSlashes(a, u'\\')));
    Require(qv::path::ChangeExtension(a, u"").Equals(qv::path::RemoveExtension(a)));
    Require(qv::path::WildcardMatch(u"*", b));
    qv::path::WildcardMatch(a, b);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    std::vector<char16_t> text(size / 2 + 3, u'\0');
    if (size >= 2) std::memcpy(text.data(), data, size / 2 * 2);
    char16_t const *a = text.data(), *b = After(a), *c = After(b);
    BufferForms(a, b, c);
    StringForms(CString(a), CString(b));
    bool plain = qv::wcslen(b) > 0 && qv::wcslen(b) < size_t(kSize);
    for (char16_t const *p = b; plain && *p != 0; ++p)
        plain = *p != u'*' && *p != u'?' && *p != u'|';
    if (plain) Require(CPathAlgebra::WildcardMatch(b, b));
    return 0;
}
