// Files that are completed beside their target before they replace it, and the origin that they record.

#include "host/matrix/StagedFile.h"

#include "host/matrix/Elements.h"
#include "host/matrix/Samples.h"
#include "host/platform/TemporaryFile.h"
#include "support/ChildTask.h"
#include "support/EachStorage.h"
#include "support/Process.h"

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <gtest/gtest.h>

#include <set>
#include <thread>

namespace cubes::test {
namespace {

using namespace cubes::matrix;

FileStamp stamp() {
    return {*Id128::parse("0123456789abcdef0123456789abcdef"), "Zürich", 12, {1, 2, 3, 4}};
}

Provenance provenance() {
    return {{{"Base/1/1/1/1", *Id128::parse("00112233445566778899aabbccddeeff")}, {"Time/1 2", Id128{}}}, "cubes calc",
        "0.1.0", "2026-01-02T03:04:05Z", "two\nlines, ü", "trips.csv"};
}

class EachStaged : public testing::TestWithParam<Storage> {
protected:
    EachStaged() {
        setMatrixStorage(directory.str(), {GetParam(), Durability::process});
        matrix.SetZones({5, 5, 9});
    }

    MatrixContent content() const {
        return {.header = fileHeader(matrix.Header()), .elements = matrix.Elements().data()};
    }
    void writeWithOrigin(std::string const& target) const {
        MatrixContent all = content();
        all.stamp = stamp();
        all.provenance = provenance();
        replaceMatrixFile(target, all);
    }
    static bool isIndexed(std::string const& path) {
        return findIndex(platform::FileView::open(path).bytes()).has_value();
    }

