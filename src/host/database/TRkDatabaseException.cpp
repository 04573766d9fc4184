#include <cubes/database/TRkDatabaseException.h>

TRkDatabaseException::TRkDatabaseException(std::string const& message, std::string sqlState, std::string statement)
    : TRkException(message.c_str(), 0), sqlState_(std::move(sqlState)), statement_(std::move(statement)) {}

TRkDatabaseException::TRkDatabaseException(TRkDatabaseException const&) = default;
TRkDatabaseException& TRkDatabaseException::operator=(TRkDatabaseException const&) = default;
TRkDatabaseException::~TRkDatabaseException() = default;
