// How the eight forms of copying and moving four-key entries differ from those of other entries: cubes, their names,
// counters and the preceding checks.

#include <array>
#include <filesystem>

#include "matcubes/MatCubesTest.h"
#include "support/EntryFamily.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

/// One end of a transfer: the entry 1/1/1/`user` of a cube, by its number or by its name.
struct End {
    short cubenr;
    char const* name;
    short user;
};

constexpr End end(short cubenr, short user) {
    constexpr std::array names = {"Base", "Other", "New", "Newer"};
    return {cubenr, cubenr > 0 ? names[static_cast<std::size_t>(cubenr - 1)] : "StopCube", user};
}

struct Flags {
    bool failIfExists = false;
    bool zeroBased = false;
};

constexpr Flags failIfExists = {true, false};

/// A project with the cubes 1 "Base" and 2 "Other", whose entries differ only in their user.
class MatCubesTransfer : public MatCubesTest {
protected:
    void SetUp() override {
        MatCubesTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        family_ = entryFamily(Family::fourKeys, project().settings());
        other_.emplace(cubes());
    }

    std::span<Form const> forms() const { return family_->forms(); }
    /// Another catalogue of the same cubes.
    TRkMatCubes& other() { return *other_; }
    bool run(Form const& form, End from, End to, Flags flags = {}) {
        auto const transfer = [&](auto a, auto b) {
            // The ends differ only in the user, also when the parts are zero-based.
            short const one = flags.zeroBased ? 0 : 1;
            bool const fails = flags.failIfExists;
            bool const zero = flags.zeroBased;
            if (!form.isBetween && form.moves)
                return cubes().Move(a, one, one, one, from.user, b, one, one, one, to.user, fails, zero);
            if (!form.isBetween)
                return cubes().Copy(a, one, one, one, from.user, b, one, one, one, to.user, fails, zero);
            if (form.moves)
                return cubes().Move(other(), a, one, one, one, from.user, b, one, one, one, to.user, fails, zero);
            return cubes().Copy(other(), a, one, one, one, from.user, b, one, one, one, to.user, fails, zero);
        };
        return form.isByName ? transfer(from.name, to.name) : transfer(from.cubenr, to.cubenr);
    }
    /// A target whose cube passes the form's check when the target must not exist: by name within a catalogue, source
    /// and target must be two cubes, otherwise one.
    static End targetFor(Form const& form, short user) { return end(form.isByName && !form.isBetween ? 2 : 1, user); }

    void add(End at) { ASSERT_TRUE(cubes().Add(cubes().Open(), at.cubenr, 1, 1, 1, at.user, false)); }
    void store(End at, float first) {
        add(at);
        ASSERT_TRUE(cubes().SaveMatrix(smallMatrix(first), at.cubenr, 1, 1, 1, at.user, lsNone, false));
    }
    bool has(End at) { return cubes().Check(at.cubenr, 1, 1, 1, at.user, false); }
    double first(End at) { return firstElement(at.cubenr, 1, 1, 1, at.user); }
    std::string file(End at) { return pathOf(fileName(at)); }
    static std::string fileName(End at) {
        return std::to_string(at.cubenr) + "-1-1-1-" + std::to_string(at.user) + ".odm";
    }
    /// Removes all entries, files and further cubes, for the next form.
    void clear() {
        execute("delete from " + table());
        execute("delete from cube where cubenr > 2");
        for (auto const& file : fs::directory_iterator(project().matrixDirectory())) fs::remove_all(file);
    }
    void execute(std::string const& statement) { project().project().connection()->Execute(statement); }
    /// Everything that a refused transfer leaves unchanged.
    std::string state() { return rows() + cubeRows() + files(); }

private:
    std::unique_ptr<EntryFamily> family_;
    std::optional<TRkMatCubes> other_;
};

CUBES_BOTH_BACKENDS(MatCubesTransfer);

TEST_P(MatCubesTransfer, movesOrCopiesToAnotherCubeAndKeepsTheTargetsCounter) {
    for (auto const& form : forms()) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 5);
        cubes().incUsage(1, 1, 1, 1, 1);
        EXPECT_TRUE(run(form, end(1, 1), end(2, 3)));
        std::string const source = form.moves ? "" : "1|1|1|1|1|1|1-1-1-1-1.odm\n";
        EXPECT_EQ(rows(), source + "2|1|1|1|3|0|2-1-1-1-3.odm\n");
        store(end(1, 1), 6);
        cubes().incUsage(2, 1, 1, 1, 3);
        EXPECT_TRUE(run(form, end(1, 1), end(2, 3)));
        EXPECT_EQ(rows(), source + "2|1|1|1|3|1|2-1-1-1-3.odm\n");
        EXPECT_EQ(first(end(2, 3)), 6.0);
        clear();
    }
}

