// The process log's handle and the plain qvLog* entry points.
#include "qv/core/Log.h"

namespace qv {

template class TSingletonPtr<CLog>;
TSingletonPtr<CLog> gLog;

void qvLogWriteA(char const *text) {
    gLog->Write(u"%S", text);
}

void qvLogWriteW(char16_t const *text) {
    gLog->Write(u"%s", text);
}

void qvLogWriteLineA(char const *text) {
    gLog->WriteLine(u"%S", text);
}

void qvLogWriteLineW(char16_t const *text) {
    gLog->WriteLine(u"%s", text);
}

bool qvLogIsVerbose() {
    return gLog->getVerbose();
}

} // namespace qv
