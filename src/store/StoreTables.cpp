#include "store/StoreTables.h"

#include "catalogue/StoredName.h"
#include "catalogue/Tables.h"
#include "host/database/Session.h"
#include "host/database/SqlState.h"
#include "host/database/Transaction.h"
#include "host/matrix/StagedFile.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <algorithm>

namespace cubes::store {

using catalogue::contentColumn;
using catalogue::directoryColumn;
using catalogue::findKind;
using catalogue::keyColumns;
using catalogue::noParent;
using catalogue::ResultKey;
using hdf5::Id128;

namespace {

constexpr std::size_t cubeParts = std::tuple_size_v<catalogue::CubeKey>;
constexpr std::size_t resultParts = std::tuple_size_v<ResultKey>;

constexpr short notSet = -1;

std::size_t keyParts(bool ofResults) {
    return ofResults ? resultParts : cubeParts;
}

CountedPtr<Rktable::TRkTableProxy> opened(
    Pgaccess::TPgConnection& connection, char const* table, std::string const& schema) {
    auto cursor = std::make_unique<Rktable::TRkTableProxy>(table, schema, table);
    cursor->SetConnection(&connection);
    cursor->Open();
    return cursor;
}

// Whether a name in front of "/1/1/1/1" is read as that of a cube of the register.
bool isCubeName(std::string const& name) {
    bool const isNumber = name.find_first_not_of("-0123456789") == std::string::npos;
    return !name.empty() && !isNumber && !findKind(std::string_view(name).substr(0, name.find('/')));
}

std::string joined(std::span<short const> parts) {
    std::string text;
    for (short const part : parts) text += "/" + std::to_string(part);
    return text;
}

// The database keeps the rows of the entries, but takes no table of ours.
bool isMissingRight(TRkDatabaseException const& error) {
    for (char const* const state : {database::sqlstate::missingRight, database::sqlstate::readOnly})
        if (error.SqlState() == state) return true;
    return false;
}

// Does what one may do without: with the right, or without an effect on a transaction under way.
template <typename Work>
void whereAllowed(database::Session& session, Work const& work) {
    auto const lock = session.lock();
    try {
        std::optional<database::Transaction> attempt;
        if (session.isInTransaction()) attempt.emplace(session);
        work();
        if (attempt) attempt->commit();
    } catch (TRkDatabaseException const& error) {
        // Others may record the same entry at this moment.
        if (!isMissingRight(error) && !error.IsDuplicateKey()) throw;
    }
}

}

database::Session& StoreTables::session() const {
    return connection_.Backend();
}

catalogue::Register StoreTables::cubes() const {
    return catalogue::Register(opened(connection_, catalogue::registerTable, {}));
}

Rows StoreTables::rows(bool ofResults) const {
    return ofResults ? Rows(opened(connection_, catalogue::resultEntriesTable, schema_), resultParts)
                     : Rows(opened(connection_, catalogue::cubeEntriesTable, catalogue::sharedSchema), cubeParts);
}

std::map<short, std::size_t> StoreTables::counts(bool ofResults) const {
    auto const lock = session().lock();
    auto const table = ofResults
                           ? session().dialect().qualifiedName(schema_, catalogue::resultEntriesTable)
                           : session().dialect().qualifiedName(catalogue::sharedSchema, catalogue::cubeEntriesTable);
    auto const question = "SELECT cubenr, count(*) FROM " + table + " WHERE cubenr IS NOT NULL GROUP BY cubenr";
    database::Cells cells;
    std::size_t const rows = session().prepareOnce(question, {})->run({}, cells);
    std::map<short, std::size_t> counts;
    for (std::size_t i = 0; i < rows; ++i) {
        auto const row = cells.row(i, 2);
        counts[static_cast<short>(row[0].Number())] = static_cast<std::size_t>(row[1].Number());
    }
    return counts;
}

std::string StoreTables::directory(bool ofResults) const {
    return TRkFString::Directory((ofResults ? settings_.WorkingDirectory() : settings_.MatrixDirectory()).str()).str();
}

Id128 StoreTables::identity(bool ofResults) const {
    std::lock_guard const guard(identityMutex_);
    Id128& known = identities_[ofResults ? 1 : 0];
    if (!known.isKnown()) known = matrix::directoryIdentity(directory(ofResults));
    return known;
}

std::string StoreTables::path(EntryKey const& key, std::string const& storedName) const {
    return catalogue::storedPath(directory(key.isResult()), storedName);
}

EntryInfo StoreTables::info(Rows const& rows, bool ofResults, catalogue::Register& names) const {
    auto const key = keyOf(rows->key());
    auto const name = rows->filename();
    return {key, text(key, names), name, path(key, name), rows->users(),
        ofResults ? parentOf(rows->parent()) : std::nullopt};
}

std::string StoreTables::text(EntryKey const& key) const {
    auto names = cubes();
    return text(key, names);
}

std::string StoreTables::text(EntryKey const& key, catalogue::Register& names) const {
    auto const* const kind = findKind(key.cube());
    // A row may name a parent whose key has other parts than entries of its cube.
    if (kind && kind->isResult == key.isResult()) return kind->word + joined(key.parts());
    auto const name = kind || key.isResult() ? std::nullopt : names.name(key.cube());
    return (name && isCubeName(name->str()) ? name->str() : std::to_string(key.cube())) + joined(key.parts());
}

std::string StoreTables::contentSchema(bool ofResults) const {
    return ofResults ? schema_ : catalogue::sharedSchema;
}

bool StoreTables::hasContentTable(bool ofResults) const {
    return session().systemTables().find(contentSchema(ofResults), catalogue::contentTable) != nullptr;
}

std::optional<Rows> StoreTables::contents(bool ofResults) const {
    if (!hasContentTable(ofResults)) return std::nullopt;
    return Rows(opened(connection_, catalogue::contentTable, contentSchema(ofResults)), keyParts(ofResults));
}

Id128 StoreTables::recordedDirectory(EntryKey const& key, Rows& contents) {
    if (!contents->locate(key.numbers())) return {};
    return Id128::parse(contents.cursor().FieldByName(directoryColumn)->AsString().str()).value_or(Id128());
}

void StoreTables::requireContentTable(bool ofResults) const {
    whereAllowed(
        session(), [&] { catalogue::createContentTable(session(), contentSchema(ofResults), keyParts(ofResults)); });
}

void StoreTables::record(EntryKey const& key, Id128 const& directory, Id128 const& content) const {
    whereAllowed(session(), [&] {
        auto contents = this->contents(key.isResult());
        if (!contents) return;
        auto& cursor = contents->cursor();
        auto const numbers = key.numbers();
        if ((*contents)->locate(numbers)) {
            cursor.Edit();
        } else {
            cursor.Append();
            for (std::size_t i = 0; i < numbers.size(); ++i)
                cursor.FieldByName(keyColumns[i])->SetAsInteger(numbers[i]);
        }
        cursor.FieldByName(directoryColumn)->SetAsString(directory.text().c_str());
        cursor.FieldByName(contentColumn)->SetAsString(content.text().c_str());
        cursor.Post();
    });
}

void StoreTables::forget(std::vector<EntryInfo> const& entries) const {
    whereAllowed(session(), [&] {
        std::optional<Rows> known[2] = {contents(false), contents(true)};
        for (auto const& entry : entries) {
            auto& contents = known[entry.key.isResult() ? 1 : 0];
            if (contents && (*contents)->locate(entry.key.numbers())) contents->cursor().Delete();
        }
    });
}

EntryKey keyOf(std::span<short const> n) {
    if (n.size() == resultParts) return {n[0], n[1], n[2], n[3], n[4], n[5], n[6]};
    return {n[0], n[1], n[2], n[3], n[4]};
}

std::optional<EntryKey> parentOf(ResultKey const& numbers) {
    if (numbers == noParent) return std::nullopt;
    bool const isOfCube = numbers[5] == notSet && numbers[6] == notSet;
    return keyOf(std::span(numbers).first(isOfCube ? cubeParts : resultParts));
}

ResultKey numbersOf(std::optional<EntryKey> const& parent) {
    ResultKey numbers = noParent;
    if (parent) std::copy(parent->numbers().begin(), parent->numbers().end(), numbers.begin());
    return numbers;
}

}
