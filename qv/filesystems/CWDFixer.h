/// @file
/// CCWDFixer: a scope guard for the process's working directory. The
/// constructor notes the disk file system's working directory, the destructor
/// sets it back, so an operation that has to change directory leaves the
/// process as it found it. Copies note the same directory.
///
/// Failure: if the directory cannot be read it is noted as empty, and the
/// destructor then changes nothing. Threads: the working directory is
/// process-wide; guard it only where no other thread depends on it meanwhile.
#pragma once

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc CWDFixer.h
class QV_API CCWDFixer {
public:
    CCWDFixer();
    CCWDFixer(CCWDFixer const &other) = default; ///< notes the same directory
    CCWDFixer &operator=(CCWDFixer const &other) = default; ///< notes the same directory
    ~CCWDFixer();

private:
    CString directory;
};

} // namespace qv
