// ReadXYFile: two columns of numbers, one pair a line.
#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/numerics/CurveFiles.h"
#include "qv/numerics/CurveText.h"

namespace qv {

using namespace numerics_detail;

bool ReadXYFile(TArray<double> &x, TArray<double> &y, IFile *file) {
    x.Empty();
    y.Empty();
    if (!file) return false;
    CBulkGrowth growX(x), growY(y);
    char line[kCurveLineBytes];
    IFile::LineOutcome outcome;
    while (file->GetLine(line, kCurveLineBytes, outcome)) {
        if (line[0] == '\0' || line[0] == '#') continue;
        char *cursor = TrimLine(line);
        char *first = NextToken(&cursor, ", \t");
        char *second = NextToken(&cursor, ", \t");
        if (!second) return true;
        x.Add(c_atof(first));
        y.Add(c_atof(second));
    }
    // A failed read is no end of the pairs: a part would pass for the whole.
    return outcome != IFile::LineOutcome::Failed;
}

bool ReadXYFile(TArray<double> &x, TArray<double> &y, IFileSystem *fs, char16_t const *path) {
    std::unique_ptr<IFile> file = OpenCurveFile(fs, path);
    return file && ReadXYFile(x, y, file.get());
}

} // namespace qv
