#include "Entries.h"

#include <fmt/format.h>

#include <random>

namespace bench {

namespace {

constexpr char const* fourColumns[] = {"cubenr", "purpose", "mode", "time", "user"};
constexpr char const* sixColumns[] = {"cubenr", "purpose", "mode", "time", "user", "result", "iteration"};

cubes::Project newProject(std::string const& directory, std::string const& database) {
    cubes::ProjectOptions options;
    options.database = database;
    return cubes::Project::create(directory, options);
}

std::string tableName(bool isSqlite, std::string const& schema, char const* alias) {
    return fmt::format(fmt::runtime(isSqlite ? "\"{}.{}\"" : "\"{}\".\"{}\""), schema, alias);
}

template <typename Cubes>
int walk(Cubes const& cubes) {
    auto table = cubes.Open();
    int count = 0;
    for (; !table->GetEof(); table->Next()) count += table->FieldByName("cubenr")->AsInteger() != 0 ? 1 : 0;
    cubes.Close(table);
    return count;
}

template <typename Cubes>
int list(Cubes const& cubes) {
    TRkAutoListT<typename Cubes::TKey> entries;
    cubes.Get(entries);
    return entries.Count();
}

bool add(TRkMatCubes const& cubes, Key const& k) {
    auto table = cubes.Open();
    bool const added = cubes.Add(table, 1, k[0], k[1], k[2], k[3], false);
    cubes.Close(table);
    return added;
}

int children(TRkSkimCube const& cubes, Key const& k) {
    TRkAutoListT<TRkVarCubes::TKey> found;
    cubes.GetPmturis(static_cast<short>(TRkSkimCube::CubeType), k[0], k[1], k[2], k[3], k[4], k[5], found);
    return found.Count();
}

Operations operationsOf(std::shared_ptr<TRkMatCubes> const& cubes) {
    return {
        [=](Key const& k) { return cubes->Check(1, k[0], k[1], k[2], k[3], false); },
        [=](Key const& k) { return !cubes->FileName(1, k[0], k[1], k[2], k[3], false).IsEmpty(); },
        [=](Key const& k) { return cubes->isCorrect(1, k[0], k[1], k[2], k[3]); },
        [=](Key const& k) { return cubes->incUsage(1, k[0], k[1], k[2], k[3]); },
        [=](Key const& k) { return cubes->decUsage(1, k[0], k[1], k[2], k[3]); },
        [=](Key const& k) { return add(*cubes, k); },
        [=](Key const& k) { return cubes->Clear(1, k[0], k[1], k[2], k[3], false); },
        [=] { return list(*cubes); },
        [=] { return walk(*cubes); },
        {},
    };
}

Operations operationsOf(std::shared_ptr<TRkSkimCube> const& cubes) {
    return {
        [=](Key const& k) { return cubes->Check(k[0], k[1], k[2], k[3], k[4], k[5], false); },
        [=](Key const& k) { return !cubes->FileName(k[0], k[1], k[2], k[3], k[4], k[5], false).IsEmpty(); },
        [=](Key const& k) { return cubes->isCorrect(k[0], k[1], k[2], k[3], k[4], k[5]); },
        [=](Key const& k) { return cubes->incUsage(k[0], k[1], k[2], k[3], k[4], k[5]); },
        [=](Key const& k) { return cubes->decUsage(k[0], k[1], k[2], k[3], k[4], k[5]); },
        [=](Key const& k) { return cubes->Add(k[0], k[1], k[2], k[3], k[4], k[5], 0, -1, -1, -1, -1, -1, -1, false); },
        [=](Key const& k) { return cubes->Clear(k[0], k[1], k[2], k[3], k[4], k[5], false); },
        [=] { return list(*cubes); },
        [=] { return walk(*cubes); },
        [=](Key const& k) { return children(*cubes, k); },
    };
}

Operations matrixCubes(cubes::Project const& project) {
    auto const cubes = std::make_shared<TRkMatCubes>(project.settings(), ".odm", true);
    cubes->Add("Bench");
    return operationsOf(cubes);
}

Operations skims(cubes::Project const& project) {
    return operationsOf(std::make_shared<TRkSkimCube>(project.settings(), true));
}

std::string publicSchema(cubes::Project const&) {
    return "public";
}

std::string projectSchema(cubes::Project const& project) {
    return TRkSkimCube(project.settings(), true).getMatrixSchema().c_str();
}

// The parts of entry i's key, as keyOf computes them, in SQL.
std::vector<std::string> partsInSql(Family const& family) {
    std::vector<std::string> parts;
    std::size_t const count = family.columns.size() - 1;
    int divisor = 1;
    for (std::size_t i = 1; i < count; ++i) divisor *= family.perPart;
    for (std::size_t i = 0; i < count; ++i, divisor /= family.perPart)
        parts.push_back(
            i == 0 ? fmt::format("(i / {} + 1)", divisor) : fmt::format("(i / {} % {} + 1)", divisor, family.perPart));
    return parts;
}

}

Family const fourKeys = {"four-key", "cube4data1", 1, fourColumns, "cubenr, purpose, mode, time, \"user\"", false, 32,
    1, matrixCubes, publicSchema};
Family const sixKeys = {"six-key", "cube5data1", static_cast<int>(TRkSkimCube::CubeType), sixColumns,
    "cubenr, purpose, mode, time, \"user\", result, iteration, parentcubenr, parentpurpose, parentmode, parenttime, "
    "parentuser, parentresult, parentiteration, filename",
    true, 10, 2, skims, projectSchema};

Entries::Entries(Family const& family, std::string const& postgresUrl, int count)
    : family_(family), count_(count), database_(postgresUrl.empty() ? "sqlite:" + work_.path("bench.db") : postgresUrl),
      name_(fmt::format("{} {}", postgresUrl.empty() ? "sqlite" : "postgres", family.name)),
      project_(newProject(work_.path("project"), database_)),
      table_(tableName(postgresUrl.empty(), family.schemaIn(project_), family.alias)),
      operations_(family.operationsIn(project_)), bare_(bareDatabase(database_)) {
    fill();
}

void Entries::fill() {
    auto const parts = partsInSql(family_);
    std::string const keys = fmt::format("{}, {}", family_.cube, fmt::join(parts, ", "));
    auto const run = [&](std::string const& sql) { bare_->run(bare_->prepare(sql), {}); };
    run("delete from " + table_);
    run(fmt::format("insert into {} ({}, \"usageCounter\", filename) with recursive n(i) as "
                    "(select 0 union all select i + 1 from n where i + 1 < {}) select {}, 0, {} || '.bin' from n",
        table_, fmt::format("\"{}\"", fmt::join(family_.columns, "\", \"")), count_, keys,
        fmt::join(parts, " || '-' || ")));
    run("analyze");
}

void Entries::assignToOtherCube(int first) {
    Key const key = keyOf(first);
    std::string columns;
    std::string values;
    for (std::size_t i = 0; i + 1 < family_.columns.size(); ++i) {
        columns += fmt::format("{}\"{}\"", i == 0 ? "" : ", ", family_.columns[i + 1]);
        values += fmt::format("{}{}", i == 0 ? "" : ", ", key[i]);
    }
    bare_->run(bare_->prepare(fmt::format(
                   "update {} set cubenr = {} where ({}) >= ({})", table_, family_.cube - 1, columns, values)),
        {});
    bare_->run(bare_->prepare("analyze"), {});
}

std::vector<Key> Entries::randomKeys(int picked) const {
    std::mt19937 random(20);
    std::vector<Key> keys;
    for (int i = 0; i < picked; ++i) keys.push_back(keyOf(static_cast<int>(random() % static_cast<unsigned>(count_))));
    return keys;
}

cubes::EntryKey Entries::storeKey(Key const& key) const {
    auto const cube = static_cast<short>(family_.cube);
    if (family_.columns.size() == 5) return {cube, key[0], key[1], key[2], key[3]};
    return {cube, key[0], key[1], key[2], key[3], key[4], key[5]};
}

Key Entries::keyOf(int index) const {
    Key key{};
    for (std::size_t i = family_.columns.size() - 2; i > 0; --i, index /= family_.perPart)
        key[i] = static_cast<short>(index % family_.perPart + 1);
    key[0] = static_cast<short>(index + 1);
    return key;
}

Values Entries::valuesOf(Key const& key) const {
    Values values = {family_.cube};
    for (std::size_t i = 0; i + 1 < family_.columns.size(); ++i) values.emplace_back(key[i]);
    return values;
}

}
