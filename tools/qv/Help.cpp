// qv help [COMMAND]: the list of sub-commands from the command table, or the
// usage of one.
#include <cstdio>
#include <cstring>
#include <string>

#include "Commands.h"

namespace qvtool {

namespace {

std::string OptionsSynopsis(unsigned options) {
    std::string synopsis;
    if ((options & kTakesJson) && (options & kTakesCsv))
        synopsis = " [--json | --csv]";
    else if (options & kTakesJson)
        synopsis = " [--json]";
    else if (options & kTakesCsv)
        synopsis = " [--csv]";
    if (options & kTakesTool) synopsis += " [--tool PATH]";
    if (options & kTakesSave) synopsis += " [--save PATH]";
    if (options & kTakesInc) synopsis += " [--inc PATH]";
    if (options & kTakesRows) synopsis += " [--rows A:B]";
    return synopsis;
}

} // namespace

void PrintSynopsis(Command const &c, std::FILE *out) {
    std::fprintf(out, "%s%s%s%s", c.words, OptionsSynopsis(c.options).c_str(), *c.arguments ? " " : "", c.arguments);
}

void PrintUsage(std::FILE *out) {
    std::fprintf(out, "usage: qv COMMAND [ARGUMENTS]\n       qv --help | --version\n\ncommands:\n");
    CommandTable table = Commands();
    for (int i = 0; i < table.count; ++i) {
        Command const &c = table.rows[i];
        std::fputs("  ", out);
        PrintSynopsis(c, out);
        std::fprintf(out, "\n      %s\n", c.summary);
    }
    std::fprintf(out, "\nA FILE of - is standard input. 'qv help COMMAND' or 'qv COMMAND --help' tells more.\n");
}

void PrintCommandUsage(Command const &c, std::FILE *out) {
    std::fputs("usage: qv ", out);
    PrintSynopsis(c, out);
    std::fprintf(out, "\n%s\n", c.summary);
    if (c.details) std::fprintf(out, "\n%s", c.details);
}

int RunHelp(char *const *args) {
    if (!args[0]) {
        PrintUsage(stdout);
        return 0;
    }
    std::string wanted = args[0];
    for (int i = 1; args[i]; ++i)
        wanted += std::string(" ") + args[i];
    CommandTable table = Commands();
    for (int i = 0; i < table.count; ++i)
        if (wanted == table.rows[i].words) {
            PrintCommandUsage(table.rows[i], stdout);
            return 0;
        }
    std::fprintf(stderr, "qv: no command '%s'; run 'qv help' for the list\n", wanted.c_str());
    return kExitUsage;
}

} // namespace qvtool
