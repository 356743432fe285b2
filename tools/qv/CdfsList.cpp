// qv cdfs list FILE: one line per entry: size, offset, capacity, path.
#include <cstdio>

#include "Commands.h"
#include "Output.h"

namespace qvtool {

int RunCdfsList(char *const *args) {
    qv::CCDFileSystem cdfs;
    if (!OpenCdfs(args[0], true, cdfs)) return kExitFailed;
    qv::CDirectoryListing stack = cdfs.GetDirectoryListing(u"/", nullptr);
    // Walk the implied directories breadth first; files print as found.
    for (uint32_t i = 0; i < stack.GetSize(); ++i) {
        qv::CDirectoryEntry const &entry = stack.GetAt(i);
        if (entry.IsDirectory()) {
            qv::CDirectoryListing below = cdfs.GetDirectoryListing(entry.path, nullptr);
            for (uint32_t k = 0; k < below.GetSize(); ++k)
                stack.Add(below.GetAt(k));
            continue;
        }
        std::printf("%12lld %12s %12s  %s\n", (long long)entry.size,
                    qv::CString(entry.properties.GetValue(u"Offset")).GetUTF8(),
                    qv::CString(entry.properties.GetValue(u"Capacity")).GetUTF8(),
                    Escaped(qv::CString(entry.path).GetUTF8()).c_str());
    }
    return 0;
}

} // namespace qvtool
