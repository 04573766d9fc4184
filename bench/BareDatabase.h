#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace bench {

/// A value bound to a statement's $1, $2...
using Values = std::vector<std::variant<int, std::string>>;

/// The bare side of a comparison: a database accessed through its own client library, with prepared statements, SQLite
/// with the same journal and flushing as the library.
class BareDatabase {
public:
    virtual ~BareDatabase() = default;

    /// Returns the statement's number.
    virtual int prepare(std::string const& sql) = 0;
    /// Runs a prepared statement; returns the number of rows found or changed.
    virtual int run(int statement, Values const& values) = 0;
    /// Reads all rows of a query into records: numbers, and a text in the last column if `endsInText`. Returns their
    /// number.
    virtual int list(std::string const& query, bool endsInText) = 0;
};

/// `url`: "sqlite:PATH" or "postgresql://...".
std::unique_ptr<BareDatabase> bareDatabase(std::string const& url);
std::unique_ptr<BareDatabase> bareSqlite(std::string const& path);
std::unique_ptr<BareDatabase> barePostgres(std::string const& url);

bool isSqlite(std::string const& url);

}
