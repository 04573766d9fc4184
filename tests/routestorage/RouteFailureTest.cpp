// Storing routes while system functions are watched and made to fail.

#include <cubes/core/TRkCubesException.h>
#include <cubes/matrix/TRkMatrixException.h>

#include <cerrno>
#include <filesystem>

#include "host/matrix/FailingSystem.h"
#include "routestorage/RouteCubeTest.h"

namespace cubes::test {
namespace {

class RouteFailure : public RouteEntriesTest {
protected:
    void SetUp() override {
        RouteEntriesTest::SetUp();
        writeFile(source_, "some routes");
    }

    // Stores a copy of the source; returns the message when copying fails.
    std::string storeCopy(CubeDataInterface* data) {
        try {
            store(routes(), 6, data);
        } catch (TRkMatrixException const& error) {
            return error.what();
        } catch (TRkException const& error) {
            EXPECT_EQ(dynamic_cast<TRkCubesException const*>(&error), nullptr) << error.what();
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
    std::string messages;
    bool failed = true;
    for (int nth = 1; failed; ++nth) {
        ASSERT_LT(nth, 100);
        {
            FailingSystem const system(nth, ENOSPC);
            messages += storeCopy(record.get());
            failed = system.hasFailed();
        }
        bool const isThere = std::filesystem::exists(routeFile(6));
        EXPECT_TRUE(!isThere || readFile(routeFile(6)) == "some routes") << nth;
        routes().Clear();
        EXPECT_EQ(files().find("FDB"), std::string::npos) << nth << ": " << files();
    }
    EXPECT_NE(messages.find("cannot copy " + source_ + " to " + routeFile(6) + ": No space left on device"),
        std::string::npos);
}

}
}
