#include "Samples.h"

#include "support/Damage.h"
#include "support/Process.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace cubes::test;
using cubes::hdf5::FileStamp;
using cubes::hdf5::Id128;
using cubes::hdf5::IndexRecord;

namespace {

IndexRecord recordOf(std::string const& file) {
    auto const found = cubes::hdf5::findRecord(cubes::platform::File::openForReading(file));
    EXPECT_TRUE(found);
    return found ? found->record : IndexRecord{};
}

Id128 contentOf(std::string const& file, std::vector<SampleRoute> const& routes) {
    store(file, routes);
    return recordOf(file).content;
}

Id128 idOf(char digit) {
    return *Id128::parse(std::string(32, digit));
}

FileStamp const place{idOf('a'), "Zürich", 7, {1, 2, 3, 4, 5, 6}};

void setPlace(std::string const& file) {
    auto opened = cubes::platform::File::openShared(file);
    ASSERT_TRUE(cubes::hdf5::restamp(opened, place));
}

class RouteRecord : public testing::Test {
protected:
    TempDir const directory;
    std::string const file = directory.file("a.FDB");
};

}

TEST_F(RouteRecord, describesTheFileAndOmitsUnknownValues) {
    store(file, smallSet());
    IndexRecord record = recordOf(file);
    EXPECT_EQ(record.holds, IndexRecord::Holds::routes);
    EXPECT_EQ(record.fileSize, readFile(file).size());
    EXPECT_TRUE(record.content.isKnown());
    EXPECT_FALSE(record.provenance.isKnown());
    EXPECT_EQ(record.stamp, FileStamp{});
    storeFields(file);
    record = recordOf(file);
    EXPECT_EQ(record.holds, IndexRecord::Holds::routeData);
    EXPECT_EQ(record.fileSize, readFile(file).size());
    EXPECT_EQ(record.details, IndexRecord{}.details);
}

TEST_F(RouteRecord, hasTheSameContentIdOnlyForTheSameRoutesInTheSameOrder) {
    std::vector<SampleRoute> const routes = {{1, 2, {3, 4}, 0.5f}, {1, 2, {}, 0.5f}};
    Id128 const id = contentOf(file, routes);
    EXPECT_EQ(contentOf(file, routes), id);
    std::vector<std::vector<SampleRoute>> const others = {{}, {routes[0]}, {routes[1], routes[0]},
        {{1, 2, {3}, 0.5f}, {4, 2, {}, 0.5f}}, {{1, 2, {4, 3}, 0.5f}, routes[1]}, {{1, 2, {3, 4}, 0.25f}, routes[1]},
        {{2, 1, {3, 4}, 0.5f}, routes[1]}, {{1, 2, {3}, 0.5f}, {1, 2, {4}, 0.5f}}};
    for (auto const& other : others) EXPECT_NE(contentOf(file, other), id);
}

// The id in docs/route-file.md: recorded ids stay valid.
TEST_F(RouteRecord, hasTheDocumentedContentId) {
    EXPECT_EQ(contentOf(file, smallSet()).text(), "9e6059d60dced4300f4f70bf353a04bb");
}

TEST_F(RouteRecord, hasTheSameContentIdOnlyForTheSameFields) {
    auto const idOfField = [&](char const* name, RouteFieldType type, std::vector<std::uint8_t> const& values) {
        auto const set = dataSet(file, romCreate);
        EXPECT_EQ(set->addField(field(name, type, values)), rrDone);
        EXPECT_EQ(set->commit(), rrDone);
        return recordOf(file).content;
    };
    Id128 const id = idOfField("tolled", rftBoolean, {1, 0});
    EXPECT_EQ(idOfField("tolled", rftBoolean, {1, 0}), id);
    EXPECT_NE(idOfField("toll", rftBoolean, {1, 0}), id);
    EXPECT_NE(idOfField("tolled", rftBytes, {1, 0}), id);
    EXPECT_NE(idOfField("tolled", rftBoolean, {1, 1}), id);
}

TEST_F(RouteRecord, keepsThePlaceWhenRoutesAreAdded) {
    store(file, smallSet());
    Id128 const before = recordOf(file).content;
    setPlace(file);
    auto const set = routeSet(file, romExtend);
    add(*set, {7, 8, {9}, 1});
    EXPECT_EQ(set->commit(), rrDone);
    EXPECT_EQ(recordOf(file).stamp, place);
    EXPECT_NE(recordOf(file).content, before);
    EXPECT_EQ(recordOf(file).fileSize, readFile(file).size());
    store(file, smallSet());
    EXPECT_EQ(recordOf(file).stamp, FileStamp{});
}

TEST_F(RouteRecord, isForgottenWhenAnotherProgramDeletesIt) {
    store(file, smallSet());
    setPlace(file);
    auto const deleted = runPython("import h5py, sys\ndel h5py.File(sys.argv[1], 'r+')['cubes_index']", {file});
    ASSERT_EQ(deleted.exitCode, 0) << deleted.errors;
    auto const set = routeSet(file, romExtend);
    add(*set, {7, 8, {9}, 1});
    EXPECT_EQ(set->commit(), rrDone);
    EXPECT_EQ(recordOf(file).stamp, FileStamp{});
}

