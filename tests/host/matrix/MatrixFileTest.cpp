#include "host/matrix/Samples.h"

#include "support/EachStorage.h"
#include "support/SystemMessages.h"

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

using namespace cubes::test;

namespace {

class EachStorage : public testing::TestWithParam<cubes::Storage> {
protected:
    EachStorage() { cubes::setMatrixStorage(directory.str(), {GetParam(), cubes::Durability::full}); }

    TempDir const directory;
    std::string const file = directory.file("a.skm");
};

struct Size {
    int rows;
    int columns;
};

}

TEST_P(EachStorage, readsWhatWasSaved) {
    for (auto const [rows, columns] : {Size{1, 1}, {3, 5}, {5, 3}, {1, 2000}, {2000, 1}, {31, 33}, {400, 700}}) {
        TRkMatrix const source = times(rows, columns);
        ASSERT_TRUE(save(source, file));
        EXPECT_EQ(difference(opened(file), source), "") << rows << " x " << columns;
        EXPECT_EQ(listing(directory.str()), "a.skm\n");
    }
}

TEST_P(EachStorage, readsAnySingleRow) {
    TRkMatrix const source = times(700, 400);
    ASSERT_TRUE(save(source, file));
    for (int row : {0, 163, 164, 350, 699}) EXPECT_EQ(opened(file).RowAt(row, 8)[399], source.RowAt(row, 8)[399]);
}

TEST_P(EachStorage, readsAMatrixOfMostlyZeros) {
    for (int const filled : {0, 350, 699}) {
        TRkMatrix source = TRkMatrix::inMemory(700, 400);
        source.RowAt(filled, 8)[399] = 5;
        ASSERT_TRUE(save(source, file));
        EXPECT_EQ(difference(opened(file), source), "") << filled;
        for (int const row : {0, 350, 699}) EXPECT_EQ(opened(file).RowAt(row, 8)[399], row == filled ? 5 : 0);
    }
}

TEST_P(EachStorage, keepsReturnedRowsAndWhatWasWrittenToThem) {
    ASSERT_TRUE(save(times(700, 400), file));
    TRkMatrix matrix = opened(file);
    float* const early = matrix.RowAt(350, 8);
    early[7] = -1;
    matrix.RowAt(0, 8);
    matrix.RowAt(699, 8);
    EXPECT_EQ(matrix.RowAt(350, 8), early);
    EXPECT_EQ(early[7], -1);
}

