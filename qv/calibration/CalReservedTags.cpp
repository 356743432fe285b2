// The tag names that the include file of a calibration writes itself.
#include "qv/calibration/RCalFile.h"
#include "qv/filesystems/Path.h"

namespace qv {

namespace {

char16_t const *const kFileTags[] = {u"HdSize", u"CAFile", u"Group", u"SBPUp", u"SBPLo", u"IHFOV", u"IVFOV", u"SltRng"};
char16_t const *const kPageTags[] = {u"TPFact", u"BgType", u"BgFile", u"BgValu", u"PolyOrder", u"TempPolyOrder"};
char16_t const *const kPageSuffixes[] = {u"", u"_0", u"_1", u"_2", u"_3"};

} // namespace

bool CRCalFile::IsReservedTagName(char16_t const *name) {
    if (!name) return false;
    for (char16_t const *tag : kFileTags)
        if (CString::CompareNoCase(name, tag) == 0) return true;
    for (char16_t const *tag : kPageTags)
        for (char16_t const *suffix : kPageSuffixes)
            if (CString::CompareNoCase(name, CString(tag) + suffix) == 0) return true;
    return path::WildcardMatch(u"Coeff?|Coeff?_0|Coeff?_1|Coeff?_2|Coeff?_3", name) ||
           path::WildcardMatch(u"TempCoeff?|TempCoeff?_0|TempCoeff?_1|TempCoeff?_2|TempCoeff?_3", name);
}

} // namespace qv
