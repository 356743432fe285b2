// CCmdLine parsing one command-line text of arbitrary UTF-16 units: quotes
// may be unbalanced, tokens may outnumber the line's capacity, and every
// value read back must be terminated text inside the object's own copy.
#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "qv/core/CmdLine.h"
#include "qv/core/WideChar.h"

namespace {

// Keeps surplus arguments, so long lines reach every path.
class FuzzCmdLine : public qv::CCmdLine {
public:
    explicit FuzzCmdLine(bool extra) { allowExtra = extra; }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    if (size < 1 || size > 0x10000) return 0;
    std::vector<char16_t> text((size - 1) / 2 + 1, 0);
    std::memcpy(text.data(), data + 1, (size - 1) / 2 * 2);
    FuzzCmdLine cmd((data[0] & 1) != 0);
    cmd.AddArg(u"input", nullptr);
    cmd.AddOpt(u"o", u"out", nullptr);
    cmd.AddFlag(u"v", u"verbose", nullptr);
    // Warnings go to standard output; libFuzzer reports on standard error.
    static bool const quiet = dup2(open("/dev/null", O_WRONLY | O_CLOEXEC), STDOUT_FILENO) >= 0;
    (void)quiet;
    cmd.Parse(text.data());
    FuzzCmdLine copy(cmd);
    static volatile size_t total = 0;
    for (uint32_t i = 0; i < copy.nArgs(); ++i)
        if (char16_t const *v = copy[int(i)]) total = total + qv::wcslen(v);
    for (char16_t const *name : {u"out", u"v", u"input", u"Unnamed"})
        if (char16_t const *v = copy[name]) total = total + qv::wcslen(v);
    return 0;
}
