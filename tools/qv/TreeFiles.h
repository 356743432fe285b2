// What the tree-format sub-commands (sbf, xml, tags) share: reading a whole
// input ("-": standard input) into memory, and indenting a tree.
#pragma once

#include "Input.h"

#include <string>

#include "qv/files/MemFile.h"

namespace qvtool {

// A line of indentation for a depth.
std::string Indent(unsigned depth);

} // namespace qvtool
