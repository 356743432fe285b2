// The named open flags keep the numbers callers and files use, and open a
// file as those numbers do.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "qv/core/String.h"
#include "qv/files/File.h"
#include "qv/files/OpenFlags.h"

namespace {

using namespace qv;

TEST(OpenFlags, NumbersNeverChange) {
    EXPECT_EQ(kOpenAlways, 0x01u);
    EXPECT_EQ(kOpenExisting, 0x02u);
    EXPECT_EQ(kOpenCreateNew, 0x04u);
    EXPECT_EQ(kOpenCreateAlways, 0x08u);
    EXPECT_EQ(kOpenRead, 0x10u);
    EXPECT_EQ(kOpenWrite, 0x20u);
    EXPECT_EQ(kOpenAtEnd, 0x40u);
    EXPECT_EQ(kOpenShareWrite, 0x100u);
    EXPECT_EQ(kOpenShareRead, 0x200u);
    EXPECT_EQ(kOpenDenyRead, 0x400u);
    EXPECT_EQ(kOpenDenyWrite, 0x800u);
    EXPECT_EQ(kOpenNormal, 0x1000u);
    EXPECT_EQ(kOpenReadOnly, 0x2000u);
    EXPECT_EQ(kOpenHidden, 0x4000u);
    EXPECT_EQ(kOpenSystem, 0x8000u);
    EXPECT_EQ(kOpenTemporary, 0x10000u);
    EXPECT_EQ(kOpenDeleteOnClose, 0x100000u);
    EXPECT_EQ(kOpenWriteThrough, 0x200000u);
}

TEST(OpenFlags, OpenAFileAsTheirNumbersDo) {
    std::string const path = testing::TempDir() + "qv_open_flags.bin";
    CString const name(path.c_str());
    {
        CFile file;
        ASSERT_TRUE(file.Open(name, kOpenCreateAlways | kOpenWrite));
        EXPECT_EQ(file.Write("abc", 3), 3u);
    }
    CFile again;
    EXPECT_FALSE(again.Open(name, kOpenCreateNew | kOpenWrite)); // it exists
    CFile reader;
    ASSERT_TRUE(reader.Open(name, kOpenExisting | kOpenRead | kOpenShareRead));
    char bytes[4] = {};
    EXPECT_EQ(reader.Read(bytes, 3), 3u);
    EXPECT_STREQ(bytes, "abc");
    CFile second; // shares read with the first reader
    EXPECT_TRUE(second.Open(name, kOpenExisting | kOpenRead | kOpenShareRead));
    CFile writer; // the readers share no writing
    EXPECT_FALSE(writer.Open(name, kOpenExisting | kOpenWrite));
    reader.Close();
    second.Close();
    std::remove(path.c_str());
}

} // namespace
