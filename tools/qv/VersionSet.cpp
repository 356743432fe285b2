// qv version set EXE NAME VALUE: stamps a Windows executable in place. NAME
// is an entry of the first string table (FileVersion, Comments, ...), or
// Version (VALUE a.b.c.d: the fixed versions and the FileVersion and
// ProductVersion texts) or Beta (VALUE yes or no: the prerelease flag).
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "Commands.h"
#include "qv/core/VersionInfo.h"
#include "qv/core/WideChar.h"

namespace qvtool {

namespace {

bool IsName(char const *name, char const *what) {
    return qv::_stricmp(name, what) == 0;
}

// Up to four numbers 0..65535 separated by dots; missing ones are 0.
bool ParseVersion(char const *text, uint16_t parts[4]) {
    char const *p = text;
    for (int i = 0; i < 4; ++i) {
        parts[i] = 0;
        if (!*p) continue;
        if (*p < '0' || *p > '9') return false;
        char *end = nullptr;
        unsigned long value = std::strtoul(p, &end, 10);
        if (value > 0xFFFF) return false;
        parts[i] = uint16_t(value);
        p = end;
        if (*p == '.' && i < 3 && p[1]) ++p;
    }
    return *p == 0;
}

bool ParseYesNo(char const *text, bool &value) {
    value = qv::_stricmp(text, "yes") == 0 || qv::_stricmp(text, "true") == 0 || std::strcmp(text, "1") == 0;
    return value || qv::_stricmp(text, "no") == 0 || qv::_stricmp(text, "false") == 0 || std::strcmp(text, "0") == 0;
}

// Applies NAME = VALUE to info; false with the message printed.
bool Apply(qv::CVersionInfo &info, char const *name, char const *value) {
    if (IsName(name, "Version")) {
        uint16_t v[4];
        if (!ParseVersion(value, v)) {
            Fail("'%s' is no version: give up to four numbers 0..65535 separated by dots, e.g. 1.2.3.4", value);
            return false;
        }
        if (info.SetVersion(v[0], v[1], v[2], v[3])) return true;
    } else if (IsName(name, "Beta")) {
        bool beta = false;
        if (!ParseYesNo(value, beta)) {
            Fail("Beta takes yes or no, not '%s'", value);
            return false;
        }
        return info.SetBeta(beta);
    } else if (info.SetString(qv::CString(name).GetUTF16(), qv::CString(value).GetUTF16())) {
        return true;
    }
    Fail("cannot set %s: the resource has no string table, or the block would pass 65535 bytes", name);
    return false;
}

// The present value of NAME as the command shows it; false if there is none.
bool Current(qv::CVersionInfo &info, char const *name, qv::CString &text) {
    if (IsName(name, "Version")) {
        uint16_t a, b, c, d;
        info.GetVersion(a, b, c, d);
        text.Format(u"%d.%d.%d.%d", int(a), int(b), int(c), int(d));
        return true;
    }
    if (IsName(name, "Beta")) {
        bool beta = false;
        info.GetBeta(beta);
        text = beta ? u"yes" : u"no";
        return true;
    }
    char16_t const *value = info.GetString(qv::CString(name).GetUTF16());
    text = value ? value : u"";
    return value != nullptr;
}

} // namespace

int RunVersionSet(char *const *args) {
    char const *path = args[0], *name = args[1], *value = args[2];
    qv::CVersionInfo info;
    if (!ExtractVersion(path, info)) return kExitFailed;
    qv::CString before;
    bool const existed = Current(info, name, before);
    if (!Apply(info, name, value)) return kExitFailed;
    if (!info.Update(qv::CString(path).GetUTF16()))
        return Fail("cannot stamp %s in place (it needs a version resource in language 0x0409 with room for the "
                    "new block, and must stay readable and writable); the file is unchanged",
                    path);
    if (existed)
        std::printf("%s: '%s' -> '%s'\n", name, before.GetUTF8(), value);
    else
        std::printf("%s: set to '%s'\n", name, value);
    return 0;
}

} // namespace qvtool
