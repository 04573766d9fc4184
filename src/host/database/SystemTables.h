#pragma once

#include "host/database/Table.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace cubes::database {

class Session;

/// What the database says about its tables. Each table is described once and cached until it is
/// forgotten; one that was not found is searched for again each time. Any thread may use it.
class SystemTables {
public:
    explicit SystemTables(Session& session) : session_(session) {}

    /// Empty when the database has no such table.
    std::shared_ptr<KnownTable> find(std::string_view schema, std::string_view name);
    /// The data tables of an object in a schema, those that are there. Once there are any, the
    /// list is remembered, so that one that is not there costs no question at each use.
    std::vector<std::shared_ptr<KnownTable>> dataTables(std::string_view schema, std::string_view object);
    void forget(KnownTable const& table);
    void forgetAll();

private:
    struct DataTables {
        std::string schema;
        std::string object;
        std::vector<std::shared_ptr<KnownTable>> tables;
    };

    Session& session_;
    // Shared with the cursors on them, which may outlive what is known.
    std::vector<std::shared_ptr<KnownTable>> tables_;
    std::vector<DataTables> dataTables_;
};

}
