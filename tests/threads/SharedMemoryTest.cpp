#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "qv/threads/SharedMemory.h"

namespace qv {
namespace {

// A base name no other run of the tests uses at the same time.
CString UniqueName(char const *stem) {
    return CString((std::string("qv-test-") + stem + "-" + std::to_string(getpid())).c_str());
}

// Maps sysName as another process would; null when it does not exist.
void *MapAsPeer(char const *sysName, size_t size) {
    int fd = shm_open(sysName, O_RDWR, 0);
    if (fd < 0) return nullptr;
    void *p = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    return p == MAP_FAILED ? nullptr : p;
}

TEST(SharedMemory, TakenNameGrowsByANumber) {
    CString base = UniqueName("grow");
    CSharedMemory first, second;
    ASSERT_TRUE(first.CreateRandom(base, 4096));
    EXPECT_TRUE(first.GetName().Equals(base));
    EXPECT_EQ(std::string(first.GetSysName()), std::string("/") + base.GetUTF8());

    ASSERT_TRUE(second.CreateRandom(base, 4096));
    CString grown = second.GetName();
    ASSERT_GT(grown.GetLength(), base.GetLength());
    EXPECT_TRUE(grown.StartsWith(base));
    for (int i = base.GetLength(); i < grown.GetLength(); ++i)
        EXPECT_TRUE(grown[i] >= u'0' && grown[i] <= u'9') << "unit " << i;

    // Distinct blocks, zero-filled, visible to a peer under the system name.
    auto *a = static_cast<unsigned char *>(first.GetBuffer());
    auto *b = static_cast<unsigned char *>(second.GetBuffer());
    ASSERT_TRUE(a && b);
    EXPECT_EQ(a[0], 0);
    EXPECT_EQ(a[4095], 0);
    std::strcpy(reinterpret_cast<char *>(b), "peer");
    void *peer = MapAsPeer(second.GetSysName(), 4096);
    ASSERT_NE(peer, nullptr);
    EXPECT_STREQ(static_cast<char *>(peer), "peer");
    EXPECT_EQ(a[0], 0);

    // Destroy removes the name; the peer keeps its mapping.
    std::string sys = second.GetSysName();
    second.Destroy();
    EXPECT_EQ(second.GetBuffer(), nullptr);
    EXPECT_EQ(second.GetSysName(), nullptr);
    EXPECT_TRUE(second.GetName().IsEmpty());
    EXPECT_EQ(MapAsPeer(sys.c_str(), 4096), nullptr);
    EXPECT_STREQ(static_cast<char *>(peer), "peer");
    munmap(peer, 4096);
}

TEST(SharedMemory, SlashAndPercentAreEscapedInTheSystemName) {
    CString base = UniqueName("a/b%c");
    CSharedMemory block;
    ASSERT_TRUE(block.CreateRandom(base, 100));
    std::string expected = "/" + std::string(base.GetUTF8());
    expected.replace(expected.find('%'), 1, "%25");
    expected.replace(expected.find('/', 1), 1, "%2F");
    EXPECT_EQ(std::string(block.GetSysName()), expected);
    EXPECT_TRUE(block.GetName().Equals(base));
}

TEST(SharedMemory, RefusedRequestsLeaveNothing) {
    CSharedMemory block;
    EXPECT_FALSE(block.CreateRandom(UniqueName("zero"), 0));
    EXPECT_FALSE(block.CreateRandom(u"", 100));
    EXPECT_FALSE(block.CreateRandom(CString(std::string(300, 'x').c_str()), 100));
    EXPECT_EQ(block.GetBuffer(), nullptr);
    EXPECT_EQ(block.GetSysName(), nullptr);
    EXPECT_TRUE(block.GetName().IsEmpty());

    // A second CreateRandom replaces the first block and frees its name.
    CString base = UniqueName("again");
    ASSERT_TRUE(block.CreateRandom(base, 10));
    std::string firstSys = block.GetSysName();
    ASSERT_TRUE(block.CreateRandom(base, 10));
    EXPECT_TRUE(block.GetName().Equals(base)); // the old name was free again
    EXPECT_EQ(std::string(block.GetSysName()), firstSys);
}

} // namespace
} // namespace qv
