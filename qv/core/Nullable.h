/// @file
/// nullable<T>: a value of T followed by a one-byte flag telling whether it is
/// set. Used for bool, char, unsigned char, short, unsigned short, int32_t,
/// uint32_t, int64_t, uint64_t, float and double. A plain value type: no heap,
/// no locks.
///
/// The "not set" tag is null_t with the one global qv::null (x = qv::null
/// unsets x). It is not called nullptr_t: with `using namespace qv` that name
/// would clash with the C library's \::nullptr_t and std::nullptr_t.
#pragma once

namespace qv {

/// @copydoc Nullable.h
struct null_t {
    explicit constexpr null_t() = default;
};
inline constexpr null_t null{}; ///< the "not set" tag: x = qv::null unsets x

/// @copydoc Nullable.h
template <class T> class nullable {
public:
    constexpr nullable() : value(), set(false) {}
    constexpr nullable(null_t) : value(), set(false) {} ///< not set, value T()
    constexpr nullable(T const &v) : value(v), set(true) {} ///< set to v
    /// Copies the value and the flag.
    ///@{
    constexpr nullable(nullable const &) = default;

    constexpr nullable &operator=(nullable const &) = default;
    ///@}
    /// Set(v).
    constexpr nullable &operator=(T const &v) {
        Set(v);
        return *this;
    }
    /// Unset(): the stored value stays what it was.
    constexpr nullable &operator=(null_t) {
        Unset();
        return *this;
    }

    /// Whether a value is set; IsNull is the opposite.
    ///@{
    constexpr bool IsSet() const { return set; }
    constexpr bool HasValue() const { return set; }
    constexpr bool IsNull() const { return !set; }
    ///@}
    /// Clears the flag; the stored value stays what it was.
    ///@{
    constexpr void Unset() { set = false; }
    constexpr void Set(T const &v) {
        value = v;
        set = true;
    }
    ///@}
    /// The value if set, otherwise fallback.
    constexpr T Get(T const &fallback) const { return set ? value : fallback; }
    /// The stored value, without looking at the flag (callers rely on that).
    constexpr operator T() const { return value; }

private:
    T value;
    bool set;
};

} // namespace qv
