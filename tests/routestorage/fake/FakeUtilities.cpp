// Tells the last error that a test has set. It is asked under a name that the build chooses.

#include "Exported.h"

#include <string>

namespace {

std::string text;
bool isNull = false;

}

extern "C" {

EXPORTED char const* NAMED(VlInterfaceGetLastError)() {
    return isNull ? nullptr : text.c_str();
}

EXPORTED void FakeLastError(char const* error) {
    isNull = !error;
    text = error ? error : "";
}
}
