// ReadXYFile and ReadModtranFile: the designed reading rules, real files
// from other people's tools, a German locale and hostile bytes.
#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "Golden.h"
#include "qv/files/MemFile.h"
#include "qv/numerics/CurveFiles.h"

using namespace qv;
using golden::ToVector;
using V = std::vector<double>;

namespace {

struct Memory {
    CMemFile file;
    explicit Memory(std::string const &bytes) {
        file.Write(bytes.data(), uint32_t(bytes.size()));
        file.SeekToBegin();
    }
};

struct XY {
    TArray<double> x, y;
    bool ok = false;
    explicit XY(std::string const &bytes) {
        Memory m(bytes);
        ok = ReadXYFile(x, y, &m.file);
    }
};

struct Table {
    TArray<double> x, t, r;
    bool ok = false;
    explicit Table(std::string const &bytes) {
        Memory m(bytes);
        ok = ReadModtranFile(x, t, r, &m.file);
    }
};

std::u16string Wide(std::string const &s) {
    return std::u16string(s.begin(), s.end());
}

// Switches the process to a locale with a decimal comma for one scope.
class GermanLocale {
public:
    GermanLocale() : active_(std::setlocale(LC_ALL, "de_DE.UTF-8") != nullptr) {}
    ~GermanLocale() { std::setlocale(LC_ALL, "C"); }
    bool Active() const { return active_; }

private:
    bool active_;
};

} // namespace

TEST(XYFile, ReadingRules) {
    XY f("1, 2\n# comment\n\n3\t4\n5\n6 7\n");
    EXPECT_TRUE(f.ok);
    EXPECT_EQ(ToVector(f.x), (V{1, 3}));
    EXPECT_EQ(ToVector(f.y), (V{2, 4}));

    XY spaced("  1.5 ,, 2.5  extra\r\n\t-3e2,4E-1\r\n0x10 1\n");
    EXPECT_EQ(ToVector(spaced.x), (V{1.5, -300, 0}));
    EXPECT_EQ(ToVector(spaced.y), (V{2.5, 0.4, 1}));

    XY lastLine("1 2\n3 4"); // no line end at the end
    EXPECT_EQ(ToVector(lastLine.x), (V{1, 3}));
    XY blank("1 2\n   \n3 4\n"); // white space only: no second token
    EXPECT_EQ(ToVector(blank.x), V{1});
    XY none("");
    EXPECT_TRUE(none.ok);
    EXPECT_EQ(none.x.GetSize(), 0u);
    XY words("abc def\n"); // atof of a word is 0
    EXPECT_EQ(ToVector(words.x), V{0});

    TArray<double> x, y;
    EXPECT_FALSE(ReadXYFile(x, y, static_cast<IFile *>(nullptr)));
}

TEST(XYFile, HostileBytes) {
    std::string longLine(600, '1');
    XY tooLong("1 2\n" + longLine + " 3\n4 5\n"); // a line beyond 512 bytes ends the reading
    EXPECT_TRUE(tooLong.ok);
    EXPECT_EQ(ToVector(tooLong.x), V{1});
    XY justFits(std::string(500, ' ') + "7 8\n" + std::string(510, '9') + "\n");
    EXPECT_EQ(ToVector(justFits.x), V{7});

    XY special("nan inf\n-inf 1e999\n1e-999 -0\n");
    ASSERT_EQ(special.x.GetSize(), 3u);
    EXPECT_TRUE(std::isnan(special.x[0]));
    EXPECT_EQ(special.y[0], INFINITY);
    EXPECT_EQ(special.x[1], -INFINITY);
    EXPECT_EQ(special.y[1], INFINITY);
    EXPECT_EQ(special.x[2], 0.0);

    XY embedded(std::string("1 2\0 3\n4\r5 6\n", 14));
    EXPECT_EQ(ToVector(embedded.x), (V{1}));

    std::mt19937 random(17);
    for (int round = 0; round < 200; ++round) {
        std::string junk(random() % 3000, '\0');
        for (char &c : junk)
            c = char(random());
        XY f(junk);
        EXPECT_TRUE(f.ok);
        EXPECT_EQ(f.x.GetSize(), f.y.GetSize());
    }
}

