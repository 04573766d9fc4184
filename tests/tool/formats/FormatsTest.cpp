#include "BadFile.h"

#include "support/Process.h"
#include "support/SharedData.h"
#include "support/TempDir.h"
#include "tool/Errors.h"
#include "tool/formats/Formats.h"

#include <cubes/matrix/TRkMatrixException.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <sstream>

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
    return messageOf([&] { readTripTable(path, {.table = table}); });
}

std::string writeMessage(std::string const& path) {
    return messageOf([&] { writeTripTable(path, one(), "trips"); });
}

}

TEST(Formats, areSelectedByTheExtensionInAnyLetterCase) {
    test::TempDir const directory;
    test::writeFile(directory.file("a.CSV"), "zone,1\n1,4\n");
    test::writeFile(directory.file("b.Tntp"), "<END OF METADATA>\nOrigin 1\n1 : 4;");
    EXPECT_EQ(readTripTable(directory.file("a.CSV")).cells, one().cells);
    EXPECT_EQ(readTripTable(directory.file("b.Tntp")).cells, one().cells);
}

TEST(Formats, refuseOtherExtensionsAndNameTheKnownOnes) {
    for (auto const& message : {readMessage("a.xlsx"), writeMessage("a.xlsx")})
        EXPECT_EQ(message, "'.xlsx' is not a format; expected one of .omx, .csv, .tntp");
    EXPECT_EQ(readMessage("dir.csv/trips"), "the file name has no extension; expected one of .omx, .csv, .tntp");
}

TEST(Formats, refuseToWriteTntpAndStateTheReason) {
    test::TempDir const directory;
    EXPECT_EQ(writeMessage(directory.file("a.tntp")),
        ".tntp files can be imported only; export to .omx or .csv, which keep every value");
    EXPECT_EQ(test::listing(directory.str()), "");
}

TEST(Formats, refuseATableNameForFormatsWithoutTables) {
    EXPECT_EQ(readMessage("a.csv", "AM"), "it holds one table without a name; omit --table");
    EXPECT_EQ(readMessage("a.tntp", "AM"), "it holds one table without a name; omit --table");
}

TEST(Formats, reportAMissingFile) {
    EXPECT_EQ(readMessage("/no/such/file.csv"), "No such file or directory");
    EXPECT_EQ(readMessage("/no/such/file.tntp"), "No such file or directory");
}

TEST(Formats, reportADirectoryInPlaceOfAFile) {
    test::TempDir const directory;
    auto const path = directory.file("trips.csv");
    fs::create_directory(path);
    EXPECT_EQ(readMessage(path), "it is a directory");
    EXPECT_EQ(writeMessage(path), "it is a directory");
    EXPECT_EQ(test::listing(directory.str()), "trips.csv\n");
}

TEST(Formats, reportAMissingDirectory) {
    EXPECT_EQ(writeMessage("/no/such/file.csv"), "there is no directory /no/such");
    EXPECT_EQ(writeMessage("/no/such/file.omx"), "there is no directory /no/such");
}

TEST(Formats, replaceAnOldFile) {
    test::TempDir const directory;
    test::writeFile(directory.file("t.csv"), "something old, and longer than what comes");
    writeTripTable(directory.file("t.csv"), one(), "");
    EXPECT_EQ(test::readFile(directory.file("t.csv")), "origin,destination,value\n1,1,4\n");
    EXPECT_EQ(test::listing(directory.str()), "t.csv\n");
}

TEST(Formats, keepTheOldFileWhenWritingFails) {
    test::TempDir const directory;
    test::writeFile(directory.file("t.csv"), "old");
    auto const stop = [](double) { throw FormatError("stopped"); };
    EXPECT_THROW(writeTripTable(directory.file("t.csv"), one(), "", CsvForm::wide, stop), FormatError);
    EXPECT_EQ(test::readFile(directory.file("t.csv")), "old");
    EXPECT_EQ(test::listing(directory.str()), "t.csv\n");
}

TEST(Formats, doNotOverwriteADevice) {
    test::TempDir const directory;
    auto const device = test::endlessDevice();
    if (device.empty() || !test::makeLink(device, directory.file("t.csv")))
        GTEST_SKIP() << "SKIPPED: no links to devices here";
    EXPECT_EQ(writeMessage(device), "the file name has no extension; expected one of .omx, .csv, .tntp");
    EXPECT_EQ(writeMessage(directory.file("t.csv")), "it is not a regular file");
}

