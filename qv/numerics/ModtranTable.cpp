// ReadModtranFile: the three-column atmosphere table, from wavenumbers to
// microns.
#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveFiles.h"
#include "qv/numerics/CurveText.h"

namespace qv {

using namespace numerics_detail;

namespace {

struct SRow {
    double frequency, transmission, radiance;
};

// Three blank-separated numbers; false if a token is missing.
bool ParseRow(char *text, SRow &row) {
    char *fields[3];
    for (char *&field : fields)
        if (!(field = NextToken(&text, " \t"))) return false;
    row = {c_atof(fields[0]), c_atof(fields[1]), c_atof(fields[2])};
    return true;
}

// Reads the rows after the heading in file order, already converted; false
// at a short row, and for a table that the end of the file (or an overlong
// line) cuts before its "-9999." line: rows of a cut table would pass for
// the whole table. A failed read is false wherever it comes.
bool ReadRows(IFile &file, TArray<double> &x, TArray<double> &y1, TArray<double> &y2) {
    char line[kCurveLineBytes];
    bool inTable = false;
    IFile::LineOutcome outcome;
    while (file.GetLine(line, kCurveLineBytes, outcome)) {
        char *text = TrimLine(line);
        if (*text == '\0') continue;
        if (!inTable) {
            inTable = _strnicmp(text, "FREQ", 4) == 0;
            continue;
        }
        if (std::strncmp(text, "-9999.", 6) == 0) return true;
        SRow row;
        if (!ParseRow(text, row)) return false;
        double f = row.frequency;
        x.Add(10000.0 / f);
        y1.Add(row.transmission);
        y2.Add(row.radiance * (f * f / 10000.0));
    }
    return !inTable && outcome != IFile::LineOutcome::Failed;
}

} // namespace

bool ReadModtranFile(TArray<double> &x, TArray<double> &y1, TArray<double> &y2, IFile *file) {
    x.Empty();
    y1.Empty();
    y2.Empty();
    if (!file) return false;
    bool complete;
    {
        CBulkGrowth growX(x), growY1(y1), growY2(y2);
        complete = ReadRows(*file, x, y1, y2);
    }
    // Each row belongs in front of the ones before it: rising wavelength.
    Reverse(x);
    Reverse(y1);
    Reverse(y2);
    return complete;
}

bool ReadModtranFile(TArray<double> &x, TArray<double> &y1, TArray<double> &y2, IFileSystem *fs, char16_t const *path) {
    std::unique_ptr<IFile> file = OpenCurveFile(fs, path);
    return file && ReadModtranFile(x, y1, y2, file.get());
}

} // namespace qv
