// safTest: the library's built-in check of the SAF padding rules, for a
// program to run on the machine where it is installed.
//
// It makes the directory "<temp>/safTest" (<temp> is $TMPDIR, else /tmp,
// where the design's platform used c:\safTest) and runs one scenario on
// "<temp>/safTest/safTest.sfmov" four times: padding on and off, with and
// without a data segment. A scenario writes a base file with a camera's
// tags, then for each of three roads of saving (a new file, in place, save
// as) applies nine edits (none; adding and removing tags of 8, 16 and 26
// bytes; adding about 4 KiB of tags, saving and removing them again, without
// and with 8 bytes more) and compares the result with the base: every tag
// of the expected header present with the same value in the file and no
// other, and the data segment byte for byte. Each step and "Passed." or
// "Failed." go to the log, then "Test passed." or "Test failed."; the log is
// also written to "<temp>/safTest.log", each line ending in CR LF. The files
// stay in the directory for inspection.
//
// Threads: uses the disk from the calling thread; run one at a time.
#pragma once

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

// True when every scenario passed; log receives the lines.
QV_API bool safTest(TArray<CString> &log);
// The same with a log of its own (still written to the log file).
QV_API bool safTest();

} // namespace qv
