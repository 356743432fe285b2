// Puts any bytes in place of a registry root file and reads it through the
// Reg functions; a root that reads must take a write, and the file written
// must read again.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <unistd.h>

#include "qv/config/Registry.h"
#include "qv/core/String.h"

namespace {

std::string const &Directory() {
    static std::string directory = [] {
        char pattern[] = "/tmp/qv_fuzz_registry_XXXXXX";
        return std::string(mkdtemp(pattern) ? pattern : "/tmp");
    }();
    return directory;
}

void Walk(qv::HKEY key, int depth) {
    char16_t name[1024];
    uint8_t data[256];
    for (uint32_t i = 0;; ++i) {
        uint32_t units = 1024, bytes = sizeof data, type = 0;
        int32_t status = qv::RegEnumValueW(key, i, name, &units, &type, data, &bytes);
        if (status != qv::ERROR_SUCCESS && status != qv::ERROR_MORE_DATA) break;
    }
    for (uint32_t i = 0; depth < 8; ++i) {
        uint32_t units = 1024;
        if (qv::RegEnumKeyExW(key, i, name, &units) != qv::ERROR_SUCCESS) break;
        qv::HKEY sub = nullptr;
        if (qv::RegOpenKeyExW(key, name, qv::KEY_READ, &sub) != qv::ERROR_SUCCESS) continue;
        Walk(sub, depth + 1);
        qv::RegCloseKey(sub);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    static bool ready = qv::RegSetRootDirectory(qv::HKEY_CURRENT_USER, qv::CString(Directory().c_str()));
    (void)ready;
    std::string file = Directory() + "/user.reg";
    if (FILE *out = std::fopen(file.c_str(), "wb")) {
        std::fwrite(data, 1, size, out);
        std::fclose(out);
    }
    char16_t text[64];
    if (qv::RegGetValueStr(qv::HKEY_CURRENT_USER, u"Software", u"v", text, 64, u"") == qv::ERROR_BADDB) return 0;
    Walk(qv::HKEY_CURRENT_USER, 0);
    if (qv::RegSetValueStr(qv::HKEY_CURRENT_USER, u"Fuzz", u"written", u"x") != qv::ERROR_SUCCESS) std::abort();
    if (qv::RegGetValueStr(qv::HKEY_CURRENT_USER, u"Fuzz", u"written", text, 64, u"") != qv::ERROR_SUCCESS)
        std::abort();
    return 0;
}
