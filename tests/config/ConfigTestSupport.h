// Helpers shared by the settings tests: the stores under one factory, each
// with what it does differently by design, and small text helpers.
#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <functional>
#include <memory>
#include <set>
#include <string>

#include "filesystems/FileSystemTestSupport.h"
#include "qv/config/INIStore.h"
#include "qv/config/MemStore.h"
#include "qv/config/RegStore.h"
#include "qv/config/SqliteStore.h"
#include "qv/config/XMLStore.h"

namespace qv::test {

inline std::string Utf8(CString const &text) {
    return text.GetUTF8();
}

inline std::set<std::string> NameSet(TArray<CString> const &names) {
    std::set<std::string> set;
    for (uint32_t i = 0; i < names.GetSize(); ++i)
        set.insert(Utf8(names.GetAt(i)));
    return set;
}

// Switches the process to a locale with a decimal comma for one scope.
class GermanLocale {
public:
    GermanLocale() : active(std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr) {}
    ~GermanLocale() { std::setlocale(LC_ALL, "C"); }
    bool Active() const { return active; }

private:
    bool active;
};

// A scratch directory in memory (/dev/shm) where there is one, for the
// tests whose many synced saves would otherwise wait on a disk.
class MemoryScratchDir {
public:
    MemoryScratchDir() {
        std::error_code error;
        std::string base = std::filesystem::is_directory("/dev/shm", error) ? "/dev/shm/" : testing::TempDir();
        std::string pattern = base + "qv_config_XXXXXX";
        path = mkdtemp(pattern.data()) ? pattern : std::string();
    }
    ~MemoryScratchDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::string Path(char const *name) const { return path + "/" + name; }
    CString Text(char const *name) const { return CString(Path(name).c_str()); }
    std::string path;
};

// One kind of store and the ways it differs from CMemStore by design.
struct StoreKind {
    std::string name;
    bool storesDefaults = true; // a Get of a missing key stores the default
    bool missingIsLeaf = true;  // isLeaf of a missing path is true (and makes it)
    bool caseBlindNames = true; // names differing in case are one key
    bool listEmptiesFirst = false;
    bool keepsTypes = false;          // a value keeps the type it was first written with
    bool valuesHoldDelimiters = true; // a value may hold '=', tab (INI may not)
    bool persists = true;
    bool emptyValuesVanish = false; // a key holding "" is gone after a reload
};

// A store of the kind over a scratch directory. Reopen gives a second store
// over what the first one persisted (saving it first where the kind saves
// whole files).
class StoreUnderTest {
public:
    StoreUnderTest(StoreKind const &kind, ScratchDir const &dir) : kind(kind), dir(dir) { store = Make(); }

    IConfigStore &Store() { return *store; }

    std::unique_ptr<IConfigStore> Reopen() {
        if (kind.name == "memory") return std::make_unique<CMemStore>(static_cast<CMemStore &>(*store));
        if (kind.name == "ini") return SavedAndLoaded<CINIStore>("store.ini");
        if (kind.name == "xml") return SavedAndLoaded<CXMLStore>("store.xml");
        return Make();
    }

private:
    template <class FileStore> std::unique_ptr<IConfigStore> SavedAndLoaded(char const *name) {
        EXPECT_TRUE(static_cast<FileStore &>(*store).Save(dir.Text(name)));
        auto again = std::make_unique<FileStore>();
        EXPECT_TRUE(again->Load(dir.Text(name)));
        return again;
    }

    std::unique_ptr<IConfigStore> Make() {
        if (kind.name == "memory") return std::make_unique<CMemStore>();
        if (kind.name == "ini") return std::make_unique<CINIStore>();
        if (kind.name == "xml") return std::make_unique<CXMLStore>();
        if (kind.name == "sqlite") {
            auto sqlite = std::make_unique<CsqliteStore>();
            EXPECT_TRUE(sqlite->Open(dir.Text("store.db")));
            return sqlite;
        }
        RegSetRootDirectory(HKEY_CURRENT_USER, dir.Text("registry"));
        auto reg = std::make_unique<CRegStore>();
        reg->SetRoot(HKEY_CURRENT_USER, u"Software\\qv tests");
        return reg;
    }

    StoreKind kind;
    ScratchDir const &dir;
    std::unique_ptr<IConfigStore> store;
};

inline std::vector<StoreKind> AllStoreKinds() {
    StoreKind memory{"memory"};
    memory.persists = false;
    StoreKind ini{"ini"};
    ini.valuesHoldDelimiters = false;
    StoreKind xml{"xml"};
    xml.emptyValuesVanish = true;
    StoreKind sqlite{"sqlite"};
    sqlite.missingIsLeaf = false;
    sqlite.caseBlindNames = false;
    sqlite.keepsTypes = true;
    StoreKind reg{"registry"};
    reg.storesDefaults = false;
    reg.missingIsLeaf = false;
    reg.listEmptiesFirst = true;
    return {memory, ini, xml, sqlite, reg};
}

} // namespace qv::test
