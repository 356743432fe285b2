// qv config dump STORE: every value of a store as PATH=VALUE lines, depth first.
#include <cstdio>

#include "Commands.h"
#include "ConfigStores.h"
#include "qv/filesystems/Path.h"

namespace qvtool {

namespace {

// Paths are at most 511 units deep in text, so the walk's depth is bounded.
void DumpBranch(ConfigStore &store, qv::CString const &path) {
    qv::TArray<qv::CString> names;
    if (!store.List(names, path)) return;
    for (uint32_t i = 0; i < names.GetSize(); ++i) {
        qv::CString child = qv::path::MakePath(path, names[i], u'/');
        if (store.Store().isLeaf(child))
            std::printf("%s=%s\n", child.GetUTF8(), store.Store().GetString(child, u"").GetUTF8());
        else if (store.Store().isEntry(child))
            DumpBranch(store, child);
    }
}

} // namespace

int RunConfigDump(char *const *args) {
    std::unique_ptr<ConfigStore> store = OpenConfigStore(args[0], true);
    if (!store) return kExitFailed;
    DumpBranch(*store, qv::CString(u"/"));
    return 0;
}

} // namespace qvtool
