#pragma once

#include "host/database/Statement.h"

#include <memory>
#include <mutex>
#include <string>

struct sqlite3_stmt;

namespace cubes::database::sqlite {

class Handle;

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
