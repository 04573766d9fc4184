#include "routestorage/FakeProvider.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace cubes::test {

namespace {

template <typename Procedure>
Procedure* procedure(Library const& library, char const* name) {
    Procedure* found = nullptr;
    if (!library.getProcedure(name, found)) throw std::runtime_error(std::string("no ") + name);
    return found;
}

}

std::string fakeDirectory(std::string const& variant) {
    return std::string(FAKE_PROVIDERS) + "/" + variant;
}

FakeProvider::FakeProvider(std::string const& variant)
    : path_(fakeDirectory(variant)), library_("routeprovider64.dll"), utilities_("vlinterfaceutilities64.dll") {
    calls();
    setFields("");
    setLastError("");
}

FakeProvider::~FakeProvider() {
    EXPECT_EQ(living(), 0) << "objects of the provider were not given up";
}

std::string FakeProvider::calls() {
    return procedure<char const*()>(library_, "FakeCalls")();
}

int FakeProvider::living() const {
    return procedure<int()>(library_, "FakeLiving")();
}

void FakeProvider::setFields(char const* names) {
    procedure<void(char const*)>(library_, "FakeFields")(names);
}

void FakeProvider::setLastError(char const* text) {
    procedure<void(char const*)>(utilities_, "FakeLastError")(text);
}

}
