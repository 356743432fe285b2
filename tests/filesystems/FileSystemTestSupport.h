// Helpers shared by the file-system tests: scratch directories, whole-file
// reads and writes through a file system, and a forwarding file system that
// tests derive from to watch or spoil what reaches the real one.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include "qv/core/String.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv::test {

// A fresh directory under the test temp dir, removed with its contents.
class ScratchDir {
public:
    ScratchDir() {
        std::string pattern = testing::TempDir() + "qv_fs_XXXXXX";
        path = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~ScratchDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::string Path(char const *name) const { return path + "/" + name; }
    CString Text(char const *name = nullptr) const { return CString((name ? Path(name) : path).c_str()); }
    std::string path;
};

inline std::u16string U16(char16_t const *text) {
    return text ? text : u"";
}
inline std::u16string U16(CString const &text) {
    return text.GetUTF16();
}

inline bool WriteWhole(IFileSystem &fs, CString const &path, std::string const &bytes, uint32_t flags = 0x28) {
    std::unique_ptr<IFile> file(fs.CreateFileW(path.GetUTF16(), flags));
    return file && file->Write(bytes.data(), uint32_t(bytes.size())) == bytes.size();
}

// The whole file, or "<none>" when it cannot be opened. Opens for reading
// and lets others read and write meanwhile (a log keeps its file open).
inline std::string ReadWhole(IFileSystem &fs, CString const &path) {
    std::unique_ptr<IFile> file(fs.CreateFileW(path.GetUTF16(), 0x312));
    if (!file) return "<none>";
    std::string bytes(size_t(file->GetSize()), '\0');
    bytes.resize(file->Read(bytes.data(), uint32_t(bytes.size())));
    return bytes;
}

// Passes every operation on to another file system.
class ForwardingFileSystem : public IFileSystem {
public:
    explicit ForwardingFileSystem(IFileSystem &inner) : inner(inner) {}

    IDirectoryMonitor *MonitorDirectory(char16_t const *dir, uint32_t flags) override {
        return inner.MonitorDirectory(dir, flags);
    }
    uint32_t GetCapabilities() override { return inner.GetCapabilities(); }
    IFile *CreateFileW(char16_t const *path, uint32_t flags) override { return inner.CreateFileW(path, flags); }
    CDirectoryListing GetDirectoryListing(char16_t const *dir, char16_t const *pattern) override {
        return inner.GetDirectoryListing(dir, pattern);
    }
    CDirectoryEntry GetFileInfo(char16_t const *path) override { return inner.GetFileInfo(path); }
    bool SetFileAttributesW(char16_t const *path, uint32_t attributes) override {
        return inner.SetFileAttributesW(path, attributes);
    }
    bool SetFileModifiedTime(char16_t const *path, CDateTime time) override {
        return inner.SetFileModifiedTime(path, time);
    }
    bool GetFullPath(char16_t *out, char16_t const *path, int size) override {
        return inner.GetFullPath(out, path, size);
    }
    bool DeleteFileW(char16_t const *path) override { return inner.DeleteFileW(path); }
    bool CreateDirectoryW(char16_t const *path, bool recursive) override {
        return inner.CreateDirectoryW(path, recursive);
    }
    bool RemoveDirectoryW(char16_t const *path, bool recursive) override {
        return inner.RemoveDirectoryW(path, recursive);
    }
    bool SetCurrentWorkingDirectory(char16_t const *path) override { return inner.SetCurrentWorkingDirectory(path); }
    bool GetCurrentWorkingDirectory(char16_t *out, int size) override {
        return inner.GetCurrentWorkingDirectory(out, size);
    }
    bool RenameFileW(char16_t const *oldPath, char16_t const *newPath) override {
        return inner.RenameFileW(oldPath, newPath);
    }
    using IFileSystem::GetCurrentWorkingDirectory;
    using IFileSystem::GetFullPath;

protected:
    IFileSystem &inner;
};

// An IFile that passes everything on to an owned file, for spoiling one call.
class ForwardingFile : public IFile {
public:
    explicit ForwardingFile(IFile *owned) : inner(owned) {}
    char16_t *GetFilename(char16_t *buf, int size) override { return inner->GetFilename(buf, size); }
    IFileSystem &GetFileSystem() override { return inner->GetFileSystem(); }
    uint32_t Write(void const *p, uint32_t n) override { return inner->Write(p, n); }
    uint32_t Read(void *p, uint32_t n) override { return inner->Read(p, n); }
    int64_t GetSize() override { return inner->GetSize(); }
    int64_t GetPosition() override { return inner->GetPosition(); }
    int64_t Seek(int64_t offset, uint32_t origin) override { return inner->Seek(offset, origin); }
    bool SetSize(int64_t size) override { return inner->SetSize(size); }
    void Flush() override { inner->Flush(); }
    void Close() override { inner->Close(); }

protected:
    std::unique_ptr<IFile> inner;
};

} // namespace qv::test
