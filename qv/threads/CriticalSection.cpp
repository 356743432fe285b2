#include "qv/threads/CriticalSection.h"

namespace qv {

CCriticalSection::CCriticalSection(uint32_t spinCount) : spinCount(spinCount) {}

CCriticalSection::CCriticalSection(CCriticalSection const &other) : spinCount(other.spinCount) {}

CCriticalSection::~CCriticalSection() = default;

void CCriticalSection::Enter() {
    for (uint32_t spin = 0; spin < spinCount; ++spin) {
        if (mutex.try_lock()) return;
    }
    mutex.lock();
}

void CCriticalSection::Leave() {
    mutex.unlock();
}

} // namespace qv
