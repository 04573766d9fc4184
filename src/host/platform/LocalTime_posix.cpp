#include "host/platform/LocalTime.h"

namespace cubes::platform {

std::tm localTime() {
    std::time_t const now = std::time(nullptr);
    std::tm local{};
    ::localtime_r(&now, &local);
    return local;
}

}
