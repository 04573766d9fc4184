#include "host/matrix/FailingSystem.h"
#include "host/matrix/Samples.h"

#include "host/matrix/StagedFile.h"
#include "host/platform/Files.h"
#include "host/platform/TemporaryFile.h"
#include "support/EachStorage.h"

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/matrix/OmxFile.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

using namespace cubes::test;

namespace {

class EachFailure : public testing::TestWithParam<cubes::Storage> {
protected:
    void SetUp() override {
        cubes::setMatrixStorage(directory.str(), {GetParam(), cubes::Durability::full});
        ASSERT_TRUE(save(numbered(80, 80), file));
    }

    // The old state or the new one, and nothing else in the directory.
    void expectOldOrNew(bool isNew) const {
        EXPECT_EQ(difference(opened(file), isNew ? times(90, 90) : numbered(80, 80)), "");
        EXPECT_EQ(listing(directory.str()), "a.skm\n");
    }

    TempDir const directory;
    std::string const file = directory.file("a.skm");
};

}

TEST_P(EachFailure, everyFailingStepLeavesTheOldFileOrTheNewOne) {
    TRkMatrix const source = times(90, 90);
    int steps = 0;
    for (bool failed = true; failed; ++steps) {
        ASSERT_LT(steps, 200);
        std::string reason;
        bool saved = false;
        {
            FailingSystem const system(steps + 1, ENOSPC);
            TRkMatrix target = created(file, 90, 90);
            if (target.IsValid()) target.AssignFrom(source);
            saved = target.IsValid();
            reason = target.Reason();
            failed = system.hasFailed();
        }
        bool const isNew = opened(file).Rows() == 90;
        expectOldOrNew(isNew);
        EXPECT_EQ(saved, !failed) << "step " << steps + 1;
        EXPECT_TRUE(!failed || reason.find(file) != std::string::npos) << reason;
        EXPECT_EQ(reason.find("cubes-tmp"), std::string::npos) << reason;
        EXPECT_TRUE(!saved || isNew);
        ASSERT_TRUE(save(numbered(80, 80), file));
    }
    // At least creation, structure, elements, flush, rename.
    EXPECT_GT(steps, 6);
}

TEST_P(EachFailure, everyFailingStepInTheDestructorLeavesTheOldFileOrTheNewOne) {
    TRkMatrix const source = times(90, 90);
    int steps = 0;
    for (bool failed = true; failed; ++steps) {
        ASSERT_LT(steps, 200);
        auto target = std::make_unique<TRkMatrix>(created(file, 90, 90));
        for (int row = 0; row < 90; ++row) std::memcpy(target->RowAt(row, 0), source.RowAt(row, 8), 90 * sizeof(float));
        {
            FailingSystem const system(steps + 1, EIO);
            target.reset();
            failed = system.hasFailed();
        }
        bool const isNew = opened(file).Rows() == 90;
        expectOldOrNew(isNew);
        EXPECT_TRUE(failed || isNew);
        ASSERT_TRUE(save(numbered(80, 80), file));
    }
    EXPECT_GT(steps, 5);
}

TEST_P(EachFailure, aFailureThatPassesIsNeverReportedAsSuccess) {
    std::vector<std::int32_t> const zones = {101, 102, 205};
    TRkMatrix source = times(3, 3);
    source.SetZones(zones);
    TRkMatrix const old = numbered(80, 80);
    int steps = 0;
    for (bool failed = true; failed; ++steps) {
        ASSERT_LT(steps, 200);
        bool saved = false;
        {
            FailingSystem const system(steps + 1, EIO, FailingSystem::Failure::once);
            saved = save(source, file);
            failed = system.hasFailed();
        }
        TRkMatrix const now = opened(file);
        bool const isNew = now.Rows() == 3;
        EXPECT_EQ(saved, !failed) << "step " << steps + 1;
        EXPECT_EQ(difference(now, isNew ? source : old), "") << "step " << steps + 1;
        EXPECT_EQ(now.Zones(), isNew ? zones : std::vector<std::int32_t>()) << "step " << steps + 1;
        EXPECT_EQ(listing(directory.str()), "a.skm\n");
        ASSERT_TRUE(save(old, file));
    }
    EXPECT_GT(steps, 6);
}

