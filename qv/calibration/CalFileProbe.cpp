// Calibration tables are read from the disk file system singleton: stored
// calibrations name them by disk path.
#include "qv/calibration/CalFileProbe.h"

#include "qv/filesystems/FileSystem.h"

namespace qv::calibration_detail {

bool CalFileExists(char16_t const *path) {
    return path && *path && GetFileSystem().FileExists(path);
}

} // namespace qv::calibration_detail
