#include "host/database/Conversion.h"

#include "host/database/SqlState.h"
#include "host/platform/NarrowText.h"

#include <cubes/database/TRkDatabaseException.h>

#include <charconv>

namespace cubes::database {

namespace {

std::optional<long long> wholeNumber(std::string const& text) noexcept {
    long long number = 0;
    char const* const end = text.data() + text.size();
    auto const result = std::from_chars(text.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

[[noreturn]] void refuse(Column const& column, std::string const& value, char const* sqlState) {
    throw TRkDatabaseException("column '" + column.name + "' cannot hold " + value, sqlState);
}

Value storableNumber(Value value, Column const& column) {
    auto const number = value.IsText() ? wholeNumber(value.Text()) : value.Number();
    if (!number) refuse(column, "'" + value.Text() + "', which is not a whole number", sqlstate::notANumber);
    if (*number > column.greatest || *number < -column.greatest - 1)
        refuse(column, std::to_string(*number), sqlstate::numberOutOfRange);
    return *number;
}

Value storableText(Value value, Column const& column) {
    if (value.IsNumber()) value = std::to_string(value.Number());
    return std::string(cut(value.Text(), column));
}

}

long long leadingNumber(std::string const& text) noexcept {
    char const* first = text.data();
    char const* const end = first + text.size();
    if (first != end && *first == '+') ++first;
    long long number = 0;
    std::from_chars(first, end, number);
    return number;
}

std::string_view cut(std::string_view text, Column const& column) {
    // A text has at least as many bytes as characters.
    if (column.size == 0 || text.size() <= column.size) return text;
    std::string_view result = platform::firstCharacters(text, column.size);
    for (std::size_t count = column.size; column.sizeIsInBytes && result.size() > column.size;)
        result = platform::firstCharacters(text, --count);
    return result;
}

bool suits(Value const& value, ColumnType type) noexcept {
    return type == ColumnType::number ? value.IsNumber() : value.IsText();
}

std::optional<Value> comparable(Value const& value, ColumnType type) {
    if (suits(value, type)) return value;
    if (value.IsNumber()) return Value(std::to_string(value.Number()));
    auto const number = wholeNumber(value.Text());
    return number ? std::optional(Value(*number)) : std::nullopt;
}

Value storable(Value value, Column const& column) {
    if (value.IsNull()) return value;
    return column.type == ColumnType::number ? storableNumber(std::move(value), column)
                                             : storableText(std::move(value), column);
}

}
