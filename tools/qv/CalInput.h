// The text inputs of `qv cal`: measured points with page settings, and counts
// to convert. Both are comma-separated lines. Blank lines and lines whose
// first non-blank is '#' are skipped; a header line is allowed only before
// the first data line, and only one whose first field is "page". Any other
// line that starts with a letter must be a setting, so a misspelt setting is
// an error, never a skipped header.
//
// Limits: POINTS is read whole and may hold at most 16 MiB (Input.h); COUNTS
// is streamed, so its length is free, but each line holds at most 4096
// bytes. Temperatures lie in kMinCelsius..kMaxCelsius.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "Input.h"
#include "qv/calibration/RCalFile.h"

namespace qvtool {

constexpr double kMinCelsius = -273.15;
constexpr double kMaxCelsius = 1e6; // where Planck's law still computes to full precision
constexpr double kMaxLookupEntries = 100000;

// Builds the pages of cal from a points file:
//   page,temperature,emissivity,counts,reflected,reflected_temperature,
//        reflected_emissivity,reflected_radiance,enabled
// where reflected is none, radiance or temperature (or 0, 1, 2) and enabled
// 1 or 0; and settings lines order,PAGE,N / temporder,PAGE,N /
// lookup,PAGE,START,END,STEP, applied after all points. Pages 0 to 3, each
// one up to the highest named holding points. Every value is checked (a
// temperature above absolute zero, an emissivity in 0..1, finite counts, an
// order the page's points can carry, temporder 1 to 6, a lookup span of at
// most kMaxLookupEntries steps), and each page must have enough enabled
// points for its fit. On failure error says what and where.
bool LoadCalPoints(char const *path, qv::CRCalFile &cal, std::string &error);

struct SCountsRow {
    int page; // -1: every page
    double counts;
    double truth; // NaN when unknown
};

// The counts to convert: a list of numbers ("1200,3400.5") or a file (or -)
// of lines page,counts[,truth], read one row at a time.
class CCountsSource {
public:
    bool Open(char const *text, std::string &error);
    // The next row; false at the end (error empty) or on a failure.
    bool Next(SCountsRow &row, std::string &error);
    std::string const &Name() const { return name_; }

private:
    std::vector<SCountsRow> list_;
    size_t next_ = 0;
    std::unique_ptr<CLineReader> lines_;
    std::string name_;
    bool dataSeen_ = false;
};

} // namespace qvtool
