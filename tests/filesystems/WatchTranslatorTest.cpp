#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "qv/core/String.h"
#include "qv/filesystems/WatchTranslator.h"

namespace qv {
namespace {

using Lines = std::vector<std::string>;

std::string Utf8(char16_t const *text) {
    return CString(text).GetUTF8();
}

// Writes down what the translator asks for, one line each.
class CRecordingListener : public IWatchListener {
public:
    Lines lines;

    void FileAdded(char16_t const *path) override { lines.push_back("added " + Utf8(path)); }
    void FileRemoved(char16_t const *path) override { lines.push_back("removed " + Utf8(path)); }
    void FileModified(char16_t const *path) override { lines.push_back("modified " + Utf8(path)); }
    void FileRenamed(char16_t const *from, char16_t const *to) override {
        lines.push_back("renamed " + Utf8(from) + " " + Utf8(to));
    }
    void WatchTree(char16_t const *path, EReport report) override {
        static char const *const kReports[] = {"nothing", "directory", "all"};
        lines.push_back("watch " + Utf8(path) + " " + kReports[int(report)]);
    }
    void Unwatch(int32_t key) override { lines.push_back("unwatch " + std::to_string(key)); }
    void Overflowed() override { lines.push_back("overflow"); }

    Lines Take() { return std::exchange(lines, {}); }
};

constexpr int32_t kRoot = 1, kSub = 2, kDeep = 3, kSubway = 4;

SWatchRecord Record(int32_t watch, EWatchRecord kind, char16_t const *name, bool directory = false,
                    uint32_t cookie = 0) {
    SWatchRecord record;
    record.watch = watch;
    record.kind = kind;
    record.name = name;
    record.directory = directory;
    record.cookie = cookie;
    return record;
}

// A translator over root, root/sub, root/sub/deep and root/subway.
class WatchTranslatorTest : public testing::Test {
protected:
    void Make(uint32_t flags) {
        translator = std::make_unique<CWatchTranslator>(flags);
        CWatchTable &table = translator->Table();
        table.Add(kRoot, u"");
        table.Add(kSub, u"sub");
        table.Add(kDeep, u"sub/deep");
        table.Add(kSubway, u"subway");
    }
    void SetUp() override { Make(0x7); }
    Lines Feed(std::vector<SWatchRecord> const &records) {
        for (SWatchRecord const &record : records)
            translator->Feed(record, listener);
        return listener.Take();
    }

    std::unique_ptr<CWatchTranslator> translator;
    CRecordingListener listener;
};

TEST_F(WatchTranslatorTest, ReportsChangesWithPathsRelativeToTheRoot) {
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::Created, u"a.txt"), Record(kDeep, EWatchRecord::ContentChanged, u"b"),
                    Record(kSub, EWatchRecord::AttributesChanged, u"c"), Record(kSubway, EWatchRecord::Deleted, u"d")}),
              (Lines{"added a.txt", "modified sub/deep/b", "modified sub/c", "removed subway/d"}));
    // A new directory is watched, then reported with what it already holds.
    EXPECT_EQ(Feed({Record(kSub, EWatchRecord::Created, u"new", true)}), Lines{"watch sub/new all"});
    // Records of a key the table does not know are dropped.
    EXPECT_EQ(Feed({Record(99, EWatchRecord::Created, u"x")}), Lines{});
}

TEST_F(WatchTranslatorTest, PairsTheHalvesOfAMoveIntoOneRename) {
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::MovedFrom, u"a", false, 7),
                    Record(kDeep, EWatchRecord::MovedTo, u"b", false, 7)}),
              Lines{"renamed a sub/deep/b"});
    EXPECT_FALSE(translator->HasPendingMove());

    // Different cookies are two moves: one out of the tree, one into it.
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::MovedFrom, u"a", false, 1),
                    Record(kRoot, EWatchRecord::MovedTo, u"b", false, 2)}),
              (Lines{"removed a", "added b"}));
    // A first half followed by anything else left the tree.
    EXPECT_EQ(
        Feed({Record(kRoot, EWatchRecord::MovedFrom, u"a", false, 3), Record(kRoot, EWatchRecord::Created, u"c")}),
        (Lines{"removed a", "added c"}));
    // A first half with nothing after it waits until Flush.
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::MovedFrom, u"a", false, 4)}), Lines{});
    EXPECT_TRUE(translator->HasPendingMove());
    translator->Flush(listener);
    EXPECT_EQ(listener.Take(), Lines{"removed a"});
    translator->Flush(listener);
    EXPECT_EQ(listener.Take(), Lines{});
    // A second half into a directory that is not watched is a move out.
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::MovedFrom, u"a", false, 5),
                    Record(42, EWatchRecord::MovedTo, u"a", false, 5)}),
              Lines{"removed a"});
}

TEST_F(WatchTranslatorTest, ARenamedDirectoryKeepsItsWatchesUnderTheNewName) {
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::MovedFrom, u"sub", true, 9),
                    Record(kRoot, EWatchRecord::MovedTo, u"moved", true, 9)}),
              Lines{"renamed sub moved"});
    EXPECT_EQ(Feed({Record(kDeep, EWatchRecord::Created, u"x"), Record(kSub, EWatchRecord::Created, u"y"),
                    Record(kSubway, EWatchRecord::Created, u"z")}),
              (Lines{"added moved/deep/x", "added moved/y", "added subway/z"}));
}

