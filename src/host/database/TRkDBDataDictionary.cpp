#include <cubes/database/TRkDBDataDictionary.h>

#include "host/database/Session.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkConnectionManager.h>

using cubes::database::Session;
using Rktable::TRkTableProxy;

namespace {

Session* sessionOf(Pgaccess::TPgConnection* connection) {
    return connection ? &connection->Backend() : nullptr;
}

Session* currentSession() {
    return sessionOf(getConnectionManagerInstance().CurrentConnection());
}

CountedPtr<TRkTableProxy> cursorOn(std::string const& table, std::string const& schema) {
    return CountedPtr<TRkTableProxy>(std::make_unique<TRkTableProxy>(table, schema, table));
}

}

TRkDBBaseDataDictionary::~TRkDBBaseDataDictionary() = default;

CountedPtr<TRkTableProxy> TRkDBBaseDataDictionary::BuildTable(char const* table, AnsiString const& schema) {
    Session* const session = currentSession();
    if (!session || !table || !session->systemTables().find(schema.c_str(), table)) return {};
    return cursorOn(table, schema.c_str());
}

bool TRkDBBaseDataDictionary::BuildDataTables(
    char const* table, std::vector<CountedPtr<TRkTableProxy>>& tables, AnsiString const& schema) {
    Session* const session = connection_ ? sessionOf(connection_) : currentSession();
    if (!session || !table) return false;
    auto const found = session->systemTables().dataTables(schema.c_str(), table);
    tables.reserve(tables.size() + found.size());
    for (auto const& known : found) tables.push_back(cursorOn(known->description().name, known->description().schema));
    return !found.empty();
}

TRkDBDataDictionary::~TRkDBDataDictionary() = default;