    TempDir const directory;
    std::string const file = directory.file("a.omx");
    TRkMatrix matrix = times(3, 3);
};

TEST_P(EachStaged, replacesItsTargetWhenItIsPublished) {
    writeFile(file, "old");
    {
        StagedFile staged(file);
        EXPECT_EQ(staged.target(), file);
        staged.write(content());
        EXPECT_EQ(readFile(file), "old");
        staged.publish();
    }
    EXPECT_EQ(difference(opened(file), matrix), "");
    EXPECT_EQ(listing(directory.str()), "a.omx\n");
}

TEST_P(EachStaged, isRemovedWhenItIsNotPublished) {
    {
        StagedFile staged(file);
        staged.write(content());
    }
    EXPECT_EQ(listing(directory.str()), "");
}

TEST_P(EachStaged, hasTheSameZonesHoweverItIsRead) {
    replaceMatrixFile(file, content());
    std::string const longName = directory.file("b.omx");
    MatrixContent named = content();
    named.header.name = std::string(641, 'n');
    replaceMatrixFile(longName, named);
    std::string const annotated = directory.file("c.omx");
    std::filesystem::copy_file(file, annotated);
    auto const change = runPython("import h5py, sys\nh5py.File(sys.argv[1], 'r+').attrs['note'] = 'mine'", {annotated});
    ASSERT_EQ(change.exitCode, 0) << change.errors;
    EXPECT_TRUE(isIndexed(file));
    EXPECT_FALSE(isIndexed(longName));
    EXPECT_FALSE(isIndexed(annotated));
    for (std::string const& path : {file, longName, annotated}) {
        EXPECT_EQ(opened(path).Zones(), matrix.Zones()) << path;
        EXPECT_EQ(OmxFile::open(path).read("matrix").Zones(), matrix.Zones()) << path;
        EXPECT_EQ(opened(path).At(5, 5), matrix.At(5, 5)) << path;
        EXPECT_TRUE(OmxFile::open(path).isIntact("matrix")) << path;
    }
}

TEST_P(EachStaged, acceptsTheChangeOfAnotherProgramOnceItsIndexRecordIsDeleted) {
    auto const change = [&](std::string const& program) {
        auto const done = runPython("import h5py, sys\nf = h5py.File(sys.argv[1], 'r+')\n" + program, {file});
        EXPECT_EQ(done.exitCode, 0) << done.errors;
    };
    for (char const* const before : {"", "f.attrs['note'] = 'mine'"}) {
        SCOPED_TRACE(before);
        writeWithOrigin(file);
        change(before);
        EXPECT_EQ(isIndexed(file), *before == '\0');
        change("f['data/matrix'][0, 0] = 77");
        EXPECT_EQ(opened(file).RowAt(0, 8)[0], 77);
        EXPECT_FALSE(OmxFile::open(file).isIntact("matrix"));
        EXPECT_TRUE(readOrigin(file));
        change("del f['cubes_index']");
        EXPECT_FALSE(isIndexed(file));
        EXPECT_EQ(opened(file).RowAt(0, 8)[0], 77);
        EXPECT_EQ(opened(file).Zones(), matrix.Zones());
        EXPECT_TRUE(OmxFile::open(file).isIntact("matrix"));
        EXPECT_FALSE(readOrigin(file));
        EXPECT_EQ(readProvenance(file), Provenance{});
    }
}

TEST_P(EachStaged, recordsStampContentAndProvenance) {
    writeWithOrigin(file);
    auto const origin = readOrigin(file);
    ASSERT_TRUE(origin);
    EXPECT_EQ(origin->stamp, stamp());
    EXPECT_EQ(origin->content, contentId(fileHeader(matrix.Header()), matrix.Elements().data()));
    EXPECT_EQ(readProvenance(file), provenance());
    EXPECT_EQ(difference(opened(file), matrix), "");
    EXPECT_EQ(opened(file).Zones(), matrix.Zones());
    EXPECT_TRUE(OmxFile::open(file).isIntact("matrix"));
    EXPECT_TRUE(isIndexed(file));
}

TEST_P(EachStaged, writesProvenanceThatOtherProgramsRead) {
    writeWithOrigin(file);
    auto const seen = runPython(R"(
import h5py, sys
a = h5py.File(sys.argv[1]).attrs
for name in sorted(a):
    if name.startswith('cubes_'): print(name, ascii(a[name].decode('utf-8')))
)",
        {file});
    EXPECT_EQ(seen.output, "cubes_inputs '00112233445566778899aabbccddeeff Base/1/1/1/1\\n"
                           "00000000000000000000000000000000 Time/1 2\\n'\n"
                           "cubes_made_by 'cubes calc'\ncubes_note 'two\\nlines, \\xfc'\n"
                           "cubes_source 'trips.csv'\ncubes_time '2026-01-02T03:04:05Z'\ncubes_version '0.1.0'\n")
        << seen.errors;
}

TEST_P(EachStaged, keepsALongProvenance) {
    MatrixContent all = content();
    for (int i = 0; i < 3000; ++i) all.provenance.inputs.push_back({"Base/1/1/1/" + std::to_string(i), Id128{}});
    replaceMatrixFile(file, all);
    EXPECT_EQ(readProvenance(file), all.provenance);
    EXPECT_TRUE(isIndexed(file));
    EXPECT_EQ(difference(opened(file), matrix), "");
}

TEST_P(EachStaged, hasNoOriginWhenTheMatrixSavesItself) {
    ASSERT_TRUE(save(matrix, file));
    EXPECT_EQ(readOrigin(file)->stamp, FileStamp{});
    EXPECT_EQ(readProvenance(file), Provenance{});
}

TEST_P(EachStaged, copiesByteByByteOrWithAnotherStamp) {
    writeWithOrigin(file);
    std::string const copied = directory.file("b.omx");
    StagedFile same(copied);
    same.copy(file);
    same.publish();
    EXPECT_TRUE(readFile(copied) == readFile(file));

    FileStamp const other{Id128{}, "Other", 0, {9, 8, 7, 6, 5, 4}};
    StagedFile staged(copied);
    staged.copy(file, other);
    staged.publish();
    EXPECT_EQ(readOrigin(copied)->stamp, other);
    EXPECT_EQ(readOrigin(copied)->content, readOrigin(file)->content);
    EXPECT_EQ(readProvenance(copied), provenance());
    EXPECT_TRUE(isIndexed(copied));
    EXPECT_EQ(difference(opened(copied), matrix), "");
    EXPECT_EQ(readOrigin(file)->stamp, stamp());
}

TEST_P(EachStaged, staysReadableForHdf5WithAnotherStamp) {
    ASSERT_TRUE(save(matrix, file));
    std::string const copied = directory.file("b.omx");
    StagedFile staged(copied);
    staged.copy(file, stamp());
    staged.publish();
    EXPECT_TRUE(OmxFile::open(copied).isIntact("matrix"));
    auto const seen =
        runPython("import h5py, sys\nprint(h5py.File(sys.argv[1])['cubes_index'][:8].tobytes().decode())", {copied});
    EXPECT_EQ(seen.output, "CUBEIDX2\n") << seen.errors;
}

CUBES_EACH_STORAGE(StagedFile, EachStaged);

TEST(StagedFile, copiesFilesWithoutARecord) {
    TempDir const directory;
    writeFile(directory.file("a"), "no matrix");
    StagedFile staged(directory.file("b"));
    staged.copy(directory.file("a"), stamp());
    staged.publish();
    EXPECT_EQ(readFile(directory.file("b")), "no matrix");
    EXPECT_FALSE(readOrigin(directory.file("b")));
    EXPECT_EQ(readProvenance(directory.file("b")), Provenance{});
}

TEST(StagedFile, namesItsTargetWhenItCannotBeWritten) {
    TempDir const directory;
    StagedFile staged(directory.file("b"));
    try {
        staged.copy(directory.file("none"));
        ADD_FAILURE() << "copied";
    } catch (TRkMatrixException const& error) {
        EXPECT_NE(std::string(error.what()).find("cannot write matrix file " + directory.file("b")), std::string::npos)
            << error.what();
        EXPECT_EQ(error.Code(), std::errc::no_such_file_or_directory);
    }
    EXPECT_THROW(StagedFile(directory.str()), std::runtime_error);
    EXPECT_THROW(StagedFile(""), std::runtime_error);
    EXPECT_THROW(StagedFile(directory.file("none/a")), std::system_error);
}

TEST(DirectoryIdentity, isCreatedOnceAndKept) {
    TempDir const directory;
    TempDir const other;
    Id128 const id = directoryIdentity(directory.str());
    EXPECT_TRUE(id.isKnown());
    EXPECT_EQ(directoryIdentity(directory.str()), id);
    EXPECT_EQ(readFile(directory.file("cubes-id")), id.text() + "\n");
    EXPECT_EQ(listing(directory.str()), "cubes-id\n");
    EXPECT_NE(directoryIdentity(other.str()), id);
}

TEST(DirectoryIdentity, isReadFromAFileOf32Digits) {
    TempDir const directory;
    std::string const text = "0123456789abcdef0123456789abcdef";
    for (std::string const& good : {text, text + "\n"}) {
        writeFile(directory.file("cubes-id"), good);
        EXPECT_EQ(directoryIdentity(directory.str()).text(), text);
    }
    for (std::string const& wrong : {std::string(), text.substr(1), text + "0", "x" + text.substr(1)}) {
        writeFile(directory.file("cubes-id"), wrong);
        EXPECT_FALSE(directoryIdentity(directory.str()).isKnown()) << wrong;
        EXPECT_EQ(readFile(directory.file("cubes-id")), wrong);
    }
}

TEST(DirectoryIdentity, isUnknownInADirectoryThatCannotBeWrittenTo) {
    TempDir const directory;
    EXPECT_FALSE(directoryIdentity(directory.file("none")).isKnown());
    std::filesystem::create_directory(directory.file("cubes-id"));
    EXPECT_FALSE(directoryIdentity(directory.str()).isKnown());
}

TEST(DirectoryIdentity, isTheSameForAllThreadsThatAskAtOnce) {
    TempDir const directory;
    std::vector<Id128> ids(8);
    {
        std::vector<std::jthread> threads;
        for (Id128& id : ids) threads.emplace_back([&] { id = directoryIdentity(directory.str()); });
    }
    EXPECT_TRUE(ids.front().isKnown());
    EXPECT_EQ(std::set<Id128>(ids.begin(), ids.end()).size(), 1u);
    EXPECT_EQ(listing(directory.str()), "cubes-id\n");
}

ChildTask const asking("asking", [](int number, std::string const& directory) {
    writeFile(directory + "/seen-" + std::to_string(number), directoryIdentity(directory + "/matrices").text());
});

TEST(DirectoryIdentity, isTheSameForAllProcessesThatAskAtOnce) {
    TempDir const directory;
    std::filesystem::create_directory(directory.file("matrices"));
    ASSERT_EQ(asking.inProcesses(4, directory.str()), 4);
    std::string const id = directoryIdentity(directory.file("matrices")).text();
    for (int number = 0; number < 4; ++number)
        EXPECT_EQ(readFile(directory.file("seen-" + std::to_string(number))), id);
}

}
}