TEST_P(EachStorage, returnsAllElementsAndRowsAsSpans) {
    TRkMatrix const source = times(700, 400);
    ASSERT_TRUE(save(source, file));
    TRkMatrix matrix = opened(file);
    EXPECT_TRUE(std::ranges::equal(matrix.Row(350), source.Row(350)));
    EXPECT_TRUE(std::ranges::equal(matrix.Elements(), source.Elements()));
    EXPECT_EQ(matrix.Elements().size(), 280'000u);
    EXPECT_EQ(matrix.Row(699).data(), matrix.Elements().data() + 699 * 400);
    matrix.WritableRow(3)[5] = -1;
    matrix.WritableElements()[0] = -2;
    EXPECT_EQ(matrix.RowAt(3, 8)[5], -1);
    EXPECT_EQ(matrix.RowAt(0, 8)[0], -2);
    EXPECT_EQ(difference(opened(file), source), "");
}

TEST_P(EachStorage, finishesANewFileThatWasFilledThroughSpans) {
    {
        TRkMatrix target = created(file, 2, 3);
        EXPECT_EQ(target.Elements().size(), 6u);
        EXPECT_EQ(target.Row(1)[2], 0);
    }
    EXPECT_FALSE(std::filesystem::exists(file));
    { created(file, 2, 3).WritableElements()[5] = 7; }
    EXPECT_EQ(opened(file).Row(1)[2], 7);
    { created(file, 2, 3).WritableRow(1)[1] = 8; }
    EXPECT_EQ(opened(file).Row(1)[1], 8);
}

TEST_P(EachStorage, writingToAnOpenedMatrixIsPrivate) {
    ASSERT_TRUE(save(numbered(3, 4), file));
    {
        TRkMatrix matrix = opened(file, lsReadWrite);
        matrix.RowAt(1, 0)[2] = 77;
        EXPECT_EQ(matrix.RowAt(1, 8)[2], 77);
        matrix.AssignFrom(times(3, 4));
        EXPECT_EQ(difference(matrix, times(3, 4)), "");
    }
    EXPECT_EQ(difference(opened(file), numbered(3, 4)), "");
}

TEST_P(EachStorage, keepsTypeKindNameAndZones) {
    {
        TRkMatrix target(2, 2, static_cast<RkMatrixType>(23), file.c_str(), 1, "Täglich [1,2]", "", true,
            static_cast<RkMatrixKind>(40), lsNone);
        TRkMatrix source = numbered(2, 2);
        source.SetZones({7, -3});
        target.AssignFrom(source);
    }
    TRkMatrix const read = opened(file, 0, 5);
    EXPECT_EQ(read.Type(), 23);
    EXPECT_EQ(read.MatrixKind(), 40);
    EXPECT_EQ(read.Header().Kind(), 40u);
    EXPECT_EQ(read.Zones(), (std::vector<std::int32_t>{7, -3}));
    EXPECT_STREQ(read.Name().c_str(), "Täglich [1,2]");
    EXPECT_STREQ(opened(file, 0, 0, "Base [1,2,3,4]").Name().c_str(), "Base [1,2,3,4]");
}

TEST_P(EachStorage, anOpenedMatrixKeepsItsStateWhenTheFileIsReplacedOrRemoved) {
    ASSERT_TRUE(save(numbered(300, 300), file));
    TRkMatrix const before = opened(file);
    ASSERT_TRUE(save(times(300, 300), file));
    EXPECT_EQ(difference(before, numbered(300, 300)), "");
    TRkMatrix const after = opened(file);
    ASSERT_TRUE(std::filesystem::remove(file));
    EXPECT_EQ(difference(after, times(300, 300)), "");
}

TEST_P(EachStorage, aMatrixCanBeSavedOntoTheFileItIsReadFrom) {
    ASSERT_TRUE(save(numbered(300, 300), file));
    TRkMatrix source = opened(file);
    source.RowAt(2, 0)[1] = -5;
    ASSERT_TRUE(save(source, file));
    EXPECT_EQ(difference(opened(file), source), "");
    EXPECT_EQ(opened(file).RowAt(2, 8)[1], -5);
}

TEST_P(EachStorage, filledRowsAreWrittenByTheDestructor) {
    {
        TRkMatrix target = created(file, 3, 2);
        target.RowAt(2, 0)[1] = 4;
        EXPECT_FALSE(std::filesystem::exists(file));
        target.Release();
        EXPECT_EQ(target.RowAt(2, 0)[1], 4);
    }
    TRkMatrix const read = opened(file);
    EXPECT_EQ(read.RowAt(2, 8)[1], 4);
    EXPECT_EQ(read.RowAt(0, 8)[0], 0);
}

TEST_P(EachStorage, aNewMatrixCanBeReadAfterAssigning) {
    TRkMatrix target = created(file, 3, 4);
    target.RowAt(1, 0)[1] = 9;
    float const* const early = target.RowAt(1, 8);
    target.AssignFrom(numbered(3, 4));
    EXPECT_EQ(early[1], 1001);
    EXPECT_EQ(difference(target, numbered(3, 4)), "");
    target.Release();
    EXPECT_EQ(difference(target, numbered(3, 4)), "");
}

TEST_P(EachStorage, aSecondAssignmentReplacesTheFirst) {
    TRkMatrix target = created(file, 3, 4);
    target.AssignFrom(numbered(3, 4));
    target.AssignFrom(times(3, 4));
    EXPECT_EQ(difference(opened(file), times(3, 4)), "");
}

TEST_P(EachStorage, equalMatricesMakeEqualFiles) {
    ASSERT_TRUE(save(times(300, 300), file));
    ASSERT_TRUE(save(times(300, 300), directory.file("b.skm")));
    EXPECT_TRUE(readFile(file) == readFile(directory.file("b.skm")));
}

// An object header has a version, 2, and flags, of which 0x20 indicates times.
TEST_P(EachStorage, filesHaveNoTimes) {
    ASSERT_TRUE(save(times(300, 300), file));
    std::string const bytes = readFile(file);
    int headers = 0;
    for (std::size_t at = bytes.find("OHDR\x02"); at != std::string::npos; at = bytes.find("OHDR\x02", at + 1)) {
        EXPECT_EQ(bytes[at + 5] & 0x20, 0) << at;
        ++headers;
    }
    EXPECT_GE(headers, 4);
}

CUBES_EACH_STORAGE(MatrixFile, EachStorage);

TEST(MatrixFile, nothingIsCreatedWhenNothingWasWritten) {
    TempDir const directory;
    std::string const file = directory.file("a.skm");
    created(file, 3, 3);
    EXPECT_EQ(listing(directory.str()), "");
    ASSERT_TRUE(save(numbered(2, 2), file));
    {
        TRkMatrix const target = created(file, 3, 3);
        EXPECT_EQ(target.RowAt(1, 8)[1], 0);
    }
    EXPECT_EQ(difference(opened(file), numbered(2, 2)), "");
    EXPECT_EQ(listing(directory.str()), "a.skm\n");
}

TEST(MatrixFile, releaseClosesTheFileAndRowsReopenIt) {
    TempDir const directory;
    std::string const file = directory.file("a.skm");
    ASSERT_TRUE(save(numbered(3, 3), file));
    TRkMatrix matrix = opened(file);
    matrix.RowAt(0, 0)[0] = 5;
    matrix.Release();
    EXPECT_EQ(difference(matrix, numbered(3, 3)), "");
    matrix.Release();
    ASSERT_TRUE(save(times(4, 4), file));
    EXPECT_THROW(matrix.RowAt(0, 8), TRkMatrixException);
    std::filesystem::remove(file);
    EXPECT_THROW(matrix.RowAt(0, 8), TRkMatrixException);
}

TEST(MatrixFile, movingLeavesASafeObjectThatIsNotValid) {
    TempDir const directory;
    TRkMatrix first = created(directory.file("a.skm"), 2, 2);
    first.RowAt(0, 0)[0] = 1;
    TRkMatrix second = std::move(first);
    EXPECT_FALSE(first.IsValid());
    EXPECT_EQ(first.Rows(), 0);
    EXPECT_STREQ(first.FileName(), "");
    EXPECT_EQ(first.StateCode(), 0);
    EXPECT_FALSE(first.Reason().empty());
    EXPECT_THROW(first.RowAt(0, 0), TRkMatrixException);
    EXPECT_THROW(first.AssignFrom(second), TRkMatrixException);
    first.Release();
    EXPECT_EQ(listing(directory.str()).find("a.skm\n"), std::string::npos);
    second = numbered(2, 2);
    EXPECT_EQ(listing(directory.str()), "a.skm\n");
}

TEST(MatrixFile, theHeaderIsReadWithoutAnObject) {
    TempDir const directory;
    std::string const file = directory.file("a.skm");
    {
        TRkMatrix target = created(file, 2, 3, 0, "Base [1,1,1,1]");
        target.AssignFrom(numbered(2, 3));
    }
    TRkMatrixHeader const* const header = TRkMatrix().GetHeader(file.c_str());
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->Rows(), 2);
    EXPECT_EQ(header->Columns(), 3);
    EXPECT_EQ(header->Type(), mtMatrixCube);
    EXPECT_STREQ(header->Name().c_str(), "Base [1,1,1,1]");
    EXPECT_EQ(TRkMatrix().GetHeader(directory.file("none").c_str()), nullptr);
    EXPECT_EQ(TRkMatrix().GetHeader(nullptr), nullptr);
    EXPECT_EQ(header->Rows(), 2);
}

