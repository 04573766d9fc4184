#include "Samples.h"

#include "support/Process.h"
#include "support/SystemMessages.h"

#include <gtest/gtest.h>

using namespace cubes::test;

namespace {

// Route files that another program may write, each changed by a piece of Python.
std::string const writeProgram = R"(
import sys, h5py, numpy as np
for path, change in zip(sys.argv[1::2], sys.argv[2::2]):
    with h5py.File(path, 'w') as f:
        def put(name, values, kind):
            f.create_dataset(name, data=np.array(values, kind))
        def replace(name, values, kind):
            del f[name]
            put(name, values, kind)
        f.attrs['format'] = np.bytes_('cubes routes')
        f.attrs['version'] = 1
        f.attrs['cube_type'] = -9
        f.attrs['key'] = [1, 2, 3, 1, 1, 1]
        put('origins', [1, 1, 2], 'i4')
        put('destinations', [2, 3, 3], 'i4')
        put('shares', [1, 1, 1], 'f4')
        put('offsets', [0, 1, 3, 4], 'u8')
        put('links', [10, 10, 20, 20], 'u4')
        put('by_pair/origins', [1, 1, 2], 'i4')
        put('by_pair/destinations', [2, 3, 3], 'i4')
        put('by_pair/offsets', [0, 1, 2, 3], 'u8')
        put('by_pair/routes', [0, 1, 2], 'u4')
        put('by_link/links', [10, 20], 'u4')
        put('by_link/offsets', [0, 2, 4], 'u8')
        put('by_link/routes', [0, 1, 1, 2], 'u4')
        exec(change)
)";

std::string const changeProgram = R"(
import sys, h5py, numpy as np
for path, change in zip(sys.argv[1::2], sys.argv[2::2]):
    with h5py.File(path, 'r+') as f:
        exec(change)
)";

struct Foreign {
    char const* name;
    std::string change;
    std::string reason;
};

std::string pathOf(TempDir const& directory, Foreign const& foreign) {
    return directory.file(std::string(foreign.name) + ".FDB");
}

template <typename Table>
void writeAll(std::string const& program, TempDir const& directory, Table const& table) {
    std::vector<std::string> arguments;
    for (Foreign const& each : table) {
        arguments.push_back(pathOf(directory, each));
        arguments.push_back(each.change);
    }
    auto const result = runPython(program, arguments);
    ASSERT_EQ(result.exitCode, 0) << result.errors;
}

void expectReason(std::string const& file, std::string const& reason) {
    EXPECT_EQ(lastError().find("cannot open " + file + ": " + reason), 0u) << lastError();
}

