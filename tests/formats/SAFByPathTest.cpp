// CSAFFile by path: the three roads of saving on every file system that can
// take them, failures under the fault harness, the tag groups in dictionary
// order, and the self check.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <ostream>
#include <string>

#include "TreeTestSupport.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/MemFileSystem.h"
#include "qv/formats/tagged/SAFSelfTest.h"
#include "qv/formats/tagged/TagFile.h"
#include "support/FaultInjection.h"

using namespace qv;
using namespace qv::treetest;
using qv::test::FaultRun;

namespace {

std::string HeaderBytes(CSAFFile &saf, bool pad) {
    CMemFile f;
    Fill(f, "");
    uint32_t position = 0;
    EXPECT_TRUE(saf.SaveTo(&f, position, pad));
    return Bytes(f);
}

// A file system the roads run on, with a place for files and a way to see
// their bytes. canCreate: new files and save-as (whole new files) work there.
struct FileSystemKind {
    char const *name;
    bool canCreate;
    std::function<void(std::string const &path, std::string const &bytes)> put;
    std::function<std::string(std::string const &path)> get;
    std::function<IFileSystem *()> fs;
    std::function<std::string(std::string const &name)> path;
};

saftest::ScratchDir &DiskDir() {
    static saftest::ScratchDir dir;
    return dir;
}

// The memory file system serves the caller's blocks in place: a file keeps
// its size, so only the in-place road (padding absorbs the change) runs there.
struct MemoryPlace {
    CMemFileSystem fs;
    std::map<std::string, std::string> blocks;
};

MemoryPlace &Memory() {
    static MemoryPlace place;
    return place;
}

FileSystemKind const kKinds[] = {
    {"disk", true, [](std::string const &p, std::string const &b) { WriteAll(p, b); },
     [](std::string const &p) { return ReadAll(p); }, [] { return static_cast<IFileSystem *>(FileSystem); },
     [](std::string const &n) { return DiskDir().Path(n); }},
    {"memory", false,
     [](std::string const &p, std::string const &b) {
         std::string &block = Memory().blocks[p];
         block = b;
         Memory().fs.RenameFileW(Wide(p).c_str(), Wide(p + ".old").c_str());
         Memory().fs.AddFile(Wide(p).c_str(), block.data(), uint32_t(block.size()));
     },
     [](std::string const &p) { return Memory().blocks[p]; }, [] { return static_cast<IFileSystem *>(&Memory().fs); },
     [](std::string const &n) { return "/mem/" + n; }},
};

void PrintTo(FileSystemKind const &kind, std::ostream *out) {
    *out << kind.name;
}

class SAFRoads : public testing::TestWithParam<FileSystemKind> {
protected:
    FileSystemKind const &kind = GetParam();
    std::string data = saftest::DataPattern(5000);

    std::string Path(std::string const &n) { return kind.path(n); }
};

} // namespace

TEST_P(SAFRoads, NewFileIsTheHeaderWithOrWithoutPadding) {
    if (!kind.canCreate) GTEST_SKIP() << kind.name << " makes no new files";
    for (bool pad : {true, false}) {
        CSAFFile saf;
        saftest::MakeCameraHeader(saf);
        std::string path = Path(pad ? "new_pad.saf" : "new_bare.saf");
        kind.put(path, "an older file in the way");
        ASSERT_TRUE(saf.Save(kind.fs(), Wide(path).c_str(), pad));
        EXPECT_EQ(kind.get(path), HeaderBytes(saf, pad));
        EXPECT_EQ(Narrow(saf.GetFilename()), path);
        EXPECT_EQ(saf.GetFileSystem(), kind.fs());
        EXPECT_EQ(saf.GetDataPosition(), kind.get(path).size());
    }
    CSAFFile nameless;
    saftest::MakeCameraHeader(nameless);
    EXPECT_FALSE(nameless.Save()); // no name and no path
}

TEST_P(SAFRoads, SaveAsCopiesTheDataBehindAFreshHeader) {
    if (!kind.canCreate) GTEST_SKIP() << kind.name << " makes no new files";
    CSAFFile saf;
    saftest::MakeCameraHeader(saf);
    std::string source = Path("source.saf"), copy = Path("copy.saf");
    std::string sourceBytes = HeaderBytes(saf, false) + data;
    kind.put(source, sourceBytes);
    ASSERT_TRUE(saf.Load(kind.fs(), Wide(source).c_str()));
    saf.SetTagValue(u"Camera", u"Another camera");
    ASSERT_TRUE(saf.Save(kind.fs(), Wide(copy).c_str(), false)); // pad plays no part: data behind
    EXPECT_TRUE(kind.get(copy) == HeaderBytes(saf, true) + data);
    EXPECT_TRUE(kind.get(source) == sourceBytes); // only read
    EXPECT_EQ(Narrow(saf.GetFilename()), copy);
    // A header-only file saved elsewhere gets no padding, even with pad set.
    std::string bare = Path("bare.saf"), bareCopy = Path("bare_copy.saf");
    kind.put(bare, HeaderBytes(saf, false));
    CSAFFile header;
    ASSERT_TRUE(header.Load(kind.fs(), Wide(bare).c_str()));
    ASSERT_TRUE(header.Save(kind.fs(), Wide(bareCopy).c_str(), true));
    EXPECT_EQ(kind.get(bareCopy), HeaderBytes(header, false));
}

