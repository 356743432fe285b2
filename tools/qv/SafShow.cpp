// qv saf show FILE: every tag as "name = value", the tag count, the data offset.
#include <cstdio>

#include "Commands.h"

namespace qvtool {

int RunSafShow(char *const *args) {
    qv::CFile file;
    qv::CSAFFile saf;
    if (!OpenSaf(args[0], 0x02 | 0x10 | 0x200, file, saf)) return kExitFailed;
    for (uint32_t i = 0; i < saf.nTags(); ++i) {
        std::printf("%s =", saf[i].name.GetUTF8());
        char const *value = saf[i].value.GetUTF8();
        std::printf(*value ? " %s\n" : "\n", value);
    }
    std::printf("tags: %u\ndata offset: %u\n", saf.nTags(), saf.GetDataPosition());
    return 0;
}

} // namespace qvtool
