// Shared helpers of the typed-buffer tests: the nine element types, a scalar
// reference of the element conversion, sample values, and byte buffers at
// odd addresses with guard bytes around them.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <tuple>
#include <type_traits>
#include <vector>

#include "qv/core/FloatToInt.h"
#include "qv/numerics/TypedData.h"

namespace qv::typedtest {

template <class T> struct Tag {
    using type = T;
};

using AllTypes = std::tuple<int8_t, uint8_t, int16_t, uint16_t, int32_t, uint32_t, int64_t, float, double>;

template <class F> void ForEachType(F &&f) {
    std::apply([&](auto... t) { (f(Tag<decltype(t)>{}), ...); }, AllTypes{});
}

template <class T> constexpr EDataType kCode = std::is_same_v<T, int8_t>     ? DT_Int8
                                              : std::is_same_v<T, uint8_t>  ? DT_UInt8
                                              : std::is_same_v<T, int16_t>  ? DT_Int16
                                              : std::is_same_v<T, uint16_t> ? DT_UInt16
                                              : std::is_same_v<T, int32_t>  ? DT_Int32
                                              : std::is_same_v<T, uint32_t> ? DT_UInt32
                                              : std::is_same_v<T, int64_t>  ? DT_Int64
                                              : std::is_same_v<T, float>    ? DT_Float
                                                                            : DT_Double;

// The library's scalar statement of the rule is the reference.
inline int64_t ReferenceTruncate(double x) { return TruncateToInt64(x); }

template <class D, class S> D ReferenceCast(S v) {
    if constexpr (std::is_floating_point_v<S> && std::is_integral_v<D>)
        return FloatToInt<D>(static_cast<double>(v));
    else
        return static_cast<D>(v);
}

// Equal bits, or both NaN.
template <class T> bool Same(T a, T b) {
    if constexpr (std::is_floating_point_v<T>)
        if (std::isnan(a) && std::isnan(b)) return true;
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline std::vector<double> SpecialDoubles() {
    double const inf = std::numeric_limits<double>::infinity();
    return {0.0,     -0.0,          0.5,         -0.5,          1.9,          -1.9,         -1.0,
            70000.0, 255.99,        65535.5,     -32768.7,      2147483647.9, 3e9,          -3e9,
            4294967296.5, 0x1p52 + 1, -0x1p53 - 2, 0x1p63,      -0x1p63,      0x1.fffffffffffffp62,
            -0x1.fffffffffffffp62,  1e19,        -1e19,         inf,          -inf,         std::nan(""),
            -std::nan(""), 5e-324,  -1e-310,     1e300,         123456789012.75};
}

inline std::vector<float> SpecialFloats() {
    float const inf = std::numeric_limits<float>::infinity();
    return {0.0f,         -0.0f,   0.5f,    -0.5f,  1.9f,   -1.9f,  -1.0f,         70000.0f,     255.99f, 65535.5f,
            -32768.7f,    3e9f,    -3e9f,   0x1p63f, -0x1p63f, 0x1.fffffep62f, -0x1.fffffep62f, 1e19f, -1e19f, inf,
            -inf,         std::nanf(""), 1e-45f, 3.4e38f, 16777217.0f};
}

template <class T> std::vector<T> Samples() {
    if constexpr (std::is_same_v<T, double>) {
        return SpecialDoubles();
    } else if constexpr (std::is_same_v<T, float>) {
        return SpecialFloats();
    } else {
        std::vector<T> out;
        for (int64_t v : {int64_t(0), int64_t(1), int64_t(-1), int64_t(127), int64_t(128), int64_t(255), int64_t(256),
                          int64_t(-129), int64_t(32767), int64_t(-32769), int64_t(65535), int64_t(70000),
                          int64_t(2147483647), int64_t(-2147483647 - 1), int64_t(4294967295), int64_t(16777217),
                          int64_t(9007199254740993), INT64_MAX, INT64_MIN})
            out.push_back(static_cast<T>(v));
        out.push_back(std::numeric_limits<T>::min());
        out.push_back(std::numeric_limits<T>::max());
        return out;
    }
}

// n elements of T at an odd address, with guard bytes on both sides.
class COddBuffer {
public:
    static constexpr unsigned char kGuard = 0xA5;
    static constexpr size_t kGuardSize = 8;

    explicit COddBuffer(size_t bytes) : storage(bytes + 2 * (kGuardSize + 1), kGuard) {}

    void *Data() { return storage.data() + kGuardSize + 1; }
    bool GuardsIntact() const {
        for (size_t i = 0; i < kGuardSize + 1; ++i)
            if (storage[i] != kGuard || storage[storage.size() - 1 - i] != kGuard) return false;
        return true;
    }

    template <class T> void Fill(std::vector<T> const &values) {
        if (!values.empty()) std::memcpy(Data(), values.data(), values.size() * sizeof(T));
    }
    template <class T> std::vector<T> Read(size_t n) {
        std::vector<T> out(n);
        if (n) std::memcpy(out.data(), Data(), n * sizeof(T));
        return out;
    }
    template <class T> STypedData Typed() { return STypedData(Data(), kCode<T>); }

private:
    std::vector<unsigned char> storage;
};

// Samples repeated to n elements, so vector blocks and the short tail both
// see every sample.
template <class T> std::vector<T> Repeated(size_t n) {
    std::vector<T> base = Samples<T>(), out;
    for (size_t i = 0; i < n; ++i)
        out.push_back(base[i % base.size()]);
    return out;
}

// The same, starting shift samples later: pairs each sample with others.
template <class T> std::vector<T> Shifted(size_t n, size_t shift) {
    std::vector<T> out = Repeated<T>(n + shift);
    out.erase(out.begin(), out.begin() + shift);
    return out;
}

} // namespace qv::typedtest
