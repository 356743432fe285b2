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
#include "qv/modtran/ModtranTape7File.h"
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

// Loads under failing reads and seeks: each load fails or reads what a clean
// load reads. A read failing at a block boundary must not pass for the end of
// the file: the line it cut would be taken short, and its rest read as the
// next line, giving other numbers (or fewer runs) with success.
TEST(Tape5Faults, AFailedReadIsNeverTakenForTheEndOfTheDeck) {
    std::string path = testing::TempDir() + "qv_modtran_fault_read_tape5";
    {
        CModtranTape5File deck;
        ASSERT_TRUE(deck.Load(Wide(DataPath("NelisW__ComputationalRadiometry__DataPackages__DP01.zip__flameTo12km.ltn")).c_str()));
        for (int i = 0; i < 40; ++i) ASSERT_GE(deck.AddRun(0), 0); // copies of the run: a deck of several blocks
        ASSERT_TRUE(deck.Save(Wide(path).c_str()));
    }
    ASSERT_GT(ReadText(path).size(), 8192u);
    auto saved = [](CModtranTape5File &deck) {
        CMemFile out;
        EXPECT_TRUE(deck.Save(out));
        return Contents(out);
    };
    CModtranTape5File tape5;
    std::string const clean =
        test::ExpectWholeLoadOrFailure([&] { return tape5.Load(Wide(path).c_str()); }, [&] { return saved(tape5); });
    EXPECT_EQ(clean, ReadText(path));
    std::remove(path.c_str());
}

TEST(Tape5Faults, AFailedReadIsNeverTakenForTheEndOfATape7Table) {
    std::string const path = DataPath("NelisW__pyradi__pyradi__data__tape7-01");
    auto values = [](CModtranTape7File &tape7) {
        std::vector<double> all;
        std::vector<double> column(size_t(tape7.nPoints()));
        for (int run = 0; run < tape7.nRuns(); ++run)
            for (uint64_t bit : {CModtranTape7File::T7C_FREQ, CModtranTape7File::T7C_TOT_TRANS})
                if (tape7.GetData(column.data(), run, bit)) all.insert(all.end(), column.begin(), column.end());
        return all;
    };
    CModtranTape7File tape7;
    std::vector<double> const clean = test::ExpectWholeLoadOrFailure(
        [&] { return tape7.Load(Wide(path).c_str(), CModtranTape7File::T7C_FREQ | CModtranTape7File::T7C_TOT_TRANS); },
        [&] { return values(tape7); });
    EXPECT_EQ(clean.size(), 102u); // 51 rows of two columns
}
