#include <cubes/routestorage/RouteStorageCubeData.h>

#include <gtest/gtest.h>

#include <string>

using VL::Interface::RouteStorageInterface;
using VL::Interface::SettingsInterface;

namespace cubes::test {
namespace {

// A storage that outlives its last reference, so that it can be inspected.
class CountedStorage final : public RouteStorageInterface {
public:
    void addRef() override {
        ++references;
        calls += '+';
    }
    long release() override {
        calls += '-';
        return --references;
    }
    void open(long, SettingsInterface*) override {}
    char const* getFileName() const override { return ""; }
    void setCubeType(int) override {}
    void setKey(short, short, short, short, short, short) override {}

    int references = 0;
    std::string calls;
};

struct Part {
    void (RouteStorageCubeData::*set)(long);
    long (RouteStorageCubeData::*get)() const;
    long initial;
};

using Data = RouteStorageCubeData;

constexpr Part parts[] = {{&Data::setPurpose, &Data::getPurpose, -1}, {&Data::setMode, &Data::getMode, -1},
    {&Data::setTime, &Data::getTime, -1}, {&Data::setUser, &Data::getUser, -1},
    {&Data::setResult, &Data::getResult, -1}, {&Data::setIteration, &Data::getIteration, -1},
    {&Data::setParentPurpose, &Data::getParentPurpose, -1}, {&Data::setParentMode, &Data::getParentMode, -1},
    {&Data::setParentTime, &Data::getParentTime, -1}, {&Data::setParentUser, &Data::getParentUser, -1},
    {&Data::setParentResult, &Data::getParentResult, -1}, {&Data::setParentIteration, &Data::getParentIteration, -1},
    {&Data::setParentCubeNr, &Data::getParentCubeNr, 0}};

TEST(RouteStorageCubeData, beginsWithNothingSet) {
    Data const record;
    for (Part const& part : parts) EXPECT_EQ((record.*part.get)(), part.initial);
    EXPECT_EQ(record.getRouteStorage(), nullptr);
}

TEST(RouteStorageCubeData, storesEachPartUnchanged) {
    for (long const number : {0L, 1L, -1L, -32769L, 2147483647L, -2147483647L - 1}) {
        Data record;
        for (Part const& part : parts) {
            (record.*part.set)(number);
            EXPECT_EQ((record.*part.get)(), number);
            (record.*part.set)(part.initial);
            // Each part has a variable of its own.
            for (Part const& other : parts) EXPECT_EQ((record.*other.get)(), other.initial);
        }
    }
}

TEST(RouteStorageCubeData, isAcceptedByTheCubes) {
    Data record;
    CubeDataInterface& data = record;
    data.setPurpose(1);
    data.setMode(2);
    data.setTime(3);
    data.setUser(4);
    data.setResult(5);
    data.setIteration(6);
    EXPECT_EQ(data.getPurpose(), 1);
    EXPECT_EQ(data.getMode(), 2);
    EXPECT_EQ(data.getTime(), 3);
    EXPECT_EQ(data.getUser(), 4);
    EXPECT_EQ(data.getResult(), 5);
    EXPECT_EQ(data.getIteration(), 6);
    EXPECT_EQ(record.getParentPurpose(), -1);
}

TEST(RouteStorageCubeData, isDeletedByItsLastRelease) {
    CountedStorage storage;
    auto* const record = new Data;
    record->setRouteStorage(&storage);
    record->addRef();
    record->addRef();
    EXPECT_EQ(record->release(), 2);
    EXPECT_EQ(record->release(), 1);
    EXPECT_EQ(storage.references, 1);
    EXPECT_EQ(record->release(), 0);
    EXPECT_EQ(storage.references, 0);
}

TEST(RouteStorageCubeData, holdsOneReferenceOfItsStorage) {
    CountedStorage storage;
    {
        Data record;
        record.setRouteStorage(&storage);
        EXPECT_EQ(storage.references, 1);
    }
    EXPECT_EQ(storage.calls, "+-");
}

TEST(RouteStorageCubeData, addsAReferenceWhenItReturnsItsStorage) {
    CountedStorage storage;
    Data record;
    record.setRouteStorage(&storage);
    EXPECT_EQ(record.getRouteStorage(), &storage);
    EXPECT_EQ(record.getRouteStorage(), &storage);
    EXPECT_EQ(storage.references, 3);
}

TEST(RouteStorageCubeData, releasesTheStorageBeforeItHoldsAnother) {
    CountedStorage first;
    CountedStorage second;
    Data record;
    record.setRouteStorage(&first);
    record.setRouteStorage(&second);
    EXPECT_EQ(first.references, 0);
    EXPECT_EQ(second.references, 1);
    record.setRouteStorage(&second);
    EXPECT_EQ(second.calls, "+-+");
    record.setRouteStorage(nullptr);
    EXPECT_EQ(second.calls, "+-+-");
    EXPECT_EQ(record.getRouteStorage(), nullptr);
    record.setRouteStorage(nullptr);
    EXPECT_EQ(second.references, 0);
}

TEST(RouteStorageCubeData, isCopiedWithItsCountAndStorage) {
    CountedStorage storage;
    auto* const record = new Data;
    record->setRouteStorage(&storage);
    record->setIteration(6);
    record->setParentCubeNr(-9);
    record->addRef();
    auto* const copy = new Data(*record);
    EXPECT_EQ(copy->getIteration(), 6);
    EXPECT_EQ(copy->getParentCubeNr(), -9);
    EXPECT_EQ(storage.calls, "+");
    EXPECT_EQ(copy->release(), 1);
    EXPECT_EQ(copy->release(), 0);
    EXPECT_EQ(record->release(), 1);
    EXPECT_EQ(record->release(), 0);
    EXPECT_EQ(storage.calls, "+--");
}

TEST(RouteStorageCubeData, releasesNothingWhenItIsAssigned) {
    CountedStorage held;
    CountedStorage storage;
    Data record;
    record.setRouteStorage(&storage);
    record.setMode(2);
    auto* const other = new Data;
    other->addRef();
    other->setRouteStorage(&held);
    *other = record;
    EXPECT_EQ(held.calls, "+");
    EXPECT_EQ(storage.calls, "+");
    EXPECT_EQ(other->getMode(), 2);
    EXPECT_EQ(other->release(), 0);
    EXPECT_EQ(storage.calls, "+-");
}

}
}
