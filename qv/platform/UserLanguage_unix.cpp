// OS binding: the user's language, from the locale variables of the environment.
#include <cstdlib>

#include "qv/core/LanguageTags.h"

namespace qv {

// POSIX precedence for message texts; an empty variable counts as unset.
uint32_t GetUserDefaultLCID() {
    for (char const *variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        char const *value = std::getenv(variable);
        if (!value || !*value) continue;
        uint32_t lcid = LcidFromLocaleName(value);
        return lcid ? lcid : kDefaultLCID;
    }
    return kDefaultLCID;
}

} // namespace qv
