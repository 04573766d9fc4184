// A change of an entry that fails at any step leaves the old state: rows and files.

#include <cubes/store/EntryStore.h>

#include <cubes/database/TPgConnection.h>
#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <cerrno>

#include <filesystem>
#include <functional>
#include <thread>

#include "host/matrix/FailingSystem.h"
#include "host/matrix/WriteLock.h"
#include "support/Backend.h"
#include "support/CubeTesting.h"
#include "support/Forked.h"
#include "support/TestServer.h"

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

/// What a change replaces, and thus what must be undone.
enum class Replaces { nothing, file, fileAndRow };

struct Change {
    char const* name;
    Replaces replaces;
    std::function<void(EntryStore&)> work;
};

class EntryFailureTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        project_ = std::make_unique<TestProject>(backend());
        store().addCube("Trips");
        reset();
    }

    void reset() {
        store().removeAll(EntrySelection{});
        store().put(trips_, smallMatrix(1));
        store().put(other_, smallMatrix(2));
        store().put(skim_, smallMatrix(3), {.parent = trips_});
        store().put(old_, smallMatrix(4), {.parent = other_});
    }

    TestProject& project() { return *project_; }
    EntryStore& store() { return project_->project().store(); }

    std::string files() {
        return filesIn(project().settings()->MatrixDirectory().str()) +
               filesIn(project().settings()->WorkingDirectory().str());
    }
    /// Every entry with its parent, counter and first element, then all files except those of the database.
    std::string state() {
        std::string text;
        for (auto const& entry : store().entries())
            text += entry.text + " users " + std::to_string(entry.users) + " parent " +
                    (entry.parent ? store().text(*entry.parent) : "-") + " " + entry.storedName + " holds " +
                    std::to_string(store().get(entry.key).Elements()[0]) + "\n";
        return text + files();
    }
    /// Makes each step of a change fail in turn, until none is left.
    void failEachStep(Change const& change, int error, FailingSystem::Failure failure);
    /// Runs the change while the n-th step fails; returns whether a step failed. Leaves the old state or the new one.
    bool failsAt(int step, int error, FailingSystem::Failure failure, Change const& change, std::string const& done);

    EntryKey const trips_{1, 1, 1, 1, 1};
    EntryKey const other_{1, 2, 1, 1, 1};
    EntryKey const free_{1, 3, 1, 1, 1};
    EntryKey const skim_{-1, 1, 1, 1, 1, 2, 0};
    EntryKey const old_{-1, 2, 1, 1, 1, 2, 0};
    EntryKey const new_{-2, 1, 1, 1, 1, 2, 0};

    std::vector<Change> const changes_ = {
        {"put a new entry", Replaces::nothing, [this](EntryStore& to) { to.put(free_, smallMatrix(9)); }},
        {"put a new result", Replaces::nothing,
            [this](EntryStore& to) { to.put(new_, smallMatrix(9), {.parent = trips_}); }},
        {"put an existing entry", Replaces::file, [this](EntryStore& to) { to.put(trips_, smallMatrix(9)); }},
        {"put another parent", Replaces::fileAndRow,
            [this](EntryStore& to) { to.put(skim_, smallMatrix(9), {.parent = other_}); }},
        {"copy to a new entry", Replaces::nothing, [this](EntryStore& to) { to.copy(trips_, free_); }},
        {"copy to an existing entry", Replaces::file, [this](EntryStore& to) { to.copy(trips_, other_); }},
        {"copy to an existing result", Replaces::fileAndRow, [this](EntryStore& to) { to.copy(skim_, old_); }},
        {"copy to the other family", Replaces::fileAndRow, [this](EntryStore& to) { to.copy(trips_, old_); }},
        {"move to a new entry", Replaces::nothing, [this](EntryStore& to) { to.move(trips_, free_); }},
        {"move to an existing entry", Replaces::fileAndRow, [this](EntryStore& to) { to.move(trips_, other_); }},
        {"move to an existing result", Replaces::fileAndRow, [this](EntryStore& to) { to.move(skim_, old_); }},
        {"move to the other family", Replaces::fileAndRow, [this](EntryStore& to) { to.move(trips_, old_); }},
        {"remove an entry", Replaces::nothing, [this](EntryStore& to) { to.remove(trips_); }},
    };

