// Parsing the shared options of the sub-commands.
#include "Options.h"

#include <cctype>
#include <cstring>

namespace qvtool {

namespace {

SOptions given;

// A word that looks like an option; "-" and negative numbers do not.
bool LooksLikeOption(char const *word) {
    if (word[0] != '-' || word[1] == '\0') return false;
    return !(std::isdigit(static_cast<unsigned char>(word[1])) || word[1] == '.');
}

// The options that take a value: the word, its bit and its field.
struct SValueOption {
    char const *word;
    unsigned bit;
    char const *SOptions::*field;
    char const *value; // what the value is, for the message when it is missing
};

constexpr SValueOption kValueOptions[] = {
    {"--tool", kTakesTool, &SOptions::tool, "a path"},
    {"--save", kTakesSave, &SOptions::save, "a path"},
    {"--inc", kTakesInc, &SOptions::inc, "a path"},
    {"--rows", kTakesRows, &SOptions::rows, "a row range A:B"},
};

SValueOption const *FindValueOption(char const *word, unsigned accepted) {
    for (SValueOption const &option : kValueOptions)
        if (std::strcmp(word, option.word) == 0 && (accepted & option.bit)) return &option;
    return nullptr;
}

} // namespace

bool ParseOptions(int count, char *const *words, unsigned accepted, SOptions &options, std::vector<char *> &operands,
                  std::string &error) {
    bool optionsEnded = false;
    for (int i = 0; i < count; ++i) {
        char *word = words[i];
        if (optionsEnded || !LooksLikeOption(word)) {
            operands.push_back(word);
        } else if (std::strcmp(word, "--") == 0) {
            optionsEnded = true;
        } else if (std::strcmp(word, "--help") == 0 || std::strcmp(word, "-h") == 0) {
            options.help = true;
        } else if (std::strcmp(word, "--json") == 0 && (accepted & kTakesJson)) {
            options.json = true;
        } else if (std::strcmp(word, "--csv") == 0 && (accepted & kTakesCsv)) {
            options.csv = true;
        } else if (SValueOption const *option = FindValueOption(word, accepted)) {
            if (i + 1 == count) return error = std::string(word) + " needs " + option->value, false;
            options.*(option->field) = words[++i];
        } else {
            error = std::string("unknown option '") + word + "' (put -- before an operand that begins with a dash)";
            return false;
        }
    }
    if (options.json && options.csv) return error = "--json and --csv cannot be given together", false;
    return true;
}

SOptions const &GivenOptions() {
    return given;
}

void SetGivenOptions(SOptions const &options) {
    given = options;
}

} // namespace qvtool
