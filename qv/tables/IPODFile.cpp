#include "qv/tables/IPODFile.h"

namespace qv {

IPODFile::~IPODFile() = default;

void IPODFile::SetError(char16_t const *text) {
    size_t n = 0;
    for (; text && text[n] && n + 1 < sizeof error / sizeof error[0]; ++n) error[n] = text[n];
    error[n] = 0;
}

} // namespace qv
