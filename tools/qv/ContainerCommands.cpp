// qv vqr / qv xdn list, extract and put: open the container of the named
// format, then do the shared work of VqrFiles.h.
#include "Commands.h"
#include "Input.h"
#include "VqrFiles.h"

namespace qvtool {

namespace {

template <class TContainer>
int List(char *const *args) {
    TContainer container;
    if (!OpenContainer(args[0], false, container)) return kExitFailed;
    return ListBlocks(container);
}

template <class TContainer>
int Extract(char *const *args) {
    SBlockAddress address;
    if (!ParseBlockAddress(args + 1, address)) return kExitUsage;
    if (OutputIsAnInput(args[4], {args[0]})) return kExitFailed;
    TContainer container;
    if (!OpenContainer(args[0], false, container)) return kExitFailed;
    return ExtractBlock(container, address, args);
}

template <class TContainer>
int Put(char *const *args) {
    SBlockAddress address;
    if (!ParseBlockAddress(args + 1, address)) return kExitUsage;
    qv::CMemFile input;
    if (!ReadInput(args[4], input)) return kExitFailed;
    TContainer container;
    if (!OpenContainer(args[0], true, container)) return kExitFailed;
    return PutBlock(container, address, input, args);
}

} // namespace

int RunVqrList(char *const *args) { return List<qv::CVQRFile>(args); }
int RunVqrExtract(char *const *args) { return Extract<qv::CVQRFile>(args); }
int RunVqrPut(char *const *args) { return Put<qv::CVQRFile>(args); }
int RunXdnList(char *const *args) { return List<qv::CXDNFile>(args); }
int RunXdnExtract(char *const *args) { return Extract<qv::CXDNFile>(args); }
int RunXdnPut(char *const *args) { return Put<qv::CXDNFile>(args); }

} // namespace qvtool
