#include "qv/threads/Mutex.h"

#include "qv/core/String.h"
#include "qv/platform/NamedMutex.h"

namespace qv {

CMutex::CMutex(char16_t const *name) : mutex(NamedMutex::Open(name ? CString(name).GetUTF8() : nullptr)) {}

CMutex::CMutex(CMutex const &) : mutex(NamedMutex::Open(nullptr)) {}

CMutex::~CMutex() {
    delete mutex;
}

bool CMutex::Acquire(uint32_t timeout) {
    return mutex && mutex->Wait(timeout) == MutexWait::Signaled;
}

bool CMutex::Release() {
    return mutex && mutex->Release();
}

void *CMutex::getHandle() const {
    return mutex;
}

} // namespace qv
