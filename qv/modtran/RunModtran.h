/// @file
/// RunModtran: runs the MODTRAN tool on a tape5 deck and loads its tape7.
///
/// The tool's directory is that of its path; the deck is saved there as
/// "tape5" and the table read from "tape7" beside it, so one run at a time may
/// use a directory. The tool runs as a hidden child process in that directory
/// (qv/platform/ChildProcess.h): standard input from /dev/null, its output
/// captured and searched for "*ERR*", no time limit.
///
/// RunModtran gives false when the deck cannot be saved, the tool does not
/// start, its output holds "*ERR*" (also split between two reads), it exits
/// with a status other than 0 or is killed, or the tape7 does not load
/// (CModtranTape7File::Load with columns). A tape7 left by an earlier run is
/// removed before the tool starts, so that a tool that writes nothing never
/// passes off the old table as its own.
///
/// The tool's path: SetModtranExePath stores a path that exists on the disk
/// (false, the path unchanged, otherwise), cut at 511 units. The default is
/// kDefaultModtranExePath: on Linux the tool has no fixed home, so it is
/// "/opt/modtran/mod4v3r1" (the Windows build's was "c:\modtran\mod4v3r1.exe").
///
/// Threads: the path is process-wide and not guarded; set it before runs
/// start. RunModtran blocks its thread while the tool runs.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

class CModtranTape5File;
class CModtranTape7File;

/// The tool's path until SetModtranExePath changes it.
inline constexpr char16_t kDefaultModtranExePath[] = u"/opt/modtran/mod4v3r1";

/// Runs the tool on tape5 and loads the columns of its tape7 into tape7
/// (see the top of this file for the failures).
QV_API bool RunModtran(CModtranTape5File &tape5, CModtranTape7File &tape7, uint64_t columns);
QV_API bool SetModtranExePath(char16_t const *path); ///< false, nothing changed, unless path exists
QV_API CString GetModtranExePath(); ///< the path in use

} // namespace qv
