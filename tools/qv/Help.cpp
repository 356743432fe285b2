// qv help: the list of sub-commands, from the command table.
#include <cstdio>

#include "Commands.h"

namespace qvtool {

void PrintUsage(std::FILE *out) {
    std::fprintf(out, "usage: qv COMMAND [ARGUMENTS]\n\ncommands:\n");
    CommandTable table = Commands();
    for (int i = 0; i < table.count; ++i) {
        Command const &c = table.rows[i];
        char synopsis[128];
        std::snprintf(synopsis, sizeof(synopsis), "%s %s", c.words, c.arguments);
        std::fprintf(out, "  %-26s %s\n", synopsis, c.summary);
    }
}

int RunHelp(char *const *) {
    PrintUsage(stdout);
    return 0;
}

} // namespace qvtool
