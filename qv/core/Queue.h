/// @file
/// TQueue<T>: a TArray used first in, first out. It adds no field: Enqueue adds
/// at the end (Add), Dequeue takes from the front (item 0, then Remove(0), which
/// moves the rest down as raw bytes). Meant for short queues such as pending
/// messages. Ownership, failure results and thread rules are TArray's: a queue
/// shared between threads needs the caller's lock.
#pragma once

#include "qv/core/Array.h"

namespace qv {

/// @copydoc Queue.h
template <class T> class TQueue : public TArray<T> {
public:
    bool Enqueue(T const &v) { return this->Add(v); } ///< Add(v): false if it cannot be stored
    /// Copies the front item to out and removes it; false on an empty queue.
    bool Dequeue(T &out) {
        if (this->count == 0) return false;
        out = this->data[0];
        return this->Remove(0);
    }
    /// The front item; on an empty queue TArray's static default dummy.
    T const &Front() const { return this->GetAt(0); }
    bool IsEmpty() const { return this->count == 0; } ///< true when no item is left
};

} // namespace qv
