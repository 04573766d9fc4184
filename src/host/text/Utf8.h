#pragma once

#include <string>
#include <string_view>

namespace cubes::text {

/// The first `count` characters of a UTF-8 text; the whole text when it has no more.
std::string firstCharacters(std::string_view text, int count);

}
