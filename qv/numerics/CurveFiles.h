/// @file
/// Readers of the two text forms that curves come in: XY files (spectral
/// responses: wavelength in microns and a value, one pair a line) and the
/// three-column atmosphere table that MODTRAN writes (frequency in cm^-1,
/// transmission, radiance per cm^-1).
///
/// Both read lines of up to 512 bytes with IFile::GetLine; a longer line, like
/// the end of the file, ends the reading. A read that fails (not the end of
/// the file) makes both readers false, the values read before it kept. Numbers are read as C's atof reads
/// them in the "C" locale, whatever the process locale is. Any bytes are
/// accepted: a line that makes no sense ends the reading as described.
///
/// The (IFileSystem *, path) forms open the path for reading through that file
/// system (null: the disk) and close it again; a file that does not open gives
/// false. A null IFile gives false.
///
/// Ownership: the arrays are the caller's, the file stays open and the
/// caller's. Threads: no state. Nothing here throws.
#pragma once

#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

class IFile;
class IFileSystem;

/// Clears x and y, then per line: empty lines and lines starting with '#' are
/// skipped; white space at both ends is cut; the first two tokens separated by
/// comma, blank or tab are appended to x and y. A line without a second token
/// ends the reading. True whatever the lines held (the caller tests the count),
/// unless a read failed.
///@{
QV_API bool ReadXYFile(TArray<double> &x, TArray<double> &y, IFile *file);
QV_API bool ReadXYFile(TArray<double> &x, TArray<double> &y, IFileSystem *fileSystem, char16_t const *path);
///@}

/// Clears the three arrays, then per line, trimmed at both ends, empty ones
/// skipped: lines up to one beginning with "FREQ" (any case) are skipped; after
/// it a line beginning "-9999." ends the table. Each row gives frequency f,
/// transmission t and radiance r (blank-separated, further tokens ignored):
/// x gets 10000.0 / f (microns), y1 gets t, y2 gets r * (f * f / 10000.0)
/// (per micron), each row going in front of the earlier ones, so the table
/// comes out in rising wavelength. A row with fewer than three tokens ends the
/// reading with false, the rows before it kept; so does a table that the end
/// of the file or an overlong line cuts before its "-9999." line (a cut table
/// would otherwise pass for the whole). Otherwise true, also for a file
/// without a "FREQ" line (the arrays then stay empty).
///@{
QV_API bool ReadModtranFile(TArray<double> &x, TArray<double> &y1, TArray<double> &y2, IFile *file);
QV_API bool ReadModtranFile(TArray<double> &x, TArray<double> &y1, TArray<double> &y2, IFileSystem *fileSystem,
                            char16_t const *path);
///@}

} // namespace qv
