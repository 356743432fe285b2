/// @file
/// TSingletonPtr: a handle to one lazily built, process-wide instance of T,
/// destroyed at exit in a fixed order.
///
/// A handle holds no data: every handle of one instantiation reaches the same
/// static pointer. GetInstance builds the object with new T() on first use;
/// when several threads race into it, one builds and the others wait until it
/// is done, so exactly one instance exists. Registering the object with
/// Private::DeleteAtExit makes the exit routine delete it: highest Priority
/// first, and among equal priorities the newest first.
///
/// CreateAtStart makes a handle's constructor build the instance (for handles
/// defined at namespace scope, at load time). PostCreate::PostCreate(T *) runs
/// on the new object before any other thread can see it.
///
/// Across modules. A handle type used by both a program and libqv.so must be
/// instantiated once, inside the library: the library's handles are declared
/// with an explicit instantiation (extern template ... QV_API) beside their
/// global, so a program reaches the library's instance, not a copy of its own.
///
/// Delete(p) is the exit routine's deleter: it deletes p, and when p is the
/// current instance the handle forgets it, so a use after destruction builds
/// a new one (registered again) instead of reaching freed memory. A destructor
/// must therefore not use its own handle. Calling Delete elsewhere leaves the
/// exit record behind and deletes the object twice.
///
/// Failure: an exception from new T() (an exhausted heap, T's constructor)
/// leaves GetInstance as it would leave new; the handle stays unbuilt and a
/// later call tries again.
/// Threads: GetInstance and the conversions are safe from any thread.
#pragma once

#include <atomic>
#include <thread>

#include "qv/core/Export.h"

namespace qv {

namespace Private {

/// Deletes object with deleter when the process exits (or libqv.so unloads).
/// Order: highest priority first, then last registered first; objects
/// registered while that routine runs are deleted by its final pass. If the
/// list cannot grow the object is never deleted. Thread-safe.
QV_API void DeleteAtExit(void *object, int priority, void (*deleter)(void *));

/// The creation protocol shared by singletons: the caller that claims begun
/// runs make() and then raises done; every other caller waits for done. If
/// make() throws, the claim is given up (another caller may try) and the
/// exception goes on to make()'s caller.
template <class Make> void RunOnce(std::atomic<int> &begun, std::atomic<int> &done, Make make) {
    while (done.load(std::memory_order_acquire) == 0) {
        if (begun.exchange(1, std::memory_order_acq_rel) == 0) {
            struct GiveUpOnThrow {
                std::atomic<int> &claim;
                bool armed = true;
                ~GiveUpOnThrow() {
                    if (armed) claim.store(0, std::memory_order_release);
                }
            } giveUp{begun};
            make();
            giveUp.armed = false;
            done.store(1, std::memory_order_release);
            return;
        }
        std::this_thread::yield();
    }
}

} // namespace Private

/// The one post-creation policy: nothing happens. Exported, because a
/// template instantiation is no more visible than its arguments.
struct QV_API TSingletonPtrPostCreateDoNothing {
    template <class T> static void PostCreate(T *) {} ///< does nothing
};

/// @copydoc Singleton.h
template <class T, int Priority = 1, bool CreateAtStart = false, class PostCreate = TSingletonPtrPostCreateDoNothing>
class QV_API TSingletonPtr {
public:
    TSingletonPtr() {
        if constexpr (CreateAtStart) GetInstance();
    }
    /// Handles carry nothing: copying one copies no data.
    ///@{
    TSingletonPtr(TSingletonPtr const &) {}
    TSingletonPtr &operator=(TSingletonPtr const &) { return *this; } // handles carry nothing
    ///@}
    ~TSingletonPtr() {}

    /// The instance, built with new T() on first use (one thread builds, the
    /// others wait). An exception from new T() reaches the caller; the next
    /// call tries again.
    static T *GetInstance() {
        if (T *ready = instance.load(std::memory_order_acquire)) return ready;
        Private::RunOnce(begun, done, [] {
            T *made = new T();
            PostCreate::PostCreate(made);
            instance.store(made, std::memory_order_release);
            Private::DeleteAtExit(made, Priority, &DeleteObject);
        });
        return instance.load(std::memory_order_acquire);
    }

    /// GetInstance() in the form the caller needs.
    ///@{
    operator T *() const { return GetInstance(); }
    T *operator->() const { return GetInstance(); }
    T &operator*() const { return *GetInstance(); }
    ///@}

    /// The exit routine's deleter: deletes object and, when it is the current
    /// instance, forgets it. Not for other callers (see the file comment).
    static void Delete(T *object) {
        T *expected = object;
        if (object && instance.compare_exchange_strong(expected, nullptr, std::memory_order_acq_rel)) {
            done.store(0, std::memory_order_release);
            begun.store(0, std::memory_order_release);
        }
        delete object;
    }

private:
    static void DeleteObject(void *object) { Delete(static_cast<T *>(object)); }

    static std::atomic<T *> instance;
    static std::atomic<int> begun;
    static std::atomic<int> done;
};

template <class T, int P, bool S, class C> std::atomic<T *> TSingletonPtr<T, P, S, C>::instance{nullptr};
template <class T, int P, bool S, class C> std::atomic<int> TSingletonPtr<T, P, S, C>::begun{0};
template <class T, int P, bool S, class C> std::atomic<int> TSingletonPtr<T, P, S, C>::done{0};

} // namespace qv
