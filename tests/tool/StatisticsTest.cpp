#include "tool/Statistics.h"
#include "support/Process.h"
#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <vector>

namespace cubes::tool {

namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

Statistics figuresOf(int rows, int columns, std::vector<float> const& cells) {
    auto const width = static_cast<std::size_t>(columns);
    return statisticsOf(
        rows, columns, [&](int row) { return std::span(cells.data() + static_cast<std::size_t>(row) * width, width); });
}

}

TEST(Statistics, agreeWithValuesComputedByHand) {
    auto const figures = figuresOf(3, 3, {1, 0, 2.5f, 4, 5, 0, 7, 0.5f, 0});
    EXPECT_EQ(figures.rows, 3);
    EXPECT_EQ(figures.columns, 3);
    EXPECT_EQ(figures.total, 20);
    EXPECT_EQ(figures.intrazonal, 6);
    EXPECT_DOUBLE_EQ(figures.intrazonalShare, 0.3);
    EXPECT_EQ(figures.zeros, 3);
    EXPECT_DOUBLE_EQ(figures.nonZeroShare, 6.0 / 9);
    EXPECT_EQ(figures.minimum, 0);
    EXPECT_EQ(figures.maximum, 7);
    EXPECT_DOUBLE_EQ(figures.mean, 20.0 / 9);
    EXPECT_EQ(figures.median, 1);
    EXPECT_EQ(figures.nans, 0);
    EXPECT_EQ(figures.infinities, 0);
    EXPECT_EQ(figures.negatives, 0);
}

TEST(Statistics, excludeNonFiniteValuesAndCountThem) {
    auto const figures = figuresOf(3, 3, {nan, infinity, 3, -infinity, 2, -1, 0, -0.0f, infinity});
    EXPECT_EQ(figures.total, 4);
    EXPECT_EQ(figures.intrazonal, 2);
    EXPECT_EQ(figures.zeros, 2);
    EXPECT_DOUBLE_EQ(figures.nonZeroShare, 7.0 / 9);
    EXPECT_EQ(figures.minimum, -1);
    EXPECT_EQ(figures.maximum, 3);
    EXPECT_DOUBLE_EQ(figures.mean, 0.8);
    EXPECT_EQ(figures.median, 0);
    EXPECT_EQ(figures.nans, 1);
    EXPECT_EQ(figures.infinities, 3);
    EXPECT_EQ(figures.negatives, 2);
}

TEST(Statistics, haveNoMinimumOrMaximumWithoutAFiniteValue) {
    auto const figures = figuresOf(1, 1, {nan});
    EXPECT_EQ(figures.total, 0);
    EXPECT_EQ(figures.intrazonalShare, 0);
    for (double const figure : {figures.minimum, figures.maximum, figures.mean, figures.median})
        EXPECT_TRUE(std::isnan(figure));
}

TEST(Statistics, ofANonSquareTableHaveNoIntrazonalShare) {
    auto const figures = figuresOf(2, 3, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ(figures.total, 21);
    EXPECT_TRUE(std::isnan(figures.intrazonal));
    EXPECT_TRUE(std::isnan(figures.intrazonalShare));
    EXPECT_EQ(figures.median, 3.5);
}

TEST(Statistics, readEveryRowOnceInOrder) {
    std::vector<int> asked;
    std::vector<float> const row(2);
    statisticsOf(3, 2, [&](int index) {
        asked.push_back(index);
        return std::span(row);
    });
    EXPECT_EQ(asked, (std::vector<int>{0, 1, 2}));
}

TEST(Statistics, agreeWithNumpy) {
    std::mt19937 random(11);
    std::vector<float> cells;
    for (int i = 0; i < 300 * 300; ++i)
        cells.push_back(random() % 3 == 0 ? 0.0f : static_cast<float>(random() % 1'000'000) / 997.0f);
    test::TempDir const directory;
    test::writeFile(directory.file("cells"),
        std::string(reinterpret_cast<char const*>(cells.data()), cells.size() * sizeof(float)));
    auto const result = test::runPython("import sys, math, numpy\n"
                                        "a = numpy.fromfile(sys.argv[1], dtype='f4').reshape(300, 300).astype('f8')\n"
                                        "print(repr(math.fsum(a.flat)), repr(math.fsum(a.diagonal())), (a == 0).sum(),"
                                        " a.min(), a.max(), repr(math.fsum(a.flat) / a.size), numpy.median(a))",
        {directory.file("cells")});
    ASSERT_EQ(result.exitCode, 0) << result.errors;
    std::istringstream stream(result.output);
    double total, diagonal, minimum, maximum, mean, median;
    std::int64_t zeros;
    ASSERT_TRUE(stream >> total >> diagonal >> zeros >> minimum >> maximum >> mean >> median) << result.output;

    auto const figures = figuresOf(300, 300, cells);
    EXPECT_EQ(figures.total, total);
    EXPECT_EQ(figures.intrazonal, diagonal);
    EXPECT_EQ(figures.zeros, zeros);
    EXPECT_EQ(figures.minimum, minimum);
    EXPECT_EQ(figures.maximum, maximum);
    EXPECT_EQ(figures.mean, mean);
    EXPECT_EQ(figures.median, median);
}

TEST(Sum, keepsDigitsThatASimpleSumLoses) {
    Sum sum;
    for (double const value : {1.0, 1e100, 1.0, -1e100}) sum.add(value);
    EXPECT_EQ(sum.value(), 2);
}

TEST(Sum, ofTenthsIsExact) {
    Sum sum;
    for (int i = 0; i < 10'000'000; ++i) sum.add(0.1);
    EXPECT_EQ(sum.value(), 1e6);
}

}