private:
    std::unique_ptr<TestProject> project_;
};

CUBES_BOTH_BACKENDS(EntryFailureTest);

// Whether the file has its old name, and nothing is in the quarantine.
bool isUntouched(std::string const& directory) {
    return readFile(directory + "mine.odm") == "not a matrix" && filesIn(directory + "quarantine").empty();
}

void EntryFailureTest::failEachStep(Change const& change, int error, FailingSystem::Failure failure) {
    reset();
    change.work(store());
    auto const done = state();
    int step = 0;
    do {
        ASSERT_LT(++step, 100);
    } while (failsAt(step, error, failure, change, done));
    EXPECT_GT(step, 1) << change.name;
}

TEST_P(EntryFailureTest, movesAFileToQuarantineWithItsNoteOrNotAtAll) {
    std::string const directory = project().settings()->MatrixDirectory().str();
    auto const file = directory + "mine.odm";
    writeFile(file, "not a matrix");
    auto const findings = store().check();
    ASSERT_EQ(findings.size(), 1u);
    fs::create_directory(directory + "quarantine");
    for (int step = 1;; ++step) {
        ASSERT_LT(step, 100);
        bool hasFailed = false;
        Repair repair;
        {
            FailingSystem const failing(step, EIO, FailingSystem::Failure::once);
            repair = store().repair(findings).front();
            hasFailed = failing.hasFailed();
        }
        if (!hasFailed) break;
        EXPECT_NE(repair.failure, "") << step;
        EXPECT_TRUE(isUntouched(directory)) << "step " << step << ": " << filesIn(directory);
        if (!fs::exists(file)) writeFile(file, "not a matrix");
    }
    EXPECT_FALSE(fs::exists(file));
    EXPECT_EQ(readFile(directory + "quarantine/mine.odm"), "not a matrix");
}

bool EntryFailureTest::failsAt(
    int step, int error, FailingSystem::Failure failure, Change const& change, std::string const& done) {
    reset();
    auto const before = state();
    bool hasFailed = false;
    std::string message;
    {
        FailingSystem const system(step, error, failure);
        try {
            change.work(store());
        } catch (StoreError const& thrown) {
            message = thrown.what();
        }
        hasFailed = system.hasFailed();
    }
    bool const isDone = message.empty() || message.find("it is done, but may not survive") != std::string::npos;
    EXPECT_EQ(state(), isDone ? done : before) << change.name << ", step " << step << ": " << message;
    return hasFailed;
}

TEST_P(EntryFailureTest, leavesTheOldStateWhicheverStepFails) {
    for (auto const& change : changes_) failEachStep(change, EIO, FailingSystem::Failure::once);
}

TEST_P(EntryFailureTest, leavesTheOldStateOnADiskThatStaysFull) {
    for (auto const& change : changes_)
        // Two failures, of the commit and of restoring the old file, cannot be undone.
        if (change.replaces != Replaces::fileAndRow) failEachStep(change, ENOSPC, FailingSystem::Failure::stays);
}

TEST_P(EntryFailureTest, removesAllEntriesOrNoneWhicheverStepFails) {
    for (int step = 1; step < 40; ++step) {
        reset();
        auto const before = state();
        std::string message;
        {
            FailingSystem const system(step, ENOSPC);
            try {
                store().removeAll(EntrySelection{});
            } catch (StoreError const& error) {
                message = error.what();
            }
        }
        // A file that cannot be locked stays without a row, and the message says so.
        bool const isRemoved = message.empty() || message.find("is removed, but its file ") != std::string::npos;
        EXPECT_EQ(state() == before, !isRemoved) << step << ": " << message;
        EXPECT_EQ(bool(store().find(trips_)), bool(store().find(skim_))) << step;
        EXPECT_EQ(files().find(".cubes-tmp"), std::string::npos) << step;
    }
}

