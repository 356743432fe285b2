// What the tree-format sub-commands (sbf, xml, tags) share: reading a whole
// input ("-": standard input) into memory and writing an output ("-":
// standard output).
#pragma once

#include "Input.h"

#include <string>

#include "qv/files/MemFile.h"

namespace qvtool {

// f's bytes to path through a temporary file and rename (or to standard
// output). On failure the message is printed and false returned.
bool WriteOutput(char const *path, qv::CMemFile &f);

// A line of indentation for a depth.
std::string Indent(unsigned depth);

} // namespace qvtool
