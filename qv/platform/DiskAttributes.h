// Attributes and times of disk names, for the disk file system. Internal to
// libqv.
//
// Read-only is the write permission: setting it clears every write bit,
// clearing it gives the owner write permission back. Hidden is the user
// extended attribute "user.qv.hidden", kept where the file system allows
// extended attributes and silently not kept elsewhere. A symbolic link has
// no attributes of its own: setting them on one changes nothing and
// succeeds. Every call is thread-safe in itself.
#pragma once

#include <cstdint>

namespace qv {

// False if the name is not there or its permissions cannot be changed.
bool SetDiskAttributes(char16_t const *path, bool readOnly, bool hidden);

// A name's permissions and hidden mark as they are now, so that a step that
// changed them and then failed can put them back; kept false when the name
// is not there.
struct DiskAttributeState {
    bool kept = false;
    uint32_t mode = 0;
    bool hidden = false;
};
DiskAttributeState KeepDiskAttributes(char16_t const *path);
void RestoreDiskAttributes(char16_t const *path, DiskAttributeState const &state);
// Last-write time in 100 ns ticks since 1601-01-01 UTC; the access time is
// left alone.
bool SetDiskModifiedTime(char16_t const *path, uint64_t ticks);

} // namespace qv
