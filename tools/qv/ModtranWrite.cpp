// qv modtran write TAPE5 OUT: reads a deck and writes it back as qv's writer
// lays out the cards ("-" for standard output).
#include <cstring>

#include "Commands.h"
#include "ModtranFiles.h"

namespace qvtool {

int RunModtranWrite(char *const *args) {
    qv::CModtranTape5File tape5;
    if (!LoadTape5(args[0], tape5)) return kExitFailed;
    qv::CMemFile out;
    if (!tape5.Save(out)) return Fail("%s: %s", args[1], tape5.GetLastError());
    bool toStdout = std::strcmp(args[1], "-") == 0;
    if (!toStdout) {
        qv::CString path(args[1]);
        qv::CFile file;
        if (!file.Open(path, 0x08 | 0x20) ||
            file.Write(out.GetData(), uint32_t(out.GetSize())) != uint32_t(out.GetSize()))
            return Fail("cannot write %s", args[1]);
        return 0;
    }
    if (std::fwrite(out.GetData(), 1, size_t(out.GetSize()), stdout) != size_t(out.GetSize()) || std::fflush(stdout))
        return Fail("cannot write to standard output");
    return 0;
}

} // namespace qvtool
