#pragma once

#include <string>
#include <string_view>

/// The platform's narrow encoding, in which texts cross the border, and UTF-8, in which files hold them.
namespace cubes::routes::platform {

std::string toUtf8(std::string_view narrow);
std::string fromUtf8(std::string_view utf8);

}
