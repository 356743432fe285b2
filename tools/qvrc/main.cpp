// qvrc: compiles a resource script into a C++ source that carries the
// module's resource table and registers it when the module loads (see
// qv/core/ResourceTable.h). CMake runs it through qv_add_resources
// (cmake/QvResources.cmake); docs/resources.md has the whole story.
//
//   qvrc [--module NAME] [--library] [--depfile FILE] SCRIPT OUTPUT.cpp
//
// --module names the module (default: the script's file name without its
// extension); libqv's own table is the library module "qv". --library marks a
// shared library's table, otherwise it is a program's. --depfile writes the
// files that the output depends on, for the build tool.
//
// Script grammar. The script is UTF-8 text read line by line; blanks and tabs
// separate tokens; "//" outside a string starts a comment to the end of the
// line; a token in double quotes may hold blanks and the escapes \\ \" \n \r
// \t and \uXXXX.
//
//   TYPE NAME LANGUAGE FILE          one resource; all four on one line
//   STRINGTABLE LANGUAGE {           strings of one language ('{' may also
//     ID "text"                      stand alone on the next line); one
//   }                                string per line, '}' alone on its line
//
//   TYPE      a number 1..65535, "#number", a Windows type word (CURSOR,
//             BITMAP, ICON, MENU, DIALOG, FONTDIR, FONT, ACCELERATOR, RCDATA,
//             MESSAGETABLE, GROUP_CURSOR, GROUP_ICON, VERSION, DLGINCLUDE,
//             PLUGPLAY, VXD, ANICURSOR, ANIICON, HTML, MANIFEST: any case)
//             standing for its number, or any other word or quoted text as a
//             named type. STRING (6) is refused: strings come from
//             STRINGTABLE blocks.
//   NAME      a number 1..65535, "#number", or a word or quoted text (at
//             most 256 UTF-16 units). A named resource ending in ".gz" is
//             stored as a "TGZF" stream (compressed here unless the file is
//             TGZF already), so that readers unpack it.
//   LANGUAGE  a Windows language id, decimal or 0x hexadecimal (0x0407), or
//             NEUTRAL (0).
//   FILE      the file whose bytes the resource holds, relative to the
//             script's directory; at most 256 MiB.
//   ID        a string id 0..65535; text at most 65535 UTF-16 units.
//
// Strings are stored in the Windows form, blocks of 16 (block (id >> 4) + 1,
// each string a 16-bit length and its UTF-16 units). Several STRINGTABLE
// blocks of one language are merged. A resource or string defined twice
// (type, name and language; names ignore ASCII case) is an error.
//
// Errors name the script and line ("app.qvrc:12: error: ...") and exit with 1;
// nothing is written then. Wrong arguments exit with 2.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

#include "Script.h"

namespace {

struct Options {
    std::string module;
    bool library = false;
    std::string depfile;
    std::string script;
    std::string output;
};

bool ParseArguments(int argc, char **argv, Options &options) {
    std::vector<std::string> positional;
    for (int i = 1; i < argc; ++i) {
        std::string arg = argv[i];
        if (arg == "--library")
            options.library = true;
        else if (arg == "--module" && i + 1 < argc)
            options.module = argv[++i];
        else if (arg == "--depfile" && i + 1 < argc)
            options.depfile = argv[++i];
        else if (arg.rfind("--", 0) == 0)
            return false;
        else
            positional.push_back(arg);
    }
    if (positional.size() != 2) return false;
    options.script = positional[0];
    options.output = positional[1];
    if (options.module.empty()) options.module = std::filesystem::path(options.script).stem().string();
    return true;
}

bool ReadText(std::string const &path, std::string &text) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    std::ostringstream all;
    all << in.rdbuf();
    text = all.str();
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) text.erase(0, 3);
    return !in.bad();
}

// Written beside the target and renamed over it, so a failed run leaves no
// half-written file.
bool WriteFileAtomically(std::string const &path, std::string const &text) {
    std::string temporary = path + ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << text;
        if (!out.flush()) return false;
    }
    std::error_code error;
    std::filesystem::rename(temporary, path, error);
    return !error;
}

std::string EscapeDepfilePath(std::string const &path) {
    std::string out;
    for (char c : path) {
        if (c == ' ' || c == '#' || c == '\\') out += '\\';
        if (c == '$') out += '$';
        out += c;
    }
    return out;
}

std::string Depfile(Options const &options, std::vector<std::string> const &files) {
    std::string text = EscapeDepfilePath(options.output) + ": " + EscapeDepfilePath(options.script);
    for (std::string const &file : files)
        text += " \\\n  " + EscapeDepfilePath(file);
    return text + "\n";
}

} // namespace

int main(int argc, char **argv) {
    Options options;
    if (!ParseArguments(argc, argv, options)) {
        std::cerr << "usage: qvrc [--module NAME] [--library] [--depfile FILE] SCRIPT OUTPUT.cpp\n";
        return 2;
    }
    std::string text;
    if (!ReadText(options.script, text)) {
        std::cerr << options.script << ": error: cannot read the script\n";
        return 1;
    }
    std::vector<std::string> files;
    std::string source;
    try {
        std::string baseDir = std::filesystem::path(options.script).parent_path().string();
        qvrc::Script script = qvrc::ParseScript(text, baseDir.empty() ? "." : baseDir, files);
        qvrc::FinishTable(script);
        source = qvrc::WriteTableSource(script, options.module, options.library);
    } catch (qvrc::ScriptError const &error) {
        std::cerr << options.script << ":" << error.line << ": error: " << error.what() << "\n";
        return 1;
    } catch (std::exception const &error) {
        std::cerr << options.script << ": error: " << error.what() << "\n";
        return 1;
    }
    if (!WriteFileAtomically(options.output, source) ||
        (!options.depfile.empty() && !WriteFileAtomically(options.depfile, Depfile(options, files)))) {
        std::cerr << options.output << ": error: cannot write the output\n";
        return 1;
    }
    return 0;
}
