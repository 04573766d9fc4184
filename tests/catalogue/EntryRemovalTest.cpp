// Removing entries, in four-key cubes and six-key results.

#include <filesystem>

#include "support/EntryFamily.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class EntryRemoval : public EntriesTest {};

CUBES_BOTH_FAMILIES(EntryRemoval);

TEST_P(EntryRemoval, deletesRowAndFile) {
    entries().store(1, 1);
    entries().store(2, 2);
    EXPECT_TRUE(entries().clear(1));
    EXPECT_EQ(rows(), row(2));
    EXPECT_EQ(files(), entries().fileOf(2) + "\n");
    EXPECT_TRUE(entries().clear(2, Counting::fromZero));
    EXPECT_EQ(rows() + files(), "");
}

TEST_P(EntryRemoval, ofAMissingEntryIsFalseAndKeepsEveryFile) {
    entries().store(1, 1);
    writeFile(path(2), "not of an entry");
    std::string const before = files();
    EXPECT_FALSE(entries().clear(2));
    EXPECT_FALSE(entries().otherCube()->clear(2));
    EXPECT_EQ(rows(), row(1));
    EXPECT_EQ(files(), before);
}

TEST_P(EntryRemoval, hasThreeEquivalentFunctions) {
    using Operation = bool (EntryFamily::*)(short, Counting);
    for (Operation const operation : {&EntryFamily::clear, &EntryFamily::erase, &EntryFamily::remove})
        for (Counting const counting : {Counting::fromOne, Counting::fromZero}) {
            entries().store(1, 1);
            EXPECT_TRUE((entries().*operation)(1, counting));
            EXPECT_EQ(rows() + files(), "");
            EXPECT_FALSE((entries().*operation)(1, counting));
        }
}

TEST_P(EntryRemoval, ignoresTheUsageCounter) {
    entries().store(1, 1);
    ASSERT_TRUE(entries().raise(1));
    EXPECT_TRUE(entries().clear(1));
    EXPECT_EQ(rows() + files(), "");
}

TEST_P(EntryRemoval, deletesTheRowOfAMissingFile) {
    entries().store(1, 1);
    fs::remove(path(1));
    EXPECT_TRUE(entries().clear(1));
    entries().add(2);
    EXPECT_TRUE(entries().clear(2));
    EXPECT_EQ(rows(), "");
}

TEST_P(EntryRemoval, deletesAFileThatTwoRowsNameWithTheFirstRow) {
    entries().store(1, 1);
    entries().store(2, 2);
    name(2, entries().fileOf(1));
    EXPECT_TRUE(entries().clear(2));
    EXPECT_EQ(files(), entries().fileOf(2) + "\n");
    EXPECT_TRUE(entries().check(1));
}

TEST_P(EntryRemoval, deletesNothingOutsideTheDirectory) {
    std::string const outside = pathOf("../outside.odm");
    writeFile(outside, "precious");
    entries().store(2, 2);
    std::string const everything = files();
    for (std::string const& stored :
        {std::string("../outside.odm"), std::string("..\\outside.odm"), std::string("x/../../outside.odm"),
            fs::absolute(outside).string(), std::string(), std::string("."), std::string("x/..")}) {
        SCOPED_TRACE(stored);
        entries().add(1);
        name(1, stored);
        EXPECT_TRUE(entries().clear(1));
        EXPECT_EQ(rows(), row(2));
        EXPECT_EQ(readFile(outside), "precious");
        EXPECT_EQ(files(), everything);
    }
    EXPECT_TRUE(fs::is_directory(entries().directory()));
}

TEST_P(EntryRemoval, ofAWholeCubeDeletesOnlyItsEntries) {
    auto another = entries().key(7);
    --another.front();
    entries().addRow(entries().open(), another);
    writeFile(pathOf("kept"), "of no entry");
    std::string const kept = rows();
    for (short n = 1; n <= 3; ++n) entries().store(n, 1);
    entries().add(4);
    execute("update " + table() + " set filename = null where " + lastColumn() + " = 4");
    EXPECT_TRUE(entries().clearAll());
    EXPECT_EQ(rows(), kept);
    EXPECT_EQ(files(), "kept\n");
    EXPECT_TRUE(entries().clearAll());
    entries().setSchema("nowhere");
    EXPECT_FALSE(entries().clearAll());
}

}
}
