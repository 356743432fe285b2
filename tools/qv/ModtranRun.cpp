// qv modtran run TAPE5 [--tool PATH]: runs the MODTRAN tool on a deck and
// prints every column of the table it writes.
#include "Commands.h"
#include "ModtranFiles.h"
#include "qv/filesystems/PathAlgebra.h"
#include "qv/modtran/RunModtran.h"

namespace qvtool {

int RunModtranRun(char *const *args) {
    char const *tool = GivenOptions().tool;
    qv::CModtranTape5File tape5;
    if (!LoadTape5(args[0], tape5)) return kExitFailed;
    if (tool && !qv::SetModtranExePath(qv::CString(tool))) return Fail("no tool at %s", tool);
    qv::CModtranTape7File tape7;
    qv::CString path = qv::GetModtranExePath();
    if (!qv::RunModtran(tape5, tape7, qv::CModtranTape7File::T7C_FREQ))
        return Fail("the MODTRAN run of %s with %s failed", args[0], path.GetUTF8());
    char16_t directory[qv::CPathAlgebra::PathBufferSize];
    qv::CPathAlgebra::GetDirectory(directory, path, qv::CPathAlgebra::PathBufferSize);
    qv::CString table = qv::CPathAlgebra::MakePath(qv::CString(directory), qv::CString(u"tape7"), u'/');
    if (!LoadWholeTape7(table.GetUTF8(), tape7)) return kExitFailed;
    PrintTape7(stdout, tape7, false);
    return 0;
}

} // namespace qvtool
