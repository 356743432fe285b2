// A CDFS never lets one entry's bytes reach another: random work checked
// against a model after every step, a host that fails at every call index in
// turn, hostile tables that must be refused, and four threads on one table.
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "qv/filesystems/CDFileSystem.h"
#include "tests/filesystems/CDFileSystemTestSupport.h"
#include "tests/filesystems/FileSystemTestSupport.h"

namespace qv::test {
namespace {

using Model = std::map<std::u16string, std::string>;

void ExpectMatches(CCDFileSystem &cdfs, Model const &model, std::string const &where) {
    EXPECT_EQ(cdfs.GetDirectoryListing(u"/", nullptr).GetSize(), model.size()) << where;
    for (auto const &[path, bytes] : model)
        EXPECT_TRUE(ReadWhole(cdfs, CString(path.c_str())) == bytes) << where << " " << CString(path.c_str()).GetUTF8();
}

void WriteInto(std::string &bytes, size_t at, std::string const &data) {
    if (bytes.size() < at + data.size()) bytes.resize(at + data.size(), '\0');
    bytes.replace(at, data.size(), data);
}

TEST(CDFileSystemModel, RandomWorkKeepsEveryEntrysBytes) {
    for (int seed = 0; seed < 40; ++seed) {
        std::mt19937 random{uint32_t(seed)};
        MemoryHosts hosts;
        auto cdfs = std::make_unique<CCDFileSystem>();
        ASSERT_TRUE(cdfs->Create(&hosts, u"/h", false));
        Model model;
        std::map<std::u16string, std::unique_ptr<IFile>> handles;
        int made = 0;
        for (int step = 0; step < 60; ++step) {
            std::string where = "seed " + std::to_string(seed) + " step " + std::to_string(step);
            int op = int(random() % 10);
            auto pick = [&]() -> std::u16string {
                auto it = model.begin();
                std::advance(it, random() % model.size());
                return it->first;
            };
            if (op < 2 || model.empty()) { // create, keeping the handle open
                std::u16string path = u"/f" + Number(made++);
                handles[path].reset(cdfs->CreateFileW(path.c_str(), 0x28));
                ASSERT_TRUE(handles[path]) << where;
                model[path] = "";
            } else if (op < 6) { // write somewhere at or before the end, often growing
                std::u16string path = pick();
                std::unique_ptr<IFile> &file = handles[path];
                if (!file) file.reset(cdfs->CreateFileW(path.c_str(), 0x32));
                size_t at = random() % (model[path].size() + 200);
                std::string data = SeededBytes(random() % 6000, int(random() % 1000));
                file->Seek(int64_t(at), 1);
                ASSERT_EQ(file->Write(data.data(), uint32_t(data.size())), data.size()) << where;
                WriteInto(model[path], at, data);
            } else if (op < 7) { // grow or shrink by SetSize
                std::u16string path = pick();
                std::unique_ptr<IFile> file(cdfs->CreateFileW(path.c_str(), 0x32));
                size_t size = random() % 9000;
                ASSERT_TRUE(file->SetSize(int64_t(size))) << where;
                model[path].resize(size, '\0');
            } else if (op < 9) { // delete; other handles keep their own entries
                std::u16string path = pick();
                EXPECT_TRUE(cdfs->DeleteFileW(path.c_str()));
                model.erase(path);
                handles.erase(path);
            } else { // flush, close every handle and open again
                handles.clear();
                cdfs = std::make_unique<CCDFileSystem>();
                ASSERT_TRUE(cdfs->Open(&hosts, u"/h", false)) << where;
            }
            ExpectMatches(*cdfs, model, where);
            if (HasFailure()) return;
        }
    }
}

// A CDFS with three entries; the last is larger than one block of a move.
struct Fixture {
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    Model model = {{u"/a", SeededBytes(3000, 1)}, {u"/b", SeededBytes(5000, 2)}, {u"/c", SeededBytes(0x280000, 3)}};

