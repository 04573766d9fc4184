#pragma once

#include "host/database/Statement.h"

#include <memory>
#include <string>

struct sqlite3_stmt;

namespace cubes::database::sqlite {

class Handle;

class Statement final : public database::Statement {
public:
    /// REQUIRES: `handle` outlives the runs of the statement, not the statement itself.
    Statement(Handle const& handle, std::string sql, unsigned prepareFlags);
    ~Statement() override;

    std::size_t run(std::span<Value const> values, Cells& cells) override;

private:
    void bind(int place, Value const& value);
    void addRow(int columns, Cells& cells);

    Handle const& handle_;
    std::string sql_;
    sqlite3_stmt* statement_ = nullptr;
};

}
