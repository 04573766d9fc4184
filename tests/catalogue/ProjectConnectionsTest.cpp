// Several projects in one process: each catalogue works only on the project whose settings it was given.

#include <cubes/database/TRkConnectionManager.h>
#include <cubes/database/TRkDBDataDictionary.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/matcubes/TRkMatCubes.h>

#include <functional>
#include <stdexcept>
#include <thread>

#include "support/ChildTask.h"
#include "support/EntryFamily.h"

namespace cubes::test {
namespace {

Pgaccess::TPgConnection* currentConnection() {
    return getConnectionManagerInstance().CurrentConnection();
}

std::string registerOf(TestProject const& project) {
    return joined(project.sql("select cubenr, name from cube order by cubenr"));
}

/// A project, and another one on a database of its own, which is current.
class ProjectConnections : public EntriesTest {
protected:
    void SetUp() override {
        EntriesTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        current_ = std::make_unique<TestProject>(backend());
        project().execute("delete from cube");
        entries_ = entriesOf(project().settings());
    }

    TestProject& current() { return *current_; }
    EntryFamily& entries() { return *entries_; }
    bool isFourKeys() const { return GetParam().family == Family::fourKeys; }
    /// The current project is unchanged and still current.
    void expectCurrentUntouched() {
        EXPECT_EQ(registerOf(current()), "");
        EXPECT_EQ(joined(current().sql("select count(*) from " + tableOf(current(), *entriesOfCurrent()))), "0\n");
        EXPECT_EQ(filesIn(entriesOfCurrent()->directory()), "");
        EXPECT_EQ(currentConnection(), current().project().connection());
    }
    std::unique_ptr<EntryFamily> entriesOfCurrent() {
        auto made = entriesOf(current().settings());
        if (isFourKeys()) current().execute("delete from cube");
        return made;
    }

private:
    std::unique_ptr<TestProject> current_;
    std::unique_ptr<EntryFamily> entries_;
};

CUBES_BOTH_FAMILIES(ProjectConnections);

TEST_P(ProjectConnections, areThoseOfTheSettingsWhenStoringAndReading) {
    EXPECT_TRUE(entries().store(1, 5));
    EXPECT_EQ(registerOf(project()), isFourKeys() ? "1|Base\n2|Other\n" : "");
    EXPECT_EQ(rows(), row(1));
    EXPECT_EQ(files(), entries().fileOf(1) + "\n");
    EXPECT_EQ(entries().first(1), 5.0);
    EXPECT_EQ(entries().element(1, 1, 2), 17.0);
    EXPECT_NE(entries().header(1), nullptr);
    EXPECT_NE(entries().listed().find(",1,"), std::string::npos);
    EXPECT_TRUE(entries().raise(1) && entries().lower(1));
    EXPECT_TRUE(entries().copied()->check(1));
    EXPECT_TRUE(entries().clear(1));
    EXPECT_EQ(rows() + files(), "");
    expectCurrentUntouched();
}

// Results have no cubes by name.
class ConnectionsOfCubesByName : public ProjectConnections {};
INSTANTIATE_TEST_SUITE_P(, ConnectionsOfCubesByName,
    testing::Values(
        FamilyOnBackend{Family::fourKeys, Backend::sqlite}, FamilyOnBackend{Family::fourKeys, Backend::postgres}),
    [](auto const& parameter) { return nameOf(parameter.param); });

TEST_P(ConnectionsOfCubesByName, areThoseOfTheSettingsWhenNamingCubes) {
    entries().store(1, 5);
    EXPECT_EQ(entries().listed(), "1,1,1,1,1,Base\n");
    EXPECT_EQ(entries().get(1, lsRead)->Name().str(), "Base [1,1,1,1]");
    TRkMatCubes cubes(project().settings(), ".odm", true);
    EXPECT_TRUE(cubes.Add("New"));
    EXPECT_TRUE(cubes.Check("New"));
    EXPECT_EQ(cubes.CubeNameToNr("New"), 3);
    EXPECT_STREQ(cubes.CubeNrToName(3).c_str(), "New");
    EXPECT_TRUE(cubes.Delete("New"));
    EXPECT_EQ(registerOf(project()), "1|Base\n2|Other\n");
    expectCurrentUntouched();
}

TEST_P(ProjectConnections, areThoseOfTheCalledProjectWhenCopyingAndMoving) {
    TestProject third(Backend::sqlite);
    auto const theirs = entriesOf(third.settings());
    current().project().makeCurrent();
    ASSERT_TRUE(theirs->store(1, 5));
    short to = 1;
    for (auto const& form : entries().forms()) {
        SCOPED_TRACE(form.name);
        ++to;
        if (!form.isBetween && form.isByName) continue;
        ASSERT_TRUE(entries().store(1, 6) && theirs->store(1, 5));
        EXPECT_TRUE(entries().run(form, form.isBetween ? *theirs : entries(), 1, to, true));
        EXPECT_EQ(entries().first(to), form.isBetween ? 5.0 : 6.0);
        EXPECT_EQ((form.isBetween ? *theirs : entries()).check(1), !form.moves);
    }
    expectCurrentUntouched();
}

// Numbers and names of a source's cubes belong to the register of the called catalogue.
TEST_P(ConnectionsOfCubesByName, areThoseOfEachCatalogueWhenNamingCubes) {
    TestProject third(Backend::sqlite);
    TRkMatCubes theirs(third.settings(), ".odm", true);
    for (char const* const name : {"Theirs", "Base"})
        ASSERT_TRUE(theirs.Set(name, 1, 1, 1, 1, smallMatrix(name[0]), lsRead, false));
    current().project().makeCurrent();
    TRkMatCubes const cubes(project().settings(), ".odm", true);
    // "Base" is cube 1 here and cube 2 there; "Theirs" is unknown here.
    EXPECT_TRUE(cubes.Copy(theirs, "Base", 1, 1, 1, 1, "Other", 1, 1, 1, 3, false, false));
    EXPECT_EQ(cubes.Get("Other", 1, 1, 1, 3, 0, 0, lsRead, false), static_cast<double>('T'));
    EXPECT_FALSE(cubes.Copy(theirs, "Theirs", 1, 1, 1, 1, "Other", 1, 1, 1, 4, false, false));
    expectCurrentUntouched();
}

TEST_P(ProjectConnections, doNotReplaceTheConnectionThatWasSetForEntryTables) {
    TestProject third(backend());
    current().project().makeCurrent();
    entries().setConnection(third.project().connection());
    EXPECT_TRUE(entries().store(1, 5));
    EXPECT_EQ(rows(), "");
    EXPECT_EQ(joined(third.sql("select filename from " + tableOf(third, entries()))), entries().fileOf(1) + "\n");
    EXPECT_EQ(registerOf(third), "");
    EXPECT_EQ(files(), entries().fileOf(1) + "\n");
    expectCurrentUntouched();
}

// An application's dictionary that uses catalogues itself whenever a table is requested.
class Calling : public TRkDBDataDictionary {
public:
    Calling(TRkDBDataDictionary& inner, std::function<void()> call) : inner_(inner), call_(std::move(call)) {}
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const* table, AnsiString const& schema) override {
        call_();
        return inner_.BuildTable(table, schema);
    }
    bool BuildDataTables(
        char const* table, std::vector<CountedPtr<Rktable::TRkTableProxy>>& tables, AnsiString const& schema) override {
        call_();
        return inner_.BuildDataTables(table, tables, schema);
    }

private:
    TRkDBDataDictionary& inner_;
    std::function<void()> call_;
};

TEST_P(ProjectConnections, allowADictionaryThatCallsCataloguesOfAnotherProject) {
    TRkMatCubes nested(current().settings(), ".odm", true);
    int calls = 0;
    int wrong = 0;
    auto* const inner = dynamic_cast<TRkDBDataDictionary*>(project().settings()->Get("RkLib.DataDictionary"));
    ASSERT_NE(inner, nullptr);
    Calling calling(*inner, [&] {
        ++calls;
        if (currentConnection() != project().project().connection()) ++wrong;
        // The outermost call decides whose register counts.
        if (nested.CubeNameToNr("Marker") != 9) ++wrong;
    });
    project().execute("insert into cube values (9, 'Marker')");
    project().settings()->Set("RkLib.DataDictionary", &calling);
    EXPECT_TRUE(entries().store(1, 5));
    EXPECT_TRUE(entries().check(1));
    EXPECT_EQ(entries().first(1), 5.0);
    EXPECT_GT(calls, 2);
    EXPECT_EQ(wrong, 0);
    project().settings()->Set("RkLib.DataDictionary", inner);
    EXPECT_EQ(rows(), row(1));
    EXPECT_EQ(nested.CubeNameToNr("Marker"), 0);
    expectCurrentUntouched();
}

// Settings that no project made, with the application's own tables.
class OwnTables : public TRkDBDataDictionary {
public:
    explicit OwnTables(std::string alias) : alias_(std::move(alias)) {}
    CountedPtr<Rktable::TRkTableProxy> BuildTable(char const*, AnsiString const&) override {
        return CountedPtr(new Rktable::TRkTableProxy("ownregister", "", "cube"));
    }
    bool BuildDataTables(
        char const*, std::vector<CountedPtr<Rktable::TRkTableProxy>>& tables, AnsiString const&) override {
        tables.push_back(CountedPtr(new Rktable::TRkTableProxy("ownentries", "", alias_)));
        return true;
    }

private:
    std::string alias_;
};

TEST_P(ProjectConnections, allowAnApplicationsOwnDictionaryAndTables) {
    auto* const connection = current().project().connection();
    std::string columns;
    std::string keys;
    for (auto const& column : entries().keyColumns()) {
        columns += "\"" + column + "\" smallint, ";
        keys += (keys.empty() ? "\"" : ", \"") + column + "\"";
    }
    connection->Execute("create table ownregister (cubenr smallint primary key, name varchar(128))");
    connection->Execute("create table ownentries (" + columns +
                        "\"usageCounter\" smallint, filename varchar(255), primary key (" + keys + "))");
    OwnTables dictionary(entries().alias());
    TempDir const directory;
    TRkGlobalSettings settings(TRkFString(directory.file("")), TRkFString(directory.file("")));
    settings.Set("RkLib.DataDictionary", &dictionary);
    auto const own = entriesOf(&settings);
    EXPECT_TRUE(own->store(1, 5));
    EXPECT_EQ(own->first(1), 5.0);
    EXPECT_EQ(joined(current().sql("select filename from ownentries")), own->fileOf(1) + "\n");
    EXPECT_EQ(joined(current().sql("select count(*) from ownregister")), isFourKeys() ? "2\n" : "0\n");
    EXPECT_EQ(filesIn(directory.str()), own->fileOf(1) + "\n");
    EXPECT_TRUE(own->clearAll());
    EXPECT_EQ(joined(current().sql("select count(*) from ownentries")), "0\n");
    expectCurrentUntouched();
}

TEST_P(ProjectConnections, addInsideTheCallersTransactionWithoutEndingIt) {
    project().project().makeCurrent();
    TRkMatCubes const cubes(project().settings(), ".odm", true);
    std::string const before = registerOf(project());
    for (bool const isCommitted : {false, true}) {
        SCOPED_TRACE(isCommitted ? "committed" : "rolled back");
        execute("begin");
        execute("insert into cube values (50, 'Marker')");
        EXPECT_TRUE(cubes.Add("New"));
        EXPECT_TRUE(cubes.Add("New"));
        EXPECT_TRUE(entries().add(1));
        EXPECT_TRUE(entries().add(1));
        EXPECT_EQ(registerOf(project()), before);
        EXPECT_EQ(rows(), "");
        execute(isCommitted ? "commit" : "rollback");
        EXPECT_EQ(registerOf(project()), before + (isCommitted ? "50|Marker\n51|New\n" : ""));
        EXPECT_EQ(read("select count(*) from " + table()), isCommitted ? "1\n" : "0\n");
    }
}

TEST_P(ProjectConnections, leaveTheCallersTransactionUsableWhenTheDatabaseRefusesARow) {
    project().project().makeCurrent();
    if (backend() == Backend::sqlite) {
        execute("create trigger refusing before insert on " + table() + " begin select raise(abort, 'refused'); end");
    } else {
        execute("create function refuse() returns trigger language plpgsql as "
                "$$ begin raise exception 'refused'; end $$");
        execute("create trigger refusing before insert on " + table() + " execute function refuse()");
    }
    execute("begin");
    EXPECT_THROW(entries().add(1), TRkDatabaseException);
    execute("insert into cube values (50, 'Marker')");
    execute("commit");
    EXPECT_EQ(read("select name from cube where cubenr = 50"), "Marker\n");
}

constexpr int threads = 8;
constexpr short rounds = 5;

void require(bool done, char const* what) {
    if (!done) throw std::runtime_error(what);
}

// Runs every operation once per round, on entries that belong to this thread only.
void useEntries(EntryFamily& entries, short first) {
    for (short round = 0; round < rounds; ++round) {
        auto const n = static_cast<short>(first + 2 * round);
        auto const next = static_cast<short>(n + 1);
        require(entries.store(n, n), "store");
        require(entries.first(n) == n, "read");
        require(entries.element(n, 0, 1) == n + 1, "element");
        require(entries.raise(n) && !entries.isCorrect(n) && entries.lower(n), "usage counter");
        for (auto const& form : entries.forms()) {
            if (form.isByName && !form.isBetween) continue;
            auto const other = entries.copied();
            require(entries.run(form, form.isBetween ? *other : entries, n, next, true), form.name);
            require(entries.first(next) == n, form.name);
            require(entries.clear(next) && (!form.moves || entries.store(n, n)), "clear");
        }
        require(entries.listed().find("false") == std::string::npos, "list");
        require(entries.clear(n) && !entries.check(n), "clear");
    }
}

// Runs the work in all threads; the first error is thrown.
void inThreads(std::function<void(int)> const& work) {
    std::vector<std::string> errors(threads);
    std::vector<std::thread> running;
    for (int number = 0; number < threads; ++number)
        running.emplace_back([&errors, &work, number] {
            try {
                work(number);
            } catch (std::exception const& error) {
                errors[static_cast<std::size_t>(number)] = error.what();
            }
        });
    for (auto& thread : running) thread.join();
    for (auto const& error : errors)
        if (!error.empty()) throw std::runtime_error(error);
}

// In child processes, so that a crash fails the test and not the program.
template <Family family>
void useAProjectPerThread(int, std::string const& backend) {
    inThreads([&](int) {
        TestProject own(backend == "sqlite" ? Backend::sqlite : Backend::postgres);
        useEntries(*entryFamily(family, own.settings()), 1);
    });
}

template <Family family>
void useOneProjectInAllThreads(int, std::string const& root) {
    Project const own = Project::open(root);
    inThreads([&](int number) {
        useEntries(*entryFamily(family, own.settings()), static_cast<short>(1 + 2 * rounds * number));
    });
}

ChildTask const projectPerThread[] = {{"four-key cubes, a project per thread", useAProjectPerThread<Family::fourKeys>},
    {"results, a project per thread", useAProjectPerThread<Family::results>}};
ChildTask const oneProject[] = {{"four-key cubes, one project", useOneProjectInAllThreads<Family::fourKeys>},
    {"results, one project", useOneProjectInAllThreads<Family::results>}};

TEST_P(ProjectConnections, allowOneProjectPerThread) {
    EXPECT_EQ(projectPerThread[isFourKeys() ? 0 : 1].inProcesses(1, backendName(backend())), 1);
}

TEST_P(ProjectConnections, allowThreadsThatShareAProject) {
    EXPECT_EQ(oneProject[isFourKeys() ? 0 : 1].inProcesses(1, project().root()), 1);
    EXPECT_EQ(rows() + files(), "");
}

}
}
