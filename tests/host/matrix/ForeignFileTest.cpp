#include "host/hdf5/GuardedFile.h"
#include "host/matrix/Samples.h"
#include "host/matrix/StagedFile.h"

#include "support/Process.h"
#include "support/SharedData.h"
#include "support/SystemMessages.h"

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>
#include <thread>

using cubes::OmxFile;
using namespace cubes::test;

namespace {

// Creates one file with h5py for each program text, "0", "1", ... in the directory.
void makeAllWithH5py(std::vector<std::string> const& programs, TempDir const& directory) {
    std::string all = "import sys, h5py, zlib, numpy as np\n";
    for (std::size_t i = 0; i < programs.size(); ++i)
        all += "f = h5py.File(sys.argv[1] + '/" + std::to_string(i) + "', 'w')\n" + programs[i] + "\nf.close()\n";
    auto const result = runPython(all, {directory.str()});
    ASSERT_EQ(result.exitCode, 0) << result.errors;
}

std::string makeWithH5py(std::string const& program, TempDir const& directory) {
    makeAllWithH5py({program}, directory);
    return directory.file("0");
}

// Wine neither deletes a named pipe nor reports why, and the removal of its directory would never end.
struct RemovedByPython {
    std::string path;
    ~RemovedByPython() {
        auto const result = runPython("import os, sys; os.path.exists(sys.argv[1]) and os.remove(sys.argv[1])", {path});
        EXPECT_EQ(result.exitCode, 0) << result.errors;
    }
};

std::string reasonOf(std::string const& file) {
    TRkMatrix const matrix = opened(file);
    EXPECT_FALSE(matrix.IsValid());
    EXPECT_NE(matrix.Reason().find(file), std::string::npos) << matrix.Reason();
    return matrix.Reason();
}

}

TEST(ForeignFile, everyTableOfARealFileIsReadAsH5pyReadsIt) {
    CUBES_REQUIRE_DATA("omx/example.omx");
    std::string const path = sharedData("omx/example.omx");
    TempDir const directory;
    auto const dump = runPython(R"(
import sys, h5py
f = h5py.File(sys.argv[1])
for name in sorted(f['data']):
    f['data'][name][:].astype('<f4').tofile(sys.argv[2] + '/' + name)
    print(name)
)",
        {path, directory.str()});
    ASSERT_EQ(dump.exitCode, 0) << dump.errors;
    OmxFile const file = OmxFile::open(path);
    std::string names;
    for (auto const& name : file.tables()) {
        names += name + "\n";
        TRkMatrix const matrix = file.read(name);
        ASSERT_EQ(matrix.Rows(), 485);
        ASSERT_EQ(matrix.Columns(), 485);
        std::string const bytes(reinterpret_cast<char const*>(matrix.RowAt(0, 0)), 485 * 485 * sizeof(float));
        EXPECT_TRUE(bytes == readFile(directory.file(name))) << name;
        EXPECT_TRUE(file.isIntact(name));
    }
    EXPECT_EQ(names, dump.output);
    EXPECT_FALSE(names.empty());
}

