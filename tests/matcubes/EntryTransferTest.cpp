// What all eight forms of copying and moving share.

#include <filesystem>
#include <stdexcept>

#include "matcubes/TransferTest.h"
#include "support/Errand.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

class EntryTransfer : public TransferTest {};

CUBES_BOTH_BACKENDS(EntryTransfer);

TEST_P(EntryTransfer, bringsRowAndFileToAnotherCube) {
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 5);
        cubes().incUsage(1, 1, 1, 1, 1);
        std::string const bytes = readFile(file(end(1, 1)));
        EXPECT_TRUE(run(form, end(1, 1), end(2, 3)));
        std::string const source = form.moves ? "" : "1|1|1|1|1|1|1-1-1-1-1.odm\n";
        EXPECT_EQ(rows(), source + "2|1|1|1|3|0|2-1-1-1-3.odm\n");
        EXPECT_EQ(files(), form.moves ? "2-1-1-1-3.odm\n" : "1-1-1-1-1.odm\n2-1-1-1-3.odm\n");
        EXPECT_EQ(readFile(file(end(2, 3))), bytes);
        EXPECT_EQ(first(end(2, 3)), 5.0);
        clear();
    }
}

TEST_P(EntryTransfer, ofACopySharesNothing) {
    for (auto const& form : forms) {
        if (form.moves) continue;
        SCOPED_TRACE(form.name);
        store(end(1, 1), 5);
        EXPECT_TRUE(run(form, end(1, 1), end(1, 2)));
        EXPECT_FALSE(fs::equivalent(file(end(1, 1)), file(end(1, 2))));
        EXPECT_TRUE(cubes().Set(1, 1, 1, 1, 2, matrix(9), lsNone, false));
        EXPECT_EQ(first(end(1, 1)), 5.0);
        EXPECT_TRUE(cubes().Clear(1, 1, 1, 1, 1, false));
        EXPECT_EQ(first(end(1, 2)), 9.0);
        clear();
    }
}

TEST_P(EntryTransfer, replacesTheFileOfATargetAndKeepsItsRow) {
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        store(end(2, 1), 2);
        cubes().incUsage(2, 1, 1, 1, 1);
        name(end(2, 1), "mine.odm");
        fs::rename(file(end(2, 1)), pathOf("mine.odm"));
        EXPECT_TRUE(run(form, end(1, 1), end(2, 1)));
        std::string const source = form.moves ? "" : "1|1|1|1|1|0|1-1-1-1-1.odm\n";
        EXPECT_EQ(rows(), source + "2|1|1|1|1|1|mine.odm\n");
        EXPECT_EQ(first(end(2, 1)), 1.0);
        EXPECT_EQ(fs::exists(file(end(1, 1))), !form.moves);
        clear();
    }
}

TEST_P(EntryTransfer, ofAMissingSourceIsTrueAndMakesNothing) {
    store(end(2, 1), 2);
    std::string const before = state();
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        EXPECT_TRUE(run(form, end(1, 1), end(2, 1)));
        EXPECT_TRUE(run(form, end(2, 7), end(2, 8)));
        EXPECT_FALSE(has(end(2, 8)));
    }
    EXPECT_EQ(state(), before);
}

// The cubes were checked before the entry was looked for.
TEST_P(EntryTransfer, ofAMissingSourceByNameLeavesTheNewCube) {
    for (auto const& form : forms) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        EXPECT_TRUE(run(form, end(1, 1), end(3, 1)));
        EXPECT_EQ(cubeRows(), "1|Base\n2|Other\n3|New\n");
        EXPECT_EQ(rows() + files(), "");
        clear();
    }
}

TEST_P(EntryTransfer, withoutAnEntryTableIsFalse) {
    store(end(1, 1), 1);
    std::string const before = state();
    cubes().setMatrixSchema("nowhere");
    for (auto const& form : forms) EXPECT_FALSE(run(form, end(1, 1), end(2, 1))) << form.name;
    cubes().FindMatrixSchema();
    other().setMatrixSchema("nowhere");
    for (auto const& form : forms) EXPECT_EQ(form.isBetween && run(form, end(1, 1), end(2, 1)), false) << form.name;
    EXPECT_EQ(state(), before);
}

TEST_P(EntryTransfer, byNameWithoutAnEntryTableLeavesTheNewCube) {
    for (auto const& form : forms) {
        if (!form.isByName) continue;
        SCOPED_TRACE(form.name);
        cubes().setMatrixSchema("nowhere");
        EXPECT_FALSE(run(form, end(1, 1), end(3, 1)));
        cubes().FindMatrixSchema();
        EXPECT_EQ(cubeRows(), "1|Base\n2|Other\n3|New\n");
        clear();
    }
}

TEST_P(EntryTransfer, ofAMissingFileLeavesBothRowsAndTheTargetsFile) {
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        add(end(1, 1));
        EXPECT_FALSE(run(form, end(1, 1), end(2, 1)));
        EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n2|1|1|1|1|0|2-1-1-1-1.odm\n");
        EXPECT_EQ(files(), "");
        store(end(2, 1), 2);
        EXPECT_FALSE(run(form, end(1, 1), end(2, 1)));
        EXPECT_TRUE(has(end(1, 1)));
        EXPECT_EQ(first(end(2, 1)), 2.0);
        clear();
    }
}

