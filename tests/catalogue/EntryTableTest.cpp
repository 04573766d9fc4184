// Entry tables of four-key cubes and six-key results: rows, file names and usage counters.

#include "catalogue/EntryTable.h"

#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>

#include <limits>
#include <stdexcept>

#include "catalogue/CatalogueTest.h"
#include "host/platform/Paths.h"
#include "support/ChildTask.h"
#include "support/EntryFamily.h"

namespace cubes::test {
namespace {

class EntryTable : public EntriesTest {};

CUBES_BOTH_FAMILIES(EntryTable);

// The project's entry table under an alias of its own, after a table of another alias.
class Renamed : public TRkDBDataDictionary {
public:
    Renamed(std::string table, std::string alias) : table_(std::move(table)), alias_(std::move(alias)) {}
    bool BuildDataTables(
        char const*, std::vector<CountedPtr<Rktable::TRkTableProxy>>& tables, AnsiString const& schema) override {
        for (std::string const& alias : {std::string("something else"), alias_})
            tables.push_back(CountedPtr(new Rktable::TRkTableProxy(table_, schema.str(), alias)));
        return true;
    }

private:
    std::string table_;
    std::string alias_;
};

TEST_P(EntryTable, opensUnderItsAlias) {
    auto table = entries().open();
    ASSERT_TRUE(table);
    EXPECT_EQ(table->GetAliasPropertyWrapper().AsString().str(), entries().alias());
    EXPECT_TRUE(table->GetEof());
    EXPECT_TRUE(entries().close(table));
    EXPECT_FALSE(table);
}

TEST_P(EntryTable, isFoundByItsAliasInAnyLetterCase) {
    std::string const alias = entries().alias();
    struct {
        std::string alias;
        bool opens;
    } const cases[] = {{alias, true}, {"CUBE" + alias.substr(4), true}, {"cube9data1", false}};
    for (auto const& [name, opens] : cases) {
        Renamed dictionary(alias, name);
        TRkGlobalSettings settings(TRkFString(project().matrixDirectory()), project().settings()->WorkingDirectory());
        settings.Set("RkLib.DataDictionary", &dictionary);
        auto const table = entriesOf(&settings)->open();
        EXPECT_EQ(table ? table->GetAliasPropertyWrapper().AsString().str() : "", opens ? name : "");
    }
}

TEST_P(EntryTable, isMissingWithoutSettingsOrInAnotherSchema) {
    EXPECT_FALSE(entriesOf(nullptr)->open());
    entries().add(1);
    entries().setSchema("nowhere");
    EXPECT_FALSE(entries().open());
    EXPECT_FALSE(entries().add(2));
    EXPECT_FALSE(entries().check(1));
    EXPECT_FALSE(entries().clear(1));
    EXPECT_EQ(entries().fileName(1), "");
    EXPECT_EQ(entries().listed(), "false\n");
    entries().findSchema();
    EXPECT_TRUE(entries().open());
    EXPECT_TRUE(entries().check(1));
}

TEST_P(EntryTable, isMissingAlsoWhenItIsDroppedDuringUse) {
    entries().add(1);
    auto const open = entries().open();
    ASSERT_TRUE(open);
    project().execute("drop table " + table());
    EXPECT_FALSE(entries().lookUp(open, entries().key(1)));
    EXPECT_FALSE(entries().check(1));
    EXPECT_FALSE(entries().clearAll());
}

TEST_P(EntryTable, returnsNothingForAnEmptyCursor) {
    EXPECT_FALSE(entries().lookUp({}, entries().key(1)));
    EXPECT_FALSE(entries().addRow({}, entries().key(1)));
    EXPECT_EQ(entries().fileName({}, entries().key(1)), "");
}

TEST_P(EntryTable, addsARowWithItsFileNameAndACounterOfZero) {
    EXPECT_TRUE(entries().add(2));
    EXPECT_EQ(rows(), row(2));
    EXPECT_EQ(files(), "");
}

TEST_P(EntryTable, storesZeroBasedPartsOneHigher) {
    EXPECT_TRUE(entries().add(2, Counting::fromZero));
    EXPECT_EQ(rows(), row(2));
    EXPECT_TRUE(entries().check(2));
    EXPECT_TRUE(entries().check(2, Counting::fromZero));
    auto const open = entries().open();
    EXPECT_FALSE(entries().lookUp(open, entries().key(2), Counting::fromZero));
    EXPECT_FALSE(entries().lookUp(open, entries().key(2, Counting::fromZero)));
}

TEST_P(EntryTable, findsEntriesByTheWholeKey) {
    EntryFamily::Key key = entries().key(7);
    for (std::size_t part = 1; part < key.size(); ++part) key[part] = static_cast<short>(part);
    auto const open = entries().open();
    entries().addRow(open, key);
    EXPECT_TRUE(entries().lookUp(open, key));
    for (std::size_t part = 0; part < key.size(); ++part) {
        EXPECT_EQ(open->FieldByName(entries().keyColumns()[part].c_str())->AsInteger(), key[part]);
        EntryFamily::Key other = key;
        ++other[part];
        EXPECT_FALSE(entries().lookUp(open, other)) << part;
        ASSERT_TRUE(entries().lookUp(open, key));
    }
}

TEST_P(EntryTable, addsForAnyCubeNumberOnAnOpenCursor) {
    EntryFamily::Key key = entries().key(1);
    key.front() = 12;
    auto const open = entries().open();
    EXPECT_TRUE(entries().addRow(open, key));
    EXPECT_TRUE(entries().lookUp(open, key));
    EXPECT_NE(entries().fileName(open, key), "");
    EXPECT_FALSE(entries().check(1));
}

TEST_P(EntryTable, hasNoEntryBeyond16Bits) {
    auto const open = entries().open();
    for (std::size_t part = 1; part <= 4; ++part) {
        EntryFamily::Key key = entries().key(1);
        key[part] = std::numeric_limits<short>::max();
        EXPECT_FALSE(entries().addRow(open, key, Counting::fromZero)) << part;
        EXPECT_FALSE(entries().lookUp(open, key, Counting::fromZero)) << part;
        EXPECT_EQ(rows(), "");
        EXPECT_TRUE(entries().addRow(open, key)) << part;
        EXPECT_TRUE(entries().lookUp(open, key)) << part;
        execute("delete from " + table());
    }
}

TEST_P(EntryTable, namesTheFileOfTheRowInTheMatrixDirectory) {
    entries().add(1);
    EXPECT_EQ(entries().fileName(1), path(1));
    EXPECT_EQ(entries().fileName(1, Counting::fromZero), path(1));
    EXPECT_EQ(entries().fileName(entries().open(), entries().key(1)), path(1));
    EXPECT_EQ(entries().fileName(2), "");
    name(1, "Sub\\1.odm");
    EXPECT_EQ(entries().fileName(1), pathOf(std::string("Sub") + platform::pathDelimiter() + "1.odm"));
}

TEST_P(EntryTable, namesNoFileForARowThatLeadsOutOfTheDirectory) {
    entries().add(1);
    for (char const* const value : {"null", "''", "'../1.odm'", "'/etc/hosts'", "'.'"}) {
        project().execute("update " + table() + " set filename = " + value);
        EXPECT_EQ(entries().fileName(1), "") << value;
    }
}

TEST_P(EntryTable, addsNoRowWhenTheFileNameCannotBeFormed) {
    VersionGuard const version(3);
    auto const open = entries().open();
    EXPECT_THROW(entries().addRow(open, entries().key(1600)), TRkCubesException);
    EXPECT_TRUE(entries().addRow(open, entries().key(40)));
    std::string const pairs = entries().key(40).size() == 5 ? "0101010110.odm" : "010101010110.skm";
    EXPECT_EQ(rows(), "40|0|" + pairs + "\n");
}

TEST_P(EntryTable, worksWithOnlyTheKeyColumns) {
    std::string columns;
    for (auto const& column : entries().keyColumns()) columns += (columns.empty() ? "\"" : ", \"") + column + "\"";
    defineTable("", "primary key (" + columns + ")");
    EXPECT_TRUE(entries().add(1));
    EXPECT_TRUE(entries().add(1));
    EXPECT_TRUE(entries().check(1));
    EXPECT_EQ(entries().fileName(1), "");
    EXPECT_FALSE(entries().raise(1));
    EXPECT_FALSE(entries().lower(1));
    EXPECT_TRUE(entries().isCorrect(1));
    EXPECT_NE(entries().listed(), "");
    EXPECT_TRUE(entries().clear(1));
    EXPECT_EQ(entries().listed(), "");
}

TEST_P(EntryTable, passesOnARefusalThatIsNotARace) {
    execute("create unique index one_file on " + table() + " (filename)");
    entries().add(1);
    name(1, entries().fileOf(2));
    EXPECT_THROW(entries().add(2), TRkDatabaseException);
    EXPECT_FALSE(entries().check(2));
}

TEST_P(EntryTable, passesOnADatabaseError) {
    execute("alter table " + table() + " rename column mode to other");
    EXPECT_THROW(entries().check(1), TRkDatabaseException);
    EXPECT_THROW(entries().listed(), TRkDatabaseException);
}

TEST_P(EntryTable, isOnTheConnectionOfTheCatalogueWhicheverProjectIsCurrent) {
    entries().add(1);
    TestProject other(backend());
    EXPECT_TRUE(entries().check(1));
    EXPECT_TRUE(entries().copied()->check(1));
    EXPECT_TRUE(entries().add(2));
    EXPECT_EQ(rows(), row(1) + row(2));
}

TEST_P(EntryTable, isOnTheConnectionThatTheCatalogueWasGiven) {
    entries().add(1);
    TestProject other(backend());
    entries().setConnection(other.project().connection());
    EXPECT_FALSE(entries().check(1));
    EXPECT_TRUE(entries().add(2));
    EXPECT_EQ(rows(), row(1));
    EXPECT_EQ(joined(other.sql("select filename from " + tableOf(other, entries()))), entries().fileOf(2) + "\n");
}

TEST_P(EntryTable, listsItsEntriesInTheOrderOfTheirKeys) {
    for (short const n : {short{10}, short{2}, short{1}}) entries().add(n);
    std::string const listed = entries().listed();
    auto const place = [&](char const* last) { return listed.find(std::string(",1,") + last + ","); };
    EXPECT_LT(place("1"), place("2"));
    EXPECT_LT(place("2"), place("10"));
    EXPECT_NE(place("10"), std::string::npos);
}

class EntryUsage : public EntriesTest {
protected:
    void SetUp() override {
        EntriesTest::SetUp();
        if (!IsSkipped() && !HasFatalFailure()) entries().add(1);
    }
    std::string counters() { return read("select \"usageCounter\" from " + table() + " order by " + lastColumn()); }
    void setCounter(std::string const& value) {
        project().execute("update " + table() + " set \"usageCounter\" = " + value);
    }
};

CUBES_BOTH_FAMILIES(EntryUsage);

TEST_P(EntryUsage, isRaisedAndLoweredByOneButNotBelowZero) {
    EXPECT_TRUE(entries().raise(1));
    EXPECT_TRUE(entries().raise(1));
    EXPECT_EQ(counters(), "2\n");
    EXPECT_TRUE(entries().lower(1));
    EXPECT_EQ(counters(), "1\n");
    EXPECT_TRUE(entries().lower(1));
    EXPECT_TRUE(entries().lower(1));
    EXPECT_EQ(counters(), "0\n");
}

TEST_P(EntryUsage, makesAnEntryIncorrectWhileItIsAboveZero) {
    EXPECT_TRUE(entries().isCorrect(1));
    entries().raise(1);
    entries().raise(1);
    EXPECT_FALSE(entries().isCorrect(1));
    entries().lower(1);
    EXPECT_FALSE(entries().isCorrect(1));
    entries().lower(1);
    EXPECT_TRUE(entries().isCorrect(1));
}

TEST_P(EntryUsage, ofNullCountsAsZeroStaysNullWhenLoweredAndIsRaisedToOne) {
    setCounter("null");
    EXPECT_TRUE(entries().isCorrect(1));
    EXPECT_TRUE(entries().lower(1));
    EXPECT_EQ(counters(), "NULL\n");
    EXPECT_TRUE(entries().raise(1));
    EXPECT_EQ(counters(), "1\n");
}

TEST_P(EntryUsage, belowZeroIsIncorrectAndNotLowered) {
    setCounter("-3");
    EXPECT_FALSE(entries().isCorrect(1));
    EXPECT_TRUE(entries().lower(1));
    EXPECT_EQ(counters(), "-3\n");
    EXPECT_TRUE(entries().raise(1));
    EXPECT_EQ(counters(), "-2\n");
}

TEST_P(EntryUsage, ofAMissingEntryOrTableIsFalse) {
    EXPECT_FALSE(entries().raise(2) || entries().lower(2) || entries().isCorrect(2));
    entries().setSchema("nowhere");
    EXPECT_FALSE(entries().raise(1) || entries().lower(1) || entries().isCorrect(1));
    entries().findSchema();
    auto const none = entriesOf(nullptr);
    EXPECT_FALSE(none->raise(1) || none->lower(1) || none->isCorrect(1));
    EXPECT_EQ(counters(), "0\n");
}

TEST_P(EntryUsage, findsACounterColumnInOtherLetterCase) {
    execute("alter table " + table() + " rename column \"usageCounter\" to usagecounter");
    EXPECT_TRUE(entries().raise(1));
    EXPECT_EQ(read("select usagecounter from " + table()), "1\n");
    EXPECT_FALSE(entries().isCorrect(1));
}

TEST_P(EntryUsage, doesNotAffectOtherEntries) {
    entries().add(2);
    EXPECT_TRUE(entries().raise(2));
    EXPECT_EQ(counters(), "0\n1\n");
}

constexpr int processes = 4;
constexpr int raises = 25;

template <Family family>
void raiseInThisProcess(int, std::string const& root) {
    Project const own = Project::open(root);
    auto const entries = entryFamily(family, own.settings());
    for (int i = 0; i < raises; ++i)
        if (!entries->raise(1)) throw std::runtime_error("not raised");
}

ChildTask const usersOfFourKeys("users of four-key cubes", raiseInThisProcess<Family::fourKeys>);
ChildTask const usersOfResults("users of results", raiseInThisProcess<Family::results>);

TEST_P(EntryUsage, isCorrectAfterConcurrentChanges) {
    auto const& task = GetParam().family == Family::fourKeys ? usersOfFourKeys : usersOfResults;
    EXPECT_EQ(task.inProcesses(processes, project().root()), processes);
    EXPECT_EQ(counters(), std::to_string(processes * raises) + "\n");
}

}
}