TEST(MatrixFile, theStateCodeIsTheLockState) {
    TempDir const directory;
    std::string const file = directory.file("a.skm");
    ASSERT_TRUE(save(numbered(2, 2), file));
    for (int lock : {0, 1, 4, 8, 3, 11, 2, 64})
        EXPECT_EQ(opened(file, lock).StateCode(), lock) << opened(file, lock).Reason();
    EXPECT_EQ(created(file, 2, 2, 11).StateCode(), 11);
    EXPECT_EQ(numbered(2, 2).StateCode(), 0);
    EXPECT_STREQ(numbered(2, 2).FileName(), "");
    EXPECT_STREQ(opened(file).FileName(), file.c_str());
    EXPECT_STREQ(opened(file).Body()->FileName(), file.c_str());
}

TEST(MatrixFile, aFileThatCannotBeCreatedIsNotValid) {
    TempDir const directory;
    std::filesystem::create_directory(directory.file("d"));
    struct Case {
        std::string file;
        int rows, columns;
        std::string reason;
    };
    for (auto const& [file, rows, columns, reason] : {
             Case{directory.file("none/a.skm"), 2, 2, noSuchDirectory()},
             Case{directory.file("d"), 2, 2, "it is a directory"},
             Case{"", 2, 2, ""},
             Case{directory.file("a.skm"), 0, 2, "0 x 2"},
             Case{directory.file("a.skm"), 2, -1, "is not possible"},
         }) {
        TRkMatrix const matrix = created(file, rows, columns);
        EXPECT_FALSE(matrix.IsValid()) << file;
        EXPECT_NE(matrix.Reason().find(reason), std::string::npos) << matrix.Reason();
        EXPECT_NE(matrix.Reason().find(file), std::string::npos) << matrix.Reason();
    }
    EXPECT_EQ(listing(directory.str()), "d\n");
}

