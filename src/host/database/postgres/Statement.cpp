#include "host/database/postgres/Statement.h"

#include "host/database/Conversion.h"

#include <libpq-fe.h>

#include <charconv>

namespace cubes::database::postgres {

namespace {

// The server's numbers for its types. A whole number is sent as the widest, so that one which
// the column cannot hold is simply not found; 0 lets the server choose.
constexpr Oid int2 = 21, int4 = 23, int8 = 20, text = 25;

Oid parameterType(ColumnType type) {
    switch (type) {
    case ColumnType::number:
        return int8;
    case ColumnType::text:
        return text;
    case ColumnType::other:
        break;
    }
    return 0;
}

bool isWholeNumber(Oid type) {
    return type == int2 || type == int4 || type == int8;
}

Value cell(PGresult const* result, int row, int column, bool isNumber) {
    if (PQgetisnull(result, row, column)) return {};
    char const* const bytes = PQgetvalue(result, row, column);
    int const length = PQgetlength(result, row, column);
    if (!isNumber) return std::string(bytes, static_cast<std::size_t>(length));
    long long number = 0;
    std::from_chars(bytes, bytes + length, number);
    return number;
}

}

Statement::Statement(Session& session, std::string sql, ValueTypes const& types, std::string name)
    : session_(session), sql_(std::move(sql)), name_(std::move(name)) {
    for (ColumnType const type : types) types_.push_back(parameterType(type));
    parameters_.resize(types_.size());
    numbers_.resize(types_.size());
}

void Statement::setParameters(std::span<Value const> values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        parameters_[i] = nullptr;
        if (values[i].IsText()) parameters_[i] = values[i].Text().c_str();
        if (!values[i].IsNumber()) continue;
        auto& digits = numbers_[i];
        *std::to_chars(digits.data(), digits.data() + digits.size() - 1, values[i].Number()).ptr = '\0';
        parameters_[i] = digits.data();
    }
}

Result Statement::answer(Handle const& server) {
    int const count = static_cast<int>(types_.size());
    if (name_.empty())
        return server.checked(
            PQexecParams(server.get(), sql_.c_str(), count, types_.data(), parameters_.data(), nullptr, nullptr, 0),
            sql_);
    if (preparedFor_ != session_.connectionNumber()) {
        server.checked(PQprepare(server.get(), name_.c_str(), sql_.c_str(), count, types_.data()), sql_);
        preparedFor_ = session_.connectionNumber();
    }
    return server.checked(
        PQexecPrepared(server.get(), name_.c_str(), count, parameters_.data(), nullptr, nullptr, 0), sql_);
}

std::size_t Statement::run(std::span<Value const> values, Cells& cells) {
    auto const held = session_.lock();
    Handle const& server = session_.connected();
    setParameters(values);
    Result const result = answer(server);
    if (PQresultStatus(result.get()) == PGRES_COMMAND_OK)
        return static_cast<std::size_t>(leadingNumber(PQcmdTuples(result.get())));
    int const rows = PQntuples(result.get());
    int const columns = PQnfields(result.get());
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            cells.add() = cell(result.get(), row, column, isWholeNumber(PQftype(result.get(), column)));
    return static_cast<std::size_t>(rows);
}

}