TEST(ForeignFile, anyLayoutAndNumericTypeIsRead) {
    TempDir const directory;
    std::string const all = R"(
import sys, h5py, numpy as np
e = 1000 * np.arange(40)[:, None] + np.arange(30)
def make(name, **how):
    with h5py.File(sys.argv[1] + '/' + name, 'w') as f:
        f.create_dataset('data/trips', **how)
make('int32', data=e.astype('<i4'))
make('int64be', data=e.astype('>i8'))
make('uint16', data=(e % 1000).astype('<u2') + 0)
make('float32be', data=e.astype('>f4'), chunks=(7, 9))
make('float64', data=e.astype('<f8'))
make('half', data=(e % 1000).astype('<f2'), chunks=(40, 30))
make('chunked', data=e.astype('<f4'), chunks=(7, 9))
make('gzip', data=e.astype('<f8'), chunks=(7, 9), compression='gzip', shuffle=True, fletcher32=True)
make('bands', data=e.astype('<f4'), chunks=(7, 30), compression='gzip', shuffle=True)
make('bandsplain', data=e.astype('<f4'), chunks=(7, 30), compression='gzip', compression_opts=9)
make('resizable', data=e.astype('<f4'), chunks=(64, 30), maxshape=(None, 30), compression='gzip')
with h5py.File(sys.argv[1] + '/compact', 'w') as f:
    p = h5py.h5p.create(h5py.h5p.DATASET_CREATE)
    p.set_layout(h5py.h5d.COMPACT)
    d = h5py.h5d.create(f.create_group('data').id, b'trips', h5py.h5t.IEEE_F64BE, h5py.h5s.create_simple((40, 30)), p)
    d.write(h5py.h5s.ALL, h5py.h5s.ALL, e.astype('f8'))
with h5py.File(sys.argv[1] + '/userblock', 'w', userblock_size=512) as f: f['data/trips'] = e
with h5py.File(sys.argv[1] + '/latest', 'w', libver='latest') as f:
    f.create_dataset('data/trips', data=e, chunks=(7, 9), compression='gzip')
)";
    ASSERT_EQ(runPython(all, {directory.str()}).errors, "");
    TRkMatrix const expected = numbered(40, 30);
    TRkMatrix small = TRkMatrix::inMemory(40, 30);
    for (int i = 0; i < 40; ++i)
        for (int j = 0; j < 30; ++j) small.RowAt(i, 0)[j] = static_cast<float>(j);
    int files = 0;
    for (auto const& entry : std::filesystem::directory_iterator(directory.str())) {
        bool const isSmall = entry.path().filename() == "uint16" || entry.path().filename() == "half";
        TRkMatrix const matrix = opened(entry.path().string(), 0, 5);
        ASSERT_TRUE(matrix.IsValid()) << matrix.Reason();
        EXPECT_EQ(difference(matrix, isSmall ? small : expected), "") << entry.path();
        EXPECT_EQ(opened(entry.path().string()).RowAt(39, 8)[29], isSmall ? 29 : 39029) << entry.path();
        EXPECT_EQ(matrix.MatrixKind(), 5);
        ++files;
    }
    EXPECT_EQ(files, 14);
}

TEST(ForeignFile, numbersOutsideSinglePrecisionBecomeInfiniteOrNan) {
    TempDir const directory;
    std::string const file =
        makeWithH5py("f['data/t'] = np.array([[1e300, -1e300, np.nan, 1e-300, -0.0, np.inf]])", directory);
    TRkMatrix const matrix = opened(file);
    float const* const row = matrix.RowAt(0, 8);
    EXPECT_EQ(row[0], std::numeric_limits<float>::infinity());
    EXPECT_EQ(row[1], -std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(row[2]));
    EXPECT_EQ(row[3], 0.0f);
    EXPECT_TRUE(std::signbit(row[4]));
    EXPECT_EQ(row[5], std::numeric_limits<float>::infinity());
}

TEST(ForeignFile, chunksThatWereNeverWrittenHaveTheFillValue) {
    TempDir const directory;
    std::string const file = makeWithH5py(
        "d = f.create_dataset('data/t', (20, 10), 'f4', chunks=(5, 10), compression='gzip', fillvalue=-1)\n"
        "d[7, 3] = 4",
        directory);
    TRkMatrix const matrix = opened(file);
    EXPECT_EQ(matrix.RowAt(19, 8)[0], -1);
    EXPECT_EQ(matrix.RowAt(7, 8)[3], 4);
    EXPECT_EQ(matrix.RowAt(7, 8)[4], -1);
}

TEST(ForeignFile, aFilterThatWasSkippedForAChunkIsNotReversed) {
    TempDir const directory;
    std::string const file = makeWithH5py(R"(
e = np.arange(40, dtype='<f4').reshape(4, 10)
d = f.create_dataset('data/t', (4, 10), '<f4', chunks=(2, 10), compression='gzip', shuffle=True)
d.id.write_direct_chunk((0, 0), zlib.compress(e[:2].tobytes()), filter_mask=1)
d.id.write_direct_chunk((2, 0), e[2:].tobytes(), filter_mask=3)
)",
        directory);
    TRkMatrix const matrix = opened(file);
    for (int i = 0; i < 40; ++i) EXPECT_EQ(matrix.RowAt(i / 10, 8)[i % 10], static_cast<float>(i));
}

