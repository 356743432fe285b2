// qv saf set FILE NAME VALUE: changes or adds one tag and rewrites the header
// in place; the data segment moves only if the header's slack runs out.
#include <cstdio>

#include "Commands.h"
#include "qv/core/String.h"

namespace qvtool {

int RunSafSet(char *const *args) {
    char const *path = args[0];
    qv::CString name(args[1]), value(args[2]);
    qv::CFile file;
    qv::CSAFFile saf;
    if (!OpenSaf(path, 0x02 | 0x10 | 0x20, file, saf)) return kExitFailed;
    if (!saf.HeaderEndsAsStated())
        return Fail("%s has a fixed-size header whose HdSize falls inside a line; it cannot be rewritten in place",
                    path);

    char16_t const *old = saf.GetTagValue(name.GetUTF16());
    qv::CString before(old ? old : u"");
    bool existed = old != nullptr;
    if (!saf.SetTagValue(name.GetUTF16(), value.GetUTF16()))
        return Fail("cannot store tag '%s': names take no blanks, values no line breaks, a line holds at most "
                    "510 bytes, HdSize holds only auto, and no tag named HdSize, DATA or saf_padding can be added",
                    args[1]);
    uint32_t const oldOffset = saf.GetDataPosition();
    uint32_t newOffset = oldOffset;
    if (!saf.Update(&file, newOffset, true)) return Fail("cannot rewrite the header of %s", path);
    file.Flush();

    if (existed)
        std::printf("%s: '%s' -> '%s'\n", args[1], before.GetUTF8(), args[2]);
    else
        std::printf("%s: added '%s'\n", args[1], args[2]);
    std::printf("data offset: old %u, new %u\n", oldOffset, newOffset);
    if (oldOffset == newOffset)
        std::printf("data segment stayed at %u\n", oldOffset);
    else
        std::printf("data segment moved from %u to %u\n", oldOffset, newOffset);
    return 0;
}

} // namespace qvtool
