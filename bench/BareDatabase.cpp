#include "BareDatabase.h"

#include <string_view>

namespace bench {

namespace {

constexpr std::string_view sqlitePrefix = "sqlite:";

}

bool isSqlite(std::string const& url) {
    return url.starts_with(sqlitePrefix);
}

std::unique_ptr<BareDatabase> bareDatabase(std::string const& url) {
    return isSqlite(url) ? bareSqlite(url.substr(sqlitePrefix.size())) : barePostgres(url);
}

}
