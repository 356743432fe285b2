// Mutexes that spin a little before they sleep. Internal to libqv.
//
// A lock held for a few instructions at a time by threads on different
// processors (a message queue's post and take) is usually given back sooner
// than the kernel can put a waiter to sleep and wake it again; a plain mutex
// sleeps at once. LetMutexSpin makes a waiter first spin briefly on the
// holder, and still sleep when the holder keeps the lock. The mutex keeps
// working with std::unique_lock and std::condition_variable.
// Call it once, on a mutex that has never been locked, before any other
// thread can see it.
#pragma once

#include <mutex>

namespace qv {

void LetMutexSpin(std::mutex &mutex);

} // namespace qv