TEST(ForeignFile, zoneNumbersComeFromALookupOfDistinctWholeNumbers) {
    TempDir const directory;
    using Zones = std::vector<std::int32_t>;
    struct Case {
        char const* lookups;
        Zones zones;
    };
    std::vector<Case> const cases = {
        Case{"", {}},
        Case{"f['lookup/districts'] = [30, 10, 20]", {30, 10, 20}},
        Case{"f['lookup/a'] = [1, 2, 3]; f['lookup/b'] = [4, 5, 6]", {}},
        Case{"f['lookup/a'] = [1, 2, 3]; f['lookup/TAZ'] = [4, 5, 6]", {4, 5, 6}},
        Case{"f['lookup/NO'] = np.array([4, 5, 6], '>f8')", {4, 5, 6}},
        Case{"f['lookup/NO'] = [4.5, 5, 6]", {}},
        Case{"f['lookup/NO'] = [4, 5, 4]", {}},
        Case{"f['lookup/NO'] = [4, 5]", {}},
        Case{"f['lookup/NO'] = [4, 5, 3000000000]", {}},
        Case{"f['lookup/NO'] = [np.nan, 5, 6]", {}},
        Case{"f['lookup/NO'] = [b'x', b'y', b'z']", {}},
        Case{"f['lookup/NO'] = [[1, 2, 3]]", {}},
    };
    std::vector<std::string> programs;
    for (auto const& [lookups, zones] : cases) programs.push_back(std::string("f['data/t'] = np.eye(3)\n") + lookups);
    programs.push_back("f['data/t'] = np.ones((3, 2)); f['lookup/NO'] = [1, 2, 3]");
    makeAllWithH5py(programs, directory);
    for (std::size_t i = 0; i < cases.size(); ++i)
        EXPECT_EQ(opened(directory.file(std::to_string(i))).Zones(), cases[i].zones) << cases[i].lookups;
    EXPECT_TRUE(opened(directory.file(std::to_string(cases.size()))).Zones().empty());
}

TEST(ForeignFile, aTableIsChosenByNameIfThereAreSeveral) {
    TempDir const directory;
    makeAllWithH5py({"f['data/b'] = np.eye(3); f['data/a'] = np.ones((2, 2)); f['data/list'] = [1, 2]\n"
                     "f['data/sub/x'] = np.eye(2); f['lookup/z'] = [1, 2, 3]",
                        "f['data/matrix'] = 7 * np.eye(3); f['data/a'] = np.ones((2, 2))"},
        directory);
    std::string const file = directory.file("0");
    EXPECT_NE(reasonOf(file).find("2 tables"), std::string::npos);
    OmxFile const omx = OmxFile::open(file);
    EXPECT_EQ(omx.tables(), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(omx.lookups(), std::vector<std::string>{"z"});
    EXPECT_EQ(omx.read("b").RowAt(1, 0)[1], 1);
    EXPECT_EQ(omx.read("b").Zones(), (std::vector<std::int32_t>{1, 2, 3}));
    EXPECT_THROW(omx.read("c"), TRkMatrixException);
    EXPECT_THROW(omx.read("list"), TRkMatrixException);
    EXPECT_THROW(omx.read("sub/x"), TRkMatrixException);
    EXPECT_THROW(omx.read(""), TRkMatrixException);
    EXPECT_EQ(opened(directory.file("1")).RowAt(2, 8)[2], 7);
}

TEST(ForeignFile, aFileWithoutAMatrixIsRefusedWithTheCause) {
    TempDir const directory;
    struct Case {
        std::string program;
        char const* reason;
    };
    std::vector<Case> const cases = {
        Case{"", "no table under /data"},
        Case{"f['data'] = np.eye(3)", "HDF5 could not open data (not a group)"},
        Case{"f['data/t'] = np.ones(3)", "no table under /data"},
        Case{"f['data/t'] = np.ones((2, 2, 2))", "no table under /data"},
        Case{"f['data/t'] = np.array([[b'a', b'b']])", "not numbers"},
        Case{"f['data/t'] = np.zeros((2, 2), [('a', 'f4'), ('b', 'i4')])", "not numbers"},
        Case{"f.create_dataset('data/t', (0, 5))", "0 x 5"},
        Case{"f.create_dataset('data/t', (0, 5), maxshape=(None, 5))", "0 x 5"},
        Case{"f.create_dataset('data/t', (2**40, 2), chunks=(1, 2))", "is not possible"},
        Case{"f.create_dataset('data/t', (30000, 30000), 'f4', chunks=(100, 100))", "larger than the file"},
        Case{"f.create_dataset('data/t', (1001, 1001), 'f4', chunks=(100, 100))", "none of its elements are stored"},
        Case{"f.create_dataset('data/t', (1001, 1001), 'f4')", "none of its elements are stored"},
        Case{"f.create_dataset('data/t', (30000, 30000), 'f4', chunks=(64, 30000)).attrs['cubes_checksum'] = "
             "np.uint64(1)",
            "none of its elements are stored"},
        Case{"f.create_dataset('data/t', (50000, 40000), 'f4', chunks=(64, 40000)).attrs['cubes_checksum'] = "
             "np.uint64(1)",
            "50000 x 40000 elements are more than the limit of 40000 x 40000; set CUBES_MAX_ZONES to allow more"},
        Case{"f['data/t'] = h5py.SoftLink('/nowhere')", "t is a soft or external link"},
        Case{"f.create_dataset('data/t', (4, 4), chunks=(2, 2), compression='lzf')", "filter 32000"},
    };
    std::vector<std::string> programs;
    for (auto const& [program, reason] : cases) programs.push_back(program);
    makeAllWithH5py(programs, directory);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        std::string const reason = reasonOf(directory.file(std::to_string(i)));
        EXPECT_NE(reason.find(cases[i].reason), std::string::npos) << cases[i].program << ": " << reason;
    }
}

