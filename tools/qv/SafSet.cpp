// qv saf set FILE NAME VALUE: changes or adds one tag and rewrites the header
// in place; the data segment moves only if the header's slack runs out. The
// value shown is the one a new load reads back (a load drops the blanks
// around a value). DATA and saf_padding are no tags to set: the writer makes
// those lines itself, and a value given to them would never be written.
#include <cstdio>
#include <string>

#include "Commands.h"
#include "Output.h"
#include "qv/core/String.h"

namespace qvtool {

namespace {

bool IsStructureTag(char const *name) {
    return qv::CString(name).CompareNoCase(u"DATA") == 0 || qv::CString(name).CompareNoCase(u"saf_padding") == 0;
}

// The value of name as a fresh load of the file reads it; false if the load
// fails, so that no guess is printed as what the file holds.
bool ReadBack(qv::CFile &file, qv::CString const &name, std::string &value) {
    qv::CSAFFile again;
    if (!again.Load(&file)) return false;
    char16_t const *found = again.GetTagValue(name.GetUTF16());
    value = found ? qv::CString(found).GetUTF8() : "";
    return true;
}

} // namespace

int RunSafSet(char *const *args) {
    char const *path = args[0];
    if (!*args[1]) return Fail("a tag name cannot be empty");
    if (IsStructureTag(args[1]))
        return Fail("%s is not a tag one can set: the header writer makes the DATA and saf_padding lines itself",
                    Escaped(args[1]).c_str());
    qv::CString name(args[1]), value(args[2]);
    qv::CFile file;
    qv::CSAFFile saf;
    if (!OpenSaf(path, qv::kOpenExisting | qv::kOpenRead | qv::kOpenWrite, file, saf)) return kExitFailed;
    if (!saf.HeaderEndsAsStated())
        return Fail("%s has a fixed-size header whose HdSize falls inside a line; it cannot be rewritten in place",
                    path);

    char16_t const *old = saf.GetTagValue(name.GetUTF16());
    std::string before = old ? qv::CString(old).GetUTF8() : "";
    bool existed = old != nullptr;
    if (!saf.SetTagValue(name.GetUTF16(), value.GetUTF16()))
        return Fail("cannot store tag '%s': names take no blanks, values no line breaks, a line holds at most "
                    "510 bytes, HdSize holds only auto, and no tag named HdSize can be added",
                    Escaped(args[1]).c_str());
    uint32_t const oldOffset = saf.GetDataPosition();
    uint32_t newOffset = oldOffset;
    if (!saf.Update(&file, newOffset, true)) return Fail("cannot rewrite the header of %s", path);
    file.Flush();
    std::string readBack;
    if (!ReadBack(file, name, readBack)) return Fail("cannot read back the header of %s after rewriting it", path);
    std::string stored = Escaped(readBack);

    if (existed)
        std::printf("%s: '%s' -> '%s'\n", Escaped(args[1]).c_str(), Escaped(before).c_str(), stored.c_str());
    else
        std::printf("%s: added '%s'\n", Escaped(args[1]).c_str(), stored.c_str());
    std::printf("data offset: old %u, new %u\n", oldOffset, newOffset);
    if (oldOffset == newOffset)
        std::printf("data segment stayed at %u\n", oldOffset);
    else
        std::printf("data segment moved from %u to %u\n", oldOffset, newOffset);
    return 0;
}

} // namespace qvtool
