#pragma once

#include "host/database/Table.h"

#include <cubes/database/Value.h>

#include <optional>
#include <string>
#include <string_view>

namespace cubes::database {

using Rktable::Value;

/// The whole number that a text begins with (sign and digits, within 64 bits); 0 without one.
long long leadingNumber(std::string const& text) noexcept;

/// Whether a column's comparisons take the value as it is.
bool suits(Value const& value, ColumnType type) noexcept;
/// The value as one that suits the column; nothing when no row can equal it.
std::optional<Value> comparable(Value const& value, ColumnType type);
/// The first whole characters of a text, as many as the column holds.
std::string_view cut(std::string_view text, Column const& column);
/// The value as the column stores it: a text cut to the declared size.
/// Throws TRkDatabaseException for what the column cannot hold.
Value storable(Value value, Column const& column);

}
