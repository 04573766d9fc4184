#include "BareDatabase.h"
#include "Record.h"

#include <sqlite3.h>

#include <stdexcept>

namespace bench {

namespace {

struct Close {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using Statement = std::unique_ptr<sqlite3_stmt, Close>;

void require(bool done) {
    if (!done) throw std::runtime_error("the bare SQLite side failed");
}

void bind(sqlite3_stmt* statement, int number, int value) {
    sqlite3_bind_int(statement, number, value);
}

void bind(sqlite3_stmt* statement, int number, std::string const& value) {
    sqlite3_bind_text(statement, number, value.c_str(), static_cast<int>(value.size()), SQLITE_STATIC);
}

class BareSqlite : public BareDatabase {
public:
    explicit BareSqlite(std::string const& path) {
        sqlite3* database = nullptr;
        require(sqlite3_open(path.c_str(), &database) == SQLITE_OK);
        database_.reset(database);
        execute("pragma journal_mode = wal");
        execute("pragma synchronous = full");
    }

    int prepare(std::string const& sql) override {
        statements_.push_back(prepared(sql));
        return static_cast<int>(statements_.size()) - 1;
    }

    int run(int number, Values const& values) override {
        sqlite3_stmt* const statement = statements_[static_cast<std::size_t>(number)].get();
        for (std::size_t i = 0; i < values.size(); ++i)
            std::visit([&](auto const& value) { bind(statement, static_cast<int>(i) + 1, value); }, values[i]);
        int rows = 0;
        int state = sqlite3_step(statement);
        for (; state == SQLITE_ROW; state = sqlite3_step(statement)) {
            for (int i = 0; i < sqlite3_column_count(statement); ++i) sqlite3_column_text(statement, i);
            ++rows;
        }
        require(state == SQLITE_DONE);
        sqlite3_reset(statement);
        return sqlite3_stmt_readonly(statement) ? rows : sqlite3_changes(database_.get());
    }

    int list(std::string const& query, bool endsInText) override {
        Statement const statement = prepared(query);
        int const numbers = sqlite3_column_count(statement.get()) - (endsInText ? 1 : 0);
        Records records;
        while (sqlite3_step(statement.get()) == SQLITE_ROW) {
            auto record = std::make_unique<Record>();
            for (int i = 0; i < numbers; ++i)
                record->numbers[static_cast<std::size_t>(i)] =
                    static_cast<short>(sqlite3_column_int(statement.get(), i));
            if (endsInText)
                record->filename = reinterpret_cast<char const*>(sqlite3_column_text(statement.get(), numbers));
            records.push_back(std::move(record));
        }
        return static_cast<int>(records.size());
    }

private:
    Statement prepared(std::string const& sql) {
        sqlite3_stmt* statement = nullptr;
        require(sqlite3_prepare_v3(database_.get(), sql.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) ==
                SQLITE_OK);
        return Statement(statement);
    }

    void execute(char const* sql) {
        require(sqlite3_exec(database_.get(), sql, nullptr, nullptr, nullptr) == SQLITE_OK);
    }

    std::unique_ptr<sqlite3, Close> database_;
    std::vector<Statement> statements_;
};

}

std::unique_ptr<BareDatabase> bareSqlite(std::string const& path) {
    return std::make_unique<BareSqlite>(path);
}

}
