// The sub-commands of the qv tool. A new sub-command is one source file with
// its Run function and one row in the table of main.cpp.
#pragma once

#include <cstdint>
#include <cstdio>

#include "Options.h"
#include "qv/core/VersionInfo.h"
#include "qv/files/File.h"
#include "qv/files/OpenFlags.h"
#include "qv/filesystems/CDFileSystem.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qvtool {

// Exit codes: 0 done, 1 the work failed, 2 the command line was wrong.
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;

// A handler gets exactly the operands its row names, as UTF-8 text, followed
// by a null. An argument in brackets ("[COMMAND...]") is optional and takes
// any number of words. The options given (--json, --csv) are in
// GivenOptions(); --help never reaches a handler.
using Handler = int (*)(char *const *args);

// What a row's first operand is (more bits of Command::options). A file the
// library opens by its path: "-" is first copied to a temporary file. A file
// changed in place: "-" is refused.
constexpr unsigned kReadsFileByPath = 1u << 8;
constexpr unsigned kChangesFile = 1u << 9;

struct Command {
    char const *words;     // what selects it, e.g. "saf show"
    char const *arguments; // e.g. "FILE NAME VALUE"; one word per argument, optional ones in [ ]
    char const *summary;   // one line for the help
    Handler run;
    unsigned options = 0;          // kTakesJson, kTakesCsv (Options.h) it accepts; kReadsFileByPath, kChangesFile
    char const *details = nullptr; // more lines for "qv help COMMAND", each ending in \n
};

// The table, in the order the help lists it.
struct CommandTable {
    Command const *rows;
    int count;
};
CommandTable Commands();

// "qv: " and the message on standard error; returns kExitFailed.
int Fail(char const *format, ...) __attribute__((format(printf, 1, 2)));

// Opens path with the CFile flags and loads its SAF header; on failure the
// message is printed and false returned.
bool OpenSaf(char const *path, uint32_t flags, qv::CFile &file, qv::CSAFFile &saf);
// True when saf's header, loaded from f, runs into the end of f without its
// DATA line: the file was cut short, and its tags and data offset are not the
// whole header's (a load takes the end of a file for the end of the header).
bool HeaderCutShort(qv::IFile &f, qv::CSAFFile &saf);
inline constexpr char kCutShort[] = "%s ends inside its header (no DATA line): the file is cut short";

// Opens the CDFS at path (read-only, or made when missing); on failure the
// message, with the reason a table was refused, is printed and false returned.
bool OpenCdfs(char const *path, bool readOnly, qv::CCDFileSystem &cdfs);

// The list of sub-commands; qv help prints it to standard output, a wrong
// command line to standard error.
void PrintUsage(std::FILE *out);
// "usage: qv WORDS [OPTIONS] ARGUMENTS", the summary and the details.
void PrintCommandUsage(Command const &command, std::FILE *out);
// The one-line synopsis of a command, e.g. "saf show [--json] FILE".
void PrintSynopsis(Command const &command, std::FILE *out);

int RunHelp(char *const *args);
int RunSafShow(char *const *args);
int RunSafSet(char *const *args);
int RunBand(char *const *args);
int RunDate(char *const *args);
int RunCal(char *const *args);
int RunCalShow(char *const *args);
int RunCalConvert(char *const *args);
int RunModtranShow(char *const *args);
int RunModtranWrite(char *const *args);
int RunModtranRun(char *const *args);
int RunModtranTable(char *const *args);
int RunVersionShow(char *const *args);
int RunVersionSet(char *const *args);

// Extracts the version resource of the executable at path; on failure the
// message is printed and false returned.
bool ExtractVersion(char const *path, qv::CVersionInfo &info);
int RunSbfShow(char *const *args);
int RunXmlShow(char *const *args);
int RunTagsShow(char *const *args);
int RunTagsConvert(char *const *args);
int RunCdfsList(char *const *args);
int RunCdfsAdd(char *const *args);
int RunCdfsExtract(char *const *args);
int RunCdfsCheck(char *const *args);
int RunVqrList(char *const *args);
int RunVqrExtract(char *const *args);
int RunVqrPut(char *const *args);
int RunRjpegList(char *const *args);
int RunRjpegExtract(char *const *args);
int RunRjpegPut(char *const *args);
int RunXdnList(char *const *args);
int RunXdnExtract(char *const *args);
int RunXdnPut(char *const *args);
int RunConfigGet(char *const *args);
int RunConfigSet(char *const *args);
int RunConfigDump(char *const *args);
int RunPodShow(char *const *args);
int RunPodGet(char *const *args);
int RunPodSet(char *const *args);
int RunPodExport(char *const *args);
int RunSafFrames(char *const *args);
int RunSafFrame(char *const *args);
int RunRender(char *const *args);
int RunRenderFit(char *const *args);

} // namespace qvtool