namespace {

using Zones = std::vector<std::int32_t>;
using Cells = std::vector<float>;

TripTable rectangle() {
    TripTable table;
    table.rows = 2;
    table.columns = 3;
    table.cells = {1, 2, 3, 4, 5, 0.1f};
    return table;
}

TripTable square() {
    TripTable table;
    table.rows = table.columns = 2;
    table.zones = {11, 3};
    table.cells = {1, -2, 0.1f, 4e30f};
    return table;
}

// A file that h5py writes: tables of 2 x 2 with the given names and the values 1, 2, 3, 4.
void writeForeign(std::string const& path, std::vector<std::string> names) {
    names.insert(names.begin(), path);
    auto const result = test::runPython("import sys, h5py, numpy\n"
                                        "f = h5py.File(sys.argv[1], 'w')\n"
                                        "f.attrs['OMX_VERSION'] = numpy.bytes_('0.2')\n"
                                        "f.attrs['SHAPE'] = numpy.array([2, 2], 'i4')\n"
                                        "f.create_group('data')\n"
                                        "for i, name in enumerate(sys.argv[2:]):\n"
                                        "    f['data'].create_dataset(name, data=i + numpy.array([[1, 2], [3, 4]]))\n",
        names);
    ASSERT_EQ(result.exitCode, 0) << result.errors;
}

}

TEST(Omx, preservesATableWithItsZonesInOrder) {
    test::TempDir const directory;
    writeTripTable(directory.file("t.omx"), square(), "AM");
    auto const back = readTripTable(directory.file("t.omx"), {.table = "AM"});
    EXPECT_EQ(back.zones, square().zones);
    EXPECT_EQ(back.cells, square().cells);
    EXPECT_EQ(test::listing(directory.str()), "t.omx\n");
}

TEST(Omx, preservesANonSquareTable) {
    test::TempDir const directory;
    writeTripTable(directory.file("t.OMX"), rectangle(), "AM");
    auto const back = readTripTable(directory.file("t.OMX"));
    EXPECT_EQ(back.rows, 2);
    EXPECT_EQ(back.columns, 3);
    EXPECT_EQ(back.zones, Zones{});
    EXPECT_EQ(back.cells, rectangle().cells);
}

TEST(Omx, isReadByOtherPrograms) {
    test::TempDir const directory;
    writeTripTable(directory.file("t.omx"), square(), "AM");
    auto const result =
        test::runPython("import sys, h5py\n"
                        "f = h5py.File(sys.argv[1])\n"
                        "print(list(f['data']), f['data/AM'][0].tolist(), f['lookup/zone'][:].tolist())",
            {directory.file("t.omx")});
    EXPECT_EQ(result.output, "['AM'] [1.0, -2.0] [11, 3]\n") << result.errors;
}

TEST(Omx, readsTheOnlyTableByDefault) {
    test::TempDir const directory;
    writeForeign(directory.file("t.omx"), {"car"});
    EXPECT_EQ(readTripTable(directory.file("t.omx")).cells, (Cells{1, 2, 3, 4}));
}

TEST(Omx, readsTheChosenTable) {
    test::TempDir const directory;
    writeForeign(directory.file("t.omx"), {"car", "bike"});
    EXPECT_EQ(readTripTable(directory.file("t.omx"), {.table = "bike"}).cells, (Cells{2, 3, 4, 5}));
}

TEST(Omx, listsTheTablesWhenNoneOrAnUnknownOneIsChosen) {
    test::TempDir const directory;
    auto const path = directory.file("t.omx");
    writeForeign(path, {"car", "bike"});
    EXPECT_EQ(readMessage(path), "it holds 2 tables; choose one with --table: bike, car");
    EXPECT_EQ(readMessage(path, "train"), "it has no table 'train'; choose one with --table: bike, car");
}

TEST(Omx, refusesAFileWithoutTables) {
    test::TempDir const directory;
    auto const path = directory.file("t.omx");
    writeForeign(path, {});
    EXPECT_EQ(readMessage(path), "it holds no table");
    EXPECT_EQ(readMessage(path, "car"), "it holds no table");
}

std::string omxMessage(std::string const& path) {
    try {
        readTripTable(path);
    } catch (TRkMatrixException const& error) {
        return error.what();
    }
    return {};
}

TEST(Omx, isReadWhateverItsExtension) {
    test::TempDir const directory;
    writeTripTable(directory.file("t.omx"), square(), "AM");
    std::filesystem::rename(directory.file("t.omx"), directory.file("t.odm"));
    EXPECT_EQ(readTripTable(directory.file("t.odm")).cells, square().cells);
}

