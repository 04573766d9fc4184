#pragma once

#include <string>

namespace cubes::database {

/// How texts are compared in a look-up.
enum class Match {
    exact,
    /// Letter case ignored in texts that are known to be ASCII.
    ignoringAsciiCase,
    ignoringCase,
};

/// Where the SQL of the backends differs.
class Dialect {
public:
    virtual ~Dialect() = default;

    /// The place of the value with that number, from 1.
    virtual std::string placeholder(std::size_t number) const = 0;
    virtual std::string qualifiedName(std::string const& schema, std::string const& table) const = 0;
    /// The cheapest comparison that finds `text` without regard to letter case.
    virtual Match ignoringCase(std::string const& text) const = 0;
    virtual std::string textEquals(std::string const& column, std::string const& place, Match match) const = 0;
    /// What follows the columns in the definition of a table.
    virtual std::string tableOptions() const = 0;
    /// Serves look-ups in a text column that ignore letter case.
    virtual std::string caseIgnoringIndex(
        std::string const& table, std::string const& column, std::string const& key) const = 0;
    /// The query for the schemas that have a table of that name.
    virtual std::string schemasWith(std::string const& table) const = 0;
    /// Begins a transaction that writes.
    virtual std::string beginWriting() const = 0;
    /// Inside a transaction: keeps others from defining tables. Empty: the transaction does.
    virtual std::string lockDefinitions() const = 0;
    /// Inside a transaction: keeps others from writing to the table.
    virtual std::string lockTable(std::string const& quotedTable) const = 0;
    /// Ends a query inside a transaction: keeps others from changing the rows that it finds. Empty:
    /// the transaction does.
    virtual std::string lockRows() const = 0;
};

/// "name", with quotes inside doubled.
std::string quoted(std::string const& identifier);

}
