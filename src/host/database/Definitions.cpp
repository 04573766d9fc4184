#include "host/database/Definitions.h"

#include "host/database/Transaction.h"

#include <algorithm>

namespace cubes::database {

namespace {

struct Definition {
    std::string schema;
    std::string name;
    std::vector<std::string> key;
    std::vector<std::string> parents;
    std::vector<std::string> others;
    /// A text column in which names are looked up.
    std::string named;
};

std::vector<Definition> definitions(std::string const& projectSchema) {
    std::vector<std::string> const entry = {"\"usageCounter\" integer", "\"filename\" varchar(255)"};
    return {
        {{}, "cube", {"cubenr"}, {}, {"\"name\" varchar(128)"}, "name"},
        {"public", "cube4data1", {"cubenr", "purpose", "mode", "time", "user"}, {}, entry, {}},
        {projectSchema, "cube5data1", {"cubenr", "purpose", "mode", "time", "user", "result", "iteration"},
            {"parentcubenr", "parentpurpose", "parentmode", "parenttime", "parentuser", "parentresult",
                "parentiteration"},
            entry, {}},
    };
}

std::string createTable(Definition const& definition, Dialect const& dialect) {
    std::string columns;
    std::string key;
    for (auto const& name : definition.key) {
        columns += quoted(name) + " smallint NOT NULL, ";
        key += (key.empty() ? "" : ", ") + quoted(name);
    }
    for (auto const& name : definition.parents) columns += quoted(name) + " smallint, ";
    for (auto const& other : definition.others) columns += other + ", ";
    return "CREATE TABLE " + dialect.qualifiedName(definition.schema, definition.name) + " (" + columns +
           "PRIMARY KEY (" + key + "))" + dialect.tableOptions();
}

void make(Definition const& definition, Session& session) {
    auto const& dialect = session.dialect();
    if (!definition.schema.empty()) session.createSchema(definition.schema);
    session.execute(createTable(definition, dialect));
    if (!definition.named.empty())
        session.execute(dialect.caseIgnoringIndex(definition.name, definition.named, definition.key[0]));
}

bool isMissing(Definition const& definition, Session& session) {
    return !session.systemTables().find(definition.schema, definition.name);
}

}

void makeMissingTables(Session& session, std::string const& schema) {
    auto const held = session.lock();
    auto const wanted = definitions(schema);
    auto const missing = [&session](Definition const& definition) { return isMissing(definition, session); };
    auto const makeMissing = [&] {
        for (auto const& definition : wanted)
            if (missing(definition)) make(definition, session);
    };
    // Only users who make tables need the right to.
    if (std::none_of(wanted.begin(), wanted.end(), missing)) return;
    Transaction transaction(session, session.dialect().lockDefinitions());
    makeMissing();
    transaction.commit();
}

bool belongsToProject(Session& session, std::string const& schema) {
    return session.systemTables().find(schema, "cube5data1") != nullptr;
}

}
