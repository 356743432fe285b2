/// @file
/// A scratch byte block: on the stack up to Inline bytes, on the heap beyond.
/// Internal to the file layer.
#pragma once

#include <cstddef>
#include <memory>
#include <new>

namespace qv {

/// @copydoc TempBlock.h
template <size_t Inline> class TempBlock {
public:
    /// get() is null when the heap refuses a large block.
    ///@{
    explicit TempBlock(size_t size)
        : heap(size > Inline ? new (std::nothrow) char[size] : nullptr), large(size > Inline) {}
    char *get() { return large ? heap.get() : local; }
    ///@}

private:
    char local[Inline];
    std::unique_ptr<char[]> heap;
    bool large;
};

} // namespace qv
