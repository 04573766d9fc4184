#include "platform/NarrowText.h"

namespace cubes::routes::platform {

std::string toUtf8(std::string_view narrow) {
    return std::string(narrow);
}

std::string fromUtf8(std::string_view utf8) {
    return std::string(utf8);
}

}