TEST_P(EachFailure, theReasonNamesTheFileAndTheSystemsMessage) {
    FailingSystem const system(4, ENOSPC);
    TRkMatrix target = created(file, 90, 90);
    target.AssignFrom(times(90, 90));
    EXPECT_FALSE(target.IsValid());
    EXPECT_EQ(target.Reason().find("cannot write matrix file " + file), 0u) << target.Reason();
    EXPECT_NE(target.Reason().find("No space left"), std::string::npos) << target.Reason();
    EXPECT_THROW(target.RowAt(0, 0), TRkMatrixException);
    EXPECT_EQ(target.Body(), nullptr);
}

TEST_P(EachFailure, aFullDiskLeavesTheOldFile) {
    std::string const mountPoint = directory.file("disk");
    std::filesystem::create_directory(mountPoint);
    SmallDisk const disk(mountPoint, 256);
    cubes::setMatrixStorage(mountPoint, {GetParam(), cubes::Durability::full});
    std::string const target = mountPoint + "/a.skm";
    ASSERT_TRUE(save(numbered(50, 50), target));
    TRkMatrix large = created(target, 700, 700);
    ASSERT_TRUE(large.IsValid()) << large.Reason();
    large.AssignFrom(times(700, 700));
    EXPECT_FALSE(large.IsValid());
    EXPECT_NE(large.Reason().find(target), std::string::npos) << large.Reason();
    EXPECT_EQ(difference(opened(target), numbered(50, 50)), "");
    EXPECT_EQ(listing(mountPoint), "a.skm\n");
    EXPECT_TRUE(save(times(50, 50), target));
}

TEST_P(EachFailure, aReadOnlyDiskIsReadButNotWritten) {
    std::string const mountPoint = directory.file("disk");
    std::filesystem::create_directory(mountPoint);
    SmallDisk disk(mountPoint, 1024);
    std::string const target = mountPoint + "/a.skm";
    ASSERT_TRUE(save(numbered(50, 50), target));
    disk.makeReadOnly();
    EXPECT_EQ(difference(opened(target), numbered(50, 50)), "");
    TRkMatrix const refused[] = {created(target, 2, 2), opened(target, lsReadWrite)};
    for (TRkMatrix const& matrix : refused) {
        EXPECT_FALSE(matrix.IsValid());
        EXPECT_NE(matrix.Reason().find("Read-only file system"), std::string::npos) << matrix.Reason();
        EXPECT_NE(matrix.Reason().find(target), std::string::npos) << matrix.Reason();
    }
}

