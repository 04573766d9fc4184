#pragma once

#include <cubes/database/TRkDatabaseException.h>

#include <string>

struct sqlite3;

namespace cubes::database::sqlite {

/// An open SQLite database file.
class Handle {
public:
    /// Opens the file, makes it when it is missing. Throws TRkDatabaseException.
    explicit Handle(std::string path);
    ~Handle();
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;

    sqlite3* get() const noexcept { return database_; }
    bool isInTransaction() const noexcept;
    /// The error that the last operation on the handle left.
    TRkDatabaseException failure(std::string const& statement) const;
    void execute(std::string const& sql) const;

private:
    void prepareForUse() const;

    std::string path_;
    sqlite3* database_ = nullptr;
};

}
