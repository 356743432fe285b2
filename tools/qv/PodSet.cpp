// qv pod set FILE ROW COLUMN VALUE: changes one cell and saves the table
// whole through a temporary file, so a failed save leaves the old file.
#include "Commands.h"
#include "Input.h"
#include "Output.h"
#include "PodFiles.h"
#include "qv/core/String.h"
#include "qv/filesystems/FileSystem.h"

namespace qvtool {

int RunPodSet(char *const *args) {
    qv::CPODFile pod;
    if (!OpenPod(args[0], pod)) return kExitFailed;
    uint32_t row = 0, col = 0;
    if (!PodCell(pod, args[1], args[2], row, col)) return kExitFailed;
    if (!pod.PutValue(col, row, qv::CString(args[3]).GetUTF16()))
        return Fail("cannot store the value: a cell holds at most 255 characters");
    return SavePod(pod, args[0]) ? 0 : kExitFailed;
}

} // namespace qvtool