TEST_P(SAFRoads, InPlaceKeepsTheDataWhereItIs) {
    CSAFFile saf;
    saftest::MakeCameraHeader(saf);
    std::string path = Path("inplace.saf");
    std::string padded = HeaderBytes(saf, true);
    kind.put(path, padded + data);
    ASSERT_TRUE(saf.Load(kind.fs(), Wide(path).c_str()));
    ASSERT_TRUE(saf.SetTagValue(u"Operator", u"somebody"));
    ASSERT_TRUE(saf.Save(kind.fs(), nullptr, false));
    EXPECT_EQ(saf.GetDataPosition(), padded.size());
    std::string now = kind.get(path);
    EXPECT_TRUE(now.substr(padded.size()) == data);
    CSAFFile again;
    ASSERT_TRUE(again.Load(kind.fs(), Wide(path).c_str()));
    EXPECT_EQ(Narrow(again.GetTagValue(u"operator")), "somebody");
    EXPECT_TRUE(CSAFFile::IsSAFFile(kind.fs(), Wide(path).c_str()));
    EXPECT_FALSE(CSAFFile::IsSAFFile(kind.fs(), Wide(Path("missing.saf")).c_str()));
}

INSTANTIATE_TEST_SUITE_P(FileSystems, SAFRoads, testing::ValuesIn(kKinds),
                         [](testing::TestParamInfo<FileSystemKind> const &info) { return info.param.name; });

TEST(SAFByPath, IsSAFFileLooksOnlyAtTheFirstSixBytes) {
    saftest::ScratchDir dir;
    WriteAll(dir.Path("a"), "hdsizeXYZ");
    WriteAll(dir.Path("b"), "HdSiz");
    EXPECT_TRUE(CSAFFile::IsSAFFile(nullptr, Wide(dir.Path("a")).c_str()));
    EXPECT_FALSE(CSAFFile::IsSAFFile(nullptr, Wide(dir.Path("b")).c_str()));
    CSAFFile saf;
    EXPECT_FALSE(saf.Load(Wide(dir.Path("a")).c_str())); // the first tag must be HdSize
}

// Every fault of every road: a new file and a save-as are atomic (the old
// target stays whole); in place, Update's own promise holds (old or new).
// The file's bytes are synced before the rename; a failing close or
// directory sync after that loses nothing, and the atomic save lets them
// pass. In place, IFile::Close reports nothing, so a failing close cannot
// reach the caller; and a fault that stays (a full disk) may also defeat
// Update's undo of the header, but never costs a byte of the data segment.
TEST(SAFByPathFaults, EveryRoadKeepsTheOldFileOrFinishes) {
    saftest::ScratchDir dir;
    std::string data = saftest::DataPattern(20000);
    CSAFFile model;
    saftest::MakeCameraHeader(model);
    std::string source = dir.Path("src.saf"), target = dir.Path("dst.saf");
    std::string sourceBytes = HeaderBytes(model, true) + data;
    std::string oldTarget = "an old file that must survive";
    for (int road = 0; road < 3; ++road) {
        SCOPED_TRACE("road " + std::to_string(road));
        qv::test::FaultBytes before, after;
        CSAFFile saf;
        qv::test::RunUnderFaults(
            [&] {
                WriteAll(source, sourceBytes);
                WriteAll(target, road == 2 ? sourceBytes : oldTarget);
                before = qv::test::FileBytes(target);
                saf = CSAFFile();
                if (road == 0) saftest::MakeCameraHeader(saf);
                else ASSERT_TRUE(saf.Load(Wide(road == 1 ? source : target).c_str()));
                saf.AddTag(u"Road", CString::FromInt(road).GetUTF16());
            },
            [&] { return road == 2 ? saf.Save() : saf.Save(FileSystem, Wide(target).c_str(), true); },
            [&](FaultRun const &run) {
                qv::test::FaultBytes now = qv::test::FileBytes(target);
                if (run.IsClean()) {
                    after = now;
                    return;
                }
                bool afterSync = run.fault == qv::test::Fault::kClose || run.fault == qv::test::Fault::kFsync;
                if (!afterSync) qv::test::ExpectFailureReported(run);
                if (road == 2 && run.sticky && !run.succeeded) {
                    std::string bytes(now.begin(), now.end());
                    EXPECT_EQ(bytes.substr(bytes.size() - data.size()), data);
                    return;
                }
                qv::test::ExpectBeforeOrAfter(run, now, before, after);
            });
    }
}

