// qv modtran write TAPE5 OUT: reads a deck and writes it back as qv's writer
// lays out the cards ("-" for standard output). A file is replaced whole or
// not at all; OUT may be TAPE5 itself, which then takes qv's layout.
#include "Commands.h"
#include "ModtranFiles.h"
#include "Output.h"

namespace qvtool {

int RunModtranWrite(char *const *args) {
    qv::CModtranTape5File tape5;
    if (!LoadTape5(args[0], tape5)) return kExitFailed;
    qv::CMemFile out;
    if (!tape5.Save(out)) return Fail("%s: %s", args[1], tape5.GetLastError());
    return CopyToOutput(out, args[1]) ? 0 : kExitFailed;
}

} // namespace qvtool