TEST(Matrix, inMemoryIsZeroAndRefusesImpossibleDimensions) {
    TRkMatrix const matrix = TRkMatrix::inMemory(2, 3);
    EXPECT_TRUE(matrix.IsValid());
    EXPECT_EQ(matrix.Reason(), "");
    for (int j = 0; j < 3; ++j) EXPECT_EQ(matrix.RowAt(1, 0)[j], 0);
    constexpr int largest = 2147483647;
    EXPECT_THROW(TRkMatrix::inMemory(0, 3), TRkMatrixException);
    EXPECT_THROW(TRkMatrix::inMemory(3, -1), TRkMatrixException);
    EXPECT_THROW(TRkMatrix::inMemory(largest, largest), TRkMatrixException);
    EXPECT_THROW(matrix.RowAt(2, 0), TRkMatrixException);
    EXPECT_THROW(matrix.RowAt(-1, 0), TRkMatrixException);
}

TEST(Matrix, zonesMustFitASquareMatrix) {
    TRkMatrix square = numbered(3, 3);
    EXPECT_THROW(square.SetZones({1, 2}), TRkMatrixException);
    square.SetZones({3, 1, 2});
    square.SetZones({});
    EXPECT_TRUE(square.Zones().empty());
    EXPECT_THROW(numbered(2, 3).SetZones({1, 2}), TRkMatrixException);
}

TEST(Matrix, assignmentCopiesElementsAndZonesAndRefusesOtherDimensions) {
    TRkMatrix source = numbered(2, 2);
    source.SetZones({5, 6});
    TRkMatrix target = TRkMatrix::inMemory(2, 2);
    target.AssignFrom(source);
    EXPECT_EQ(difference(target, source), "");
    EXPECT_EQ(target.Zones(), source.Zones());
    EXPECT_THROW(target.AssignFrom(numbered(2, 3)), TRkMatrixException);
    EXPECT_THROW(target.AssignFrom(TRkMatrix()), TRkMatrixException);
    EXPECT_TRUE(target.IsValid());
    target.AssignFrom(target);
    EXPECT_EQ(difference(target, source), "");
}

