// The version: the macros of the header and the library's own string agree,
// and come from the project version (MAJOR.MINOR.PATCH).
#include <gtest/gtest.h>

#include <string>

#include "qv/core/Version.h"

namespace {

TEST(Version, MacrosAndLibraryAgree) {
    std::string const expected = std::to_string(QV_VERSION_MAJOR) + "." + std::to_string(QV_VERSION_MINOR) + "." +
                                 std::to_string(QV_VERSION_PATCH);
    EXPECT_EQ(expected, QV_VERSION_STRING);
    EXPECT_EQ(std::string(qvVersion()), QV_VERSION_STRING);
    EXPECT_EQ(qvVersion(), qvVersion()); // one static string
}

} // namespace
