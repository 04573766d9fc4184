#pragma once

#include <typeinfo>

namespace cubes::platform {

/// The plain name of a class: "TRkSkimCube" on every platform. The text lives as long as the program.
char const* className(std::type_info const& type);

}
