// qv config set STORE PATH VALUE: one setting written as text, the store
// saved. A value the store's file would not read back as given (an INI value
// with '=' or a tab, which the INI writer refuses) is refused and nothing is
// written.
#include <cstdio>

#include "Commands.h"
#include "ConfigStores.h"
#include "Input.h"
#include "Output.h"
#include "qv/filesystems/Path.h"

namespace qvtool {

int RunConfigSet(char *const *args) {
    std::unique_ptr<ConfigStore> store = OpenConfigStore(args[0], false);
    if (!store) return kExitFailed;
    qv::CString path(args[1]), value(args[2]), stored;
    if (qv::path::GetFilename(store->Store().ExpandPath(path)).IsEmpty())
        return Fail("'%s' names no setting: a PATH ends in the setting's name", Escaped(args[1]).c_str());
    if (!store->Store().SetString(path, value)) return Fail("cannot write '%s' to '%s'.", args[1], args[0]);
    if (!store->ReadBack(path, stored))
        return Fail("%s cannot hold '%s' so that it reads back as given (an INI name or value takes no '=', tab "
                    "or line break); nothing was written",
                    args[0], Escaped(args[2]).c_str());
    if (!stored.Equals(value))
        return Fail("'%s' would read back from %s as '%s'; nothing was written", Escaped(args[2]).c_str(), args[0],
                    Escaped(stored.GetUTF8()).c_str());
    if (!store->Save()) return Fail("%s", WriteFailure(args[0]).c_str());
    return 0;
}

} // namespace qvtool
