// Shared inputs and the table printer of the qv modtran commands.
#include "ModtranFiles.h"

#include <charconv>
#include <cstring>
#include <vector>

#include "Commands.h"
#include "Output.h"
#include "qv/core/String.h"

namespace qvtool {

namespace {

using T7 = qv::CModtranTape7File;

struct SColumnName {
    uint64_t bit;
    char const *name;
};

// In the order of the tables MODTRAN writes.
constexpr SColumnName kColumnNames[] = {
    {T7::T7C_FREQ, "FREQ"},           {T7::T7C_TOT_TRANS, "TOT_TRANS"},   {T7::T7C_PTH_THRML, "PTH_THRML"},
    {T7::T7C_THRML_SCT, "THRML_SCT"}, {T7::T7C_SURF_EMIS, "SURF_EMIS"},   {T7::T7C_SOL_SCAT, "SOL_SCAT"},
    {T7::T7C_SING_SCAT, "SING_SCAT"}, {T7::T7C_GRND_RFLT, "GRND_RFLT"},   {T7::T7C_DRCT_RFLT, "DRCT_RFLT"},
    {T7::T7C_TOTAL_RAD, "TOTAL_RAD"}, {T7::T7C_REF_SOL, "REF_SOL"},       {T7::T7C_SOL_OBS, "SOL_OBS"},
    {T7::T7C_DEPTH, "DEPTH"},         {T7::T7C_H2O_TRANS, "H2O_TRANS"},   {T7::T7C_CO2P_TRANS, "CO2P_TRANS"},
    {T7::T7C_O3_TRANS, "O3_TRANS"},   {T7::T7C_TRACE_TRANS, "TRACE_TRANS"}, {T7::T7C_N2_COUNT, "N2_COUNT"},
    {T7::T7C_H2O_COUNT, "H2O_COUNT"}, {T7::T7C_MOLEC_COUNT, "MOLEC_COUNT"}, {T7::T7C_AER_TRANS, "AER_TRANS"},
    {T7::T7C_HNO3_TRANS, "HNO3_TRANS"}, {T7::T7C_AERAB_TRANS, "AERAB_TRANS"}, {T7::T7C_LOG_TOTAL, "LOG_TOTAL"},
    {T7::T7C_CO2_TRANS, "CO2_TRANS"}, {T7::T7C_CO_TRANS, "CO_TRANS"},     {T7::T7C_CH4_TRANS, "CH4_TRANS"},
    {T7::T7C_N2O_TRANS, "N2O_TRANS"}, {T7::T7C_O2_TRANS, "O2_TRANS"},     {T7::T7C_NH3_TRANS, "NH3_TRANS"},
    {T7::T7C_NO_TRANS, "NO_TRANS"},   {T7::T7C_NO2_TRANS, "NO2_TRANS"},   {T7::T7C_SO2_TRANS, "SO2_TRANS"},
    {T7::T7C_SOL_TR, "SOL_TR"},       {T7::T7C_SOLAR, "SOLAR"},
};

// The shortest text that reads back as the same double.
void PrintNumber(std::FILE *out, double value, char const *before, int width) {
    char text[32];
    auto end = std::to_chars(text, text + sizeof text - 1, value).ptr;
    *end = '\0';
    std::fprintf(out, "%s%*s", before, width, text);
}

} // namespace

bool LoadTape5(char const *path, qv::CModtranTape5File &tape5) {
    qv::CMemFile file;
    if (!ReadInput(path, file)) return false;
    if (!tape5.Load(file)) return Fail("%s: %s", InputName(path).c_str(), Escaped(tape5.GetLastError()).c_str()) == 0;
    return true;
}

bool LoadWholeTape7(char const *path, qv::CModtranTape7File &tape7) {
    qv::CMemFile file;
    if (!ReadInput(path, file)) return false;
    // The first load finds the layout; the second takes all it may.
    if (!tape7.Load(file, T7::T7C_FREQ)) return Fail("%s is no tape7 table qv can read", InputName(path).c_str()) == 0;
    file.Seek(0, 1);
    if (!tape7.Load(file, tape7.GetColumns() & 0xFFFFFFFFu))
        return Fail("%s: table does not load", InputName(path).c_str()) == 0;
    return true;
}

void PrintTape7(std::FILE *out, qv::CModtranTape7File const &tape7, bool csv) {
    std::vector<SColumnName> columns;
    for (SColumnName const &column : kColumnNames)
        if (tape7.GetColumns() & column.bit & 0xFFFFFFFFu) columns.push_back(column);
    bool runs = tape7.nRuns() > 1;
    int width = csv ? 0 : 12;
    char const *separator = csv ? "," : " ";
    if (runs) std::fprintf(out, csv ? "RUN" : "%4s", "RUN");
    for (size_t c = 0; c < columns.size(); ++c)
        std::fprintf(out, "%s%*s", c || runs ? separator : "", width, columns[c].name);
    std::fprintf(out, "\n");
    size_t points = size_t(tape7.nPoints());
    std::vector<std::vector<double>> values(columns.size(), std::vector<double>(points));
    for (int run = 0; run < tape7.nRuns(); ++run) {
        for (size_t c = 0; c < columns.size(); ++c)
            tape7.GetData(values[c].data(), run, columns[c].bit);
        for (size_t i = 0; i < points; ++i) {
            if (runs) std::fprintf(out, csv ? "%d" : "%4d", run);
            for (size_t c = 0; c < columns.size(); ++c)
                PrintNumber(out, values[c][i], c || runs ? separator : "", width);
            std::fprintf(out, "\n");
        }
    }
}

} // namespace qvtool
