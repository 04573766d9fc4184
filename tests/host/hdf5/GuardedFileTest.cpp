#include "host/hdf5/GuardedFile.h"

#include "support/Process.h"
#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <csignal>
#include <future>
#include <memory>
#include <new>
#include <numeric>
#include <system_error>
#include <thread>

using namespace cubes::hdf5;
using cubes::platform::File;
using namespace cubes::test;

namespace {

std::string const program = R"(
import sys, h5py, numpy as np
with h5py.File(sys.argv[1], 'w') as f:
    e = 100 * np.arange(50)[:, None] + np.arange(40)
    f.create_dataset('data/chunked', data=e.astype('>i4'), chunks=(7, 9), compression='gzip', fletcher32=True)
    f.create_dataset('data/rows', data=e.astype('<f4'), chunks=(20, 40))
    f.create_dataset('list', data=np.arange(2000000, dtype='<u4'), chunks=(1000,))
    f['data'].create_group('more')
    f['data/soft'] = h5py.SoftLink('/list')
    f.attrs['text'] = np.bytes_('abc')
    f.attrs['numbers'] = np.array([-1, 2, 3], 'i2')
)";

class GuardedFileTest : public testing::Test {
protected:
    void SetUp() override {
        auto const result = runPython(program, {path});
        ASSERT_EQ(result.exitCode, 0) << result.errors;
    }
    void TearDown() override { readerSettings() = {}; }

    GuardedFile open() const { return GuardedFile(File::openForReading(path)); }
    std::string failureOf(GuardedFile const& file) const {
        try {
            file.links("");
        } catch (std::runtime_error const& error) {
            return error.what();
        }
        return "";
    }
    std::string failureOfOpening() const {
        try {
            return failureOf(open());
        } catch (std::runtime_error const& error) {
            return error.what();
        }
    }

    TempDir const directory;
    std::string const path = directory.file("a.h5");
};

std::vector<std::int32_t> rowsOf(GuardedFile const& file, std::string const& name, std::uint64_t first, int rows) {
    auto const dataset = file.dataset(name);
    std::vector<std::int32_t> numbers(static_cast<std::size_t>(rows) * dataset.dimensions[1]);
    file.read(name, dataset, NumberType::int32, first, std::as_writable_bytes(std::span(numbers)));
    return numbers;
}

}

TEST_F(GuardedFileTest, describesTheObjectsOfAFile) {
    GuardedFile const file = open();
    auto const links = file.links("data");
    ASSERT_EQ(links.size(), 4u);
    EXPECT_EQ(links[0].name, "chunked");
    EXPECT_EQ(links[0].kind, LinkKind::dataset);
    EXPECT_EQ(links[0].dimensions, 2);
    EXPECT_EQ(links[1].kind, LinkKind::group);
    EXPECT_EQ(links[3].kind, LinkKind::elsewhere);
    EXPECT_TRUE(file.exists("data/soft"));
    EXPECT_FALSE(file.exists("data/none"));
    auto const chunked = file.dataset("data/chunked");
    EXPECT_EQ(chunked.dimensions, (std::vector<std::uint64_t>{50, 40}));
    EXPECT_EQ(chunked.chunk, (std::vector<std::uint64_t>{7, 9}));
    ASSERT_EQ(chunked.filters.size(), 2u);
    EXPECT_EQ(chunked.filters[0].id, 1);
    EXPECT_TRUE(chunked.filters[0].isAvailable);
    EXPECT_FALSE(chunked.type.isFloat32);
    EXPECT_TRUE(file.dataset("data/rows").type.isFloat32);
    EXPECT_EQ(findText(file, "", "text"), "abc");
    auto const numbers = file.attribute("", "numbers");
    ASSERT_TRUE(numbers);
    EXPECT_EQ(numbers->count, 3u);
    EXPECT_EQ(numbers->value.size(), 24u);
    EXPECT_FALSE(file.attribute("", "none"));
}

