#include "host/database/SystemTables.h"

#include "host/database/Session.h"

#include <algorithm>

namespace cubes::database {

std::shared_ptr<KnownTable> SystemTables::find(std::string_view schema, std::string_view name) {
    auto const held = session_.lock();
    for (auto const& table : tables_)
        if (table->description().name == name && table->description().schema == schema) return table;
    auto description = session_.describe(std::string(schema), std::string(name));
    if (!description) return {};
    return tables_.emplace_back(std::make_shared<KnownTable>(session_, std::move(*description)));
}

std::vector<std::shared_ptr<KnownTable>> SystemTables::dataTables(std::string_view schema, std::string_view object) {
    auto const held = session_.lock();
    for (auto const& known : dataTables_)
        if (known.schema == schema && known.object == object) return known.tables;
    DataTables found{std::string(schema), std::string(object), {}};
    for (char const* const kind : {"4data1", "5data1"})
        if (auto table = find(schema, found.object + kind)) found.tables.push_back(std::move(table));
    if (found.tables.empty()) return {};
    return dataTables_.emplace_back(std::move(found)).tables;
}

void SystemTables::forget(KnownTable const& table) {
    auto const held = session_.lock();
    std::erase_if(tables_, [&table](auto const& known) { return known.get() == &table; });
    dataTables_.clear();
}

void SystemTables::forgetAll() {
    auto const held = session_.lock();
    dataTables_.clear();
    tables_.clear();
}

}
