// Named shared memory of the system, under CSharedMemory. Internal to libqv.
#pragma once

#include <cstddef>
#include <string>

namespace qv {

struct SharedView {
    int fd = -1;
    void *data = nullptr;
    size_t size = 0;
};

enum class SharedCreate { Created, NameTaken, Failed };

// The system's name for utf8Name: '/' and the name, in which '/' (not allowed
// there) and '%' (the escape) are written "%2F" and "%25".
std::string SharedMemorySysName(char const *utf8Name);

// Makes a new object of size bytes under sysName, readable and writable by
// this user only, zero-filled, and maps all of it. NameTaken: an object of
// that name exists (also one of another user). Failed: anything else (the
// name is too long or empty, size 0, no memory); nothing is left behind.
SharedCreate CreateSharedMemory(char const *sysName, size_t size, SharedView &view);

// Unmaps and closes view (either may be missing) and removes sysName unless
// it is null; view comes back empty.
void CloseSharedMemory(SharedView &view, char const *sysName);

} // namespace qv
