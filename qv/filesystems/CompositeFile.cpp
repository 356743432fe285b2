#include "qv/filesystems/CompositeFile.h"

#include "qv/core/StringFunctions.h"
#include "qv/core/WideChar.h"
#include "qv/threads/AutoLock.h"

namespace qv {

namespace {

struct Registry {
    CCriticalSection lock;
    ICompositeFile::CRegister formats;
};

Registry &TheRegistry() {
    static Registry registry; // lives for the whole process
    return registry;
}

// A copy of the formats, so tests and opens run without the lock.
ICompositeFile::CRegister Formats() {
    Registry &registry = TheRegistry();
    CAutoCriticalSection guard(&registry.lock);
    return registry.formats;
}

} // namespace

bool ICompositeFile::GetDefaultFile(char16_t *) {
    return false;
}

uint32_t ICompositeFile::Register(char16_t const *name, ICompositeFile *(*create)(),
                                  bool (*test)(IFileSystem *, char16_t const *)) {
    if (!name || !create || !test) return kCompositeNameTaken;
    Registry &registry = TheRegistry();
    CAutoCriticalSection guard(&registry.lock);
    for (uint32_t i = 0; i < registry.formats.GetSize(); ++i)
        if (wcscmp(registry.formats.GetAt(i).name, name) == 0) return kCompositeNameTaken;
    REGISTER format{};
    StrCpy(format.name, name, 128);
    format.create = create;
    format.test = test;
    return registry.formats.Add(format) ? registry.formats.GetSize() - 1 : kCompositeNameTaken;
}

bool ICompositeFile::IsCompositeFile(IFileSystem *fs, char16_t const *path) {
    CRegister formats = Formats();
    for (uint32_t i = 0; i < formats.GetSize(); ++i)
        if (formats.GetAt(i).test(fs, path)) return true;
    return false;
}

ICompositeFile *ICompositeFile::OpenCompositeFile(IFileSystem *fs, char16_t const *path) {
    CRegister formats = Formats();
    for (uint32_t i = 0; i < formats.GetSize(); ++i) {
        REGISTER const &format = formats.GetAt(i);
        if (!format.test(fs, path)) continue;
        ICompositeFile *file = format.create();
        if (file && file->OpenComposite(fs, path)) return file;
        delete file;
    }
    return nullptr;
}

} // namespace qv
