#include "Samples.h"

#include "support/Process.h"

#include <gtest/gtest.h>

using namespace cubes::test;

namespace {

// All that is in a file, in one line each.
constexpr char const* listProgram = R"(
import sys, h5py
def show(value):
    return value.tolist() if hasattr(value, 'tolist') else value
with h5py.File(sys.argv[1], 'r') as f:
    def tell(name, item):
        for key in sorted(item.attrs):
            print(f'{name}@{key}', show(item.attrs[key]))
        if isinstance(item, h5py.Dataset):
            print(name, item.dtype.str, item[:].tolist())
    tell('/', f)
    f.visititems(tell)
)";

std::string listed(std::string const& file) {
    auto const result = runPython(listProgram, {file});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return result.output;
}

class IndependentReader : public testing::Test {
protected:
    TempDir const directory;
    std::string const file = directory.file("a.FDB");
};

}

TEST_F(IndependentReader, findsEveryDatasetOfARouteSet) {
    store(file, smallSet());
    auto const set = routeSet(file, romExtend);
    set->setCubeType(-9);
    set->setKey(1, 2, 3, 4, 5, 6);
    EXPECT_EQ(listed(file), R"(/@cube_type -9
/@format b'cubes routes'
/@key [1, 2, 3, 4, 5, 6]
/@version 1
by_link/links <u2 [10, 15, 20]
by_link/offsets <u8 [0, 2, 3, 5]
by_link/routes <u4 [0, 1, 3, 0, 2]
by_pair/destinations <i4 [2, 3, 3]
by_pair/offsets <u8 [0, 1, 3, 4]
by_pair/origins <i4 [1, 1, 2]
by_pair/routes <u4 [1, 0, 3, 2]
destinations <i4 [3, 2, 3, 3]
links <u2 [10, 20, 10, 20, 15]
offsets <u8 [0, 2, 3, 4, 5]
origins <i4 [1, 1, 2, 1]
shares <f4 [0.75, 1.0, 1.0, 0.25]
)");
}

TEST_F(IndependentReader, findsWideLinks) {
    store(file, {{1, 2, {65536, 4294967295}, 1}});
    std::string const all = listed(file);
    EXPECT_NE(all.find("\nlinks <u4 [65536, 4294967295]\n"), std::string::npos) << all;
    EXPECT_NE(all.find("\nby_link/links <u4 [65536, 4294967295]\n"), std::string::npos) << all;
}

TEST_F(IndependentReader, findsEveryFieldOfRouteData) {
    storeFields(file);
    EXPECT_EQ(listed(file), R"(/@cube_type 0
/@format b'cubes route data'
/@key [-1, -1, -1, -1, -1, -1]
/@version 1
fields/0000@name b'tolled'
fields/0000@type 0
fields/0000 |u1 [1, 0, 1]
fields/0001@name b'class'
fields/0001@type 1
fields/0001 |u1 [0, 200, 255]
fields/0002@name b'stops'
fields/0002@type 2
fields/0002 <i2 [-32768, 0, 32767]
fields/0003@name b'number'
fields/0003@type 3
fields/0003 <i4 [-2147483647, 0, 2147483647]
fields/0004@name b'time'
fields/0004@type 4
fields/0004 <f4 [0.5, 1.25, -3.0]
fields/0005@name b'cost'
fields/0005@type 5
fields/0005 <f8 [0.1, 1e+300, -2.0]
)");
}

TEST_F(IndependentReader, findsEmptyFilesToo) {
    routeSet(file, romCreate);
    EXPECT_NE(listed(file).find("offsets <u8 [0]\n"), std::string::npos) << listed(file);
    EXPECT_NE(listed(file).find("\nlinks <u2 []\n"), std::string::npos) << listed(file);
    dataSet(file, romCreate);
    EXPECT_NE(listed(file).find("b'cubes route data'"), std::string::npos) << listed(file);
}

// The sixth bit of a header's flags tells of times in it.
TEST_F(IndependentReader, findsNoTimeInAnyHeader) {
    store(file, smallSet());
    std::string const bytes = readFile(file);
    std::string const header = "OHDR\2";
    int headers = 0;
    for (auto at = bytes.find(header); at != std::string::npos; at = bytes.find(header, at + 1), ++headers)
        EXPECT_EQ(bytes.at(at + header.size()) & 0x20, 0) << at;
    EXPECT_GT(headers, 10);
}

TEST_F(IndependentReader, findsTheSameBytesForTheSameRoutes) {
    store(file, smallSet());
    store(directory.file("b.FDB"), smallSet());
    EXPECT_EQ(readFile(file), readFile(directory.file("b.FDB")));
}
