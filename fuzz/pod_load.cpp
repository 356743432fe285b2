// Loads any bytes as a POD table (as a SAF-headed table, and failing that as
// plain delimited text) and reads every column and cell: nothing may overrun,
// and a table that loads must answer for every cell it counts (a cell it
// cannot read answers with its reason).
#include <cstdint>
#include <cstdlib>
#include <string>

#include "qv/filesystems/MemFileSystem.h"
#include "qv/tables/PODFile.h"

namespace {

constexpr uint32_t kCellBudget = 200000; // keeps one input's work bounded

// The reasons a counted cell may give no value: it is longer than a cell
// holds, or not UTF-8 text; either would be saved back changed.
bool CellUnreadable(qv::CPODFile &pod) {
    static constexpr char16_t kTooLong[] = u"A cell of the table is longer than 255 characters.";
    static constexpr char16_t kNotUtf8[] = u"A cell of the table is not UTF-8 text.";
    return std::char_traits<char16_t>::compare(pod.GetError(), kTooLong, sizeof kTooLong / 2) == 0 ||
           std::char_traits<char16_t>::compare(pod.GetError(), kNotUtf8, sizeof kNotUtf8 / 2) == 0;
}

void ReadEverything(qv::CPODFile &pod) {
    uint32_t const rows = pod.nDPs(), columns = pod.nParams();
    for (uint32_t col = 0; col < columns; ++col) {
        char16_t const *name = nullptr, *cls = nullptr, *unit = nullptr, *type = nullptr;
        if (!pod.GetColumnInfo(col, &name, &cls, &unit, &type) || !name || !cls || !unit || !type) std::abort();
    }
    uint32_t budget = kCellBudget;
    for (uint32_t row = 0; row < rows && budget > columns; ++row, budget -= columns)
        for (uint32_t col = 0; col < columns; ++col)
            if (!pod.GetValue(col, row) && !CellUnreadable(pod)) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size > 0x100000) return 0;
    qv::CMemFileSystem fs;
    if (!fs.AddFile(u"/t.pod", data, uint32_t(size))) return 0;
    qv::CPODFile pod;
    if (pod.Load(&fs, u"/t.pod", true) || pod.Load(&fs, u"/t.pod", false)) ReadEverything(pod);
    return 0;
}