// The cubes are checked before the entry is looked up.
TEST_P(MatCubesTransfer, ofAMissingSourceByNameKeepsTheNewCube) {
    for (auto const& form : forms()) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        EXPECT_TRUE(run(form, end(1, 1), end(3, 1)));
        EXPECT_EQ(cubeRows(), "1|Base\n2|Other\n3|New\n");
        EXPECT_EQ(rows() + files(), "");
        clear();
    }
}

TEST_P(MatCubesTransfer, byNameWithoutAnEntryTableKeepsTheNewCube) {
    for (auto const& form : forms()) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        cubes().setMatrixSchema("nowhere");
        EXPECT_FALSE(run(form, end(1, 1), end(3, 1)));
        cubes().FindMatrixSchema();
        EXPECT_EQ(cubeRows(), "1|Base\n2|Other\n3|New\n");
        clear();
    }
}

TEST_P(MatCubesTransfer, ofADirectoryIsFalseAndLosesNothing) {
    for (auto const& form : forms()) {
        SCOPED_TRACE(form.name);
        add(end(1, 1));
        fs::create_directory(file(end(1, 1)));
        writeFile(file(end(1, 1)) + "/inner", "precious");
        store(end(2, 1), 2);
        std::string const before = state();
        EXPECT_FALSE(run(form, end(1, 1), end(2, 1)));
        EXPECT_EQ(state(), before);
        EXPECT_EQ(first(end(2, 1)), 2.0);
        EXPECT_FALSE(run(form, end(1, 1), end(2, 2)));
        EXPECT_FALSE(fs::exists(file(end(2, 2))));
        EXPECT_EQ(readFile(file(end(1, 1)) + "/inner"), "precious");
        clear();
    }
}

TEST_P(MatCubesTransfer, ontoItselfIsFalseAndLosesNothing) {
    store(end(1, 1), 1);
    cubes().incUsage(1, 1, 1, 1, 1);
    std::string const before = state();
    for (auto const& form : forms()) {
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(run(form, end(1, 1), end(1, 1)));
        EXPECT_EQ(first(end(1, 1)), 1.0);
    }
    EXPECT_EQ(state(), before);
}

TEST_P(MatCubesTransfer, shiftsZeroBasedKeysOfBothEnds) {
    for (auto const& form : forms()) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        EXPECT_TRUE(run(form, end(1, 0), end(2, 4), {false, true}));
        std::string const source = form.moves ? "" : "1|1|1|1|1|0|1-1-1-1-1.odm\n";
        EXPECT_EQ(rows(), source + "2|1|1|1|5|0|2-1-1-1-5.odm\n");
        EXPECT_EQ(first(end(2, 5)), 1.0);
        clear();
    }
}

TEST_P(MatCubesTransfer, toAKeyWithoutASuccessorIsTrueAndDoesNothing) {
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms()) {
        SCOPED_TRACE(form.name);
        EXPECT_TRUE(run(form, end(1, 0), end(2, 32767), {false, true}));
        EXPECT_TRUE(run(form, end(1, 32767), end(2, 1), {false, true}));
    }
    EXPECT_EQ(state(), before);
}

TEST_P(MatCubesTransfer, refusesAnEntryOntoItself) {
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms()) {
        if (form.isByName && !form.isBetween) continue;
        SCOPED_TRACE(form.name);
        EXPECT_EQ(cubeErrorOf([&] { run(form, end(1, 1), end(1, 1), failIfExists); }), form.refusal);
    }
    EXPECT_EQ(state(), before);
}

TEST_P(MatCubesTransfer, refusesAZeroBasedTarget) {
    for (auto const& form : forms()) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        store(targetFor(form, 2), 2);
        EXPECT_EQ(cubeErrorOf([&] { run(form, end(1, 0), targetFor(form, 1), {true, true}); }), form.refusal);
        clear();
    }
}

// Negative numbers count as present, but never as an existing cube.
TEST_P(MatCubesTransfer, refusesTheEntryOfANegativeCubeButNotTheCube) {
    for (auto const& form : forms()) {
        if (form.isByName) continue;
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        EXPECT_TRUE(run(form, end(1, 1), end(-8, 1), failIfExists));
        store(end(1, 1), 1);
        EXPECT_EQ(cubeErrorOf([&] { run(form, end(1, 1), end(-8, 1), failIfExists); }), form.refusal);
        clear();
    }
}

constexpr char const* cubeExists = "Cube already exists";

struct CubeError {
    char const* when;
    bool isByName;
    bool isBetween;
    End from;
    End to;
    bool failIfExists;
    char const* message;
};

constexpr CubeError cubeErrors[] = {
    {"no source", false, false, end(3, 1), end(2, 1), false, "From cube doesn't exist"},
    {"no target", false, false, end(1, 1), end(3, 1), false, "To cube doesn't exist"},
    {"no target, failing", false, false, end(1, 1), end(3, 1), true, "To cube doesn't exist"},
    {"another cube", false, false, end(1, 1), end(2, 9), true, cubeExists},
    {"no source", false, true, end(3, 1), end(2, 1), false, "From cube doesn't exist"},
    {"no target", false, true, end(1, 1), end(3, 1), false, "To cube doesn't exist"},
    {"another cube", false, true, end(1, 1), end(2, 9), true, cubeExists},
    {"the same cube by name", true, false, end(1, 1), end(1, 9), true, cubeExists},
    {"another cube by name", true, true, end(1, 1), end(2, 9), true, cubeExists},
};

