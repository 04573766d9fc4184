#include "varcubes/EntryRow.h"

#include <algorithm>

#include "catalogue/EntryTable.h"

namespace cubes::varcubes {

namespace {

using Columns = std::array<char const*, 7>;
constexpr Columns parentColumns = {
    "parentcubenr", "parentpurpose", "parentmode", "parenttime", "parentuser", "parentresult", "parentiteration"};

std::array<Rktable::TRkField*, 7> fieldsOf(Rktable::TRkTableProxy& table, Columns const& columns) {
    std::array<Rktable::TRkField*, 7> fields{};
    std::transform(columns.begin(), columns.end(), fields.begin(),
        [&table](char const* column) { return table.FindField(column); });
    return fields;
}

template <typename Fields>
bool allThere(Fields const& fields) {
    return std::all_of(fields.begin(), fields.end(), [](auto const* field) { return field; });
}

short numberIn(Rktable::TRkField const* field) {
    return static_cast<short>(field->AsInteger());
}

void setOrClear(Rktable::TRkField* field, bool isSet, short number) {
    if (!field) return;
    if (isSet)
        field->SetAsInteger(number);
    else
        field->Clear();
}

std::string quoted(std::string const& name) {
    std::string text = "\"";
    for (char const c : name) text += c == '"' ? std::string("\"\"") : std::string(1, c);
    return text + "\"";
}

// Null stands for `none`, and so does a column that is not there.
std::string equals(Rktable::TRkField const* field, short number, short none) {
    if (!field) return number == none ? "1=1" : "1=0";
    std::string const column = quoted(field->Name());
    std::string const same = column + "=" + std::to_string(number);
    return number == none ? "(" + same + " or " + column + " is null)" : same;
}

}

EntryRow::EntryRow(Rktable::TRkTableProxy& table)
    : key_(fieldsOf(table, keyColumns)), parent_(fieldsOf(table, parentColumns)),
      filename_(table.FindField("filename")), counter_(table.FindField(usageColumn)) {}

bool EntryRow::hasKey() const noexcept {
    return allThere(key_);
}

void EntryRow::fill(Key const& key, Key const& parent, std::string const& filename) {
    for (std::size_t i = 0; i < key.size(); ++i) key_[i]->SetAsInteger(key[i]);
    if (allThere(parent_))
        for (std::size_t i = 0; i < parent.size(); ++i)
            if (parent[i] != noParent[i]) parent_[i]->SetAsInteger(parent[i]);
    if (counter_) counter_->SetAsInteger(0);
    if (filename_) filename_->SetAsString(filename.c_str());
}

void EntryRow::changeParent(Key const& parent) {
    bool const hasParts = !std::equal(parent.begin() + 1, parent.end(), noParent.begin() + 1);
    setOrClear(parent_[0], parent[0] != noParent[0], parent[0]);
    // Once a part is set, those that are not are written as they are, unlike in a new row.
    for (std::size_t i = 1; i < parent.size(); ++i) setOrClear(parent_[i], hasParts, parent[i]);
    setOrClear(counter_, hasParts, 0);
}

Key EntryRow::parent() const {
    Key numbers = noParent;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        if (parent_[i] && !parent_[i]->IsNull()) numbers[i] = numberIn(parent_[i]);
    return numbers;
}

std::unique_ptr<TRkVarCubes::TKey> EntryRow::read() const {
    Key const up = parent();
    return std::make_unique<TRkVarCubes::TKey>(numberIn(key_[0]), numberIn(key_[1]), numberIn(key_[2]),
        numberIn(key_[3]), numberIn(key_[4]), numberIn(key_[5]), numberIn(key_[6]), up[0], up[1], up[2], up[3], up[4],
        up[5], up[6], false);
}

TRkString EntryRow::filename() const {
    return filename_ ? filename_->AsString() : TRkString();
}

bool EntryRow::isUsed() const {
    return counter_ && counter_->AsInteger() > 0;
}

std::string EntryRow::isOfCube(short cubenr) const {
    return quoted(key_[0]->Name()) + "=" + std::to_string(cubenr);
}

std::string EntryRow::isChildOf(Key const& parent) const {
    std::string condition;
    for (std::size_t i = 0; i < parent.size(); ++i)
        condition += (i ? " and " : "") + equals(parent_[i], parent[i], noParent[i]);
    return condition;
}

}