TEST(Matrix, returnsTheElementOfAnOdPairByZoneNumbers) {
    TRkMatrix matrix = numbered(3, 3);
    matrix.SetZones({1001, 30, 9500});
    EXPECT_EQ(matrix.At(1001, 9500), 2);
    EXPECT_EQ(matrix.At(9500, 30), 2001);
    matrix.SetZones({7, 8, 7});
    EXPECT_EQ(matrix.At(7, 8), 1);
    EXPECT_THROW(matrix.At(1001, 7), TRkMatrixException);
    TRkMatrix other = TRkMatrix::inMemory(3, 3);
    other.SetZones({4, 5, 6});
    matrix.AssignFrom(other);
    EXPECT_EQ(matrix.At(4, 6), 0);
    matrix.SetZones({});
    EXPECT_EQ(matrix.At(1, 1), 0);
}

TEST(Matrix, countsZonesFrom1WithoutZoneNumbers) {
    TRkMatrix const matrix = numbered(2, 3);
    EXPECT_EQ(matrix.At(1, 1), 0);
    EXPECT_EQ(matrix.At(2, 3), 1002);
    EXPECT_THROW(matrix.At(3, 1), TRkMatrixException);
    EXPECT_THROW(matrix.At(0, 1), TRkMatrixException);
    EXPECT_THROW(TRkMatrix().At(1, 1), TRkMatrixException);
}

TEST(Matrix, namesTheExistingZonesWhenAZoneIsMissing) {
    auto const reason = [](TRkMatrix const& matrix, int origin, int destination) {
        try {
            return std::to_string(matrix.At(origin, destination));
        } catch (TRkMatrixException const& error) {
            return std::string(error.what());
        }
    };
    TRkMatrix matrix = numbered(3, 3);
    EXPECT_EQ(reason(matrix, 1, 4),
        "cannot read OD pair 1, 4: there is no zone 4; the matrix has no zone numbers, so they count from 1 to 3");
    matrix.SetZones({9500, 1001, 30});
    EXPECT_EQ(
        reason(matrix, 285, 30), "cannot read OD pair 285, 30: there is no zone 285; zone numbers run from 30 to 9500");
    TempDir const directory;
    std::string const file = directory.file("a.skm");
    ASSERT_TRUE(save(matrix, file));
    EXPECT_EQ(reason(opened(file), 30, 1),
        "cannot read OD pair 30, 1 in " + file + ": there is no zone 1; zone numbers run from 30 to 9500");
}

TEST(Matrix, refusesSpansOutsideTheMatrix) {
    TRkMatrix none;
    EXPECT_THROW(none.Elements(), TRkMatrixException);
    EXPECT_THROW(none.WritableElements(), TRkMatrixException);
    TRkMatrix matrix = numbered(2, 2);
    EXPECT_THROW(matrix.Row(2), TRkMatrixException);
    EXPECT_THROW(matrix.WritableRow(-1), TRkMatrixException);
}

TEST(Matrix, objectsInDifferentThreadsAreIndependent) {
    TempDir const directory;
    std::atomic<int> correct = 0;
    auto const work = [&](int number) {
        std::string const file = directory.file(std::to_string(number) + ".skm");
        TRkMatrix const source = times(40 + number, 30);
        for (int round = 0; round < 5; ++round)
            if (save(source, file) && difference(opened(file), source).empty()) ++correct;
    };
    {
        std::vector<std::jthread> threads;
        for (int number = 0; number < 4; ++number) threads.emplace_back(work, number);
    }
    EXPECT_EQ(correct, 20);
}

TEST(Matrix, theKindCanBeChanged) {
    TRkMatrix matrix = numbered(1, 1);
    matrix.MatrixKind(mkTransit);
    EXPECT_EQ(matrix.MatrixKind(), mkTransit);
    EXPECT_EQ(matrix.Header().Kind(), 6u);
}
