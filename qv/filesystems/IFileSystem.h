// The contract of a tree of named files. Only the identity of a file system is
// needed by the file layer so far; the operations join this class with the
// file-system layer.
#pragma once

#include "qv/core/Export.h"

namespace qv {

class QV_API IFileSystem {
public:
    virtual ~IFileSystem();
};

} // namespace qv
