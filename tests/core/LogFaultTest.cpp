// The log under failure: SetFile writes the kept text whole or keeps it (the
// file cut back to its old end), and a write the file refuses is reported.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "qv/core/Log.h"
#include "support/FaultInjection.h"

using namespace qv;
using qv::test::Fault;
using qv::test::FaultRun;

namespace {

class LogFaults : public testing::Test {
protected:
    void SetUp() override {
        std::string pattern = testing::TempDir() + "qv_logfault_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir = pattern;
    }
    void TearDown() override {
        ResetSyscalls();
        std::filesystem::remove_all(dir);
    }
    std::string dir;
    std::string path() const { return dir + "/log.txt"; }
};

std::string Text(qv::test::FaultBytes const &bytes) {
    return std::string(bytes.begin(), bytes.end());
}

TEST_F(LogFaults, SetFileWritesTheKeptTextWholeOrKeepsIt) {
    std::string const old = "an older process wrote this\r\n";
    std::string kept;
    for (int i = 0; i < 200; ++i)
        kept += "kept line " + std::to_string(i) + "\r\n";
    CLog *log = nullptr;
    int runs = qv::test::RunUnderFaults(
        [&] {
            std::ofstream(path(), std::ios::binary | std::ios::trunc) << old;
            delete log;
            log = new CLog;
            log->Write(CString(kept.c_str()).GetUTF16()); // no % in it
        },
        [&] { return log->SetFile(CString(path().c_str())); },
        [&](FaultRun const &run) {
            qv::test::ExpectFailureReported(run);
            std::string now = Text(qv::test::FileBytes(path()));
            if (run.succeeded) {
                EXPECT_EQ(now, old + kept);
                return;
            }
            EXPECT_EQ(now, old) << "a failed SetFile leaves the file as it was";
            // The text was kept: a second try writes all of it.
            EXPECT_TRUE(log->SetFile(CString(path().c_str())));
            EXPECT_EQ(Text(qv::test::FileBytes(path())), old + kept);
        },
        {Fault::kWrite, Fault::kWriteShort, Fault::kLseek, Fault::kFtruncate});
    delete log;
    EXPECT_GT(runs, 2);
}

ssize_t FullDisk(int, void const *, size_t) {
    errno = ENOSPC;
    return -1;
}

TEST_F(LogFaults, AWriteTheFileRefusesIsReported) {
    CLog log;
    ASSERT_TRUE(log.SetFile(CString(path().c_str())));
    EXPECT_TRUE(log.Write(u"first\n"));
    Syscalls().write = &FullDisk;
    EXPECT_FALSE(log.Write(u"second\n"));
    EXPECT_FALSE(log.WriteLine(u"third"));
    ResetSyscalls();
    EXPECT_TRUE(log.Write(u"fourth\n"));
}

} // namespace
