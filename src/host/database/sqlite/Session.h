#pragma once

#include "host/database/Session.h"
#include "host/database/Statement.h"
#include "host/database/sqlite/Dialect.h"
#include "host/database/sqlite/Handle.h"

#include <memory>
#include <mutex>
#include <string>

struct sqlite3_stmt;

namespace cubes::database::sqlite {

class Session final : public database::Session {
public:
    explicit Session(std::string const& url);

    Dialect const& dialect() const override { return dialect_; }
    std::unique_ptr<database::Statement> prepare(std::string sql, ValueTypes types) override;
    std::unique_ptr<database::Statement> prepareOnce(std::string sql, ValueTypes types) override;
    std::optional<Table> describe(std::string const& schema, std::string const& name) override;
    std::string databaseIdentity() override;
    std::string file() const override { return handle_->file(); }
    void execute(std::string const& sql) override;
    bool isInTransaction() const override { return handle_->isInTransaction(); }
    void createSchema(std::string const& schema) override;

protected:
    void abandon() override;

private:
    Dialect dialect_;
    std::shared_ptr<Handle> handle_;
};

class Statement final : public database::Statement {
public:
    /// `mutex`: that of the handle's session.
    Statement(std::shared_ptr<Handle const> handle, std::shared_ptr<std::recursive_mutex> mutex, std::string sql,
        unsigned prepareFlags);
    ~Statement() override;

    std::size_t run(std::span<Value const> values, Cells& cells) override;

private:
    void bind(int place, Value const& value);
    void addRow(int columns, Cells& cells);

    // A cursor may hold the statement longer than its session lives.
    std::shared_ptr<Handle const> handle_;
    std::shared_ptr<std::recursive_mutex> mutex_;
    std::string sql_;
    sqlite3_stmt* statement_ = nullptr;
};

}
