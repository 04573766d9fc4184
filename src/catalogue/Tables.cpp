#include "catalogue/Tables.h"

#include "host/database/Cursor.h"
#include "host/database/SqlState.h"

#include <algorithm>
#include <span>
#include <vector>

namespace cubes::catalogue {

using database::Session;

namespace {

struct Definition {
    std::string schema;
    char const* name;
    std::span<char const* const> key;
    /// Numbers that may be null.
    std::span<char const* const> numbers;
    /// Columns, each with its type.
    std::vector<std::string> others;
    /// A text column in which names are looked up; null: none.
    char const* named = nullptr;
};

constexpr std::size_t cubeParts = 5;
constexpr auto cubeKey = std::span(keyColumns).first(cubeParts);

std::string column(char const* name, char const* type) {
    return database::quoted(name) + " " + type;
}

std::vector<Definition> entryDefinitions(std::string const& schema) {
    std::vector<std::string> const entry = {column(usersColumn, "integer"), column(filenameColumn, "varchar(255)")};
    return {
        {{}, registerTable, cubeKey.first(1), {}, {column(nameColumn, "varchar(128)")}, nameColumn},
        {sharedSchema, cubeEntriesTable, cubeKey, {}, entry},
        {schema, resultEntriesTable, keyColumns, parentColumns, entry},
    };
}

void create(Definition const& definition, Session& session) {
    auto const& dialect = session.dialect();
    if (!definition.schema.empty()) session.createSchema(definition.schema);
    std::string columns;
    std::string key;
    for (char const* const name : definition.key) {
        columns += column(name, "smallint NOT NULL, ");
        key += (key.empty() ? "" : ", ") + database::quoted(name);
    }
    for (char const* const name : definition.numbers) columns += column(name, "smallint, ");
    for (auto const& other : definition.others) columns += other + ", ";
    session.execute("CREATE TABLE " + dialect.qualifiedName(definition.schema, definition.name) + " (" + columns +
                    "PRIMARY KEY (" + key + "))" + dialect.tableOptions());
    if (definition.named)
        session.execute(dialect.caseIgnoringIndex(definition.name, definition.named, definition.key[0]));
}

void createMissing(std::vector<Definition> const& definitions, Session& session) {
    auto const held = session.lock();
    auto const isMissing = [&session](Definition const& definition) {
        return !session.systemTables().find(definition.schema, definition.name);
    };
    // Only users who create tables need the permission to do so.
    if (std::none_of(definitions.begin(), definitions.end(), isMissing)) return;
    database::Transaction transaction(session, session.dialect().lockDefinitions());
    for (auto const& definition : definitions)
        if (isMissing(definition)) create(definition, session);
    transaction.commit();
}

}

void createMissingTables(Session& session, std::string const& schema) {
    createMissing(entryDefinitions(schema), session);
}

void createContentTable(Session& session, std::string const& schema, std::size_t keyParts) {
    // The last two are empty so far.
    createMissing(
        {{schema, contentTable, std::span(keyColumns).first(keyParts), {},
            {column(directoryColumn, "varchar(32)"), column(contentColumn, "varchar(32)"), column(sizeColumn, "bigint"),
                column(changedColumn, "bigint"), column("statistics", "text"), column("inputs", "text")}}},
        session);
}

void forgetContent(Session& session, std::span<short const> key) {
    auto const held = session.lock();
    auto known = session.systemTables().find(sharedSchema, contentTable);
    if (!known) return;
    try {
        database::Savepoint savepoint(session);
        database::Cursor contents(session, std::move(known));
        if (contents.locate(keyList(key.size()), std::vector<database::Value>(key.begin(), key.end()), {}))
            contents.remove();
        savepoint.commit();
    } catch (TRkDatabaseException const&) {
        // The entry is stored whether this succeeds or not.
    }
}

bool isNegligible(TRkDatabaseException const& error) {
    bool const isRefused =
        error.SqlState() == database::sqlstate::missingRight || error.SqlState() == database::sqlstate::readOnly;
    return isRefused || error.IsDuplicateKey() || error.IsMissingTable();
}

char const* keyList(std::size_t count) {
    static auto const lists = [] {
        std::array<std::string, keyColumns.size() + 1> made;
        for (std::size_t i = 0; i < keyColumns.size(); ++i) made[i + 1] = made[i] + (i ? ";" : "") + keyColumns[i];
        return made;
    }();
    return lists[count].c_str();
}

bool belongsToProject(Session& session, std::string const& schema) {
    return session.systemTables().find(schema, resultEntriesTable) != nullptr;
}

}
