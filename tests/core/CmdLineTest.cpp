// CCmdLine and ArgParse: switch forms, quoting, values, lookups, messages.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qv/core/CmdLine.h"

namespace qv::test {
namespace {

std::u16string Value(char16_t const *v) {
    return v ? std::u16string(v) : std::u16string(u"(null)");
}

// Writable tokens for Parse(argc, argv), kept alive with the object.
struct Argv {
    std::vector<std::u16string> words;
    std::vector<char16_t *> pointers;
    explicit Argv(std::vector<std::u16string> w) : words(std::move(w)) {
        for (auto &word : words)
            pointers.push_back(word.data());
    }
    int argc() const { return int(pointers.size()); }
    char16_t **argv() { return pointers.data(); }
};

// A command line with an input, an output option and a verbose flag.
class CmdLineTest : public testing::Test {
protected:
    CCmdLine cmd;
    void SetUp() override {
        ASSERT_TRUE(cmd.AddArg(u"input", u"the file to read"));
        ASSERT_TRUE(cmd.AddOpt(u"o", u"out", u"where to write"));
        ASSERT_TRUE(cmd.AddFlag(u"v", u"verbose", u"say more"));
    }
    // Parses and returns what went to standard output.
    std::string ParseLine(char16_t const *line, bool expected = true) {
        testing::internal::CaptureStdout();
        EXPECT_EQ(cmd.Parse(line), expected) << std::string(line, line + std::u16string(line).size());
        return testing::internal::GetCapturedStdout();
    }
};

// A derived line that may keep surplus arguments and writes to standard error.
class CCmdLineWith : public CCmdLine {
public:
    CCmdLineWith(bool extra, bool stdErr) {
        allowExtra = extra;
        useStdErr = stdErr;
    }
};

TEST(ArgParse, SeparatorsQuotesAndCapacity) {
    std::u16string text = u"  prog\t-a  \"two words\"\r\nlast ";
    char16_t *argv[8];
    int argc = 8;
    ArgParse(text.data(), argv, argc);
    ASSERT_EQ(argc, 4);
    EXPECT_EQ(Value(argv[0]), u"prog");
    EXPECT_EQ(Value(argv[1]), u"-a");
    EXPECT_EQ(Value(argv[2]), u"two words");
    EXPECT_EQ(Value(argv[3]), u"last");

    std::u16string empty;
    argc = 8;
    ArgParse(empty.data(), argv, argc);
    EXPECT_EQ(argc, 0);
    std::u16string blanks = u" \t\r\n";
    argc = 8;
    ArgParse(blanks.data(), argv, argc);
    EXPECT_EQ(argc, 0);

    // The count goes on past the capacity; only what fits is stored.
    std::u16string many = u"a b c d e";
    char16_t *two[3] = {nullptr, nullptr, nullptr};
    argc = 2;
    ArgParse(many.data(), two, argc);
    EXPECT_EQ(argc, 5);
    EXPECT_EQ(Value(two[1]), u"b");
    EXPECT_EQ(two[2], nullptr);
}

TEST(ArgParse, QuoteEdges) {
    // An empty pair is an empty token; a closing quote ends the token even
    // inside a word; an unclosed quote runs to the end; a quote inside a
    // word is an ordinary character.
    std::u16string text = u"\"\" \"ab\"cd \"open ended";
    char16_t *argv[8];
    int argc = 8;
    ArgParse(text.data(), argv, argc);
    ASSERT_EQ(argc, 4);
    EXPECT_EQ(Value(argv[0]), u"");
    EXPECT_EQ(Value(argv[1]), u"ab");
    EXPECT_EQ(Value(argv[2]), u"cd");
    EXPECT_EQ(Value(argv[3]), u"open ended");

    std::u16string inner = u"a\"b c\"";
    argc = 8;
    ArgParse(inner.data(), argv, argc);
    ASSERT_EQ(argc, 2);
    EXPECT_EQ(Value(argv[0]), u"a\"b");
    EXPECT_EQ(Value(argv[1]), u"c\"");
}

TEST_F(CmdLineTest, DeclarationsRefuseNamesInUse) {
    EXPECT_FALSE(cmd.AddArg(u"INPUT", nullptr)) << "names compare without case";
    EXPECT_FALSE(cmd.AddOpt(u"x", u"out", nullptr));
    EXPECT_FALSE(cmd.AddFlag(u"V", u"other", nullptr));
    EXPECT_TRUE(cmd.AddFlag(nullptr, u"quiet", nullptr)) << "a null name bears nothing";
    EXPECT_TRUE(cmd.AddOpt(u"n", nullptr, nullptr));
    EXPECT_TRUE(cmd.ArgExists(u"Verbose"));
    EXPECT_TRUE(cmd.ArgExists(u"o"));
    EXPECT_FALSE(cmd.ArgExists(u"missing"));
    EXPECT_FALSE(cmd.ArgExists(nullptr));
    EXPECT_EQ(cmd.nArgs(), 1u);
}

TEST_F(CmdLineTest, OptionValueWithEqualsOrAsTheNextToken) {
    EXPECT_EQ(ParseLine(u"prog --out=a.txt in.dat"), "");
    EXPECT_EQ(Value(cmd[u"out"]), u"a.txt");
    EXPECT_EQ(Value(cmd[u"o"]), u"a.txt");
    EXPECT_EQ(Value(cmd[u"input"]), u"in.dat");
    EXPECT_EQ(Value(cmd[0]), u"in.dat");

    CCmdLine second;
    ASSERT_TRUE(second.AddArg(u"input", nullptr));
    ASSERT_TRUE(second.AddOpt(u"o", u"out", nullptr));
    EXPECT_TRUE(second.Parse(u"prog --out a.txt in.dat"));
    EXPECT_EQ(Value(second[u"out"]), u"a.txt");
    EXPECT_EQ(Value(second[u"input"]), u"in.dat");

    // One dash reaches short and long names, case aside; the next token is
    // taken whatever it looks like.
    CCmdLine third;
    ASSERT_TRUE(third.AddOpt(u"o", u"out", nullptr));
    ASSERT_TRUE(third.AddArg(u"input", nullptr));
    EXPECT_TRUE(third.Parse(u"prog -OUT -v"));
    EXPECT_EQ(Value(third[u"out"]), u"-v");
    EXPECT_EQ(third[u"input"], nullptr);
}

TEST_F(CmdLineTest, FlagsAreTrueAndRefuseValues) {
    EXPECT_EQ(ParseLine(u"prog -v"), "");
    EXPECT_EQ(Value(cmd[u"verbose"]), u"true");

    CCmdLine fresh;
    ASSERT_TRUE(fresh.AddFlag(u"v", u"verbose", nullptr));
    testing::internal::CaptureStdout();
    EXPECT_TRUE(fresh.Parse(u"prog -v=1"));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Warning: Flag v(verbose) cannot take a value.\n");
    EXPECT_EQ(Value(fresh[u"v"]), u"true");
}

TEST_F(CmdLineTest, RedefinitionWarnsAndReplaces) {
    EXPECT_EQ(ParseLine(u"prog -o first --OUT=second"),
              "Warning: Option o(out) redefined; already defined as first.\n");
    EXPECT_EQ(Value(cmd[u"out"]), u"second");
    EXPECT_EQ(ParseLine(u"prog -v --verbose=x"), "Warning: Flag v(verbose) cannot take a value.\n"
                                                 "Warning: Option v(verbose) redefined; already defined as true.\n");
}

TEST_F(CmdLineTest, OnlyWholeNamesMatchAndTwoDashesMeanLongNames) {
    // "-verbosely" continues past the name: no match, so positional.
    EXPECT_EQ(ParseLine(u"prog -verbosely"), "");
    EXPECT_EQ(Value(cmd[u"input"]), u"-verbosely");
    EXPECT_EQ(cmd[u"v"], nullptr);

    CCmdLine shortOnly;
    ASSERT_TRUE(shortOnly.AddFlag(u"q", u"quiet", nullptr));
    ASSERT_TRUE(shortOnly.AddArg(u"rest", nullptr));
    EXPECT_TRUE(shortOnly.Parse(u"prog --q"));
    EXPECT_EQ(shortOnly[u"q"], nullptr) << "two dashes look at long names only";
    EXPECT_EQ(Value(shortOnly[u"rest"]), u"--q");

    CCmdLine lone;
    ASSERT_TRUE(lone.AddArg(u"a", nullptr));
    EXPECT_TRUE(lone.Parse(u"prog -"));
    EXPECT_EQ(Value(lone[0]), u"-");
}

TEST_F(CmdLineTest, QuotedTokensKeepTheirBlanks) {
    EXPECT_TRUE(cmd.Parse(u"\"C:\\Program Files\\app.exe\" \"my file.txt\" -o \"out dir\\x\""));
    EXPECT_EQ(Value(cmd[u"input"]), u"my file.txt");
    EXPECT_EQ(Value(cmd[u"out"]), u"out dir\\x");
}

TEST_F(CmdLineTest, SurplusArgumentsFailOrAreKept) {
    EXPECT_EQ(ParseLine(u"prog one two", false), "Error: Too many arguments.\n");
    EXPECT_EQ(Value(cmd[0]), u"one");

    CCmdLineWith extra(true, true);
    ASSERT_TRUE(extra.AddArg(u"first", nullptr));
    testing::internal::CaptureStderr();
    EXPECT_TRUE(extra.Parse(u"prog a b c -v=1"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(extra.nArgs(), 4u);
    EXPECT_EQ(Value(extra[3]), u"-v=1");
    EXPECT_EQ(Value(extra[u"Unnamed"]), u"b") << "the first of that name";

    CCmdLineWith toStdErr(false, true);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(toStdErr.Parse(u"prog x"));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: Too many arguments.\n");
}

TEST_F(CmdLineTest, LookupsOutOfRangeAndMissingValuesAreNull) {
    EXPECT_TRUE(cmd.Parse(u"prog"));
    EXPECT_EQ(cmd[0], nullptr);
    EXPECT_EQ(cmd[-1], nullptr);
    EXPECT_EQ(cmd[1], nullptr);
    EXPECT_EQ(cmd[u"nothing"], nullptr);
    EXPECT_EQ(cmd[u"out"], nullptr);
    EXPECT_TRUE(cmd.Parse(u"prog -o")) << "an option at the end has no value";
    EXPECT_EQ(cmd[u"out"], nullptr);
    EXPECT_TRUE(cmd.Parse(nullptr));
    EXPECT_TRUE(cmd.Parse(u""));
}

TEST_F(CmdLineTest, ArgvFormSkipsTheProgramAndPointsIntoArgv) {
    Argv words({u"prog", u"-o", u"x y", u"file"});
    EXPECT_TRUE(cmd.Parse(words.argc(), words.argv()));
    EXPECT_EQ(cmd[u"out"], words.pointers[2]);
    EXPECT_EQ(cmd[u"input"], words.pointers[3]);
}

TEST_F(CmdLineTest, LineFormReadsTwentyEightTokens) {
    CCmdLineWith extra(true, false);
    std::u16string line = u"prog";
    for (int i = 1; i < 40; ++i)
        line += u" t" + std::u16string(1, char16_t(u'a' + i % 26));
    EXPECT_TRUE(extra.Parse(line.c_str()));
    EXPECT_EQ(extra.nArgs(), uint32_t(CCmdLine::kLineTokens - 1));
}

TEST_F(CmdLineTest, CopiesOwnTheirLine) {
    ASSERT_TRUE(cmd.Parse(u"prog -o out.txt in.txt"));
    CCmdLine copy(cmd);
    CCmdLine assigned;
    assigned = cmd;
    ASSERT_TRUE(cmd.Parse(u"prog --out=zzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzzz"));
    EXPECT_EQ(Value(copy[u"out"]), u"out.txt");
    EXPECT_EQ(Value(copy[u"input"]), u"in.txt");
    EXPECT_EQ(Value(assigned[u"o"]), u"out.txt");
    // A new line forgets the old line's values rather than point into it.
    EXPECT_EQ(cmd[u"input"], nullptr);
    EXPECT_EQ(Value(cmd[u"out"]), std::u16string(72, u'z'));
}

} // namespace
} // namespace qv::test
