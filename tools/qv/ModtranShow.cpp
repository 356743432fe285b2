// qv modtran show TAPE5 [--json]: each run of a deck with its main settings
// and its cards, named, as qv writes them. --json prints one object:
// {"runs": [{"run", "band_model", "atmosphere_model", "los_path", "los_type",
// "execution_mode", "h1", "h2", "angle", "range", "start", "end", "step",
// "fwhm", "cards": [{"card", "text"}...]}...]}.

#include "Commands.h"
#include "ModtranFiles.h"
#include "Output.h"

namespace qvtool {

namespace {

struct SSetting {
    char const *name;
    double value;
};

// One run: as an object of json when it is given, else as text lines.
void PrintRun(int index, qv::RUN const &run, qv::TArray<qv::CString> &names, qv::TArray<qv::CString> &lines,
              CJsonWriter *json) {
    SSetting const settings[] = {
        {"atmosphere_model", double(run.atmosphereModel)},
        {"los_path", double(run.losPath)},
        {"los_type", double(run.losType)},
        {"execution_mode", double(run.executionMode)},
        {"h1", run.h1},
        {"h2", run.h2},
        {"angle", run.angle},
        {"range", run.range},
        {"start", run.start},
        {"end", run.end},
        {"step", run.step},
        {"fwhm", run.fwhm},
    };
    char model[2] = {char(run.bandModel), 0};
    if (json) {
        json->BeginObject();
        json->Integer("run", index);
        json->String("band_model", model);
        for (SSetting const &s : settings)
            json->Number(s.name, s.value);
        json->BeginArray("cards");
        for (uint32_t i = 0; i < names.GetSize(); ++i) {
            json->BeginObject();
            json->String("card", names[i].GetUTF8());
            json->String("text", lines[i].GetUTF8());
            json->EndObject();
        }
        json->EndArray();
        json->EndObject();
        return;
    }
    std::printf("run %d\n  band_model = %s\n", index, model);
    for (SSetting const &s : settings)
        std::printf("  %s = %.9g\n", s.name, s.value);
    for (uint32_t i = 0; i < names.GetSize(); ++i)
        std::printf("  card %-4s |%s|\n", names[i].GetUTF8(), Escaped(lines[i].GetUTF8()).c_str());
}

} // namespace

int RunModtranShow(char *const *args) {
    qv::CModtranTape5File tape5;
    if (!LoadTape5(args[0], tape5)) return kExitFailed;
    CJsonWriter writer(stdout);
    CJsonWriter *json = GivenOptions().json ? &writer : nullptr;
    if (json) {
        json->BeginObject();
        json->BeginArray("runs");
    }
    for (int run = 0; run < tape5.nRuns(); ++run) {
        qv::TArray<qv::CString> names, lines;
        tape5.UseRun(run);
        qv::RUN shown;
        qv::CModtranTape5File::CopyRun(shown, *tape5.GetRun()); // as read, before the writer clears geometry
        if (!tape5.GetCards(names, lines))
            return Fail("%s: %s", InputName(args[0]).c_str(), Escaped(tape5.GetLastError()).c_str());
        PrintRun(run, shown, names, lines, json);
    }
    if (json) {
        json->EndArray();
        json->EndObject();
    }
    return 0;
}

} // namespace qvtool
