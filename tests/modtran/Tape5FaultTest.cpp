// Save through a path under the shared fault harness: every failing system
// call reaches the caller as a failure, and the deck on disk is the old one
// or the whole new one, never a mix (the save goes through a temporary file
// and a rename).
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "ModtranTestSupport.h"
#include "qv/modtran/ModtranTape5File.h"
#include "support/FaultInjection.h"

using namespace qv;
using namespace qvtest;

// Every fault but a failing close: the new deck is synced through its name
// before the rename, which is what counts.
std::vector<test::Fault> SaveFaults() {
    auto kinds = test::AllFaults();
    std::erase(kinds, test::Fault::kClose);
    return kinds;
}

TEST(Tape5Faults, ASaveLeavesTheOldDeckOrTheWholeNewOne) {
    std::string path = testing::TempDir() + "qv_modtran_fault_tape5";
    CModtranTape5File old, tape5;
    tape5.AddRun(-1);
    ASSERT_TRUE(old.Save(Wide(path).c_str()));
    test::FaultBytes before = test::FileBytes(path), after;
    int runs = test::RunUnderFaults([&] { ASSERT_TRUE(old.Save(Wide(path).c_str())); },
                                    [&] { return tape5.Save(Wide(path).c_str()); },
                                    [&](test::FaultRun const &run) {
                                        if (run.IsClean()) {
                                            after = test::FileBytes(path);
                                            EXPECT_NE(after, before);
                                            return;
                                        }
                                        test::ExpectFailureReported(run);
                                        test::ExpectBeforeOrAfter(run, test::FileBytes(path), before, after);
                                    },
                                    SaveFaults());
    EXPECT_GT(runs, 4);
    std::remove(path.c_str());
}
