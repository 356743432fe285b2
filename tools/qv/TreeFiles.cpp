// What the tree-format sub-commands share.
#include "TreeFiles.h"

namespace qvtool {

std::string Indent(unsigned depth) {
    return std::string(size_t(depth) * 2, ' ');
}

} // namespace qvtool