    Fixture() {
        EXPECT_TRUE(cdfs.Create(&hosts, u"/h", false));
        for (auto const &[path, bytes] : model)
            EXPECT_TRUE(WriteWhole(cdfs, CString(path.c_str()), bytes));
        EXPECT_TRUE(cdfs.Flush());
    }
};

TEST(CDFileSystemFaults, AHostFailingAtAnyCallLosesNoOtherEntry) {
    std::string more = SeededBytes(9000, 4);
    int64_t faults = 0;
    for (int64_t failAt = 1;; ++failAt) {
        Fixture fixture;
        std::string where = "fail at " + std::to_string(failAt);
        std::unique_ptr<IFile> a(fixture.cdfs.CreateFileW(u"/a", 0x72)); // at the end
        std::unique_ptr<IFile> b(fixture.cdfs.CreateFileW(u"/b", 0x72));
        ASSERT_TRUE(a && b);
        fixture.hosts.calls = 0;
        fixture.hosts.failAt = failAt;
        uint32_t written = b->Write(more.data(), uint32_t(more.size()));
        uint32_t writtenA = a->Write(more.data(), 5000);
        bool flushed = fixture.cdfs.Flush();
        bool reached = fixture.hosts.calls >= failAt;
        fixture.hosts.failAt = 0;
        if (!reached) {
            EXPECT_EQ(written, more.size());
            EXPECT_EQ(writtenA, 5000u);
            EXPECT_TRUE(flushed);
            break; // every call of the work has failed once
        }
        ++faults;
        // The entry that was written holds its old bytes and what the write
        // reported; every other entry is whole.
        fixture.model[u"/b"] += more.substr(0, written);
        fixture.model[u"/a"] += more.substr(0, writtenA);
        ExpectMatches(fixture.cdfs, fixture.model, where);
        a.reset();
        b.reset();
        ASSERT_TRUE(fixture.cdfs.Flush()) << where;
        CCDFileSystem again;
        ASSERT_TRUE(again.Open(&fixture.hosts, u"/h", true)) << where;
        ExpectMatches(again, fixture.model, where + " reopened");
        if (HasFailure()) return;
    }
    EXPECT_GT(faults, 20);
}

// A host made of a hand-written table with capacity 0x1000 and the given
// records, region bytes up to size, and a foot.
std::string Host(std::string const &records, uint32_t count, size_t size = 0x3000) {
    std::string bytes = ExpectedTable(0, 0x1000, Count(count) + records);
    bytes.resize(size, 'r');
    return bytes + Foot(0);
}

std::string File(std::string const &path, int64_t size, std::string const &offset, std::string const &capacity,
                 uint32_t attributes = 2) {
    return RecordOf(path.substr(path.rfind('/') + 1), path, attributes, size, 0,
                    {{"Offset", offset}, {"Capacity", capacity}});
}

bool Opens(std::string const &bytes) {
    MemoryHosts hosts;
    hosts.SetBytes(u"/h", bytes);
    CCDFileSystem cdfs;
    return cdfs.Open(&hosts, u"/h", true);
}

TEST(CDFileSystemHostile, RefusesTablesThatDoNotFitTheirHost) {
    std::string good = File("/a", 10, "4096", "4096") + File("/b", 5, "8192", "100");
    EXPECT_TRUE(Opens(Host(good, 2)));
    EXPECT_TRUE(Opens(Host(File("/a", 0, "8192", "0") + File("/b", 0, "8192", "0"), 2))); // empty ones may meet

    EXPECT_FALSE(Opens(Host(good, 3)));                                  // a count beyond the records
    EXPECT_FALSE(Opens(Host(good, 0xFFFFFFFF)));                         // a count far beyond the file
    EXPECT_FALSE(Opens(Host(File("/a", 10, "12000", "4096"), 1)));        // a region past the end
    EXPECT_FALSE(Opens(Host(File("/a", 10, "99999999", "0"), 1)));        // an offset past the end
    EXPECT_FALSE(Opens(Host(File("/a", 10, "4096", "999999999999999999"), 1)));
    EXPECT_FALSE(Opens(Host(File("/a", 10, "100", "200"), 1)));           // inside the table
    EXPECT_FALSE(Opens(Host(File("/a", 10, "4096", "4096") + File("/b", 5, "8000", "100"), 2))); // overlap
    EXPECT_FALSE(Opens(Host(File("/a", 10, "4096", "5"), 1)));            // size above capacity
    EXPECT_FALSE(Opens(Host(File("/a", -1, "4096", "5"), 1)));
    EXPECT_FALSE(Opens(Host(File("/a", 1, "-4096", "5"), 1)));
    EXPECT_FALSE(Opens(Host(File("/a", 1, "4096x", "5"), 1)));
    EXPECT_FALSE(Opens(Host(File("/a", 1, "", "5"), 1)));
    EXPECT_FALSE(Opens(Host(File("/a", 1, "4096", "8") + File("/A", 1, "8192", "8"), 2))); // one path twice
    EXPECT_FALSE(Opens(Host(File("/a", 1, "4096", "8") + File("/a/b", 1, "8192", "8"), 2))); // file as directory
    EXPECT_FALSE(Opens(Host(File("/a", 0, "4096", "0", 1), 1)));         // a directory record
    EXPECT_FALSE(Opens(Host(File("a", 1, "4096", "8"), 1)));             // a relative path
    std::string manyProperties = RecordOf("a", "/a", 2, 0, 0, {}) ;
    manyProperties.replace(manyProperties.size() - 4, 4, Le(100000, 4));
    EXPECT_FALSE(Opens(Host(manyProperties, 1)));
}

// Twenty thousand records, good ones and junk: the load copied its whole
// array at every fifth record, so a megabyte of table held an open for minutes.
TEST(CDFileSystemHostile, ManyRecordsLoadOrAreRefusedInOnePass) {
    int const count = 20000;
    int64_t const capacity = 0x200000;
    std::string good, junk;
    for (int i = 0; i < count; ++i) {
        good += File("/" + std::to_string(i), 0, std::to_string(capacity), "0");
        junk += RecordOf("", "", 2, 0, 0, {});
    }
    auto host = [&](std::string const &records) {
        std::string bytes = ExpectedTable(0, capacity, Count(count) + records);
        bytes.resize(size_t(capacity), '\0');
        return bytes;
    };
    MemoryHosts hosts;
    hosts.SetBytes(u"/h", host(good));
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Open(&hosts, u"/h", true));
    EXPECT_TRUE(cdfs.IsFile(u"/19999"));
    EXPECT_FALSE(Opens(host(junk)));
}

TEST(CDFileSystemHostile, RefusesBadRootsAndFeet) {
    std::string table = ExpectedTable(0, 0x1000, Count(0));
    auto withCapacity = [&](std::string const &capacity) {
        std::string bytes = std::string("CDFS\0\0", 6) +
                            RecordOf("/", "/", 1, 0, 0, {{"Offset", "0"}, {"Capacity", capacity}}) + Count(0);
        bytes.resize(0x1000, '\0');
        return bytes;
    };
    EXPECT_TRUE(Opens(withCapacity("4096")));
    EXPECT_FALSE(Opens(withCapacity("8192")));  // the table beyond the host
    EXPECT_FALSE(Opens(withCapacity("20")));    // smaller than itself
    EXPECT_FALSE(Opens(withCapacity("")));
    EXPECT_FALSE(Opens(std::string("CDFS\0", 5)));
    EXPECT_FALSE(Opens(""));

    std::string appended = std::string(100, 'x') + withCapacity("4096");
    EXPECT_TRUE(Opens(appended + Foot(100)));
    EXPECT_FALSE(Opens(appended + Foot(-100)));   // before the start
    EXPECT_FALSE(Opens(appended + Foot(50)));     // not at a CDFS
    EXPECT_FALSE(Opens(appended + Foot(1 << 20))); // past the end
    EXPECT_FALSE(Opens(appended + Foot(INT64_MIN)));
    (void)table;
}

TEST(CDFileSystemThreads, FourThreadsShareOneFileSystem) {
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            std::u16string path = u"/thread" + Number(t);
            std::unique_ptr<IFile> file(cdfs.CreateFileW(path.c_str(), 0x28));
            std::string expected;
            for (int i = 0; i < 40 && file; ++i) {
                std::string chunk = SeededBytes(700 + size_t(i), t * 100 + i);
                failures[size_t(t)] += file->Write(chunk.data(), uint32_t(chunk.size())) != chunk.size();
                expected += chunk;
                cdfs.GetFileInfo(path.c_str());
                cdfs.GetDirectoryListing(u"/", nullptr);
                if (i % 10 == 9) cdfs.Flush();
            }
            file.reset();
            failures[size_t(t)] += ReadWhole(cdfs, CString(path.c_str())) != expected;
        });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(failures, std::vector<int>(4, 0));
    EXPECT_EQ(cdfs.GetDirectoryListing(u"/", nullptr).GetSize(), 4u);
}