TEST_P(EachFailure, aKilledProcessLeavesTheOldFileAndATemporaryFile) {
    pid_t const child = fork();
    if (child == 0) {
        TRkMatrix target = created(file, 90, 90);
        target.RowAt(1, 0)[1] = 5;
        raise(SIGKILL);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_EQ(difference(opened(file), numbered(80, 80)), "");
    std::vector<std::string> leftOver;
    for (auto const& entry : std::filesystem::directory_iterator(directory.str()))
        if (entry.path() != file) leftOver.push_back(entry.path().filename().string());
    ASSERT_EQ(leftOver.size(), 1u);
    EXPECT_TRUE(cubes::platform::isTemporaryName(leftOver[0])) << leftOver[0];
    EXPECT_TRUE(leftOver[0].starts_with(".a.skm.")) << leftOver[0];
}

CUBES_EACH_STORAGE(Failure, EachFailure);

TEST(Failure, preservesTheSystemsErrorWhicheverStepFails) {
    TempDir const directory;
    cubes::setMatrixStorage(directory.str(), {cubes::Storage::deflate, cubes::Durability::full});
    TRkMatrix const source = times(90, 90);
    int steps = 0;
    for (bool failed = true; failed; ++steps) {
        ASSERT_LT(steps, 200);
        std::error_code code;
        std::string message;
        FailingSystem const system(steps + 1, ENOSPC);
        try {
            cubes::OmxFile::write(directory.file("a.omx"), "matrix", source);
        } catch (TRkMatrixException const& error) {
            code = error.Code();
            message = error.what();
        }
        failed = system.hasFailed();
        EXPECT_EQ(code == std::errc::no_space_on_device, failed) << "step " << steps + 1;
        std::string const expected = "cannot write OMX file " + directory.file("a.omx") + ": ";
        std::string const ofDirectory = cubes::platform::mayBeLost;
        if (failed && message != expected + "No space left on device") {
            EXPECT_EQ(message, expected + ofDirectory + "No space left on device");
        }
    }
    EXPECT_GT(steps, 5);
}

TEST(Failure, aStagedFileReportsWhetherItReplacedItsTarget) {
    TempDir const directory;
    std::string const file = directory.file("a.skm");
    TRkMatrix const matrix = times(9, 9);
    int failures = 0;
    for (bool failed = true; failed;) {
        ASSERT_TRUE(save(numbered(3, 3), file));
        cubes::matrix::StagedFile staged(file);
        staged.write({.header = cubes::matrix::fileHeader(matrix.Header()), .elements = matrix.Elements().data()});
        {
            FailingSystem const system(failures + 1, EIO);
            try {
                staged.publish();
            } catch (TRkMatrixException const&) {
                ++failures;
            }
            failed = system.hasFailed();
        }
        EXPECT_EQ(staged.isPublished(), opened(file).Rows() == 9) << "failure " << failures;
    }
    // The rename and the flush of the directory.
    EXPECT_EQ(failures, 2);
}

// As on FAT, and on file systems that have no room for more links.
TEST(WithoutHardLinks, aDirectoryGetsAnIdentityAllTheSame) {
    for (int const error : {EPERM, ENOTSUP, EMLINK, ENOSYS}) {
        TempDir const directory;
        RefusedLinks const links(error);
        auto const id = cubes::matrix::directoryIdentity(directory.str());
        EXPECT_TRUE(id.isKnown()) << error;
        EXPECT_EQ(cubes::matrix::directoryIdentity(directory.str()), id);
        EXPECT_EQ(readFile(directory.file("cubes-id")), id.text() + "\n");
        EXPECT_EQ(listing(directory.str()), "cubes-id\n");
    }
}

TEST(WithoutHardLinks, anIdentityThatCannotBeWrittenIsMadeLater) {
    TempDir const directory;
    RefusedLinks const links(EPERM);
    int steps = 0;
    for (bool failed = true; failed; ++steps) {
        ASSERT_LT(steps, 20);
        {
            FailingSystem const system(steps + 1, ENOSPC);
            cubes::matrix::directoryIdentity(directory.str());
            failed = system.hasFailed();
        }
        EXPECT_TRUE(cubes::matrix::directoryIdentity(directory.str()).isKnown()) << steps;
        EXPECT_EQ(listing(directory.str()), "cubes-id\n");
        std::filesystem::remove(directory.file("cubes-id"));
    }
    // Temporary file and final file, each made, written and flushed.
    EXPECT_GT(steps, 6);
}

TEST(WithoutHardLinks, aFileIsCopiedToItsSecondName) {
    TempDir const directory;
    RefusedLinks const links(EPERM);
    std::string const source = directory.file("a");
    writeFile(source, "content");
    cubes::platform::TemporaryFile copied(directory.file("b"));
    copied.linkTo(source);
    copied.publish();
    EXPECT_EQ(readFile(directory.file("b")), "content");
    EXPECT_FALSE(std::filesystem::equivalent(source, directory.file("b")));
}

TEST(Failure, aSourceThatCanNoLongerBeReadLeavesTheOldFile) {
    TempDir const directory;
    std::string const file = directory.file("a.skm");
    ASSERT_TRUE(save(numbered(3, 3), file));
    ASSERT_TRUE(save(times(3, 3), directory.file("source.skm")));
    TRkMatrix source = opened(directory.file("source.skm"));
    source.Release();
    std::filesystem::remove(directory.file("source.skm"));
    TRkMatrix target = created(file, 3, 3);
    target.AssignFrom(source);
    EXPECT_FALSE(target.IsValid());
    EXPECT_NE(target.Reason().find("source.skm"), std::string::npos) << target.Reason();
    EXPECT_EQ(difference(opened(file), numbered(3, 3)), "");
    EXPECT_EQ(listing(directory.str()), "a.skm\n");
}
