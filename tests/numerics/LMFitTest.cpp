// lmfit and lmfit2: masks, designed failures, call limits and the messages.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "Golden.h"
#include "qv/numerics/LMFit.h"

using namespace qv;
using golden::ToArray;
using golden::ToVector;
using V = std::vector<double>;

namespace {

int calls = 0;

double Line(double x, double *p, int count) {
    ++calls;
    EXPECT_EQ(count, 2);
    return p[0] + p[1] * x;
}

double Sum(double x1, double x2, double *p, int) {
    return p[0] * x1 + p[1] * x2;
}

TArray<bool> Mask(std::vector<bool> const &m) {
    TArray<bool> mask;
    for (bool b : m)
        mask.Add(b);
    return mask;
}

} // namespace

TEST(LMFit, FitsFreeParametersAndKeepsFixedOnes) {
    TArray<double> x = ToArray({0, 1, 2, 3, 4}), y = ToArray({1, 3, 5, 7, 9});
    TArray<double> p = ToArray({0.0, 0.0});
    EXPECT_TRUE(lmfit(x, y, p, Mask({true, true}), Line, 100));
    EXPECT_NEAR(p[0], 1.0, 1e-10);
    EXPECT_NEAR(p[1], 2.0, 1e-10);

    p = ToArray({1.5, 0.0}); // intercept fixed at a wrong value
    EXPECT_TRUE(lmfit(x, y, p, Mask({false, true}), Line, 100));
    EXPECT_EQ(p[0], 1.5);
    EXPECT_NEAR(p[1], (2.0 * 30 - 0.5 * 10) / 30.0, 1e-10); // least squares through a fixed intercept

    p = ToArray({1.0, 0.0}); // a short mask leaves the rest fixed
    EXPECT_TRUE(lmfit(x, y, p, Mask({false}), Line, 100) == false);
    EXPECT_EQ(ToVector(p), (V{1.0, 0.0}));
}

TEST(LMFit, DesignedFailures) {
    TArray<double> x = ToArray({0, 1, 2}), y = ToArray({1, 3, 5}), empty;
    TArray<double> p = ToArray({0.5, 0.5});
    EXPECT_EQ(lmfitInfo(x, y, p, Mask({false, false}), Line, 100), 0); // nothing free
    EXPECT_EQ(lmfitInfo(empty, empty, p, Mask({true, true}), Line, 100), 0);
    TArray<double> one = ToArray({1}), oneY = ToArray({2});
    EXPECT_EQ(lmfitInfo(one, oneY, p, Mask({true, true}), Line, 100), 0); // fewer samples than parameters
    EXPECT_EQ(lmfitInfo(x, y, p, Mask({true, true}), Line, 0), 0);
    EXPECT_EQ(lmfitInfo(x, y, p, Mask({true, true}), Line, -5), 0);
    EXPECT_EQ(ToVector(p), (V{0.5, 0.5})); // improper input changes nothing
    TArray<double> none;
    EXPECT_FALSE(lmfit(x, y, none, Mask({}), Line, 100));

    // The call limit counts per Jacobian: maxCalls * (free + 1) evaluations,
    // checked after each trial step. A line through three points that are no
    // line needs more than the 3 evaluations of one Jacobian and a start.
    calls = 0;
    TArray<double> bent = ToArray({1, 5, 2});
    EXPECT_EQ(lmfitInfo(x, bent, p, Mask({true, true}), Line, 1), 5);
    EXPECT_EQ(calls % 3, 0);
    EXPECT_LE(calls / 3, 3 + 1);
    EXPECT_NE(ToVector(p), (V{0.5, 0.5})); // the last estimate comes back anyway

    // A short y grows with zeros to the count of x.
    TArray<double> shortY = ToArray({1});
    p = ToArray({0.0, 0.0});
    lmfit(x, shortY, p, Mask({true, true}), Line, 100);
    EXPECT_EQ(ToVector(shortY), (V{1, 0, 0}));
}

TEST(LMFit, TwoAbscissas) {
    TArray<double> x1 = ToArray({1, 2, 3, 4}), x2 = ToArray({1, 0, 1, 0}), y = ToArray({5, 4, 9, 8});
    TArray<double> p = ToArray({1.0, 1.0});
    // An exact fit leaves zero residuals, which the minimiser reports as
    // orthogonal to the Jacobian (4), not as convergence.
    EXPECT_EQ(lmfit2Info(x1, x2, y, p, Mask({true, true}), Sum, 100), 4);
    EXPECT_NEAR(p[0], 2.0, 1e-10);
    EXPECT_NEAR(p[1], 3.0, 1e-10);
    y = ToArray({5.1, 4, 9, 8.1});
    EXPECT_TRUE(lmfit2(x1, x2, y, p, Mask({true, true}), Sum, 100));
    EXPECT_NEAR(p[0], 88.6 / 44, 1e-9); // the normal equations by hand
    EXPECT_NEAR(p[1], 133.0 / 44, 1e-9);
    TArray<double> shortX2 = ToArray({1});
    lmfit2(x1, shortX2, y, p, Mask({true, true}), Sum, 100);
    EXPECT_EQ(shortX2.GetSize(), 4u);
}

TEST(LMFit, MessagesCoverEveryInfoCode) {
    std::vector<std::u16string> seen;
    for (int info = 0; info <= 8; ++info) {
        std::u16string text = GetLMFitMessage(info);
        EXPECT_GT(text.size(), 20u) << info;
        for (auto const &other : seen)
            EXPECT_NE(text, other);
        seen.push_back(text);
    }
    EXPECT_EQ(std::u16string(GetLMFitMessage(9)), GetLMFitMessage(-1));
    EXPECT_EQ(std::u16string(GetLMFitMessage(1)).rfind(u"Converged", 0), 0u);
}