TEST(XYFile, GermanLocaleKeepsThePoint) {
    GermanLocale german;
    if (!german.Active()) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    XY f("1.5, 2.25\n3,5 4\n");
    EXPECT_EQ(ToVector(f.x), (V{1.5, 3}));
    EXPECT_EQ(ToVector(f.y), (V{2.25, 5}));
}

TEST(XYFile, RealSpectralResponses) {
    auto cases = golden::Read("golden_response.txt");
    ASSERT_EQ(cases.size(), 8u);
    for (auto const &r : cases) {
        golden::Cursor c(r);
        TArray<double> x, y;
        std::string path = golden::DataDir() + "response/" + r.tag;
        ASSERT_TRUE(ReadXYFile(x, y, nullptr, Wide(path).c_str())) << r.tag;
        EXPECT_EQ(x.GetSize(), c.Count()) << r.tag;
        double first = c.Next(), last = c.Next(), low = c.Next(), high = c.Next();
        EXPECT_EQ(x[0], first) << r.tag;
        EXPECT_EQ(x[x.GetSize() - 1], last) << r.tag;
        auto xs = ToVector(x);
        EXPECT_EQ(*std::min_element(xs.begin(), xs.end()), low) << r.tag;
        EXPECT_EQ(*std::max_element(xs.begin(), xs.end()), high) << r.tag;
        EXPECT_EQ(y[0], c.Next()) << r.tag;
        EXPECT_EQ(y[y.GetSize() - 1], c.Next()) << r.tag;
    }
}

TEST(XYFile, PathForm) {
    TArray<double> x, y;
    x.Add(9);
    EXPECT_FALSE(ReadXYFile(x, y, nullptr, u"/nonexistent/qv/curve.txt"));
    EXPECT_EQ(ToVector(x), V{9}); // a file that does not open changes nothing
    EXPECT_FALSE(ReadXYFile(x, y, nullptr, nullptr));
}

TEST(ModtranFile, ReadingRules) {
    Table t("header\n  1 2 3\n   freq  trans rad\n\n 1000.0 0.5 2e-6\n 2000 0.25 1e-6 999\n -9999.\n 500 1 1\n");
    EXPECT_TRUE(t.ok);
    EXPECT_EQ(ToVector(t.x), (V{5.0, 10.0})); // rising wavelength
    EXPECT_EQ(ToVector(t.t), (V{0.25, 0.5}));
    EXPECT_EQ(ToVector(t.r), (V{1e-6 * (2000.0 * 2000.0 / 10000.0), 2e-6 * (1000.0 * 1000.0 / 10000.0)}));

    Table shortRow("FREQ\n1000 0.5 1\n2000 0.5\n4000 1 1\n");
    EXPECT_FALSE(shortRow.ok);
    EXPECT_EQ(ToVector(shortRow.x), V{10.0}); // the rows before it stay

    Table noHeading("1000 0.5 1\n2000 0.5 1\n");
    EXPECT_TRUE(noHeading.ok);
    EXPECT_EQ(noHeading.x.GetSize(), 0u);
    // A table without its -9999. line may be cut short: false, the rows kept.
    Table noEnd("\tFreQuency\r\n1000 0.5 1\r\n2000 0.5 1"); // no -9999. and no last line end
    EXPECT_FALSE(noEnd.ok);
    EXPECT_EQ(ToVector(noEnd.x), (V{5.0, 10.0}));
    Table cutInANumber("FREQ\n1000 0.5 1\n2000 0.5 1.2e-");
    EXPECT_FALSE(cutInANumber.ok);
    EXPECT_EQ(cutInANumber.x.GetSize(), 2u);
    Table endAtOnce("FREQ\n-9999.\n1000 1 1\n");
    EXPECT_TRUE(endAtOnce.ok);
    EXPECT_EQ(endAtOnce.x.GetSize(), 0u);

    TArray<double> x, y1, y2;
    EXPECT_FALSE(ReadModtranFile(x, y1, y2, static_cast<IFile *>(nullptr)));
}

