// qv pod show FILE [--rows A:B]: the columns with their unit, class and type,
// the row count, and the cells of rows A to B (B excluded; the first ten
// without --rows), tab-separated.
#include <cstdio>
#include <cstdlib>

#include "Commands.h"
#include "Options.h"
#include "Output.h"
#include "PodFiles.h"

namespace qvtool {

namespace {

bool RowRange(char const *text, uint32_t rows, uint32_t &first, uint32_t &end) {
    char *colon = nullptr, *tail = nullptr;
    unsigned long long a = std::strtoull(text, &colon, 10);
    if (colon == text || *colon != ':') return false;
    unsigned long long b = std::strtoull(colon + 1, &tail, 10);
    if (tail == colon + 1 || *tail || a > b) return false;
    first = uint32_t(a < rows ? a : rows);
    end = uint32_t(b < rows ? b : rows);
    return true;
}

} // namespace

int RunPodShow(char *const *args) {
    qv::CPODFile pod;
    if (!OpenPod(args[0], pod)) return kExitFailed;
    uint32_t first = 0, end = pod.nDPs() < 10 ? pod.nDPs() : 10;
    char const *range = GivenOptions().rows;
    if (range && !RowRange(range, pod.nDPs(), first, end))
        return Fail("--rows takes A:B, two row numbers with A not above B");
    std::printf("rows %u, columns %u\n", pod.nDPs(), pod.nParams());
    for (uint32_t col = 0; col < pod.nParams(); ++col) {
        char16_t const *name, *cls, *unit, *type;
        if (!pod.GetColumnInfo(col, &name, &cls, &unit, &type)) continue;
        std::printf("column %u\t%s\tunit %s\tclass %s\ttype %s\n", col, Escaped(PodText(name)).c_str(),
                    Escaped(PodText(unit)).c_str(), Escaped(PodText(cls)).c_str(), Escaped(PodText(type)).c_str());
    }
    for (uint32_t row = first; row < end; ++row) {
        std::printf("%u", row);
        for (uint32_t col = 0; col < pod.nParams(); ++col) {
            char16_t const *value = pod.GetValue(col, row);
            if (!value) return Fail("cannot read row %u of %s", row, args[0]);
            std::printf("\t%s", Escaped(PodText(value)).c_str());
        }
        std::printf("\n");
    }
    return FinishStandardOutput() ? 0 : kExitFailed;
}

} // namespace qvtool
