#include "qv/core/Log.h"

#include <string>

#include "qv/core/DebugOutput.h"
#include "qv/core/LogText.h"
#include "qv/files/File.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/platform/ConsoleOutput.h"
#include "qv/platform/SharedAppend.h"
#include "qv/threads/AutoLock.h"

namespace qv {

namespace {

constexpr uint32_t kLogOpenFlags = 0x361; // open or create, write, at the end, share read and write
constexpr uint16_t kMemoryGrowth = 4096;  // bytes: kept text grows in whole lines, not by 5

CString FormatText(char16_t const *fmt, va_list args) {
    CString text;
    text.FormatV(fmt, args);
    return text;
}

} // namespace

CLog::CLog() {
    memory.SetGrowthRate(kMemoryGrowth);
}

CLog::CLog(CLog const &other) : CLog() {
    *this = other;
}

CLog &CLog::operator=(CLog const &other) {
    if (this == &other) return *this;
    CMemFile text; // taken under other's lock, given under ours: never both at once
    bool otherVerbose, otherPrintConsole;
    {
        CAutoCriticalSection guard(&other.lock);
        text = other.memory;
        otherVerbose = other.verbose;
        otherPrintConsole = other.printConsole;
    }
    CAutoCriticalSection guard(&lock);
    memory = text;
    verbose = otherVerbose;
    printConsole = otherPrintConsole;
    return *this;
}

CLog::~CLog() {
    delete file;
}

bool CLog::SetFile(IFileSystem *fs, CString path) {
    IFileSystem &target = fs ? *fs : GetFileSystem();
    CAutoCriticalSection guard(&lock);
    if (file) return false;
    IFile *opened = target.CreateFileW(path.GetUTF16(), kLogOpenFlags);
    if (!opened) return false;
    // Only a disk file is shared with other processes; without this it is
    // still a good log for one process.
    if (auto *disk = dynamic_cast<CFile *>(opened)) platform::SetAppendOnly(disk->GetHandle());
    if (!WriteKeptText(*opened)) {
        delete opened;
        return false;
    }
    file = opened;
    memory.Reset();
    memory.Destroy();
    return true;
}

// The kept text goes out in one write; if it does not all pass, the file is
// cut back to where it ended (so that a later SetFile does not repeat a part)
// and the text stays in memory.
bool CLog::WriteKeptText(IFile &target) {
    uint32_t size = memory.GetSize();
    if (size == 0) return true;
    int64_t end = target.GetSize();
    if (end < 0) return false;
    if (target.Write(memory.GetData(), size) == size) return true;
    target.SetSize(end);
    return false;
}

bool CLog::SetFile(CString path) {
    return SetFile(&GetFileSystem(), path);
}

bool CLog::Write(char16_t const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    CString text = FormatText(fmt, args);
    va_end(args);
    return Put(text);
}

bool CLog::WriteLine(char16_t const *fmt, ...) {
    va_list args;
    va_start(args, fmt);
    CString text = LogTimePrefixNow() + FormatText(fmt, args) + u"\n";
    va_end(args);
    return Put(text);
}

CLogEntry CLog::StartEntry() {
    return CLogEntry(this, LogTimePrefixNow(), getVerbose());
}

bool CLog::Put(CString const &text) {
    std::string bytes = ToLogBytes(text);
    uint32_t size = uint32_t(bytes.size());
    bool toFile, stored;
    {
        CAutoCriticalSection guard(&lock);
        toFile = file != nullptr;
        // One write: one whole entry.
        stored = (toFile ? static_cast<IFile *>(file) : &memory)->Write(bytes.data(), size) == size;
        if (printConsole) platform::WriteStandardOutput(bytes.data(), bytes.size());
    }
    if (!toFile) OutputDebugStringA(bytes.c_str()); // outside the lock: a hook may log
    return stored;
}

bool CLog::ReplaceFlag(bool CLog::*flag, bool value) {
    CAutoCriticalSection guard(&lock);
    bool previous = this->*flag;
    this->*flag = value;
    return previous;
}

bool CLog::ReadFlag(bool CLog::*flag) {
    CAutoCriticalSection guard(&lock);
    return this->*flag;
}

bool CLog::getVerbose() {
    return ReadFlag(&CLog::verbose);
}

bool CLog::setVerbose(bool value) {
    return ReplaceFlag(&CLog::verbose, value);
}

bool CLog::getPrintConsole() {
    return ReadFlag(&CLog::printConsole);
}

bool CLog::setPrintConsole(bool print) {
    return ReplaceFlag(&CLog::printConsole, print);
}

} // namespace qv
