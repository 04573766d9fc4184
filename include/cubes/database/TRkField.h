#pragma once

#include <cubes/Export.h>
#include <cubes/database/Value.h>
#include <cubes/text/TRkString.h>

#include <cstddef>

namespace cubes::database {
class Cursor;
}

namespace Rktable {

/// One column of a cursor's current row. Belongs to its cursor and follows it from row to row, until the cursor is
/// closed. Reading throws TRkDatabaseException when the cursor has no current row.
class CUBES_API TRkField {
public:
    /// The value as a whole number: 0 for null; a text by the number it begins with.
    long AsInteger() const;
    /// Takes effect in the row when the cursor is posted.
    /// Throws TRkDatabaseException when the cursor is neither editing nor appending.
    void SetAsInteger(long number);
    /// The value as text: empty for null; a number in decimal.
    TRkString AsString() const;
    /// A text longer than Size() is cut to it. A null pointer clears the field.
    /// Throws like SetAsInteger.
    void SetAsString(char const* text);
    bool IsNull() const;
    /// Makes the value null. Throws like SetAsInteger.
    void Clear();
    /// The text as this column would store it: cut to the column's size.
    TRkString Stored(char const* text) const;
    /// The greatest number of characters that a text column holds; 0 for other columns and for
    /// texts without a limit.
    int Size() const noexcept;
    /// The column's name as the database knows it.
    std::string const& Name() const noexcept;

private:
    friend class cubes::database::Cursor;
    TRkField(cubes::database::Cursor& cursor, std::size_t column) : cursor_(&cursor), column_(column) {}

    cubes::database::Cursor* cursor_;
    std::size_t column_;
};

}
