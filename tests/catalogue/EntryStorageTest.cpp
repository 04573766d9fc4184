// Writing and reading matrices, in four-key cubes and six-key results.

#include <cubes/matrix/TRkMatrixException.h>

#include <filesystem>

#include "support/EntryFamily.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class EntryStorage : public EntriesTest {
protected:
    /// A writer of the file of entry 1, which holds its lock.
    TRkMatrix writer() {
        return TRkMatrix(2, 3, static_cast<RkMatrixType>(entries().matrixType()), path(1).c_str(), 1, "", "", true,
            mkDefault, lsReadWrite);
    }
};

CUBES_BOTH_FAMILIES(EntryStorage);

TEST_P(EntryStorage, createsRowAndFile) {
    EXPECT_TRUE(entries().store(2, 5));
    EXPECT_EQ(rows(), row(2));
    EXPECT_EQ(files(), entries().fileOf(2) + "\n");
    for (Counting const counting : {Counting::fromOne, Counting::fromZero}) {
        auto const found = entries().get(2, lsRead, counting);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->Rows(), 2);
        EXPECT_EQ(found->Columns(), 3);
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 3; ++column)
                EXPECT_EQ(found->RowAt(row, 8)[column], 5.0f + static_cast<float>(10 * row + column));
        EXPECT_EQ(found->FileName(), path(2));
        EXPECT_EQ(found->Type(), entries().matrixType());
        EXPECT_EQ(found->StateCode(), lsRead);
    }
}

TEST_P(EntryStorage, clearsAnEntryThatExistsFirst) {
    entries().add(1);
    name(1, "old.odm");
    writeFile(pathOf("old.odm"), "old");
    entries().raise(1);
    EXPECT_TRUE(entries().store(1, 7));
    EXPECT_EQ(rows(), row(1));
    EXPECT_EQ(files(), entries().fileOf(1) + "\n");
    EXPECT_EQ(entries().first(1), 7.0);
}

TEST_P(EntryStorage, clearsNothingWhenTheNewFileNameCannotBeFormed) {
    ASSERT_TRUE(entries().store(2000, 1));
    {
        VersionGuard const version(3);
        EXPECT_THROW(entries().store(2000, 2), TRkCubesException);
    }
    EXPECT_EQ(rows(), row(2000));
    EXPECT_EQ(entries().first(2000), 1.0);
}

TEST_P(EntryStorage, savesWithoutARow) {
    EXPECT_TRUE(entries().save(smallMatrix(3), 1, lsReadWrite, Counting::fromZero));
    EXPECT_EQ(files(), entries().fileOf(1) + "\n");
    EXPECT_EQ(rows(), "");
    entries().add(1);
    EXPECT_EQ(entries().first(1), 3.0);
}

TEST_P(EntryStorage, savesUnderTheComputedNameWhateverTheRowNames) {
    entries().add(1);
    name(1, "other.odm");
    EXPECT_TRUE(entries().save(smallMatrix(1), 1));
    EXPECT_EQ(files(), entries().fileOf(1) + "\n");
    EXPECT_EQ(entries().get(1, lsRead), nullptr);
}

TEST_P(EntryStorage, replacesTheFileOfAnOpenReaderWhichKeepsItsState) {
    entries().store(1, 1);
    auto const reader = entries().get(1, lsRead);
    ASSERT_TRUE(reader);
    EXPECT_TRUE(entries().save(smallMatrix(2), 1));
    EXPECT_EQ(firstElementOf(reader), 1.0);
    EXPECT_EQ(entries().first(1), 2.0);
}

TEST_P(EntryStorage, readsNullForAMissingEntryOrFile) {
    entries().store(1, 1);
    ASSERT_EQ(entries().first(1), 1.0);
    EXPECT_EQ(entries().get(2, lsRead), nullptr);
    writeFile(path(1), "no matrix");
    EXPECT_EQ(entries().get(1, lsRead), nullptr);
    fs::remove(path(1));
    EXPECT_EQ(entries().get(1, lsRead), nullptr);
    EXPECT_EQ(entries().header(1), nullptr);
    name(1, "../" + entries().fileOf(1));
    EXPECT_EQ(entries().get(1, lsRead), nullptr);
}

