#include "qv/files/OpenRequest.h"

namespace qv {

namespace {

constexpr uint32_t kOpenAlways = 0x01, kOpenExisting = 0x02, kCreateNew = 0x04, kCreateAlways = 0x08;
constexpr uint32_t kRead = 0x10, kWrite = 0x20, kSeekToEnd = 0x40;
constexpr uint32_t kShareWrite = 0x100, kShareRead = 0x200, kDenyRead = 0x400, kDenyWrite = 0x800;
constexpr uint32_t kShareBits = 0xF00;
constexpr uint32_t kNormal = 0x1000, kReadOnly = 0x2000, kHidden = 0x4000, kSystem = 0x8000, kTemporary = 0x10000;
constexpr uint32_t kDeleteOnClose = 0x100000, kWriteThrough = 0x200000;

Disposition DecodeDisposition(uint32_t flags) {
    if (flags & kOpenAlways) return Disposition::OpenAlways;
    if (flags & kOpenExisting) return Disposition::OpenExisting;
    if (flags & kCreateAlways) return Disposition::CreateAlways;
    if (flags & kCreateNew) return Disposition::CreateNew;
    return Disposition::OpenExisting;
}

void DecodeSharing(uint32_t flags, OpenRequest &request) {
    if (!(flags & kShareBits)) {
        request.shareRead = !(flags & kWrite);
        return;
    }
    if (flags & (kShareRead | kShareWrite)) {
        request.shareRead = flags & kShareRead;
        request.shareWrite = flags & kShareWrite;
        return;
    }
    request.shareWrite = (flags & kDenyRead) && !(flags & kDenyWrite);
    request.shareRead = (flags & kDenyWrite) && !(flags & kDenyRead);
}

} // namespace

OpenRequest DecodeOpenFlags(uint32_t flags) {
    OpenRequest request;
    request.disposition = DecodeDisposition(flags);
    request.read = flags & kRead;
    request.write = flags & kWrite;
    request.seekToEnd = flags & kSeekToEnd;
    DecodeSharing(flags, request);
    bool attributesApply = !(flags & kNormal);
    request.readOnly = attributesApply && (flags & kReadOnly);
    request.hidden = attributesApply && (flags & kHidden);
    request.system = attributesApply && (flags & kSystem);
    request.temporary = attributesApply && (flags & kTemporary);
    request.deleteOnClose = flags & kDeleteOnClose;
    request.writeThrough = flags & kWriteThrough;
    return request;
}

} // namespace qv
