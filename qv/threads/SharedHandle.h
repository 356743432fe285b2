/// @file
/// CSharedHandle: a system handle shared by copies, closed by the last one.
///
/// The handle is a file descriptor held as an intptr_t (an int converts), -1
/// meaning none. Every copy holds the same handle and one reference count on
/// the heap; the count changes atomically, so copies may live on different
/// threads. When the last holder lets go, the count is freed and the handle
/// closed. Made from no handle (-1) there is no count, and RefCount() is 0.
/// Any assignment drops the old share first; adopting a handle starts a new
/// count of 1. A handle given to the class belongs to it: do not close it
/// elsewhere.
///
/// Threads: one object belongs to one thread at a time; copies are
/// independent objects.
#pragma once

#include <atomic>
#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

/// @copydoc SharedHandle.h
class QV_API CSharedHandle {
public:
    static constexpr intptr_t None = -1; ///< no handle

    CSharedHandle();
    explicit CSharedHandle(intptr_t handle);   ///< adopts handle (count 1)
    CSharedHandle(CSharedHandle const &other); ///< shares other's handle
    ~CSharedHandle();

    /// Drops the old share, then shares other's handle or adopts a new one.
    ///@{
    CSharedHandle &operator=(CSharedHandle const &other);
    CSharedHandle &operator=(intptr_t handle);
    CSharedHandle &operator=(int handle);
    ///@}

    operator intptr_t() const { return handle; } ///< the handle, None without one
    /// The number of holders; 0 without a handle.
    int32_t RefCount() const;

private:
    void Adopt(intptr_t handle);
    void Release();

    intptr_t handle = None;
    std::atomic<int32_t> *count = nullptr;
};

} // namespace qv
