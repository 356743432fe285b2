/// @file
/// TCallback: holds one plain function to call later, or nothing.
///
/// The parameters name the result and up to four arguments, void for none;
/// the library has the form without result or arguments, TCallback<>. The
/// function sits in an owned inner object (IInner), so a copy holds a copy of
/// it. Calling a callback with nothing set does nothing.
/// Threads: a callback belongs to one thread at a time.
#pragma once

namespace qv {

template <class R = void, class A = void, class B = void, class C = void, class D = void> class TCallback;

/// @copydoc Callback.h
template <> class TCallback<void, void, void, void, void> {
public:
    using Function = void (*)(); ///< the function held

    TCallback() = default; ///< holds nothing
    /// Holds a copy of other's function.
    ///@{
    TCallback(TCallback const &other) : inner(other.inner ? other.inner->Clone() : nullptr) {}
    TCallback &operator=(TCallback const &other) {
        if (&other != this) Replace(other.inner ? other.inner->Clone() : nullptr);
        return *this;
    }
    ///@}
    ~TCallback() { delete inner; }

    void set(Function function) { Replace(function ? new CInner(function) : nullptr); } ///< holds function (null: nothing)
    void unset() { Replace(nullptr); } ///< holds nothing
    bool isset() const { return inner != nullptr; } ///< whether a function is held
    /// Calls the function held; nothing without one.
    void operator()() const {
        if (inner) inner->Call();
    }

private:
    class IInner {
    public:
        virtual ~IInner() = default;
        virtual void Call() const = 0;
        virtual IInner *Clone() const = 0;
    };
    class CInner : public IInner {
    public:
        explicit CInner(Function function) : function(function) {}
        void Call() const override { function(); }
        IInner *Clone() const override { return new CInner(function); }

    private:
        Function function;
    };

    void Replace(IInner *next) {
        delete inner;
        inner = next;
    }

    IInner *inner = nullptr;
};

} // namespace qv
