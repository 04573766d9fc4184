// A program in which only the system's loader finds a provider: its run path contains one.

#include <gtest/gtest.h>

#include "routestorage/FakeProvider.h"

namespace cubes::test {
namespace {

constexpr char const* provider = "routeprovider64.dll";

bool isExported(char const* name) {
    void (*procedure)() = nullptr;
    return Library(provider).getProcedure(name, procedure);
}

TEST(SystemsLoader, isUsedWhenNoOtherDirectoryHasAProvider) {
    ProviderPath const nowhere("");
    EXPECT_TRUE(isExported("CreateSettingsInterface"));
    EXPECT_TRUE(isExported("FakeLiving"));
}

TEST(SystemsLoader, isUsedLast) {
    ProviderPath const path(fakeDirectory("without"));
    EXPECT_FALSE(isExported("CreateSettingsInterface"));
    EXPECT_TRUE(isExported("FakeLiving"));
}

}
}
