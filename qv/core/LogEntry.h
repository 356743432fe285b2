/// @file
/// CLogEntry: one log entry put together piece by piece and sent to its CLog
/// as a whole by Finish, so that the pieces stay together in the file.
///
/// CLog::StartEntry makes one; its text starts with the log's time prefix.
/// Write and WriteLine only add to the entry's own text (WriteLine adds "\n").
/// Finish sends the text and ends the entry: true, or false when the entry was
/// already finished (or taken over). An entry that is destroyed unfinished is
/// lost.
///
/// Taking over: the copy constructor and assignment move the entry, leaving
/// the source finished; assignment first finishes the target's own entry.
///
/// Percent signs: the text reaches the log as a format, so callers write "%%"
/// for a percent sign in an entry (existing callers do). Finish reads "%%" as
/// "%" and copies every other directive as it stands.
///
/// Threads: an entry belongs to one thread; Finish is as thread-safe as
/// CLog::Write.
#pragma once

#include <cstdarg>

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

class CLog;

/// @copydoc LogEntry.h
class QV_API CLogEntry {
public:
    /// An entry for log that starts with text; CLog::StartEntry makes them.
    CLogEntry(CLog *log, CString text, bool verbose);
    /// Takes other's entry over, leaving other finished.
    CLogEntry(CLogEntry &other);
    /// Finishes this entry, then takes other's over, leaving other finished.
    CLogEntry &operator=(CLogEntry &other);
    ~CLogEntry();

    /// False (and nothing added) once the entry is finished.
    ///@{
    bool Write(char16_t const *fmt, ...);
    bool WriteLine(char16_t const *fmt, ...);
    bool Finish();
    bool getVerbose(); ///< the log's verbose flag when the entry began
    ///@}

private:
    bool Append(char16_t const *fmt, va_list args, char16_t const *end);

    CLog *log; ///< null once finished or taken over
    CString text;
    bool verbose;
};

} // namespace qv