Foreign const refused[] = {
    {"ofAnotherKind", "f.attrs['format'] = np.bytes_('cubes route data')",
        "it holds cubes route data, not cubes routes"},
    {"withoutKind", "del f.attrs['format']", "it holds something else, not cubes routes"},
    {"ofALaterVersion", "f.attrs['version'] = 2", "its version 2 is unknown"},
    {"withoutKey", "del f.attrs['key']", "the attribute key is missing"},
    {"withAShortKey", "f.attrs['key'] = [1, 2]", "the attribute key has another size"},
    {"withATextForAKey", "f.attrs['key'] = 'abc'", "the attribute key has another type"},
    {"withANumberForAFormat", "f.attrs['format'] = 1", "the attribute format is not a text of fixed length"},
    {"withAFlexibleText", "f.attrs['format'] = 'cubes routes'", "the attribute format is not a text of fixed length"},
    {"withoutLinks", "del f['links']", "HDF5 could not find links"},
    {"withoutIndex", "del f['by_link']", "HDF5 could not find by_link"},
    {"withAGroupForLinks", "del f['links']\nf.create_group('links')", "HDF5 could not open links"},
    {"withADatasetForAGroup", "del f['by_pair']\nput('by_pair', [1], 'i4')", "HDF5 could not open by_pair"},
    {"withATable", "replace('links', [[10, 10], [20, 20]], 'u4')", "links is not a list"},
    {"withASingleNumber", "replace('links', 10, 'u4')", "links is not a list"},
    {"withSignedLinks", "replace('links', [10, 10, 20, 20], 'i4')", "links has numbers of another type"},
    {"withWideLinks", "replace('links', [10, 10, 20, 20], 'u8')", "links has numbers of another type"},
    {"withRealLinks", "replace('links', [10, 10, 20, 20], 'f4')", "links has numbers of another type"},
    {"withTextLinks", "replace('links', [b'a', b'b'], 'S1')", "links has numbers of another type"},
    {"withFewOrigins", "replace('origins', [1], 'i4')", "destinations has another size"},
    {"withAShareThatIsNotANumber", "replace('shares', [1, float('nan'), 1], 'f4')", "a share is not a finite number"},
    {"withFewShares", "replace('shares', [1], 'f4')", "shares has another size"},
    {"withoutShares", "del f['shares']\nf.create_dataset('shares', (0,), 'f4', maxshape=(None,))",
        "shares has another size"},
    {"withFewOffsets", "replace('offsets', [0, 4], 'u8')", "offsets does not fit"},
    {"withoutOffsets", "replace('offsets', [], 'u8')", "offsets does not fit"},
    {"withOffsetsPastTheEnd", "replace('offsets', [0, 1, 2**60, 4], 'u8')", "offsets does not fit"},
    {"withDescendingOffsets", "replace('offsets', [0, 3, 1, 4], 'u8')", "offsets does not fit"},
    {"withOffsetsFromOne", "replace('offsets', [1, 1, 3, 4], 'u8')", "offsets does not fit"},
    {"withAnIndexOfUnknownRoutes", "replace('by_link/routes', [0, 1, 1, 3], 'u4')", "by_link does not fit"},
    {"withAnIndexInDisorder", "replace('by_link/links', [20, 10], 'u4')", "by_link does not fit"},
    {"withADescendingIndex", "replace('by_link/routes', [1, 0, 1, 2], 'u4')", "by_link does not fit"},
    {"withEmptyLists", "replace('by_link/offsets', [0, 0, 4], 'u8')", "by_link does not fit"},
    {"withAnIndexTooShort", "replace('by_pair/routes', [0, 1], 'u4')", "by_pair does not fit"},
    {"withOtherPairs", "replace('by_pair/destinations', [2, 4, 5], 'i4')", "by_pair does not fit"},
    {"withUnequalPairs", "replace('by_pair/destinations', [2, 3], 'i4')", "by_pair does not fit"},
    {"withAnIndexOfOtherLinks", "replace('by_link/links', [10, 21], 'u4')", "by_link does not fit"},
    {"withAnIndexOfOtherRoutes", "replace('by_link/routes', [0, 2, 1, 2], 'u4')", "by_link does not fit"},
    {"withAnIndexThatLacksALink",
        "replace('by_link/links', [10], 'u4')\nreplace('by_link/offsets', [0, 2], 'u8')\n"
        "replace('by_link/routes', [0, 1], 'u4')",
        "by_link does not fit"},
    {"withAnIndexThatLacksARoute",
        "replace('by_link/offsets', [0, 2, 3], 'u8')\nreplace('by_link/routes', [0, 1, 1], 'u4')",
        "by_link does not fit"},
    {"withAnIndexThatHasARouteTooMuch", "replace('links', [10, 10, 10, 20], 'u4')", "by_link does not fit"},
    {"withAnIndexLargerThanTheLinks",
        "replace('by_link/links', [10, 20, 30], 'u4')\nreplace('by_link/offsets', [0, 2, 4, 5], 'u8')\n"
        "replace('by_link/routes', [0, 1, 1, 2, 2], 'u4')",
        "by_link does not fit"},
    {"thatClaimsMoreThanItHolds",
        "del f['links']\nf.create_dataset('links', shape=(2**40,), dtype='u4', chunks=(1024,))",
        "links is larger than the file"},
    {"withLinksInAnotherFile", "del f['links']\nf['links'] = h5py.ExternalLink('/dev/null', '/links')",
        "links is a soft or external link"},
    {"withASoftLink", "del f['links']\nf['links'] = h5py.SoftLink('/origins')", "links is a soft or external link"},
    {"withExternalStorage",
        "del f['links']\nf.create_dataset('links', shape=(4,), dtype='u4', external=[('/dev/zero', 0, 16)])",
        "links is not stored in this file"},
    {"withAVirtualDataset",
        "layout = h5py.VirtualLayout(shape=(4,), dtype='u4')\n"
        "layout[:] = h5py.VirtualSource('/dev/null', 'links', shape=(4,))\n"
        "del f['links']\nf.create_virtual_dataset('links', layout)",
        "links is not stored in this file"},
};

}

TEST(ForeignRouteFile, isRefusedWithAReason) {
    TempDir const directory;
    writeAll(writeProgram, directory, refused);
    for (Foreign const& each : refused) {
        SCOPED_TRACE(each.name);
        std::string const file = pathOf(directory, each);
        auto const set = routeSet(file, romRead);
        expectReason(file, each.reason);
        EXPECT_EQ(set->countRoutes(), rrFailed);
    }
}

