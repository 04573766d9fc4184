#include "BareDatabase.h"
#include "Record.h"

#include <libpq-fe.h>

#include <cstdlib>
#include <stdexcept>

namespace bench {

namespace {

struct Free {
    void operator()(PGconn* connection) const { PQfinish(connection); }
    void operator()(PGresult* result) const { PQclear(result); }
};

using Answer = std::unique_ptr<PGresult, Free>;

void require(bool done) {
    if (!done) throw std::runtime_error("the bare PostgreSQL side failed");
}

std::string textOf(int value) {
    return std::to_string(value);
}

std::string const& textOf(std::string const& value) {
    return value;
}

class BarePostgres : public BareDatabase {
public:
    explicit BarePostgres(std::string const& url) : connection_(PQconnectdb(url.c_str())) {
        require(PQstatus(connection_.get()) == CONNECTION_OK);
    }

    int prepare(std::string const& sql) override {
        Answer const prepared(
            PQprepare(connection_.get(), std::to_string(statements_).c_str(), sql.c_str(), 0, nullptr));
        require(PQresultStatus(prepared.get()) == PGRES_COMMAND_OK);
        return statements_++;
    }

    int run(int number, Values const& values) override {
        std::vector<std::string> texts;
        std::vector<char const*> pointers;
        for (auto const& value : values)
            texts.push_back(std::visit([](auto const& one) -> std::string { return textOf(one); }, value));
        for (std::string const& text : texts) pointers.push_back(text.c_str());
        Answer const answer(PQexecPrepared(connection_.get(), std::to_string(number).c_str(),
            static_cast<int>(pointers.size()), pointers.data(), nullptr, nullptr, 0));
        require(PQresultStatus(answer.get()) == PGRES_TUPLES_OK || PQresultStatus(answer.get()) == PGRES_COMMAND_OK);
        return std::atoi(PQcmdTuples(answer.get()));
    }

    int list(std::string const& query, bool endsInText) override {
        Answer const answer(PQexec(connection_.get(), query.c_str()));
        int const numbers = PQnfields(answer.get()) - (endsInText ? 1 : 0);
        Records records;
        for (int row = 0; row < PQntuples(answer.get()); ++row) {
            auto record = std::make_unique<Record>();
            for (int i = 0; i < numbers; ++i)
                record->numbers[static_cast<std::size_t>(i)] =
                    static_cast<short>(std::atoi(PQgetvalue(answer.get(), row, i)));
            if (endsInText) record->filename = PQgetvalue(answer.get(), row, numbers);
            records.push_back(std::move(record));
        }
        return static_cast<int>(records.size());
    }

private:
    std::unique_ptr<PGconn, Free> connection_;
    int statements_ = 0;
};

}

std::unique_ptr<BareDatabase> barePostgres(std::string const& url) {
    return std::make_unique<BarePostgres>(url);
}

}
