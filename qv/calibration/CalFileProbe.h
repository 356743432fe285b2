/// @file
/// Whether a table file that a calibration names exists (internal to
/// qv/calibration). A missing file and an unreadable one get different
/// statuses, so the question is asked before the reading.
#pragma once

namespace qv::calibration_detail {

/// True if path names a file (not a directory) on the disk file system.
bool CalFileExists(char16_t const *path);

} // namespace qv::calibration_detail
