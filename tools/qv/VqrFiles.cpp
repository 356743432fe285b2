#include "VqrFiles.h"

#include <cerrno>
#include <cstdlib>
#include <sys/stat.h>
#include <unistd.h>

#include "Commands.h"
#include "Input.h"

namespace qvtool {

namespace {

bool ParseNumber(char const *word, uint32_t limit, char const *what, uint32_t &value) {
    errno = 0;
    char *end = nullptr;
    unsigned long long n = std::strtoull(word, &end, 0);
    if (errno || end == word || *end || *word == '-' || n > limit) {
        Fail("%s %s is not a number from 0 to %u", what, word, limit);
        return false;
    }
    value = uint32_t(n);
    return true;
}

} // namespace

bool ParseBlockAddress(char *const *args, SBlockAddress &address) {
    uint32_t type = 0, subtype = 0;
    if (!ParseNumber(args[0], 0xFFFF, "TYPE", type) || !ParseNumber(args[1], 0xFFFF, "SUBTYPE", subtype) ||
        !ParseNumber(args[2], 0xFFFFFFFE, "ID", address.id))
        return false;
    if (type == 0) {
        Fail("TYPE 0 marks an empty slot and names no block");
        return false;
    }
    address.type = uint16_t(type);
    address.subtype = uint16_t(subtype);
    return true;
}

template <class TContainer> bool OpenAs(char const *path, bool write, TContainer &vqr, char const *kind) {
    qv::CString wide(path);
    struct stat info {};
    bool regular = ::stat(path, &info) == 0 && S_ISREG(info.st_mode);
    if (write && !regular && errno == ENOENT) {
        if (vqr.Create(wide)) return true;
        Fail("%s", WriteFailure(path).c_str());
        return false;
    }
    // Writers open for reading first and then reopen: a first open never writes.
    if (!vqr.Open(wide, true)) {
        std::string why = regular && ::access(path, R_OK) == 0
                              ? std::string(path) + " is not a sound " + kind + " container"
                              : OpenFailure(path, false);
        Fail("%s", why.c_str());
        return false;
    }
    if (write && !vqr.ReOpenForWrite()) {
        Fail("%s", OpenFailure(path, true).c_str());
        return false;
    }
    return true;
}

bool OpenContainer(char const *path, bool write, qv::CVQRFile &container) {
    return OpenAs(path, write, container, "VQR");
}

bool OpenContainer(char const *path, bool write, qv::CXDNFile &container) {
    return OpenAs(path, write, container, "XDN");
}

uint32_t FindBlock(qv::CIndexedContainer const &vqr, SBlockAddress const &address) {
    for (uint32_t i = 0; i < vqr.GetIndexCount(); ++i) {
        qv::CIndexedContainer::CIndex const *index = vqr.GetIndexAt(i);
        if (index->m_type == address.type && index->m_subtype == address.subtype && index->m_id == address.id) return i;
    }
    return qv::CIndexedContainer::kNoIndex;
}

} // namespace qvtool