TEST(ForeignFile, neverLeadsToAnotherFile) {
    TempDir const directory;
    RemovedByPython const removed{directory.file("pipe")};
    struct Case {
        std::string program;
        char const* reason;
    };
    // Reading a named pipe would block.
    std::string const pipe = "import os; pipe = sys.argv[1] + '/pipe'; os.path.exists(pipe) or os.mkfifo(pipe)\n";
    std::string const other = "other = sys.argv[1] + '/0'\n";
    std::vector<Case> const cases = {
        Case{"f['data/t'] = np.eye(3); f['lookup/zone'] = [1, 2, 3]", ""},
        Case{pipe + "f.create_dataset('data/t', (3, 3), 'f4', external=[(pipe, 0, 36)])",
            "t is not stored in this file"},
        Case{"f.create_dataset('data/t', (3, 3), 'f4', external=[(sys.argv[1] + '/0', 0, 36)])",
            "t is not stored in this file"},
        Case{other + "v = h5py.VirtualLayout((3, 3), 'f8')\n"
                     "v[:] = h5py.VirtualSource(other, 'data/t', (3, 3))\n"
                     "f.create_virtual_dataset('data/t', v)",
            "t is not stored in this file"},
        Case{pipe + "v = h5py.VirtualLayout((3, 3), 'f8', maxshape=(None, 3))\n"
                    "v[:h5py.h5s.UNLIMITED, :] = h5py.VirtualSource(pipe, 'data/t', (3, 3), maxshape=(None, 3))"
                    "[:h5py.h5s.UNLIMITED, :]\n"
                    "f.create_virtual_dataset('data/t', v)",
            "t is not stored in this file"},
        Case{other + "f['data/t'] = h5py.ExternalLink(other, '/data/t')", "t is a soft or external link"},
        Case{pipe + "f['data/t'] = h5py.ExternalLink(pipe, '/data/t')", "t is a soft or external link"},
        Case{"f['x'] = np.eye(3); f['data/t'] = h5py.SoftLink('/x')", "t is a soft or external link"},
        Case{other + "f['data'] = h5py.ExternalLink(other, '/data')", "data is a soft or external link"},
        Case{other + "f['data/t'] = np.eye(3); f['lookup/zone'] = h5py.ExternalLink(other, '/lookup/zone')",
            "zone is a soft or external link"},
        Case{pipe + "f['data/t'] = np.eye(3); f.create_dataset('lookup/zone', (3,), 'i4', external=[(pipe, 0, 12)])",
            "zone is not stored in this file"},
        // A link of a class that nobody has registered: external links have 64.
        Case{"f['data/t'] = h5py.ExternalLink('other.omx', '/data/t')\nf.close()\n"
             "b = open(f'{sys.argv[1]}/{number}', 'rb').read(); at = b.index(b'\\x01\\x08\\x40\\x01t') + 2\n"
             "open(f'{sys.argv[1]}/{number}', 'wb').write(b[:at] + b'\\x41' + b[at + 1:])\n",
            "t is a soft or external link"},
    };
    std::vector<std::string> programs;
    for (auto const& [program, reason] : cases)
        programs.push_back("number = " + std::to_string(programs.size()) + "\n" + program);
    makeAllWithH5py(programs, directory);
    EXPECT_EQ(opened(directory.file("0")).Zones(), (std::vector<std::int32_t>{1, 2, 3}));
    for (std::size_t i = 1; i < cases.size(); ++i) {
        std::string const reason = reasonOf(directory.file(std::to_string(i)));
        EXPECT_NE(reason.find(cases[i].reason), std::string::npos) << cases[i].program << ": " << reason;
    }
}

