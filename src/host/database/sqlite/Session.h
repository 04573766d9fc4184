#pragma once

#include "host/database/Session.h"
#include "host/database/sqlite/Dialect.h"
#include "host/database/sqlite/Handle.h"

namespace cubes::database::sqlite {

class Session final : public database::Session {
public:
    explicit Session(std::string const& url);

    Dialect const& dialect() const override { return dialect_; }
    std::unique_ptr<database::Statement> prepare(std::string sql, ValueTypes types) override;
    std::unique_ptr<database::Statement> prepareOnce(std::string sql, ValueTypes types) override;
    std::optional<Table> describe(std::string const& schema, std::string const& name) override;
    void execute(std::string const& sql) override;
    bool isInTransaction() const override { return handle_->isInTransaction(); }
    void createSchema(std::string const& schema) override;

private:
    Dialect dialect_;
    std::shared_ptr<Handle> handle_;
};

}
