// The settings stores of the qv config commands, chosen by the STORE word:
// a file ending in .ini, .xml or .db, or reg:user / reg:machine.
#pragma once

#include <memory>

#include "qv/config/IConfigStore.h"

namespace qvtool {

// An opened store; Save writes a file store back (the others keep their
// changes as they go).
class ConfigStore {
public:
    virtual ~ConfigStore() = default;
    virtual qv::IConfigStore &Store() = 0;
    virtual bool Save() { return true; }
    // The text path reads back as after a save and a fresh load: a file
    // store's form may keep less than its memory holds (an INI value ends at
    // its first '=' or tab). False if the store could not be formed.
    virtual bool ReadBack(qv::CString const &path, qv::CString &value) {
        value = Store().GetString(path, u"");
        return true;
    }
    // Lists path's children into names; the registry's roots list their keys.
    virtual bool List(qv::TArray<qv::CString> &names, char16_t const *path) { return Store().list(names, path); }
};

// Opens the store named by word. mustExist: a file store whose file is
// missing is an error. On failure the message is printed and null returned.
std::unique_ptr<ConfigStore> OpenConfigStore(char const *word, bool mustExist);

// Whether path holds a value (a leaf that exists), without making anything
// in a store that persists its reads.
bool HasValue(ConfigStore &store, qv::CString const &path);

} // namespace qvtool