TEST_F(WatchTranslatorTest, DirectoriesLeavingAndEnteringTheTree) {
    // Out: its watches end (and only its own: "subway" is not below "sub").
    EXPECT_EQ(
        Feed({Record(kRoot, EWatchRecord::MovedFrom, u"sub", true, 5), Record(kSubway, EWatchRecord::Created, u"z")}),
        (Lines{"unwatch 2", "unwatch 3", "removed sub", "added subway/z"}));
    EXPECT_EQ(translator->Table().Find(kSub), nullptr);
    EXPECT_EQ(translator->Table().Find(kDeep), nullptr);
    EXPECT_EQ(Feed({Record(kDeep, EWatchRecord::Created, u"late")}), Lines{});
    // In: watched, then reported without its contents.
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::MovedTo, u"in", true, 6)}), Lines{"watch in directory"});
}

TEST_F(WatchTranslatorTest, OverflowAndWatchEnds) {
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::MovedFrom, u"a", false, 8), Record(-1, EWatchRecord::Overflow, u"")}),
              (Lines{"removed a", "overflow"}));
    EXPECT_EQ(Feed({Record(kSub, EWatchRecord::WatchGone, u"")}), Lines{});
    EXPECT_EQ(translator->Table().Find(kSub), nullptr);
    EXPECT_TRUE(translator->IsWatching());
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::WatchGone, u"")}), Lines{});
    EXPECT_FALSE(translator->IsWatching());
}

TEST_F(WatchTranslatorTest, FlagsChooseWhatIsReported) {
    Make(0x0); // names off: the tree is still followed, nothing reported
    EXPECT_EQ(
        Feed({Record(kRoot, EWatchRecord::Created, u"d", true), Record(kRoot, EWatchRecord::Deleted, u"x"),
              Record(kRoot, EWatchRecord::ContentChanged, u"x"), Record(kRoot, EWatchRecord::AttributesChanged, u"x"),
              Record(kRoot, EWatchRecord::MovedFrom, u"sub", true, 1),
              Record(kRoot, EWatchRecord::MovedTo, u"s2", true, 1)}),
        Lines{"watch d nothing"});
    EXPECT_NE(translator->Table().Find(kDeep), nullptr);
    EXPECT_EQ(Utf8(*translator->Table().Find(kDeep)), "s2/deep");

    Make(0x2); // size: writes only
    EXPECT_EQ(Feed({Record(kRoot, EWatchRecord::ContentChanged, u"x"),
                    Record(kRoot, EWatchRecord::AttributesChanged, u"x"), Record(kRoot, EWatchRecord::Created, u"y")}),
              Lines{"modified x"});
    Make(0x4); // attributes only
    EXPECT_EQ(
        Feed({Record(kRoot, EWatchRecord::ContentChanged, u"x"), Record(kRoot, EWatchRecord::AttributesChanged, u"x")}),
        Lines{"modified x"});
    Make(0x1); // names and last write
    EXPECT_EQ(
        Feed({Record(kRoot, EWatchRecord::ContentChanged, u"x"), Record(kRoot, EWatchRecord::AttributesChanged, u"x")}),
        Lines{"modified x"});
}

TEST_F(WatchTranslatorTest, LongestNamesInADeepTreeComeOutWhole) {
    // A disk name has at most 255 bytes; paths of the tree have no limit.
    std::u16string dir(300, u'd');
    dir[100] = dir[200] = u'/';
    std::u16string name(255, u'n');
    translator->Table().Add(7, dir.c_str());
    std::u16string renamed = name;
    renamed.back() = u'm';
    EXPECT_EQ(Feed({Record(7, EWatchRecord::Created, name.c_str()),
                    Record(7, EWatchRecord::MovedFrom, name.c_str(), false, 3),
                    Record(kRoot, EWatchRecord::MovedTo, renamed.c_str(), false, 3)}),
              (Lines{"added " + Utf8((dir + u"/" + name).c_str()),
                     "renamed " + Utf8((dir + u"/" + name).c_str()) + " " + Utf8(renamed.c_str())}));
}

TEST(WatchTableTest, RenamesAndListsWholeSubtreesOnly) {
    CWatchTable table;
    table.Add(1, u"");
    table.Add(2, u"a");
    table.Add(3, u"a/b");
    table.Add(4, u"ab");
    EXPECT_TRUE(table.HasRoot());
    EXPECT_EQ(table.KeysUnder(u"a"), (std::vector<int32_t>{2, 3}));
    EXPECT_EQ(table.KeysUnder(u""), (std::vector<int32_t>{1, 2, 3, 4}));
    table.Rename(u"a", u"x/y");
    EXPECT_EQ(Utf8(*table.Find(2)), "x/y");
    EXPECT_EQ(Utf8(*table.Find(3)), "x/y/b");
    EXPECT_EQ(Utf8(*table.Find(4)), "ab");
    table.Add(4, u"c"); // a key seen again takes the new path
    EXPECT_EQ(Utf8(*table.Find(4)), "c");
    table.Remove(1);
    EXPECT_FALSE(table.HasRoot());
    EXPECT_EQ(table.Count(), 3u);
    EXPECT_EQ(Utf8(JoinWatchPath(CString(u""), u"n")), "n");
    EXPECT_EQ(Utf8(JoinWatchPath(CString(u"d"), u"n")), "d/n");
}

} // namespace
} // namespace qv
