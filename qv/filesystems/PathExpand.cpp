// ExpandRelativePath: a relative path walked item by item from a base.
#include "qv/core/StringFunctions.h"
#include "qv/filesystems/PathAlgebra.h"
#include "qv/filesystems/PathBuilder.h"

namespace qv {

namespace {

// The steps of a relative path: cut at every separator, empty pieces
// included, but a separator at the very end gives no step behind it.
class CRelativeSteps {
public:
    CRelativeSteps(char16_t const *text, size_t length, size_t from)
        : text(text), length(length), next(from), done(from >= length) {}

    bool Next() {
        if (done) return false;
        item = next;
        end = item;
        while (end < length && !CPathAlgebra::IsSeparator(text[end]))
            ++end;
        next = end + 1;
        done = end == length || next == length;
        return true;
    }
    char16_t const *Item() const { return text + item; }
    size_t Length() const { return end - item; }
    bool Is(char16_t const *word) const { return Length() == wcslen(word) && StrNCmp(Item(), word, Length()) == 0; }
    size_t Behind() const { return next; }

private:
    char16_t const *text;
    size_t length;
    size_t next;
    bool done;
    size_t item = 0, end = 0;
};

// "." sets the result back to the anchor whatever was built before it, so
// only the steps behind the last "." matter.
size_t StartBehindLastDot(char16_t const *text, size_t length) {
    size_t start = 0;
    for (CRelativeSteps steps(text, length, 0); steps.Next();)
        if (steps.Is(u".")) start = steps.Behind();
    return start;
}

// Drops the last separator and everything behind the one before it: from a
// text without a trailing separator this climbs two levels ("a/b/c" gives
// "a/"). Existing callers depend on this exact step.
void GoUp(CPathBuilder &out) {
    std::ptrdiff_t last = out.LastSeparatorBefore(out.Length());
    if (last < 0) {
        out.Truncate(0);
        return;
    }
    std::ptrdiff_t before = out.LastSeparatorBefore(size_t(last));
    out.Truncate(before < 0 ? 0 : size_t(before) + 1);
}

} // namespace

// "." goes back to the anchor (base and a separator), not to the text built so
// far: a deliberate oddity that existing callers depend on.
char16_t *CPathAlgebra::ExpandRelativePath(char16_t *dst, char16_t const *base, char16_t const *relative,
                                           char16_t slash, int size) {
    if (size < 1) return dst;
    CStableText steps(relative, dst, size);
    CPathBuilder out(dst, size, base, wcslen(base));
    out.AppendBehindSeparator(u"", 0, slash);
    if (steps.Length() == 0) return dst;
    size_t start = StartBehindLastDot(steps.Text(), steps.Length());
    for (CRelativeSteps step(steps.Text(), steps.Length(), start); step.Next();) {
        if (step.Is(u".."))
            GoUp(out);
        else
            out.AddItem(step.Item(), step.Length(), slash);
    }
    return dst;
}

} // namespace qv
