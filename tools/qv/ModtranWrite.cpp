// qv modtran write TAPE5 OUT: reads a deck and writes it back as qv's writer
// lays out the cards ("-" for standard output). A file is replaced whole or
// not at all.
#include <cstring>

#include "Commands.h"
#include "ModtranFiles.h"

namespace qvtool {

int RunModtranWrite(char *const *args) {
    qv::CModtranTape5File tape5;
    if (!LoadTape5(args[0], tape5)) return kExitFailed;
    if (std::strcmp(args[1], "-") != 0) {
        if (!tape5.Save(qv::CString(args[1]))) return Fail("%s: %s", args[1], tape5.GetLastError());
        return 0;
    }
    qv::CMemFile out;
    if (!tape5.Save(out)) return Fail("%s: %s", args[1], tape5.GetLastError());
    if (std::fwrite(out.GetData(), 1, size_t(out.GetSize()), stdout) != size_t(out.GetSize()) || std::fflush(stdout))
        return Fail("cannot write to standard output");
    return 0;
}

} // namespace qvtool
