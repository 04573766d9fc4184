#include <cubes/routestorage/RouteStorageInterface.h>

#include <gtest/gtest.h>

#include <bit>
#include <cstddef>

#if __has_include(<cubes/Export.h>) || __has_include(<cubes/cubes.h>) || __has_include("Border.h")
#error "This test is built with one header."
#endif

using namespace VL::Interface;

namespace {

// The operations that another provider must implement, and no others.

class Settings final : public SettingsInterface {
public:
    void addRef() override {}
    long release() override { return 0; }
};

template <typename Interface>
class Minimal : public Interface {
public:
    void addRef() override {}
    long release() override { return 0; }
    void open(long, SettingsInterface*) override {}
    char const* getFileName() const override { return "a.FDB"; }
    void setCubeType(int) override {}
    void setKey(short, short, short, short, short, short) override {}

protected:
    ~Minimal() = default;
};

class RouteSet final : public Minimal<VelmoraRouteStorageRouteSetInterface> {};

class Header final : public AdditionalDataHeaderInterface {
public:
    void addRef() override {}
    long release() override { return 0; }
    int getFieldType(char const*) const override { return rftUnknown; }
    char const* getFieldNames() const override { return ""; }
};

class DataSet final : public Minimal<VelmoraRouteStorageDataSetInterface> {
public:
    AdditionalDataHeaderInterface* getAdditionalDataHeader() override { return nullptr; }
};

// The index of a virtual operation in its class's table, as this compiler numbers it.
template <typename Operation>
std::ptrdiff_t slot(Operation operation) {
    struct Pointer {
        std::ptrdiff_t offsetAndOne;
        std::ptrdiff_t adjustment;
    };
    auto const pointer = std::bit_cast<Pointer>(operation);
    return (pointer.offsetAndOne - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

}

TEST(MinimalProvider, isAProviderThatReportsMissingOperations) {
    Settings settings;
    EXPECT_EQ(settings.release(), 0);
    RouteSet set;
    RouteNumbers found{};
    Route route{};
    EXPECT_EQ(set.addRoute(route), rrNotOffered);
    EXPECT_EQ(set.commit(), rrNotOffered);
    EXPECT_EQ(set.countRoutes(), rrNotOffered);
    EXPECT_EQ(set.countLinks(), rrNotOffered);
    EXPECT_EQ(set.getRoute(0, &route), rrNotOffered);
    EXPECT_EQ(set.findRoutesOfPair(1, 2, &found), rrNotOffered);
    EXPECT_EQ(set.findRoutesOfOrigin(1, &found), rrNotOffered);
    EXPECT_EQ(set.findRoutesOfLink(1, &found), rrNotOffered);
}

TEST(MinimalProvider, mayOmitRouteDataToo) {
    DataSet set;
    Header header;
    RouteField field{};
    double value = 0;
    EXPECT_EQ(header.getFieldType("a"), rftUnknown);
    EXPECT_EQ(set.addField(field), rrNotOffered);
    EXPECT_EQ(set.commit(), rrNotOffered);
    EXPECT_EQ(set.countRoutes(), rrNotOffered);
    EXPECT_EQ(set.countFields(), rrNotOffered);
    EXPECT_EQ(set.getField(0, &field), rrNotOffered);
    EXPECT_EQ(set.findField("a", &field), rrNotOffered);
    EXPECT_EQ(set.getRouteValues(0, &value), rrNotOffered);
}

TEST(MinimalProvider, findsTheFixedOperationsInTheirSlots) {
    EXPECT_EQ(slot(&SettingsInterface::addRef), 0);
    EXPECT_EQ(slot(&SettingsInterface::release), 1);
    EXPECT_EQ(slot(&RouteStorageInterface::addRef), 0);
    EXPECT_EQ(slot(&RouteStorageInterface::release), 1);
    EXPECT_EQ(slot(&RouteStorageInterface::open), 2);
    EXPECT_EQ(slot(&RouteStorageInterface::getFileName), 3);
    EXPECT_EQ(slot(&RouteStorageInterface::setCubeType), 4);
    EXPECT_EQ(slot(&RouteStorageInterface::setKey), 5);
    EXPECT_EQ(slot(&VelmoraRouteStorageRouteSetInterface::addRoute), 6);
    EXPECT_EQ(slot(&VelmoraRouteStorageRouteSetInterface::findRoutesOfLink), 13);
    EXPECT_EQ(slot(&VelmoraRouteStorageDataSetInterface::getAdditionalDataHeader), 6);
    EXPECT_EQ(slot(&VelmoraRouteStorageDataSetInterface::getRouteValues), 13);
    EXPECT_EQ(slot(&AdditionalDataHeaderInterface::addRef), 0);
    EXPECT_EQ(slot(&AdditionalDataHeaderInterface::release), 1);
    EXPECT_EQ(slot(&AdditionalDataHeaderInterface::getFieldType), 2);
    EXPECT_EQ(slot(&AdditionalDataHeaderInterface::getFieldNames), 3);
}

TEST(MinimalProvider, findsTheNamesOfTheLibraries) {
    EXPECT_STREQ(VLINTERFACEUTILITIES_DLL_NAME, "vlinterfaceutilities64.dll");
    EXPECT_STREQ(SCRIPT_INTERFACE_DLL_NAME, "ScriptInterface64.dll");
}
