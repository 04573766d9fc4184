#pragma once

#include "host/database/Statement.h"
#include "host/database/postgres/Handle.h"
#include "host/database/postgres/Session.h"

#include <array>
#include <string>
#include <vector>

namespace cubes::database::postgres {

class Statement final : public database::Statement {
public:
    /// `name`: under which the server keeps it; empty for a statement that is not kept.
    Statement(Session& session, std::string sql, ValueTypes const& types, std::string name);

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
    std::vector<char const*> parameters_;
    std::vector<std::array<char, 24>> numbers_;
};

}
