// The curve readers on a disk file whose reads and seeks fail: each read gives
// every value, as a clean read does, or false; a part never passes for all.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

#include "Golden.h"
#include "qv/numerics/CurveFiles.h"
#include "support/FaultInjection.h"

using namespace qv;
using golden::ToVector;
using qv::test::Fault;
using qv::test::FaultRun;
using V = std::vector<double>;

namespace {

class CurveFileFaults : public testing::Test {
protected:
    std::string path = testing::TempDir() + "qv_curve_faults_" + std::to_string(getpid());
    std::u16string widePath = std::u16string(path.begin(), path.end());
    ~CurveFileFaults() override { std::remove(path.c_str()); }

    void Write(std::string const &text) {
        std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
    }

    // Runs read under every read and seek fault; values gives what it read.
    void Check(std::function<bool()> const &read, std::function<V()> const &values) {
        V clean;
        int failures = 0;
        qv::test::RunUnderFaults(
            [] {}, read,
            [&](FaultRun const &run) {
                if (run.IsClean()) {
                    clean = values();
                    EXPECT_GT(clean.size(), 40u);
                } else if (!run.succeeded) {
                    ++failures;
                } else {
                    EXPECT_EQ(values(), clean) << "a read that succeeded gave other values";
                }
            },
            {Fault::kRead, Fault::kLseek});
        EXPECT_GT(failures, 0) << "no fault reached the caller";
    }
};

} // namespace

TEST_F(CurveFileFaults, XYFileReadsAllOrFails) {
    std::string text = "# response\n";
    for (int i = 0; i < 80; ++i)
        text += std::to_string(3.0 + i * 0.01) + ", " + std::to_string(i % 17) + "\n";
    Write(text);
    TArray<double> x, y;
    Check([&] { return ReadXYFile(x, y, nullptr, widePath.c_str()); },
          [&] {
              V all = ToVector(x);
              V second = ToVector(y);
              all.insert(all.end(), second.begin(), second.end());
              return all;
          });
}

TEST_F(CurveFileFaults, ModtranTableReadsAllOrFails) {
    std::string text = "a heading line\n FREQ TRANS RAD\n";
    for (int i = 0; i < 80; ++i)
        text += " " + std::to_string(2000 + i * 10) + " 0." + std::to_string(10 + i) + " 1e-6\n";
    Write(text + " -9999.\n");
    TArray<double> x, y1, y2;
    Check([&] { return ReadModtranFile(x, y1, y2, nullptr, widePath.c_str()); },
          [&] {
              V all = ToVector(x);
              for (TArray<double> const *column : {&y1, &y2}) {
                  V more = ToVector(*column);
                  all.insert(all.end(), more.begin(), more.end());
              }
              return all;
          });
}
