// The resource script of a module, as the parser reads it and the writer
// emits it. See main.cpp for the grammar.
#pragma once

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace qvrc {

// A fault in the script: reported as "script:line: error: message".
struct ScriptError : std::runtime_error {
    ScriptError(int line, std::string const &message) : std::runtime_error(message), line(line) {}
    int line;
};

// A type or name: a number 1..65535 when text is empty, else the text.
struct Id {
    uint16_t number = 0;
    std::u16string text;

    bool IsNumeric() const { return text.empty(); }
};

struct Resource {
    Id type;
    Id name;
    uint16_t language = 0;
    std::vector<unsigned char> bytes;
    int line = 0;
};

struct StringEntry {
    std::u16string text;
    int line = 0;
};

struct Script {
    std::vector<Resource> resources;
    // language -> id -> text
    std::map<uint16_t, std::map<uint16_t, StringEntry>> strings;
};

// Parses the script's text; files are read relative to baseDir. Throws ScriptError.
Script ParseScript(std::string const &text, std::string const &baseDir, std::vector<std::string> &filesRead);

// Adds the string blocks (type 6) to the resources, then sorts them in table
// order and refuses duplicates. Throws ScriptError.
void FinishTable(Script &script);

// The C++ source holding the table and its registration.
std::string WriteTableSource(Script const &script, std::string const &moduleName, bool library);

// "TGZF", two zero bytes, the size as a little-endian Int64, one zlib stream.
std::vector<unsigned char> PackTGZF(std::vector<unsigned char> const &plain);

// Strict UTF-8 to UTF-16; false on malformed input.
bool Utf8ToUtf16(std::string const &in, std::u16string &out);

} // namespace qvrc
