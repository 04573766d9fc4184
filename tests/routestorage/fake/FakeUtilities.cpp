// Returns the last error that a test has set. The build chooses the exported name.

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
