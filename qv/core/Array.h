/// @file
/// TArray<T>: the library's growable array, and TSimpleArray<T> for plain bytes.
///
/// Layout: one virtual slot (the destructor), then data, capacity, count and
/// growthRate. Elements live in one block on the process heap (malloc/realloc/
/// free, one allocator every module shares), so a block taken with Detach may
/// be freed by any module with free(), and Attach accepts only such a block.
///
/// Relocation. Elements are moved as raw bytes (realloc, memmove) and never
/// constructed or destroyed on relocation: T must tolerate that. CString (one
/// pointer) and nested TArrays do.
///
/// Growth is linear: Dimension(n) above the capacity makes the capacity
/// (n / growthRate + 1) * growthRate, always strictly above n. The rate is 5
/// after every constructor; large arrays set their own (a rate of 0 counts as
/// 1). Capacity never shrinks.
///
/// Failure. Every mutating operation returns false on heap exhaustion or on a
/// size that does not fit 32 bits / the address space, and then leaves the
/// array as it was. GetItem and operator[] give no sign: when they cannot
/// extend the array they return a scratch item that belongs to no array.
/// Only TSimpleArray reports exhaustion, as debug text.
///
/// Indices past count: GetItem/operator[]/Replace/Swap/Move extend the array
/// (default-constructing the new items); ConstGetItem/GetAt never extend and
/// yield a static default-constructed dummy (made at first use, destroyed at
/// exit).
///
/// Threads: no locks; an array belongs to one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>

#include "qv/core/ArraySort.h"
#include "qv/core/DebugOutput.h"

