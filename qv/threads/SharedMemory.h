/// @file
/// CSharedMemory: a block of memory that other processes can map by name.
///
/// CreateRandom(name, size) makes a new, zero-filled object of size bytes
/// under name, and maps it. When the name is taken, it appends the decimal
/// text of rand() and tries again, up to 10,000 times, so the name grows with
/// each try ("base", "base41", "base4118467", ...); GetName gives the name
/// that was made. Callers and existing peers find the block by that name.
/// false: no try left, or the system refused (an empty or too long name, size
/// 0, no memory); the object is then empty. A second CreateRandom first
/// destroys what the object held.
///
/// GetSysName gives the system's name of the object, the one another process
/// passes to shm_open: "/" and the name in UTF-8, with '/' written "%2F" and
/// '%' written "%25". Null when nothing is made. Only this user may open it.
///
/// Destroy (also run by the destructor) unmaps the block and removes the
/// name; processes that opened it keep their mapping until they close it.
/// GetBuffer is the mapped block, null when nothing is made.
///
/// Threads: an object belongs to one thread at a time; the memory itself is
/// shared, and its users agree on their own locking (a named CMutex).
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc SharedMemory.h
class QV_API CSharedMemory {
public:
    CSharedMemory() = default;
    CSharedMemory(CSharedMemory const &) = delete;
    CSharedMemory &operator=(CSharedMemory const &) = delete;
    ~CSharedMemory();

    bool CreateRandom(char16_t const *name, uint32_t size); ///< see the file comment; false leaves the object empty
    void Destroy(); ///< unmaps the block and removes the name

    void *GetBuffer() const { return view; } ///< the mapped block, null when nothing is made
    CString GetName() const { return name; } ///< the name that was made
    char const *GetSysName() const { return view ? sysName.c_str() : nullptr; } ///< the shm_open name, null when nothing is made

private:
    std::string sysName;
    CString name;
    int mapping = -1;
    void *view = nullptr;
    size_t size = 0;
};

} // namespace qv
