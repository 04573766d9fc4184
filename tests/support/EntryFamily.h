#pragma once

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkTableProxy.h>
#include <cubes/matrix/RkLockState.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>
#include <cubes/text/CountedPtr.h>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "support/Backend.h"
#include "support/CubeTesting.h"

class TRkMatrix;
class TRkMatrixHeader;

namespace cubes::test {

/// Whether the caller passes purpose, mode, time and user zero-based.
enum class Counting { fromOne, fromZero };

/// One of a family's overloads for copying and moving.
struct Form {
    char const* name;
    bool moves;
    /// The source is an entry of another catalogue.
    bool isBetween;
    /// Both cubes are given by name.
    bool isByName;
    /// The error of this form when the target must not exist but does.
    char const* refusal;
};

/// The operations that four-key cubes and six-key results share: on the entries of one cube, which differ in their last
/// key part only. Entry n is 1/1/1/n or 1/1/1/1/1/n.
class EntryFamily {
public:
    using Table = CountedPtr<Rktable::TRkTableProxy>;
    /// The cube number and all parts.
    using Key = std::vector<short>;

    virtual ~EntryFamily() = default;

    /// The columns of a key, in their order.
    virtual std::vector<std::string> keyColumns() const = 0;
    virtual Key key(short n, Counting counting = Counting::fromOne) const = 0;
    /// "1-1-1-1-2.odm" for entry 2.
    virtual std::string fileOf(short n) const = 0;
    virtual std::string alias() const = 0;
    virtual std::string schema() const = 0;
    virtual std::string directory() const = 0;
    /// The matrix type of written files.
    virtual int matrixType() const = 0;
    virtual std::span<Form const> forms() const = 0;
    /// The result of copying and moving a missing source, or names that lead out of the directory, which do nothing.
    virtual bool resultOfNothingToTransfer() const = 0;
    /// The same catalogue, copied.
    virtual std::unique_ptr<EntryFamily> copied() const = 0;
    /// Another cube of the same catalogue, if the family has cubes by name; otherwise the same cube.
    virtual std::unique_ptr<EntryFamily> otherCube() const = 0;

    virtual void setSchema(std::string const& schema) = 0;
    virtual void findSchema() = 0;
    virtual void setConnection(Pgaccess::TPgConnection* connection) = 0;

    virtual Table open() const = 0;
    virtual bool close(Table& table) const = 0;
    virtual bool lookUp(Table const& table, Key const& key, Counting counting = Counting::fromOne) const = 0;
    virtual bool addRow(Table const& table, Key const& key, Counting counting = Counting::fromOne) = 0;
    virtual std::string fileName(Table const& table, Key const& key) const = 0;
    /// The content of the list of entries, or "false".
    virtual std::string listed() const = 0;

    bool add(short n, Counting counting = Counting::fromOne) { return addRow(open(), key(n, counting), counting); }
    virtual bool check(short n, Counting counting = Counting::fromOne) const = 0;
    virtual std::string fileName(short n, Counting counting = Counting::fromOne) const = 0;
    virtual bool clear(short n, Counting counting = Counting::fromOne) = 0;
    virtual bool erase(short n, Counting counting = Counting::fromOne) = 0;
    virtual bool remove(short n, Counting counting = Counting::fromOne) = 0;
    virtual bool clearAll() = 0;

    /// Clears the entry, adds it and writes its file.
    virtual bool set(short n, TRkMatrix const& matrix, RkLockState lock = lsReadWrite) = 0;
    /// Writes only the entry's file.
    virtual bool save(
        TRkMatrix const& matrix, short n, RkLockState lock = lsReadWrite, Counting counting = Counting::fromOne) = 0;
    virtual std::unique_ptr<TRkMatrix> get(short n, RkLockState lock, Counting counting = Counting::fromOne) const = 0;
    virtual double element(
        short n, int row, int column, RkLockState lock = lsRead, Counting counting = Counting::fromOne) const = 0;
    virtual TRkMatrixHeader const* header(short n, Counting counting = Counting::fromOne) const = 0;

