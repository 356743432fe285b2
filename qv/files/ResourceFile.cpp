#include "qv/files/ResourceFile.h"

#include <memory>

#include "qv/files/GZFile.h"
#include "qv/files/MemFile.h"

namespace qv {

IFile *CreateResourceFile(HRSRC resource, bool unpack) {
    if (!resource) return nullptr;
    auto copy = std::make_unique<CMemFile>();
    if (copy->Write(resource->data, resource->size) != resource->size) return nullptr;
    copy->Seek(0, 1);
    if (!unpack) return copy.release();
    return new CGZFile(copy.release(), 0x10, true);
}

} // namespace qv
