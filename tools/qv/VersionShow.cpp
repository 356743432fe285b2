// qv version show EXE: the version resource of a Windows executable (PE32 or
// PE32+): the fixed file and product versions, the prerelease flag, every
// string of every table and the translations.
#include <cstdio>

#include "Commands.h"
#include "Input.h"
#include "Output.h"
#include "qv/core/VersionInfo.h"

namespace qvtool {

namespace {

void PrintVersion(char const *label, uint32_t ms, uint32_t ls) {
    std::printf("%s: %u.%u.%u.%u\n", label, ms >> 16, ms & 0xFFFF, ls >> 16, ls & 0xFFFF);
}

} // namespace

bool ExtractVersion(char const *path, qv::CVersionInfo &info) {
    if (!CheckInputFile(path)) return false;
    if (info.Extract(qv::CString(path).GetUTF16())) return true;
    Fail("%s has no readable version resource (it must be a PE32 or PE32+ executable with a well-formed "
         "resource of type 16, id 1)",
         path);
    return false;
}

int RunVersionShow(char *const *args) {
    qv::CVersionInfo info;
    if (!ExtractVersion(args[0], info)) return kExitFailed;
    PrintVersion("file version", info.Value.dwFileVersionMS, info.Value.dwFileVersionLS);
    PrintVersion("product version", info.Value.dwProductVersionMS, info.Value.dwProductVersionLS);
    bool beta = false;
    info.GetBeta(beta);
    std::printf("prerelease: %s\n", beta ? "yes" : "no");
    for (uint32_t t = 0; t < info.stringTables.GetSize(); ++t) {
        qv::VS_STRINGTABLE const &table = info.stringTables[t];
        std::printf("string table %s:\n", Escaped(table.key.GetUTF8()).c_str());
        for (uint32_t s = 0; s < table.strings.GetSize(); ++s)
            std::printf("  %s = %s\n", Escaped(table.strings.GetAt(s).key.GetUTF8()).c_str(),
                        Escaped(table.strings.GetAt(s).value.GetUTF8()).c_str());
    }
    for (uint32_t v = 0; v < info.vars.GetSize(); ++v) {
        qv::VS_VAR const &var = info.vars[v];
        std::printf("%s:", Escaped(var.key.GetUTF8()).c_str());
        for (uint32_t i = 0; i + 1 < var.value.GetSize(); i += 2)
            std::printf(" %04x", unsigned(var.value.GetAt(i) | var.value.GetAt(i + 1) << 8));
        std::printf("\n");
    }
    return 0;
}

} // namespace qvtool