TEST_F(GuardedFileTest, convertsNumbersOfAnyChunks) {
    GuardedFile const file = open();
    auto const numbers = rowsOf(file, "data/chunked", 5, 20);
    for (int row = 0; row < 20; ++row)
        for (int column = 0; column < 40; ++column)
            ASSERT_EQ(numbers[static_cast<std::size_t>(row * 40 + column)], 100 * (row + 5) + column);
    auto const list = file.dataset("list");
    std::vector<double> all(2'000'000);
    file.read("list", list, NumberType::float64, 0, std::as_writable_bytes(std::span(all)));
    EXPECT_EQ(std::accumulate(all.begin(), all.end(), 0.0), 1999999e6);
}

TEST_F(GuardedFileTest, givesThePlacesOfChunksOfRows) {
    GuardedFile const file = open();
    auto const chunks = file.chunks("data/rows", 3);
    for (auto const& chunk : chunks) EXPECT_EQ(chunk.size, 20u * 40 * 4);
    float first = 0;
    file.file().readAt(chunks[1].offset, std::as_writable_bytes(std::span(&first, 1)));
    EXPECT_EQ(first, 2000);
}

TEST_F(GuardedFileTest, refusesWhatIsNotThereAndGoesOn) {
    GuardedFile const file = open();
    EXPECT_THROW(file.dataset("data"), std::runtime_error);
    EXPECT_THROW(file.dataset("data/soft"), std::runtime_error);
    EXPECT_THROW(file.links("list"), std::runtime_error);
    EXPECT_THROW(rowsOf(file, "data/rows", 45, 10), std::runtime_error);
    EXPECT_EQ(rowsOf(file, "data/rows", 49, 1)[3], 4903);
}

TEST_F(GuardedFileTest, turnsEveryFailureOfTheReaderIntoOneError) {
    std::string const failed = "it is damaged (HDF5 failed on it)";
    std::string const silent = "it is damaged (HDF5 did not finish reading it within 5 s)";
    struct {
        char const* failure;
        std::string message;
    } const cases[] = {
        {"ends", failed},
        {"crashes", failed},
        {"hangs", silent},
        {"crashes later", failed},
        {"hangs later", silent},
        {"says nonsense", "abc"},
        {"claims gigabytes", failed},
        {"claims a long error", failed},
        {"ends in an answer", failed},
        {"counts wrongly", failed},
        {"sends control characters", "a?!"},
        {"sends a long error number", failed},
        {"has too little memory and more to say", failed},
    };
    readerSettings().program = BROKEN_READER;
    // A program may take a second to start.
    for (auto const& [failure, message] : cases) {
        Variable const chosen("CUBES_TEST_FAILURE", failure);
        readerSettings().patience = std::chrono::seconds(message == silent ? 5 : 60);
        EXPECT_EQ(failureOfOpening(), message) << failure;
    }
}

TEST_F(GuardedFileTest, reportsAReaderThatHasTooLittleMemoryAsThat) {
    readerSettings().program = BROKEN_READER;
    Variable const chosen("CUBES_TEST_FAILURE", "has too little memory");
    GuardedFile const file = open();
    EXPECT_THROW(file.links(""), std::bad_alloc);
}

TEST_F(GuardedFileTest, reportsAFileThatCannotBeReadWithTheSystemsError) {
    try {
        GuardedFile const file(File::openLog(path));
        ADD_FAILURE() << "a file that is open for appending was read";
    } catch (std::system_error const& error) {
        EXPECT_EQ(error.code().category(), std::system_category());
        EXPECT_EQ(error.what(), error.code().message());
    }
    readerSettings().program = BROKEN_READER;
    Variable const chosen("CUBES_TEST_FAILURE", "cannot read");
    GuardedFile const file = open();
    for (int i = 0; i < 2; ++i) {
        try {
            file.links("");
            ADD_FAILURE();
        } catch (std::system_error const& error) {
            EXPECT_EQ(error.code(), std::error_code(5, std::system_category()));
        }
    }
}

TEST_F(GuardedFileTest, namesAReaderThatIsMissing) {
    readerSettings().program = directory.file("none");
    EXPECT_EQ(failureOfOpening(),
        "the program that reads HDF5 files was not found at " + directory.file("none") + "; install Cubes again");
}

TEST_F(GuardedFileTest, namesAReaderThatCannotBeStarted) {
    std::string const text = directory.file("text");
    writeFile(text, "no program");
    readerSettings().program = text;
    EXPECT_EQ(failureOfOpening().find("cannot start " + text + ": "), 0u) << failureOfOpening();
}

