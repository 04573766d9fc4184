#include "host/matrix/Samples.h"

#include "host/matrix/FileIndex.h"
#include "host/matrix/MatrixFileWriter.h"
#include "host/matrix/StagedFile.h"
#include "host/platform/File.h"
#include "host/platform/NarrowText.h"
#include "support/EachStorage.h"
#include "support/Process.h"

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

using namespace cubes::test;
using namespace std::string_literals;

namespace {

std::string python(std::string const& program, std::string const& file) {
    auto const result = runPython("import sys, h5py, numpy as np\nfile = sys.argv[1]\n" + program, {file});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    return result.output;
}

// 2 rows of 3, with every kind of number that a float can represent.
TRkMatrix special() {
    using Limits = std::numeric_limits<float>;
    TRkMatrix matrix = TRkMatrix::inMemory(2, 3);
    float const values[] = {
        Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), -0.0f, Limits::denorm_min(), Limits::max()};
    std::memcpy(matrix.RowAt(0, 0), values, sizeof values);
    return matrix;
}

void saveWithEverything(std::string const& file) {
    TRkMatrix source = times(50, 50);
    std::vector<std::int32_t> zones;
    for (int i = 0; i < 50; ++i) zones.push_back(1000 - i);
    source.SetZones(zones);
    TRkMatrix target(50, 50, mtFare, file.c_str(), 1, "Base [1,2,3,4]", "", true, mkTransit, lsNone);
    target.AssignFrom(source);
    ASSERT_TRUE(target.IsValid()) << target.Reason();
}

class EachStorageRead : public testing::TestWithParam<cubes::Storage> {
protected:
    EachStorageRead() { cubes::setMatrixStorage(directory.str(), {GetParam(), cubes::Durability::process}); }

    TempDir const directory;
    std::string const file = directory.file("a.omx");
};

}

TEST_P(EachStorageRead, h5pyReadsEveryElementBitByBit) {
    ASSERT_TRUE(save(special(), file));
    EXPECT_EQ(python("print(h5py.File(file)['data/matrix'][:].view('<u4').tolist())", file),
        "[[2143289344, 2139095040, 4286578688], [2147483648, 1, 2139095039]]\n");
    ASSERT_TRUE(save(numbered(700, 300), file));
    EXPECT_EQ(python("m = h5py.File(file)['data/matrix'][:]\n"
                     "e = 1000.0 * np.arange(700)[:, None] + np.arange(300)\n"
                     "print(m.shape, m.dtype, (m == e).all())",
                  file),
        "(700, 300) float32 True\n");
}

TEST_P(EachStorageRead, h5pyFindsWhatOmxRequiresAndOurAdditions) {
    saveWithEverything(file);
    EXPECT_EQ(python(R"(
f = h5py.File(file)
d = f['data/matrix']
print(f.attrs['OMX_VERSION'].decode(), f.attrs['SHAPE'].tolist(), f.attrs['SHAPE'].dtype)
print(sorted(f['data']), sorted(f['lookup']), d.dtype.str, d.chunks is not None)
print(f['lookup/zone'].dtype, f['lookup/zone'][:3].tolist(), len(f['lookup/zone']))
print(d.attrs['CLASS'].decode(), d.attrs['cubes_type'], d.attrs['cubes_kind'], d.attrs['cubes_name'].decode())
print(len(d.attrs['cubes_content']), 'cubes_checksum' in d.attrs)
)",
                  file),
        "0.2 [50, 50] int32\n['matrix'] ['zone'] <f4 True\nint32 [1000, 999, 998] 50\n"
        "CARRAY 23 6 Base [1,2,3,4]\n32 False\n");
}

TEST_P(EachStorageRead, h5pyReadsANameBeyondAscii) {
    std::string const name = cubes::platform::fromUtf8("Zürich");
    {
        TRkMatrix target(3, 3, mtFare, file.c_str(), 1, name.c_str(), "", true, mkTransit, lsNone);
        target.AssignFrom(times(3, 3));
        ASSERT_TRUE(target.IsValid()) << target.Reason();
    }
    EXPECT_EQ(python("attributes = h5py.File(file)['data/matrix'].attrs\n"
                     "print(attributes.get_id('cubes_name').get_type().get_cset() == h5py.h5t.CSET_UTF8)\n"
                     "print(ascii(attributes['cubes_name'].decode('utf-8')))",
                  file),
        "True\n'Z\\xfcrich'\n");
    EXPECT_EQ(opened(file).Name().str(), name);
}