// The node of a B-tree that names the first chunk: the size of its bytes, the mask of skipped filters, its place.
TEST(ForeignFile, isNeverReadBeyondAChunkThatIsSmallerThanItsShape) {
    TempDir const directory;
    std::string const patch = R"(
f.close()
def patch(at, *values):
    path = f'{sys.argv[1]}/{number}'
    b = bytearray(open(path, 'rb').read())
    node = next(i for i in range(len(b)) if b[i:i + 4] == b'TREE' and b[i + 4] == 1)
    for v in values:
        b[node + at:node + at + 4] = v.to_bytes(4, 'little'); at += 4
    open(path, 'wb').write(b)
def patchDimensions(old, new):
    path = f'{sys.argv[1]}/{number}'
    b = open(path, 'rb').read()
    old, new = (b''.join(v.to_bytes(8, 'little') for v in sizes) for sizes in (old, new))
    assert old in b
    open(path, 'wb').write(b.replace(old, new))
def patchDimension(old, new):
    path = f'{sys.argv[1]}/{number}'
    b = bytearray(open(path, 'rb').read())
    at = b.index(b''.join(v.to_bytes(4, 'little') for v in old))
    b[at:at + 4] = new.to_bytes(4, 'little')
    open(path, 'wb').write(b)
)";
    std::string const make = "f.create_dataset('data/t', data=np.ones((200, 200), '";
    std::string const twoChunks = "f.create_dataset('data/t', data=np.ones((100, 100), '";
    std::string const compact =
        "p = h5py.h5p.create(h5py.h5p.DATASET_CREATE)\np.set_layout(h5py.h5d.COMPACT)\n"
        "d = h5py.h5d.create(f.create_group('data').id, b't', h5py.h5t.IEEE_F64LE, h5py.h5s.create_simple((4, 4)), p)\n"
        "d.write(h5py.h5s.ALL, h5py.h5s.ALL, np.ones((4, 4)))";
    struct Case {
        std::string program;
        char const* reason;
    };
    std::vector<Case> const cases = {
        {make + "f4'), chunks=(200, 200))" + patch + "patch(24, 8)", "a chunk has the wrong size"},
        {make + "f4'), chunks=(200, 200))" + patch + "patch(24, 159999)", "a chunk has the wrong size"},
        {make + "f8'), chunks=(200, 200))" + patch + "patch(24, 8)", "a chunk has the wrong size"},
        {make + "f8'), chunks=(50, 50))" + patch + "patch(24, 8)", "a chunk has the wrong size"},
        {make + "f4'), chunks=(200, 200), compression='gzip')" + patch + "patch(28, 1)", "chunk"},
        {make + "f8'), chunks=(50, 50), compression='gzip')" + patch + "patch(28, 1)", "a chunk has the wrong size"},
        {make + "f4'), chunks=(200, 200))" + patch + "patch(56, 2**31)", "a chunk is not within the file"},
        {make + "f8'), chunks=(50, 50))" + patch + "patch(56, 2**31)", "a chunk is not within the file"},
        // The superblock is at address 0.
        {twoChunks + "f4'), chunks=(50, 100))" + patch + "patch(56, 0)", "a chunk is not within the file"},
        {twoChunks + "f8'), chunks=(50, 100))" + patch + "patch(56, 0)", "a chunk is not within the file"},
        {twoChunks + "f8'), chunks=(50, 100))" + patch + "patch(56, 0); patch(24, 8)",
            "a chunk is not within the file"},
        // HDF5 does not check what these filters make of a chunk.
        {make + "f8'), chunks=(50, 50), scaleoffset=2)", "filter 6, whose output cannot be checked"},
        {make + "i4'), chunks=(200, 200), scaleoffset=0, compression='gzip')",
            "filter 6, whose output cannot be checked"},
        // Shapes that need more than is stored.
        {compact + patch + "patchDimensions((4, 4), (60, 60))", "t has another size than its dimensions need"},
        {"f['data/t'] = np.ones((4, 4))" + patch + "patchDimensions((4, 4), (60, 60))",
            "t has another size than its dimensions need"},
        {make + "f8'), chunks=(50, 40), compression='gzip')" + patch + "patchDimension((50, 40, 8), 60)",
            "a compressed chunk is damaged"},
        {make + "f8'), chunks=(50, 40), compression='gzip')" + patch + "patchDimension((50, 40, 8), 2**24)",
            "no table"},
    };
    std::vector<std::string> programs;
    for (auto const& [code, reason] : cases)
        programs.push_back("number = " + std::to_string(programs.size()) + "\n" + code);
    makeAllWithH5py(programs, directory);
    for (std::size_t i = 0; i < cases.size(); ++i) {
        std::string const file = directory.file(std::to_string(i));
        try {
            TRkMatrix const matrix = opened(file);
            if (!matrix.IsValid()) throw TRkMatrixException(matrix.Reason(), file);
            matrix.Elements();
            ADD_FAILURE() << cases[i].program;
        } catch (TRkMatrixException const& error) {
            EXPECT_NE(std::string(error.what()).find(cases[i].reason), std::string::npos) << i << ": " << error.what();
        }
    }
}