TEST_F(GuardedFileTest, takesNoFileForDamagedWhenTheReaderDoesNotRun) {
    std::string const silent = "it does not run; it needs the HDF5 library, and memory for another process";
    struct {
        char const* failure;
        std::string reason;
    } const cases[] = {
        {"ends at the start", silent},
        {"hangs at the start", silent},
        {"is another program", "it is not the reader of this version; install Cubes again"},
        {"gets no thread", std::system_category().message(11)},
    };
    readerSettings().program = BROKEN_READER;
    for (auto const& [failure, reason] : cases) {
        Variable const chosen("CUBES_TEST_FAILURE", failure);
        readerSettings().patience =
            failure == cases[1].failure ? std::chrono::milliseconds(100) : std::chrono::seconds(60);
        try {
            open();
            ADD_FAILURE() << failure;
        } catch (NoReader const& error) {
            EXPECT_EQ(error.what(), std::string("cannot start ") + BROKEN_READER + ": " + reason);
        } catch (std::runtime_error const& error) {
            ADD_FAILURE() << failure << ": " << error.what();
        }
    }
}

TEST_F(GuardedFileTest, isNotDisturbedByTheApplicationsSignals) {
#ifdef SIGCHLD
    auto* const children = std::signal(SIGCHLD, SIG_IGN);
    auto* const pipes = std::signal(SIGPIPE, SIG_DFL);
    EXPECT_EQ(failureOfOpening(), "");
    GuardedFile const file = open();
    ASSERT_EQ(kill(static_cast<pid_t>(file.processId()), SIGKILL), 0);
    EXPECT_EQ(failureOf(file), "it is damaged (HDF5 failed on it)");
    EXPECT_EQ(failureOf(file), "it is damaged (HDF5 failed on it)");
    std::signal(SIGCHLD, children);
    std::signal(SIGPIPE, pipes);
#else
    GTEST_SKIP() << "there are no such signals on this system";
#endif
}

TEST_F(GuardedFileTest, waitsNoLongerWhenTheApplicationGetsSignals) {
#ifdef SIGUSR1
    constexpr int enough = 300;
    auto* const before = std::signal(SIGUSR1, [](int) {});
    readerSettings() = {BROKEN_READER, std::chrono::milliseconds(200)};
    Variable const chosen("CUBES_TEST_FAILURE", "hangs");
    std::promise<std::string> message;
    auto found = message.get_future();
    std::thread opening([&] { message.set_value(failureOfOpening()); });
    int signals = 0;
    while (signals < enough && found.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
        pthread_kill(opening.native_handle(), SIGUSR1);
        ++signals;
    }
    opening.join();
    std::signal(SIGUSR1, before);
    EXPECT_EQ(found.get(), "it is damaged (HDF5 did not finish reading it within 1 s)");
    EXPECT_LT(signals, enough);
#else
    GTEST_SKIP() << "there are no such signals on this system";
#endif
}

TEST_F(GuardedFileTest, waitsLongerForMoreNumbers) {
    ReaderSettings const settings;
    EXPECT_EQ(settings.patienceFor(0), std::chrono::seconds(60));
    EXPECT_EQ(settings.patienceFor(10'000'000), std::chrono::seconds(61));
    EXPECT_EQ(settings.patienceFor(4'000'000'000), std::chrono::seconds(460));
}

TEST_F(GuardedFileTest, readsInManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([&, number] {
            for (int i = 0; i < 3; ++i) {
                GuardedFile const file = open();
                EXPECT_EQ(rowsOf(file, "data/chunked", static_cast<std::uint64_t>(number), 1)[2], 100 * number + 2);
            }
        });
    for (auto& thread : threads) thread.join();
}

TEST_F(GuardedFileTest, isReadByManyThreadsWhateverThreadOpenedIt) {
    std::unique_ptr<GuardedFile> file;
    std::thread([&] { file = std::make_unique<GuardedFile>(File::openForReading(path)); }).join();
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number)
        threads.emplace_back([&, number] {
            EXPECT_EQ(rowsOf(*file, "data/chunked", static_cast<std::uint64_t>(number), 1)[2], 100 * number + 2);
        });
    for (auto& thread : threads) thread.join();
}