TEST_F(RouteRecord, keepsEverythingButTheSizeWhenTheKeyIsChanged) {
    store(file, smallSet());
    setPlace(file);
    IndexRecord const before = recordOf(file);
    routeSet(file, romExtend)->setKey(1, 2, 3, 4, 5, 6);
    IndexRecord const after = recordOf(file);
    EXPECT_EQ(after.content, before.content);
    EXPECT_EQ(after.stamp, place);
    EXPECT_EQ(after.fileSize, readFile(file).size());
    EXPECT_EQ(routesOf(*routeSet(file, romRead)), smallSet());
}

TEST_F(RouteRecord, ofRouteDataKeepsTheContentIdOfTheirRoutes) {
    storeFields(file);
    Id128 const routes = idOf('b');
    {
        auto opened = cubes::platform::File::openShared(file);
        auto found = cubes::hdf5::findRecord(opened);
        ASSERT_TRUE(found);
        std::ranges::copy(std::as_bytes(std::span(routes.bytes)), found->record.details.begin());
        opened.writeAt(found->offset, cubes::hdf5::encode(found->record));
    }
    auto const set = dataSet(file, romExtend);
    set->addField(field<float>("length", rftFloat, {1, 2, 3}));
    EXPECT_EQ(set->commit(), rrDone) << lastError();
    auto const details = recordOf(file).details;
    EXPECT_TRUE(std::ranges::equal(std::as_bytes(std::span(routes.bytes)), std::span(details).first(16)));
    EXPECT_EQ(dataSet(file, romRead)->countFields(), 7);
}

TEST_F(RouteRecord, showsThatAnotherProgramHasChangedTheContent) {
    struct Kind {
        void (*store)(std::string const& file);
        void (*open)(std::string const& file, RouteOpenMode mode);
        char const* change;
    };
    auto const storeRoutes = [](std::string const& path) { store(path, smallSet()); };
    auto const openRoutes = [](std::string const& path, RouteOpenMode mode) { routeSet(path, mode); };
    auto const openData = [](std::string const& path, RouteOpenMode mode) { dataSet(path, mode); };
    Kind const kinds[] = {
        {storeRoutes, openRoutes, "f['shares'][0] = 0.5"},
        {storeRoutes, openRoutes, "f['links'][0:2] = [20, 10]"},
        {storeFields, openData, "f['fields/0000'][0] = 1 - f['fields/0000'][0]"},
    };
    for (auto const& [storeFile, open, change] : kinds) {
        SCOPED_TRACE(change);
        storeFile(file);
        damage(file, change);
        std::string const before = readFile(file);
        for (auto const mode : {romRead, romExtend}) {
            open(file, mode);
            EXPECT_EQ(lastError(), "cannot open " + file +
                                       ": it was changed outside Cubes or damaged: its content does not match its "
                                       "checksum; restore it, or accept the change by deleting its dataset "
                                       "/cubes_index");
        }
        EXPECT_EQ(readFile(file), before);
        damage(file, "del f['cubes_index']");
        open(file, romRead);
        EXPECT_EQ(lastError(), "");
    }
}

TEST_F(RouteRecord, isNotNeededToReadAFile) {
    store(file, smallSet());
    Id128 const content = recordOf(file).content;
    std::string damaged = readFile(file);
    auto const found = damaged.find("CUBEIDX2");
    ASSERT_NE(found, std::string::npos);
    damaged[found + 30] = static_cast<char>(damaged[found + 30] ^ 1);
    writeFile(file, damaged);
    EXPECT_FALSE(cubes::hdf5::findRecord(cubes::platform::File::openForReading(file)));
    auto const set = routeSet(file, romExtend);
    EXPECT_EQ(routesOf(*set), smallSet());
    EXPECT_EQ(set->commit(), rrDone);
    EXPECT_EQ(recordOf(file).content, content);
}

// Files of the first version, which had no record.
TEST_F(RouteRecord, isMissingInFilesOfTheFirstVersionWhichAreRead) {
    std::string const first = FIRST_VERSION;
    auto const set = routeSet(first + "/routes.FDB", romRead);
    EXPECT_EQ(routesOf(*set), smallSet()) << lastError();
    EXPECT_EQ(ofPair(*set, 1, 3), Numbers({0, 3}));
    EXPECT_EQ(ofLink(*set, 20), Numbers({0, 2}));
    auto const data = dataSet(first + "/data.FDB", romRead);
    ASSERT_EQ(data->countFields(), 2) << lastError();
    std::vector<double> values(2);
    EXPECT_EQ(data->getRouteValues(2, values.data()), rrDone);
    EXPECT_EQ(values, std::vector<double>({-3, 1}));
    EXPECT_FALSE(cubes::hdf5::findRecord(cubes::platform::File::openForReading(first + "/routes.FDB")));
}

TEST_F(RouteRecord, isAddedToAFileOfTheFirstVersionWhenItIsWrittenAgain) {
    writeFile(file, readFile(std::string(FIRST_VERSION) + "/routes.FDB"));
    auto const set = routeSet(file, romExtend);
    set->setKey(6, 5, 4, 3, 2, 1);
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(recordOf(file).content, contentOf(directory.file("b.FDB"), smallSet()));
    EXPECT_EQ(set->commit(), rrDone);
    EXPECT_EQ(recordOf(file).content, contentOf(directory.file("b.FDB"), smallSet()));
    EXPECT_EQ(routesOf(*routeSet(file, romRead)), smallSet());
}
