#include "host/platform/File.h"
#include "host/platform/Files.h"
#include "host/platform/System.h"
#include "host/platform/TemporaryFile.h"
#include "support/ChildTask.h"
#include "support/TempDir.h"

#include <cubes/core/TRkCubesException.h>

#include <gtest/gtest.h>

#include <string>
#include <system_error>

#include <windows.h>

namespace platform = cubes::platform;
using cubes::test::ChildTask;
using cubes::test::leaveAtOnce;
using cubes::test::listing;
using cubes::test::readFile;
using cubes::test::TempDir;
using cubes::test::writeFile;

namespace {

/// Another program's handle of a file, which shares nothing by default.
class Foreign {
public:
    explicit Foreign(std::string const& path, DWORD share = 0)
        : handle_(CreateFileA(path.c_str(), GENERIC_READ, share, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_NE(handle_, INVALID_HANDLE_VALUE) << path;
    }
    ~Foreign() { CloseHandle(handle_); }
    Foreign(Foreign const&) = delete;
    Foreign& operator=(Foreign const&) = delete;

private:
    HANDLE handle_;
};

std::string textOf(platform::FileView const& view) {
    return {reinterpret_cast<char const*>(view.bytes().data()), view.bytes().size()};
}

template <typename Work>
std::string failureOf(Work const& work) {
    try {
        work();
        return "none";
    } catch (std::system_error const& error) {
        return error.what();
    }
}

/// Writes new content beside the target and replaces it.
void publish(std::string const& target, std::string const& content) {
    platform::TemporaryFile file(target);
    file.file().writeAt(0, std::as_bytes(std::span(content.data(), content.size())));
    file.publish();
}

bool canBeTaken(std::string const& path) {
    return platform::ByteLock::tryTake(path, 7).has_value();
}

ChildTask const taking("taking", [](int, std::string const& path) { leaveAtOnce(canBeTaken(path)); });

// A separate result, so that a process that could not try does not count as refused.
ChildTask const beingRefused("being refused", [](int, std::string const& path) { leaveAtOnce(!canBeTaken(path)); });

ChildTask const takingAndEnding("taking and ending", [](int, std::string const& path) {
    auto const lock = platform::ByteLock::tryTake(path, 7);
    leaveAtOnce(lock && beingRefused.inProcesses(1, path) == 1);
});

}

TEST(WindowsErrors, endWithTheSystemsLineEnd) {
    for (std::uint32_t const code : {2u, 3u, 5u, 32u, 112u}) {
        auto const text = platform::errorText(code);
        ASSERT_TRUE(text) << code;
        EXPECT_TRUE(text->ends_with("\r\n")) << *text;
        EXPECT_GT(text->size(), 4u);
        EXPECT_EQ(TRkCubesException(nullptr, code).what(), *text);
        EXPECT_EQ(TRkCubesException("Copy", code).what(), "Copy " + *text);
    }
}

TEST(WindowsErrors, areReportedByTheirNumberAcrossOtherCalls) {
    SetLastError(ERROR_DISK_FULL);
    EXPECT_EQ(platform::lastError(), 112u);
    EXPECT_EQ(TRkCubesException("Copy", 0xFFFFFFFF).what(), "Copy " + *platform::errorText(112));
}

// The C library's copy, which getenv reads, does not follow the system's.
TEST(WindowsEnvironment, isReadFromTheSystemAtEachCall) {
    constexpr char const* name = "CUBES_TEST_SYSTEM_ENVIRONMENT";
    EXPECT_FALSE(platform::environment(name));
    for (std::string const& value : {std::string("true"), std::string(5000, 'x')}) {
        ASSERT_TRUE(SetEnvironmentVariableA(name, value.c_str()));
        EXPECT_EQ(platform::environment(name), value);
    }
    ASSERT_TRUE(SetEnvironmentVariableA(name, nullptr));
    EXPECT_FALSE(platform::environment(name));
}

TEST(WindowsFile, thatIsInUseIsRefusedWithItsNameAndTheReason) {
    TempDir const directory;
    writeFile(directory.file("a"), "old");
    std::string const reason = std::system_category().message(ERROR_SHARING_VIOLATION);
    {
        Foreign const user(directory.file("a"));
        EXPECT_EQ(failureOf([&] { platform::File::openForReading(directory.file("a")); }),
            "cannot open " + directory.file("a") + ": " + reason);
        EXPECT_EQ(failureOf([&] { platform::FileView::open(directory.file("a")); }),
            "cannot open " + directory.file("a") + ": " + reason);
        std::string const failure = failureOf([&] { publish(directory.file("a"), "new"); });
        EXPECT_TRUE(failure.starts_with("cannot put in place " + directory.file("a") + ": ")) << failure;
        EXPECT_EQ(listing(directory.str()), "a\n");
    }
    EXPECT_EQ(readFile(directory.file("a")), "old");
    publish(directory.file("a"), "new");
    EXPECT_EQ(readFile(directory.file("a")), "new");
}

TEST(WindowsFile, inUseCannotBeMoved) {
    TempDir const directory;
    writeFile(directory.file("a"), "a");
    writeFile(directory.file("b"), "b");
    std::filesystem::create_directory(directory.file("d"));
    writeFile(directory.file("d/inner"), "inner");
    {
        // Opened with the sharing of most programs.
        Foreign const user(directory.file("b"), FILE_SHARE_READ | FILE_SHARE_WRITE);
        Foreign const other(directory.file("d/inner"), FILE_SHARE_READ | FILE_SHARE_WRITE);
        EXPECT_FALSE(platform::copyFile(directory.file("a"), directory.file("b")));
        EXPECT_FALSE(platform::removeFile(directory.file("b")));
        EXPECT_FALSE(platform::removeDirectory(directory.file("d"), true));
        EXPECT_EQ(listing(directory.str()), "a\nb\nd\nd/inner\n");
        EXPECT_TRUE(platform::copyFile(directory.file("b"), directory.file("c")));
    }
    EXPECT_EQ(readFile(directory.file("b")) + readFile(directory.file("c")), "bb");
    EXPECT_TRUE(platform::copyFile(directory.file("a"), directory.file("b")));
    EXPECT_TRUE(platform::removeDirectory(directory.file("d"), true));
    EXPECT_EQ(listing(directory.str()), "a\nb\nc\n");
}

TEST(WindowsFile, isReplacedWhileReadersKeepTheOldContent) {
    TempDir const directory;
    writeFile(directory.file("a"), "one");
    {
        platform::FileView const first = platform::FileView::open(directory.file("a"));
        platform::File const held = platform::File::openForReading(directory.file("a"));
        publish(directory.file("a"), "two!");
        platform::FileView const second = platform::FileView::open(directory.file("a"));
        publish(directory.file("a"), "three");
        EXPECT_EQ(textOf(first) + textOf(second), "onetwo!");
        EXPECT_EQ(held.size(), 3u);
        EXPECT_EQ(readFile(directory.file("a")), "three");
        EXPECT_TRUE(platform::removeFile(directory.file("a")));
        EXPECT_EQ(textOf(first) + textOf(second), "onetwo!");
    }
    EXPECT_EQ(listing(directory.str()), "");
}

TEST(WindowsFile, thatWasReplacedWhileItWasReadIsRemovedWithTheNextReplacement) {
    TempDir const directory;
    for (char const* name : {"a", ".a.12-0.old.cubes-tmp", ".b.12-1.old.cubes-tmp", ".a.12-2.cubes-tmp"})
        writeFile(directory.file(name), "old");
    publish(directory.file("a"), "new");
    EXPECT_EQ(listing(directory.str()), ".a.12-2.cubes-tmp\na\n");
}

TEST(WindowsFile, mayHaveALongPath) {
    TempDir const directory;
    std::string const deep = directory.file(std::string(120, 'd') + "/" + std::string(120, 'e') + "/deep");
    ASSERT_GT(deep.size(), 260u);
    EXPECT_TRUE(platform::createDirectories(deep));
    publish(deep + "\\a", "one");
    publish(deep + "\\a", "two");
    EXPECT_TRUE(platform::copyFile(deep + "\\a", deep + "\\b"));
    EXPECT_EQ(textOf(platform::FileView::open(deep + "\\b")), "two");
    EXPECT_TRUE(platform::copy(directory.file(std::string(120, 'd')), directory.file("copy"), false));
    EXPECT_EQ(listing(directory.file("copy")), std::string(120, 'e') + "\n" + std::string(120, 'e') + "/deep\n" +
                                                   std::string(120, 'e') + "/deep/a\n" + std::string(120, 'e') +
                                                   "/deep/b\n");
    EXPECT_TRUE(platform::removeDirectory(directory.file("copy"), true));
    EXPECT_TRUE(platform::removeDirectory(directory.file(std::string(120, 'd')), true));
    EXPECT_EQ(listing(directory.str()), "");
}

// The system's device names, in any directory.
TEST(WindowsFile, cannotBeADevice) {
    TempDir const directory;
    for (char const* name : {"NUL", "nul", "CON", "COM1", "LPT1", "AUX", "PRN"}) {
        std::string const path = directory.file(name);
        EXPECT_FALSE(platform::isRegularFile(path)) << name;
        EXPECT_NE(failureOf([&] { platform::File::openForReading(path); }), "none") << name;
        EXPECT_NE(failureOf([&] { platform::File::createNew(path); }), "none") << name;
        EXPECT_NE(failureOf([&] { platform::File::openShared(path); }), "none") << name;
        std::string const failure = failureOf([&] { publish(path, "content"); });
        EXPECT_TRUE(failure.starts_with("cannot put in place " + path + ": ")) << failure;
    }
    EXPECT_EQ(listing(directory.str()), "");
}

TEST(WindowsFile, keepsItsContentWhenItIsCopiedToADevice) {
    TempDir const directory;
    writeFile(directory.file("a"), "a");
    EXPECT_FALSE(platform::copyFile(directory.file("a"), directory.file("NUL")));
    EXPECT_FALSE(platform::moveDirectory(directory.str(), directory.str() + "\\..\\CON"));
    EXPECT_EQ(readFile(directory.file("a")), "a");
    EXPECT_EQ(listing(directory.str()), "a\n");
}

TEST(WindowsLock, isVisibleToAnotherProcessAndEndsWithItsOwn) {
    TempDir const directory;
    std::string const file = directory.file("lock");
    {
        auto const lock = platform::ByteLock::tryTake(file, 7);
        ASSERT_TRUE(lock);
        EXPECT_EQ(beingRefused.inProcesses(1, file), 1);
    }
    EXPECT_EQ(taking.inProcesses(1, file), 1);
    EXPECT_EQ(takingAndEnding.inProcesses(1, file), 1);
    EXPECT_TRUE(platform::ByteLock::tryTake(file, 7));
}
