/// @file
/// Internal to qv/modtran: the column layouts of tape7 tables and the place
/// of each column in TAPE7_DATA.
#pragma once

#include <cstdint>

#include "qv/modtran/ModtranTape7File.h"

namespace qv::modtran_detail {

/// @copydoc Tape7Layouts.h
struct SColumn {
    uint64_t bit; ///< the column's T7C_ bit
    int width;    ///< its width in bytes
};

/// @copydoc Tape7Layouts.h
struct SLayout {
    SColumn const *columns; ///< in file order, from byte 0
    int count;              ///< entries at columns
};

/// The layout of a mode (0 to 3) with a wide ("    FREQ") or narrow heading;
/// false for another mode.
bool GetTape7Layout(int mode, bool wide, SLayout &out);

/// The field of one column bit; null for a bit that names no column.
double TAPE7_DATA::*Tape7Field(uint64_t bit);

} // namespace qv::modtran_detail
