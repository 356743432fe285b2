/// @file
/// Internal to qv/modtran: rules of the tape5 cards that the reader and the
/// writer share.
#pragma once

#include "qv/modtran/ModtranRun.h"

namespace qv {

class CModtranTape5File;

namespace modtran_detail {

/// The spectra that a region's count stands for (1 stands for 47; another
/// count needs the "USS" flag), or -1 with the owner's error text set.
int SpectraOfRegion(CModtranTape5File &owner, RUN const &run, int region);

/// "d.dddE+xx" with the given decimals, correctly rounded, into a ring of 32
/// static buffers, so that one format call can hold many of them. One thread.
char const *FormatScientific(double value, int decimals);

} // namespace modtran_detail
} // namespace qv