    /// Adds the entry with a small matrix that begins with this element.
    bool store(short n, float first) { return set(n, smallMatrix(first)); }
    /// The first element that a later reader finds there; -1 without a matrix.
    double first(short n) const { return firstElementOf(get(n, lsRead)); }

    virtual bool raise(short n) = 0;
    virtual bool lower(short n) = 0;
    virtual bool isCorrect(short n) const = 0;

    /// Copies or moves entry `from` of the source to entry `to` of this cube.
    virtual bool run(Form const& form, EntryFamily const& source, short from, short to, bool failIfExists) = 0;
};

enum class Family { fourKeys, results };

/// The cube of a family that tests use: the four-key cube "Base", number 1, or the skim cube.
std::unique_ptr<EntryFamily> entryFamily(Family family, TRkGlobalSettings* settings, std::string const& directory = {});

struct FamilyOnBackend {
    Family family;
    Backend backend;
};

/// "four_keys_sqlite"
std::string nameOf(FamilyOnBackend const& parameter);
inline void PrintTo(FamilyOnBackend const& parameter, std::ostream* out) {
    *out << nameOf(parameter);
}

/// A fresh project on either backend, with an empty cube of either family.
class EntriesTest : public testing::TestWithParam<FamilyOnBackend> {
protected:
    void SetUp() override;

    Backend backend() const { return GetParam().backend; }
    TestProject& project() { return *project_; }
    EntryFamily& entries() { return *entries_; }
    /// The cube of the same family in another project or directory.
    std::unique_ptr<EntryFamily> entriesOf(TRkGlobalSettings* settings, std::string const& directory = {}) const {
        return entryFamily(GetParam().family, settings, directory);
    }

    void execute(std::string const& statement) { project().project().connection()->Execute(statement); }
    std::string read(std::string const& query) { return joined(project().sql(query)); }
    std::string table() { return tableOf(project(), entries()); }
    static std::string tableOf(TestProject& project, EntryFamily const& entries) {
        return project.database().table(entries.schema(), entries.alias());
    }
    /// The column of the last key part.
    std::string lastColumn() { return "\"" + entries().keyColumns().back() + "\""; }
    /// The entry table as an independent client reads it: "2|0|1-1-1-1-2.odm" per line for entry 2.
    std::string rows();
    /// The line of an entry in rows().
    static std::string row(EntryFamily const& entries, short n, std::string const& counter = "0") {
        return std::to_string(n) + "|" + counter + "|" + entries.fileOf(n) + "\n";
    }
    std::string row(short n, std::string const& counter = "0") { return row(entries(), n, counter); }
    /// Sets another file name in the row of entry `n`.
    void name(short n, std::string const& filename);
    /// Replaces the entry table by one with the key columns and these.
    void defineTable(std::string const& columns, std::string const& constraint);

    std::string files() { return filesIn(entries().directory()); }
    std::string pathOf(std::string const& file) { return entries().directory() + file; }
    std::string path(short n) { return pathOf(entries().fileOf(n)); }

private:
    std::unique_ptr<TestProject> project_;
    std::unique_ptr<EntryFamily> entries_;
};

}

/// Makes four tests of every TEST_P of a suite over EntriesTest: "Suite.claim/four_keys_sqlite",
/// "Suite.claim/four_keys_postgres", "Suite.claim/results_sqlite" and "Suite.claim/results_postgres".
#define CUBES_BOTH_FAMILIES(suite)                                                                                     \
    INSTANTIATE_TEST_SUITE_P(, suite,                                                                                  \
        testing::Values(cubes::test::FamilyOnBackend{cubes::test::Family::fourKeys, cubes::test::Backend::sqlite},     \
            cubes::test::FamilyOnBackend{cubes::test::Family::fourKeys, cubes::test::Backend::postgres},               \
            cubes::test::FamilyOnBackend{cubes::test::Family::results, cubes::test::Backend::sqlite},                  \
            cubes::test::FamilyOnBackend{cubes::test::Family::results, cubes::test::Backend::postgres}),               \
        [](auto const& parameter) { return cubes::test::nameOf(parameter.param); })
