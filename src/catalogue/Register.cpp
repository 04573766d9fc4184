#include "catalogue/Register.h"

#include "catalogue/EntryTable.h"
#include "catalogue/Tables.h"
#include "host/database/Transaction.h"
#include "host/platform/NarrowText.h"

#include <algorithm>
#include <limits>

namespace cubes::catalogue {

namespace {

constexpr char const* numberColumn = keyColumns[0];

// The number for a new cube; nothing when the numbers are used up.
std::optional<short> nextNumber(Rktable::TRkTableProxy& table) {
    long const greatest = std::max(0L, table.Greatest(numberColumn).value_or(0));
    if (greatest >= std::numeric_limits<short>::max()) return std::nullopt;
    return static_cast<short>(greatest + 1);
}

std::size_t charactersIn(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) text.remove_prefix(platform::firstCharacters(text, 1).size());
    return count;
}

}

bool Register::locate(short cubenr) const {
    return table_ && falseWithoutTable([&] { return table_->Locate(numberColumn, cubenr); });
}

bool Register::locate(char const* name) const {
    if (!table_ || !name) return false;
    std::string const stored = table_->FieldByName(nameColumn)->Stored(name).str();
    return falseWithoutTable(
        [&] { return table_->Locate(nameColumn, stored, Rktable::LocateOptions::ignoringCase()); });
}

std::string Register::excess(std::string const& name) const {
    auto const* const column = table_->FieldByName(nameColumn);
    if (column->Stored(name.c_str()).str() == name.c_str()) return {};
    auto const most = static_cast<std::size_t>(column->Size());
    auto const characters = charactersIn(name);
    // A database without an encoding counts bytes.
    bool const countsBytes = characters <= most;
    return "the name has " + std::to_string(countsBytes ? name.size() : characters) +
           (countsBytes ? " bytes" : " characters") + ", at most " + std::to_string(most) + " are stored";
}

std::optional<TRkString> Register::name(short cubenr) {
    auto known = names_.find(cubenr);
    if (known == names_.end())
        known = names_
                    .emplace(cubenr,
                        locate(cubenr) ? std::optional(table_->FieldByName(nameColumn)->AsString()) : std::nullopt)
                    .first;
    return known->second;
}

std::optional<short> Register::number(char const* name) const {
    if (!locate(name)) return std::nullopt;
    return static_cast<short>(table_->FieldByName(numberColumn)->AsInteger());
}

std::optional<short> Register::add(char const* name) const {
    if (!table_ || !name) return std::nullopt;
    if (auto const known = number(name)) return known;
    // Another process may register a cube at the same time: look again under the lock.
    database::ExclusiveAccess access(*table_);
    auto cubenr = number(name);
    if (!cubenr) {
        cubenr = nextNumber(*table_);
        if (cubenr) append(*cubenr, name);
    }
    access.commit();
    return cubenr;
}

void Register::ensure(short cubenr, char const* name) const {
    if (locate(cubenr)) return;
    try {
        append(cubenr, name);
    } catch (TRkDatabaseException const& error) {
        // Another process has added it since; if it has been removed again, add it.
        if (!error.IsDuplicateKey()) throw;
        if (!locate(cubenr)) append(cubenr, name);
    }
}

bool Register::removeIf(bool isFound) const {
    if (isFound) table_->Delete();
    return isFound;
}

std::vector<Register::Cube> Register::cubes() const {
    std::vector<Cube> found;
    if (!table_) return found;
    auto const* const number = table_->FieldByName(numberColumn);
    auto const* const name = table_->FieldByName(nameColumn);
    for (; !table_->GetEof(); table_->Next())
        found.push_back({static_cast<short>(number->AsInteger()), name->AsString()});
    return found;
}

void Register::append(long cubenr, char const* name) const {
    database::Savepoint savepoint(*table_);
    table_->Append();
    table_->FieldByName(numberColumn)->SetAsInteger(cubenr);
    table_->FieldByName(nameColumn)->SetAsString(name);
    table_->Post();
    savepoint.commit();
}

}