namespace qv {

namespace detail {

/// The process heap, silent on failure (TArray).
struct SilentHeap {
    static void *Alloc(size_t size) { return std::malloc(size); }
    static void *ReAlloc(void *p, size_t size) { return std::realloc(p, size); }
};

/// The process heap, reporting failure as debug text (TSimpleArray).
struct ReportingHeap {
    static void *Alloc(size_t size) {
        void *p = std::malloc(size);
        if (!p) OutputDebugStringW(u"TArray::Alloc failed\n");
        return p;
    }
    static void *ReAlloc(void *p, size_t size) {
        void *q = std::realloc(p, size);
        if (!q) OutputDebugStringW(u"TArray::ReAlloc failed\n");
        return q;
    }
};

/// Everything TArray and TSimpleArray share; Heap decides how failure is told.
template <class T, class Heap> class ArrayBase {
public:
    ArrayBase() = default;
    ArrayBase(ArrayBase const &other) { AddAll(other); }
    ArrayBase &operator=(ArrayBase const &other) {
        Copy(other);
        return *this;
    }
    virtual ~ArrayBase() { Destroy(); }

    /// Destructs its own items, keeps block and rate, then adds other's items
    /// one by one.
    bool Copy(ArrayBase const &other) {
        if (&other == this) return true;
        Empty();
        return AddAll(other);
    }

    static void *Alloc(size_t size) { return Heap::Alloc(size); }
    /// A null p allocates.
    ///@{
    static void *ReAlloc(void *p, size_t size) { return p ? Heap::ReAlloc(p, size) : Heap::Alloc(size); }
    static void Free(void *p) { std::free(p); }
    ///@}

    void Construct(T *p) const {
        if (p) ::new (static_cast<void *>(p)) T();
    }
    void Destruct(T *p) const { p->~T(); }

    uint16_t SetGrowthRate(uint16_t rate) {
        uint16_t old = growthRate;
        growthRate = rate;
        return old;
    }
    uint32_t nItems() const { return count; }
    uint32_t GetSize() const { return count; }
    uint32_t GetCapacity() const { return capacity; }
    T *GetData() const { return data; }

    bool Dimension(uint32_t n) {
        if (n <= capacity) return true;
        uint64_t rate = growthRate ? growthRate : 1;
        uint64_t newCapacity = (n / rate + 1) * rate;
        if (newCapacity > UINT32_MAX || newCapacity > SIZE_MAX / sizeof(T)) return false;
        void *block = ReAlloc(data, static_cast<size_t>(newCapacity) * sizeof(T));
        if (!block) return false;
        data = static_cast<T *>(block);
        capacity = static_cast<uint32_t>(newCapacity);
        return true;
    }
    bool SetCapacity(uint32_t n) { return Dimension(n); }

    /// Grows to n items (default-constructing the new ones); never shrinks.
    ///@{
    bool ImplicitAddition(uint32_t n) {
        if (!Dimension(n)) return false;
        if constexpr (std::is_arithmetic_v<T>) { // T() is all zero bits: one memset, not an item loop
            if (n > count) {
                std::memset(static_cast<void *>(data + count), 0, size_t(n - count) * sizeof(T));
                count = n;
            }
            return true;
        }
        for (; count < n; ++count)
            Construct(data + count);
        return true;
    }
    bool SetSize(uint32_t n) {
        if (!ImplicitAddition(n)) return false;
        DestructRange(n, count);
        count = n;
        return true;
    }
    ///@}

    T &GetItem(uint32_t i) {
        if (i == UINT32_MAX || !ImplicitAddition(i + 1)) return Scratch();
        return data[i];
    }
    T &operator[](uint32_t i) { return GetItem(i); }
    T const &ConstGetItem(uint32_t i) const {
        static T const dummy{};
        return i < count ? data[i] : dummy;
    }
    T const &GetAt(uint32_t i) const { return ConstGetItem(i); }

    bool Add(T const &v) {
        if (Aliases(v)) return Add(T(v));
        if (count == UINT32_MAX || !Dimension(count + 1)) return false;
        ::new (static_cast<void *>(data + count)) T(v);
        ++count;
        return true;
    }

    /// i past the end: the items between are default-constructed.
    ///@{
    bool Insert(T const &v, uint32_t i) { return Insert(v, i, 1); }
    bool Insert(T const &v, uint32_t i, uint32_t n) {
        if (Aliases(v)) return Insert(T(v), i, n);
        if (i >= count) return AssignAfterEnd(v, i, n);
        if (!OpenGap(i, n)) return false;
        for (uint32_t k = 0; k < n; ++k)
            ::new (static_cast<void *>(data + i + k)) T(v);
        return true;
    }
    bool Insert(uint32_t i) {
        if (i >= count) return i != UINT32_MAX && ImplicitAddition(i + 1);
        if (!OpenGap(i, 1)) return false;
        Construct(data + i);
        return true;
    }
    ///@}

    bool Replace(T const &v, uint32_t i) {
        if (Aliases(v)) return Replace(T(v), i);
        if (i == UINT32_MAX || !ImplicitAddition(i + 1)) return false;
        Destruct(data + i);
        ::new (static_cast<void *>(data + i)) T(v);
        return true;
    }

    /// An index past the end is no error: true without effect.
    ///@{
    bool Remove(uint32_t i) { return Remove(i, 1); }
    bool Remove(uint32_t i, uint32_t n) {
        if (i >= count) return true;
        if (i == 0 && n == count) {
            Empty();
            return true;
        }
        if (n > count - i) n = count - i;
        DestructRange(i, i + n);
        std::memmove(static_cast<void *>(data + i), static_cast<void const *>(data + i + n),
                     size_t(count - i - n) * sizeof(T));
        count -= n;
        return true;
    }
    ///@}

    void Empty() {
        DestructRange(0, count);
        count = 0;
    }
    void Destroy() {
        Empty();
        Free(data);
        data = nullptr;
        capacity = 0;
    }

    /// The caller takes the items and the block (free() it after destructing
    /// the items); the array is left empty with no block.
    T *Detach() {
        T *p = data;
        data = nullptr;
        capacity = 0;
        count = 0;
        return p;
    }
    /// Destroy, then adopt p (a malloc block of n live items).
    void Attach(T *p, uint32_t n) {
        Destroy();
        data = p;
        capacity = n;
        count = n;
    }

    bool Swap(uint32_t a, uint32_t b) {
        uint32_t top = a > b ? a : b;
        if (top == UINT32_MAX || !ImplicitAddition(top + 1)) return false;
        alignas(T) unsigned char saved[sizeof(T)];
        std::memcpy(saved, static_cast<void *>(data + a), sizeof(T));
        std::memcpy(static_cast<void *>(data + a), static_cast<void const *>(data + b), sizeof(T));
        std::memcpy(static_cast<void *>(data + b), saved, sizeof(T));
        return true;
    }
    bool Move(uint32_t from, uint32_t to) {
        uint32_t top = from > to ? from : to;
        if (top == UINT32_MAX || !ImplicitAddition(top + 1)) return false;
        if (from == to) return true;
        alignas(T) unsigned char saved[sizeof(T)];
        std::memcpy(saved, static_cast<void *>(data + from), sizeof(T));
        if (from < to)
            std::memmove(static_cast<void *>(data + from), static_cast<void const *>(data + from + 1),
                         size_t(to - from) * sizeof(T));
        else
            std::memmove(static_cast<void *>(data + to + 1), static_cast<void const *>(data + to),
                         size_t(from - to) * sizeof(T));
        std::memcpy(static_cast<void *>(data + to), saved, sizeof(T));
        return true;
    }

    /// Stable: equal items keep their order (deterministic for files written
    /// from sorted arrays).
    ///@{
    void Sort(int (*cmp)(T const *, T const *)) {
        SortRelocatable(data, count, sizeof(T), &CallPlain, static_cast<void *>(&cmp));
    }
    void Sort(int (*cmp)(void *, T const *, T const *), void *ctx) {
        WithContext call{cmp, ctx};
        SortRelocatable(data, count, sizeof(T), &CallWithContext, &call);
    }
    ///@}

protected:
    T *data = nullptr;
    uint32_t capacity = 0;
    uint32_t count = 0;
    uint16_t growthRate = 5;

private:
    struct WithContext {
        int (*cmp)(void *, T const *, T const *);
        void *ctx;
    };
    static int CallPlain(void *fn, void const *a, void const *b) {
        auto cmp = *static_cast<int (**)(T const *, T const *)>(fn);
        return cmp(static_cast<T const *>(a), static_cast<T const *>(b));
    }
    static int CallWithContext(void *call, void const *a, void const *b) {
        auto const *c = static_cast<WithContext const *>(call);
        return c->cmp(c->ctx, static_cast<T const *>(a), static_cast<T const *>(b));
    }

    static T &Scratch() {
        static T scratch{};
        return scratch;
    }

    /// v lives inside this array's block, which growing may move: callers
    /// then work on a copy.
    bool Aliases(T const &v) const {
        auto at = reinterpret_cast<uintptr_t>(&v), begin = reinterpret_cast<uintptr_t>(data);
        return data && at >= begin && at < begin + size_t(capacity) * sizeof(T);
    }

    bool AddAll(ArrayBase const &other) {
        // One block for all of them when it can be had: item by item at a
        // small growth rate would copy the block once per rate items.
        if (other.count <= UINT32_MAX - count) Dimension(count + other.count);
        for (uint32_t i = 0; i < other.count; ++i)
            if (!Add(other.data[i])) return false;
        return true;
    }
    void DestructRange(uint32_t from, uint32_t to) {
        if constexpr (!std::is_trivially_destructible_v<T>)
            for (uint32_t i = from; i < to; ++i)
                Destruct(data + i);
    }
    /// Makes room for n items at i < count, moving the tail up as raw bytes.
    bool OpenGap(uint32_t i, uint32_t n) {
        if (n > UINT32_MAX - count || !Dimension(count + n)) return false;
        std::memmove(static_cast<void *>(data + i + n), static_cast<void const *>(data + i),
                     size_t(count - i) * sizeof(T));
        count += n;
        return true;
    }
    /// Insert at or past the end: extend to i + n, then assign the n items.
    bool AssignAfterEnd(T const &v, uint32_t i, uint32_t n) {
        if (n > UINT32_MAX - i || !ImplicitAddition(i + n)) return false;
        for (uint32_t k = 0; k < n; ++k)
            data[i + k] = v;
        return true;
    }
};

} // namespace detail

/// @copydoc Array.h
template <class T> class TArray : public detail::ArrayBase<T, detail::SilentHeap> {
    using Base = detail::ArrayBase<T, detail::SilentHeap>;

public:
    TArray() = default;
    /// Copies other's items one by one, starting at the default growth rate,
    /// not other's. On exhaustion the copy stops short silently.
    TArray(TArray const &other) : Base(other) {} // default rate, not other's
    /// Destructs its own items, keeps its block and rate, then copies other's
    /// items one by one. On exhaustion the copy stops short silently.
    TArray &operator=(TArray const &other) {
        Base::Copy(other);
        return *this;
    }

    /// Clears THIS array (Destroy) and only then hands its now empty fields to
    /// target, which comes out empty too: existing callers depend on this form.
    bool MakeDuplicate(TArray &target) {
        this->Destroy();
        target.Destroy();
        target.growthRate = this->growthRate;
        return true;
    }

    /// An array of the first n of values, each appended with Add.
    template <class... V> static TArray MakeArray(uint32_t n, V const &...values) {
        TArray out;
        uint32_t left = n;
        auto add = [&](auto const &v) {
            if (left == 0) return;
            out.Add(T(v));
            --left;
        };
        (add(values), ...);
        return out;
    }
};

/// For plain bytes (T trivially copyable); the only member of the family that
/// reports exhaustion ("TArray::Alloc failed\n", "TArray::ReAlloc failed\n" as
/// debug text).
template <class T> class TSimpleArray : public detail::ArrayBase<T, detail::ReportingHeap> {
    static_assert(std::is_trivially_copyable_v<T>, "TSimpleArray holds plain bytes");
    using Base = detail::ArrayBase<T, detail::ReportingHeap>;

public:
    TSimpleArray() = default;
    /// Copies other's items. The constructor starts at the default growth
    /// rate, not other's; assignment keeps this array's block and rate. On
    /// exhaustion the copy stops short and the failure is reported as debug text.
    ///@{
    TSimpleArray(TSimpleArray const &other) : Base(other) {}
    TSimpleArray &operator=(TSimpleArray const &other) {
        Base::Copy(other);
        return *this;
    }
    ///@}

    /// Clears target, then gives it this array's capacity, count, rate and
    /// bytes. False (target left empty) if the block cannot be allocated.
    bool MakeDuplicate(TSimpleArray &target) const {
        target.Destroy();
        if (this->capacity) {
            void *block = Base::Alloc(size_t(this->capacity) * sizeof(T));
            if (!block) return false;
            std::memcpy(block, static_cast<void const *>(this->data), size_t(this->count) * sizeof(T));
            target.data = static_cast<T *>(block);
        }
        target.capacity = this->capacity;
        target.count = this->count;
        target.growthRate = this->growthRate;
        return true;
    }
};

} // namespace qv
