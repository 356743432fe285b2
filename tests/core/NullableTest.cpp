// nullable<T>: a value and a set flag.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "qv/core/Nullable.h"

using qv::nullable;

TEST(Nullable, SetUnsetAndFallback) {
    nullable<double> d;
    EXPECT_FALSE(d.IsSet());
    EXPECT_TRUE(d.IsNull());
    EXPECT_EQ(d.Get(2.5), 2.5);

    d = 1.25;
    EXPECT_TRUE(d.HasValue());
    EXPECT_EQ(d.Get(2.5), 1.25);
    nullable<double> copy(d);
    EXPECT_TRUE(copy.IsSet());
    EXPECT_EQ(double(copy), 1.25);

    d = qv::null;
    EXPECT_TRUE(d.IsNull());
    EXPECT_EQ(double(d), 1.25); // operator T does not look at the flag
    EXPECT_EQ(d.Get(-1.0), -1.0);
    d.Set(3.0);
    d.Unset();
    EXPECT_FALSE(d.IsSet());

    nullable<int64_t> big(INT64_MIN);
    EXPECT_EQ(big.Get(0), INT64_MIN);
    nullable<bool> flag = qv::null;
    EXPECT_FALSE(flag.HasValue());
    flag = false;
    EXPECT_TRUE(flag.IsSet());

    static_assert(sizeof(nullable<char>) == 2); // the value, then a one-byte flag
    static_assert(sizeof(nullable<uint16_t>) == 4);
}