TEST_P(EntryFailureTest, reportsAFileThatCannotBeRemoved) {
    auto const staying = [this](std::string const& action, std::string const& rest) {
        return "cannot " + action + ": Trips/1/1/1/1 is removed, but its file " + store().find(trips_)->file +
               " stays: " + rest + " with: cubes check --repair --yes";
    };
    struct {
        char const* does;
        std::function<void(EntryStore&)> work;
        std::string message;
    } const removals[] = {
        {"remove", [this](EntryStore& in) { in.remove(trips_); },
            staying("remove Trips/1/1/1/1", "Input/output error; delete it, or restore the entry")},
        {"remove two",
            [this](EntryStore& in) {
                in.removeAll({trips_, other_});
            },
            staying("remove 2 entries", "Input/output error; so do 1 more; delete them, or restore the entries")},
        {"move", [this](EntryStore& in) { in.move(trips_, free_); },
            "cannot move Trips/1/1/1/1 to Trips/3/1/1/1: it is done, but the file of Trips/1/1/1/1 stays: "
            "Input/output error"},
    };
    for (auto const& removal : removals) {
        reset();
        std::string const file = store().find(trips_)->file;
        std::string message;
        {
            RefusedRemovals const refused(EIO);
            try {
                removal.work(store());
            } catch (StoreError const& error) {
                message = error.what();
                EXPECT_EQ(error.file(), file) << removal.does;
            }
        }
        EXPECT_EQ(message, removal.message);
        EXPECT_FALSE(store().find(trips_)) << removal.does;
        EXPECT_TRUE(std::filesystem::exists(file)) << removal.does;
    }
}

TEST_P(EntryFailureTest, reportsAFileOfARemovedEntryThatOthersHaveLocked) {
    std::string const file = store().find(trips_)->file;
    struct {
        char const* does;
        std::function<void(EntryStore&)> work;
    } const removals[] = {{"remove all", [](EntryStore& in) { in.removeAll(EntrySelection{}); }},
        {"remove the cube", [](EntryStore& in) { in.removeCube(1); }}};
    for (auto const& removal : removals) {
        std::string message;
        {
            matrix::WriteLock const lock(file, matrix::WriteLock::Purpose::create);
            try {
                removal.work(store());
            } catch (StoreError const& error) {
                message = error.what();
                EXPECT_EQ(error.reason(), Reason::locked) << removal.does;
                EXPECT_EQ(error.file(), file) << removal.does;
            }
        }
        EXPECT_NE(message.find("Trips/1/1/1/1 is removed, but its file " + file + " stays: it is locked by another"),
            std::string::npos)
            << removal.does << ": " << message;
        EXPECT_FALSE(store().find(trips_)) << removal.does;
        EXPECT_TRUE(std::filesystem::exists(file)) << removal.does;
        EXPECT_EQ(files().find("1-2-1-1-1.odm"), std::string::npos) << removal.does << ": " << files();
        store().addCube("Trips");
        reset();
    }
}

TEST_P(EntryFailureTest, leavesTheFileOfARemovedEntryToWhoeverIsStoringItAnew) {
    EntryKey const routes{-9, 1, 1, 1, 1, 1, 0};
    auto const writing = [](std::string const& content) {
        return [content](std::string const& path) { writeFile(path, content); };
    };
    store().putFile(routes, writing("old"));
    store().putFile(routes, [&](std::string const& path) {
        writeFile(path, "new");
        EXPECT_NO_THROW(store().removeAll({routes}));
        EXPECT_FALSE(store().find(routes));
    });
    ASSERT_TRUE(store().find(routes));
    EXPECT_EQ(readFile(store().find(routes)->file), "new");
}

