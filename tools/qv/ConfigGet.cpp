// qv config get STORE PATH: one setting as text; a path without a value is an error.
#include <cstdio>

#include "Commands.h"
#include "ConfigStores.h"

namespace qvtool {

int RunConfigGet(char *const *args) {
    std::unique_ptr<ConfigStore> store = OpenConfigStore(args[0], true);
    if (!store) return kExitFailed;
    qv::CString path(args[1]);
    if (!HasValue(*store, path)) return Fail("no value at '%s' in '%s'.", args[1], args[0]);
    std::printf("%s\n", store->Store().GetString(path, u"").GetUTF8());
    return 0;
}

} // namespace qvtool
