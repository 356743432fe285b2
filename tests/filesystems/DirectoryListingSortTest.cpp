#include <gtest/gtest.h>

#include <string>

#include "qv/filesystems/DiskFileSystem.h"

namespace qv {
namespace {

CDirectoryEntry Entry(char16_t const *name, uint32_t attributes, int64_t size, int day) {
    CDirectoryEntry entry;
    entry.SetName(name);
    entry.attributes = attributes;
    entry.size = size;
    entry.modified = CDateTime::NewYMD(2021, 3, day);
    return entry;
}

std::u16string Names(CDirectoryListing const &listing) {
    std::u16string names;
    for (uint32_t i = 0; i < listing.GetSize(); ++i)
        names += std::u16string(listing.GetAt(i).name) + u" ";
    return names;
}

CDirectoryListing Sample() {
    CDirectoryListing listing;
    listing.Add(Entry(u"b.txt", kAttributeFile, 30, 2));
    listing.Add(Entry(u"Zed", kAttributeDirectory, 0, 5));
    listing.Add(Entry(u"a.txt", kAttributeFile, 30, 9));
    listing.Add(Entry(u"alpha", kAttributeDirectory, 0, 1));
    listing.Add(Entry(u"C.txt", kAttributeFile, 10, 9));
    return listing;
}

TEST(DirectoryListingSort, OrdersByTheChosenKeysAndGroups) {
    CDirectoryListing listing = Sample();
    listing.Sort(kSortByName);
    EXPECT_EQ(Names(listing), u"a.txt alpha b.txt C.txt Zed ");
    listing.Sort(kSortBySize); // size, then name
    EXPECT_EQ(Names(listing), u"alpha Zed C.txt a.txt b.txt ");
    listing.Sort(kSortByTime); // time, then name
    EXPECT_EQ(Names(listing), u"alpha b.txt Zed a.txt C.txt ");
    listing.Sort(kSortByName | kSortFilesFirst);
    EXPECT_EQ(Names(listing), u"a.txt b.txt C.txt alpha Zed ");

    // Descending turns the order within directories and within files only.
    listing.Sort(kSortByName | kSortDirectoriesFirst | kSortDescending);
    EXPECT_EQ(Names(listing), u"Zed alpha C.txt b.txt a.txt ");
    listing.Sort(kSortBySize | kSortDirectoriesFirst | kSortDescending);
    EXPECT_EQ(Names(listing), u"Zed alpha b.txt a.txt C.txt ");
}

TEST(DirectoryListingSort, KeepsTheListedOrderOfEqualEntries) {
    CDirectoryListing listing;
    listing.Add(Entry(u"same", kAttributeFile, 1, 1));
    listing.Add(Entry(u"SAME", kAttributeFile, 1, 1)); // equal: names compare without case
    listing.Add(Entry(u"Same", kAttributeFile, 1, 1));
    listing.Sort(kSortByName);
    EXPECT_EQ(Names(listing), u"same SAME Same ");
    listing.Sort(kSortByName | kSortDescending);
    EXPECT_EQ(Names(listing), u"same SAME Same ");
}

TEST(DirectoryListingSort, CopiesAreIndependentValues) {
    CDirectoryListing listing(FileSystem, u"/some/dir");
    listing.Add(Entry(u"x", kAttributeFile, 1, 1));
    CDirectoryListing copy = listing;
    copy[0].SetName(u"y");
    EXPECT_EQ(std::u16string(listing[0].name), u"x");
    EXPECT_EQ(copy.fileSystem, listing.fileSystem);
    EXPECT_EQ(std::u16string(copy.directory), u"/some/dir");

    CDirectoryEntry fresh;
    EXPECT_EQ(fresh.attributes, kAttributeNone);
    EXPECT_EQ(fresh.size, 0);
    EXPECT_EQ(fresh.name[0], 0);
}

} // namespace
} // namespace qv
