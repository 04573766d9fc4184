#include "host/database/postgres/Handle.h"

#include "host/database/DatabaseUrl.h"
#include "host/database/SqlState.h"
#include "host/platform/NarrowText.h"

#include <libpq-fe.h>

#include <cctype>
#include <cstring>

namespace cubes::database::postgres {

namespace {

// libpq's reason would quote the URL.
void requireReadable(std::string const& url) {
    if (isReadable(url)) return;
    throw TRkDatabaseException(
        "the database URL is not valid: it is written postgresql://USER@HOST:PORT/DATABASE, with "
        "%2F and %40 for \"/\" and \"@\" in a password; it is not shown because it may hold a "
        "password",
        sqlstate::cannotConnect);
}

void ignoreNotice(void* /*context*/, PGresult const* /*notice*/) {}

std::string textOf(char const* text) {
    return text ? text : "";
}

}

// On one line: libpq puts what to look at on lines of its own.
std::string trimmed(char const* text) {
    std::string result;
    for (char const* letter = text ? text : ""; *letter; ++letter) {
        bool const isBlank = std::isspace(static_cast<unsigned char>(*letter)) != 0;
        if (!isBlank)
            result += *letter;
        else if (!result.empty() && result.back() != ' ')
            result += ' ';
    }
    if (result.ends_with(' ')) result.pop_back();
    return result;
}

void ClearResult::operator()(pg_result* result) const noexcept {
    PQclear(result);
}

Handle::Handle(std::string const& url) {
    requireReadable(url);
    std::string const encoding = platform::narrowEncoding();
    // Later keys override earlier ones: the URL may set the timeout and the name, but not the encoding.
    char const* const keys[] = {"connect_timeout", "fallback_application_name", "dbname", "client_encoding", nullptr};
    char const* const values[] = {"10", "cubes", url.c_str(), encoding.c_str(), nullptr};
    connection_ = PQconnectdbParams(keys, values, 1);
    if (PQstatus(connection_) != CONNECTION_OK) {
        TRkDatabaseException const error(
            where() + ": " + trimmed(PQerrorMessage(connection_)), sqlstate::cannotConnect);
        PQfinish(connection_);
        throw error;
    }
    PQsetNoticeReceiver(connection_, ignoreNotice, nullptr);
}

// In a forked process the server's session is still the parent's: closing would end it.
Handle::~Handle() {
    if (forkCount_ == platform::forkCount()) PQfinish(connection_);
}

std::string Handle::encoding() const {
    return textOf(PQparameterStatus(connection_, "server_encoding"));
}

bool Handle::isLost() const noexcept {
    return PQstatus(connection_) != CONNECTION_OK;
}

std::string Handle::where() const {
    std::string const host = textOf(PQhost(connection_));
    std::string const port = textOf(PQport(connection_));
    return "PostgreSQL server '" + host + (port.empty() ? "" : ":" + port) + "', database '" +
           textOf(PQdb(connection_)) + "'";
}

// The server's reason and what to do about it. That a database is read-only is put in terms of the statement.
std::string Handle::explained(std::string const& reason, std::string const& sqlState) const {
    if (sqlState == sqlstate::readOnly) return "it is read-only; ask its owner for permission to write";
    if (sqlState == sqlstate::missingRight) return reason + "; ask the owner of the database for this right";
    if (sqlState == sqlstate::locked)
        return "other connections, of this program or of others, have kept it locked for more than " + lockTimeout_ +
               "; try again later";
    return reason;
}

TRkDatabaseException Handle::failure(pg_result const* result, std::string const& statement) const {
    if (isLost())
        return {where() + ": the connection is lost: " + trimmed(PQerrorMessage(connection_)), sqlstate::connectionLost,
            statement};
    std::string reason = textOf(PQresultErrorField(result, PG_DIAG_MESSAGE_PRIMARY));
    if (reason.empty()) reason = trimmed(PQerrorMessage(connection_));
    std::string const detail = textOf(PQresultErrorField(result, PG_DIAG_MESSAGE_DETAIL));
    if (!detail.empty()) reason += " (" + detail + ")";
    std::string const sqlState = textOf(PQresultErrorField(result, PG_DIAG_SQLSTATE));
    return {where() + ": " + explained(reason, sqlState), sqlState, statement};
}

Result Handle::checked(pg_result* raw, std::string const& statement) const {
    Result result(raw);
    if (!isLost()) isInTransaction_ = PQtransactionStatus(connection_) != PQTRANS_IDLE;
    auto const status = PQresultStatus(raw);
    if (status == PGRES_TUPLES_OK || status == PGRES_COMMAND_OK) return result;
    throw failure(raw, statement);
}

Result Handle::execute(std::string const& sql) const {
    Result result = checked(PQexec(connection_, sql.c_str()), sql);
    // A transaction in which something failed answers so, and calls it no error.
    if (sql == "COMMIT" && std::strcmp(PQcmdStatus(result.get()), "ROLLBACK") == 0)
        throw TRkDatabaseException(
            where() + ": the transaction could not be committed", sqlstate::failedTransaction, sql);
    return result;
}

}