TEST(Omx, refusesATableWithDamagedValues) {
    test::TempDir const directory;
    auto const path = directory.file("t.omx");
    writeTripTable(path, square(), "AM");
    auto bytes = test::readFile(path);
    float const value = square().cells[3];
    auto const place = bytes.find(std::string(reinterpret_cast<char const*>(&value), sizeof value));
    ASSERT_NE(place, std::string::npos);
    bytes[place] ^= 1;
    test::writeFile(path, bytes);
    EXPECT_NE(omxMessage(path).find("table \"AM\" was changed outside Cubes or damaged"), std::string::npos);
    EXPECT_NE(readTripTable(path, {.ignoreChecksum = true}).cells, square().cells);
}

TEST(Omx, readsAChangedTableOnceTheIndexRecordIsDeleted) {
    test::TempDir const directory;
    auto const path = directory.file("t.omx");
    writeTripTable(path, square(), "AM");
    auto const change = [&](std::string const& program) {
        auto const done = test::runPython("import h5py, sys\nf = h5py.File(sys.argv[1], 'r+')\n" + program, {path});
        EXPECT_EQ(done.exitCode, 0) << done.errors;
    };
    change("f['data/AM'][0, 0] = 77");
    EXPECT_NE(omxMessage(path), "");
    change("del f['cubes_index']");
    EXPECT_EQ(readTripTable(path).cells.front(), 77);
    EXPECT_EQ(readTripTable(path).zones, square().zones);
}

TEST(Omx, refusesFilesOfOtherFormatsAndNamesThem) {
    test::TempDir const directory;
    test::writeFile(directory.file("text.omx"), "origin,destination,value\n");
    test::writeFile(directory.file("empty.omx"), "");
    std::filesystem::create_directory(directory.file("directory.omx"));
    for (auto const* name : {"text.omx", "empty.omx", "directory.omx", "missing.omx"}) {
        auto const path = directory.file(name);
        try {
            readTripTable(path);
            FAIL() << name;
        } catch (TRkMatrixException const& error) {
            EXPECT_NE(std::string(error.what()).find(path), std::string::npos) << error.what();
        }
    }
}

TEST(Omx, refusesADirectoryAsTarget) {
    test::TempDir const directory;
    std::filesystem::create_directory(directory.file("t.omx"));
    EXPECT_THROW(writeTripTable(directory.file("t.omx"), square(), "AM"), FormatError);
    EXPECT_EQ(test::listing(directory.str()), "t.omx\n");
}

TEST(Omx, refusesAFileThatIsTruncatedAnywhere) {
    test::TempDir const directory;
    auto const path = directory.file("t.omx");
    writeTripTable(path, square(), "AM");
    auto const whole = test::readFile(path);
    for (std::size_t part = 0; part < 20; ++part) {
        test::writeFile(path, whole.substr(0, whole.size() * part / 20));
        EXPECT_THROW(readTripTable(path), TRkMatrixException) << part << "/20";
    }
}

TEST(Omx, readsTheTablesOfARealFile) {
    CUBES_REQUIRE_DATA("omx/example.omx");
    auto const path = test::sharedData("omx/example.omx");
    EXPECT_EQ(readMessage(path),
        "it holds 8 tables; choose one with --table: FARE, IVT, IVTBUS, IVTRAIL, IVTTRAM, OWT, TRANSFERS, TWT");
    auto const times = readTripTable(path, {.table = "IVT"});
    EXPECT_EQ(times.rows, 485);
    EXPECT_EQ(times.columns, 485);
    EXPECT_EQ(times.zones.size(), 485u);
    auto const result = test::runPython("import sys, h5py\n"
                                        "f = h5py.File(sys.argv[1])\n"
                                        "print(float(f['data/IVT'][3, 400]), int(f['lookup/NO'][484]))",
        {path});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    std::istringstream stream(result.output);
    double value = 0;
    std::int32_t zone = 0;
    stream >> value >> zone;
    EXPECT_EQ(times.at(3, 400), static_cast<float>(value));
    EXPECT_EQ(times.zones[484], zone);
}

TEST(Omx, isPreservedByCsv) {
    CUBES_REQUIRE_DATA("omx/example.omx");
    test::TempDir const directory;
    auto const times = readTripTable(test::sharedData("omx/example.omx"), {.table = "TWT"});
    for (auto const form : {CsvForm::longForm, CsvForm::wide}) {
        writeTripTable(directory.file("t.csv"), times, "", form);
        auto const back = readTripTable(directory.file("t.csv"));
        EXPECT_EQ(back.zones, times.zones);
        EXPECT_EQ(back.cells, times.cells);
    }
}

}