TEST_P(EachStorageRead, pyTablesListsTheMatrixAsOmxToolsExpect) {
    saveWithEverything(file);
    EXPECT_EQ(python(R"(
import warnings
warnings.simplefilter('error')
import tables
f = tables.open_file(file)
for node in f.walk_nodes(): node._v_attrs._f_list('all')
print([n.name for n in f.list_nodes(f.root.data, 'CArray')], [n.name for n in f.list_nodes(f.root.lookup)])
print(f.root._v_attrs['SHAPE'].tolist(), f.root._v_attrs['OMX_VERSION'], f.root.data.matrix[3, 4] > 5)
f.close()
)",
                  file),
        "['matrix'] ['zone']\n[50, 50] b'0.2' True\n");
}

TEST_P(EachStorageRead, aMatrixOfZerosIsReadAsZeros) {
    ASSERT_TRUE(save(TRkMatrix::inMemory(600, 600), file));
    EXPECT_EQ(python("m = h5py.File(file)['data/matrix'][:]; print(m.shape, abs(m).sum())", file), "(600, 600) 0.0\n");
}

TEST_P(EachStorageRead, changesByAnotherProgramAreRead) {
    saveWithEverything(file);
    python("f = h5py.File(file, 'r+'); f['data/matrix'][1, 2] = 99; f['data/matrix'].attrs['cubes_kind'] = 31", file);
    EXPECT_EQ(opened(file).RowAt(1, 8)[2], 99);
    EXPECT_EQ(opened(file).MatrixKind(), 31);
    EXPECT_FALSE(cubes::OmxFile::open(file).isIntact("matrix"));
    python("f = h5py.File(file, 'r+'); f['data/other'] = np.ones((2, 2)); f['lookup/zone'][0] = -1", file);
    EXPECT_EQ(opened(file).RowAt(1, 8)[2], 99);
    EXPECT_EQ(opened(file).Zones().front(), -1);
    python("f = h5py.File(file, 'r+'); del f['data/matrix']; f['data/matrix'] = np.arange(6.0).reshape(2, 3)", file);
    EXPECT_EQ(opened(file).RowAt(1, 8)[2], 5);
    EXPECT_EQ(opened(file).Columns(), 3);
}

CUBES_EACH_STORAGE(IndependentReader, EachStorageRead);

TEST(PlainStorage, isOneUnfilteredChunkOnAPageBoundary) {
    TempDir const directory;
    ASSERT_TRUE(save(times(300, 200), directory.file("a.omx")));
    EXPECT_EQ(python(R"(
d = h5py.File(file)['data/matrix']
chunk = d.id.get_chunk_info(0)
print(d.chunks, d.compression, d.shuffle, d.id.get_num_chunks(), chunk.byte_offset % 4096, chunk.size)
raw = open(file, 'rb').read()[chunk.byte_offset:]
print((np.frombuffer(raw, '<f4').reshape(300, 200) == d[:]).all())
)",
                  directory.file("a.omx")),
        "(300, 200) None False 1 0 240000\nTrue\n");
}

TEST(PlainStorage, hasKnownBytesAtAKnownOffset) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    TRkMatrix matrix = TRkMatrix::inMemory(40, 30);
    matrix.RowAt(0, 0)[0] = 1.0f;
    matrix.RowAt(0, 0)[1] = -2.5f;
    matrix.RowAt(1, 0)[0] = 0.1f;
    ASSERT_TRUE(save(matrix, file));
    std::string const bytes = readFile(file);
    EXPECT_EQ(bytes.size(), 8192u + 40 * 30 * 4);
    EXPECT_EQ(bytes.substr(0, 8), "\x89HDF\r\n\x1a\n");
    EXPECT_EQ(bytes.substr(8192, 8), std::string("\x00\x00\x80\x3f\x00\x00\x20\xc0", 8));
    EXPECT_EQ(bytes.substr(8192 + 120, 4), "\xcd\xcc\xcc\x3d");
}

