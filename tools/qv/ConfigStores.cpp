// Opening the stores of qv config by their STORE word.
#include "ConfigStores.h"

#include <cstring>

#include "Commands.h"
#include "Input.h"
#include "qv/config/INIStore.h"
#include "qv/config/RegStore.h"
#include "qv/config/SqliteStore.h"
#include "qv/config/XMLStore.h"
#include "qv/core/String.h"
#include "qv/files/MemFile.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/Path.h"

namespace qvtool {

namespace {

bool EndsWith(char const *text, char const *ending) {
    size_t n = std::strlen(text), m = std::strlen(ending);
    return n >= m && std::strcmp(text + n - m, ending) == 0;
}

template <class FileStore> class FileConfigStore : public ConfigStore {
public:
    explicit FileConfigStore(char const *path) : path(path) {}
    qv::IConfigStore &Store() override { return store; }
    bool Save() override { return store.Save(path); }
    bool ReadBack(qv::CString const &at, qv::CString &value) override {
        qv::CMemFile file;
        FileStore again;
        if (!store.Save(&file)) return false;
        file.SeekToBegin();
        if (!again.Load(&file)) return false;
        value = again.GetString(at, u"");
        return true;
    }
    bool Load(bool mustExist) {
        if (!qv::FileSystem->FileExists(path)) return !mustExist;
        return store.Load(path);
    }

private:
    qv::CString path;
    FileStore store;
};

class SqliteConfigStore : public ConfigStore {
public:
    qv::IConfigStore &Store() override { return store; }
    qv::CsqliteStore store;
};

class RegConfigStore : public ConfigStore {
public:
    explicit RegConfigStore(qv::HKEY root) : root(root) { store.SetRoot(root, u""); }
    qv::IConfigStore &Store() override { return store; }
    // The store refuses its own base, so the root's keys come from the registry.
    bool List(qv::TArray<qv::CString> &names, char16_t const *path) override {
        if (!qv::path::RemoveTrailingSlash(store.ExpandPath(path)).IsEmpty()) return store.list(names, path);
        names.Empty();
        char16_t name[1024];
        for (uint32_t index = 0;; ++index) {
            uint32_t units = 1024;
            if (qv::RegEnumKeyExW(root, index, name, &units) != qv::ERROR_SUCCESS) break;
            names.Add(qv::CString(name));
        }
        return true;
    }

private:
    qv::HKEY root;
    qv::CRegStore store;
};

template <class FileStore> std::unique_ptr<ConfigStore> OpenFile(char const *word, bool mustExist) {
    if (mustExist && !CheckInputFile(word)) return nullptr;
    auto opened = std::make_unique<FileConfigStore<FileStore>>(word);
    if (opened->Load(mustExist)) return opened;
    Fail("cannot read the settings file '%s'.", word);
    return nullptr;
}

} // namespace

std::unique_ptr<ConfigStore> OpenConfigStore(char const *word, bool mustExist) {
    if (std::strcmp(word, "reg:user") == 0) return std::make_unique<RegConfigStore>(qv::HKEY_CURRENT_USER);
    if (std::strcmp(word, "reg:machine") == 0) return std::make_unique<RegConfigStore>(qv::HKEY_LOCAL_MACHINE);
    if (EndsWith(word, ".ini")) return OpenFile<qv::CINIStore>(word, mustExist);
    if (EndsWith(word, ".xml")) return OpenFile<qv::CXMLStore>(word, mustExist);
    if (EndsWith(word, ".db")) {
        if (mustExist && !CheckInputFile(word)) return nullptr;
        auto opened = std::make_unique<SqliteConfigStore>();
        if (opened->store.Open(qv::CString(word))) return opened;
        if (!qv::FileSystem->FileExists(qv::CString(word))) return Fail("%s", WriteFailure(word).c_str()), nullptr;
        Fail("'%s' does not open as an SQLite settings database.", word);
        return nullptr;
    }
    Fail("'%s' is not a settings store: give a .ini, .xml or .db file, reg:user or reg:machine.", word);
    return nullptr;
}

bool HasValue(ConfigStore &store, qv::CString const &path) {
    qv::CString full = store.Store().ExpandPath(path);
    qv::CString name = qv::path::GetFilename(full);
    qv::TArray<qv::CString> names;
    if (name.IsEmpty() || !store.List(names, qv::path::GetDirectory(full))) return false;
    for (uint32_t i = 0; i < names.GetSize(); ++i)
        if (names[i].EqualsNoCase(name)) return store.Store().isLeaf(full);
    return false;
}

} // namespace qvtool
