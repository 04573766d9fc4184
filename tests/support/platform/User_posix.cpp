#include "support/User.h"

#include <stdexcept>

#include <unistd.h>

namespace cubes::test {

bool canBeOrdinaryUser() {
    return true;
}

void becomeOrdinaryUser() {
    if (geteuid() == 0 && setuid(65534) != 0) throw std::runtime_error("cannot become another user");
}

}
