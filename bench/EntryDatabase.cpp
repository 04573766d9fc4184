#include "EntryDatabase.h"

#include <fmt/format.h>
#include <libpq-fe.h>
#include <sqlite3.h>

#include <random>
#include <stdexcept>

namespace bench {

namespace {

constexpr int perPart = 32;

bool isSqlite(std::string const& url) {
    return url.starts_with("sqlite:");
}

// The same keys as keyOf, made by the database itself.
constexpr char const* sqliteFill =
    "insert into \"public.cube4data1\" (cubenr, purpose, mode, time, user, \"usageCounter\", filename) "
    "with recursive n(i) as (select 0 union all select i + 1 from n where i + 1 < {0}) "
    "select 1, i / 32768 + 1, i / 1024 % 32 + 1, i / 32 % 32 + 1, i % 32 + 1, 0, "
    "'1-' || (i / 32768 + 1) || '-' || (i / 1024 % 32 + 1) || '-' || (i / 32 % 32 + 1) || '-' || (i % 32 + 1) || "
    "'.odm' from n";
constexpr char const* postgresFill =
    "insert into public.cube4data1 (cubenr, purpose, mode, time, \"user\", \"usageCounter\", filename) "
    "select 1, i / 32768 + 1, i / 1024 % 32 + 1, i / 32 % 32 + 1, i % 32 + 1, 0, "
    "format('1-%s-%s-%s-%s.odm', i / 32768 + 1, i / 1024 % 32 + 1, i / 32 % 32 + 1, i % 32 + 1) "
    "from generate_series(0, {0} - 1) i";

// What a list of entries holds of each row.
struct Record {
    short parts[5];
};

class SqliteLookUp : public BareLookUp {
public:
    explicit SqliteLookUp(std::string const& path) {
        sqlite3* database = nullptr;
        require(sqlite3_open(path.c_str(), &database) == SQLITE_OK);
        database_.reset(database);
        find_ = prepare("select filename from \"public.cube4data1\" where cubenr = ?1 and purpose = ?2 and mode = ?3 "
                        "and time = ?4 and user = ?5 limit 1");
        list_ = prepare("select cubenr, purpose, mode, time, user from \"public.cube4data1\" order by 1, 2, 3, 4, 5");
    }

    bool find(Key const& key) override {
        short const parts[] = {1, key.purpose, key.mode, key.time, key.user};
        for (int i = 0; i < 5; ++i) sqlite3_bind_int(find_.get(), i + 1, parts[i]);
        bool const found = sqlite3_step(find_.get()) == SQLITE_ROW && sqlite3_column_text(find_.get(), 0) != nullptr;
        sqlite3_reset(find_.get());
        return found;
    }

    int list() override {
        std::vector<std::unique_ptr<Record>> records;
        while (sqlite3_step(list_.get()) == SQLITE_ROW) {
            auto record = std::make_unique<Record>();
            for (int i = 0; i < 5; ++i) record->parts[i] = static_cast<short>(sqlite3_column_int(list_.get(), i));
            records.push_back(std::move(record));
        }
        sqlite3_reset(list_.get());
        return static_cast<int>(records.size());
    }

private:
    struct Close {
        void operator()(sqlite3* database) const { sqlite3_close(database); }
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, Close>;

    static void require(bool done) {
        if (!done) throw std::runtime_error("the bare SQLite side failed");
    }

    Statement prepare(char const* sql) {
        sqlite3_stmt* statement = nullptr;
        require(
            sqlite3_prepare_v3(database_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) == SQLITE_OK);
        return Statement(statement);
    }

    std::unique_ptr<sqlite3, Close> database_;
    Statement find_;
    Statement list_;
};

class PostgresLookUp : public BareLookUp {
public:
    explicit PostgresLookUp(std::string const& url) : connection_(PQconnectdb(url.c_str())) {
        require(PQstatus(connection_.get()) == CONNECTION_OK);
        Answer const prepared(PQprepare(connection_.get(), "find",
            "select filename from public.cube4data1 where cubenr = $1 and purpose = $2 and mode = $3 and time = $4 "
            "and \"user\" = $5 limit 1",
            5, nullptr));
        require(PQresultStatus(prepared.get()) == PGRES_COMMAND_OK);
    }

    bool find(Key const& key) override {
        std::string const parts[] = {"1", std::to_string(key.purpose), std::to_string(key.mode),
            std::to_string(key.time), std::to_string(key.user)};
        char const* values[5];
        for (int i = 0; i < 5; ++i) values[i] = parts[i].c_str();
        Answer const answer(PQexecPrepared(connection_.get(), "find", 5, values, nullptr, nullptr, 0));
        return PQntuples(answer.get()) == 1;
    }

    int list() override {
        Answer const answer(PQexec(connection_.get(),
            "select cubenr, purpose, mode, time, \"user\" from public.cube4data1 order by 1, 2, 3, 4, 5"));
        std::vector<std::unique_ptr<Record>> records;
        for (int row = 0; row < PQntuples(answer.get()); ++row) {
            auto record = std::make_unique<Record>();
            for (int i = 0; i < 5; ++i)
                record->parts[i] = static_cast<short>(std::atoi(PQgetvalue(answer.get(), row, i)));
            records.push_back(std::move(record));
        }
        return static_cast<int>(records.size());
    }

private:
    struct Free {
        void operator()(PGconn* connection) const { PQfinish(connection); }
        void operator()(PGresult* result) const { PQclear(result); }
    };
    using Answer = std::unique_ptr<PGresult, Free>;

    static void require(bool done) {
        if (!done) throw std::runtime_error("the bare PostgreSQL side failed");
    }

    std::unique_ptr<PGconn, Free> connection_;
};

}

WorkDirectory::WorkDirectory() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() / ("cubes-bench-" + std::to_string(random()));
    std::filesystem::create_directory(path_);
}

WorkDirectory::~WorkDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Key keyOf(int index) {
    auto const part = [](int value) { return static_cast<short>(value % perPart + 1); };
    return {static_cast<short>(index / (perPart * perPart * perPart) + 1), part(index / (perPart * perPart)),
        part(index / perPart), part(index)};
}

std::vector<Key> randomKeys(int entries, int count) {
    std::mt19937 random(20);
    std::vector<Key> keys;
    for (int i = 0; i < count; ++i) keys.push_back(keyOf(static_cast<int>(random() % static_cast<unsigned>(entries))));
    return keys;
}

cubes::Project projectWithEntries(std::string const& directory, std::string const& url, int entries) {
    cubes::ProjectOptions options;
    options.database = url;
    auto project = cubes::Project::create(directory, options);
    TRkMatCubes(project.settings(), ".odm", true).Add("Bench");
    project.connection()->Execute(
        "delete from " + std::string(isSqlite(url) ? "\"public.cube4data1\"" : "public.cube4data1"));
    project.connection()->Execute(fmt::format(fmt::runtime(isSqlite(url) ? sqliteFill : postgresFill), entries));
    project.connection()->Execute("analyze");
    return project;
}

std::unique_ptr<BareLookUp> bareLookUp(std::string const& url) {
    if (isSqlite(url)) return std::make_unique<SqliteLookUp>(url.substr(7));
    return std::make_unique<PostgresLookUp>(url);
}

}
