// Storing routes while system functions are watched and made to fail.

#include <cubes/database/TRkDatabaseException.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <cerrno>
#include <filesystem>
#include <set>

#include "host/matrix/FailingSystem.h"
#include "host/platform/Files.h"
#include "routestorage/RouteCubeTest.h"

namespace cubes::test {
namespace {

class RouteFailure : public RouteEntriesTest {
protected:
    void SetUp() override {
        RouteEntriesTest::SetUp();
        writeFile(source_, "some routes");
    }

    // Stores a copy of the source; gives the message of an error in copying. Others are the database's.
    std::string storeCopy(CubeDataInterface* data) {
        try {
            store(routes(), 6, data);
        } catch (TRkMatrixException const& error) {
            return error.what();
        } catch (TRkException const& error) {
            EXPECT_NE(dynamic_cast<TRkDatabaseException const*>(&error), nullptr) << error.what();
        }
        return {};
    }

    std::string const source_ = elsewhere.file("source.FDB");
};

INSTANTIATE_TEST_SUITE_P(, RouteFailure, testing::Values(Backend::sqlite),
    [](auto const& parameter) { return backendName(parameter.param); });

TEST_P(RouteFailure, aStoredCopyIsFlushedWithItsDirectory) {
    auto const record = recordFor(kinds()[0], source_);
    FailingSystem const system;
    EXPECT_TRUE(store(routes(), 6, record.get()));
    EXPECT_TRUE(system.settled().ends_with("flush rename flush-directory")) << system.settled();
}

TEST_P(RouteFailure, aFullDiskLeavesNoPartOfACopy) {
    auto const record = recordFor(kinds()[0], source_);
    std::string const expected = "cannot copy route file " + source_ + " to " + routeFile(6) + ": ";
    std::string const full = "No space left on device";
    std::string const directory = "cannot flush " + platform::directoryOf(routeFile(6)) + ": ";
    std::multiset<std::string> messages;
    bool failed = true;
    for (int nth = 1; failed; ++nth) {
        ASSERT_LT(nth, 100);
        {
            FailingSystem const system(nth, ENOSPC);
            if (auto const message = storeCopy(record.get()); !message.empty()) messages.insert(message);
            failed = system.hasFailed();
        }
        bool const isThere = std::filesystem::exists(routeFile(6));
        EXPECT_TRUE(!isThere || readFile(routeFile(6)) == "some routes") << nth;
        routes().Clear();
        EXPECT_EQ(files().find("FDB"), std::string::npos) << nth << ": " << files();
    }
    // Making, copying, flushing, renaming; then flushing the directory.
    EXPECT_GE(messages.count(expected + full), 4u);
    EXPECT_EQ(messages.count(expected + directory + full), 1u);
    for (auto const& message : messages) EXPECT_TRUE(message.starts_with(expected)) << message;
    EXPECT_EQ(messages.size(), messages.count(expected + full) + 1);
}

}
}
