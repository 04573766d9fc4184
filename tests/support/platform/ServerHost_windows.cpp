#include "support/platform/ServerHost.h"

namespace cubes::test {

std::string serverHost(std::string const&) {
    return "127.0.0.1";
}

}