TEST(ModtranFile, HostileBytes) {
    Table longLine("FREQ\n1000 1 1\n" + std::string(700, '5') + " 1 1\n2000 1 1\n-9999.\n");
    EXPECT_FALSE(longLine.ok); // the overlong line cuts the table
    EXPECT_EQ(ToVector(longLine.x), V{10.0});
    Table special("FREQ\n0 1 1\nnan inf -inf\n1e999 1 1\n");
    ASSERT_EQ(special.x.GetSize(), 3u);
    EXPECT_EQ(special.x[0], 0.0); // 10000 / inf
    EXPECT_TRUE(std::isnan(special.x[1]));
    EXPECT_EQ(special.x[2], INFINITY); // 10000 / 0
    EXPECT_EQ(special.r[2], 0.0);

    std::mt19937 random(29);
    for (int round = 0; round < 200; ++round) {
        std::string junk = round % 2 ? "FREQ\n" : "";
        for (size_t n = random() % 3000; n > 0; --n)
            junk += char(random() % 4 ? "0123456789 .e-\n"[random() % 15] : random());
        Table f(junk);
        EXPECT_EQ(f.x.GetSize(), f.t.GetSize());
        EXPECT_EQ(f.x.GetSize(), f.r.GetSize());
    }
}

TEST(ModtranFile, GermanLocaleKeepsThePoint) {
    GermanLocale german;
    if (!german.Active()) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    Table t("FREQ\n1000.0 0.5 2.5e-6\n");
    EXPECT_EQ(ToVector(t.x), V{10.0});
    EXPECT_EQ(ToVector(t.t), V{0.5});
    EXPECT_EQ(ToVector(t.r), V{2.5e-6 * 100.0});
}

// Tables cut from real tape7 files, and the tape7 files themselves, whose
// first three columns are the same frequency, transmission and path radiance.
TEST(ModtranFile, TablesFromRealTape7Files) {
    char const *const names[] = {"tape7-02", "tape7-02b", "tape7-02c", "tape7-03", "tape7-05"};
    for (char const *name : names) {
        std::string base = golden::DataDir() + "modtran/NelisW__pyradi__pyradi__data__" + name;
        V expected[3];
        std::ifstream in(base + ".expected");
        for (std::string line; std::getline(in, line);) {
            if (line[0] == '#') continue;
            std::istringstream row(line);
            for (V &column : expected) {
                std::string word;
                row >> word;
                column.push_back(golden::Number(word));
            }
        }
        ASSERT_GT(expected[0].size(), 10u) << name;
        for (std::string const &path : {base + ".table", base}) {
            TArray<double> x, t, r;
            ASSERT_TRUE(ReadModtranFile(x, t, r, nullptr, Wide(path).c_str())) << path;
            EXPECT_EQ(ToVector(x), expected[0]) << path;
            EXPECT_EQ(ToVector(t), expected[1]) << path;
            EXPECT_EQ(ToVector(r), expected[2]) << path;
        }
    }
}

TEST(ModtranFile, PathForm) {
    std::string path = testing::TempDir() + "qv_modtran_table.txt";
    {
        std::ofstream out(path);
        out << "FREQ\n1000 0.5 1e-6\n-9999.\n";
    }
    TArray<double> x, t, r;
    EXPECT_TRUE(ReadModtranFile(x, t, r, nullptr, Wide(path).c_str()));
    EXPECT_EQ(ToVector(x), V{10.0});
    std::remove(path.c_str());
    EXPECT_FALSE(ReadModtranFile(x, t, r, nullptr, Wide(path).c_str()));
    EXPECT_EQ(ToVector(x), V{10.0});
}
