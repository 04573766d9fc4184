#include "support/Variable.h"

namespace cubes::test {

char const* const Variable::temporaryDirectory = "TMP";

// An empty value removes the variable.
void Variable::set(std::optional<std::string> const& value) {
    _putenv_s(name_, value.value_or("").c_str());
}

}
