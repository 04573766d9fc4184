#include "host/database/Session.h"

#include "host/database/DatabaseUrl.h"
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

Session::Session(std::string url) : url_(std::move(url)), number_(nextNumber()), catalog_(*this) {}

std::unique_ptr<Session> Session::open(std::string const& url) {
    if (isSqliteUrl(url)) return std::make_unique<sqlite::Session>(url);
    if (isPostgresUrl(url)) return std::make_unique<postgres::Session>(url);
    throw TRkDatabaseException(
        "the database URL '" + withoutPassword(url) + "' is neither \"sqlite:PATH\" nor \"postgresql://...\"");
}

void Session::begin(std::string const& sql) {
    auto const held = lock();
    if (inTransaction_) throw TRkDatabaseException(url_ + ": a transaction is under way already", "25001", sql);
    try {
        execute(sql);
        inTransaction_ = true;
    } catch (TRkDatabaseException const&) {
        giveUp();
        throw;
    }
}

void Session::commit() {
    auto const held = lock();
    try {
        execute("COMMIT");
        inTransaction_ = false;
    } catch (TRkDatabaseException const&) {
        rollback();
        throw;
    }
}

void Session::rollback() noexcept {
    auto const held = lock();
    if (inTransaction_) giveUp();
    inTransaction_ = false;
}

void Session::giveUp() noexcept {
    try {
        execute("ROLLBACK");
    } catch (TRkDatabaseException const&) {
        // A database that is out of reach gives up the transaction by itself.
    }
}

}
