#include "qv/threads/SharedHandle.h"

#include <new>

#include "qv/platform/Syscalls.h"

namespace qv {

CSharedHandle::CSharedHandle() = default;

CSharedHandle::CSharedHandle(intptr_t handle) {
    Adopt(handle);
}

CSharedHandle::CSharedHandle(CSharedHandle const &other) : handle(other.handle), count(other.count) {
    if (count) count->fetch_add(1, std::memory_order_relaxed);
}

CSharedHandle::~CSharedHandle() {
    Release();
}

CSharedHandle &CSharedHandle::operator=(CSharedHandle const &other) {
    if (&other == this || other.count == count) return *this;
    Release();
    handle = other.handle;
    count = other.count;
    if (count) count->fetch_add(1, std::memory_order_relaxed);
    return *this;
}

CSharedHandle &CSharedHandle::operator=(intptr_t newHandle) {
    if (newHandle == handle) return *this; // dropping first would close what it is given
    Release();
    Adopt(newHandle);
    return *this;
}

CSharedHandle &CSharedHandle::operator=(int newHandle) {
    return *this = intptr_t(newHandle);
}

int32_t CSharedHandle::RefCount() const {
    return count ? count->load(std::memory_order_relaxed) : 0;
}

// Without memory for the count the handle cannot be shared safely: it is
// closed at once rather than leaked.
void CSharedHandle::Adopt(intptr_t newHandle) {
    if (newHandle == None) return;
    count = new (std::nothrow) std::atomic<int32_t>(1);
    if (!count) {
        SysClose(int(newHandle));
        return;
    }
    handle = newHandle;
}

void CSharedHandle::Release() {
    if (count && count->fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete count;
        SysClose(int(handle));
    }
    handle = None;
    count = nullptr;
}

} // namespace qv
