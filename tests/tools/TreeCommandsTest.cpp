// qv sbf show, qv xml show, qv tags show and qv tags convert end to end: the
// dictionary goes through all three forms and reads the same; bad input is
// one sentence on standard error and a non-zero exit.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>

namespace {

#ifdef QV_TOOL

struct Result {
    int status;
    std::string out, err;
};

std::string Slurp(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

class TreeCommands : public testing::Test {
protected:
    std::string dir;
    void SetUp() override {
        std::string pattern = testing::TempDir() + "qv_trees_XXXXXX";
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        dir = pattern;
    }
    void TearDown() override { std::system(("rm -rf '" + dir + "'").c_str()); }

    std::string Path(std::string const &name) const { return dir + "/" + name; }

    // Runs the tool through the shell with the arguments as written.
    Result Run(std::string const &arguments) {
        std::string command = std::string(QV_TOOL) + " " + arguments + " >'" + Path("out") + "' 2>'" + Path("err") + "'";
        int raw = std::system(command.c_str());
        return {WIFEXITED(raw) ? WEXITSTATUS(raw) : 128, Slurp(Path("out")), Slurp(Path("err"))};
    }

    void Write(std::string const &name, std::string const &text) { std::ofstream(Path(name)) << text; }
};

char const kTags[] = "<?xml version=\"1.0\"?>\n<TagFile>\n"
                     "<TagEntry Name=\"xPixls\" Description=\"Width\" DataType=\"Int32\" UseNumericBounds=\"True\" "
                     "LowBound=\"1\" HighBound=\"65535\" Category=\"Sensor Info\"/>\n"
                     "<TagEntry Name=\"BytOrd\" TextValuesMode=\"Use As Bounds\" Category=\"Data Tags\">"
                     "<TextValue>LH</TextValue><TextValue>HL</TextValue></TagEntry>\n</TagFile>\n";

TEST_F(TreeCommands, DictionaryThroughAllThreeFormsReadsTheSame) {
    Write("tags.xml", kTags);
    Result shown = Run("tags show " + Path("tags.xml"));
    ASSERT_EQ(shown.status, 0) << shown.err;
    EXPECT_EQ(shown.out, "BytOrd: type Text, category Data Tags, units None, write Prompt For Update, location "
                         "Header, texts (Use As Bounds) \"LH\" \"HL\"\n"
                         "xPixls: type Int32, category Sensor Info, units None, write Prompt For Update, location "
                         "Header, bounds 1 to 65535: Width\n"
                         "entries: 2\n");
    ASSERT_EQ(Run("tags convert " + Path("tags.xml") + " " + Path("tags.sbf")).status, 0);
    ASSERT_EQ(Run("tags convert " + Path("tags.sbf") + " " + Path("tags.tagf")).status, 0);
    ASSERT_EQ(Run("tags convert " + Path("tags.tagf") + " " + Path("again.xml")).status, 0);
    EXPECT_EQ(Slurp(Path("tags.tagf")).substr(0, 5), std::string("TAGF\3"));
    EXPECT_EQ(Run("tags show " + Path("again.xml")).out, shown.out);
    // "-" reads standard input and writes standard output.
    Result piped = Run("tags convert - - <" + Path("tags.sbf") + " | " + std::string(QV_TOOL) + " tags show -");
    EXPECT_EQ(piped.out, shown.out);
}

TEST_F(TreeCommands, ShowsTreesAsTheLibraryReadsThem) {
    Write("a.xml", "<?xml version=\"1.0\"?><a k=\"&lt;v&gt;\"><!--c--><b>t &amp; u</b></a>");
    Result xml = Run("xml show " + Path("a.xml"));
    ASSERT_EQ(xml.status, 0);
    EXPECT_EQ(xml.out, "instruction xml version=\"1.0\"\nelement a k=\"<v>\"\n  comment  value \"c\"\n"
                       "  element b value \"t & u\"\n");
    Write("tags.xml", kTags);
    ASSERT_EQ(Run("tags convert " + Path("tags.xml") + " " + Path("tags.sbf")).status, 0);
    Result sbf = Run("sbf show " + Path("tags.sbf"));
    ASSERT_EQ(sbf.status, 0);
    EXPECT_EQ(sbf.out.substr(0, 42), "application: TAGF\nversion: 0.1\nstrings: 14");
    EXPECT_NE(sbf.out.find("\n  TextValue Value=string:\"HL\"\n"), std::string::npos) << sbf.out;
}

TEST_F(TreeCommands, BadInputIsOneSentenceAndFailure) {
    Write("bad.xml", "<a><b></a>");
    Write("bad.sbf", std::string("SBF\0TAGF\0\1\xFF\xFF\xFF\xFF", 14));
    for (std::string const &arguments :
         {"xml show " + Path("bad.xml"), "sbf show " + Path("bad.sbf"), "sbf show " + Path("bad.xml"),
          "tags show " + Path("bad.xml"), "tags show " + Path("missing"), "tags convert " + Path("bad.sbf") + " x"}) {
        Result r = Run(arguments);
        EXPECT_EQ(r.status, 1) << arguments;
        EXPECT_EQ(r.err.substr(0, 4), "qv: ") << arguments;
        EXPECT_EQ(r.err.find('\n'), r.err.size() - 1) << arguments;
        EXPECT_EQ(r.out, "") << arguments;
    }
}

#endif

} // namespace
