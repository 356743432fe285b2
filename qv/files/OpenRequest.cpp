#include "qv/files/OpenRequest.h"

#include "qv/files/OpenFlags.h"

namespace qv {

namespace {

constexpr uint32_t kShareBits = 0xF00;

Disposition DecodeDisposition(uint32_t flags) {
    if (flags & kOpenAlways) return Disposition::OpenAlways;
    if (flags & kOpenExisting) return Disposition::OpenExisting;
    if (flags & kOpenCreateAlways) return Disposition::CreateAlways;
    if (flags & kOpenCreateNew) return Disposition::CreateNew;
    return Disposition::OpenExisting;
}

void DecodeSharing(uint32_t flags, OpenRequest &request) {
    if (!(flags & kShareBits)) {
        request.shareRead = !(flags & kOpenWrite);
        return;
    }
    if (flags & (kOpenShareRead | kOpenShareWrite)) {
        request.shareRead = flags & kOpenShareRead;
        request.shareWrite = flags & kOpenShareWrite;
        return;
    }
    request.shareWrite = (flags & kOpenDenyRead) && !(flags & kOpenDenyWrite);
    request.shareRead = (flags & kOpenDenyWrite) && !(flags & kOpenDenyRead);
}

} // namespace

OpenRequest DecodeOpenFlags(uint32_t flags) {
    OpenRequest request;
    request.disposition = DecodeDisposition(flags);
    request.read = flags & kOpenRead;
    request.write = flags & kOpenWrite;
    request.seekToEnd = flags & kOpenAtEnd;
    DecodeSharing(flags, request);
    bool attributesApply = !(flags & kOpenNormal);
    request.readOnly = attributesApply && (flags & kOpenReadOnly);
    request.hidden = attributesApply && (flags & kOpenHidden);
    request.system = attributesApply && (flags & kOpenSystem);
    request.temporary = attributesApply && (flags & kOpenTemporary);
    request.deleteOnClose = flags & kOpenDeleteOnClose;
    request.writeThrough = flags & kOpenWriteThrough;
    return request;
}

} // namespace qv