TEST_P(EntryFailureTest, reportsAFileThatCannotBeExamined) {
    std::function<void(EntryStore&)> const uses[] = {[this](EntryStore& in) { in.remove(trips_); },
        [this](EntryStore& in) { in.removeAll({trips_}); },
        [this](EntryStore& in) { static_cast<void>(in.get(trips_)); },
        [this](EntryStore& in) { in.copy(trips_, free_); }};
    for (auto const& use : uses) {
        reset();
        std::string const file = store().find(trips_)->file;
        std::filesystem::remove(file);
        std::filesystem::create_symlink(file, file);
        std::string message;
        try {
            use(store());
        } catch (StoreError const& error) {
            message = error.what();
        }
        EXPECT_NE(message.find("Too many levels of symbolic links"), std::string::npos) << message;
        EXPECT_TRUE(std::filesystem::is_symlink(file));
        std::filesystem::remove(file);
    }
}

TEST_P(EntryFailureTest, reportsAFullDisk) {
    // The first two steps create the lock file and the temporary file.
    for (int step = 1; step <= 3; ++step) {
        FailingSystem const system(step, ENOSPC);
        try {
            store().put(trips_, smallMatrix(9));
            ADD_FAILURE() << step << ": nothing was thrown";
        } catch (StoreError const& error) {
            EXPECT_STREQ(nameOf(error.reason()), "noSpace") << step << ": " << error.what();
            EXPECT_EQ(std::string(error.what()), "cannot store Trips/1/1/1/1: " + error.cause());
        }
    }
}

TEST_P(EntryFailureTest, reportsACompletedChangeWhenOnlyTheLastFlushFails) {
    setMatrixStorage(project().matrixDirectory(), {Storage::plain, Durability::full});
    int reported = 0;
    for (int step = 1; step < 20; ++step) {
        std::string message = "none";
        FailingSystem const system(step, EIO, FailingSystem::Failure::once);
        try {
            store().put(trips_, smallMatrix(static_cast<float>(100 + step)));
        } catch (StoreError const& error) {
            message = error.what();
        }
        if (message.find("it is done, but may not survive a power failure") == std::string::npos) continue;
        ++reported;
        EXPECT_EQ(store().get(trips_).Elements()[0], static_cast<float>(100 + step));
    }
    EXPECT_EQ(reported, 1);
}

/// A change that adds an entry, and the name of its file.
struct Addition {
    char const* name;
    EntryKey key;
    std::string file;
    std::function<void(EntryStore&)> work;
};

/// A file of a removed entry was left behind: its process was killed before it removed the file.
class StaleFileTest : public EntryFailureTest {
protected:
    void leaveStaleFile(Addition const& addition) { OmxFile::write(addition.file, "matrix", smallMatrix(stale)); }

    static constexpr float stale = 99;
    std::vector<Addition> additions() {
        auto const matrices = project().matrixDirectory();
        auto const results = project().settings()->WorkingDirectory().str();
        return {{"put", free_, matrices + "1-3-1-1-1.odm", [this](EntryStore& to) { to.put(free_, smallMatrix(9)); }},
            {"put a result", new_, results + "1-1-1-1-2-0.slm",
                [this](EntryStore& to) { to.put(new_, smallMatrix(9), {.parent = trips_}); }},
            {"copy", free_, matrices + "1-3-1-1-1.odm", [this](EntryStore& to) { to.copy(trips_, free_); }},
            {"move", free_, matrices + "1-3-1-1-1.odm", [this](EntryStore& to) { to.move(trips_, free_); }}};
    }
};

CUBES_BOTH_BACKENDS(StaleFileTest);

TEST_P(StaleFileTest, neverAppearsAsANewEntryWhoseProcessIsKilled) {
    for (auto const& addition : additions()) {
        bool isDone = false;
        for (int step = 1; !isDone; ++step) {
            ASSERT_LT(step, 100);
            reset();
            leaveStaleFile(addition);
            isDone = inProcesses(1, [&](int) {
                auto const own = Project::open(project().root());
                FailingSystem const system(step, EIO, FailingSystem::Failure::kill);
                addition.work(own.store());
            }) == 1;
            if (!store().find(addition.key)) continue;
            EXPECT_NE(store().get(addition.key).Elements()[0], stale) << addition.name << ", step " << step;
        }
        EXPECT_TRUE(store().find(addition.key)) << addition.name;
    }
}

