#include "BadFile.h"

#include <filesystem>

namespace cubes::tool {

namespace {

namespace fs = std::filesystem;

TripTable one() {
    TripTable table;
    table.rows = table.columns = 1;
    table.zones = {1};
    table.cells = {4};
    return table;
}

template <typename Work>
std::string messageOf(Work work) {
    try {
        work();
        return {};
    } catch (FormatError const& error) {
        return error.what();
    }
}

std::string readMessage(std::string const& path, std::optional<std::string> const& table = {}) {
    return messageOf([&] { readTripTable(path, table); });
}

std::string writeMessage(std::string const& path) {
    return messageOf([&] { writeTripTable(path, one(), "trips"); });
}

}

TEST(Formats, areToldByTheExtensionWhateverItsCase) {
    test::TempDir const directory;
    test::writeFile(directory.file("a.CSV"), "zone,1\n1,4\n");
    test::writeFile(directory.file("b.Tntp"), "<END OF METADATA>\nOrigin 1\n1 : 4;");
    EXPECT_EQ(readTripTable(directory.file("a.CSV")).cells, one().cells);
    EXPECT_EQ(readTripTable(directory.file("b.Tntp")).cells, one().cells);
}

TEST(Formats, refusesOtherExtensionsAndNamesTheKnown) {
    for (auto const& message : {readMessage("a.xlsx"), writeMessage("a.xlsx")})
        EXPECT_EQ(message, "a.xlsx: '.xlsx' is no format, expected one of .omx, .csv, .tntp");
    EXPECT_EQ(readMessage("dir.csv/trips"), "dir.csv/trips: has no extension, expected one of .omx, .csv, .tntp");
}

TEST(Formats, refusesToWriteTntpAndSaysWhy) {
    test::TempDir const directory;
    EXPECT_EQ(writeMessage(directory.file("a.tntp")),
        directory.file("a.tntp") + ": .tntp is a format to import from; write .omx or .csv, which keep every value");
    EXPECT_EQ(test::listing(directory.str()), "");
}

TEST(Formats, refusesATableNameWhereThereAreNone) {
    EXPECT_EQ(readMessage("a.csv", "AM"), "a.csv: holds one table without a name, 'AM' was asked for");
    EXPECT_EQ(readMessage("a.tntp", "AM"), "a.tntp: holds one table without a name, 'AM' was asked for");
}

TEST(Formats, nameAFileThatIsMissing) {
    EXPECT_EQ(readMessage("/no/such/file.csv"), "/no/such/file.csv: cannot be read: No such file or directory");
    EXPECT_EQ(readMessage("/no/such/file.tntp"), "/no/such/file.tntp: cannot be read: No such file or directory");
}

TEST(Formats, nameADirectoryWhereAFileShouldBe) {
    test::TempDir const directory;
    auto const path = directory.file("trips.csv");
    fs::create_directory(path);
    EXPECT_EQ(readMessage(path), path + ": is a directory, expected a file");
    EXPECT_EQ(writeMessage(path), path + ": is a directory, expected a file");
    EXPECT_EQ(test::listing(directory.str()), "trips.csv\n");
}

TEST(Formats, nameADirectoryThatIsMissing) {
    EXPECT_EQ(writeMessage("/no/such/file.csv"), "/no/such/file.csv: cannot be written: No such file or directory");
}

TEST(Formats, replaceAnOldFile) {
    test::TempDir const directory;
    test::writeFile(directory.file("t.csv"), "something old, and longer than what comes");
    writeTripTable(directory.file("t.csv"), one(), "");
    EXPECT_EQ(test::readFile(directory.file("t.csv")), "origin,destination,value\n1,1,4\n");
    EXPECT_EQ(test::listing(directory.str()), "t.csv\n");
}

TEST(Formats, keepTheOldFileWhenWritingStops) {
    test::TempDir const directory;
    test::writeFile(directory.file("t.csv"), "old");
    auto const stop = [](double) { throw FormatError("t.csv", "stopped"); };
    EXPECT_THROW(writeTripTable(directory.file("t.csv"), one(), "", CsvForm::wide, stop), FormatError);
    EXPECT_EQ(test::readFile(directory.file("t.csv")), "old");
    EXPECT_EQ(test::listing(directory.str()), "t.csv\n");
}

TEST(Formats, writeOverNoDevice) {
    test::TempDir const directory;
    auto const device = test::endlessDevice();
    if (device.empty() || !test::makeLink(device, directory.file("t.csv")))
        GTEST_SKIP() << "SKIPPED: no links to devices here";
    EXPECT_EQ(writeMessage(device), device + ": has no extension, expected one of .omx, .csv, .tntp");
    EXPECT_EQ(writeMessage(directory.file("t.csv")), directory.file("t.csv") + ": is not a regular file");
}

}
