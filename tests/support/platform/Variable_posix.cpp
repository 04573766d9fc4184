#include "support/Variable.h"

namespace cubes::test {

char const* const Variable::temporaryDirectory = "TMPDIR";

void Variable::set(std::optional<std::string> const& value) {
    if (value)
        setenv(name_, value->c_str(), 1);
    else
        unsetenv(name_);
}

}
