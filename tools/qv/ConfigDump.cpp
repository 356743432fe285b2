// qv config dump [--json] STORE: every value of a store as PATH=VALUE lines
// (shown escaped), depth first, or one JSON object of paths and values.
#include <cstdio>
#include <string>

#include "Commands.h"
#include "ConfigStores.h"
#include "Options.h"
#include "Output.h"
#include "qv/filesystems/Path.h"

namespace qvtool {

namespace {

// Paths are at most 511 units deep in text, so the walk's depth is bounded.
void DumpBranch(ConfigStore &store, qv::CString const &path, CJsonWriter *json) {
    qv::TArray<qv::CString> names;
    if (!store.List(names, path)) return;
    for (uint32_t i = 0; i < names.GetSize(); ++i) {
        qv::CString child = qv::path::MakePath(path, names[i], u'/');
        if (store.Store().isLeaf(child)) {
            std::string key = child.GetUTF8();
            std::string value = store.Store().GetString(child, u"").GetUTF8();
            if (json)
                json->String(key.c_str(), value);
            else
                std::printf("%s=%s\n", Escaped(key).c_str(), Escaped(value).c_str());
        } else if (store.Store().isEntry(child)) {
            DumpBranch(store, child, json);
        }
    }
}

} // namespace

int RunConfigDump(char *const *args) {
    std::unique_ptr<ConfigStore> store = OpenConfigStore(args[0], true);
    if (!store) return kExitFailed;
    if (!GivenOptions().json) {
        DumpBranch(*store, qv::CString(u"/"), nullptr);
        return 0;
    }
    CJsonWriter json(stdout);
    json.BeginObject();
    DumpBranch(*store, qv::CString(u"/"), &json);
    json.EndObject();
    return 0;
}

} // namespace qvtool