TEST(AnotherProgram, mayWriteRouteFiles) {
    Foreign const welcome[] = {
        {"plain", "", ""},
        {"withLinksOfTheOtherByteOrder", "replace('links', [10, 10, 20, 20], '>u2')", ""},
        {"withSharesOfTheOtherByteOrder", "replace('shares', [1, 1, 1], '>f4')", ""},
        {"withAnotherDataset", "f.create_dataset('notes', data=[1, 2])", ""},
    };
    TempDir const directory;
    writeAll(writeProgram, directory, welcome);
    for (Foreign const& each : welcome) {
        SCOPED_TRACE(each.name);
        auto const set = routeSet(pathOf(directory, each), romRead);
        EXPECT_EQ(lastError(), "");
        EXPECT_EQ(routesOf(*set), (std::vector<SampleRoute>{{1, 2, {10}, 1}, {1, 3, {10, 20}, 1}, {2, 3, {20}, 1}}));
        EXPECT_EQ(ofLink(*set, 20), Numbers({1, 2}));
    }
}

TEST(AnotherProgram, mayWriteARouteFileWithoutRoutes) {
    Foreign const empty[] = {{"empty",
        "lists = []\n"
        "f.visititems(lambda name, item: lists.append((name, item.dtype)) if hasattr(item, 'dtype') else None)\n"
        "for name, kind in lists:\n"
        "    del f[name]\n"
        "    if name.endswith('offsets'): put(name, [0], kind)\n"
        "    else: f.create_dataset(name, (0,), kind, maxshape=(None,))\n",
        ""}};
    TempDir const directory;
    writeAll(writeProgram, directory, empty);
    auto const set = routeSet(pathOf(directory, empty[0]), romRead);
    EXPECT_EQ(lastError(), "");
    EXPECT_EQ(set->countRoutes(), 0);
}

TEST(AnotherProgram, mayHaveWrittenAFileOfAnotherKind) {
    TempDir const directory;
    std::string const file = directory.file("routes.FDB");
    struct {
        std::string bytes;
        char const* reason;
    } const others[] = {
        {"", "it is empty"},
        {"abc", "it is truncated"},
        {"origin,destination\n", "it is not an HDF5 file"},
        {std::string(100000, '\0'), "it is not an HDF5 file"},
        {"\x89HDF\r\n\x1a\n", "it is truncated"},
        {"SQLite format 3" + std::string(1000, '\0'), "it is not an HDF5 file"},
    };
    for (auto const& other : others) {
        writeFile(file, other.bytes);
        routeSet(file, romRead);
        EXPECT_EQ(lastError().find("cannot open " + file + ": " + other.reason), 0u) << lastError();
        dataSet(file, romExtend);
        EXPECT_EQ(lastError().find("cannot open " + file + ": " + other.reason), 0u) << lastError();
        EXPECT_EQ(readFile(file), other.bytes);
    }
}

TEST(AnotherProgram, doesNotBlockReading) {
    TempDir const directory;
    std::string const device = endlessDevice();
    struct {
        std::string path;
        std::string reason;
    } const places[] = {
        {directory.str(), isADirectory()},
        {device.empty() ? directory.str() : device, device.empty() ? isADirectory() : "it is not a regular file"},
        {directory.file("none/routes.FDB"), noSuchDirectory()},
        {"", noSuchDirectory()},
    };
    for (auto const& place : places) {
        routeSet(place.path, romRead);
        EXPECT_EQ(lastError(), "cannot open " + place.path + ": " + place.reason);
    }
}

TEST(TheOtherKind, isNotReadAsRouteData) {
    TempDir const directory;
    std::string const file = directory.file("routes.FDB");
    store(file, smallSet());
    dataSet(file, romRead);
    EXPECT_EQ(lastError(), "cannot open " + file + ": it holds cubes routes, not cubes route data");
}

TEST(ForeignDataFile, isRefusedWithAReason) {
    Foreign const changes[] = {
        {"withoutFields", "del f['fields']", "HDF5 could not find fields"},
        {"ofAnUnknownType", "f['fields/0004'].attrs['type'] = 6", "unknown field type 6"},
        {"ofAnotherType", "f['fields/0004'].attrs['type'] = 3", "0004 has numbers of another type"},
        {"withoutAName", "del f['fields/0004'].attrs['name']", "the attribute name is missing"},
        {"withANameTwice", "f['fields/0004'].attrs['name'] = np.bytes_('cost')", "a field cost exists already"},
        {"withAnEmptyName", "f['fields/0004'].attrs['name'] = np.bytes_('')", "the field has no name"},
        {"withABooleanOfTwo", "f['fields/0000'][1] = 2", "the boolean field tolled has values besides 0 and 1"},
        {"withFewValues",
            "a = dict(f['fields/0004'].attrs)\ndel f['fields/0004']\nf['fields/0004'] = np.zeros(2, 'f4')\n"
            "f['fields/0004'].attrs.update(a)",
            "the field time has 2 values, the others have 3"},
    };
    TempDir const directory;
    for (Foreign const& each : changes) storeFields(pathOf(directory, each));
    writeAll(changeProgram, directory, changes);
    for (Foreign const& each : changes) {
        SCOPED_TRACE(each.name);
        dataSet(pathOf(directory, each), romRead);
        expectReason(pathOf(directory, each), each.reason);
    }
}
