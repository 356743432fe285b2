#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qv/tables/PODFields.h"

namespace {

std::vector<std::string> Split(std::string line, uint32_t count, uint32_t *found = nullptr) {
    std::vector<char const *> fields(count);
    line.push_back('#'); // room for the terminator, never read as data
    uint32_t n = qv::SplitPODLine(line.data(), line.size() - 1, fields.data(), count);
    if (found) *found = n;
    return std::vector<std::string>(fields.begin(), fields.end());
}

TEST(PODFields, RunsOfSeparatorsCountAsOne) {
    uint32_t found = 0;
    EXPECT_EQ(Split("a\t b,,c;|d\r\n", 4, &found), (std::vector<std::string>{"a", "b", "c", "d"}));
    EXPECT_EQ(found, 4u);
}

TEST(PODFields, QuotesHoldSeparatorsAndEmptyValues) {
    EXPECT_EQ(Split("\"a b\"\t\"\"\t\"x,y\"", 3), (std::vector<std::string>{"a b", "", "x,y"}));
    // A quote inside a token restarts the token behind it.
    EXPECT_EQ(Split("ab\"cd ef\"\tg", 2), (std::vector<std::string>{"cd ef", "g"}));
}

TEST(PODFields, MissingFieldsAreEmptyAndExtraOnesAreLeft) {
    uint32_t found = 9;
    EXPECT_EQ(Split("a\tb", 4, &found), (std::vector<std::string>{"a", "b", "", ""}));
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(Split("a\tb\tc\td", 2, &found), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(found, 2u);
    EXPECT_EQ(Split("", 1, &found), (std::vector<std::string>{""}));
    EXPECT_EQ(found, 0u);
}

TEST(PODFields, AnUnclosedQuoteRunsToTheLineEnd) {
    EXPECT_EQ(Split("\"a\tb", 2), (std::vector<std::string>{"a\tb", ""}));
    // The line end is not data, or a save would write it back inside the row.
    EXPECT_EQ(Split("1 \"a b\r\n", 2), (std::vector<std::string>{"1", "a b"}));
    EXPECT_EQ(Split("1 \"a b\n", 2), (std::vector<std::string>{"1", "a b"}));
    EXPECT_EQ(Split("\"a\rb\"\r\n", 1), (std::vector<std::string>{"a\rb"}));
}

TEST(PODFields, ACarriageReturnInAValueIsQuoted) {
    std::string out;
    qv::AppendPODField(out, "a\rb");
    EXPECT_EQ(out, "\"a\rb\"");
}

TEST(PODFields, WritingQuotesOnlyWhatNeedsIt) {
    std::string out;
    qv::AppendPODField(out, "plain");
    out += '\t';
    qv::AppendPODField(out, "");
    out += '\t';
    qv::AppendPODField(out, "a b");
    out += '\t';
    qv::AppendPODField(out, "x|y");
    EXPECT_EQ(out, "plain\t\"\"\t\"a b\"\t\"x|y\"");
}

TEST(PODFields, WrittenFieldsReadBack) {
    std::vector<std::string> values{"1.5", "", "with space", "a;b", "\xc3\xa9t\xc3\xa9"};
    std::string line;
    for (auto const &v : values) {
        qv::AppendPODField(line, v);
        line += '\t';
    }
    line += "\r\n";
    EXPECT_EQ(Split(line, uint32_t(values.size())), values);
}

} // namespace