class SAFGroups : public testing::Test {
protected:
    void SetUp() override {
        CTagFile &tags = GetTagFile();
        tags.Destroy();
        Add(u"Camera", 6);
        Add(u"Lens%%", 6);
        Add(u"Width", 12);
        Add(u"Note", 17);
        tags.Sort();
    }
    void TearDown() override { GetTagFile().Destroy(); }
    static void Add(char16_t const *name, int category) {
        CTagEntry e;
        e.SetName(name);
        e.SetCategory(CTagEntry::CATEGORY(category));
        GetTagFile().AddTagEntry(e);
    }
    static std::string Names(CSAFFile &saf) {
        std::string out;
        for (uint32_t i = 0; i < saf.nTags(); ++i)
            out += Narrow(saf[i].name.GetUTF16()) + (saf[i].value.IsEmpty() ? "" : "=" + Narrow(saf[i].value)) + " ";
        return out;
    }
};

TEST_F(SAFGroups, BubbleBringsKnownGroupsAndTheirCommentsToTheFront) {
    CSAFFile saf;
    saf.New(false);
    saf.AddTag(u"Width", u"1");
    saf.AddTag(u"group", u"Sensor Info");
    saf.AddTag(u"groupcomment", u"the sensor");
    saf.AddTag(u"Group", u"No Such Group");
    saf.AddTag(u"GroupComment", u"stays");
    saf.AddTag(u"GROUP", u"imager tags");
    ASSERT_TRUE(saf.BubbleGroups());
    EXPECT_EQ(Names(saf), "HdSize=auto group=Sensor Info groupcomment=the sensor GROUP=imager tags "
                          "Group=No Such Group GroupComment=stays Width=1 DATA ");
}

TEST_F(SAFGroups, SortPutsTagsInDictionaryOrderBehindTheirGroup) {
    CSAFFile saf;
    saf.New(false);
    saf.AddTag(u"Lens10", u"b");
    saf.AddTag(u"Width", u"3");
    saf.AddTag(u"Unknown", u"u");
    saf.AddTag(u"Camera", u"c");
    saf.AddTag(u"Group", u"Sensor Info");
    saf.AddTag(u"Lens9", u"a");
    CSAFFile plain = saf;
    ASSERT_TRUE(plain.SortByGroups(false));
    // Width's group and the unknown tag's (Misc) have no header: they stay.
    EXPECT_EQ(Names(plain), "HdSize=auto Group=Sensor Info Camera=c Lens9=a Lens10=b Width=3 Unknown=u DATA ");
    ASSERT_TRUE(saf.SortByGroups(true));
    EXPECT_EQ(Names(saf), "HdSize=auto Group=Sensor Info Camera=c Lens9=a Lens10=b Group=Imager Tags Width=3 "
                          "Group=Misc Tags Unknown=u DATA ");
}

TEST_F(SAFGroups, CommentsTravelWithTheTagBehindThem) {
    CSAFFile saf;
    saf.New(false);
    saf.AddTag(u"Group", u"Sensor Info");
    saf.AddTag(u"Note", u"about the camera");
    saf.AddTag(u"Camera", u"c");
    ASSERT_TRUE(saf.SortByGroups(false));
    EXPECT_EQ(Names(saf), "HdSize=auto Group=Sensor Info Note=about the camera Camera=c DATA ");
}

TEST(SAFSelfCheck, PassesAndWritesItsLog) {
    TArray<CString> log;
    EXPECT_TRUE(safTest(log));
    ASSERT_GT(log.nItems(), 100u);
    EXPECT_EQ(Narrow(log[log.nItems() - 1].GetUTF16()), "Test passed.");
    std::string all;
    for (uint32_t i = 0; i < log.nItems(); ++i) all += Narrow(log[i].GetUTF16()) + "\n";
    EXPECT_EQ(all.find("Failed."), std::string::npos) << all;
    EXPECT_NE(all.find("Adding, Saving, then Removing 4k + 8 characters of data.\n"), std::string::npos);
    EXPECT_NE(all.find("Data segments match."), std::string::npos);
    char const *tmp = std::getenv("TMPDIR");
    std::string written = ReadAll(std::string(tmp && *tmp ? tmp : "/tmp") + "/safTest.log");
    EXPECT_NE(written.find("Test passed.\r\n"), std::string::npos);
}
