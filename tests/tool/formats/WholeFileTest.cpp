#include "support/Forked.h"
#include "support/TempDir.h"
#include "tool/Errors.h"
#include "tool/formats/Formats.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>

#include <sys/resource.h>

namespace cubes::tool {

namespace {

TripTable thousandCells() {
    TripTable table;
    table.rows = table.columns = 32;
    table.cells.assign(32 * 32, 1.5f);
    return table;
}

// Simulates a disk with that much room: writing more fails.
void limitFilesTo(rlim_t bytes) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit const limit{bytes, bytes};
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("cannot limit the size of files");
}

void expectRefusal(std::string const& path) {
    try {
        writeTripTable(path, thousandCells(), "");
    } catch (FormatError const& error) {
        if (error.what() == std::string("File too large")) return;
        throw;
    }
    throw std::runtime_error("the file was written");
}

}

TEST(FullDisk, leavesTheOldFileAndNothingElse) {
    for (rlim_t const room : {0U, 1U, 4096U, 8000U}) {
        test::TempDir const directory;
        auto const path = directory.file("t.csv");
        test::writeFile(path, "old");
        EXPECT_EQ(test::inProcesses(1,
                      [&](int) {
                          limitFilesTo(room);
                          expectRefusal(path);
                      }),
            1)
            << room;
        EXPECT_EQ(test::readFile(path), "old");
        EXPECT_EQ(test::listing(directory.str()), "t.csv\n");
    }
}

}
