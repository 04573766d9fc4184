#pragma once

#include <cubes/Export.h>

#include <string>
#include <string_view>

namespace Rktable {

/// The name of a column or table, or a list of column names joined by ";", from narrow or wide text.
class CUBES_API ColumnName {
public:
    ColumnName(char const* name) : text_(name ? name : "") {}
    ColumnName(std::string name) : text_(std::move(name)) {}
    /// Wide names are converted to the platform's narrow encoding.
    ColumnName(wchar_t const* name);
    ColumnName(std::wstring const& name);

    std::string const& str() const noexcept { return text_; }

private:
    std::string text_;
};

}