TEST_P(StaleFileTest, isReplacedOnTheDiskBeforeTheNewRowIsCommitted) {
    for (auto const& directory : {project().matrixDirectory(), project().settings()->WorkingDirectory().str()})
        setMatrixStorage(directory, {Storage::plain, Durability::process});
    auto const flushes = [&](Addition const& addition) {
        FailingSystem const system;
        addition.work(store());
        std::size_t count = 0;
        auto const settled = system.settled();
        for (auto at = settled.find("flush-directory"); at != std::string::npos;
             at = settled.find("flush-directory", at + 1))
            ++count;
        return count;
    };
    for (auto const& addition : additions()) {
        reset();
        auto const usual = flushes(addition);
        reset();
        leaveStaleFile(addition);
        EXPECT_EQ(flushes(addition), usual + 1) << addition.name;
    }
}

/// A trigger that refuses one kind of statement on a table.
class Refusal {
public:
    Refusal(TestDatabase const& database, std::string const& table, std::string const& event)
        : database_(database), table_(table) {
        bool const isSqlite = database.backend() == Backend::sqlite;
        if (!isSqlite)
            database.execute("create or replace function refuse() returns trigger language plpgsql as "
                             "$$ begin raise exception 'refused'; end $$");
        database.execute(
            "create trigger refusal before " + event + " on " + table +
            (isSqlite ? " begin select raise(abort, 'refused'); end" : " for each row execute function refuse()"));
    }
    ~Refusal() {
        database_.execute(
            "drop trigger refusal" + (database_.backend() == Backend::sqlite ? std::string() : " on " + table_));
    }
    Refusal(Refusal const&) = delete;
    Refusal& operator=(Refusal const&) = delete;

private:
    TestDatabase const& database_;
    std::string table_;
};

TEST_P(EntryFailureTest, leavesTheOldStateWhenTheDatabaseRefusesTheRow) {
    auto const& database = project().database();
    auto const schema = project().project().schema();
    for (auto const& table : {database.table("public", "cube4data1"), database.table(schema, "cube5data1"),
             database.table("public", "cubes_content"), database.table(schema, "cubes_content")})
        for (char const* const event : {"insert", "update", "delete"})
            for (auto const& change : changes_) {
                reset();
                auto const before = state();
                std::string message;
                {
                    Refusal const refusal(database, table, event);
                    try {
                        change.work(store());
                    } catch (StoreError const& error) {
                        message = error.what();
                        EXPECT_EQ(error.reason(), Reason::database) << message;
                    }
                }
                EXPECT_EQ(state() == before, !message.empty())
                    << change.name << " without " << event << ": " << message;
            }
}

/// The connection is lost while a change is committed: the client cannot know whether it was.
class LostCommit_postgres : public testing::Test {
protected:
    void SetUp() override {
        requireBackend(Backend::postgres);
        if (IsSkipped() || HasFatalFailure()) return;
        server_ = std::make_unique<TestServer>();
        ProjectOptions options;
        options.database = server_->url();
        project_ = std::make_unique<Project>(Project::create(directory_.file("delta"), options));
        store().addCube("Trips");
        store().put(trips_, smallMatrix(1));
        store().put(other_, smallMatrix(2));
        store().put(skim_, smallMatrix(3), {.parent = trips_});
    }

    Project& project() { return *project_; }
    EntryStore& store() { return project_->store(); }
    TestServer& server() { return *server_; }
    void execute(std::string const& statement) { Pgaccess::TPgConnection(server().url()).Execute(statement); }

