// qv modtran show TAPE5 [--json]: each run of a deck with its main settings
// and its cards, named, as qv writes them.
#include <cstring>

#include "Commands.h"
#include "ModtranFiles.h"

namespace qvtool {

namespace {

// A JSON string: quotes, backslashes and control bytes escaped.
void PrintJsonString(char const *text) {
    std::putchar('"');
    for (char const *p = text; *p; ++p) {
        unsigned char c = static_cast<unsigned char>(*p);
        if (c == '"' || c == '\\')
            std::printf("\\%c", c);
        else if (c < 0x20)
            std::printf("\\u%04x", c);
        else
            std::putchar(c);
    }
    std::putchar('"');
}

struct SSetting {
    char const *name;
    double value;
};

void PrintRun(int index, qv::RUN const &run, qv::TArray<qv::CString> &names, qv::TArray<qv::CString> &lines,
              bool json) {
    SSetting const settings[] = {
        {"atmosphere_model", double(run.atmosphereModel)},
        {"los_path", double(run.losPath)},
        {"los_type", double(run.losType)},
        {"execution_mode", double(run.executionMode)},
        {"h1", run.h1},
        {"h2", run.h2},
        {"angle", run.angle},                      {"range", run.range},      {"start", run.start},
        {"end", run.end},                          {"step", run.step},        {"fwhm", run.fwhm},
    };
    char model[2] = {char(run.bandModel), 0};
    if (json) {
        std::printf("%s{\"run\": %d, \"band_model\": ", index ? ", " : "", index);
        PrintJsonString(model);
        for (SSetting const &s : settings)
            std::printf(", \"%s\": %.9g", s.name, s.value);
        std::printf(", \"cards\": [");
        for (uint32_t i = 0; i < names.GetSize(); ++i) {
            std::printf("%s{\"card\": ", i ? ", " : "");
            PrintJsonString(names[i].GetUTF8());
            std::printf(", \"text\": ");
            PrintJsonString(lines[i].GetUTF8());
            std::printf("}");
        }
        std::printf("]}");
        return;
    }
    std::printf("run %d\n  band_model = %s\n", index, model);
    for (SSetting const &s : settings)
        std::printf("  %s = %.9g\n", s.name, s.value);
    for (uint32_t i = 0; i < names.GetSize(); ++i)
        std::printf("  card %-4s |%s|\n", names[i].GetUTF8(), lines[i].GetUTF8());
}

} // namespace

int RunModtranShow(char *const *args) {
    bool json = GivenOptions().json;
    qv::CModtranTape5File tape5;
    if (!LoadTape5(args[0], tape5)) return kExitFailed;
    if (json) std::printf("{\"runs\": [");
    for (int run = 0; run < tape5.nRuns(); ++run) {
        qv::TArray<qv::CString> names, lines;
        tape5.UseRun(run);
        qv::RUN shown;
        qv::CModtranTape5File::CopyRun(shown, *tape5.GetRun()); // as read, before the writer clears geometry
        if (!tape5.GetCards(names, lines)) return Fail("%s: %s", args[0], tape5.GetLastError());
        PrintRun(run, shown, names, lines, json);
    }
    if (json) std::printf("]}\n");
    return 0;
}

} // namespace qvtool
