// Regular disk files behind CFile: opening from a decoded request and the
// byte-stream calls on the resulting handle. Internal to libqv.
//
// A handle is an intptr_t holding a POSIX descriptor (-1 none). Descriptors
// are close-on-exec, offsets 64-bit. Every call is thread-safe in itself; one
// handle's position is shared by its duplicates.
#pragma once

#include <cstdint>

#include "qv/files/OpenRequest.h"

namespace qv {

constexpr intptr_t kNoDiskFile = -1;

enum class SeekOrigin { Begin, Current, End };

// Opens the regular file at path (UTF-8) as request says; see
// DiskFile_unix.cpp for how dispositions, sharing and attributes are carried
// over. -1 if the open is refused; a refused open never truncates or removes
// the file.
intptr_t OpenDiskFile(char const *path, OpenRequest const &request);
// A second handle on the same open file (same position, same share locks).
intptr_t DuplicateDiskFile(intptr_t handle);
void CloseDiskFile(intptr_t handle);

// Transfers until n bytes passed, the end of the file or an error, and
// returns the bytes that passed.
uint32_t ReadDiskFile(intptr_t handle, void *p, uint32_t n);
uint32_t WriteDiskFile(intptr_t handle, void const *p, uint32_t n);
// The new position, -1 on failure.
int64_t SeekDiskFile(intptr_t handle, int64_t offset, SeekOrigin origin);
int64_t GetDiskFileSize(intptr_t handle); // -1 on failure
// Growing reserves the new blocks first (fallocate; where the file system
// cannot, the new bytes are written as zeros), so a full disk fails here with
// the file as it was. The position does not move.
bool SetDiskFileSize(intptr_t handle, int64_t size);
bool FlushDiskFile(intptr_t handle);
// A writable view of the bytes [offset, offset + length) of the file, shared
// with it: what is stored through the view is in the file as a write would
// leave it. The range must lie inside the file, on reserved blocks. Null if
// the system refuses. The view lives until UnmapDiskFileRange(view, length).
void *MapDiskFileRange(intptr_t handle, int64_t offset, uint32_t length);
void UnmapDiskFileRange(void *view, uint32_t length);
bool RemoveDiskFile(char const *path);
// Moves from over to (replacing a file there) after syncing from's data, then
// syncs to's directory. False if from could not be synced or renamed (then
// both names are as they were), or if the directory's sync failed after the
// rename (then to is the new file, but a crash may still undo the rename).
bool RenameDiskFile(char const *from, char const *to);

} // namespace qv
