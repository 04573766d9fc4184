#include "Samples.h"

#include "support/Process.h"

#include <gtest/gtest.h>

using namespace cubes::test;

namespace {

// The whole content of a file, one line per object.
constexpr char const* listProgram = R"(
import sys, h5py
def show(value):
    return value.tolist() if hasattr(value, 'tolist') else value
with h5py.File(sys.argv[1], 'r') as f:
    def describe(name, item):
        for key in sorted(item.attrs):
            print(f'{name}@{key}', show(item.attrs[key]))
        if isinstance(item, h5py.Dataset):
            print(name, item.dtype.str, f'{item.size} bytes' if name == 'cubes_index' else item[:].tolist())
    describe('/', f)
    f.visititems(describe)
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
cubes_index |u1 1024 bytes
destinations <i4 [3, 2, 3, 3]
links <u2 [10, 20, 10, 20, 15]
offsets <u8 [0, 2, 3, 4, 5]
origins <i4 [1, 1, 2, 1]
shares <f4 [0.75, 1.0, 1.0, 0.25]
)");
}

TEST_F(IndependentReader, findsLinkNumbersOf32Bits) {
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
cubes_index |u1 1024 bytes
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

// The sixth bit of a header's flags indicates whether it has times.
TEST_F(IndependentReader, findsNoTimeInAnyHeader) {
    store(file, smallSet());
    std::string const bytes = readFile(file);
    std::string const header = "OHDR\2";
    int headers = 0;
    for (auto at = bytes.find(header); at != std::string::npos; at = bytes.find(header, at + 1), ++headers)
        EXPECT_EQ(bytes.at(at + header.size()) & 0x20, 0) << at;
    EXPECT_GT(headers, 10);
}

// The bytes that the content id covers, and the ids of the index record, as docs/route-file.md describes them.
constexpr char const* contentProgram = R"(
import sys, struct, h5py, numpy as np
with h5py.File(sys.argv[1], 'r') as f:
    record = bytes(f['cubes_index'][:])
    covered = b''
    if 'fields' in f:
        for field in f['fields'].values():
            covered += field.attrs['name'] + b'\0' + struct.pack('<iQ', field.attrs['type'], field.size)
            covered += field[:].tobytes()
    else:
        offsets = f['offsets'][:]
        for r in range(len(offsets) - 1):
            links = f['links'][offsets[r]:offsets[r + 1]].astype('<u4')
            covered += struct.pack('<iifQ', f['origins'][r], f['destinations'][r], f['shares'][r], len(links))
            covered += links.tobytes()
    print(covered.hex())
    print(record[0:8].decode(), struct.unpack('<I', record[20:24])[0], record[24:40].hex())
    print(record[40:72].hex(), struct.unpack('<ii', record[72:80]), record[320:336].hex())
    print(struct.unpack('<Q', record[312:320])[0])
)";

std::vector<std::byte> bytesOfHex(std::string const& hex) {
    std::vector<std::byte> bytes;
    for (std::size_t at = 0; at + 1 < hex.size(); at += 2)
        bytes.push_back(static_cast<std::byte>(std::stoi(hex.substr(at, 2), nullptr, 16)));
    return bytes;
}

// The program's output for a file of that kind without known place and provenance.
void expectRecord(std::string const& file, int holds, std::string const& routes = std::string(32, '0')) {
    auto const result = runPython(contentProgram, {file});
    ASSERT_EQ(result.exitCode, 0) << result.errors;
    std::string const covered = result.output.substr(0, result.output.find('\n'));
    cubes::hdf5::ContentHash hash;
    hash.add(bytesOfHex(covered));
    EXPECT_EQ(result.output.substr(covered.size() + 1), "CUBEIDX2 " + std::to_string(holds) + " " + hash.id().text() +
                                                            "\n" + std::string(64, '0') + " (0, 0) " + routes + "\n" +
                                                            std::to_string(readFile(file).size()) + "\n");
}

TEST_F(IndependentReader, findsTheSameBytesForTheSameRoutes) {
    store(file, smallSet());
    store(directory.file("b.FDB"), smallSet());
    EXPECT_EQ(readFile(file), readFile(directory.file("b.FDB")));
}

TEST_F(IndependentReader, findsTheContentIdAndTheSizeInTheIndexRecord) {
    store(file, smallSet());
    expectRecord(file, 2);
    store(file, {{1, 2, {65536, 4294967295}, 0.5f}, {3, 4, {}, 2}});
    expectRecord(file, 2);
    storeFields(file);
    expectRecord(file, 3);
}
