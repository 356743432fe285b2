// qv: a command-line tool over the qv library. Dispatches the first words of
// the command line to a sub-command of the table below.
#include <cstdio>
#include <cstring>

#include "Commands.h"

namespace qvtool {

namespace {

Command const kCommands[] = {
    {"help", "", "print this help", RunHelp},
    {"saf show", "FILE", "print the tags of a SAF file, their count and the data offset", RunSafShow},
    {"saf set", "FILE NAME VALUE", "change or add a tag in place and tell whether the data moved", RunSafSet},
    {"band", "FILE CELSIUS", "band, points and blackbody in-band radiance of a response or MODTRAN table", RunBand},
    {"cal", "POINTS RESPONSE ATMOSPHERE COUNTS",
     "fit a calibration to measured points and convert counts to temperatures", RunCal},
    {"date", "TEXT", "print a date text as CDateTime reads it, with its irig and timestamp forms", RunDate},
    {"config get", "STORE PATH", "print one setting of a .ini, .xml or .db file, reg:user or reg:machine", RunConfigGet},
    {"config set", "STORE PATH VALUE", "write one setting (as text) and save the store", RunConfigSet},
    {"config dump", "STORE", "print every setting of a store as PATH=VALUE lines", RunConfigDump},
};

int CountWords(char const *text) {
    int words = 0;
    for (char const *p = text; *p; ++p)
        if (*p != ' ' && (p == text || p[-1] == ' ')) ++words;
    return words;
}

// Whether the command line (after the program name) begins with the words.
bool Matches(char const *words, int argc, char *const *argv) {
    int i = 0;
    for (char const *p = words; *p; ++i) {
        size_t length = std::strcspn(p, " ");
        if (i >= argc || std::strlen(argv[i]) != length || std::strncmp(argv[i], p, length) != 0) return false;
        p += length + (p[length] == ' ');
    }
    return true;
}

} // namespace

CommandTable Commands() {
    return {kCommands, int(sizeof(kCommands) / sizeof(kCommands[0]))};
}

} // namespace qvtool

int main(int argc, char **argv) {
    using namespace qvtool;
    if (argc < 2) {
        PrintUsage(stderr);
        return kExitUsage;
    }
    CommandTable table = Commands();
    for (int i = 0; i < table.count; ++i) {
        Command const &command = table.rows[i];
        if (!Matches(command.words, argc - 1, argv + 1)) continue;
        int used = CountWords(command.words);
        if (argc - 1 - used != CountWords(command.arguments)) {
            std::fprintf(stderr, "usage: qv %s %s\n", command.words, command.arguments);
            return kExitUsage;
        }
        return command.run(argv + 1 + used);
    }
    std::fprintf(stderr, "qv: unknown command '%s'; run 'qv help' for the list\n", argv[1]);
    return kExitUsage;
}