TEST_P(MatCubesTransfer, checksTheCubesBeforeAnythingElse) {
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms())
        for (auto const& error : cubeErrors) {
            if (form.isByName != error.isByName || form.isBetween != error.isBetween) continue;
            SCOPED_TRACE(form.name + std::string(", ") + error.when);
            EXPECT_EQ(cubeErrorOf([&] {
                run(form, error.from, error.to, {error.failIfExists, false});
            }),
                error.message);
        }
    EXPECT_EQ(state(), before);
}

TEST_P(MatCubesTransfer, ofAnUnknownNameIsFalse) {
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms()) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(run(form, end(3, 1), end(2, 1)));
        EXPECT_FALSE(run(form, {0, nullptr, 1}, end(2, 1)));
        EXPECT_FALSE(run(form, end(1, 1), {0, nullptr, 1}));
        EXPECT_FALSE(run(form, end(3, 1), end(4, 1)));
    }
    EXPECT_EQ(state(), before);
}

TEST_P(MatCubesTransfer, toANewNameCreatesACube) {
    for (auto const& form : forms()) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        EXPECT_TRUE(run(form, end(1, 1), end(3, 1), failIfExists));
        EXPECT_EQ(cubeRows(), "1|Base\n2|Other\n3|New\n");
        EXPECT_EQ(first(end(3, 1)), 1.0);
        clear();
    }
}

// A cube that was removed only from the register may leave entries; its number is used again.
TEST_P(MatCubesTransfer, refusesAnEntryLeftByARemovedCubeAndKeepsTheNewCube) {
    for (auto const& form : forms()) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        store(end(3, 1), 3);
        std::string const before = rows() + files();
        EXPECT_EQ(cubeErrorOf([&] { run(form, end(1, 1), end(3, 1), failIfExists); }), form.refusal);
        EXPECT_EQ(cubeRows(), "1|Base\n2|Other\n3|New\n");
        EXPECT_EQ(rows() + files(), before);
        EXPECT_EQ(first(end(3, 1)), 3.0);
        clear();
    }
}

TEST_P(MatCubesTransfer, givesTheFileTheExtensionOfTheTarget) {
    TRkMatCubes fares(project().settings(), ".frs", true);
    store(end(1, 1), 5);
    EXPECT_TRUE(fares.Copy(cubes(), 1, 1, 1, 1, 1, 2, 1, 1, 1, 1, false, false));
    EXPECT_EQ(files(), "1-1-1-1-1.odm\n2-1-1-1-1.frs\n");
}

// Both share a table: the row of an entry that keeps its key is the row of its source.
TEST_P(MatCubesTransfer, toAnotherDirectoryUnderTheSameKeyCopiesTheFile) {
    TempDir const elsewhere;
    auto const theirs = entryFamily(Family::fourKeys, project().settings(), elsewhere.str());
    TRkMatCubes const source(project().settings(), elsewhere.str().c_str(), ".odm", true);
    ASSERT_TRUE(theirs->store(1, 5));
    EXPECT_TRUE(cubes().Copy(source, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, false, false));
    EXPECT_EQ(first(end(1, 1)), 5.0);
    EXPECT_EQ(theirs->first(1), 5.0);
    EXPECT_TRUE(cubes().Move(source, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, false, false));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(files() + filesIn(elsewhere.str()), "1-1-1-1-1.odm\n");
}

// Both share a register: the names of the other catalogue's cubes do not count.
TEST_P(MatCubesTransfer, usesTheRegisterOfTheCalledCatalogue) {
    TestProject delta(Backend::sqlite);
    TRkMatCubes theirs(delta.settings(), ".odm", true);
    theirs.Add("Theirs");
    auto const fill = [&](short cubenr, float first) {
        ASSERT_TRUE(theirs.Add(theirs.Open(), cubenr, 1, 1, 1, 1, false));
        ASSERT_TRUE(theirs.SaveMatrix(smallMatrix(first), cubenr, 1, 1, 1, 1, lsNone, false));
    };
    fill(1, 5);
    fill(2, 6);
    project().project().makeCurrent();
    EXPECT_FALSE(cubes().Copy(theirs, "Theirs", 1, 1, 1, 1, "Base", 1, 1, 1, 1, false, false));
    EXPECT_TRUE(cubes().Copy(theirs, "Other", 1, 1, 1, 1, "Base", 1, 1, 1, 1, false, false));
    EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n");
    EXPECT_EQ(first(end(1, 1)), 6.0);
}

}
}
