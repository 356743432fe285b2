// qv pod export [--csv] FILE: the column names, then every row, as CSV on
// standard output (the only form, so --csv may be left out) (a field with a comma, quote or line break is quoted, its
// quotes doubled).
#include <cstdio>
#include <string>

#include "Commands.h"
#include "Output.h"
#include "PodFiles.h"

namespace qvtool {

namespace {

void PutCsvField(std::string const &text, bool first) {
    if (!first) std::fputc(',', stdout);
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        std::fputs(text.c_str(), stdout);
        return;
    }
    std::string quoted = "\"";
    for (char c : text)
        quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    std::fputs((quoted + "\"").c_str(), stdout);
}

} // namespace

int RunPodExport(char *const *args) {
    qv::CPODFile pod;
    if (!OpenPod(args[0], pod)) return kExitFailed;
    for (uint32_t col = 0; col < pod.nParams(); ++col) {
        char16_t const *name = nullptr;
        pod.GetColumnInfo(col, &name, nullptr, nullptr, nullptr);
        PutCsvField(PodText(name), col == 0);
    }
    std::fputs("\r\n", stdout);
    for (uint32_t row = 0; row < pod.nDPs(); ++row) {
        if (pod.nDPs() > 1000000 && row % 1000000 == 0) std::fprintf(stderr, "qv: row %u of %u\n", row, pod.nDPs());
        for (uint32_t col = 0; col < pod.nParams(); ++col) {
            char16_t const *value = pod.GetValue(col, row);
            if (!value) return CannotReadRow(pod, row, args[0]);
            PutCsvField(PodText(value), col == 0);
        }
        std::fputs("\r\n", stdout);
    }
    return FinishStandardOutput() ? 0 : kExitFailed;
}

} // namespace qvtool
