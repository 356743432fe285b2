/// @file
/// IInvokable: a call packed as an object, so that an IInvoker can run it on
/// another thread, now or later.
///
/// invokable0 and invokable1<A> .. invokable3<A, B, C> hold a target object, a
/// method of it, a plain function and the arguments. Invoke calls the method on
/// the target when there is a target, otherwise the function. Arguments are
/// copied by value: a pointer argument (a text, a sender) must stay valid until
/// the call has run, which for a queued call is later, on another thread.
///
/// Handler identity. A member-function pointer fits no void *, so a method is
/// named by CMethodId: the exact bytes of its pointer, compared for equality.
/// UsesHandler(target, method) says whether a call was made for that target and
/// method; invokers use it to drop pending duplicates. Name a method through
/// the same class when adding it and when asking for it (&Derived::OnX and
/// &Base::OnX may differ once converted).
///
/// TMethod<Args...> carries a CMethodId and how to call it with Args, for any
/// class, so that records of handlers of any class share one type.
///
/// Typed construction is the safe form: invokable1<void *> call(this,
/// &CView::OnChanged, sender) deduces the class from the target pointer. The
/// raw form (void *target, TMethod) trusts that target points to the object of
/// the class whose method TMethod names.
///
/// Threads: an invokable belongs to whoever holds it; Invoke runs on the
/// calling thread.
#pragma once

#include <cstring>
#include <tuple>
#include <type_traits>
#include <utility>

#include "qv/core/Export.h"

namespace qv {

/// The identity of a member or plain function; null by default.
class CMethodId {
public:
    CMethodId() = default;
    /// The identity of a member-function pointer or a function pointer.
    template <class M>
    requires(std::is_member_function_pointer_v<M> ||
             (std::is_pointer_v<M> && std::is_function_v<std::remove_pointer_t<M>>)) CMethodId(M method) {
        static_assert(sizeof(M) <= sizeof(bytes), "member-function pointers of this ABI fit two words");
        std::memcpy(bytes, &method, sizeof(M));
    }

    /// The pointer back, as the type it was made from.
    template <class M> M As() const {
        M method;
        std::memcpy(&method, bytes, sizeof(M));
        return method;
    }
    bool IsNull() const { return *this == CMethodId(); } ///< equal to a default-made id
    bool operator==(CMethodId const &other) const { return std::memcmp(bytes, other.bytes, sizeof(bytes)) == 0; } ///< the same bytes

private:
    alignas(void *) unsigned char bytes[2 * sizeof(void *)] = {};
};

/// A void member function of any class, or a plain function, taking Args.
template <class... Args> class TMethod {
public:
    using Function = void (*)(Args...); ///< a plain function taking Args

    TMethod() = default; ///< null: Call does nothing
    template <class T> explicit TMethod(void (T::*method)(Args...)) : id(method), call(&CallMember<T>) {} ///< a member of T
    explicit TMethod(Function function) : id(function), call(&CallFunction), plain(true) {} ///< a plain function

    /// Calls the method on target, or the plain function, with args.
    /// target must be a T * (as void *) of the class the method was made from;
    /// a plain function ignores it. A null TMethod does nothing.
    void Call(void *target, Args... args) const {
        if (call) call(target, id, args...);
    }
    CMethodId const &Id() const { return id; } ///< the identity of the method or function
    /// The plain function this was made from, or null.
    Function PlainFunction() const { return plain ? id.As<Function>() : nullptr; }
    explicit operator bool() const { return call != nullptr; } ///< false for a null TMethod

private:
    template <class T> static void CallMember(void *target, CMethodId const &id, Args... args) {
        (static_cast<T *>(target)->*id.As<void (T::*)(Args...)>())(args...);
    }
    static void CallFunction(void *, CMethodId const &id, Args... args) { id.As<Function>()(args...); }

    CMethodId id;
    void (*call)(void *target, CMethodId const &id, Args... args) = nullptr;
    bool plain = false;
};

/// @copydoc Invokable.h
class QV_API IInvokable {
public:
    virtual ~IInvokable() = default;
    virtual void Invoke() = 0; ///< makes the call
    /// True when this call was made for target and method.
    virtual bool UsesHandler(void *target, CMethodId const &method) const {
        (void)target;
        (void)method;
        return false;
    }
};

/// The common body of invokable0 .. invokable3.
template <class... Args> class TInvokable : public IInvokable {
public:
    using Function = void (*)(Args...); ///< a plain function taking Args

    /// A method of *target, the class deduced from the target pointer.
    ///@{
    template <class T>
    TInvokable(T *target, std::type_identity_t<void (T::*)(Args...)> method, Args... args)
        : target(target), method(method), arguments(args...) {}
    ///@}
    /// Raw form: target is the object (as void *) that method belongs to.
    ///@{
    TInvokable(void *target, TMethod<Args...> method, Args... args)
        : target(target), method(method), function(method.PlainFunction()), arguments(args...) {}
    explicit TInvokable(Function function, Args... args) : method(function), function(function), arguments(args...) {} ///< a plain function
    ///@}

    /// A call with neither target nor function does nothing.
    ///@{
    void Invoke() override {
        if (target)
            std::apply([this](Args... a) { method.Call(target, a...); }, arguments);
        else if (function)
            std::apply(function, arguments);
    }
    /// True when target and method are those given.
    bool UsesHandler(void *handlerTarget, CMethodId const &handlerMethod) const override {
        return target == handlerTarget && method.Id() == handlerMethod;
    }
    ///@}

protected:
    void *target = nullptr;        ///< the object called; null for a plain function
    TMethod<Args...> method;       ///< the method (or the function) to call
    Function function = nullptr;   ///< the plain function, if that is what is called
    std::tuple<Args...> arguments; ///< copies of the arguments, passed at Invoke
};

/// @copydoc Invokable.h
class invokable0 : public TInvokable<> {
public:
    using TInvokable<>::TInvokable;
};

/// @copydoc Invokable.h
template <class A> class invokable1 : public TInvokable<A> {
public:
    using TInvokable<A>::TInvokable;
};

/// @copydoc Invokable.h
template <class A, class B> class invokable2 : public TInvokable<A, B> {
public:
    using TInvokable<A, B>::TInvokable;
};

/// @copydoc Invokable.h
template <class A, class B, class C> class invokable3 : public TInvokable<A, B, C> {
public:
    using TInvokable<A, B, C>::TInvokable;
};

} // namespace qv