// The example of docs/matrix-file.md.
TEST(PlainStorage, hasTheBytesOfTheDocumentation) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    {
        TRkMatrix source = TRkMatrix::inMemory(2, 2);
        float const values[] = {1, -2.5f, 0.1f, 0};
        std::memcpy(source.RowAt(0, 0), values, sizeof values);
        source.SetZones({101, 102});
        TRkMatrix target = created(file, 2, 2, 0, "Base [1,2,3,4]");
        target.AssignFrom(source);
    }
    std::string const bytes = readFile(file);
    ASSERT_EQ(bytes.size(), 0x1b88u);
    EXPECT_EQ(bytes.substr(0x1770, 8), "CUBEIDX2");
    // Version, kind of file, content id; no provenance, directory, key and cube.
    EXPECT_EQ(bytes.substr(0x1780, 24), "\x01\0\0\0\x01\0\0\0"
                                        "\xd8\x88\xdd\x5b\x42\x03\x46\xeb\xe4\xbe\xf5\x04\x5f\x47\x96\xd5"s);
    EXPECT_EQ(bytes.substr(0x1798, 264), std::string(264, '\0'));
    // Size of the file; rows, columns, type, kind, flags, storage, rows per chunk, length of the name; places.
    EXPECT_EQ(bytes.substr(0x18a8, 88), "\x88\x1b\0\0\0\0\0\0"
                                        "\x02\0\0\0\x02\0\0\0\x07\0\0\0\0\0\0\0"
                                        "\0\0\0\0\x01\0\0\0\x02\0\0\0\x0e\0\0\0"
                                        "\x70\x1b\0\0\0\0\0\0\x10\0\0\0\0\0\0\0"
                                        "\0\0\0\0\0\0\0\0\x80\x1b\0\0\0\0\0\0"
                                        "Base [1,2,3,4]\0\0"s);
    EXPECT_EQ(bytes.substr(0x1b70), "\0\0\x80\x3f\0\0\x20\xc0\xcd\xcc\xcc\x3d\0\0\0\0"
                                    "\x65\0\0\0\x66\0\0\0"s);
}

TEST(PlainStorage, hasAnIndexThatAgreesWithHdf5) {
    TempDir const directory;
    std::string ours;
    for (int size : {1, 5, 31, 32, 33, 500, 1200}) {
        std::string const file = directory.file(std::to_string(size));
        TRkMatrix matrix = numbered(size, size);
        matrix.SetZones(std::vector<std::int32_t>(static_cast<std::size_t>(size), 4));
        ASSERT_TRUE(save(matrix, file));
        auto const view = cubes::platform::FileView::open(file);
        auto const index = cubes::matrix::findIndex(view.bytes());
        ASSERT_TRUE(index) << size;
        ours += std::to_string(index->places.elements.offset) + " " + std::to_string(index->places.zones) + " " +
                std::to_string(cubes::hdf5::findRecord(view.bytes())->offset) + "\n";
    }
    EXPECT_EQ(python(R"(
for size in (1, 5, 31, 32, 33, 500, 1200):
    f = h5py.File(file + '/' + str(size))
    elements = f['data/matrix'].id.get_chunk_info(0).byte_offset
    print(elements, f['lookup/zone'].id.get_offset(), f['cubes_index'].id.get_offset())
)",
                  directory.str()),
        ours);
}

TEST(PlainStorage, aNameTooLongForTheRecordIsStillRead) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    std::string const name(5000, 'n');
    {
        TRkMatrix target = created(file, 30, 40, 0, name.c_str());
        target.AssignFrom(numbered(30, 40));
        ASSERT_TRUE(target.IsValid()) << target.Reason();
    }
    EXPECT_EQ(opened(file).Name().str(), name);
    EXPECT_EQ(difference(opened(file), numbered(30, 40)), "");
    EXPECT_EQ(python("print((h5py.File(file)['data/matrix'][29, 39]))", file), "29039.0\n");
}

TEST(PlainStorage, matricesBeyondTheChunkLimitAreStillContiguous) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    TRkMatrix const matrix = numbered(2500, 7);
    {
        auto target = cubes::platform::File::createNew(file);
        cubes::matrix::writePlainInChunks(
            target, {.header = {.rows = 2500, .columns = 7}, .elements = matrix.Elements().data()}, 40000);
    }
    EXPECT_EQ(python("d = h5py.File(file)['data/matrix']\nprint(d.chunks, d.id.get_num_chunks(), d[2499, 6])", file),
        "(1024, 7) 3 2499006.0\n");
    EXPECT_TRUE(cubes::matrix::findIndex(cubes::platform::FileView::open(file).bytes()));
    EXPECT_EQ(difference(opened(file), matrix), "");
}

