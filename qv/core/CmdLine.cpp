#include "qv/core/CmdLine.h"

#include <cstdarg>
#include <cstring>

#include "qv/core/String.h"
#include "qv/core/WideChar.h"
#include "qv/platform/ConsoleOutput.h"
#include "qv/platform/DebugSink.h"

namespace qv {

namespace {

// The value of a flag set without "="; callers see it as writable text.
char16_t kTrue[] = u"true";

bool IsSeparator(char16_t c) {
    return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n';
}

bool SameName(char16_t const *name, char16_t const *other) {
    return name && other && _wcsicmp(name, other) == 0;
}

} // namespace

void ArgParse(char16_t *line, char16_t **const argv, int &argc) {
    int const capacity = argc;
    int count = 0;
    char16_t *p = line;
    while (p && *p) {
        while (IsSeparator(*p))
            ++p;
        if (!*p) break;
        char16_t *token = p;
        if (*p == u'"') {
            token = ++p;
            while (*p && *p != u'"')
                ++p;
        } else {
            while (*p && !IsSeparator(*p))
                ++p;
        }
        if (*p) *p++ = 0;
        if (count < capacity) argv[count] = token;
        ++count;
    }
    argc = count;
}

CCmdLine::CCmdLine() = default;

CCmdLine::CCmdLine(CCmdLine const &other)
    : flags(other.flags), args(other.args), line(other.line), allowExtra(other.allowExtra),
      useStdErr(other.useStdErr) {
    MoveLineValues(other.line.GetData(), other.line.GetSize(), line.GetData());
}

CCmdLine &CCmdLine::operator=(CCmdLine const &other) {
    if (this == &other) return *this;
    flags = other.flags;
    args = other.args;
    line = other.line;
    allowExtra = other.allowExtra;
    useStdErr = other.useStdErr;
    MoveLineValues(other.line.GetData(), other.line.GetSize(), line.GetData());
    return *this;
}

CCmdLine::~CCmdLine() = default;

void CCmdLine::MoveLineValues(char16_t const *from, uint32_t size, char16_t *to) {
    auto move = [&](char16_t *&value) {
        if (value && from && value >= from && value < from + size) value = to ? to + (value - from) : nullptr;
    };
    for (uint32_t i = 0; i < flags.GetSize(); ++i)
        move(flags[i].value);
    for (uint32_t i = 0; i < args.GetSize(); ++i)
        move(args[i].value);
}

bool CCmdLine::AddArg(char16_t const *name, char16_t const *description) {
    if (ArgExists(name)) return false;
    return args.Add(ARG{name, nullptr, description});
}

bool CCmdLine::AddOpt(char16_t const *shortName, char16_t const *longName, char16_t const *description) {
    return AddFlagOrOpt(shortName, longName, description, true);
}

bool CCmdLine::AddFlag(char16_t const *shortName, char16_t const *longName, char16_t const *description) {
    return AddFlagOrOpt(shortName, longName, description, false);
}

bool CCmdLine::AddFlagOrOpt(char16_t const *shortName, char16_t const *longName, char16_t const *description,
                            bool takesValue) {
    if (ArgExists(shortName) || ArgExists(longName)) return false;
    return flags.Add(FLAG{shortName, longName, description, nullptr, takesValue});
}

bool CCmdLine::ArgExists(char16_t const *name) {
    if (!name) return false;
    for (uint32_t i = 0; i < args.GetSize(); ++i)
        if (SameName(args.GetAt(i).name, name)) return true;
    for (uint32_t i = 0; i < flags.GetSize(); ++i)
        if (SameName(flags.GetAt(i).shortName, name) || SameName(flags.GetAt(i).longName, name)) return true;
    return false;
}

CCmdLine::FLAG *CCmdLine::MatchOption(char16_t const *body, bool longOnly, char16_t const *&rest) {
    auto matches = [&](char16_t const *name) {
        if (!name) return false;
        size_t const length = wcslen(name);
        if (_wcsnicmp(body, name, length) != 0) return false;
        // Only a whole name counts: "-verbose" is no match for "v".
        if (body[length] != 0 && body[length] != u'=') return false;
        rest = body + length;
        return true;
    };
    for (uint32_t i = 0; i < flags.GetSize(); ++i) {
        FLAG &flag = flags[i];
        if ((!longOnly && matches(flag.shortName)) || matches(flag.longName)) return &flag;
    }
    return nullptr;
}

void CCmdLine::SetOption(FLAG &flag, char16_t const *rest, int &i, int argc, char16_t **const argv) {
    char16_t *value = nullptr;
    if (*rest == u'=') {
        value = const_cast<char16_t *>(rest + 1);
        if (!flag.takesValue) {
            Message(u"Warning: Flag %s(%s) cannot take a value.\n", flag.shortName, flag.longName);
            value = kTrue;
        }
    } else if (!flag.takesValue) {
        value = kTrue;
    } else if (i + 1 < argc) {
        value = argv[++i];
    }
    if (flag.value)
        Message(u"Warning: Option %s(%s) redefined; already defined as %s.\n", flag.shortName, flag.longName,
                flag.value);
    flag.value = value;
}

bool CCmdLine::SetPositional(uint32_t &index, char16_t *value) {
    if (index >= args.GetSize()) {
        if (!allowExtra) {
            Message(u"Error: Too many arguments.\n");
            return false;
        }
        if (!args.Add(ARG{u"Unnamed", nullptr, nullptr})) return false;
    }
    args[index++].value = value;
    return true;
}

bool CCmdLine::Parse(int argc, char16_t **const argv) {
    uint32_t positional = 0;
    for (int i = 1; argv && i < argc; ++i) {
        char16_t *token = argv[i];
        if (!token) continue;
        if (token[0] == u'-') {
            bool const twoDashes = token[1] == u'-';
            char16_t const *rest = nullptr;
            if (FLAG *flag = MatchOption(token + (twoDashes ? 2 : 1), twoDashes, rest)) {
                SetOption(*flag, rest, i, argc, argv);
                continue;
            }
        }
        if (!SetPositional(positional, token)) return false;
    }
    return true;
}

bool CCmdLine::Parse(char16_t const *text) {
    MoveLineValues(line.GetData(), line.GetSize(), nullptr);
    size_t const length = text ? wcslen(text) : 0;
    if (length >= UINT32_MAX || !line.SetSize(uint32_t(length + 1))) return false;
    if (length) std::memcpy(line.GetData(), text, length * sizeof(char16_t));
    line[uint32_t(length)] = 0;
    char16_t *tokens[kLineTokens];
    int count = kLineTokens;
    ArgParse(line.GetData(), tokens, count);
    return Parse(count < kLineTokens ? count : kLineTokens, tokens);
}

uint32_t CCmdLine::nArgs() {
    return args.GetSize();
}

char16_t *CCmdLine::operator[](int i) {
    if (i < 0 || uint32_t(i) >= args.GetSize()) return nullptr;
    return args[uint32_t(i)].value;
}

char16_t *CCmdLine::operator[](char16_t const *name) {
    for (uint32_t i = 0; i < args.GetSize(); ++i)
        if (SameName(args[i].name, name)) return args[i].value;
    for (uint32_t i = 0; i < flags.GetSize(); ++i)
        if (SameName(flags[i].shortName, name) || SameName(flags[i].longName, name)) return flags[i].value;
    return nullptr;
}

void CCmdLine::Message(char16_t const *format, ...) {
    va_list list;
    va_start(list, format);
    CString text;
    text.FormatV(format, list);
    va_end(list);
    char const *utf8 = text.GetUTF8();
    if (useStdErr)
        platform::WriteStandardError(utf8, std::strlen(utf8));
    else
        platform::WriteStandardOutput(utf8, std::strlen(utf8));
}

} // namespace qv
