#include "store/StoreTables.h"

#include "catalogue/StoredName.h"
#include "catalogue/Tables.h"
#include "host/database/Cursor.h"
#include "host/database/Session.h"
#include "host/matrix/StagedFile.h"
#include "host/platform/Files.h"

#include <cubes/database/TPgConnection.h>
#include <cubes/database/TRkDatabaseException.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <algorithm>

namespace cubes::store {

using catalogue::changedColumn;
using catalogue::contentColumn;
using catalogue::directoryColumn;
using catalogue::findKind;
using catalogue::keyColumns;
using catalogue::noParent;
using catalogue::ResultKey;
using catalogue::sizeColumn;
using catalogue::whereAllowed;
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

// A field takes a long, which has 32 bits on Windows.
void setNumber(Rktable::TRkTableProxy& table, char const* column, long long number) {
    auto const cursor = database::CursorAccess::of(table);
    cursor->setValue(cursor->table().column(column), number);
}

std::string joined(std::span<short const> parts) {
    std::string text;
    for (short const part : parts) text += "/" + std::to_string(part);
    return text;
}

// The word of the key's kind. A row may name a parent whose key has other parts than entries of that kind.
char const* wordOf(EntryKey const& key) {
    auto const* const kind = findKind(key.cube());
    return kind && kind->isResult == key.isResult() ? kind->word : nullptr;
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

std::vector<std::string> StoreTables::otherProjects() const {
    auto const lock = session().lock();
    auto const question = session().dialect().schemasWith(catalogue::resultEntriesTable);
    database::Cells cells;
    std::size_t const rows = session().prepareOnce(question, {})->run({}, cells);
    std::vector<std::string> others;
    for (std::size_t i = 0; i < rows; ++i)
        if (std::string schema(cells.row(i, 1)[0].Text()); schema != schema_) others.push_back(std::move(schema));
    return others;
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
    if (auto const word = wordOf(key)) return word + joined(key.parts());
    auto names = cubes();
    return text(key, names);
}

std::string StoreTables::text(EntryKey const& key, catalogue::Register& names) const {
    if (auto const word = wordOf(key)) return word + joined(key.parts());
    auto const name = findKind(key.cube()) || key.isResult() ? std::nullopt : names.name(key.cube());
    return name && isCubeName(name->str()) ? name->str() + joined(key.parts()) : textOf(key.numbers());
}

std::string StoreTables::contentSchema(bool ofResults) const {
    return ofResults ? schema_ : catalogue::sharedSchema;
}

// In "public" the table is that of the entries of cubes, and a project of that name records nothing of its results.
bool StoreTables::hasContentTable(bool ofResults) const {
    return !sharesContentTable(ofResults) &&
           session().systemTables().find(contentSchema(ofResults), catalogue::contentTable) != nullptr;
}

bool StoreTables::sharesContentTable(bool ofResults) const {
    return ofResults && schema_ == catalogue::sharedSchema;
}

std::optional<Rows> StoreTables::contents(bool ofResults) const {
    if (!hasContentTable(ofResults)) return std::nullopt;
    return Rows(opened(connection_, catalogue::contentTable, contentSchema(ofResults)), keyParts(ofResults));
}

Id128 StoreTables::recordedDirectory(EntryKey const& key, Rows& contents) {
    if (!catalogue::falseWithoutTable([&] { return contents->locate(key.numbers()); })) return {};
    return Id128::parse(contents.cursor().FieldByName(directoryColumn)->AsString().str()).value_or(Id128());
}

void StoreTables::requireContentTable(bool ofResults) const {
    if (sharesContentTable(ofResults)) return;
    whereAllowed(
        session(), [&] { catalogue::createContentTable(session(), contentSchema(ofResults), keyParts(ofResults)); });
}

// Read before a transaction begins: reading may need HDF5.
ContentRecord StoreTables::recordOf(EntryKey const& key, std::string const& file) const {
    ContentRecord record{identity(key.isResult()), {}, 0, 0};
    try {
        record.size = platform::fileSize(file);
        record.changed = platform::lastChange(file);
        if (auto const origin = matrix::readOrigin(file)) record.content = origin->content;
    } catch (std::exception const&) {
        // What a damaged file holds is not known; it is copied as it is.
    }
    return record;
}

void StoreTables::record(EntryKey const& key, ContentRecord const& record) const {
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
        cursor.FieldByName(directoryColumn)->SetAsString(record.directory.text().c_str());
        cursor.FieldByName(contentColumn)->SetAsString(record.content.text().c_str());
        setNumber(cursor, sizeColumn, static_cast<long long>(record.size));
        setNumber(cursor, changedColumn, record.changed);
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

std::string textOf(std::span<short const> numbers) {
    return std::to_string(numbers[0]) + joined(numbers.subspan(1));
}

EntryKey keyOf(std::span<short const> n) {
    if (n.size() == resultParts) return {n[0], n[1], n[2], n[3], n[4], n[5], n[6]};
    return {n[0], n[1], n[2], n[3], n[4]};
}

std::optional<EntryKey> parentOf(ResultKey const& numbers) {
    // What the fixed classes store for "zero-based" is a cube without parts, and no parent.
    if (std::find(numbers.begin() + 1, numbers.begin() + cubeParts, notSet) != numbers.begin() + cubeParts)
        return std::nullopt;
    bool const isOfCube = numbers[5] == notSet && numbers[6] == notSet;
    return keyOf(std::span(numbers).first(isOfCube ? cubeParts : resultParts));
}

ResultKey numbersOf(std::optional<EntryKey> const& parent) {
    ResultKey numbers = noParent;
    if (parent) std::copy(parent->numbers().begin(), parent->numbers().end(), numbers.begin());
    return numbers;
}

}
