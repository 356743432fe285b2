// Shared by the qv pod commands: opening a table and naming its cells.
#pragma once

#include <string>

#include "qv/tables/PODFile.h"

namespace qvtool {

// Loads path into pod; false after printing one sentence on standard error.
bool OpenPod(char const *path, qv::CPODFile &pod);
// A row or column number below limit, or false after printing a sentence.
bool PodIndex(char const *text, uint32_t limit, char const *what, uint32_t &out);
std::string PodText(char16_t const *value);

} // namespace qvtool
