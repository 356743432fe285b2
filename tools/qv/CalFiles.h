// Saved calibrations for `qv cal show` and `qv cal convert`: an RCAL file
// (".cal") or an include file (a SAF header whose "CAFile" tag names the
// RCAL file beside it), and the checks and conversion that `qv cal` uses.
#pragma once

#include <cstdio>
#include <string>

#include "CalInput.h"
#include "qv/calibration/RCalFile.h"

namespace qvtool {

// A saved file is read whole; beyond this it is refused (background images
// make the largest files).
constexpr size_t kMaxCalFile = size_t(256) << 20;

struct SCalFile {
    bool include = false; // FILE was an include file
    std::string calPath;  // the RCAL file read (FILE itself, or the one named)
};

// Loads FILE (or - for standard input) into cal. On failure error says why:
// an unreadable input, an include file without "CAFile", or an RCAL file the
// library refuses.
bool LoadCalFile(char const *path, qv::CRCalFile &cal, SCalFile &file, std::string &error);

// The response, the atmosphere and each page: both polynomials with R^2,
// the calibrated range, the lookup and the fit error over it.
void PrintCalSummary(qv::CRCalFile &cal, std::FILE *out);

// Every page must have usable fits before anything is converted: prints the
// failure and returns non-zero otherwise.
int CheckCalPages(qv::CRCalFile &cal);

// Builds cal as `qv cal` does from POINTS, RESPONSE and ATMOSPHERE (see
// CalCommand.cpp) and checks its pages; non-zero after printing the failure.
int BuildCalibration(char const *points, char const *response, char const *atmosphere, qv::CRCalFile &cal);

// Converts each row of counts through both polynomials of its page (every
// page for rows without one) and writes CSV to standard output:
//   page,counts,radiance,celsius,in_range,truth,error
int ConvertCounts(qv::CRCalFile &cal, CCountsSource &source);

} // namespace qvtool
