// Data that differ from what the checksum in their file covers, each kind of damage in each storage.

#include "host/matrix/Samples.h"

#include "support/Damage.h"

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkMatrixException.h>
#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <numeric>
#include <tuple>

namespace cubes::test {
namespace {

namespace fs = std::filesystem;

std::string sentenceAbout(std::string const& subject) {
    return subject + " was changed outside Cubes or damaged: its content does not match its checksum; restore it, or "
                     "accept the change with cubes import --ignore-checksum";
}

template <typename Work>
std::string messageOf(Work const& work) {
    try {
        work();
    } catch (TRkMatrixException const& error) {
        return error.what();
    }
    return {};
}

TRkMatrix withZones() {
    TRkMatrix matrix = times(60, 60);
    std::vector<std::int32_t> zones(60);
    std::iota(zones.begin(), zones.end(), 101);
    matrix.SetZones(zones);
    return matrix;
}

class Content : public testing::Test {
protected:
    void use(Storage storage) { setMatrixStorage(directory.str(), {storage, Durability::process}); }
    void store() { ASSERT_TRUE(save(withZones(), file)); }

    TempDir const directory;
    std::string const file = directory.file("a.omx");
    std::string const target = directory.file("b.omx");
};

class DamagedContent : public Content, public testing::WithParamInterface<std::tuple<Storage, Damage>> {
protected:
    void SetUp() override {
        use(std::get<Storage>(GetParam()));
        store();
        damage(file, std::get<Damage>(GetParam()).program);
    }
    // Such a chunk cannot be decompressed.
    bool isUnreadable() const {
        auto const& [storage, damage] = GetParam();
        return storage == Storage::deflate && std::string(damage.name) == "byteOfTheElements";
    }
    void expectRefusal(std::string const& message, std::string const& sentence) const {
        std::string const expected = isUnreadable() ? "a compressed chunk is damaged" : sentence;
        EXPECT_NE(message.find(expected), std::string::npos) << message;
    }
};

TEST_P(DamagedContent, isNotIntact) {
    TRkMatrix const matrix = opened(file);
    ASSERT_TRUE(matrix.IsValid()) << matrix.Reason();
    if (isUnreadable()) {
        EXPECT_THROW(static_cast<void>(matrix.IsIntact()), TRkMatrixException);
        EXPECT_THROW(static_cast<void>(OmxFile::open(file).isIntact("matrix")), TRkMatrixException);
    } else {
        EXPECT_FALSE(matrix.IsIntact());
        EXPECT_FALSE(OmxFile::open(file).isIntact("matrix"));
    }
}

TEST_P(DamagedContent, isNotReadVerified) {
    expectRefusal(messageOf([&] { OmxFile::open(file).readVerified("matrix"); }),
        "cannot read OMX file " + file + ": " + sentenceAbout("table \"matrix\""));
}

TEST_P(DamagedContent, isNotWrittenWithAFreshChecksum) {
    TRkMatrix const matrix = opened(file);
    expectRefusal(messageOf([&] { OmxFile::write(target, "matrix", matrix); }),
        "cannot write OMX file " + target + ": " + sentenceAbout(file));
    EXPECT_FALSE(fs::exists(target));
}

TEST_P(DamagedContent, isNotAssignedAndTheOldFileStays) {
    ASSERT_TRUE(save(times(60, 60), target));
    std::string const before = readFile(target);
    TRkMatrix copy = created(target, 60, 60);
    copy.AssignFrom(opened(file));
    EXPECT_FALSE(copy.IsValid());
    expectRefusal(copy.Reason(), "cannot assign a matrix: " + sentenceAbout(file));
    EXPECT_EQ(readFile(target), before);
}

// What the caller may have changed in memory does not hide what happened to the file.
TEST_P(DamagedContent, isFoundAfterAccessForWriting) {
    if (isUnreadable()) return;
    TRkMatrix matrix = opened(file);
    matrix.RowAt(3, 8)[3] = 1;
    EXPECT_FALSE(matrix.IsIntact());
    matrix.Release();
    EXPECT_FALSE(matrix.IsIntact());
}

INSTANTIATE_TEST_SUITE_P(Matrix, DamagedContent,
    testing::Combine(testing::Values(Storage::plain, Storage::deflate), testing::ValuesIn(damages)),
    [](auto const& instance) {
        return std::string(std::get<Storage>(instance.param) == Storage::plain ? "plain_" : "deflate_") +
               std::get<Damage>(instance.param).name;
    });

class IntactContent : public Content, public testing::WithParamInterface<Storage> {
protected:
    void SetUp() override {
        use(GetParam());
        store();
    }
};

TEST_P(IntactContent, isReadVerified) {
    EXPECT_TRUE(opened(file).IsIntact());
    TRkMatrix const read = OmxFile::open(file).readVerified("matrix");
    EXPECT_EQ(difference(read, withZones()), "");
    EXPECT_EQ(read.Zones(), withZones().Zones());
}

TEST_P(IntactContent, staysIntactWhateverTheCallerWritesInMemory) {
    TRkMatrix matrix = opened(file);
    matrix.RowAt(1, 8)[1] = -1;
    EXPECT_TRUE(matrix.IsIntact());
    matrix.WritableElements()[0] = -2;
    matrix.SetZones({});
    EXPECT_TRUE(matrix.IsIntact());
    matrix.AssignFrom(numbered(60, 60));
    EXPECT_TRUE(matrix.IsIntact());
    fs::remove(file);
    EXPECT_TRUE(matrix.IsIntact());
    OmxFile::write(target, "matrix", matrix);
    EXPECT_EQ(difference(opened(target), numbered(60, 60)), "");
}

TEST_P(IntactContent, survivesTheReplacementOfTheFile) {
    TRkMatrix const matrix = opened(file);
    ASSERT_TRUE(save(numbered(60, 60), file));
    damage(file, "table[0, 1] = 12.5");
    EXPECT_TRUE(matrix.IsIntact());
}

TEST_P(IntactContent, isFoundInANewFileThatWasJustWritten) {
    TRkMatrix matrix = created(file, 60, 60);
    EXPECT_TRUE(matrix.IsIntact());
    matrix.AssignFrom(withZones());
    matrix.Release();
    EXPECT_TRUE(matrix.IsIntact());
    matrix.RowAt(0, 8)[0] = -1;
    EXPECT_TRUE(matrix.IsIntact());
}

// A program that rewrites a file drops what it does not know.
TEST_P(IntactContent, isAssumedInAFileWithoutAChecksum) {
    damage(file, "table[0, 1] = 12.5; del table.attrs['cubes_content']; del f['cubes_index']");
    EXPECT_TRUE(opened(file).IsIntact());
    EXPECT_EQ(OmxFile::open(file).readVerified("matrix").Row(0)[1], 12.5f);
}

INSTANTIATE_TEST_SUITE_P(Matrix, IntactContent, testing::Values(Storage::plain, Storage::deflate),
    [](auto const& instance) { return instance.param == Storage::plain ? "plain" : "deflate"; });

TEST_F(Content, inMemoryIsIntactAndAnInvalidMatrixThrows) {
    EXPECT_TRUE(times(3, 3).IsIntact());
    EXPECT_THROW(static_cast<void>(TRkMatrix().IsIntact()), TRkMatrixException);
    EXPECT_THROW(static_cast<void>(opened(file).IsIntact()), TRkMatrixException);
}

TEST_F(Content, ofADamagedSelectedLinkFileGetsNoFreshChecksum) {
    TRkMatrix made = TRkMatrix::selectedLink(3, 3, file.c_str());
    dynamic_cast<TRkVLSelectedLinkMatrix&>(*made.Body()).Add(0, 0, 1);
    dynamic_cast<TRkVLSelectedLinkMatrix&>(*made.Body()).Flush();
    EXPECT_TRUE(made.IsIntact());
    damage(file, "table[0, 1] = 12.5");
    std::string const before = readFile(file);

    TRkMatrix matrix = opened(file);
    EXPECT_FALSE(matrix.IsIntact());
    auto& links = dynamic_cast<TRkVLSelectedLinkMatrix&>(*matrix.Body());
    links.Add(2, 2, 5);
    EXPECT_EQ(messageOf([&] { links.Flush(); }), "cannot write matrix file " + file + ": " + sentenceAbout("it"));
    EXPECT_EQ(readFile(file), before);
}

TEST_F(Content, ofASelectedLinkFileIsIntactWhileValuesAreAddedAndFlushed) {
    TRkMatrix made = TRkMatrix::selectedLink(3, 3, file.c_str());
    dynamic_cast<TRkVLSelectedLinkMatrix&>(*made.Body()).Add(0, 0, 1);
    dynamic_cast<TRkVLSelectedLinkMatrix&>(*made.Body()).Flush();
    TRkMatrix matrix = opened(file);
    auto& links = dynamic_cast<TRkVLSelectedLinkMatrix&>(*matrix.Body());
    for (float const expected : {6.0f, 11.0f}) {
        links.Add(0, 0, 5);
        EXPECT_TRUE(matrix.IsIntact());
        links.Flush();
        EXPECT_TRUE(matrix.IsIntact());
        EXPECT_EQ(opened(file).Row(0)[0], expected);
    }
}

}
}
