// qv modtran table TAPE7 [--csv]: every column of a tape7 table that qv
// reads, row by row.
#include "Commands.h"
#include "ModtranFiles.h"

namespace qvtool {

int RunModtranTable(char *const *args) {
    bool csv = GivenOptions().csv;
    qv::CModtranTape7File tape7;
    if (!LoadWholeTape7(args[0], tape7)) return kExitFailed;
    PrintTape7(stdout, tape7, csv);
    return 0;
}

} // namespace qvtool
