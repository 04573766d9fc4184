#include <cubes/database/ColumnName.h>

#include "host/platform/NarrowText.h"

namespace Rktable {

ColumnName::ColumnName(wchar_t const* name) : text_(name ? cubes::platform::toNarrow(name) : std::string()) {}

ColumnName::ColumnName(std::wstring const& name) : text_(cubes::platform::toNarrow(name)) {}

}
