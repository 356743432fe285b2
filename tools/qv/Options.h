// The options every sub-command shares: --help (or -h), --json on show
// commands, --csv on data commands, and "--" to end the options so that an
// operand may begin with a dash. A few commands take an option with a value
// (--tool PATH, --save PATH, --inc PATH). "-" alone is an operand (standard input),
// and so is a negative number such as -10.5.
#pragma once

#include <string>
#include <vector>

namespace qvtool {

// The options a command row accepts besides --help (bits, or-ed).
enum : unsigned {
    kTakesJson = 1, // one JSON object on standard output instead of text
    kTakesCsv = 2,  // comma-separated rows on standard output
    kTakesTool = 4, // --tool PATH: the external program to run
    kTakesSave = 8, // --save PATH: where to save what the command built
    kTakesInc = 16, // --inc PATH: where to write an include file of it
    kTakesRows = 32, // --rows A:B: the rows to show
};

struct SOptions {
    bool help = false;
    bool json = false;
    bool csv = false;
    char const *tool = nullptr; // --tool's value
    char const *save = nullptr; // --save's value
    char const *inc = nullptr;  // --inc's value
    char const *rows = nullptr; // --rows's value
};

// Splits the words after a command into options and operands. False, with a
// sentence in error, for an option the command does not take.
bool ParseOptions(int count, char *const *words, unsigned accepted, SOptions &options, std::vector<char *> &operands,
                  std::string &error);

// The options of the command being run (set once by main before it runs).
SOptions const &GivenOptions();
void SetGivenOptions(SOptions const &options);

} // namespace qvtool