TEST_P(EntryTransfer, thatCannotPlaceTheFileKeepsRowAndFileOfTheSource) {
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        fs::create_directory(file(end(2, 1)));
        EXPECT_FALSE(run(form, end(1, 1), end(2, 1)));
        EXPECT_EQ(rows(), "1|1|1|1|1|0|1-1-1-1-1.odm\n2|1|1|1|1|0|2-1-1-1-1.odm\n");
        EXPECT_EQ(first(end(1, 1)), 1.0);
        EXPECT_TRUE(fs::is_directory(file(end(2, 1))));
        fs::remove(file(end(2, 1)));
        clear();
    }
}

TEST_P(EntryTransfer, ofADirectoryIsFalseAndLosesNothing) {
    for (auto const& form : forms) {
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

TEST_P(EntryTransfer, ontoItselfIsFalseAndLosesNothing) {
    store(end(1, 1), 1);
    cubes().incUsage(1, 1, 1, 1, 1);
    std::string const before = state();
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(run(form, end(1, 1), end(1, 1)));
        EXPECT_EQ(first(end(1, 1)), 1.0);
    }
    EXPECT_EQ(state(), before);
}

TEST_P(EntryTransfer, betweenRowsThatNameOneFileIsFalseAndLosesNothing) {
    store(end(1, 1), 1);
    add(end(2, 1));
    name(end(2, 1), fileName(end(1, 1)));
    std::string const before = state();
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(run(form, end(1, 1), end(2, 1)));
        EXPECT_EQ(first(end(1, 1)), 1.0);
    }
    EXPECT_EQ(state(), before);
}

// Such a name names nothing of ours: that is no failure, and nothing is touched.
TEST_P(EntryTransfer, neverFollowsANameOutOfTheDirectory) {
    std::string const precious = pathOf("../precious.odm");
    writeFile(precious, "precious");
    for (std::string const& outside : {std::string(), std::string("../precious.odm"), precious}) {
        store(end(1, 1), 1);
        store(end(2, 1), 2);
        name(end(1, 1), outside);
        std::string const before = state();
        for (auto const& form : forms) {
            SCOPED_TRACE(form.name + (" " + outside));
            EXPECT_TRUE(run(form, end(1, 1), end(2, 1)));
            EXPECT_TRUE(run(form, end(2, 1), end(1, 1)));
            EXPECT_TRUE(has(end(1, 1)) && has(end(2, 1)));
            EXPECT_EQ(first(end(2, 1)), 2.0);
        }
        EXPECT_EQ(state(), before);
        clear();
    }
    EXPECT_EQ(readFile(precious), "precious");
}

TEST_P(EntryTransfer, raisesZeroBasedKeysOfBothEnds) {
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        store(end(1, 1), 1);
        EXPECT_TRUE(run(form, end(1, 0), end(2, 4), {false, true}));
        std::string const source = form.moves ? "" : "1|1|1|1|1|0|1-1-1-1-1.odm\n";
        EXPECT_EQ(rows(), source + "2|1|1|1|5|0|2-1-1-1-5.odm\n");
        EXPECT_EQ(first(end(2, 5)), 1.0);
        clear();
    }
}

TEST_P(EntryTransfer, toAKeyThatHasNoSuccessorIsTrueAndMakesNothing) {
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms) {
        SCOPED_TRACE(form.name);
        EXPECT_TRUE(run(form, end(1, 0), end(2, 32767), {false, true}));
        EXPECT_TRUE(run(form, end(1, 32767), end(2, 1), {false, true}));
    }
    EXPECT_EQ(state(), before);
}

Errand const refusedTransfers("refused transfers", [](int, std::string const& root) {
    Project const own = Project::open(root);
    TRkMatCubes const theirs(own.settings(), ".odm", true);
    for (auto const& form : forms)
        if (form.call(theirs, TRkMatCubes(theirs), end(1, 1), end(1, 2), {})) throw std::runtime_error(form.name);
});

TEST_P(EntryTransfer, leavesATargetAloneThatSomeoneWrites) {
    store(end(1, 1), 1);
    store(end(1, 2), 2);
    std::unique_ptr<TRkMatrix> const writing(cubes().Get(1, 1, 1, 1, 2, lsReadWrite, false));
    ASSERT_NE(writing, nullptr);
    EXPECT_EQ(refusedTransfers.inProcesses(1, project().root()), 1);
    EXPECT_EQ(first(end(1, 1)), 1.0);
    EXPECT_EQ(first(end(1, 2)), 2.0);
}

TEST_P(EntryTransfer, losesNothingThroughALinkToTheSameDirectory) {
    TempDir const elsewhere;
    DirectoryLink const link(project().matrixDirectory(), elsewhere.file("link"));
    TRkMatCubes const linked(project().settings(), elsewhere.file("link").c_str(), ".odm", true);
    store(end(1, 1), 1);
    std::string const before = state();
    for (auto const& form : forms) {
        if (!form.isBetween) continue;
        SCOPED_TRACE(form.name);
        EXPECT_FALSE(form.call(cubes(), linked, end(1, 1), end(1, 1), {}));
        EXPECT_EQ(first(end(1, 1)), 1.0);
    }
    EXPECT_EQ(state(), before);
}

}
}
