// OS binding: the C library's adaptive mutex type behind a std::mutex.
#include "qv/platform/SpinningMutex.h"

#include <pthread.h>

namespace qv {

// std::mutex starts as the C library's default mutex, unlocked, and owns no
// resource, so setting it up again with another type loses nothing.
void LetMutexSpin(std::mutex &mutex) {
    pthread_mutexattr_t attributes;
    if (pthread_mutexattr_init(&attributes) != 0) return;
    if (pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_ADAPTIVE_NP) == 0)
        pthread_mutex_init(mutex.native_handle(), &attributes);
    pthread_mutexattr_destroy(&attributes);
}

} // namespace qv
