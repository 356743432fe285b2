// The column layouts of tape7 tables, by execution mode and heading. The
// widths are those of the files MODTRAN writes: the radiance tables hold
// nine columns of 11 after the frequency, and the direct-sun table with a
// wide heading holds frequency 8, transmission 8 and two fields of 9.
#include "qv/modtran/Tape7Layouts.h"

namespace qv::modtran_detail {

namespace {

using T7 = CModtranTape7File;

#define QV_TRANSMISSION_COLUMNS(freq, width, logWidth)                                                                 \
    {T7::T7C_FREQ, freq}, {T7::T7C_TOT_TRANS, width}, {T7::T7C_H2O_TRANS, width}, {T7::T7C_CO2P_TRANS, width},          \
        {T7::T7C_O3_TRANS, width}, {T7::T7C_TRACE_TRANS, width}, {T7::T7C_N2_COUNT, width},                            \
        {T7::T7C_H2O_COUNT, width}, {T7::T7C_MOLEC_COUNT, width}, {T7::T7C_AER_TRANS, width},                          \
        {T7::T7C_HNO3_TRANS, width}, {T7::T7C_AERAB_TRANS, width}, {T7::T7C_LOG_TOTAL, logWidth},                      \
        {T7::T7C_CO2_TRANS, width}, {T7::T7C_CO_TRANS, width}, {T7::T7C_CH4_TRANS, width},                             \
        {T7::T7C_N2O_TRANS, width}, {T7::T7C_O2_TRANS, width}, {T7::T7C_NH3_TRANS, width},                             \
        {T7::T7C_NO_TRANS, width}, {T7::T7C_NO2_TRANS, width}, {T7::T7C_SO2_TRANS, width}

#define QV_RADIANCE_COLUMNS(freq)                                                                                      \
    {T7::T7C_FREQ, freq}, {T7::T7C_TOT_TRANS, 11}, {T7::T7C_PTH_THRML, 11}, {T7::T7C_THRML_SCT, 11},                   \
        {T7::T7C_SURF_EMIS, 11}, {T7::T7C_SOL_SCAT, 11}, {T7::T7C_SING_SCAT, 11}, {T7::T7C_GRND_RFLT, 11},             \
        {T7::T7C_DRCT_RFLT, 11}, {T7::T7C_TOTAL_RAD, 11}, {T7::T7C_REF_SOL, 9}, {T7::T7C_SOL_OBS, 9},                  \
        {T7::T7C_DEPTH, 8}

constexpr SColumn cSTColInfo[] = {QV_TRANSMISSION_COLUMNS(6, 6, 6)};
constexpr SColumn cSTColInfo2[] = {QV_TRANSMISSION_COLUMNS(8, 7, 8)};
constexpr SColumn cSTRColInfo[] = {QV_RADIANCE_COLUMNS(7)};
constexpr SColumn cSTRColInfo2[] = {QV_RADIANCE_COLUMNS(8)};
constexpr SColumn cTRColInfo[] = {{T7::T7C_FREQ, 7}, {T7::T7C_TOT_TRANS, 8}, {T7::T7C_SOL_TR, 10}, {T7::T7C_SOLAR, 8}};
constexpr SColumn cTRColInfo2[] = {{T7::T7C_FREQ, 8}, {T7::T7C_TOT_TRANS, 8}, {T7::T7C_SOL_TR, 9}, {T7::T7C_SOLAR, 9}};

template <size_t N> SLayout Layout(SColumn const (&columns)[N]) {
    return {columns, int(N)};
}

} // namespace

bool GetTape7Layout(int mode, bool wide, SLayout &out) {
    switch (mode) {
    case 0: out = wide ? Layout(cSTColInfo2) : Layout(cSTColInfo); return true;
    case 1:
    case 2: out = wide ? Layout(cSTRColInfo2) : Layout(cSTRColInfo); return true;
    case 3: out = wide ? Layout(cTRColInfo2) : Layout(cTRColInfo); return true;
    default: return false;
    }
}

double TAPE7_DATA::*Tape7Field(uint64_t bit) {
    static constexpr struct {
        uint64_t bit;
        double TAPE7_DATA::*field;
    } kFields[] = {{T7::T7C_FREQ, &TAPE7_DATA::freq},
                   {T7::T7C_TOT_TRANS, &TAPE7_DATA::totTrans},
                   {T7::T7C_PTH_THRML, &TAPE7_DATA::pthThrml},
                   {T7::T7C_THRML_SCT, &TAPE7_DATA::thrmlSct},
                   {T7::T7C_SURF_EMIS, &TAPE7_DATA::surfEmis},
                   {T7::T7C_SOL_SCAT, &TAPE7_DATA::solScat},
                   {T7::T7C_SING_SCAT, &TAPE7_DATA::singScat},
                   {T7::T7C_GRND_RFLT, &TAPE7_DATA::grndRflt},
                   {T7::T7C_DRCT_RFLT, &TAPE7_DATA::drctRflt},
                   {T7::T7C_TOTAL_RAD, &TAPE7_DATA::totalRad},
                   {T7::T7C_REF_SOL, &TAPE7_DATA::refSol},
                   {T7::T7C_SOL_OBS, &TAPE7_DATA::solObs},
                   {T7::T7C_DEPTH, &TAPE7_DATA::depth},
                   {T7::T7C_H2O_TRANS, &TAPE7_DATA::h2oTrans},
                   {T7::T7C_CO2P_TRANS, &TAPE7_DATA::co2pTrans},
                   {T7::T7C_O3_TRANS, &TAPE7_DATA::o3Trans},
                   {T7::T7C_TRACE_TRANS, &TAPE7_DATA::traceTrans},
                   {T7::T7C_N2_COUNT, &TAPE7_DATA::n2Count},
                   {T7::T7C_H2O_COUNT, &TAPE7_DATA::h2oCount},
                   {T7::T7C_MOLEC_COUNT, &TAPE7_DATA::molecCount},
                   {T7::T7C_AER_TRANS, &TAPE7_DATA::aerTrans},
                   {T7::T7C_HNO3_TRANS, &TAPE7_DATA::hno3Trans},
                   {T7::T7C_AERAB_TRANS, &TAPE7_DATA::aerabTrans},
                   {T7::T7C_LOG_TOTAL, &TAPE7_DATA::logTotal},
                   {T7::T7C_CO2_TRANS, &TAPE7_DATA::co2Trans},
                   {T7::T7C_CO_TRANS, &TAPE7_DATA::coTrans},
                   {T7::T7C_CH4_TRANS, &TAPE7_DATA::ch4Trans},
                   {T7::T7C_N2O_TRANS, &TAPE7_DATA::n2oTrans},
                   {T7::T7C_O2_TRANS, &TAPE7_DATA::o2Trans},
                   {T7::T7C_NH3_TRANS, &TAPE7_DATA::nh3Trans},
                   {T7::T7C_NO_TRANS, &TAPE7_DATA::noTrans},
                   {T7::T7C_NO2_TRANS, &TAPE7_DATA::no2Trans},
                   {T7::T7C_SO2_TRANS, &TAPE7_DATA::so2Trans},
                   {T7::T7C_SOL_TR, &TAPE7_DATA::solTr},
                   {T7::T7C_SOLAR, &TAPE7_DATA::solar}};
    for (auto const &entry : kFields)
        if (entry.bit == bit) return entry.field;
    return nullptr;
}

} // namespace qv::modtran_detail
