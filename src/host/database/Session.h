#pragma once

#include "host/database/Dialect.h"
#include "host/database/Statement.h"
#include "host/database/SystemTables.h"
#include "host/platform/System.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace cubes::database {

/// The types of a statement's values, in their order.
using ValueTypes = std::vector<ColumnType>;

/// A backend's side of a connection. Any number of threads may use it and what works through it:
/// every operation holds the session's lock while it runs, and waits for others' meanwhile.
class Session {
public:
    explicit Session(std::string url);
    virtual ~Session() = default;
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    /// Opens the database that a URL names.
    static std::unique_ptr<Session> open(std::string const& url);

    /// Without a password.
    std::string const& url() const noexcept { return url_; }
    /// Keeps other threads out until it is released, so that several operations belong together.
    /// The thread that holds it may lock again.
    /// In a forked process the session leaves its parent's connection alone. Throws
    /// TRkDatabaseException where it cannot go on with one of its own.
    [[nodiscard]] std::unique_lock<std::recursive_mutex> lock() {
        if (forkCount_ != platform::forkCount()) leaveParent();
        return std::unique_lock(*mutex_);
    }
    /// Different for every session of the process, from 1.
    std::uint64_t number() const noexcept { return number_; }
    SystemTables& systemTables() noexcept { return systemTables_; }

    virtual Dialect const& dialect() const = 0;
    /// A statement that is kept for many runs.
    virtual std::unique_ptr<Statement> prepare(std::string sql, ValueTypes types) = 0;
    /// A statement that is run once or a few times and not kept.
    virtual std::unique_ptr<Statement> prepareOnce(std::string sql, ValueTypes types) = 0;
    /// What the database says of a table; nothing when there is none.
    virtual std::optional<Table> describe(std::string const& schema, std::string const& name) = 0;
    /// The same text for every session on this database, however its URL is spelled, and for no other.
    virtual std::string databaseIdentity() = 0;
    /// The database's own file, without links; empty for a server and in memory. Whoever opens and closes it, or one
    /// beside it, releases the locks of all connections of this process.
    virtual std::string file() const { return {}; }
    /// Runs SQL text as it stands.
    virtual void execute(std::string const& sql) = 0;
    /// Makes the schema unless it is there, where the backend knows schemas.
    virtual void createSchema(std::string const& schema) = 0;

    /// Whether a transaction is under way, whoever began it. One that was lost with its server
    /// counts until it is rolled back.
    virtual bool isInTransaction() const = 0;
    /// For Transaction, which calls them in pairs. Inside a transaction `begin` sets a savepoint,
    /// and the other two release it or go back to it.
    void begin(std::string const& lockStatement);
    void commit();
    void rollback() noexcept;

protected:
    /// In a forked process, outside of transactions: forgets the parent's connection without
    /// touching it. Throws TRkDatabaseException where the backend does not allow for it.
    virtual void abandon() = 0;
    /// Statements share it, because a cursor may hold them longer than the session lives.
    std::shared_ptr<std::recursive_mutex> const& mutex() const noexcept { return mutex_; }

private:
    enum class Level { transaction, savepoint };

    void leaveParent();
    std::string savepoint() const;
    void undoLevel();

    std::string url_;
    std::uint64_t number_;
    std::atomic<unsigned long> forkCount_ = platform::forkCount();
    // Several threads of the forked process may be the first to use the session.
    std::mutex leavingParent_;
    std::shared_ptr<std::recursive_mutex> mutex_ = std::make_shared<std::recursive_mutex>();
    SystemTables systemTables_;
    // The transactions that are open by begin(), the outermost first.
    std::vector<Level> levels_;
};

}
