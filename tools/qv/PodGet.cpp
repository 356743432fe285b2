// qv pod get FILE ROW COLUMN: one cell's text; COLUMN is a number or a name.
#include <cstdio>

#include "Commands.h"
#include "Output.h"
#include "PodFiles.h"
#include "qv/core/String.h"

namespace qvtool {

int RunPodGet(char *const *args) {
    qv::CPODFile pod;
    if (!OpenPod(args[0], pod)) return kExitFailed;
    uint32_t row = 0, col = 0;
    if (!PodCell(pod, args[1], args[2], row, col)) return kExitFailed;
    char16_t const *value = pod.GetValue(col, row);
    if (!value) return CannotReadRow(pod, row, args[0]);
    std::printf("%s\n", PodText(value).c_str());
    return FinishStandardOutput() ? 0 : kExitFailed;
}

} // namespace qvtool