TEST_P(EntryStorage, passesOnTheLockState) {
    entries().store(1, 1);
    for (int const lock : {0, 1, 2, 3, 8, 11, 99}) {
        auto const found = entries().get(1, static_cast<RkLockState>(lock));
        ASSERT_TRUE(found) << lock;
        EXPECT_EQ(found->StateCode(), lock);
    }
}

TEST_P(EntryStorage, readsOneElement) {
    entries().store(1, 0.1f);
    EXPECT_EQ(entries().element(1, 0, 0), static_cast<double>(0.1f));
    EXPECT_EQ(entries().element(1, 1, 2, lsRead, Counting::fromZero), static_cast<double>(0.1f + 12));
    EXPECT_EQ(entries().element(2, 0, 0), -1.0);
    struct {
        int row;
        int column;
    } const outside[] = {{2, 0}, {-1, 0}, {0, 3}, {0, -1}};
    for (auto const& [row, column] : outside)
        EXPECT_THROW(entries().element(1, row, column), TRkMatrixException) << row << " " << column;
}

TEST_P(EntryStorage, releasesTheLockAfterReadingOneElement) {
    entries().store(1, 1);
    EXPECT_EQ(entries().element(1, 0, 0, lsReadWrite), 1.0);
    EXPECT_EQ(entries().element(1, 0, 0, lsReadWrite), 1.0);
    EXPECT_TRUE(entries().get(1, lsReadWrite));
}

TEST_P(EntryStorage, refusesASecondWriter) {
    entries().store(1, 1);
    {
        TRkMatrix const first = writer();
        ASSERT_TRUE(first.IsValid());
        EXPECT_EQ(entries().get(1, lsReadWrite), nullptr);
        EXPECT_EQ(entries().element(1, 0, 0, lsReadWrite), -1.0);
        EXPECT_FALSE(entries().save(smallMatrix(2), 1));
        EXPECT_EQ(entries().first(1), 1.0);
    }
    {
        auto const opened = entries().get(1, lsReadWrite);
        ASSERT_TRUE(opened);
        EXPECT_EQ(entries().get(1, lsReadWrite), nullptr);
    }
    EXPECT_TRUE(entries().save(smallMatrix(2), 1));
}

TEST_P(EntryStorage, readsAHeaderWithoutElements) {
    entries().store(1, 1);
    for (Counting const counting : {Counting::fromOne, Counting::fromZero}) {
        TRkMatrixHeader const* const header = entries().header(1, counting);
        ASSERT_NE(header, nullptr);
        EXPECT_EQ(header->Rows(), 2);
        EXPECT_EQ(header->Columns(), 3);
        EXPECT_EQ(header->Type(), entries().matrixType());
    }
    EXPECT_EQ(entries().header(2), nullptr);
}

TEST_P(EntryStorage, keepsZoneNumbers) {
    TRkMatrix square = TRkMatrix::inMemory(2, 2);
    square.SetZones({101, 205});
    ASSERT_TRUE(entries().set(1, square));
    auto const found = entries().get(1, lsRead);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->Zones(), (std::vector<std::int32_t>{101, 205}));
}

TEST_P(EntryStorage, isFalseWhenTheFileCannotBeCreated) {
    auto const elsewhere = entriesOf(project().settings(), pathOf("missing"));
    EXPECT_FALSE(elsewhere->save(smallMatrix(1), 1));
    EXPECT_EQ(files(), "");
    fs::create_directory(path(1));
    EXPECT_FALSE(entries().save(smallMatrix(1), 1));
    EXPECT_EQ(files(), entries().fileOf(1) + "\n");
}

TEST_P(EntryStorage, writesAChangedMatrixThatIsBoundToTheEntrysOwnFile) {
    for (bool const clearsFirst : {false, true}) {
        entries().store(1, 1);
        auto const own = entries().get(1, lsChanged);
        ASSERT_TRUE(own);
        own->RowAt(0, 8)[0] = 99;
        EXPECT_TRUE(clearsFirst ? entries().set(1, *own) : entries().save(*own, 1));
        EXPECT_EQ(entries().first(1), 99.0);
    }
}

}
}