// Deletes ahead of a handle re-target it while its own thread flushes and
// closes it; a working directory set meanwhile is read by relative paths.
TEST(CDFileSystemThreads, HandlesCloseWhileOthersDeleteAndChangeDirectory) {
    MemoryHosts hosts;
    CCDFileSystem cdfs;
    ASSERT_TRUE(cdfs.Create(&hosts, u"/h", false));
    ASSERT_TRUE(WriteWhole(cdfs, u"/d/keep", "keep"));
    int const ahead = 200;
    for (int i = 0; i < ahead; ++i)
        ASSERT_TRUE(WriteWhole(cdfs, CString((u"/a" + Number(i)).c_str()), "a"));
    std::atomic<bool> done{false};
    int failures = 0;
    std::thread closer([&] {
        while (!done) {
            std::unique_ptr<IFile> file(cdfs.CreateFileW(u"/z/mine", 0x30));
            failures += !file || file->Write("x", 1) != 1;
            if (file) file->Flush();
        }
    });
    std::thread deleter([&] {
        for (int i = 0; i < ahead; ++i) {
            cdfs.DeleteFileW((u"/a" + Number(i)).c_str());
            cdfs.SetCurrentWorkingDirectory(i % 2 ? u"/d" : u"/");
        }
        done = true;
    });
    while (!done)
        cdfs.GetFileInfo(u"keep");
    closer.join();
    deleter.join();
    EXPECT_EQ(failures, 0);
    EXPECT_EQ(cdfs.GetDirectoryListing(u"/", nullptr).GetSize(), 2u);
    EXPECT_EQ(ReadWhole(cdfs, u"/d/keep"), "keep");
    EXPECT_EQ(ReadWhole(cdfs, u"/z/mine"), "x");
}

} // namespace
} // namespace qv::test
