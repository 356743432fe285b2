// CSAFFile::Load from a disk file whose reads and seeks fail: each load gives
// the whole header, as a clean load does, or fails; a part of the header
// never passes for the whole (a later save would write the part back).
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "SAFTestSupport.h"
#include "qv/files/OpenFlags.h"
#include "support/FaultInjection.h"

using namespace qv;
using namespace qv::saftest;
using qv::test::Fault;
using qv::test::FaultRun;

namespace {

using Tags = std::vector<std::pair<std::string, std::string>>;

Tags TagsOf(CSAFFile &saf) {
    Tags tags;
    for (uint32_t i = 0; i < saf.nTags(); ++i)
        tags.emplace_back(Narrow(saf[i].name.GetUTF16()), Narrow(saf[i].value.GetUTF16()));
    return tags;
}

void WriteFile(std::string const &path, std::string const &bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc).write(bytes.data(), std::streamsize(bytes.size()));
}

// Loads path under every read and seek fault and checks each outcome.
void CheckLoadUnderFaults(std::string const &path, size_t minimumTags) {
    Tags clean;
    uint32_t cleanPosition = 0;
    CSAFFile saf;
    int failures = 0;
    int runs = qv::test::RunUnderFaults(
        [] {},
        [&] {
            CFile f;
            return f.Open(Wide(path).c_str(), kOpenExisting | kOpenRead) && saf.Load(&f);
        },
        [&](FaultRun const &run) {
            if (run.IsClean()) {
                clean = TagsOf(saf);
                cleanPosition = saf.GetDataPosition();
                EXPECT_GE(clean.size(), minimumTags);
                return;
            }
            if (!run.succeeded) {
                ++failures;
                return;
            }
            EXPECT_EQ(TagsOf(saf), clean) << "a load that succeeded gave other tags";
            EXPECT_EQ(saf.GetDataPosition(), cleanPosition);
        },
        {Fault::kRead, Fault::kLseek});
    EXPECT_GT(runs, 0);
    EXPECT_GT(failures, 0) << "no fault reached the caller";
}

} // namespace

TEST(SAFLoadFaults, AHeaderOfManyReadsLoadsWholeOrFails) {
    ScratchDir dir;
    std::string path = dir.Path("many.saf");
    CMemFile memory;
    CSAFFile saf;
    MakeCameraHeader(saf);
    for (int i = 0; i < 60; ++i)
        saf.AddTag(Wide("Tag" + std::to_string(i)).c_str(), Wide("value " + std::to_string(i * 7)).c_str());
    uint32_t position = 0;
    ASSERT_TRUE(saf.SaveTo(&memory, position, true));
    std::string data = DataPattern(20000);
    memory.Write(data.data(), uint32_t(data.size()));
    WriteFile(path, AllBytes(memory));
    CheckLoadUnderFaults(path, 60);
}

TEST(SAFLoadFaults, AFixedSizeHeaderWithoutDataLineLoadsWholeOrFails) {
    // An older header: its size in HdSize, no DATA line, data right behind.
    ScratchDir dir;
    std::string path = dir.Path("fixed.saf");
    std::string header;
    for (int i = 0; i < 40; ++i)
        header += "Tag" + std::to_string(i) + " " + std::string(size_t(i % 9 + 1), 'v') + "\r\n";
    std::string size = std::to_string(header.size() + 14);
    std::string first = "HdSize " + std::string(5 - size.size(), '0') + size + "\r\n";
    ASSERT_EQ(first.size(), 14u);
    WriteFile(path, first + header + DataPattern(3000));
    CheckLoadUnderFaults(path, 40);
}
