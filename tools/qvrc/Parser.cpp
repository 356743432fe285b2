// Reading a resource script (grammar in main.cpp) line by line.
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "Script.h"

namespace qvrc {

namespace {

constexpr size_t kMaxNameUnits = 256;
constexpr size_t kMaxTextUnits = 0xFFFF; // the length field of a string block
constexpr uintmax_t kMaxFileBytes = 256u << 20;

struct Token {
    std::string text; // UTF-8, escapes resolved
    bool quoted = false;
};

void AppendUtf8(std::string &out, uint32_t cp) {
    if (cp < 0x80) {
        out += char(cp);
    } else if (cp < 0x800) {
        out += char(0xC0 | (cp >> 6));
        out += char(0x80 | (cp & 0x3F));
    } else {
        out += char(0xE0 | (cp >> 12));
        out += char(0x80 | ((cp >> 6) & 0x3F));
        out += char(0x80 | (cp & 0x3F));
    }
}

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The escape after a backslash at line[i]; i ends on its last character.
void ReadEscape(std::string const &line, size_t &i, std::string &out, int lineNo) {
    if (++i >= line.size()) throw ScriptError(lineNo, "unterminated string");
    switch (line[i]) {
    case '\\':
        out += '\\';
        return;
    case '"':
        out += '"';
        return;
    case 'n':
        out += '\n';
        return;
    case 'r':
        out += '\r';
        return;
    case 't':
        out += '\t';
        return;
    case 'u':
        break;
    default:
        throw ScriptError(lineNo, std::string("unknown escape \\") + line[i]);
    }
    uint32_t cp = 0;
    for (int k = 0; k < 4; ++k) {
        int digit = i + 1 < line.size() ? HexValue(line[i + 1]) : -1;
        if (digit < 0) throw ScriptError(lineNo, "\\u needs four hexadecimal digits");
        cp = cp * 16 + uint32_t(digit);
        ++i;
    }
    if (cp == 0 || (cp >= 0xD800 && cp <= 0xDFFF)) throw ScriptError(lineNo, "\\u names no character");
    AppendUtf8(out, cp);
}

// Words are separated by blanks; "..." is one token; "//" starts a comment.
std::vector<Token> SplitLine(std::string const &line, int lineNo) {
    for (char c : line)
        if ((static_cast<unsigned char>(c) < 0x20 && c != '\t') || c == 0x7F)
            throw ScriptError(lineNo, "control character in the script");
    std::vector<Token> tokens;
    for (size_t i = 0; i < line.size();) {
        unsigned char c = static_cast<unsigned char>(line[i]);
        if (c == ' ' || c == '\t') {
            ++i;
        } else if (line.compare(i, 2, "//") == 0) {
            break;
        } else if (c == '"') {
            Token token{"", true};
            for (++i;; ++i) {
                if (i >= line.size()) throw ScriptError(lineNo, "unterminated string");
                if (line[i] == '"') break;
                if (line[i] == '\\')
                    ReadEscape(line, i, token.text, lineNo);
                else
                    token.text += line[i];
            }
            ++i;
            tokens.push_back(token);
        } else {
            Token token;
            while (i < line.size() && line[i] != ' ' && line[i] != '\t' && line[i] != '"')
                token.text += line[i++];
            tokens.push_back(token);
        }
    }
    return tokens;
}

bool IsWord(Token const &token, char const *word) {
    if (token.quoted || token.text.size() != std::char_traits<char>::length(word)) return false;
    for (size_t i = 0; i < token.text.size(); ++i)
        if (std::toupper(static_cast<unsigned char>(token.text[i])) != word[i]) return false;
    return true;
}

// Decimal or 0x hexadecimal, at most max.
uint32_t ParseNumber(Token const &token, uint32_t max, char const *what, int lineNo) {
    std::string const &s = token.text;
    bool hex = s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X');
    uint64_t value = 0;
    bool ok = !token.quoted && !s.empty();
    for (size_t i = hex ? 2 : 0; ok && i < s.size(); ++i) {
        int digit = hex ? HexValue(s[i]) : (s[i] >= '0' && s[i] <= '9' ? s[i] - '0' : -1);
        ok = digit >= 0 && (value = value * (hex ? 16 : 10) + uint64_t(digit)) <= max;
    }
    if (!ok)
        throw ScriptError(lineNo,
                          std::string(what) + " must be a number from 0 to " + std::to_string(max) + ": '" + s + "'");
    return uint32_t(value);
}

std::u16string ToText(std::string const &utf8, size_t maxUnits, char const *what, int lineNo) {
    std::u16string text;
    if (!Utf8ToUtf16(utf8, text)) throw ScriptError(lineNo, std::string(what) + " is not valid UTF-8");
    if (text.size() > maxUnits) throw ScriptError(lineNo, std::string(what) + " is too long");
    return text;
}

struct KnownType {
    char const *word;
    uint16_t number;
};
constexpr KnownType kKnownTypes[] = {
    {"CURSOR", 1},        {"BITMAP", 2},        {"ICON", 3},        {"MENU", 4},        {"DIALOG", 5},
    {"STRING", 6},        {"FONTDIR", 7},       {"FONT", 8},        {"ACCELERATOR", 9}, {"RCDATA", 10},
    {"MESSAGETABLE", 11}, {"GROUP_CURSOR", 12}, {"GROUP_ICON", 14}, {"VERSION", 16},    {"DLGINCLUDE", 17},
    {"PLUGPLAY", 19},     {"VXD", 20},          {"ANICURSOR", 21},  {"ANIICON", 22},    {"HTML", 23},
    {"MANIFEST", 24},
};

// A number, "#number", a known type word (types only) or a name.
Id ParseId(Token const &token, bool isType, int lineNo) {
    char const *what = isType ? "the type" : "the name";
    Id id;
    std::string const &s = token.text;
    if (s.empty()) throw ScriptError(lineNo, std::string(what) + " is empty");
    if (!token.quoted && isType) {
        for (KnownType const &known : kKnownTypes) {
            if (!IsWord(token, known.word)) continue;
            id.number = known.number;
            return id;
        }
    }
    bool numeric = !token.quoted && ((s[0] >= '0' && s[0] <= '9') || (s[0] == '#' && s.size() > 1));
    if (!numeric) {
        id.text = ToText(s, kMaxNameUnits, what, lineNo);
        return id;
    }
    Token digits{s[0] == '#' ? s.substr(1) : s, false};
    id.number = uint16_t(ParseNumber(digits, 0xFFFF, what, lineNo));
    if (id.number == 0) throw ScriptError(lineNo, std::string(what) + " must not be 0");
    return id;
}

uint16_t ParseLanguage(Token const &token, int lineNo) {
    if (IsWord(token, "NEUTRAL")) return 0;
    return uint16_t(ParseNumber(token, 0xFFFF, "the language", lineNo));
}

std::vector<unsigned char> ReadFile(std::string const &name, std::string const &baseDir, int lineNo,
                                    std::vector<std::string> &filesRead) {
    std::filesystem::path path(name);
    if (path.is_relative()) path = std::filesystem::path(baseDir) / path;
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error)) throw ScriptError(lineNo, "no such file: " + path.string());
    if (std::filesystem::file_size(path, error) > kMaxFileBytes)
        throw ScriptError(lineNo, "file too large: " + path.string());
    std::ifstream in(path, std::ios::binary);
    std::vector<unsigned char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad()) throw ScriptError(lineNo, "cannot read " + path.string());
    filesRead.push_back(path.string());
    return bytes;
}

