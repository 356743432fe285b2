// CMessageRing: the posted messages of a thread queue, first in, first out.
// Internal to libqv.
//
// A ring that doubles when full, so that posting and taking cost no
// allocation once the queue has reached its working size. Push gives false
// when the ring cannot grow (nothing is thrown). The owner's lock guards it.
#pragma once

#include <cstdint>
#include <memory>
#include <new>

#include "qv/platform/MessageQueue.h"

namespace qv {

class CMessageRing {
public:
    bool Empty() const { return count == 0; }
    SMessage const &Front() const { return items[head]; }
    void PopFront() {
        head = (head + 1) & (capacity - 1);
        --count;
    }

    bool Push(SMessage const &msg) {
        if (count == capacity && !Grow()) return false;
        items[(head + count) & (capacity - 1)] = msg;
        ++count;
        return true;
    }

    // Removes, in order, every message for which take(msg) is true; the rest
    // keep their order.
    template <class Take> void RemoveIf(Take take) {
        uint32_t kept = 0;
        for (uint32_t i = 0; i < count; ++i) {
            SMessage const &msg = items[(head + i) & (capacity - 1)];
            if (!take(msg)) items[(head + kept++) & (capacity - 1)] = msg;
        }
        count = kept;
    }

private:
    bool Grow() {
        uint32_t const grown = capacity ? capacity * 2 : 64;
        if (grown < capacity) return false;
        std::unique_ptr<SMessage[]> bigger(new (std::nothrow) SMessage[grown]);
        if (!bigger) return false;
        for (uint32_t i = 0; i < count; ++i)
            bigger[i] = items[(head + i) & (capacity - 1)];
        items = std::move(bigger);
        capacity = grown;
        head = 0;
        return true;
    }

    std::unique_ptr<SMessage[]> items;
    uint32_t capacity = 0; // 0 or a power of two
    uint32_t head = 0;
    uint32_t count = 0;
};

} // namespace qv