TEST(DeflateStorage, isSmallAndOmitsChunksOfZeros) {
    TempDir const directory;
    cubes::setMatrixStorage(directory.str(), {cubes::Storage::deflate, cubes::Durability::process});
    TRkMatrix sparse = TRkMatrix::inMemory(1000, 1000);
    sparse.RowAt(999, 0)[999] = -0.0f;
    sparse.RowAt(400, 0)[3] = 7;
    ASSERT_TRUE(save(sparse, directory.file("sparse.omx")));
    EXPECT_EQ(python("d = h5py.File(file)['data/matrix']\n"
                     "print(d.chunks, d.compression, d.shuffle, d.id.get_num_chunks(), d[400, 3], "
                     "np.signbit(d[999, 999]))",
                  directory.file("sparse.omx")),
        "(65, 1000) gzip False 2 7.0 True\n");
    ASSERT_TRUE(save(times(500, 500), directory.file("dense.omx")));
    EXPECT_EQ(python("d = h5py.File(file)['data/matrix']; print(d.compression, d.compression_opts, d.shuffle)",
                  directory.file("dense.omx")),
        "gzip 1 True\n");
    EXPECT_LT(std::filesystem::file_size(directory.file("sparse.omx")), 20000u);
    EXPECT_LT(std::filesystem::file_size(directory.file("dense.omx")), 600000u);
}

TEST(DeflateStorage, hasAnIndexThatAgreesWithHdf5) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    cubes::setMatrixStorage(directory.str(), {cubes::Storage::deflate, cubes::Durability::process});
    for (int const rows : {2, 300, 5000}) {
        TRkMatrix matrix = times(rows, 800);
        std::fill_n(matrix.RowAt(rows / 2, 0), 800, 0.0f);
        ASSERT_TRUE(save(matrix, file));
        auto const view = cubes::platform::FileView::open(file);
        auto const index = cubes::matrix::findIndex(view.bytes());
        ASSERT_TRUE(index) << rows;
        std::string ours;
        for (auto const& chunk : index->places.chunks)
            ours += std::to_string(chunk.offset) + " " + std::to_string(chunk.size) + " " +
                    std::to_string(chunk.skipped) + "\n";
        EXPECT_EQ(python("d = h5py.File(file)['data/matrix'].id\n"
                         "for i in range(d.get_num_chunks()):\n"
                         "    c = d.get_chunk_info(i)\n"
                         "    print(c.byte_offset, c.size, c.filter_mask)",
                      file),
            ours);
        EXPECT_EQ(difference(opened(file), matrix), "");
    }
}

TEST(DeflateStorage, hasAnIndexThatIsIgnoredAfterAnyChangeOfTheStructure) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    cubes::setMatrixStorage(directory.str(), {cubes::Storage::deflate, cubes::Durability::process});
    auto const isIndexed = [&] { return cubes::matrix::findIndex(cubes::platform::FileView::open(file).bytes()); };
    for (char const* const change :
        {"f['data/matrix'][400, 3] = 99", "f.attrs['title'] = 'x'", "f['lookup/a'] = [1]"}) {
        ASSERT_TRUE(save(times(700, 300), file));
        EXPECT_TRUE(isIndexed());
        python(std::string("f = h5py.File(file, 'r+'); ") + change, file);
        EXPECT_FALSE(isIndexed()) << change;
        EXPECT_TRUE(opened(file).IsValid()) << change;
    }
}

TEST(MatrixFile, hasTheContentIdOfItsShapeElementsAndZones) {
    TempDir const directory;
    std::string const file = directory.file("a.omx");
    for (auto storage : {cubes::Storage::plain, cubes::Storage::deflate}) {
        cubes::setMatrixStorage(directory.str(), {storage, cubes::Durability::process});
        // XXH3 (128 bits) of 01 00 00 00, 02 00 00 00, 00 00 80 3f, 00 00 00 40.
        TRkMatrix matrix = TRkMatrix::inMemory(1, 2);
        matrix.RowAt(0, 0)[0] = 1;
        matrix.RowAt(0, 0)[1] = 2;
        ASSERT_TRUE(save(matrix, file));
        constexpr char expected[] = "6065809c5600cff08d99a95d1883a628";
        EXPECT_EQ(python("print(h5py.File(file)['data/matrix'].attrs['cubes_content'].decode('ascii'))", file),
            std::string(expected) + "\n");
        EXPECT_EQ(cubes::matrix::readOrigin(file)->content.text(), expected);
        EXPECT_TRUE(cubes::OmxFile::open(file).isIntact("matrix"));
    }
}
