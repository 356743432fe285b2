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

#include <map>

#include "qv/core/StringFunctions.h"
#include "qv/files/MemFile.h"

namespace qv::test {

// Files that live in memory under flat names and outlive their handles, for
// hosting containers in memory. A fault can be armed: the call with number
// failAt (counted over every file's operations from 1) fails once; a write
// then keeps half its bytes.
class MemoryHosts : public IFileSystem {
public:
    int64_t calls = 0;
    int64_t failAt = 0;

    CMemFile *Find(char16_t const *path) {
        auto found = files.find(path ? path : u"");
        return found == files.end() ? nullptr : found->second.get();
    }
    std::string Bytes(char16_t const *path) {
        CMemFile *file = Find(path);
        return file ? std::string(reinterpret_cast<char const *>(file->GetData()), size_t(file->ConstGetSize()))
                    : std::string("<none>");
    }
    void SetBytes(char16_t const *path, std::string const &bytes) {
        std::unique_ptr<CMemFile> &file = files[path];
        if (!file) file = std::make_unique<CMemFile>();
        file->SetGrowthRate(0xF000);
        file->Reset();
        file->Write(bytes.data(), uint32_t(bytes.size()));
    }

    IFile *CreateFileW(char16_t const *path, uint32_t flags) override {
        CMemFile *file = Find(path);
        if ((file && (flags & 0x04)) || (!file && (flags & 0x02))) return nullptr;
        if (!file) {
            SetBytes(path, "");
            file = Find(path);
        }
        if (flags & 0x08) file->SetSize(0);
        return new Handle(*this, *file);
    }
    CDirectoryListing GetDirectoryListing(char16_t const *dir, char16_t const *) override {
        return CDirectoryListing(this, dir);
    }
    CDirectoryEntry GetFileInfo(char16_t const *path) override {
        CDirectoryEntry entry;
        if (CMemFile *file = Find(path)) {
            entry.SetPath(path);
            entry.SetName(GetFilename(path));
            entry.attributes = kAttributeFile;
            entry.size = file->ConstGetSize();
        }
        return entry;
    }
    bool GetFullPath(char16_t *out, char16_t const *path, int size) override {
        StrCpy(out, path, size_t(size));
        return true;
    }
    bool DeleteFileW(char16_t const *path) override { return files.erase(path) == 1; }
    bool CreateDirectoryW(char16_t const *, bool) override { return false; }
    bool RemoveDirectoryW(char16_t const *, bool) override { return false; }
    bool SetCurrentWorkingDirectory(char16_t const *) override { return false; }
    bool GetCurrentWorkingDirectory(char16_t *, int) override { return false; }
    using IFileSystem::GetCurrentWorkingDirectory;
    using IFileSystem::GetFullPath;

private:
    bool Fails() { return ++calls == failAt; }

    // A position of its own over a shared memory file.
    class Handle : public IFile {
    public:
        Handle(MemoryHosts &owner, CMemFile &file) : owner(owner), file(file) {}
        char16_t *GetFilename(char16_t *buf, int) override {
            buf[0] = 0;
            return buf;
        }
        IFileSystem &GetFileSystem() override { return owner; }
        uint32_t Write(void const *p, uint32_t n) override {
            if (owner.Fails()) n /= 2;
            file.SetPosition(position);
            uint32_t done = file.Write(p, n);
            position += done;
            return done;
        }
        uint32_t Read(void *p, uint32_t n) override {
            if (owner.Fails()) return 0;
            file.SetPosition(position);
            uint32_t done = file.Read(p, n);
            position += done;
            return done;
        }
        int64_t GetSize() override { return file.GetSize(); }
        int64_t GetPosition() override { return position; }
        int64_t Seek(int64_t offset, uint32_t origin) override {
            int64_t from = origin == 1 ? 0 : origin == 2 ? position : file.GetSize();
            position = from + offset < 0 ? 0 : from + offset;
            return position;
        }
        bool SetSize(int64_t size) override { return !owner.Fails() && file.SetSize(size); }
        void Flush() override {}
        void Close() override {}

    private:
        MemoryHosts &owner;
        CMemFile &file;
        int64_t position = 0;
    };

    std::map<std::u16string, std::unique_ptr<CMemFile>> files;
};

} // namespace qv::test
