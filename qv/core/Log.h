/// @file
/// CLog: the process log, and its global handle gLog with the plain qvLog*
/// entry points that the library itself calls.
///
/// Text. Write formats with the library's wide printf grammar and stores UTF-8
/// with every line end as CR LF (a lone CR or LF becomes CR LF; CR LF stays).
/// WriteLine puts the present UTC time first, as "[MM-DD-YYYY HH:MM:SS]: ",
/// and "\n" (so CR LF) last. Until SetFile succeeds the text is kept in
/// memory (up to 1 GiB; more is dropped) and also sent to the debug text sink
/// (qv/core/DebugOutput.h) so that it can be seen meanwhile; SetFile writes the
/// kept text to the file first. With printConsole set, text also goes to
/// standard output.
///
/// The file. SetFile opens the file once (open or create, write, at the end,
/// others may read and write) and appends every later text with one write, so
/// several processes may share one log file: their entries never overwrite or
/// split each other. A second SetFile, or one that cannot open the file or
/// cannot write all of the kept text to it, returns false: the text stays in
/// memory and keeps collecting there, and the file is cut back to its old end
/// (a writer that appended in between would lose its entry to that cut).
/// SetFile(fs, path) opens the file through fs (null: the disk file system);
/// SetFile(path) uses the disk.
///
/// Ownership: the log owns its file and closes it when destroyed. A copy takes
/// the kept text and the flags but no file (the file stays with its original).
///
/// Results: Write and WriteLine return true if the whole text was stored: in
/// the file when there is one, in memory otherwise; false if the file refused
/// it (a full disk) or memory is full. setVerbose and setPrintConsole return
/// the previous value.
///
/// Threads: every member is thread-safe (one recursive lock per log); a write
/// that a debug-sink hook makes from within the log's echo is allowed.
#pragma once

#include <cstdarg>

#include "qv/core/Export.h"
#include "qv/core/LogEntry.h"
#include "qv/core/Singleton.h"
#include "qv/core/String.h"
#include "qv/files/MemFile.h"
#include "qv/threads/CriticalSection.h"

namespace qv {

class IFile;
class IFileSystem;

/// @copydoc Log.h
class QV_API CLog {
public:
    CLog();
    /// Takes other's kept text and flags, but no file: the file stays with other.
    ///@{
    CLog(CLog const &other);
    CLog &operator=(CLog const &other);
    ///@}
    ~CLog();

    /// Opens path through fs (null: the disk) for appending and writes the kept
    /// text to it. False for a second call, a file that cannot be opened or
    /// kept text that cannot be written (the text then stays in memory).
    bool SetFile(IFileSystem *fs, CString path);
    bool SetFile(CString path); ///< on the disk file system
    /// Formats and stores the text; WriteLine adds the time prefix and a line
    /// end. True if the whole text was stored.
    ///@{
    bool Write(char16_t const *fmt, ...);
    bool WriteLine(char16_t const *fmt, ...);
    ///@}
    /// A new entry whose text starts with the time prefix and which carries the
    /// log's verbose flag; see LogEntry.h.
    CLogEntry StartEntry();
    /// The verbose flag, for callers to consult (the log itself writes
    /// everything); the setter returns the previous value.
    ///@{
    bool getVerbose();
    bool setVerbose(bool verbose);
    ///@}
    /// Whether text also goes to standard output; the setter returns the
    /// previous value.
    ///@{
    bool getPrintConsole();
    bool setPrintConsole(bool print);
    ///@}

private:
    friend class CLogEntry;
    /// Stores text as it stands (no format), normalised to CR LF lines.
    ///@{
    bool Put(CString const &text);
    bool ReplaceFlag(bool CLog::*flag, bool value);
    bool ReadFlag(bool CLog::*flag);
    bool WriteKeptText(IFile &target);
    ///@}

    IFile *file = nullptr; ///< owned; null until SetFile
    CMemFile memory;       ///< the text while there is no file
    bool verbose = false;
    bool printConsole = false;
    mutable CCriticalSection lock;
};

/// The process's log, built on first use; one instance inside libqv.so.
///@{
extern template class TSingletonPtr<CLog>;
extern QV_API TSingletonPtr<CLog> gLog; ///< the process's CLog, built on first use
///@}

/// Plain entry points: the argument is text, not a format ("%" is kept as it
/// is). The A forms take UTF-8. The Line forms go through WriteLine.
///@{
QV_API void qvLogWriteA(char const *text);
QV_API void qvLogWriteW(char16_t const *text);
QV_API void qvLogWriteLineA(char const *text);
QV_API void qvLogWriteLineW(char16_t const *text);
///@}
/// With arguments after it, the text is a format (the library's own callers,
/// such as CFile::Open, log this way).
///@{
template <class... Args>
    requires(sizeof...(Args) > 0)
void qvLogWriteLineW(char16_t const *fmt, Args... args) {
    gLog->WriteLine(fmt, args...);
}
QV_API bool qvLogIsVerbose();
///@}

} // namespace qv
