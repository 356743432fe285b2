// The text inputs of `qv cal`: measured points with page settings, and counts
// to convert. Both are comma-separated lines; '#' lines and a header line
// (one that starts with a letter and is no setting) are skipped.
#pragma once

#include <string>
#include <vector>

#include "qv/calibration/RCalFile.h"

namespace qvtool {

// Builds the pages of cal from a points file:
//   page,temperature,emissivity,counts,reflected,reflected_temperature,
//        reflected_emissivity,reflected_radiance,enabled
// where reflected is none, radiance or temperature (or 0, 1, 2) and enabled
// 1 or 0; and settings lines order,PAGE,N / temporder,PAGE,N /
// lookup,PAGE,START,END,STEP, applied after all points. Pages are added as
// their numbers appear (at most four). On failure error says what and where.
bool LoadCalPoints(char const *path, qv::CRCalFile &cal, std::string &error);

struct SCountsRow {
    int page; // -1: every page
    double counts;
    double truth; // NaN when unknown
};

// COUNTS is a list of numbers ("1200,3400.5") or a file of lines
// page,counts[,truth]. On failure error says what and where.
bool LoadCounts(char const *text, std::vector<SCountsRow> &rows, std::string &error);

} // namespace qvtool