// Bytes all over the structure, each changed: HDF5 crashes and hangs at some of them.
TEST(ForeignFile, withAnyChangedByteOnlyFailsByItself) {
    TempDir const directory;
    makeAllWithH5py({"f.create_dataset('data/t', data=np.ones((30, 30)), chunks=(10, 10), compression='gzip')",
                        "f['data/t'] = np.ones((4, 4)); f['lookup/zone'] = [1, 2, 3, 4]"},
        directory);
    cubes::hdf5::readerSettings().patience = std::chrono::milliseconds(500);
    int refused = 0;
    for (char const* name : {"0", "1"}) {
        std::string const good = readFile(directory.file(name));
        std::string const file = directory.file("bad");
        for (std::size_t place = 0; place < good.size(); place += 97) {
            std::string damaged = good;
            damaged[place] = static_cast<char>(damaged[place] ^ 0x7F);
            writeFile(file, damaged);
            try {
                TRkMatrix const matrix = opened(file);
                if (!matrix.IsValid() || matrix.Elements().empty()) ++refused;
            } catch (TRkMatrixException const& error) {
                EXPECT_NE(std::string(error.what()).find(file), std::string::npos) << error.what();
                ++refused;
            }
        }
    }
    cubes::hdf5::readerSettings() = {};
    EXPECT_GT(refused, 5);
}

TEST(ForeignFile, canBeOpenedByManyThreadsAtOnce) {
    TempDir const directory;
    makeAllWithH5py({"f['data/t'] = np.arange(10000).reshape(100, 100)",
                        "f.create_dataset('data/t', data=np.ones((100, 100), 'f4'), chunks=(10, 100), shuffle=True, "
                        "compression='gzip')"},
        directory);
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([&, number] {
            TRkMatrix const matrix = opened(directory.file(std::to_string(number % 2)));
            EXPECT_EQ(matrix.RowAt(50, 8)[3], number % 2 == 0 ? 5003 : 1) << matrix.Reason();
        });
    for (auto& thread : threads) thread.join();
}

