// qv config set STORE PATH VALUE: one setting written as text, the store saved.
#include <cstdio>

#include "Commands.h"
#include "ConfigStores.h"

namespace qvtool {

int RunConfigSet(char *const *args) {
    std::unique_ptr<ConfigStore> store = OpenConfigStore(args[0], false);
    if (!store) return kExitFailed;
    if (!store->Store().SetString(qv::CString(args[1]), qv::CString(args[2])) || !store->Save())
        return Fail("cannot write '%s' to '%s'.", args[1], args[0]);
    return 0;
}

} // namespace qvtool
