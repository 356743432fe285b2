#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

#include "qv/core/DebugOutput.h"
#include "qv/core/Log.h"
#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"

using namespace qv;

namespace {

void Collect(char const *utf8, void *context) {
    static_cast<std::vector<std::string> *>(context)->push_back(utf8);
}

// A log line as echoed to the sink, less its "[time]: " prefix.
std::string WithoutLogPrefix(std::string const &line) {
    size_t end = line.find("]: ");
    return line.starts_with("[") && end != std::string::npos ? line.substr(end + 3) : "(no prefix) " + line;
}

} // namespace

TEST(DebugOutput, HookReceivesUtf8) {
    std::vector<std::string> seen;
    DebugTextHook before = SetDebugTextHook(Collect, &seen);
    OutputDebugStringW(u"h\u00e9llo");
    OutputDebugStringA("narrow");
    std::u16string longText(2000, u'\u20ac');
    OutputDebugStringW(longText.c_str());
    qvLogWriteLineW(u"%d-%s", 5, u"x");
    std::u16string longLine(1000, u'y');
    qvLogWriteLineW(u"%s", longLine.c_str());
    OutputDebugStringW(nullptr);
    EXPECT_EQ(SetDebugTextHook(before, nullptr), Collect);
    OutputDebugStringA("not seen");
    ASSERT_EQ(seen.size(), 5u);
    EXPECT_EQ(seen[0], "h\xC3\xA9llo");
    EXPECT_EQ(seen[1], "narrow");
    EXPECT_EQ(seen[2].size(), 6000u);
    EXPECT_EQ(WithoutLogPrefix(seen[3]), "5-x\r\n");
    EXPECT_EQ(WithoutLogPrefix(seen[4]), std::string(1000, 'y') + "\r\n");
}

// Number text stays in the "C" form whatever locale a program sets.
TEST(LocaleIndependence, GermanLocaleKeepsThePoint) {
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8")) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    char narrow[64];
    c_snprintf(narrow, sizeof narrow, "%f|%g|%e|%.2f", 1.5, 0.25, 1234.5, 1e3);
    char16_t wide[64];
    swprintf(wide, 64, u"%g", 2.5);
    double parsed = _wtof(u"1.5");
    double narrowParsed = c_strtod("2.25", nullptr);
    double comma = c_atof("2,5");
    std::setlocale(LC_ALL, "C");
    EXPECT_STREQ(narrow, "1.500000|0.25|1.234500e+003|1000.00");
    EXPECT_TRUE(std::u16string(wide) == u"2.5");
    EXPECT_EQ(parsed, 1.5);
    EXPECT_EQ(narrowParsed, 2.25);
    EXPECT_EQ(comma, 2.0);
}
