/// @file
/// TStack<T>: a TArray used last in, first out. It adds no field: the top is
/// the last item, Push is Add and Pop is Remove(count - 1). Ownership, failure
/// results and thread rules are TArray's.
#pragma once

#include "qv/core/Array.h"

namespace qv {

/// @copydoc Stack.h
template <class T> class TStack : public TArray<T> {
public:
    bool Push(T const &v) { return this->Add(v); } ///< Add(v): false if it cannot be stored
    /// Removes the top item; true without effect on an empty stack.
    bool Pop() { return this->count == 0 || this->Remove(this->count - 1); }
    /// Copies the top item to out and removes it; false on an empty stack.
    bool Pop(T &out) {
        if (this->count == 0) return false;
        out = this->data[this->count - 1];
        return this->Remove(this->count - 1);
    }
    /// The top item; on an empty stack TArray's static default dummy.
    T const &Top() const { return this->GetAt(this->count - 1); }
    bool IsEmpty() const { return this->count == 0; } ///< true when no item is left
};

} // namespace qv
