#include "host/platform/CopyContent.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <system_error>

namespace cubes::test {
namespace {

namespace fs = std::filesystem;
using platform::copyContent;
using platform::File;

std::string noise(std::size_t size) {
    std::mt19937 random(7);
    std::string bytes(size, '\0');
    for (char& byte : bytes) byte = static_cast<char>(random());
    return bytes;
}

/// Copies within one directory, or from one to another.
void expectCopies(TempDir const& from, TempDir const& to) {
    for (std::size_t const size : {0u, 1u, 4095u, (1u << 20) + 1, (5u << 20) + 3}) {
        std::string const bytes = noise(size);
        writeFile(from.file("source"), bytes);
        File target = File::createNew(to.file("target"));
        copyContent(from.file("source"), target);
        target.flush();
        EXPECT_EQ(target.size(), size);
        target.close();
        EXPECT_TRUE(readFile(to.file("target")) == bytes) << size;
        EXPECT_TRUE(readFile(from.file("source")) == bytes) << size;
        fs::remove(to.file("target"));
    }
}

TEST(CopyContent, givesAFileOfAnySize) {
    TempDir const directory;
    expectCopies(directory, directory);
}

TEST(CopyContent, isAnErrorForWhatIsNoFile) {
    TempDir const directory;
    File target = File::createNew(directory.file("target"));
    EXPECT_THROW(copyContent(directory.file("missing"), target), std::system_error);
    EXPECT_THROW(copyContent(directory.str(), target), std::system_error);
}

TEST(CopyContent, namesTheFileThatIsNotThere) {
    TempDir const directory;
    File target = File::createNew(directory.file("target"));
    try {
        copyContent(directory.file("none"), target);
        ADD_FAILURE() << "copied";
    } catch (std::system_error const& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("cannot open " + directory.file("none"))) << error.what();
    }
}

TEST(CopyContent, sharesNothingThatIsChangedLater) {
    TempDir const directory;
    writeFile(directory.file("source"), "old content");
    File target = File::createNew(directory.file("target"));
    copyContent(directory.file("source"), target);
    target.close();
    writeFile(directory.file("source"), "new");
    EXPECT_EQ(readFile(directory.file("target")), "old content");
}

TEST(CopyContent, goesToAnotherFileSystem) {
    TempDir const directory;
    std::string const elsewhere = otherFileSystem(directory.str());
    if (elsewhere.empty()) GTEST_SKIP() << "SKIPPED: no second file system here";
    TempDir const other(elsewhere);
    expectCopies(directory, other);
    expectCopies(other, directory);
}

TEST(CopyContent, keepsWhoMayReadTheFile) {
    TempDir const directory;
    writeFile(directory.file("source"), "private");
    fs::permissions(directory.file("source"), fs::perms::owner_read);
    if (fs::status(directory.file("source")).permissions() != fs::perms::owner_read)
        GTEST_SKIP() << "SKIPPED: files are for all or for none to read here";
    File target = File::createNew(directory.file("target"));
    copyContent(directory.file("source"), target);
    EXPECT_EQ(fs::status(directory.file("target")).permissions(), fs::perms::owner_read);
}

}
}
