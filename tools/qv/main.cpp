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
    {"modtran show", "TAPE5 [--json]", "print each run of a MODTRAN deck and its cards, named", RunModtranShow},
    {"modtran write", "TAPE5 OUT", "read a MODTRAN deck and write it back as qv lays out its cards", RunModtranWrite},
    {"modtran run", "TAPE5 [--tool PATH]", "run the MODTRAN tool on a deck and print its tape7 table",
     RunModtranRun},
    {"modtran table", "TAPE7 [--csv]", "print the columns of a MODTRAN tape7 table", RunModtranTable},
    {"version show", "EXE", "print the version resource of a Windows executable (PE32 or PE32+)", RunVersionShow},
    {"version set", "EXE NAME VALUE",
     "stamp a version string, Version (a.b.c.d) or Beta (yes/no) into a Windows executable in place",
     RunVersionSet},
    {"sbf show", "FILE", "print a structured binary file's identifier, strings and element tree", RunSbfShow},
    {"xml show", "FILE", "print the node tree of an XML file as the library reads it", RunXmlShow},
    {"tags show", "FILE", "print a tag dictionary (binary TAGF, SBF or XML), one entry a line", RunTagsShow},
    {"tags convert", "IN OUT", "convert a tag dictionary to the form OUT's extension names (.xml, .sbf, else TAGF)",
     RunTagsConvert},
    {"cdfs list", "FILE", "list the files of a CDFS composite: size, offset, capacity, path", RunCdfsList},
    {"cdfs add", "FILE PATH", "store a disk file (- for standard input) in a CDFS, made when missing", RunCdfsAdd},
    {"cdfs extract", "FILE NAME OUT", "copy the file NAME out of a CDFS into OUT (- for standard output)", RunCdfsExtract},
    {"cdfs check", "FILE", "walk the table of a CDFS and say what is wrong, or ok", RunCdfsCheck},
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

// Words of an argument list outside [brackets]: the ones a command needs.
int CountRequiredWords(char const *text) {
    int words = 0, depth = 0;
    for (char const *p = text; *p; ++p) {
        depth += (*p == '[') - (*p == ']');
        if (*p != ' ' && *p != ']' && depth == 0 && (p == text || p[-1] == ' ')) ++words;
    }
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
        int given = argc - 1 - used;
        if (given < CountRequiredWords(command.arguments) || given > CountWords(command.arguments)) {
            std::fprintf(stderr, "usage: qv %s %s\n", command.words, command.arguments);
            return kExitUsage;
        }
        return command.run(argv + 1 + used);
    }
    std::fprintf(stderr, "qv: unknown command '%s'; run 'qv help' for the list\n", argv[1]);
    return kExitUsage;
}
