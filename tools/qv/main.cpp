// qv: a command-line tool over the qv library. Dispatches the first words of
// the command line to a sub-command of the table below; the options shared by
// every command (--help, --json, --csv, --) are parsed here, once.
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "Commands.h"
#include "Input.h"
#include "Output.h"
#include "qv/core/Version.h"

namespace qvtool {

namespace {

char const kCalDetails[] = "  POINTS      page,temperature,emissivity,counts,reflected,reflected_temperature,\n"
                           "              reflected_emissivity,reflected_radiance,enabled lines, and settings\n"
                           "              order,PAGE,N  temporder,PAGE,N  lookup,PAGE,START,END,STEP\n"
                           "  RESPONSE    an XY response file, or tophat:START:END:STEP (microns)\n"
                           "  ATMOSPHERE  a MODTRAN table (transmission and path radiance), or none\n"
                           "  COUNTS      a file of page,counts[,truth] lines, or a list such as 3000,9000\n"
                           "The fit of each page goes to standard error (--csv leaves it out), the\n"
                           "conversions as CSV to standard output: page,counts,radiance,celsius,in_range,\n"
                           "truth,error. Any one input may be - (standard input).\n"
                           "--save FILE.cal keeps the calibration; --inc FILE.inc writes an include\n"
                           "file and, beside it, the .cal file it names.\n";

char const kBandDetails[] = "FILE is a spectral response (XY lines) or a MODTRAN table (a FREQ heading).\n"
                            "--json prints the summary as one object, --csv the curve as it was read.\n";

Command const kCommands[] = {
    {"help", "[COMMAND...]", "print this help, or the usage of one command", RunHelp},
    {"saf show", "FILE", "print the tags of a SAF file, their count and the data offset", RunSafShow, kTakesJson},
    {"saf set", "FILE NAME VALUE", "change or add a tag in place and tell whether the data moved", RunSafSet,
     kChangesFile},
    {"saf frames", "FILE", "the frames of a SAF image file: size, bits, bytes a frame, data offset, count",
     RunSafFrames, kReadsFileByPath},
    {"saf frame", "FILE N", "print frame N of a SAF image file, one row a line", RunSafFrame,
     kTakesCsv | kReadsFileByPath},
    {"render fit", "FRAMES POINTS RESPONSE ATMOSPHERE PNG TIFF",
     "as render, with a calibration fitted as qv cal fits one", RunRenderFit, kReadsFileByPath},
    // After the one above: the first row whose words match runs.
    {"render", "FRAMES CAL PNG TIFF",
     "first frame of counts (SAF or TIFF) through a saved calibration: false-colour PNG and float TIFF", RunRender,
     kReadsFileByPath},
    {"band", "FILE CELSIUS", "band, points and blackbody in-band radiance of a response or MODTRAN table", RunBand,
     kTakesJson | kTakesCsv, kBandDetails},
    {"cal show", "FILE", "print a saved calibration (.cal or .inc): revision, curves named, fits, ranges, lookup",
     RunCalShow, kTakesJson},
    {"cal convert", "FILE COUNTS", "convert counts to temperatures with a saved calibration (.cal or .inc)",
     RunCalConvert, kTakesCsv},
    // After the two above: the first row whose words match runs.
    {"cal", "POINTS RESPONSE ATMOSPHERE COUNTS",
     "fit a calibration to measured points and convert counts to temperatures", RunCal,
     kTakesCsv | kTakesSave | kTakesInc, kCalDetails},
    {"date", "TEXT", "print a date text as CDateTime reads it, with its irig and timestamp forms", RunDate, kTakesJson},
    {"modtran show", "TAPE5", "print each run of a MODTRAN deck and its cards, named", RunModtranShow, kTakesJson},
    {"modtran write", "TAPE5 OUT", "read a MODTRAN deck and write it back as qv lays out its cards", RunModtranWrite},
    {"modtran run", "TAPE5", "run the MODTRAN tool on a deck and print its tape7 table", RunModtranRun, kTakesTool},
    {"modtran table", "TAPE7", "print the columns of a MODTRAN tape7 table", RunModtranTable, kTakesCsv},
    {"version show", "EXE", "print the version resource of a Windows executable (PE32 or PE32+)", RunVersionShow,
     kReadsFileByPath},
    {"version set", "EXE NAME VALUE",
     "stamp a version string, Version (a.b.c.d) or Beta (yes/no) into a Windows executable in place", RunVersionSet,
     kChangesFile},
    {"sbf show", "FILE", "print a structured binary file's identifier, strings and element tree", RunSbfShow},
    {"xml show", "FILE", "print the node tree of an XML file as the library reads it", RunXmlShow, kTakesJson},
    {"tags show", "FILE", "print a tag dictionary (binary TAGF, SBF or XML), one entry a line", RunTagsShow,
     kTakesJson},
    {"tags convert", "IN OUT", "convert a tag dictionary to the form OUT's extension names (.xml, .sbf, else TAGF)",
     RunTagsConvert},
    {"cdfs list", "FILE", "list the files of a CDFS composite: size, offset, capacity, path", RunCdfsList,
     kReadsFileByPath},
    {"cdfs add", "FILE PATH", "store a disk file (- for standard input) in a CDFS, made when missing", RunCdfsAdd,
     kChangesFile},
    {"cdfs extract", "FILE NAME OUT", "copy the file NAME out of a CDFS into OUT (- for standard output)",
     RunCdfsExtract, kReadsFileByPath},
    {"cdfs check", "FILE", "walk the table of a CDFS and say what is wrong, or ok", RunCdfsCheck, kReadsFileByPath},
    {"vqr list", "FILE", "list the blocks of a VQR container: type, subtype, version, id, offset, size", RunVqrList,
     kTakesJson | kReadsFileByPath},
    {"vqr extract", "FILE TYPE SUBTYPE ID OUT", "copy a block of a VQR container into OUT (- for standard output)",
     RunVqrExtract, kReadsFileByPath},
    {"vqr put", "FILE TYPE SUBTYPE ID IN",
     "store IN (- for standard input) as a block of a VQR container, made when missing", RunVqrPut, kChangesFile},
    {"rjpeg list", "FILE", "list the blocks of the VQR container a radiometric JPEG carries, as vqr list does",
     RunRjpegList, kTakesJson},
    {"rjpeg extract", "FILE OUT", "copy the VQR container of a radiometric JPEG into OUT (- for standard output)",
     RunRjpegExtract},
    {"rjpeg put", "JPEG VQR OUT", "write OUT: the picture of JPEG carrying the container VQR (either may be -)",
     RunRjpegPut},
    {"xdn list", "FILE", "list the blocks of an XDN container: type, subtype, version, id, offset, size", RunXdnList,
     kTakesJson | kReadsFileByPath},
    {"xdn extract", "FILE TYPE SUBTYPE ID OUT", "copy a block of an XDN container into OUT (- for standard output)",
     RunXdnExtract, kReadsFileByPath},
    {"xdn put", "FILE TYPE SUBTYPE ID IN",
     "store IN (- for standard input) as a block of an XDN container, made when missing", RunXdnPut, kChangesFile},
    {"config get", "STORE PATH", "print one setting of a .ini, .xml or .db file, reg:user or reg:machine",
     RunConfigGet},
    {"config set", "STORE PATH VALUE", "write one setting (as text) and save the store", RunConfigSet},
    {"config dump", "STORE", "print every setting of a store as PATH=VALUE lines", RunConfigDump, kTakesJson},
    {"pod show", "FILE", "print a POD table's columns, row count and rows A to B (--rows A:B)", RunPodShow,
     kTakesRows | kTakesJson | kReadsFileByPath},
    {"pod get", "FILE ROW COLUMN", "print one cell of a POD table (COLUMN a number or a name)", RunPodGet,
     kReadsFileByPath},
    {"pod set", "FILE ROW COLUMN VALUE", "change one cell of a POD table and save it whole", RunPodSet, kChangesFile},
    {"pod export", "FILE", "write a POD table as CSV on standard output", RunPodExport, kTakesCsv | kReadsFileByPath},
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

bool IsOneOf(char const *word, char const *a, char const *b) {
    return std::strcmp(word, a) == 0 || (b && std::strcmp(word, b) == 0);
}

int Finish(int status) {
    if (!FinishStandardOutput() && status == 0) return kExitFailed;
    return status;
}

int UnknownCommand(char const *word) {
    std::string group = std::string(word) + " ";
    std::string members;
    CommandTable table = Commands();
    for (int i = 0; i < table.count; ++i)
        if (std::strncmp(table.rows[i].words, group.c_str(), group.size()) == 0)
            members += std::string(members.empty() ? "" : ", ") + "'" + table.rows[i].words + "'";
    if (!members.empty())
        std::fprintf(stderr, "qv: '%s' needs a sub-command: %s\n", word, members.c_str());
    else
        std::fprintf(stderr, "qv: unknown command '%s'; run 'qv help' for the list\n", word);
    return kExitUsage;
}

// "-" as the first operand: refused for a file changed in place, copied to a
// temporary file (kept by input) for a library that opens files by path.
bool TakeStandardInput(Command const &command, std::vector<char *> &operands, CLibraryPath &input) {
    if (operands.empty() || std::strcmp(operands[0], "-") != 0) return true;
    if (command.options & kChangesFile) {
        std::fprintf(stderr, "qv %s changes its file in place; standard input cannot be changed\n", command.words);
        return false;
    }
    if (!(command.options & kReadsFileByPath)) return true;
    if (!input.Take("-")) return false;
    operands[0] = const_cast<char *>(input.Path());
    return true;
}

int RunCommand(Command const &command, int argc, char *const *argv) {
    SOptions options;
    std::vector<char *> operands;
    std::string error;
    if (!ParseOptions(argc, argv, command.options, options, operands, error)) {
        std::fprintf(stderr, "qv %s: %s\n", command.words, error.c_str());
        return kExitUsage;
    }
    if (options.help) {
        PrintCommandUsage(command, stdout);
        return Finish(0);
    }
    bool variadic = command.arguments[0] == '[';
    if (!variadic && int(operands.size()) != CountWords(command.arguments)) {
        std::fputs("usage: qv ", stderr);
        PrintSynopsis(command, stderr);
        std::fputc('\n', stderr);
        return kExitUsage;
    }
    CLibraryPath input;
    if (!TakeStandardInput(command, operands, input)) return kExitFailed;
    operands.push_back(nullptr);
    SetGivenOptions(options);
    return Finish(command.run(operands.data()));
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
    if (IsOneOf(argv[1], "--help", "-h")) {
        PrintUsage(stdout);
        return Finish(0);
    }
    if (IsOneOf(argv[1], "--version", nullptr)) {
        std::printf("qv %s\n", qvVersion());
        return Finish(0);
    }
    CommandTable table = Commands();
    for (int i = 0; i < table.count; ++i) {
        Command const &command = table.rows[i];
        if (!Matches(command.words, argc - 1, argv + 1)) continue;
        int used = CountWords(command.words);
        return RunCommand(command, argc - 1 - used, argv + 1 + used);
    }
    return UnknownCommand(argv[1]);
}
