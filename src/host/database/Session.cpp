#include "host/database/Session.h"

#include "host/database/DatabaseUrl.h"
#include "host/database/SqlState.h"
#include "host/database/postgres/Session.h"
#include "host/database/sqlite/Session.h"

#include <cubes/database/TRkDatabaseException.h>

#include <atomic>

namespace cubes::database {

namespace {

std::uint64_t nextNumber() noexcept {
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

}

Session::Session(std::string url) : url_(std::move(url)), number_(nextNumber()), systemTables_(*this) {}

std::unique_ptr<Session> Session::open(std::string const& url) {
    if (isSqliteUrl(url)) return std::make_unique<sqlite::Session>(url);
    if (isPostgresUrl(url)) return std::make_unique<postgres::Session>(url);
    throw TRkDatabaseException("the database URL is neither \"sqlite:PATH\" nor \"postgresql://...\"; it is not shown "
                               "because it may hold a password");
}

// If the lock is taken, it is held by a thread that exists in the parent only, or by a transaction.
void Session::leaveParent() {
    std::lock_guard const guard(leavingParent_);
    if (forkCount_ == platform::forkCount()) return;
    bool const isIdle = mutex_->try_lock();
    if (isIdle) mutex_->unlock();
    if (!isIdle || isInTransaction())
        throw TRkDatabaseException("cannot use " + url_ +
                                       " in a forked process: its parent was using it, or was inside a transaction, "
                                       "when it forked; open another connection",
            sqlstate::notConnected);
    abandon();
    forkCount_ = platform::forkCount();
}

// The levels are numbered from 1; the number makes the name of a level's savepoint.
std::string Session::savepoint() const {
    return "SAVEPOINT cubes_" + std::to_string(levels_.size());
}

void Session::begin(std::string const& lockStatement) {
    auto const held = lock();
    bool const isNested = isInTransaction();
    levels_.push_back(isNested ? Level::savepoint : Level::transaction);
    try {
        execute(isNested ? savepoint() : dialect().beginWriting());
    } catch (TRkDatabaseException const&) {
        levels_.pop_back();
        throw;
    }
    try {
        if (!lockStatement.empty()) execute(lockStatement);
    } catch (TRkDatabaseException const&) {
        rollback();
        throw;
    }
}

void Session::commit() {
    auto const held = lock();
    try {
        execute(levels_.back() == Level::transaction ? "COMMIT" : "RELEASE " + savepoint());
        levels_.pop_back();
    } catch (TRkDatabaseException const&) {
        rollback();
        throw;
    }
}

void Session::rollback() noexcept {
    try {
        auto const held = lock();
        if (isInTransaction()) undoLevel();
    } catch (TRkDatabaseException const&) {
        // A database that is out of reach rolls the transaction back by itself.
    }
    levels_.pop_back();
}

void Session::undoLevel() {
    if (levels_.back() == Level::transaction) return execute("ROLLBACK");
    execute("ROLLBACK TO " + savepoint());
    execute("RELEASE " + savepoint());
}

}
