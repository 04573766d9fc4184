#pragma once

#include <cubes/Export.h>
#include <cubes/text/TRkException.h>

#include <string>

/// An error of the database layer: the database and its reason. The statement is not in the message.
class CUBES_API TRkDatabaseException : public TRkException {
public:
    /// `sqlState`: the five-character code of SQL, empty when there is none. `statement`: the SQL
    /// text, empty when none was running.
    TRkDatabaseException(std::string const& message, std::string sqlState = {}, std::string statement = {});
    TRkDatabaseException(TRkDatabaseException const&);
    TRkDatabaseException& operator=(TRkDatabaseException const&);
    ~TRkDatabaseException() override;

    std::string const& SqlState() const noexcept { return sqlState_; }
    /// Whether a row with that unique or primary key already exists.
    bool IsDuplicateKey() const noexcept { return sqlState_ == "23505"; }
    /// Whether the row to be changed no longer exists.
    bool IsMissingRow() const noexcept { return sqlState_ == "02000"; }
    /// Whether the table does not exist.
    bool IsMissingTable() const noexcept { return sqlState_ == "42P01"; }
    std::string const& Statement() const noexcept { return statement_; }

private:
    std::string sqlState_;
    std::string statement_;
};
