#pragma once

#include "host/platform/System.h"

#include <cubes/database/TRkDatabaseException.h>

#include <algorithm>
#include <memory>
#include <string>

struct pg_conn;
struct pg_result;

namespace cubes::database::postgres {

struct ClearResult {
    void operator()(pg_result* result) const noexcept;
};
using Result = std::unique_ptr<pg_result, ClearResult>;

/// A connection to a PostgreSQL server.
class Handle {
public:
    /// Connects. `url` may hold a password; no message shows it. Throws TRkDatabaseException.
    explicit Handle(std::string const& url);
    ~Handle();
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;

    pg_conn* get() const noexcept { return connection_; }
    /// The encoding of the database, as the server names it.
    std::string encoding() const;
    bool isLost() const noexcept;
    /// How long statements wait for locks, as the server writes it: "10s". Messages have a space before the unit.
    void waitsForLocks(std::string time) {
        time.insert(std::min(time.find_first_not_of("0123456789"), time.size()), " ");
        lockTimeout_ = std::move(time);
    }
    /// Also after the connection was lost inside a transaction.
    bool isInTransaction() const noexcept { return isInTransaction_; }
    /// The result when it is a success. Throws TRkDatabaseException.
    Result checked(pg_result* result, std::string const& statement) const;
    Result execute(std::string const& sql) const;

private:
    std::string where() const;
    std::string explained(std::string const& reason, std::string const& sqlState) const;
    TRkDatabaseException failure(pg_result const* result, std::string const& statement) const;

    pg_conn* connection_ = nullptr;
    unsigned long forkCount_ = platform::forkCount();
    mutable bool isInTransaction_ = false;
    std::string lockTimeout_;
};

/// The texts of libpq without the line ends around them.
std::string trimmed(char const* text);

}