    /// Commits wait for a server that is never there, after they have committed here.
    void holdCommits() {
        execute("ALTER SYSTEM SET synchronous_commit = on");
        execute("ALTER SYSTEM SET synchronous_standby_names = 'nobody'");
        execute("SELECT pg_reload_conf()");
    }
    void releaseCommits() {
        execute("ALTER SYSTEM RESET ALL");
        execute("SELECT pg_reload_conf()");
    }
    /// Runs `end` as soon as a commit waits.
    std::jthread onceACommitWaits(std::function<void()> const& end) {
        return std::jthread([this, end] {
            execute("DO $$ BEGIN WHILE NOT EXISTS (SELECT FROM pg_stat_activity WHERE wait_event = 'SyncRep') LOOP "
                    "PERFORM pg_sleep(0.002); PERFORM pg_stat_clear_snapshot(); END LOOP; END $$");
            end();
        });
    }
    void endWaitingCommit() {
        execute("SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE wait_event = 'SyncRep'");
    }
    /// Every entry with its parent and first element, then the files.
    std::string state() {
        std::string text;
        for (auto const& entry : store().entries())
            text += entry.text + (entry.parent ? " from " + store().text(*entry.parent) : "") + " " +
                    std::to_string(static_cast<int>(store().get(entry.key).Elements()[0])) + "\n";
        return text + filesIn(project_->settings()->MatrixDirectory().str()) +
               filesIn(project_->settings()->WorkingDirectory().str());
    }

    EntryKey const trips_{1, 1, 1, 1, 1};
    EntryKey const other_{1, 2, 1, 1, 1};
    EntryKey const free_{1, 3, 1, 1, 1};
    EntryKey const skim_{-1, 1, 1, 1, 1, 2, 0};

    struct LostChange {
        char const* name;
        std::function<void(EntryStore&)> work;
    };
    std::vector<LostChange> const changes_ = {
        {"put a new entry", [this](EntryStore& to) { to.put(free_, smallMatrix(9)); }},
        {"move to an existing entry", [this](EntryStore& to) { to.move(trips_, other_); }},
        {"put another parent", [this](EntryStore& to) { to.put(skim_, smallMatrix(9), {.parent = other_}); }},
    };

private:
    TempDir directory_;
    std::unique_ptr<TestServer> server_;
    std::unique_ptr<Project> project_;
};

TEST_F(LostCommit_postgres, keepsAChangeThatWasCommitted) {
    for (auto const& [name, work] : changes_) {
        SCOPED_TRACE(name);
        holdCommits();
        {
            auto const ending = onceACommitWaits([this] { endWaitingCommit(); });
            EXPECT_NO_THROW(work(store()));
        }
        releaseCommits();
    }
    EXPECT_EQ(state(), "Trips/2/1/1/1 1\nTrips/3/1/1/1 9\nskim/1/1/1/1/2/0 from Trips/2/1/1/1 9\n"
                       "1-2-1-1-1.odm\n1-3-1-1-1.odm\ncubes-id\n1-1-1-1-2-0.skm\ncubes-id\n");
}

TEST_F(LostCommit_postgres, undoesAChangeThatWasNotCommitted) {
    execute("create function ending() returns trigger language plpgsql as "
            "$$ begin perform pg_terminate_backend(pg_backend_pid()); return null; end $$");
    auto const before = state();
    for (auto const& table : {std::string("\"public\".cube4data1"), "\"" + project().schema() + "\".cube5data1"})
        execute("create constraint trigger ending after insert or update or delete on " + table +
                " deferrable initially deferred for each row execute function ending()");
    for (auto const& [name, work] : changes_) {
        SCOPED_TRACE(name);
        EXPECT_THROW(work(store()), StoreError);
        EXPECT_EQ(state(), before);
    }
}

TEST_F(LostCommit_postgres, keepsTheNewFileWhenNobodyCanTell) {
    holdCommits();
    std::string message;
    {
        auto const ending = onceACommitWaits([this] { server().stop(); });
        try {
            store().put(free_, smallMatrix(9));
        } catch (StoreError const& error) {
            message = error.what();
            EXPECT_EQ(error.entry(), "Trips/3/1/1/1");
        }
    }
    EXPECT_NE(message.find("it is not known whether the rows were changed"), std::string::npos) << message;
    server().start();
    releaseCommits();
    EXPECT_EQ(store().get(free_).Elements()[0], 9);
}

}
}