bool EndsWithGz(std::u16string const &name) {
    if (name.size() < 3) return false;
    std::u16string tail = name.substr(name.size() - 3);
    return tail[0] == u'.' && (tail[1] == u'g' || tail[1] == u'G') && (tail[2] == u'z' || tail[2] == u'Z');
}

bool IsTGZF(std::vector<unsigned char> const &bytes) {
    return bytes.size() >= 4 && bytes[0] == 'T' && bytes[1] == 'G' && bytes[2] == 'Z' && bytes[3] == 'F';
}

class Parser {
public:
    Parser(std::string const &baseDir, std::vector<std::string> &filesRead) : baseDir(baseDir), filesRead(filesRead) {}

    void Line(std::vector<Token> const &tokens, int lineNo) {
        if (tokens.empty()) return;
        if (state == State::InTable) return TableLine(tokens, lineNo);
        if (state == State::AwaitingBrace) {
            if (tokens.size() != 1 || !IsWord(tokens[0], "{"))
                throw ScriptError(lineNo, "expected '{' after STRINGTABLE");
            state = State::InTable;
            return;
        }
        if (IsWord(tokens[0], "STRINGTABLE")) return OpenTable(tokens, lineNo);
        ResourceLine(tokens, lineNo);
    }

    Script Finish() {
        if (state != State::Outside) throw ScriptError(tableLine, "STRINGTABLE is not closed with '}'");
        return std::move(script);
    }

private:
    enum class State { Outside, AwaitingBrace, InTable };