TEST(ForeignFile, needsTheReaderAndOneOfOursDoesNot) {
    TempDir const directory;
    makeAllWithH5py({"f['data/t'] = np.eye(3)"}, directory);
    ASSERT_TRUE(save(times(50, 50), directory.file("plain")));
    cubes::setMatrixStorage(directory.str(), {cubes::Storage::deflate, cubes::Durability::process});
    ASSERT_TRUE(save(times(50, 50), directory.file("deflate")));
    cubes::hdf5::readerSettings().program = directory.file("none");
    EXPECT_NE(
        reasonOf(directory.file("0")).find("the program that reads HDF5 files was not found at "), std::string::npos);
    try {
        OmxFile::open(directory.file("0"));
        ADD_FAILURE();
    } catch (TRkMatrixException const& error) {
        EXPECT_TRUE(error.Code()) << "the file is not damaged";
    }
    for (char const* name : {"plain", "deflate"}) {
        std::string const file = directory.file(name);
        EXPECT_EQ(opened(file).RowAt(30, 8)[5], times(50, 50).RowAt(30, 8)[5]);
        EXPECT_EQ(difference(opened(file), times(50, 50)), "");
        EXPECT_NE(TRkMatrix().GetHeader(file.c_str()), nullptr);
        EXPECT_TRUE(cubes::matrix::readOrigin(file));
    }
    cubes::hdf5::readerSettings() = {};
}

TEST(OmxFile, writesATableOfAnyNameWithZones) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    TRkMatrix matrix = numbered(3, 3);
    matrix.SetZones({10, 20, 40});
    OmxFile::write(file, "car trips", matrix);
    OmxFile const omx = OmxFile::open(file);
    EXPECT_EQ(omx.tables(), std::vector<std::string>{"car trips"});
    EXPECT_EQ(difference(omx.read("car trips"), matrix), "");
    EXPECT_EQ(omx.read("car trips").Zones(), matrix.Zones());
    EXPECT_EQ(difference(opened(file), matrix), "");
    for (char const* name : {"", ".", "a/b"}) EXPECT_THROW(OmxFile::write(file, name, matrix), TRkMatrixException);
    EXPECT_THROW(OmxFile::write(directory.file("none/a.omx"), "t", matrix), TRkMatrixException);
    EXPECT_THROW(OmxFile::write(directory.str(), "t", matrix), TRkMatrixException);
    EXPECT_EQ(difference(opened(file), matrix), "");
    EXPECT_EQ(listing(directory.str()), "a.omx\n");
}

TEST(OmxFile, keepsTheStateInWhichItWasOpened) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    OmxFile::write(file, "matrix", numbered(3, 3));
    OmxFile const omx = OmxFile::open(file);
    OmxFile::write(file, "matrix", times(5, 5));
    EXPECT_EQ(difference(omx.read("matrix"), numbered(3, 3)), "");
    EXPECT_EQ(difference(OmxFile::open(file).read("matrix"), times(5, 5)), "");
}

TEST(OmxFile, reportsAFileThatAnotherProgramTruncated) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    OmxFile::write(file, "matrix", numbered(300, 300));
    OmxFile const omx = OmxFile::open(file);
    std::filesystem::resize_file(file, 10'000);
    try {
        omx.read("matrix");
        ADD_FAILURE() << "read";
    } catch (TRkMatrixException const& error) {
        EXPECT_NE(std::string(error.what()).find("it is truncated"), std::string::npos) << error.what();
        EXPECT_EQ(error.File(), file);
    }
}

TEST(OmxFile, namesAFileThatCannotBeOpenedWithTheCause) {
    TempDir const directory;
    writeFile(directory.file("empty"), "");
    writeFile(directory.file("short"), "abc");
    writeFile(directory.file("text"), "origin,destination,value\n");
    std::filesystem::create_directory(directory.file("directory"));
    struct Case {
        char const* name;
        std::string reason;
    };
    for (auto const& [name, reason] :
        {Case{"none", noSuchFile()}, Case{"empty", "is empty"}, Case{"text", "not an HDF5 file"},
            Case{"short", "short: it is truncated"}, Case{"directory", "directory"}}) {
        std::string const file = directory.file(name);
        EXPECT_NE(reasonOf(file).find(reason), std::string::npos) << reasonOf(file);
        try {
            OmxFile::open(file);
            ADD_FAILURE() << name;
        } catch (TRkMatrixException const& error) {
            EXPECT_NE(std::string(error.what()).find(reason), std::string::npos) << error.what();
            EXPECT_EQ(error.File(), file);
        }
    }
}
