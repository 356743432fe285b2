// qv cal convert [--csv] FILE COUNTS: converts counts to temperatures with a
// saved calibration (an RCAL or include file), as `qv cal` does with the one
// it builds: CSV to standard output, then the calibration's summary to
// standard error unless --csv. Nothing is converted unless every page has usable fits.
#include <cstdio>
#include <cstring>
#include <string>

#include "CalFiles.h"
#include "Commands.h"

namespace qvtool {

int RunCalConvert(char *const *args) {
    if (std::strcmp(args[0], "-") == 0 && std::strcmp(args[1], "-") == 0)
        return Fail("only one input can be standard input (-)");
    qv::CRCalFile cal;
    SCalFile file;
    std::string error;
    if (!LoadCalFile(args[0], cal, file, error)) return Fail("%s", error.c_str());
    CCountsSource counts;
    if (!counts.Open(args[1], error)) return Fail("%s", error.c_str());
    if (int failed = CheckCalPages(cal)) return failed;
    // The summary follows a conversion that worked, so that a failure is
    // one sentence on standard error.
    if (int failed = ConvertCounts(cal, counts)) return failed;
    if (!GivenOptions().csv) {
        std::fprintf(stderr, "calibration: %s, RCAL revision %d\n", file.calPath.c_str(), cal.FileRevision);
        PrintCalSummary(cal, stderr);
    }
    return 0;
}

} // namespace qvtool