    void OpenTable(std::vector<Token> const &tokens, int lineNo) {
        if (tokens.size() < 2) throw ScriptError(lineNo, "STRINGTABLE needs a language");
        if (tokens.size() > 3 || (tokens.size() == 3 && !IsWord(tokens[2], "{")))
            throw ScriptError(lineNo, "expected 'STRINGTABLE language {'");
        tableLanguage = ParseLanguage(tokens[1], lineNo);
        tableLine = lineNo;
        state = tokens.size() == 3 ? State::InTable : State::AwaitingBrace;
    }

    void TableLine(std::vector<Token> const &tokens, int lineNo) {
        if (IsWord(tokens[0], "}")) {
            if (tokens.size() != 1) throw ScriptError(lineNo, "nothing may follow '}'");
            state = State::Outside;
            return;
        }
        if (tokens.size() != 2 || !tokens[1].quoted) throw ScriptError(lineNo, "expected 'id \"text\"' or '}'");
        uint16_t id = uint16_t(ParseNumber(tokens[0], 0xFFFF, "the string id", lineNo));
        auto &table = script.strings[tableLanguage];
        if (auto found = table.find(id); found != table.end())
            throw ScriptError(lineNo, "string " + std::to_string(id) +
                                          " is defined twice for this language (first at line " +
                                          std::to_string(found->second.line) + ")");
        table[id] = StringEntry{ToText(tokens[1].text, kMaxTextUnits, "the text", lineNo), lineNo};
    }

    void ResourceLine(std::vector<Token> const &tokens, int lineNo) {
        if (tokens.size() != 4) throw ScriptError(lineNo, "expected 'type name language file'");
        Resource resource;
        resource.type = ParseId(tokens[0], true, lineNo);
        if (resource.type.IsNumeric() && resource.type.number == 6)
            throw ScriptError(lineNo, "strings belong in a STRINGTABLE block");
        resource.name = ParseId(tokens[1], false, lineNo);
        resource.language = ParseLanguage(tokens[2], lineNo);
        resource.bytes = ReadFile(tokens[3].text, baseDir, lineNo, filesRead);
        // Readers unpack a ".gz" resource; a file that is TGZF already stays as it is.
        if (!resource.name.IsNumeric() && EndsWithGz(resource.name.text) && !IsTGZF(resource.bytes))
            resource.bytes = PackTGZF(resource.bytes);
        resource.line = lineNo;
        script.resources.push_back(std::move(resource));
    }

    std::string baseDir;
    std::vector<std::string> &filesRead;
    Script script;
    State state = State::Outside;
    uint16_t tableLanguage = 0;
    int tableLine = 0;
};

} // namespace

Script ParseScript(std::string const &text, std::string const &baseDir, std::vector<std::string> &filesRead) {
    Parser parser(baseDir, filesRead);
    std::istringstream lines(text);
    std::string line;
    for (int lineNo = 1; std::getline(lines, line); ++lineNo) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        parser.Line(SplitLine(line, lineNo), lineNo);
    }
    return parser.Finish();
}

} // namespace qvrc
