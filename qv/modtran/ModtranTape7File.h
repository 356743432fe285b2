/// @file
/// CModtranTape7File: the spectral table that MODTRAN writes (tape7), loaded
/// column by column, by run, or interpolated between runs along the path
/// geometry.
///
/// A file is a block per run: ten header lines (the first holds the
/// execution mode at byte 14, the sixth three geometry numbers at bytes 0, 10
/// and 30, ten wide), a column heading, data rows at fixed columns, and a
/// line starting "-9999." that ends the block. The layout follows the mode
/// and the heading: one starting "    FREQ" (any case) has the wider
/// frequency column. Every run of a file has one mode and one row count.
///
/// Load gives false, with no text, for a file that does not open, a mode that
/// is not 0 to 3, runs of different modes or lengths, columns the layout
/// lacks, columns in the high 32 bits (existing callers never ask Load for
/// those: T7C_SO2_TRANS, T7C_SOL_TR, T7C_SOLAR), and a run whose block ends
/// without its "-9999." line or its whole header (a table cut short, whose
/// last row may be partial), or a file with no run at all. Blank lines
/// between blocks are skipped. Lines are read up to 255 bytes; the rest of a
/// longer line is skipped. Frequencies are always loaded.
///
/// Ownership: the object owns its tables. Threads: one thread at a time.
/// Nothing here throws.
#pragma once

#include <cstdint>

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

class IFile;

/// One row: a double for every column a tape7 can have.
struct TAPE7_DATA {
    /// The column values, in the order of the T7C_ bits (freq is T7C_FREQ,
    /// solar T7C_SOLAR); a column Load was not asked for stays 0.
    ///@{
    double freq, totTrans, pthThrml, thrmlSct, surfEmis, solScat, singScat, grndRflt, drctRflt, totalRad, refSol,
        solObs, depth, h2oTrans, co2pTrans, o3Trans, traceTrans, n2Count, h2oCount, molecCount, aerTrans, hno3Trans,
        aerabTrans, logTotal, co2Trans, coTrans, ch4Trans, n2oTrans, o2Trans, nh3Trans, noTrans, no2Trans, so2Trans,
        solTr, solar;
    ///@}
};

/// @copydoc ModtranTape7File.h
struct TAPE7_RUN {
    TArray<TAPE7_DATA> data; ///< the rows of the run, in file order
    double geometry[3]; ///< the sixth header line: H1, H2 and the range
};

/// @copydoc ModtranTape7File.h
class QV_API CModtranTape7File {
public:
    /// Column bits, one per TAPE7_DATA field in the same order: Load takes a
    /// mask of them, GetData one.
    ///@{
    static constexpr uint64_t T7C_FREQ = 0x1;
    static constexpr uint64_t T7C_TOT_TRANS = 0x2;
    static constexpr uint64_t T7C_PTH_THRML = 0x4;
    static constexpr uint64_t T7C_THRML_SCT = 0x8;
    static constexpr uint64_t T7C_SURF_EMIS = 0x10;
    static constexpr uint64_t T7C_SOL_SCAT = 0x20;
    static constexpr uint64_t T7C_SING_SCAT = 0x40;
    static constexpr uint64_t T7C_GRND_RFLT = 0x80;
    static constexpr uint64_t T7C_DRCT_RFLT = 0x100;
    static constexpr uint64_t T7C_TOTAL_RAD = 0x200;
    static constexpr uint64_t T7C_REF_SOL = 0x400;
    static constexpr uint64_t T7C_SOL_OBS = 0x800;
    static constexpr uint64_t T7C_DEPTH = 0x1000;
    static constexpr uint64_t T7C_H2O_TRANS = 0x2000;
    static constexpr uint64_t T7C_CO2P_TRANS = 0x4000;
    static constexpr uint64_t T7C_O3_TRANS = 0x8000;
    static constexpr uint64_t T7C_TRACE_TRANS = 0x10000;
    static constexpr uint64_t T7C_N2_COUNT = 0x20000;
    static constexpr uint64_t T7C_H2O_COUNT = 0x40000;
    static constexpr uint64_t T7C_MOLEC_COUNT = 0x80000;
    static constexpr uint64_t T7C_AER_TRANS = 0x100000;
    static constexpr uint64_t T7C_HNO3_TRANS = 0x200000;
    static constexpr uint64_t T7C_AERAB_TRANS = 0x400000;
    static constexpr uint64_t T7C_LOG_TOTAL = 0x800000;
    static constexpr uint64_t T7C_CO2_TRANS = 0x1000000;
    static constexpr uint64_t T7C_CO_TRANS = 0x2000000;
    static constexpr uint64_t T7C_CH4_TRANS = 0x4000000;
    static constexpr uint64_t T7C_N2O_TRANS = 0x8000000;
    static constexpr uint64_t T7C_O2_TRANS = 0x10000000;
    static constexpr uint64_t T7C_NH3_TRANS = 0x20000000;
    static constexpr uint64_t T7C_NO_TRANS = 0x40000000;
    static constexpr uint64_t T7C_NO2_TRANS = 0x80000000;
    static constexpr uint64_t T7C_SO2_TRANS = 0x100000000;
    static constexpr uint64_t T7C_SOL_TR = 0x200000000;
    static constexpr uint64_t T7C_SOLAR = 0x400000000;
    ///@}

    CModtranTape7File();
    ~CModtranTape7File();
    CModtranTape7File(CModtranTape7File const &) = delete;
    CModtranTape7File &operator=(CModtranTape7File const &) = delete;

    bool Load(char16_t const *name, uint64_t columns); ///< the file at name on the disk, opened for reading
    bool Load(IFile &file, uint64_t columns); ///< from the file's position
    int nPoints() const;                      ///< rows per run; 0 with no run
    int nRuns() const { return int(runs.GetSize()); } ///< runs loaded; 0 before a load
    /// The columns the file's layout has (0 before a load).
    uint64_t GetColumns() const { return columns; }
    /// The execution mode of the runs, -1 before a load.
    int GetMode() const { return mode; }
    /// The three geometry numbers of a run; false for a run out of range.
    bool GetGeometry(int run, double out[3]) const;
    /// out holds nPoints() doubles. False with no run.
    bool GetFreq(double *out) const;
    /// One column of one run (a negative run is 0). False beyond the last run
    /// or for a bit that names no column.
    bool GetData(double *out, int run, uint64_t column) const;
    /// Interpolated between runs for geometry values a (against the runs' H2)
    /// and b (against their range): freq receives the frequencies, out the
    /// column. Nothing is extrapolated below the table; at or above its top
    /// the top group or run is taken as it is. False with no run, for an
    /// unknown bit, or below the table.
    bool GetData(double *freq, double *out, double a, double b, uint64_t column) const;

private:
    void Free();
    void BuildIndex();
    bool Interpolate(TArray<TAPE7_DATA> &out, TArray<TAPE7_DATA> const &low, TArray<TAPE7_DATA> const &high,
                     double t) const;
    bool Blend(TArray<TAPE7_DATA> &out, TArray<int> const &group, double b) const;

    TArray<TAPE7_RUN *> runs;
    TArray<TArray<int>> index; ///< groups of runs by H2, each by range
    uint64_t columns;
    int mode;
};

} // namespace qv
