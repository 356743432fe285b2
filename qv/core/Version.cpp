// The version the library was built as.
#include "qv/core/Version.h"

extern "C" char const *qvVersion() {
    return QV_VERSION_STRING;
}
