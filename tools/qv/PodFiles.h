// Shared by the qv pod commands: opening a table and naming its cells.
#pragma once

#include <string>

#include "qv/tables/PODFile.h"

namespace qvtool {

// Loads path into pod; false after printing one sentence on standard error.
bool OpenPod(char const *path, qv::CPODFile &pod);
// A row or column number below limit, or false after printing a sentence.
bool PodIndex(char const *text, uint32_t limit, char const *what, uint32_t &out);
// The cell that rowText and columnText (a number or a column's name) name, or
// false after printing a sentence.
bool PodCell(qv::CPODFile &pod, char const *rowText, char const *columnText, uint32_t &row, uint32_t &col);
std::string PodText(char16_t const *value);
// "cannot read row R of PATH", with the table's reason when it gives one;
// returns kExitFailed.
int CannotReadRow(qv::CPODFile &pod, uint32_t row, char const *path);
// Saves pod over path (the old file stays on failure); false after printing
// one sentence with the table's reason when it gives one.
bool SavePod(qv::CPODFile &pod, char const *path);

} // namespace qvtool
