/// @file
/// event0, event1<A>, event2<A, B>: lists of handlers that a source fires.
///
/// Each handler names the invoker that has to run it, so a source may fire
/// from any thread and each handler runs where it wants:
///   - no invoker: called directly on the firing thread;
///   - an invoker, not queued: packed into an invokable on the firing
///     thread's stack and passed to Invoke, so Fire waits until it has run;
///   - an invoker, queued: packed into an invokable on the heap and passed to
///     Queue(call, true); the invoker deletes it. A call the invoker refuses
///     is deleted here.
/// Handlers run in the order they were added. Fire walks them by index and
/// reads the count again each time, so a handler added during Fire runs in
/// the same Fire.
///
/// A handler receives the sender first, then the event's arguments:
/// void CView::OnChanged(void *sender, char16_t const *name). Arguments are
/// copied as they are: a text pointer passed to a queued handler must stay
/// valid until that handler has run.
///
/// Adding a method: AddHandlerEx(this, &CView::OnChanged, invoker, queued)
/// deduces the class from the target pointer. The raw form takes the target
/// as void * and the method as a TMethod built from the same class. A second
/// AddHandlerEx with the same target and method is ignored; AddHandler (a
/// plain function) always adds. RemoveHandlerEx removes the first handler
/// with that target and method (a null target and the function for a plain
/// one); give the target as the same pointer type as when adding.
///
/// Failure: a handler the array has no room for is not added (false).
///
/// Threads: no lock. Set the handlers up before firing starts; adding or
/// removing while another thread fires is not safe. Fire itself may run on
/// any thread.
#pragma once

#include <cstdint>
#include <new>
#include <type_traits>

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/threads/Invokable.h"
#include "qv/threads/Invoker.h"

namespace qv {

/// The empty base of classes that take events.
class QV_API IEventTarget {};

/// One handler of an event taking (void *sender, Args...); events call it
/// HANDLER. function is set for a plain function, and method names it too.
template <class... Args> struct TEventHandler {
    void *target = nullptr;                      ///< the object of a method; null for a plain function
    IInvoker *invoker = nullptr;                 ///< runs the handler; null: called on the firing thread
    bool queued = false;                         ///< Queue rather than Invoke on the invoker
    TMethod<void *, Args...> method;             ///< the method (or the function) called
    void (*function)(void *, Args...) = nullptr; ///< the plain function, if that is the handler
};

namespace detail {

/// @copydoc Events.h
template <class... Args> struct InvokableFor;
/// @copydoc Events.h
template <> struct InvokableFor<void *> { using type = invokable1<void *>; };
/// @copydoc Events.h
template <class A> struct InvokableFor<void *, A> { using type = invokable2<void *, A>; };
template <class A, class B> struct InvokableFor<void *, A, B> { using type = invokable3<void *, A, B>; };

/// The common body of event0 .. event2; Args are the arguments after the
/// sender.
template <class... Args> class EventBase : public TArray<TEventHandler<Args...>> {
    using Array = TArray<TEventHandler<Args...>>;
    using Call = typename InvokableFor<void *, Args...>::type;

public:
    using HANDLER = TEventHandler<Args...>;
    using Method = TMethod<void *, Args...>;
    using Function = void (*)(void *, Args...);

    /// A plain function, called directly.
    bool AddHandler(Function function) {
        HANDLER handler;
        handler.method = Method(function);
        handler.function = function;
        return Array::Add(handler);
    }

    /// Raw form; a null target with a method made from a plain function adds
    /// that function.
    ///@{
    bool AddHandlerEx(void *target, Method method, IInvoker *invoker, bool queued) {
        if (Find(target, method.Id()) != NotFound) return true;
        HANDLER handler;
        handler.target = target;
        handler.invoker = invoker;
        handler.queued = queued;
        handler.method = method;
        handler.function = method.PlainFunction();
        return Array::Add(handler);
    }
    template <class T>
    bool AddHandlerEx(T *target, std::type_identity_t<void (T::*)(void *, Args...)> method, IInvoker *invoker = nullptr,
                      bool queued = false) {
        return AddHandlerEx(static_cast<void *>(target), Method(method), invoker, queued);
    }
    ///@}

    void RemoveHandlerEx(void *target, CMethodId const &method) {
        uint32_t at = Find(target, method);
        if (at != NotFound) Array::Remove(at);
    }
    template <class T> void RemoveHandlerEx(T *target, std::type_identity_t<void (T::*)(void *, Args...)> method) {
        RemoveHandlerEx(static_cast<void *>(target), CMethodId(method));
    }

    bool HasHandlers() const { return Array::nItems() != 0; }

    void Fire(void *sender, Args... args) {
        bool const never = false;
        FireUnless(never, sender, args...);
    }

    /// Fire for an event whose owner a handler may destroy: the owner sets
    /// gone (which outlives it) as it goes, and no later handler runs; the
    /// event is not touched again.
    void FireUnless(bool const &gone, void *sender, Args... args) {
        for (uint32_t i = 0; !gone && i < Array::nItems(); ++i) {
            // A copy: a handler that adds handlers may move the block.
            HANDLER const handler = Array::GetAt(i);
            if (!handler.invoker)
                CallDirectly(handler, sender, args...);
            else if (!handler.queued)
                InvokeAndWait(handler, sender, args...);
            else
                QueueCall(handler, sender, args...);
        }
    }

private:
    static constexpr uint32_t NotFound = UINT32_MAX;

    uint32_t Find(void *target, CMethodId const &method) const {
        for (uint32_t i = 0; i < Array::nItems(); ++i) {
            HANDLER const &handler = Array::GetAt(i);
            if (handler.target == target && handler.method.Id() == method) return i;
        }
        return NotFound;
    }

    static void CallDirectly(HANDLER const &handler, void *sender, Args... args) {
        if (handler.target)
            handler.method.Call(handler.target, sender, args...);
        else if (handler.function)
            handler.function(sender, args...);
    }
    static Call MakeCall(HANDLER const &handler, void *sender, Args... args) {
        if (handler.target) return Call(handler.target, handler.method, sender, args...);
        return Call(handler.function, sender, args...);
    }
    static void InvokeAndWait(HANDLER const &handler, void *sender, Args... args) {
        Call call = MakeCall(handler, sender, args...);
        handler.invoker->Invoke(&call);
    }
    static void QueueCall(HANDLER const &handler, void *sender, Args... args) {
        Call *call = new (std::nothrow) Call(MakeCall(handler, sender, args...));
        if (call && !handler.invoker->Queue(call, true)) delete call;
    }
};

} // namespace detail

class event0 : public detail::EventBase<> {};

template <class A> class event1 : public detail::EventBase<A> {};

template <class A, class B> class event2 : public detail::EventBase<A, B> {};

} // namespace qv
