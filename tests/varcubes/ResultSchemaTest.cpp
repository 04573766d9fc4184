#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/text/TRkException.h>

#include "varcubes/VarCubesTest.h"

namespace cubes::test {
namespace {

class ResultSchema : public VarCubesTest {
protected:
    /// A further project on the same database, in a directory of that name.
    std::unique_ptr<Project> another(std::string const& name, std::string const& workingDirectory = {}) {
        ProjectOptions options;
        options.database = project().database().url();
        options.workingDirectory = workingDirectory;
        return std::make_unique<Project>(Project::create(directories_.file(name), options));
    }

    TempDir directories_;
};

CUBES_BOTH_BACKENDS(ResultSchema);

// The project's entry tables under another alias, or trouble.
class Renamed : public TRkDBDataDictionary {
public:
    explicit Renamed(std::string alias) : alias_(std::move(alias)) {}
    bool BuildDataTables(
        char const*, std::vector<CountedPtr<Rktable::TRkTableProxy>>& tables, AnsiString const& schema) override {
        if (alias_.empty()) throw TRkException("no tables today", 0);
        tables.push_back(CountedPtr(new Rktable::TRkTableProxy("cube5data1", schema.str(), "something else")));
        tables.push_back(CountedPtr(new Rktable::TRkTableProxy("cube5data1", schema.str(), alias_)));
        return true;
    }

private:
    std::string alias_;
};

TEST_P(ResultSchema, isThatOfTheProject) {
    EXPECT_STREQ(skims().getMatrixSchema().c_str(), "delta");
    EXPECT_STREQ(skims().cubeAliasName(), "cube5data1");
    EXPECT_STREQ(TRkVarCubes::FAliasName, "cube5data1");
    auto entries = skims().Open();
    ASSERT_TRUE(entries);
    EXPECT_STREQ(entries->GetAliasPropertyWrapper().AsString().c_str(), "cube5data1");
    EXPECT_TRUE(skims().Close(entries));
}

TEST_P(ResultSchema, keepsProjectsOfOneDatabaseApart) {
    auto const other = another("epsilon");
    TRkSkimCube otherSkims(other->settings(), true);
    EXPECT_STREQ(otherSkims.getMatrixSchema().c_str(), "epsilon");
    EXPECT_TRUE(add(otherSkims, 1));
    EXPECT_TRUE(add(skims(), 2));
    EXPECT_FALSE(skims().Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(otherSkims.Check(1, 1, 1, 1, 1, 2, false));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
}

TEST_P(ResultSchema, isTheNumberedOneWhereAnotherProjectHasTheName) {
    auto const other = another("delta");
    TRkSkimCube otherSkims(other->settings(), true);
    EXPECT_EQ(otherSkims.getMatrixSchema().str(), other->schema());
    EXPECT_STRNE(otherSkims.getMatrixSchema().c_str(), "delta");
    EXPECT_TRUE(add(otherSkims, 1));
    EXPECT_EQ(rows(), "");
    // Settings made by hand find it in the file of the project.
    TRkGlobalSettings byHand({}, other->settings()->WorkingDirectory());
    TRkSkimCube const found(&byHand, true);
    EXPECT_EQ(found.getMatrixSchema().str(), other->schema());
}

TEST_P(ResultSchema, doesNotDependOnWhereResultsAreKept) {
    TempDir const elsewhere;
    auto const other = another("zeta", elsewhere.file("big"));
    TRkSkimCube otherSkims(other->settings(), true);
    EXPECT_STREQ(otherSkims.getMatrixSchema().c_str(), "zeta");
    EXPECT_TRUE(add(otherSkims, 1));
    EXPECT_TRUE(otherSkims.Check(1, 1, 1, 1, 1, 1, false));
}

TEST_P(ResultSchema, belongsToTheCubesProjectWhicheverIsCurrent) {
    TestDatabase const database(backend());
    ProjectOptions options;
    options.database = database.url();
    Project const other = Project::create(directories_.file("epsilon"), options);
    TRkSkimCube otherSkims(other.settings(), true);
    EXPECT_TRUE(add(otherSkims, 1));
    EXPECT_TRUE(add(skims(), 2));
    project().project().makeCurrent();
    EXPECT_TRUE(add(otherSkims, 3));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|2|0|1-1-1-1-1-2.skm\n");
    EXPECT_EQ(joined(database.sql("select iteration from " + database.table("epsilon", "cube5data1") + " order by 1")),
        "1\n3\n");
}

TEST_P(ResultSchema, isFormedFromTheDirectoryWhereNoProjectIs) {
    TRkGlobalSettings settings({}, TRkFString(directories_.file("My Project 7/")));
    TRkSkimCube cube(&settings, true);
    EXPECT_STREQ(cube.getMatrixSchema().c_str(), "my_project_7");
    TRkGlobalSettings empty;
    TRkSkimCube without(&empty, true);
    EXPECT_FALSE(without.FindMatrixSchema());
    EXPECT_STREQ(without.getMatrixSchema().c_str(), "");
    EXPECT_FALSE(TRkSkimCube(nullptr, true).FindMatrixSchema());
}

TEST_P(ResultSchema, isWorkedOutAgainOnOpeningWhenItWasNotFound) {
    TRkSkimCube cube(nullptr, true);
    EXPECT_FALSE(cube.Open());
    cube.Settings(project().settings());
    EXPECT_STREQ(cube.getMatrixSchema().c_str(), "");
    EXPECT_TRUE(cube.Open());
    EXPECT_TRUE(cube.FindMatrixSchema());
    EXPECT_STREQ(cube.getMatrixSchema().c_str(), "delta");
}

TEST_P(ResultSchema, withoutATableOpensNothing) {
    skims().setMatrixSchema("nowhere");
    EXPECT_FALSE(skims().Open());
    EXPECT_TRUE(skims().FindMatrixSchema());
    EXPECT_TRUE(skims().Open());
    skims().SetConnection(nullptr);
    EXPECT_FALSE(skims().Open());
    EXPECT_FALSE(skims().Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_FALSE(add(skims(), 1));
    EXPECT_STREQ(skims().FileName(1, 1, 1, 1, 1, 1, false).c_str(), "");
}

TEST_P(ResultSchema, opensTheTableOfTheAliasInAnyLetterCase) {
    struct {
        char const* alias;
        bool opens;
    } const cases[] = {{"CUBE5Data1", true}, {"cube5data2", false}, {"", false}};
    for (auto const& [alias, opens] : cases) {
        Renamed dictionary(alias);
        TRkGlobalSettings settings({}, project().settings()->WorkingDirectory());
        settings.Set("RkLib.DataDictionary", &dictionary);
        auto entries = TRkSkimCube(&settings, true).Open();
        EXPECT_EQ(static_cast<bool>(entries), opens) << alias;
        TRkString const found = entries ? entries->GetAliasPropertyWrapper().AsString() : TRkString();
        EXPECT_STREQ(found.c_str(), opens ? alias : "");
    }
}

// The project's table, twice under the alias; the second is of another schema.
class Twofold : public TRkDBDataDictionary {
public:
    explicit Twofold(bool isBuilt) : isBuilt_(isBuilt) {}
    bool BuildDataTables(
        char const*, std::vector<CountedPtr<Rktable::TRkTableProxy>>& tables, AnsiString const& schema) override {
        for (std::string const& name : {schema.str(), std::string("second")})
            tables.push_back(CountedPtr(new Rktable::TRkTableProxy("cube5data1", name, "cube5data1")));
        return isBuilt_;
    }

private:
    bool isBuilt_;
};

TEST_P(ResultSchema, opensTheFirstTableOfTheAliasAndNoneThatWasNotBuilt) {
    add(skims(), 1);
    for (bool const isBuilt : {true, false}) {
        Twofold dictionary(isBuilt);
        TRkGlobalSettings settings({}, project().settings()->WorkingDirectory());
        settings.Set("RkLib.DataDictionary", &dictionary);
        EXPECT_EQ(TRkSkimCube(&settings, true).Check(1, 1, 1, 1, 1, 1, false), isBuilt);
    }
}

TEST_P(ResultSchema, opensNothingWhenOpeningFails) {
    Renamed dictionary("cube5data1");
    TRkGlobalSettings settings({}, TRkFString(directories_.file("nowhere")));
    settings.Set("RkLib.DataDictionary", &dictionary);
    EXPECT_FALSE(TRkSkimCube(&settings, true).Open());
}

}
}
