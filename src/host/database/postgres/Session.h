#pragma once

#include "host/database/Session.h"
#include "host/database/Statement.h"
#include "host/database/postgres/Dialect.h"
#include "host/database/postgres/Handle.h"

#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace cubes::database::postgres {

/// The statements that the server of a connection keeps and nobody uses any more. Statements may
/// outlive their session, and their destructors cannot ask the server.
class UnusedStatements {
public:
    void add(std::string const& name, unsigned long connection) noexcept;
    /// The names of those that this connection keeps. Forgets all.
    std::vector<std::string> take(unsigned long connection);

private:
    std::mutex mutex_;
    std::vector<std::pair<std::string, unsigned long>> unused_;
};

class Session final : public database::Session {
public:
    explicit Session(std::string const& url);

    Dialect const& dialect() const override { return dialect_; }
    std::unique_ptr<database::Statement> prepare(std::string sql, ValueTypes types) override;
    std::unique_ptr<database::Statement> prepareOnce(std::string sql, ValueTypes types) override;
    std::optional<Table> describe(std::string const& schema, std::string const& name) override;
    std::string databaseIdentity() override;
    void execute(std::string const& sql) override;
    bool isInTransaction() const override { return server_ && server_->isInTransaction(); }
    void createSchema(std::string const& schema) override;

    /// The server, connected anew when the connection was lost. A transaction does not survive
    /// that: once lost it throws until the transaction is rolled back.
    Handle const& connected();
    /// Which of the connections made one after the other is the present one.
    unsigned long connectionNumber() const noexcept { return connectionNumber_; }
    std::shared_ptr<UnusedStatements> const& unusedStatements() const noexcept { return unused_; }

protected:
    void abandon() override;

private:
    void connect();
    void deallocateUnused();

    // With its password, for connecting again.
    std::string fullUrl_;
    Dialect dialect_;
    std::unique_ptr<Handle> server_;
    unsigned long connectionNumber_ = 0;
    unsigned long statements_ = 0;
    std::shared_ptr<UnusedStatements> unused_ = std::make_shared<UnusedStatements>();
    // Kept, because a table that is missing is asked for at each use, and planning takes longer than the answer.
    std::unique_ptr<database::Statement> description_;
};

class Statement final : public database::Statement {
public:
    /// `name`: under which the server keeps it; empty for a statement that is not kept.
    Statement(Session& session, std::string sql, ValueTypes const& types, std::string name);
    ~Statement() override;

    std::size_t run(std::span<Value const> values, Cells& cells) override;

private:
    void setParameters(std::span<Value const> values);
    Result answer(Handle const& server);

    Session& session_;
    std::string sql_;
    std::string name_;
    std::vector<unsigned> types_;
    // The connection for which it was prepared; a new one knows nothing of it.
    unsigned long preparedFor_ = 0;
    std::shared_ptr<UnusedStatements> unused_;
    std::vector<char const*> parameters_;
    std::vector<std::array<char, 24>> numbers_;
};

}
