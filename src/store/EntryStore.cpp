#include <cubes/store/EntryStore.h>

#include "catalogue/Kinds.h"
#include "catalogue/Tables.h"
#include "host/database/Session.h"
#include "host/platform/Files.h"
#include "store/EntryWalk.h"
#include "store/EntryWriting.h"
#include "store/Failure.h"
#include "store/ProjectCheck.h"
#include "store/ProjectRepair.h"
#include "store/StoreTables.h"

#include <cubes/matrix/MatrixLimits.h>

#include <algorithm>
#include <charconv>
#include <set>

namespace cubes {

using catalogue::findKind;
using store::EntryWalk;
using store::EntryWriting;
using store::keyOf;
using store::reporting;
using store::StoreTables;
using store::Task;

namespace {

constexpr std::size_t cubeParts = 4;
constexpr std::size_t resultParts = 6;

// Before any file is read: a mistyped limit says nothing about a file.
void requireValidLimit() {
    static_cast<void>(mostZones());
}

bool isControl(char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}

std::optional<short> numberOf(std::string_view text) {
    short number = 0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

CubeInfo infoOf(catalogue::Kind const& kind) {
    return {kind.number, kind.word, kind.isResult, kind.holdsRoutes};
}

/// An entry's text in its pieces.
struct Pieces {
    std::string_view cube;
    std::vector<std::string_view> parts;
};

// The name of a cube may hold slashes, so that parts are split off from the right.
std::optional<Pieces> split(std::string_view text, std::size_t parts) {
    Pieces pieces{text, std::vector<std::string_view>(parts)};
    for (std::size_t i = parts; i-- > 0;) {
        auto const slash = pieces.cube.rfind('/');
        if (slash == std::string_view::npos) return std::nullopt;
        pieces.parts[i] = pieces.cube.substr(slash + 1);
        pieces.cube = pieces.cube.substr(0, slash);
    }
    return pieces;
}

// The kind that the front of an entry's text names.
catalogue::Kind const* kindAt(std::string_view text) {
    auto const front = text.substr(0, text.find('/'));
    if (auto const* const kind = findKind(front)) return kind;
    auto const number = numberOf(front);
    return number ? findKind(*number) : nullptr;
}

// The numbers of an entry that is written in numbers alone, with four or six parts.
std::optional<std::vector<short>> numbersIn(std::string_view text) {
    std::vector<short> numbers;
    for (std::size_t start = 0; start <= text.size();) {
        std::size_t const end = std::min(text.find('/', start), text.size());
        auto const number = numberOf(text.substr(start, end - start));
        if (!number) return std::nullopt;
        numbers.push_back(*number);
        start = end + 1;
    }
    bool const isEntry = numbers.size() == 1 + cubeParts || numbers.size() == 1 + resultParts;
    return isEntry ? std::optional(numbers) : std::nullopt;
}

std::vector<EntryKey> keysOf(EntryRange entries) {
    std::vector<EntryKey> keys;
    for (auto const& entry : entries) keys.push_back(entry.key);
    return keys;
}

}

InUse::InUse(InUse&& other) noexcept : store_(std::exchange(other.store_, nullptr)), key_(other.key_) {}

InUse::~InUse() {
    try {
        release();
    } catch (...) {
        // The counter stays raised, which protects the entry for longer than needed.
    }
}

void InUse::release() {
    if (auto* const store = std::exchange(store_, nullptr)) store->removeUser(key_);
}

EntryRange::EntryRange(std::unique_ptr<EntryWalk> walk) : walk_(std::move(walk)) {}
EntryRange::EntryRange(EntryRange&&) noexcept = default;
EntryRange::~EntryRange() = default;

EntryInfo const& EntryRange::current() const {
    return walk_->current();
}

void EntryRange::advance() {
    walk_->advance();
}

bool EntryRange::isAtEnd() const {
    return walk_->isAtEnd();
}

EntryStore::EntryStore(std::unique_ptr<StoreTables> tables) : tables_(std::move(tables)) {}
EntryStore::~EntryStore() = default;

EntryKey EntryStore::parse(std::string_view text) const {
    auto const numbersAlone = numbersIn(text);
    auto const isOfACube = [this](std::string_view entry) { return findCube(split(entry, cubeParts)->cube); };
    // A cube may be called "2030/1/15". Then "2030/01/15/1/1/1/1" is no result: its text would be an entry of the cube.
    if (numbersAlone &&
        (numbersAlone->size() == 1 + cubeParts || (!isOfACube(text) && !isOfACube(store::textOf(*numbersAlone)))))
        return keyOf(*numbersAlone);
    // Messages are C strings.
    std::string const shown(text.substr(0, text.find('\0')));
    Task const task{"read \"" + shown + "\" as an entry", shown};
    if (shown.size() < text.size()) task.fail(Reason::invalidKey, "it holds a zero byte");
    auto const* const kind = kindAt(text);
    bool const isResult = kind && kind->isResult;
    auto const pieces = split(text, isResult ? resultParts : cubeParts);
    if (!pieces || pieces->cube.empty() || (kind && pieces->cube.find('/') != std::string_view::npos))
        task.fail(Reason::invalidKey, std::string("it is written ") + (kind ? kind->word : "CUBE") +
                                          "/purpose/mode/time/user" + (isResult ? "/result/iteration" : ""));
    std::vector<short> numbers{0};
    for (std::size_t i = 0; i < pieces->parts.size(); ++i) {
        auto const read = numberOf(pieces->parts[i]);
        if (!read)
            task.fail(Reason::invalidKey, std::string(catalogue::keyColumns[i + 1]) +
                                              " must be a number from -32768 to 32767, not \"" +
                                              std::string(pieces->parts[i]) + "\"");
        numbers.push_back(*read);
    }
    auto const cube = kind ? std::optional(infoOf(*kind)) : findCube(pieces->cube);
    if (!cube) task.fail(Reason::notFound, "there is no cube " + std::string(pieces->cube));
    numbers.front() = cube->number;
    return keyOf(numbers);
}

std::string EntryStore::text(EntryKey const& key) const {
    return reporting({"name an entry", {}}, [&] { return tables_->text(key); });
}

// Names the entry by its numbers when the database cannot be asked for the name of its cube: the task then reports why.
store::Task EntryStore::taskFor(char const* verb, EntryKey const& key) const {
    auto const name = [&] {
        try {
            return text(key);
        } catch (StoreError const&) {
            return store::textOf(key.numbers());
        }
    }();
    return {std::string(verb) + " " + name, name};
}

std::vector<CubeInfo> EntryStore::cubes() const {
    return reporting({"list the cubes", {}}, [this] {
        std::vector<CubeInfo> found;
        for (auto const& cube : tables_->cubes().cubes())
            if (!findKind(cube.number)) found.push_back({cube.number, cube.name.str()});
        std::sort(found.begin(), found.end(), [](auto const& a, auto const& b) { return a.number < b.number; });
        return found;
    });
}

std::vector<CubeInfo> EntryStore::kinds() {
    std::vector<CubeInfo> found;
    for (auto const& kind : catalogue::kinds()) found.push_back(infoOf(kind));
    return found;
}

std::optional<CubeInfo> EntryStore::findCube(std::string_view nameOrNumber) const {
    if (auto const* const kind = findKind(nameOrNumber)) return infoOf(*kind);
    return reporting({"look up cube \"" + std::string(nameOrNumber) + "\"", {}}, [&]() -> std::optional<CubeInfo> {
        auto cubes = tables_->cubes();
        auto const infoOfNumber = [&cubes](std::optional<short> number) -> std::optional<CubeInfo> {
            if (!number) return std::nullopt;
            if (auto const* const kind = findKind(*number)) return infoOf(*kind);
            auto const known = cubes.name(*number);
            return known ? std::optional(CubeInfo{*number, known->str()}) : std::nullopt;
        };
        if (auto found = infoOfNumber(numberOf(nameOrNumber))) return found;
        std::string const name(nameOrNumber);
        return cubes.excess(name).empty() ? infoOfNumber(cubes.number(name.c_str())) : std::nullopt;
    });
}

short EntryStore::addCube(std::string const& name) {
    Task const task{"add cube \"" + name + "\"", {}};
    return reporting(task, [&] {
        auto const cubes = tables_->cubes();
        if (name.empty()) task.fail(Reason::invalidKey, "the name is empty");
        if (std::any_of(name.begin(), name.end(), isControl))
            task.fail(Reason::invalidKey, "the name contains control characters");
        if (auto const excess = cubes.excess(name); !excess.empty()) task.fail(Reason::invalidKey, excess);
        auto const number = cubes.add(name.c_str());
        if (!number) task.fail(Reason::database, "all cube numbers are in use");
        if (findKind(*number))
            task.fail(Reason::invalidKey, "the name is reserved for " + infoOf(*findKind(*number)).name);
        return *number;
    });
}

std::size_t EntryStore::removeCube(short cube) {
    Task const task{"remove cube " + std::to_string(cube), {}};
    if (findKind(cube)) task.fail(Reason::invalidKey, "every project has it");
    return reporting(task, [&] { return EntryWriting(*tables_).removeCube(task, cube); });
}

std::optional<EntryInfo> EntryStore::find(EntryKey const& key) const {
    return reporting([&] { return taskFor("look up", key); }, [&] { return EntryWriting(*tables_).find(key); });
}

TRkMatrix EntryStore::get(EntryKey const& key, GetOptions const& options) const {
    auto const task = taskFor("read", key);
    return reporting(task, [&] {
        EntryWriting const writing(*tables_);
        writing.requireMatrix(task, key);
        auto matrix = writing.read(task, writing.require(task, key));
        if (options.verify) EntryWriting::requireIntact(task, matrix);
        return matrix;
    });
}

std::optional<CubeInfo> EntryStore::selectedCube(EntrySelection const& selection) const {
    auto number = selection.cubeNumber;
    if (!number && selection.cube.empty()) return std::nullopt;
    if (!number) {
        if (auto cube = findCube(selection.cube)) return cube;
        number = numberOf(selection.cube);
    }
    if (!number) Task{"list the entries of " + selection.cube, {}}.fail(Reason::notFound, "there is no such cube");
    // Applications may store entries of a cube that is in no register.
    auto const* const kind = findKind(*number);
    return kind ? infoOf(*kind) : CubeInfo{*number, {}};
}

EntryRange EntryStore::entries(EntrySelection const& selection) const {
    auto const cube = selectedCube(selection);
    return reporting({"list entries", {}},
        [&] { return EntryRange(std::make_unique<EntryWalk>(*tables_, store::stagesOf(selection, cube))); });
}

std::map<short, std::size_t> EntryStore::counts() const {
    return reporting({"count the entries", {}}, [this] {
        std::map<short, std::size_t> counts = tables_->counts(false);
        for (auto const& [number, count] : tables_->counts(true)) counts[number] += count;
        return counts;
    });
}

static EntryWriting::Change changeOf(PutOptions const& options) {
    return {options.exists, {options.parent.has_value(), options.parent}};
}

void EntryStore::put(EntryKey const& key, TRkMatrix const& matrix, PutOptions const& options) {
    auto const task = taskFor("store", key);
    reporting(task, [&] { EntryWriting(*tables_).put(task, key, matrix, changeOf(options)); });
}

void EntryStore::putFile(EntryKey const& key, FileWriter const& write, PutOptions const& options) {
    auto const task = taskFor("store", key);
    try {
        reporting(task, [&] { EntryWriting(*tables_).putFile(task, key, write, changeOf(options)); });
    } catch (store::CallbackFailure const& failure) {
        std::rethrow_exception(failure.error);
    }
}

// Whether the file of one entry serves the other as it is.
static bool shareFiles(EntryKey const& a, EntryKey const& b) {
    auto const& first = catalogue::kindOf(a.cube());
    auto const& second = catalogue::kindOf(b.cube());
    if (first.holdsRoutes || second.holdsRoutes) return &first == &second;
    return &first == &second || (first.isResult && second.isResult);
}

void EntryStore::copy(EntryKey const& from, EntryKey const& to, CopyOptions const& options) {
    copyFrom(*this, from, to, options);
}

void EntryStore::copyFrom(EntryStore& source, EntryKey const& from, EntryKey const& to, CopyOptions const& options) {
    copyFrom({"copy " + source.text(from) + " to " + text(to), text(to)}, source, from, to, options);
}

void EntryStore::copyFrom(
    Task const& task, EntryStore& source, EntryKey const& from, EntryKey const& to, CopyOptions const& options) {
    reporting(task, [&] {
        if (&source == this && from == to) return;
        EntryWriting const reading(*source.tables_);
        EntryWriting const writing(*tables_);
        if (&source != this) requireOtherFile(task, source, from, to);
        auto const entry = reading.require(task, from);
        EntryWriting::Change const change{options.exists, {to.isResult(), std::nullopt}};
        if (shareFiles(from, to)) return writing.putCopy(task, to, reading.requireFile(task, entry), change);
        writing.put(task, to, reading.read(task, entry), change);
    });
}

// The entry of one project may be that of another: results have tables of their own, entries of cubes have not.
void EntryStore::requireOtherFile(
    store::Task const& task, EntryStore const& source, EntryKey const& from, EntryKey const& to) const {
    auto const directory = [&](EntryStore const& store, EntryKey const& key) {
        return store.tables_->directory(key.isResult());
    };
    bool const sharesRow = from == to && !from.isResult() &&
                           source.tables_->session().databaseIdentity() == tables_->session().databaseIdentity();
    if (sharesRow || platform::isSameDirectory(directory(source, from), directory(*this, to)))
        task.fail(Reason::otherDirectory, "both projects keep it in one directory or in one row of the database");
}

void EntryStore::move(EntryKey const& from, EntryKey const& to, CopyOptions const& options) {
    Task const task{"move " + text(from) + " to " + text(to), text(to)};
    reporting(task, [&] {
        if (from == to) return;
        EntryWriting const writing(*tables_);
        writing.requireOwnTransaction(task);
        auto const entry = writing.require(task, from);
        writing.requireFree(task, entry);
        EntryWriting::Change const change{
            options.exists, {to.isResult(), to.isResult() ? entry.parent : std::nullopt}, entry};
        if (shareFiles(from, to)) return writing.moveFile(task, to, change);
        writing.moveMatrix(task, to, change);
    });
}

void EntryStore::moveFrom(EntryStore& source, EntryKey const& from, EntryKey const& to, CopyOptions const& options) {
    if (&source == this) return move(from, to, options);
    Task const task{"move " + source.text(from) + " to " + text(to), source.text(from)};
    reporting(task, [&] {
        EntryWriting const writing(*source.tables_);
        EntryWriting::Removal removal(writing, task, from);
        copyFrom(task, source, from, to, options);
        removal.finish();
    });
}

void EntryStore::remove(EntryKey const& key) {
    auto const task = taskFor("remove", key);
    reporting(task, [&] { EntryWriting(*tables_).remove(task, key); });
}

std::size_t EntryStore::removeAll(EntrySelection const& selection) {
    return removeAll(keysOf(entries(selection)));
}

std::size_t EntryStore::removeAll(std::vector<EntryKey> const& keys) {
    Task const task{keys.size() == 1 ? "remove 1 entry" : "remove " + std::to_string(keys.size()) + " entries", {}};
    return reporting(task, [&] { return EntryWriting(*tables_).removeAll(task, keys); });
}

std::optional<EntryKey> EntryStore::parent(EntryKey const& key) const {
    auto const entry = find(key);
    if (!entry) taskFor("read the parent of", key).fail(Reason::notFound, "there is no such entry");
    return entry->parent;
}

void EntryStore::setParent(EntryKey const& key, std::optional<EntryKey> const& parent) {
    auto const task = taskFor("set the parent of", key);
    if (!key.isResult()) task.fail(Reason::invalidKey, "only results have parents");
    reporting(task, [&] { EntryWriting(*tables_).setParent(task, key, parent); });
}

std::vector<EntryKey> EntryStore::children(EntryKey const& key) const {
    return reporting(taskFor("list the children of", key), [&] {
        std::vector<EntryKey> found;
        std::string const condition = tables_->rows(true)->childrenOf(store::numbersOf(key));
        for (EntryWalk walk(*tables_, {{true, condition}}); !walk.isAtEnd(); walk.advance())
            found.push_back(walk.current().key);
        return found;
    });
}

Lineage EntryStore::lineage(EntryKey const& key) const {
    // All results are read once: asking for the children of each would read them as often.
    std::map<EntryKey, std::vector<EntryKey>> children;
    std::map<EntryKey, EntryKey> parents;
    reporting(taskFor("list the lineage of", key), [&] {
        for (EntryWalk walk(*tables_, {{true, {}}}); !walk.isAtEnd(); walk.advance()) {
            auto const& entry = walk.current();
            if (!entry.parent) continue;
            children[*entry.parent].push_back(entry.key);
            parents.emplace(entry.key, *entry.parent);
        }
    });
    Lineage lineage;
    std::set<EntryKey> seen = {key};
    for (auto up = parents.find(key); up != parents.end() && seen.insert(up->second).second;
         up = parents.find(up->second))
        lineage.ancestors.push_back(up->second);

    seen = {key};
    std::vector<Lineage::Descendant> ahead = {{key, 0}};
    while (!ahead.empty()) {
        auto const next = ahead.back();
        ahead.pop_back();
        if (next.generation > 0) lineage.descendants.push_back(next);
        auto const& below = children[next.key];
        for (auto child = below.rbegin(); child != below.rend(); ++child)
            if (seen.insert(*child).second) ahead.push_back({*child, next.generation + 1});
    }
    return lineage;
}

InUse EntryStore::use(EntryKey const& key) {
    addUser(key);
    return InUse(*this, key);
}

long EntryStore::addUser(EntryKey const& key) {
    return changeUsers(key, &catalogue::EntryTable::raiseUsers);
}

long EntryStore::removeUser(EntryKey const& key) {
    return changeUsers(key, &catalogue::EntryTable::lowerUsers);
}

long EntryStore::changeUsers(EntryKey const& key, bool (catalogue::EntryTable::*change)()) {
    auto const task = [&] { return taskFor("count the users of", key); };
    return reporting(task, [&] {
        auto rows = tables_->rows(key.isResult());
        if (!rows->locate(key.numbers())) task().fail(Reason::notFound, "there is no such entry");
        if (!(rows.operator->()->*change)()) {
            if (!rows->countsUsers()) task().fail(Reason::database, "the table of entries counts no users");
            task().fail(Reason::notFound, "it was removed meanwhile");
        }
        return rows->users();
    });
}

std::vector<Finding> EntryStore::check(EntrySelection const& selection, CheckOptions const& options) const {
    auto const cube = selectedCube(selection);
    return reporting({"check the project", {}}, [&] {
        requireValidLimit();
        return store::ProjectCheck(*tables_, selection, cube, options).run();
    });
}

std::vector<Repair> EntryStore::repair(std::vector<Finding> const& findings, RepairOptions const& options) {
    Task const task{"repair the project", {}};
    return reporting(task, [&] {
        requireValidLimit();
        EntryWriting(*tables_).requireOwnTransaction(task);
        store::ProjectRepair const project(*tables_, options);
        std::vector<Repair> repairs;
        for (auto const& finding : findings) repairs.push_back(project.repair(finding));
        return repairs;
    });
}

}
