// The state of the matrix object that remains after one element was read.

#include "catalogue/EntryFile.h"

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <gtest/gtest.h>

#include <malloc.h>
#include <memory>
#include <numeric>
#include <vector>

#include "support/EachStorage.h"
#include "support/TempDir.h"

namespace cubes::test {
namespace {

constexpr int zones = 2000;

class MatrixReading : public testing::TestWithParam<Storage> {
protected:
    void SetUp() override {
        setMatrixStorage(directory.str(), {GetParam(), Durability::process});
        TRkMatrix source = TRkMatrix::inMemory(zones, zones);
        source.RowAt(3, 0)[4] = 7;
        std::vector<std::int32_t> numbers(zones);
        std::iota(numbers.begin(), numbers.end(), 1000);
        source.SetZones(numbers);
        TRkMatrix(zones, zones, mtSkim, file.c_str(), 1, "", "", true, mkSkim, lsNone).AssignFrom(source);
    }
    std::unique_ptr<TRkMatrix> opened(RkLockState lock = lsNone) const {
        return std::make_unique<TRkMatrix>(file.c_str(), 1, "", true, mkSkim, lock, 0);
    }

    TempDir const directory;
    std::string const file = directory.file("a.skm");
};

std::size_t allocated() {
    auto const use = mallinfo2();
    return use.uordblks + use.hblkhd;
}

}

// The objects are never deleted; each keeps only its own few hundred bytes.
TEST_P(MatrixReading, keepsNoRowsAndNoZoneNumbersInTheRemainingObject) {
    std::size_t const before = allocated();
    auto const whole = opened();
    whole->RowAt(3, 8);
    if (allocated() - before < zones * sizeof(std::int32_t)) GTEST_SKIP() << "SKIPPED: the allocator does not count";

    constexpr std::size_t calls = 50;
    catalogue::readElement(opened(), 3, 4);
    std::size_t const start = allocated();
    for (std::size_t i = 0; i < calls; ++i) EXPECT_EQ(catalogue::readElement(opened(), 3, 4), 7.0);
    EXPECT_LT(allocated() - start, calls * 1500);
}

TEST_P(MatrixReading, keepsNoLockInTheRemainingObject) {
    EXPECT_EQ(catalogue::readElement(opened(lsReadWrite), 3, 4), 7.0);
    EXPECT_TRUE(opened(lsReadWrite)->IsValid());
}

TEST_P(MatrixReading, refusesColumnsAndRowsOutsideTheMatrix) {
    EXPECT_THROW(catalogue::readElement(opened(), 3, zones), TRkMatrixException);
    EXPECT_THROW(catalogue::readElement(opened(), zones, 3), TRkMatrixException);
    EXPECT_EQ(catalogue::readElement(nullptr, 0, 0), -1.0);
}

CUBES_EACH_STORAGE(, MatrixReading);

}
