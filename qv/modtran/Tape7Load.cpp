// CModtranTape7File::Load: header, layout and rows of each run.
#include <cstring>
#include <new>

#include "qv/core/WideChar.h"
#include "qv/files/File.h"
#include "qv/modtran/LineReader.h"
#include "qv/modtran/ModtranTape7File.h"
#include "qv/modtran/Tape7Layouts.h"

namespace qv {

using namespace modtran_detail;

namespace {

constexpr int kHeaderLines = 10;

struct SWanted {
    int start, width;
    double TAPE7_DATA::*field;
};

bool IsBlank(char const *line) {
    while (*line == ' ' || *line == '\t') ++line;
    return *line == '\0';
}

bool IsEndOfRun(char const *line) {
    while (*line == ' ' || *line == '\t') ++line;
    return std::strncmp(line, "-9999.", 6) == 0;
}

class CTape7Reader {
public:
    CTape7Reader(IFile &file, uint64_t wanted) : lines(file, kTableBytes), wanted(wanted | CModtranTape7File::T7C_FREQ) {}

    enum EResult { kRun, kEnd, kFailed };

    // One run's block into run; kEnd at the end of the file.
    EResult ReadRun(TAPE7_RUN &run, int &mode, uint64_t &mask) {
        do // blank lines between blocks, or at the end, are no block
            if (!lines.Next()) return lines.Failed() ? kFailed : kEnd;
        while (IsBlank(lines.Line()));
        char digit = lines.Letter(14);
        if (digit < '0' || digit > '3') return kFailed;
        int runMode = digit - '0';
        for (int i = 1; i < kHeaderLines; ++i) {
            if (!lines.Next()) return kFailed; // a header cut short
            if (i == 5)
                for (int k = 0; k < 3; ++k)
                    run.geometry[k] = lines.Double(k == 2 ? 30 : 10 * k, 10);
        }
        if (mode >= 0 && runMode != mode) return kFailed;
        mode = runMode;
        if (!lines.Next()) return kFailed;
        bool wide = _strnicmp(lines.Line(), "    FREQ", 8) == 0;
        lines.PushBack();
        SLayout layout;
        if (!GetTape7Layout(mode, wide, layout) || !Choose(layout, mask)) return kFailed;
        if (mode == 0 && !lines.Next()) return kFailed;
        if (!lines.Next() || !lines.Next()) return kFailed;
        while (!IsEndOfRun(lines.Line())) {
            if (!run.data.Add(Row())) return kFailed;
            if (!lines.Next()) return kFailed; // no "-9999.": the table was cut short
        }
        return kRun;
    }

private:
    // The columns of the layout that were asked for; the first run's mask.
    bool Choose(SLayout const &layout, uint64_t &mask) {
        uint64_t layoutMask = 0;
        count = 0;
        int start = 0;
        for (int i = 0; i < layout.count; ++i) {
            SColumn const &column = layout.columns[i];
            layoutMask |= column.bit;
            if (wanted & column.bit) columns[count++] = {start, column.width, Tape7Field(column.bit)};
            start += column.width;
        }
        if (mask == 0) {
            mask = layoutMask;
            if ((wanted & ~layoutMask) != 0 || (wanted >> 32) != 0) return false;
        }
        return layoutMask == mask;
    }

    TAPE7_DATA Row() {
        TAPE7_DATA row{};
        for (int i = 0; i < count; ++i)
            row.*columns[i].field = lines.Double(columns[i].start, columns[i].width);
        return row;
    }

    CLineReader lines;
    uint64_t wanted;
    SWanted columns[40];
    int count = 0;
};

} // namespace

bool CModtranTape7File::Load(IFile &file, uint64_t wanted) {
    Free();
    CTape7Reader reader(file, wanted);
    while (true) {
        auto *run = new (std::nothrow) TAPE7_RUN();
        if (!run) return false;
        run->data.SetGrowthRate(4096);
        CTape7Reader::EResult result = reader.ReadRun(*run, mode, columns);
        if (result != CTape7Reader::kRun || !runs.Add(run)) {
            delete run;
            if (result == CTape7Reader::kEnd) break;
            Free();
            return false;
        }
    }
    for (int i = 1; i < nRuns(); ++i)
        if (runs[uint32_t(i)]->data.GetSize() != runs[0u]->data.GetSize()) {
            Free();
            return false;
        }
    if (nRuns() == 0) {
        Free();
        return false;
    }
    BuildIndex();
    return true;
}

bool CModtranTape7File::Load(char16_t const *name, uint64_t wanted) {
    Free();
    CFile file;
    if (!file.Open(name, 0x02 | 0x10 | 0x100 | 0x200)) return false;
    return Load(file, wanted);
}

} // namespace qv
