// The umbrella header must compile on its own and bring in the whole library.
#include "qv/qv.h"

#include <gtest/gtest.h>

TEST(UmbrellaHeader, BringsInTheLibrary) {
    qv::CString text(u"qv");
    qv::TArray<qv::CString> parts;
    parts.Add(text);
    qv::CMemFile file;
    EXPECT_TRUE(file.PutString(text.GetTChar()));
    EXPECT_EQ(parts.nItems(), 1u);
}
